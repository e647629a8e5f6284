#pragma once

#include <cstdint>

#include "reassembly/counters.h"

namespace vistel {

/// Says on standard error what was skipped: `problems` are lines that could not be read. Returns the exit
/// status that it leads to.
int report_losses(std::uint64_t problems, const ReassemblyCounters& counters);

}  // namespace vistel
