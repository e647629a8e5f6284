#pragma once

/// @file
/// The native tree control.

#include <string>

#include "pgn_vistel/native.h"

/// One line of a native tree. Owned by its control.
struct _TREEITEM {
    std::wstring text{};               ///< that is shown
    bool expanded = false;             ///< whether the lines beneath are shown
    _TREEITEM* parent = nullptr;       ///< null for a top-level line
    _TREEITEM* first_child = nullptr;  ///< of the lines beneath
    _TREEITEM* last_child = nullptr;   ///< of the lines beneath
    _TREEITEM* next = nullptr;         ///< sibling
    _TREEITEM* previous = nullptr;     ///< sibling
};

/// The native tree control of this platform: the lines of a tree, kept in memory for whoever draws them.
///
/// Items stay valid until they or one of their parents are deleted. A null item means the invisible root
/// where a parent is asked for; operations on a null item do nothing.
///
/// It is the host's control, not the library's: all of it stands in this header, and the library exports none
/// of it.
class CTreeCtrl {
  public:
    /// What else is drawn, as bits.
    enum Style : unsigned long { has_buttons = 1, has_lines = 2, lines_at_root = 4 };

    CTreeCtrl() = default;
    CTreeCtrl(const CTreeCtrl&) = delete;
    CTreeCtrl& operator=(const CTreeCtrl&) = delete;
    ~CTreeCtrl() { DeleteAllItems(); }

    /// Adds a line as the last child. Where there is no memory for it nothing changes (std::bad_alloc).
    _TREEITEM* InsertItem(const wchar_t* text, _TREEITEM* parent) {
        _TREEITEM& above = parent != nullptr ? *parent : root_;
        auto* const item = new _TREEITEM{.text = text, .parent = parent, .previous = above.last_child};
        (above.last_child != nullptr ? above.last_child->next : above.first_child) = item;
        above.last_child = item;
        ++changes_;
        return item;
    }
    /// Changes what a line shows.
    void SetItemText(_TREEITEM* item, const wchar_t* text) {
        if (item == nullptr) return;
        item->text = text;
        ++changes_;
    }
    /// What a line shows; the item must be one.
    const std::wstring& GetItemText(const _TREEITEM* item) const { return item->text; }
    /// The first line beneath, or null.
    _TREEITEM* GetChildItem(const _TREEITEM* parent) const { return (parent ? parent : &root_)->first_child; }
    /// The next line with the same parent, or null.
    _TREEITEM* GetNextSiblingItem(const _TREEITEM* item) const { return item ? item->next : nullptr; }
    /// Deletes a line with all beneath it.
    void DeleteItem(_TREEITEM* item) {
        if (item == nullptr) return;
        while (item->first_child != nullptr) DeleteItem(item->first_child);
        _TREEITEM& above = item->parent != nullptr ? *item->parent : root_;
        (item->previous != nullptr ? item->previous->next : above.first_child) = item->next;
        (item->next != nullptr ? item->next->previous : above.last_child) = item->previous;
        delete item;
        ++changes_;
    }
    /// Deletes all lines.
    void DeleteAllItems() {
        while (root_.first_child != nullptr) DeleteItem(root_.first_child);
    }
    /// Shows the lines beneath a line, or hides them.
    void Expand(_TREEITEM* item, bool expand) {
        if (item == nullptr || item->expanded == expand) return;
        item->expanded = expand;
        ++changes_;
    }

    /// Bits of `Style`.
    unsigned long GetStyle() const { return style_; }
    /// Takes bits out, then puts bits in.
    void ModifyStyle(unsigned long remove, unsigned long add) { style_ = (style_ & ~remove) | add; }

    /// Where the control lies.
    const NativeRect& GetRect() const { return rect_; }
    /// Puts the control elsewhere.
    void MoveWindow(const NativeRect& rect) { rect_ = rect; }

    /// Rises with every change of a line: a reader draws anew when it did.
    unsigned long GetChangeCount() const { return changes_; }

  private:
    _TREEITEM root_;
    NativeRect rect_;
    unsigned long style_ = 0;
    unsigned long changes_ = 0;
};
