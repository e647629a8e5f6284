#pragma once

#include <cstdint>
#include <string>

#include "reassembly/counters.h"

namespace vistel {

/// What was lost before frames could be put together.
struct InputLosses {
    std::uint64_t lines = 0, records = 0;  ///< that could not be read
    std::uint64_t dropped = 0;             ///< frames that whoever made a recording had lost
};

/// Says on standard error what was skipped. Returns the exit status that it leads to.
int report_losses(const InputLosses& losses, const ReassemblyCounters& counters);

/// Says on standard error that an interrupt ended the work before its end, at this place. Returns the exit
/// status that it leads to.
int report_interrupt(const std::string& place);

}  // namespace vistel
