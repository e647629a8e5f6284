#include "commands/statistics.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <functional>
#include <vector>

namespace vistel {

void UnknownPgns::print() const {
    std::fprintf(stderr, "unknown PGNs: %" PRIu64 "\n", total_);
    for (const auto& [key, count] : counts_)
        std::fprintf(stderr, "    %6" PRIu32 " from source %3d: %" PRIu64 "\n", key.pgn, key.source, count);
    if (others_ > 0) std::fprintf(stderr, "    others: %" PRIu64 "\n", others_);
}

void print(const LinkCounters& link) {
    const auto line = [](const char* what, std::uint64_t count) {
        std::fprintf(stderr, "%s: %" PRIu64 "\n", what, count);
    };
    line("connections lost", link.losses);
    std::fprintf(stderr, "seconds without a connection: %.1f\n",
                 static_cast<double>(link.without.count()) / 1000);
    line("times without traffic", link.silences);
    if (link.bytes > 0) line("bytes received", link.bytes);
    line("error frames", link.error_frames);
    line(link.bytes > 0 ? "datagrams dropped by the system" : "frames dropped by the system", link.dropped);
}

void print(const Losses& losses) {
    std::vector<Losses::Entry> entries(losses.entries().begin(), losses.entries().end());
    std::ranges::stable_sort(entries, std::greater(), &Losses::Entry::frames);
    const Losses::Entry& others = losses.others();
    const auto counts = [](const Losses::Entry& entry) {
        std::fprintf(stderr, "%" PRIu64 " missing, %" PRIu64 " of no message, %" PRIu64 " repeated\n",
                     entry.missing, entry.orphans, entry.repeated);
    };
    std::uint64_t total = others.frames();
    for (const Losses::Entry& entry : entries) total += entry.frames();
    std::fprintf(stderr, "lost or repeated frames: %" PRIu64 "\n", total);
    for (const Losses::Entry& entry : entries) {
        std::fprintf(stderr, "    %6" PRIu32 " from source %3d: ", entry.pgn, entry.source);
        counts(entry);
    }
    if (others.frames() > 0) {
        std::fputs("    others: ", stderr);
        counts(others);
    }
}

}  // namespace vistel
