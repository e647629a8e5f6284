#pragma once

namespace vistel {

/// From here on a closed pipe is an error of the write instead of the end of the program.
void ignore_closed_pipes();

/// From here on an interrupt from the keyboard or a request to terminate sets a flag instead of ending the
/// program.
void watch_interrupts();

bool interrupted();

}  // namespace vistel
