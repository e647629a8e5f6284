// A module of a host that is linked with the library: the library comes and goes with it.

#include "pgn_vistel/pgn_vistel.h"

namespace {

PGN_VistelDlg_c* dialog = nullptr;

}  // namespace

/// Shows one message in a dialog, under a native window or under none. 0 when all is well.
extern "C" __attribute__((visibility("default"))) int open_monitor(HWND parent) {
    if (parent != nullptr)
        dialog = new PGN_VistelDlg_c(parent, 10ul, 0ul);
    else
        dialog = new PGN_VistelDlg_c(static_cast<wxWindow*>(nullptr), 10ul, 0ul);
    dialog->Show();
    N2KMsg msg{};
    msg.pgn = 127250;
    msg.length = 8;
    const bool is_whole = GetDispDataType_Num() == 65 && GetUnitDataType_Num() == 140 &&
                          PGN_VistelTree_PutMsg(nullptr, &msg) == -1 && dialog->GetTitle() == "PGN Vistel";
    return is_whole ? PGN_VistelDlg_c::s_PutMsg(dialog, &msg) : 1;
}

/// A message of a stream of its own.
extern "C" __attribute__((visibility("default"))) int put_message(std::uint8_t source) {
    N2KMsg msg{};
    msg.pgn = 127250;
    msg.source = source;
    msg.length = 8;
    return dialog->PutMsg(&msg);
}

extern "C" __attribute__((visibility("default"))) int clear_messages() {
    return dialog->ClearMsg();
}

/// The dialog's widget.
extern "C" __attribute__((visibility("default"))) void* monitor_widget() {
    return dialog->GetHandle();
}

extern "C" __attribute__((visibility("default"))) void close_monitor() {
    delete dialog;
}
