#include "pgn_vistel/native_tree.h"

_TREEITEM* CTreeCtrl::InsertItem(const wchar_t* text, _TREEITEM* parent) {
    _TREEITEM& above = parent != nullptr ? *parent : root_;
    auto* const item = new _TREEITEM;
    item->text = text;
    item->parent = parent;
    item->previous = above.last_child;
    (above.last_child != nullptr ? above.last_child->next : above.first_child) = item;
    above.last_child = item;
    ++changes_;
    return item;
}

void CTreeCtrl::SetItemText(_TREEITEM* item, const wchar_t* text) {
    if (item == nullptr) return;
    item->text = text;
    ++changes_;
}

void CTreeCtrl::DeleteItem(_TREEITEM* item) {
    if (item == nullptr) return;
    while (item->first_child != nullptr) DeleteItem(item->first_child);
    _TREEITEM& above = item->parent != nullptr ? *item->parent : root_;
    (item->previous != nullptr ? item->previous->next : above.first_child) = item->next;
    (item->next != nullptr ? item->next->previous : above.last_child) = item->previous;
    delete item;
    ++changes_;
}

void CTreeCtrl::DeleteAllItems() {
    while (root_.first_child != nullptr) DeleteItem(root_.first_child);
}

void CTreeCtrl::Expand(_TREEITEM* item, bool expand) {
    if (item == nullptr || item->expanded == expand) return;
    item->expanded = expand;
    ++changes_;
}
