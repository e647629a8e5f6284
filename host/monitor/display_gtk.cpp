#include <gdk/gdk.h>

#include "monitor/display.h"

namespace vistel {

// The toolkit would end the program with a message of its own.
bool has_display() {
    GdkDisplay* const display = gdk_display_open(nullptr);
    if (display == nullptr) return false;
    gdk_display_close(display);
    return true;
}

}  // namespace vistel
