#pragma once

#include <wx/timer.h>

#include <memory>

#include "monitor/player.h"

class PGN_VistelDlg_c;
class wxTreeCtrl;

namespace vistel {

/// The monitor dialog with a menu and a status line, fed by a player. Deletes itself and ends the program
/// when the user closes the dialog.
class MonitorWindow : public wxEvtHandler {
  public:
    explicit MonitorWindow(std::unique_ptr<Player> player);
    ~MonitorWindow() override;

    void show();

  private:
    void build_menu();
    void show_frame();
    void show_status();
    void show_source();
    void open();
    void save();
    void copy();

    PGN_VistelDlg_c* dialog_;
    wxTreeCtrl* tree_;
    std::unique_ptr<Player> player_;
    LatestMessages latest_;
    wxTimer timer_;
    std::uint64_t refused_ = 0;
    bool display_paused_ = false;
    unsigned frames_ = 0;
};

}  // namespace vistel
