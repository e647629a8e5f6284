#include "commands/interrupt.h"

#include <csignal>

namespace vistel {

namespace {

volatile std::sig_atomic_t flag = 0;

}  // namespace

void ignore_closed_pipes() {
    std::signal(SIGPIPE, SIG_IGN);
}

void watch_interrupts() {
    struct sigaction action = {};
    action.sa_handler = [](int signal) { flag = signal; };
    // A second one ends the program the hard way; reads are not restarted.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int interrupt_signal() {
    return flag;
}

}  // namespace vistel
