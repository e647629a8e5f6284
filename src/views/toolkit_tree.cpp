#include <wx/treectrl.h>

#include <utility>

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
    has_moved_ = true;
    tree_.DeleteAllItems();
    tree_.AddRoot(L"None");
}

TreeControl::Line ToolkitTree::append(Line parent, const wchar_t* text) {
    has_moved_ = true;
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
    has_moved_ = true;
    tree_.Delete(item(line));
}

void ToolkitTree::expand(Line line, bool expanded) {
    has_moved_ = true;
    if (expanded)
        tree_.Expand(item(line));
    else
        tree_.Collapse(item(line));
}

void ToolkitTree::show_changes() {
    if (!std::exchange(has_moved_, false)) return;
    // The control lays its lines out when the toolkit is idle, which it is only in a host that runs it.
    // Thawed it does so at once.
    tree_.Freeze();
    tree_.Thaw();
}

}  // namespace pgn_vistel
