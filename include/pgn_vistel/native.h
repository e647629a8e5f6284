#pragma once

/// Native windows as hosts hand them over. Both are opaque here; their meaning is the platform's (on GTK a
/// HWND is the `GdkWindow*` of a realized widget, cast).
struct HWND__;
using HWND = HWND__*;

/// A loaded module (program or library) of the host.
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;

/// The native tree control and its items.
class CTreeCtrl;
struct _TREEITEM;
