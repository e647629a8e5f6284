#pragma once

#include <cstdint>

#include "pgn_vistel/catalogue.h"
#include "pgn_vistel/n2k_msg.h"

namespace vistel {

/// A message on its way to an output.
struct TimedMessage {
    const N2KMsg& msg;
    const pgn_vistel::PgnDef* pgn;  // null when it is not catalogued
    std::int64_t since_start;       // nanoseconds since the recording's first message
    bool has_absolute = false;
    std::int64_t absolute = 0;  // nanoseconds since 1970, UTC
};

}  // namespace vistel
