#include "commands/reading.h"

#include <cstdio>
#include <utility>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "commands/losses.h"

namespace vistel {

Reading::Reading(const InputOptions& options, std::function<void()> before_wait)
    : inputs_(options, {std::move(before_wait), [this](const std::string& line) {
                            clear_progress();
                            std::fprintf(stderr, "%s\n", line.c_str());
                        }}) {}

void Reading::note(Event event) {
    if (event == Event::begins && !has_begun()) {
        watch_interrupts();
        ignore_closed_pipes();
        progress_.emplace(inputs_.bytes_total());
    } else if (event == Event::end) {
        has_ended_ = true;
    } else if (event == Event::problem) {
        clear_progress();
        std::fprintf(stderr, "%s\n", inputs_.problem().c_str());
        if (inputs_.is_problem_of_whole()) {
            is_readable_ = false;
        } else {
            ++problems_;
        }
    }
}

int Reading::finish(const ReassemblyCounters& counters) {
    const int status = report_losses(problems_, counters);
    if (!has_ended_ && interrupted())
        if (const std::string place = inputs_.unread_place(); !place.empty()) return report_interrupt(place);
    if (!is_readable_) return EXIT_FAILED;
    return is_live() ? EXIT_CLEAN : status;
}

}  // namespace vistel
