#pragma once

#include "pgn_vistel/pgn_dlg.h"

namespace pgn_vistel::test {

/// What the user does in a dialog, without the buttons that a window would have for it.
struct PressedDialog : PGN_VistelDlg_c {
    void press_all() {
        wxCommandEvent click;
        wxCloseEvent close;
        OnButtonClear(click);
        OnButtonPause(click);
        OnButtonUnit(click);
        OnClose(close);
        s_OnTextEnter(this, 0, "7");
    }
};

}  // namespace pgn_vistel::test
