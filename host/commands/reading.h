#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "commands/progress.h"
#include "inputs/inputs.h"
#include "reassembly/counters.h"

namespace vistel {

/// The inputs of a command, with what a user is told of them on standard error: what is wrong with them, what
/// live sources have to say, how far the reading is.
class Reading {
  public:
    using Event = Inputs::Event;

    /// `before_wait` is called before every wait for input.
    explicit Reading(const InputOptions& options, std::function<void()> before_wait = {});

    /// Says what comes next; a problem is told already. See Inputs::next().
    Event next(Record& record) {
        const Event event = inputs_.next(record);
        if (event == Event::record) [[likely]] {
            progress_->update([this] { return inputs_.bytes_read(); });
        } else {
            note(event);
        }
        return event;
    }

    const Inputs& inputs() const { return inputs_; }
    /// See Inputs::send().
    bool send(const Record& frame) { return inputs_.send(frame); }

    /// Whether any input could be opened, so that there is something to be shown. From then on an interrupt
    /// of the user is a flag (interrupt.h).
    bool has_begun() const { return progress_.has_value(); }
    bool is_live() const { return !inputs_.links().empty(); }

    /// Takes the progress off the screen, so that something else can be said.
    void clear_progress() {
        if (progress_) progress_->clear();
    }

    /// At the end: says what was skipped and where an interrupt ended the reading, and returns the exit
    /// status that it leads to. What is lost on a live source, which the user ends, is told and no more.
    int finish(const ReassemblyCounters& counters);

    std::uint64_t problems() const { return problems_; }

  private:
    void note(Event event);

    Inputs inputs_;
    std::optional<Progress> progress_;
    std::uint64_t problems_ = 0;
    bool is_readable_ = true;
    bool has_ended_ = false;
};

}  // namespace vistel
