#pragma once

#include <string>

#include "pgn_vistel/native.h"

class wxTopLevelWindow;
class wxWindow;

/// What the library needs of a platform beyond the toolkit. A new platform implements these functions and the
/// native tree control (native_tree.h) in a folder of its own; nothing else of the library knows the
/// platform. Everything is called on the user-interface thread, and nothing throws.
namespace pgn_vistel::platform {

struct Size {
    int width = 0;
    int height = 0;
};

/// Inner size of a native window, in pixels; 0 by 0 for null.
Size client_size(HWND window);

/// A toolkit window that stands for a native one and may be a parent; null when that cannot be had. It is
/// owned by the toolkit and goes with the native window.
wxWindow* wrap_native_window(HWND window);

/// Gives a window the running program's icon "ICON_PROGRAM"; leaves it alone where there is none.
void set_program_icon(wxTopLevelWindow& window);

/// Lets a small button use all of its size for its image, where the platform's style would keep a margin.
void remove_padding(wxWindow& button);

/// The product name that a module carries, or an empty text where it has none.
std::wstring product_name(HINSTANCE module);

}  // namespace pgn_vistel::platform
