#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "commands/losses.h"
#include "commands/problem_log.h"
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
    [[nodiscard]] bool send(const Record& frame) { return inputs_.send(frame); }

    /// Whether any input could be opened, so that there is something to be shown. From then on an interrupt
    /// of the user is a flag (interrupt.h).
    bool has_begun() const { return progress_.has_value(); }
    bool is_live() const { return !inputs_.links().empty(); }

    /// Says what a command cannot do with a message, which is called `what`, as with problems of the inputs:
    /// not each of many that are alike.
    void tell(const std::string& what, std::string_view why);

    /// Whether nothing is to be told but what the exit status stands for.
    bool is_quiet() const { return is_quiet_; }

    /// Takes the progress off the screen, so that something else can be said.
    void clear_progress() {
        if (progress_) progress_->clear();
    }

    /// At the end: says what was skipped and where an interrupt ended the reading, and returns the exit
    /// status that it leads to. What is lost on a live source, which the user ends, is told and no more.
    int finish(const ReassemblyCounters& counters);

    std::uint64_t problems() const { return losses_.lines + losses_.records; }

  private:
    void note(Event event);
    void note_problem();
    void note_read_in_vain();

    const bool is_quiet_;
    Inputs inputs_;
    std::optional<Progress> progress_;
    ProblemLog log_{is_quiet_};
    InputLosses losses_;
    std::size_t noted_in_vain_ = 0;
    bool is_readable_ = true;
    bool has_ended_ = false;
};

}  // namespace vistel
