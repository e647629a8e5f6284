#pragma once

#include <wx/frame.h>
#include <wx/infobar.h>
#include <wx/timer.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "monitor/settings.h"
#include "monitor/stream_tree.h"
#include "monitor/traffic.h"

class wxChoice;
class wxSearchCtrl;
class wxSplitterWindow;
class wxToggleButton;

namespace vistel {

class LossWindow;
class MessagePane;
class PlayerBar;
class Recorder;
class StreamColumns;
class TextTable;
class UnitWindow;

/// The window of `vistel monitor`: devices at the left, at the right the streams of those that are chosen,
/// and beneath them the message that is looked at. It is fed by a player and closes like any frame.
class MonitorWindow : public wxFrame {
  public:
    struct Options {
        PlayOptions play = {};  ///< how later recordings are played, too
        StreamFilter filter = {};
        Settings settings = {};
        wxString settings_file = {};                                ///< that they are kept in; empty for none
        std::optional<pgn_vistel::core::UnitSelection> units = {};  ///< for this time, instead of those
        /// Called when it is closed, with what was playing last, or null.
        std::function<void(const Player*)> closed = {};
    };

    /// Without a source; `open` gives it one.
    explicit MonitorWindow(Options options);
    ~MonitorWindow() override;

    /// Plays a recording or a live source from its start, or several, with " + " between them. False with the
    /// reason in `error`, and what is playing goes on.
    [[nodiscard]] bool open(const std::string& names, std::string& error);
    /// The same for a player that has opened its source.
    void play(std::unique_ptr<Player> player);

    /// Asks for a source, and opens it.
    void choose_source();

  private:
    using Definitions = pgn_vistel::core::Definitions;
    using Address = std::pair<std::uint8_t, std::uint8_t>;  ///< bus and source

    void build_menu();
    void build_controls();
    void place();
    void close();

    void show_frame();
    void take_new_streams();
    void rebuild();
    bool admits(const Stream& stream) const;
    void show_devices();
    void choose_devices();
    void show_columns();
    void show_message();
    void show_status();
    void show_problems();
    void show_buses();
    void show_losses();
    bool has_several_buses() const { return player_ && player_->bus_count() > 1; }
    std::string bus_of(const Stream& stream) const;
    std::string bus_note(const Stream& stream) const;
    wxString status() const;

    void pause(bool paused);
    void apply(pgn_vistel::core::UnitSelection units);
    void open_or_tell(const std::string& names);
    void show_recent();
    void show_everything();
    void show_context_menu(wxTreeEvent& event);
    void open_message();
    void find_next();
    void save();
    void record();
    void end_recording();
    void show_keys();
    void copy_field_key();
    template <class Text>
    void copy_of_stream(Text text);

    const pgn_vistel::core::UnitSelection& units() const { return units_; }
    Definitions definitions() const { return options_.play.definitions; }

    Options options_;
    pgn_vistel::core::UnitSelection units_;
    std::unique_ptr<Player> player_;
    std::unique_ptr<Traffic> traffic_;
    std::unique_ptr<Recorder> recorder_;

    wxToggleButton* pause_ = nullptr;
    wxSearchCtrl* search_ = nullptr;
    wxChoice* order_ = nullptr;
    wxChoice* bus_ = nullptr;
    wxInfoBar* problems_ = nullptr;
    TextTable* device_table_ = nullptr;
    wxSplitterWindow* sides_ = nullptr;   // devices, and the rest
    wxSplitterWindow* halves_ = nullptr;  // streams above, message below
    std::unique_ptr<StreamTree> tree_;
    StreamColumns* columns_ = nullptr;
    MessagePane* message_ = nullptr;
    PlayerBar* player_bar_ = nullptr;
    UnitWindow* unit_window_ = nullptr;
    LossWindow* loss_window_ = nullptr;
    wxMenuBar* menu_bar_ = nullptr;
    wxMenu* recent_ = nullptr;

    std::vector<const Stream*> streams_;  // all, in the order of their appearance
    std::vector<bool> is_shown_;          // of each
    std::vector<DeviceRow> devices_;
    std::vector<DeviceRow> chosen_devices_;
    std::set<Address> chosen_;  // their addresses
    std::map<Address, wxString> titles_;
    std::string told_problem_;
    bool is_choosing_ = false;  // devices, not the user but the window
    bool is_stale_ = false;     // the filter or the order is another one
    wxTimer timer_;
    unsigned frames_ = 0;
};

}  // namespace vistel
