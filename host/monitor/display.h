#pragma once

namespace vistel {

/// Whether there is a display to open a window on, and the toolkit may be started.
bool has_display();

}  // namespace vistel
