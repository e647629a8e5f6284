#pragma once

#include <optional>
#include <string>

#include "inputs/input_options.h"
#include "pgn_vistel/core/catalogue.h"

namespace vistel {

struct ReplayOptions {
    InputOptions input;
    std::optional<double> speed;  ///< times a recording's own pace; 0 as fast as it is taken
    bool loop = false;
    std::string to;  ///< sources/outlet.h
    std::string as;  ///< one of written_formats(); empty for what is usual
    pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected;
};

/// Plays recordings to other programs, one after the other, until they are over or it is interrupted. What
/// was sent is said at the end, on standard error. Returns the exit status; an interrupt is the usual end of
/// a loop alone.
int run_replay(const ReplayOptions& options);

}  // namespace vistel
