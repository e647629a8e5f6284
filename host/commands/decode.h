#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "commands/unit_options.h"
#include "inputs/input_options.h"
#include "pgn_vistel/core/catalogue.h"

namespace vistel {

/// Exit statuses of the program.
enum ExitStatus {
    EXIT_CLEAN = 0,    ///< everything was read
    EXIT_SKIPPED = 1,  ///< some of the input could not be read or reassembled
    EXIT_FAILED = 2,   ///< bad usage, or a file that cannot be read or written
    /// An interrupt before the end: this and the number of the signal, as shells have it.
    EXIT_INTERRUPTED = 128,
};

struct DecodeOptions {
    enum class Form { text, json, csv };

    InputOptions input;
    Form form = Form::text;
    std::vector<std::uint32_t> pgns;     ///< empty for all
    std::vector<std::uint32_t> sources;  ///< empty for all
    UnitOptions units;
    pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected;
    bool plain_numbers = false;  ///< without hexadecimal forms
    bool bus = false;            ///< tells the bus even where there is but one, and in CSV
    bool statistics = false;
};

/// Decodes recordings or a live stream to standard output. Problems, progress and statistics go to standard
/// error. Returns the exit status.
int run_decode(const DecodeOptions& options);

}  // namespace vistel
