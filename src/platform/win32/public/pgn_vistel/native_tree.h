#pragma once

/// @file
/// The native tree control.

#include <string>

#include "pgn_vistel/native.h"

/// The native tree control of this platform: the window of a `SysTreeView32`, which the host creates and
/// destroys. `CTreeCtrl control(window);` is all that a host needs of this class; its items are `HTREEITEM`.
/// The other members are what the library does to the control, through its messages, and are not exported.
///
/// In memory it is the window's handle and nothing else. A host that has another class of this name leaves
/// this header out and hands over where it keeps the handle, for as long as there is a tree on it:
///
///     new PGN_VistelTree_c(parent, reinterpret_cast<CTreeCtrl*>(&handle), most_streams, flags)
///
/// A handle that is not one of a window of the calling thread is a control that takes no line.
/// Operations on a null item do nothing; a null item is the invisible root where a parent is asked for.
class CTreeCtrl {
  public:
    /// What else is drawn, as bits of the window's style: `TVS_HASBUTTONS` and its neighbours.
    enum Style : unsigned long { has_buttons = 1, has_lines = 2, lines_at_root = 4 };

    /// Of a window that exists and outlives the object.
    explicit CTreeCtrl(pgn_vistel::NativeWindow control = nullptr) : control_(control) {}

    /// Adds a line as the last child. Where the control takes none nothing changes (std::bad_alloc).
    _TREEITEM* InsertItem(const wchar_t* text, _TREEITEM* parent);
    /// Changes what a line shows.
    void SetItemText(_TREEITEM* item, const wchar_t* text);
    /// What a line shows, up to the size of the longest line that the library makes.
    std::wstring GetItemText(_TREEITEM* item) const;
    /// The first line beneath, or null.
    _TREEITEM* GetChildItem(_TREEITEM* parent) const;
    /// The next line with the same parent, or null.
    _TREEITEM* GetNextSiblingItem(_TREEITEM* item) const;
    /// Deletes a line with all beneath it.
    void DeleteItem(_TREEITEM* item);
    /// Deletes all lines.
    void DeleteAllItems();
    /// Shows the lines beneath a line, or hides them.
    void Expand(_TREEITEM* item, bool expand);

    /// The window's style.
    unsigned long GetStyle() const;
    /// Takes bits out, then puts bits in.
    void ModifyStyle(unsigned long remove, unsigned long add);

    /// Where the control lies.
    NativeRect GetRect() const;
    /// Puts the control elsewhere.
    void MoveWindow(const NativeRect& rect);

  private:
    pgn_vistel::NativeWindow control_;
};
static_assert(sizeof(CTreeCtrl) == sizeof(pgn_vistel::NativeWindow));
