// A host that has void* for handles (NO_STRICT) casts them to the names of native.h, with the dialogs, too.
#define NO_STRICT
#include <windows.h>
// After it:
#include "pgn_vistel/native_tree.h"
#include "pgn_vistel/pgn_dlg.h"
#include "pgn_vistel/pgn_tree.h"
#include "pgn_vistel/unit_dlg.h"

static_assert(std::is_same_v<HWND, void*>);

PGN_VistelDlg_c* open_monitor(HWND parent, HINSTANCE module);
PGN_VistelDlg_c* open_monitor(HWND parent, HINSTANCE module) {
    auto* const monitor = new PGN_VistelDlg_c;
    monitor->SetModule(static_cast<pgn_vistel::NativeModule>(module));
    monitor->Create(static_cast<pgn_vistel::NativeWindow>(parent), 1ul, 0ul);
    return monitor;
}

void fill(HWND parent, HWND control, N2KMsg& msg);
void fill(HWND parent, HWND control, N2KMsg& msg) {
    CTreeCtrl lines(static_cast<pgn_vistel::NativeWindow>(control));
    PGN_VistelTree_c tree(static_cast<pgn_vistel::NativeWindow>(parent), &lines, 1, 0);
    tree.PutMsg(&msg);
}
