#pragma once

/// @file
/// Handles of the platform.

struct HWND__;
/// A native window as hosts hand it over: opaque here, its meaning is the platform's. On GTK it is the
/// `GdkWindow*` of a realized widget, cast.
using HWND = HWND__*;

struct HINSTANCE__;
/// A loaded module (program or library) of the host, opaque, too. On ELF platforms it is what dlopen()
/// returns for it, cast.
using HINSTANCE = HINSTANCE__*;

// The native tree control and its items.
class CTreeCtrl;
struct _TREEITEM;
