#pragma once

#include <cstdint>

#include "output/sink.h"

namespace vistel {

/// Seconds with six decimals.
void put_seconds(Sink& out, std::int64_t nanoseconds);

/// "2026-09-10T08:00:00.250000Z" of nanoseconds since 1970.
void put_utc(Sink& out, std::int64_t nanoseconds);

}  // namespace vistel
