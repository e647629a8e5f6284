#include "commands/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace vistel {

using namespace std::chrono_literals;

Progress::Progress(std::uint64_t total)
    : total_(total),
      shown_at_all_(total > 0 && isatty(STDERR_FILENO) != 0 && isatty(STDOUT_FILENO) == 0),
      next_(Clock::now() + 1s) {}

void Progress::show(std::uint64_t done) {
    const auto now = Clock::now();
    if (now < next_) return;
    next_ = now + 100ms;
    constexpr int width = 40;
    const double share = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
    const int filled = static_cast<int>(share * width);
    std::fprintf(stderr, "\r[%.*s%*s] %3.0f %%", filled, "########################################",
                 width - filled, "", share * 100);
    visible_ = true;
}

void Progress::clear() {
    if (visible_) std::fputs("\r\033[K", stderr);
    visible_ = false;
}

}  // namespace vistel
