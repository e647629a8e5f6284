#pragma once

#include <wx/timer.h>

#include <memory>

#include "monitor/latest.h"
#include "monitor/player.h"

class PGN_VistelDlg_c;
class wxTreeCtrl;

namespace vistel {

/// The monitor dialog with a menu and a status line, fed by a player. When the user closes the dialog it is
/// destroyed and the main loop ends; this object is then good for nothing but to be deleted.
class MonitorWindow : public wxEvtHandler, private PlayListener {
  public:
    explicit MonitorWindow(std::unique_ptr<Player> player);
    ~MonitorWindow() override;

    void show();
    /// Plays another recording from its start, in the same way. False with the reason in `error`, and the
    /// one that is playing goes on.
    bool open(const std::string& file, std::string& error);

  private:
    void build_menu();
    void on_message(const N2KMsg& msg, const RecordTime& time, std::uint8_t bus, PlayTime now) override;
    void show_frame();
    void show_status();
    void show_source();
    void choose_recording();
    void save();
    void copy();

    PGN_VistelDlg_c* dialog_;
    wxTreeCtrl* tree_;
    std::unique_ptr<Player> player_;
    LatestMessages latest_;
    wxTimer timer_;
    std::uint64_t replaced_ =
        0;  // messages that a later one of their stream came behind before they were shown
    std::uint64_t refused_ = 0;  // messages of this recording
    bool display_paused_ = false;
    unsigned frames_ = 0;
};

}  // namespace vistel
