#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "readers/byte_source.h"
#include "readers/record_reader.h"

namespace vistel {

/// One format of recordings.
struct Format {
    std::string_view name;   ///< as given to --format
    std::string_view about;  ///< a line for the help text

    /// Position in `head`, the first bytes of a recording, of what speaks for this format; npos for nothing.
    /// `whole` tells that nothing follows.
    std::size_t (*find_sign)(std::string_view head, bool whole);

    std::unique_ptr<RecordReader> (*open)(ByteSource& source);
};

std::span<const Format> all_formats();

/// Null for a name that no format has.
const Format* find_format(std::string_view name);

/// The format whose sign comes first, or null.
const Format* recognise_format(std::string_view head, bool whole);

/// "plain, candump, ..."
std::string format_names();

}  // namespace vistel
