// What a tree control shows, as any program would read it.
#pragma once

#include <windows.h>
// After it:
#include <commctrl.h>

/// Calls `show` with the text of each line and how deep it lies, from an item on to its last sibling.
template <class Show>
void read_lines(HWND control, HTREEITEM item, Show show, int depth = 0) {
    for (; item != nullptr; item = TreeView_GetNextSibling(control, item)) {
        wchar_t text[1024];
        TVITEMW line{};
        line.mask = TVIF_TEXT;
        line.hItem = item;
        line.pszText = text;
        line.cchTextMax = 1024;
        SendMessageW(control, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&line));
        show(text, depth);
        read_lines(control, TreeView_GetChild(control, item), show, depth + 1);
    }
}
