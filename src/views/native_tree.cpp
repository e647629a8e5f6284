#include "pgn_vistel/native_tree.h"

#include "views/tree_control.h"

namespace pgn_vistel {

namespace {

_TREEITEM* item(TreeControl::Line line) {
    return static_cast<_TREEITEM*>(line);
}

}  // namespace

void NativeTree::prepare() {
    clear();
    tree_.ModifyStyle(0, CTreeCtrl::has_buttons | CTreeCtrl::has_lines | CTreeCtrl::lines_at_root);
}

void NativeTree::clear() {
    tree_.DeleteAllItems();
}

TreeControl::Line NativeTree::append(Line parent, const wchar_t* text) {
    return tree_.InsertItem(text, item(parent));
}

void NativeTree::set_text(Line line, const wchar_t* text) {
    if (tree_.GetItemText(item(line)) != text) tree_.SetItemText(item(line), text);
}

TreeControl::Line NativeTree::first_child(Line parent) const {
    return tree_.GetChildItem(item(parent));
}

TreeControl::Line NativeTree::next_sibling(Line line) const {
    return tree_.GetNextSiblingItem(item(line));
}

void NativeTree::remove(Line line) {
    tree_.DeleteItem(item(line));
}

void NativeTree::expand(Line line, bool expanded) {
    tree_.Expand(item(line), expanded);
}

}  // namespace pgn_vistel
