#include <wx/treectrl.h>

#include "views/tree_control.h"

namespace pgn_vistel {

namespace {

wxTreeItemId item(TreeControl::Line line) {
    return wxTreeItemId(line);
}

}  // namespace

void ToolkitTree::prepare() {
    tree_.SetWindowStyleFlag(wxTR_HIDE_ROOT);  // in place of whatever style the control had
    clear();
}

void ToolkitTree::clear() {
    tree_.DeleteAllItems();
    tree_.AddRoot(L"None");
}

TreeControl::Line ToolkitTree::append(Line parent, const wchar_t* text) {
    return tree_.AppendItem(parent != nullptr ? item(parent) : tree_.GetRootItem(), text).GetID();
}

void ToolkitTree::set_text(Line line, const wchar_t* text) {
    if (tree_.GetItemText(item(line)) != text) tree_.SetItemText(item(line), text);
}

TreeControl::Line ToolkitTree::first_child(Line parent) const {
    wxTreeItemIdValue cookie;
    return tree_.GetFirstChild(item(parent), cookie).GetID();
}

TreeControl::Line ToolkitTree::next_sibling(Line line) const {
    return tree_.GetNextSibling(item(line)).GetID();
}

void ToolkitTree::remove(Line line) {
    tree_.Delete(item(line));
}

void ToolkitTree::expand(Line line, bool expanded) {
    if (expanded)
        tree_.Expand(item(line));
    else
        tree_.Collapse(item(line));
}

}  // namespace pgn_vistel
