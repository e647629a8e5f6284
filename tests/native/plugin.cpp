// A module of a native host, linked with the library: the library comes and goes with it.

#include "pgn_vistel/pgn_dlg.h"

namespace {

PGN_VistelDlg_c* dialog = nullptr;

}  // namespace

extern "C" __attribute__((visibility("default"))) int open_monitor(HWND window) {
    dialog = new PGN_VistelDlg_c(window, 10ul, 0ul);
    dialog->Show();
    N2KMsg msg{};
    msg.pgn = 127250;
    msg.length = 8;
    return dialog->PutMsg(&msg);
}

extern "C" __attribute__((visibility("default"))) void close_monitor() {
    delete dialog;
}
