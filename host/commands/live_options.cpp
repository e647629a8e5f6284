#include "commands/live_options.h"

#include <cinttypes>
#include <cstdio>

namespace vistel {

LinkOptions link_options(const LiveOptions& options, const std::string& name, std::function<void()> before) {
    LinkOptions link;
    link.silence = std::chrono::milliseconds(static_cast<std::int64_t>(options.timeout * 1000));
    link.tell = [name, before = std::move(before)](const std::string& text) {
        if (before) before();
        std::fprintf(stderr, "vistel: %s: %s\n", name.c_str(), text.c_str());
    };
    return link;
}

void print_link(const LinkCounters& counters) {
    const auto line = [](const char* what, std::uint64_t count) {
        std::fprintf(stderr, "%s: %" PRIu64 "\n", what, count);
    };
    line("connections lost", counters.losses);
    std::fprintf(stderr, "seconds without a connection: %.1f\n",
                 static_cast<double>(counters.without.count()) / 1000);
    line("times without traffic", counters.silences);
    if (counters.bytes > 0) line("bytes received", counters.bytes);
    line("error frames", counters.error_frames);
    line("frames dropped by the system", counters.dropped_frames);
}

}  // namespace vistel
