#include <windows.h>

#include <atomic>

#include "commands/interrupt.h"

namespace vistel {

namespace {

std::atomic<bool> flag = false;

/// The second one ends the program the hard way, as does the end of the console.
BOOL WINAPI note(DWORD event) {
    return event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT ? !flag.exchange(true) : FALSE;
}

}  // namespace

// There is no signal for them.
void ignore_closed_pipes() {}

void watch_interrupts() {
    SetConsoleCtrlHandler(note, TRUE);
}

int interrupt_signal() {
    constexpr int ctrl_c = 2;
    return flag ? ctrl_c : 0;
}

}  // namespace vistel
