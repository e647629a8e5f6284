#include "commands/losses.h"

#include <cinttypes>
#include <cstdio>

#include "commands/decode.h"
#include "commands/interrupt.h"

namespace vistel {

int report_losses(const InputLosses& losses, const ReassemblyCounters& counters) {
    int status = EXIT_CLEAN;
    const auto tell = [&status](const char* what, std::uint64_t count) {
        if (count == 0) return;
        std::fprintf(stderr, "vistel: %s: %" PRIu64 "\n", what, count);
        status = EXIT_SKIPPED;
    };
    tell("lines that could not be read", losses.lines);
    tell("records that could not be read", losses.records);
    tell("frames that the recorder dropped", losses.dropped);
    tell("messages that stayed incomplete",
         counters.incomplete_fast_packets + counters.incomplete_transports);
    tell("frames that belong to no message", counters.orphan_frames);
    return status;
}

int report_interrupt(const std::string& place) {
    std::fprintf(stderr, "vistel: interrupted by signal %d %s; the rest is left out\n", interrupt_signal(),
                 place.c_str());
    return EXIT_INTERRUPTED + interrupt_signal();
}

}  // namespace vistel
