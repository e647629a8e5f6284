#pragma once

#include <cstdint>
#include <string>

#include "reassembly/counters.h"

namespace vistel {

/// Says on standard error what was skipped: `problems` are lines that could not be read. Returns the exit
/// status that it leads to.
int report_losses(std::uint64_t problems, const ReassemblyCounters& counters);

/// Says on standard error that an interrupt ended the work before its end, at this place. Returns the exit
/// status that it leads to.
int report_interrupt(const std::string& place);

}  // namespace vistel
