#pragma once

#include <chrono>
#include <cstdint>

namespace vistel {

/// A progress bar on standard error, for a file that takes more than a second; nothing where standard error
/// is no terminal, where standard output is one, or where the total is not known.
class Progress {
  public:
    explicit Progress(std::uint64_t total);
    ~Progress() { clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// To be called often: looks at the clock only now and then, and asks `done` only where there is a bar.
    template <class Done>
    void update(const Done& done) {
        if (shown_at_all_ && ++calls_ % 4096 == 0) show(done());
    }

    /// Takes the bar off the screen, so that something else can be said.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    void show(std::uint64_t done);

    const std::uint64_t total_;
    const bool shown_at_all_;
    Clock::time_point next_;
    unsigned calls_ = 0;
    bool visible_ = false;
};

}  // namespace vistel
