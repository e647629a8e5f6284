#pragma once

/// @file
/// Handles of the platform.

struct HWND__;
struct HINSTANCE__;

namespace pgn_vistel {

/// A native window as hosts hand it over: opaque here, its meaning is the platform's. On Windows it is the
/// window's `HWND`, on GTK the `GdkWindow*` of a realized widget, cast.
using NativeWindow = HWND__*;

/// A loaded module (program or library) of the host, opaque, too. On Windows it is its `HINSTANCE`, on ELF
/// platforms what dlopen() returns for it, cast.
using NativeModule = HINSTANCE__*;

}  // namespace pgn_vistel

// On Windows these names are those of <windows.h>, the same types; a host that defines NO_STRICT has void*
// for both and casts to the names above.
#if !defined(_WIN32)
/// @{
/// As `NativeWindow` and `NativeModule`.
using HWND = pgn_vistel::NativeWindow;
using HINSTANCE = pgn_vistel::NativeModule;
/// @}
#endif

// The native tree control and its items.
class CTreeCtrl;
struct _TREEITEM;

/// Where a control lies in its parent's client area, in pixels.
struct NativeRect {
    /// @{ edge
    int left = 0, top = 0, right = 0, bottom = 0;
    /// @}
    bool operator==(const NativeRect&) const = default;  ///< the same four edges
};
