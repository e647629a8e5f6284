#include <windows.h>
// The order matters.
#include <wx/msw/private.h>

#include "monitor/display.h"

namespace vistel {

// Windows always has one. The toolkit asks for the program's handle where it takes icons and classes from.
bool has_display() {
    wxSetInstance(GetModuleHandleW(nullptr));
    return true;
}

}  // namespace vistel
