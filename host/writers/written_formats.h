#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "writers/record_writer.h"

namespace vistel {

/// Names of the formats that can be written.
std::vector<std::string> written_formats();

/// Null for a name that is none of them.
std::unique_ptr<RecordWriter> make_writer(std::string_view format);

}  // namespace vistel
