#pragma once

#include <cstdint>

#include "reassembly/counters.h"

namespace vistel {

/// Says on standard error what was skipped, lines and records that could not be read among it. Returns the
/// exit status that it leads to.
int report_losses(std::uint64_t lines, std::uint64_t records, const ReassemblyCounters& counters);

}  // namespace vistel
