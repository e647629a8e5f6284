#include "pgn_vistel/native_tree.h"

#include <windows.h>
// After it:
#include <commctrl.h>

#include <new>

#include "platform/win32/own_thread.h"

namespace {

using pgn_vistel::platform::is_of_this_thread;

constexpr int longest_line = 1024;

/// The control's answer. One that is not this thread's is sent nothing, and 0 stands for its answer.
template <class Result = LRESULT>
Result send(HWND control, UINT message, WPARAM wide = 0, const void* data = nullptr) {
    const LRESULT result =
        is_of_this_thread(control) ? SendMessageW(control, message, wide, reinterpret_cast<LPARAM>(data)) : 0;
    if constexpr (std::is_pointer_v<Result>)
        return reinterpret_cast<Result>(result);
    else
        return result;
}

/// A line's text as the control's messages hand it over.
TVITEMW text_of(HTREEITEM item, const wchar_t* text, int size) {
    TVITEMW line{};
    line.mask = TVIF_TEXT;
    line.hItem = item;
    line.pszText = const_cast<wchar_t*>(text);
    line.cchTextMax = size;
    return line;
}

}  // namespace

_TREEITEM* CTreeCtrl::InsertItem(const wchar_t* text, _TREEITEM* parent) {
    TVINSERTSTRUCTW line{};
    line.hParent = parent != nullptr ? parent : TVI_ROOT;
    line.hInsertAfter = TVI_LAST;
    line.item = text_of(nullptr, text, 0);
    auto* const item = send<HTREEITEM>(control_, TVM_INSERTITEMW, 0, &line);
    if (item == nullptr) throw std::bad_alloc();
    return item;
}

void CTreeCtrl::SetItemText(_TREEITEM* item, const wchar_t* text) {
    if (item == nullptr) return;
    const TVITEMW line = text_of(item, text, 0);
    send(control_, TVM_SETITEMW, 0, &line);
}

std::wstring CTreeCtrl::GetItemText(_TREEITEM* item) const {
    wchar_t text[longest_line] = L"";
    const TVITEMW line = text_of(item, text, longest_line);
    send(control_, TVM_GETITEMW, 0, &line);
    return line.pszText;  // the control may answer with a text of its own
}

_TREEITEM* CTreeCtrl::GetChildItem(_TREEITEM* parent) const {
    return send<HTREEITEM>(control_, TVM_GETNEXTITEM, parent != nullptr ? TVGN_CHILD : TVGN_ROOT, parent);
}

_TREEITEM* CTreeCtrl::GetNextSiblingItem(_TREEITEM* item) const {
    return item != nullptr ? send<HTREEITEM>(control_, TVM_GETNEXTITEM, TVGN_NEXT, item) : nullptr;
}

void CTreeCtrl::DeleteItem(_TREEITEM* item) {
    if (item != nullptr) send(control_, TVM_DELETEITEM, 0, item);  // with null it would be all of them
}

void CTreeCtrl::DeleteAllItems() {
    send(control_, TVM_DELETEITEM, 0, TVI_ROOT);
}

void CTreeCtrl::Expand(_TREEITEM* item, bool expand) {
    if (item != nullptr) send(control_, TVM_EXPAND, expand ? TVE_EXPAND : TVE_COLLAPSE, item);
}

unsigned long CTreeCtrl::GetStyle() const {
    return static_cast<unsigned long>(GetWindowLongW(control_, GWL_STYLE));
}

void CTreeCtrl::ModifyStyle(unsigned long remove, unsigned long add) {
    if (!is_of_this_thread(control_)) return;
    SetWindowLongW(control_, GWL_STYLE, static_cast<LONG>((GetStyle() & ~remove) | add));
}

NativeRect CTreeCtrl::GetRect() const {
    RECT rect{};
    GetWindowRect(control_, &rect);
    MapWindowPoints(HWND_DESKTOP, GetAncestor(control_, GA_PARENT), reinterpret_cast<POINT*>(&rect), 2);
    return {rect.left, rect.top, rect.right, rect.bottom};
}

void CTreeCtrl::MoveWindow(const NativeRect& rect) {
    if (!is_of_this_thread(control_)) return;
    ::MoveWindow(control_, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, TRUE);
}
