#include "commands/reading.h"

#include <cstdio>
#include <utility>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "text/words.h"

namespace vistel {

Reading::Reading(const InputOptions& options, std::function<void()> before_wait)
    : is_quiet_(options.quiet), inputs_(options, {std::move(before_wait), [this](const std::string& line) {
                                                      if (is_quiet_) return;
                                                      clear_progress();
                                                      std::fprintf(stderr, "%s\n", line.c_str());
                                                  }}) {}

void Reading::note(Event event) {
    if (noted_in_vain_ < inputs_.read_in_vain().size()) note_read_in_vain();
    if (event == Event::begins && !has_begun()) {
        watch_interrupts();
        ignore_closed_pipes();
        progress_.emplace(is_quiet_ ? 0 : inputs_.bytes_total());
    } else if (event == Event::end) {
        has_ended_ = true;
    } else if (event == Event::problem) {
        note_problem();
    }
}

void Reading::note_problem() {
    const Problem& problem = inputs_.problem();
    const std::string& recording = inputs_.recording_of_problem();
    const auto line = [&] { return described(problem, recording); };
    clear_progress();
    if (problem.place == Problem::Place::whole) {
        is_readable_ = false;
        std::fprintf(stderr, "%s\n", line().c_str());
        return;
    }
    const bool is_line = problem.place == Problem::Place::line;
    ++(is_line ? losses_.lines : losses_.records);
    log_.tell(recording, problem.text, line, [&] {
        return is_line ? concat("like ", recording, ":", problem.number)
                       : concat("like that at byte ", problem.number, " of ", recording);
    });
}

void Reading::note_read_in_vain() {
    for (; noted_in_vain_ < inputs_.read_in_vain().size(); ++noted_in_vain_) {
        const Inputs::InVain& recording = inputs_.read_in_vain()[noted_in_vain_];
        const bool is_empty = recording.format.empty();
        if (!is_empty) is_readable_ = false;
        if (is_empty && is_quiet_) continue;
        clear_progress();
        const std::string what =
            is_empty ? "is empty" : concat("nothing in it can be read as ", recording.format);
        std::fprintf(stderr, "vistel: %s: %s\n", recording.name.c_str(), what.c_str());
    }
}

void Reading::tell(const std::string& what, std::string_view why) {
    clear_progress();
    log_.tell(
        {}, concat(what, why), [&] { return concat("vistel: ", what, " ", why); },
        [&] { return concat("like ", what); });
}

int Reading::finish(const ReassemblyCounters& counters) {
    while (!has_ended_ && interrupted() && inputs_.is_left_unknown()) note_problem();
    log_.finish();
    losses_.dropped = inputs_.dropped_frames();
    if (is_quiet_ && is_live()) return is_readable_ ? EXIT_CLEAN : EXIT_FAILED;
    const int status = report_losses(losses_, counters);
    if (!has_ended_ && interrupted())
        if (const std::string place = inputs_.unread_place(); !place.empty()) return report_interrupt(place);
    if (!is_readable_) return EXIT_FAILED;
    return is_live() ? EXIT_CLEAN : status;
}

}  // namespace vistel
