#include "commands/statistics.h"

#include <cinttypes>
#include <cstdio>

namespace vistel {

void UnknownPgns::print() const {
    std::fprintf(stderr, "unknown PGNs: %" PRIu64 "\n", total_);
    for (const auto& [key, count] : counts_)
        std::fprintf(stderr, "    %6" PRIu32 " from source %3d: %" PRIu64 "\n", key.pgn, key.source, count);
    if (others_ > 0) std::fprintf(stderr, "    others: %" PRIu64 "\n", others_);
}

}  // namespace vistel
