#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "sources/gateway.h"

namespace vistel {

struct Command {
    std::string_view bytes;
    std::chrono::milliseconds patience;  ///< how long its answer is awaited
};

/// Sends commands one after the other, each when the one before is answered or has had its time, and all
/// again if nothing has come of them. The last one is repeated later on, where this is wanted.
class Dialogue {
  public:
    using Time = Gateway::Time;

    Dialogue(Gateway::Side& side, std::span<const Command> commands, std::chrono::milliseconds repeat = {})
        : side_(side), commands_(commands), repeat_(repeat) {}

    void begin(Time now) {
        rounds_ = 0;
        say(0, now);
    }
    /// On to the next command.
    void next(Time now) {
        const bool last = step_ + 1 == commands_.size();
        if (last) ++rounds_;
        say(last ? 0 : step_ + 1, now);
    }
    /// What was wanted is reached.
    void finish(Time now) {
        finished_ = true;
        due_ = now + repeat_;
    }
    void elapsed(Time now) {
        if (now < due_) return;
        if (!finished_) {
            next(now);
        } else if (repeat_.count() > 0) {
            side_.send(commands_.back().bytes);
            finish(now);
        }
    }

    bool is_at(std::size_t step) const { return !finished_ && step_ == step; }
    bool is_at_last() const { return is_at(commands_.size() - 1); }
    bool is_finished() const { return finished_; }
    unsigned rounds() const { return rounds_; }  ///< that came to nothing

  private:
    void say(std::size_t step, Time now) {
        step_ = step;
        finished_ = false;
        due_ = now + commands_[step].patience;
        side_.send(commands_[step].bytes);
    }

    Gateway::Side& side_;
    std::span<const Command> commands_;
    std::chrono::milliseconds repeat_;
    std::size_t step_ = 0;
    bool finished_ = false;
    Time due_;
    unsigned rounds_ = 0;
};

}  // namespace vistel
