#pragma once

namespace vistel {

/// From here on an interrupt from the keyboard or a request to terminate sets a flag instead of ending the
/// program, and a closed pipe is an error of the write.
void watch_interrupts();

bool interrupted();

}  // namespace vistel
