// A host in a module of its own that is linked with the library, to be loaded and unloaded with it.

#include <wx/frame.h>

#include <cstring>

#include "pgn_vistel/pgn_vistel.h"

/// Shows one message in a dialog, a second time while it is paused; the sum of what a host can see: 0 when
/// all is well.
extern "C" __attribute__((visibility("default"))) int use_library() {
    if (GetDispDataType_Num() != 65 || GetUnitDataType_Num() != 140) return 1;
    if (PGN_VistelTree_PutMsg(nullptr, nullptr) != -1) return 2;
    N2KMsg msg{};
    msg.pgn = 127250;
    msg.length = 8;
    std::memset(msg.data, 0, 8);
    int created = -1;
    {
        wxFrame frame(nullptr, wxID_ANY, "Host");
        auto* const dialog = new PGN_VistelDlg_c(&frame, nullptr, &created, 10, 0);
        if (created != 1) return 3;
        dialog->Show();
        if (PGN_VistelDlg_c::s_PutMsg(dialog, &msg) != 0) return 4;
        if (dialog->GetTitle() != "PGN Vistel") return 5;
    }
    return created == 0 ? 0 : 6;
}
