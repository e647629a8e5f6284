#pragma once

#include <string>

#include "pgn_vistel/export.h"
#include "pgn_vistel/native.h"

/// Where a control lies in its parent's client area, in pixels.
struct NativeRect {
    int left = 0, top = 0, right = 0, bottom = 0;
    bool operator==(const NativeRect&) const = default;
};

/// One line of a native tree. Owned by its control.
struct _TREEITEM {
    std::wstring text;
    bool expanded = false;
    _TREEITEM* parent = nullptr;  // null for a top-level line
    _TREEITEM* first_child = nullptr;
    _TREEITEM* last_child = nullptr;
    _TREEITEM* next = nullptr;  // sibling
    _TREEITEM* previous = nullptr;
};

/// The native tree control of this platform: the lines of a tree, kept in memory for whoever draws them.
///
/// Items stay valid until they or one of their parents are deleted. A null item means the invisible root
/// where a parent is asked for; operations on a null item do nothing.
class PGN_VISTEL_API CTreeCtrl {
  public:
    enum Style : unsigned long { has_buttons = 1, has_lines = 2, lines_at_root = 4 };

    CTreeCtrl() = default;
    CTreeCtrl(const CTreeCtrl&) = delete;
    CTreeCtrl& operator=(const CTreeCtrl&) = delete;
    ~CTreeCtrl() { DeleteAllItems(); }

    _TREEITEM* InsertItem(const wchar_t* text, _TREEITEM* parent);  ///< as the last child
    void SetItemText(_TREEITEM* item, const wchar_t* text);
    const std::wstring& GetItemText(const _TREEITEM* item) const { return item->text; }
    _TREEITEM* GetChildItem(const _TREEITEM* parent) const { return (parent ? parent : &root_)->first_child; }
    _TREEITEM* GetNextSiblingItem(const _TREEITEM* item) const { return item ? item->next : nullptr; }
    void DeleteItem(_TREEITEM* item);
    void DeleteAllItems();
    void Expand(_TREEITEM* item, bool expand);

    unsigned long GetStyle() const { return style_; }
    void ModifyStyle(unsigned long remove, unsigned long add) { style_ = (style_ & ~remove) | add; }

    const NativeRect& GetRect() const { return rect_; }
    void MoveWindow(const NativeRect& rect) { rect_ = rect; }

    /// Rises with every change of a line: a reader draws anew when it did.
    unsigned long GetChangeCount() const { return changes_; }

  private:
    _TREEITEM root_;
    NativeRect rect_;
    unsigned long style_ = 0;
    unsigned long changes_ = 0;
};
