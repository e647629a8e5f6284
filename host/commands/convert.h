#pragma once

#include <string>

#include "inputs/input_options.h"
#include "pgn_vistel/core/catalogue.h"

namespace vistel {

struct ConvertOptions {
    InputOptions input;
    std::string to;  ///< one of written_formats()
    std::string output = "-";
    pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected;
};

/// Writes what recordings or a live stream hold as a recording of another format. Problems and progress go to
/// standard error. Returns the exit status.
int run_convert(const ConvertOptions& options);

}  // namespace vistel
