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
    sigaction(SIGQUIT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    // The loss of a terminal may be told twice, by the kernel and by the shell, and who started the program
    // may have wanted it to outlive that, as nohup does.
    action.sa_flags = 0;
    struct sigaction before = {};
    sigaction(SIGHUP, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(SIGHUP, &action, nullptr);
}

int interrupt_signal() {
    return flag;
}

}  // namespace vistel
