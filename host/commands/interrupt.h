#pragma once

namespace vistel {

/// From here on a closed pipe is an error of the write instead of the end of the program.
void ignore_closed_pipes();

/// From here on an interrupt from the keyboard, the loss of the terminal or a request to terminate sets a
/// flag instead of ending the program.
void watch_interrupts();

/// The number of the signal that came, 0 for none. On Windows an interrupt has that of Ctrl-C elsewhere.
int interrupt_signal();

inline bool interrupted() {
    return interrupt_signal() != 0;
}

}  // namespace vistel
