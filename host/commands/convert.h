#pragma once

#include <string>
#include <vector>

#include "pgn_vistel/core/catalogue.h"
#include "readers/content_kind.h"

namespace vistel {

struct ConvertOptions {
    std::vector<std::string> files = {"-"};  ///< read one after the other
    std::string format;                      ///< of the recordings, empty to recognise it
    ContentKind contents = ContentKind::as_it_seems;
    std::string to;  ///< one of written_formats()
    std::string output = "-";
    pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected;
};

/// Writes what recordings or a live stream hold as a recording of another format. Problems and progress go to
/// standard error. Returns the exit status.
int run_convert(const ConvertOptions& options);

}  // namespace vistel
