#include "monitor/window.h"

#include <wx/aboutdlg.h>
#include <wx/choice.h>
#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/display.h>
#include <wx/file.h>
#include <wx/filedlg.h>
#include <wx/filename.h>
#include <wx/menu.h>
#include <wx/msgdlg.h>
#include <wx/sizer.h>
#include <wx/splitter.h>
#include <wx/srchctrl.h>
#include <wx/stattext.h>
#include <wx/tglbtn.h>

#include <algorithm>

#include "monitor/loss_text.h"
#include "monitor/loss_window.h"
#include "monitor/message_pane.h"
#include "monitor/message_text.h"
#include "monitor/open_dialog.h"
#include "monitor/player_bar.h"
#include "monitor/recorder.h"
#include "monitor/stream_columns.h"
#include "monitor/text_table.h"
#include "monitor/unit_window.h"
#include "network/message_view.h"
#include "network/stream_text.h"
#include "text/words.h"
#include "writers/written_formats.h"

namespace vistel {

namespace core = pgn_vistel::core;

namespace {

constexpr int frame_interval_ms = 100;  // quicker than the eye reads figures, and calm
// Frames between looks at what changes slowly.
constexpr int bus_column = 0, title_column = 2;  // of the devices
constexpr std::size_t widest_bus = 15;
constexpr const char* between = " + ";  // names of inputs
constexpr unsigned frames_per_column = 3, frames_per_status = 5, frames_per_filter = 10;

enum Command : int {
    id_open = wxID_HIGHEST + 1,
    id_save,
    id_record,
    id_copy_line,
    id_copy_text,
    id_copy_json,
    id_copy_hex,
    id_copy_key,
    id_find,
    id_find_next,
    id_everything,
    id_message,
    id_expand,
    id_collapse,
    id_sort,
    id_clear,
    id_units,
    id_losses,
    id_pause,
    id_step,
    id_faster,
    id_slower,
    id_keys,
    id_recent,  // and those behind it
};

struct Key {
    const char* key;
    const char* what;
};
constexpr Key keys[] = {
    {"Ctrl+O", "another recording or live source"},
    {"Ctrl+F", "filter by number, name or text of a field; Escape drops it"},
    {"F3", "the next line with that text"},
    {"Enter, double click", "the message in full, with every field"},
    {"Left, Right", "collapse or expand the line"},
    {"Ctrl+E, Ctrl+L", "expand or collapse all"},
    {"F5", "sort anew"},
    {"Ctrl+R", "all devices and streams again"},
    {"Ctrl+D", "forget all streams"},
    {"Ctrl+P", "pause: a recording stops; of a live source the picture stands still"},
    {"Ctrl+T", "the next message of a recording that is paused"},
    {"Ctrl++, Ctrl+-", "a recording faster or slower"},
    {"Ctrl+U", "the units"},
    {"F4", "what was lost"},
    {"Ctrl+C", "copy the line"},
    {"Ctrl+S", "save the lines that are expanded"},
    {"Ctrl+Shift+R", "record what comes, or end that"},
    {"Menu key, right click", "what else can be copied"},
    {"Tab", "to the next part of the window"},
};

void copy(const wxString& text) {
    if (text.empty() || !wxTheClipboard->Open()) return;
    wxTheClipboard->SetData(new wxTextDataObject(text));
    wxTheClipboard->Flush();
    wxTheClipboard->Close();
}

/// The names of inputs between which there is " + ".
std::vector<std::string> split(std::string_view names) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t end = names.find(between);
        parts.emplace_back(trimmed(names.substr(0, end)));
        if (end == std::string_view::npos) return parts;
        names.remove_prefix(end + std::string_view(between).size());
    }
}

bool is_same(const DeviceRow& a, const DeviceRow& b) {
    if (a.bus != b.bus) return false;
    return a.name && b.name ? a.name == b.name : a.address && a.address == b.address;
}

}  // namespace

MonitorWindow::MonitorWindow(Options options)
    : wxFrame(nullptr, wxID_ANY, "PGN Vistel"), options_(std::move(options)), timer_(this) {
    SetName("monitor");
    build_controls();
    build_menu();
    CreateStatusBar();
    show_recent();
    apply(options_.units.value_or(options_.settings.units));
    place();
    Bind(wxEVT_TIMER, [this](wxTimerEvent&) { show_frame(); });
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
        close();
        event.Skip();
    });
    tree_->control().SetFocus();
    show_status();
}

MonitorWindow::~MonitorWindow() {
    if (GetMenuBar() == nullptr) delete menu_bar_;
}

// ---- building ----

void MonitorWindow::build_controls() {
    auto* const all = new wxPanel(this);
    pause_ = new wxToggleButton(all, wxID_ANY, "Pause");
    pause_->SetToolTip("Holds the picture still (Ctrl+P)");
    pause_->Bind(wxEVT_TOGGLEBUTTON, [this](wxCommandEvent& event) { pause(event.IsChecked()); });
    search_ = new wxSearchCtrl(all, wxID_ANY);
    search_->SetDescriptiveText("PGN, name or text of a field");
    search_->ShowCancelButton(true);
    search_->Bind(wxEVT_TEXT, [this](wxCommandEvent&) {
        options_.filter.text = search_->GetValue().ToStdString(wxConvUTF8);
        is_stale_ = true;
    });
    search_->Bind(wxEVT_SEARCH, [this](wxCommandEvent&) { find_next(); });
    search_->Bind(wxEVT_SEARCH_CANCEL, [this](wxCommandEvent&) { search_->Clear(); });
    order_ = new wxChoice(all, wxID_ANY);
    for (const char* const name : stream_order_names) order_->Append(wxString("By ") + name);
    order_->SetSelection(std::clamp(options_.settings.order, 0, static_cast<int>(order_->GetCount()) - 1));
    order_->SetToolTip("Order of the streams (F5 sorts anew)");
    order_->Bind(wxEVT_CHOICE, [this](wxCommandEvent&) { is_stale_ = true; });
    bus_ = new wxChoice(all, wxID_ANY);
    bus_->SetName("buses");
    bus_->SetToolTip("Bus whose devices and streams are shown");
    bus_->Append("All buses");
    bus_->Hide();
    bus_->Bind(wxEVT_CHOICE, [this](wxCommandEvent& event) {
        options_.filter.bus.reset();
        if (event.GetSelection() > 0)
            options_.filter.bus = static_cast<std::uint8_t>(event.GetSelection() - 1);
        is_stale_ = true;
        show_devices();
    });
    auto* const bar = new wxBoxSizer(wxHORIZONTAL);
    const auto middle = wxSizerFlags().CenterVertical().Border(wxALL, FromDIP(3));
    bar->Add(pause_, middle);
    bar->Add(search_, wxSizerFlags(1).CenterVertical().Border(wxALL, FromDIP(3)));
    bar->Add(bus_, middle);
    bar->Add(order_, middle);

    problems_ = new wxInfoBar(all);
    sides_ =
        new wxSplitterWindow(all, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxSP_LIVE_UPDATE | wxSP_3DSASH);
    device_table_ = new TextTable(
        sides_, {{"Bus", 85}, {"Addr", 42, true}, {"Device", 195}, {"Msg/s", 52, true}, {"State", 160}});
    device_table_->show_column(bus_column, false, title_column);
    const auto on_choice = [this](wxListEvent& event) {
        if (!is_choosing_) CallAfter([this] { choose_devices(); });
        event.Skip();
    };
    device_table_->Bind(wxEVT_LIST_ITEM_SELECTED, on_choice);
    device_table_->Bind(wxEVT_LIST_ITEM_DESELECTED, on_choice);
    halves_ = new wxSplitterWindow(sides_, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                   wxSP_LIVE_UPDATE | wxSP_3DSASH);
    auto* const streams = new wxPanel(halves_);
    tree_ = std::make_unique<StreamTree>(*streams, definitions());
    columns_ = new StreamColumns(streams);
    auto* const row = new wxBoxSizer(wxHORIZONTAL);
    row->Add(&tree_->control(), wxSizerFlags(1).Expand());
    row->Add(columns_, wxSizerFlags().Expand());
    streams->SetSizer(row);
    tree_->control().SetMinSize(FromDIP(wxSize(150, 60)));
    streams->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        // The lines themselves come first.
        const int width = event.GetSize().x, usual = columns_->FromDIP(StreamColumns::usual_width);
        columns_->SetMinSize(wxSize(std::min(width * 2 / 5, usual), -1));
        columns_->Show(width >= columns_->FromDIP(270));
        event.Skip();
    });
    message_ = new MessagePane(halves_);
    message_->Hide();
    halves_->Initialize(streams);
    halves_->SetMinimumPaneSize(FromDIP(80));
    halves_->SetSashGravity(0.6);
    sides_->SetMinimumPaneSize(FromDIP(60));
    sides_->SplitVertically(device_table_, halves_, FromDIP(460));
    sides_->Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        event.Skip();
        // When it has come to its size: on the way there it is narrower.
        CallAfter([this] {
            const int most = sides_->GetSize().x * 2 / 5;
            if (sides_->GetSashPosition() > most) sides_->SetSashPosition(most);
        });
    });
    player_bar_ = new PlayerBar(all, {[this](double place) {
                                          traffic_->seek(place);
                                          take_new_streams();
                                      },
                                      [this] { traffic_->step(); }});
    player_bar_->Hide();
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(bar, wxSizerFlags().Expand());
    sizer->Add(problems_, wxSizerFlags().Expand());
    sizer->Add(sides_, wxSizerFlags(1).Expand());
    sizer->Add(player_bar_, wxSizerFlags().Expand());
    all->SetSizer(sizer);

    wxTreeCtrl& control = tree_->control();
    control.Bind(wxEVT_TREE_ITEM_ACTIVATED, [this](wxTreeEvent&) { open_message(); });
    control.Bind(wxEVT_TREE_SEL_CHANGED, [this](wxTreeEvent& event) {
        CallAfter([this] {
            show_message();
            if (const auto field = tree_->selected_field()) message_->choose(*field);
        });
        event.Skip();
    });
    control.Bind(wxEVT_TREE_ITEM_MENU, [this](wxTreeEvent& event) { show_context_menu(event); });
}

void MonitorWindow::build_menu() {
    const auto add = [this](wxMenu& menu, int id, const char* text, auto act) {
        menu.Append(id, text);
        Bind(
            wxEVT_MENU, [act](wxCommandEvent&) { act(); }, id);
    };
    auto* const file = new wxMenu;
    add(*file, id_open, "&Open...\tCtrl+O", [this] { choose_source(); });
    recent_ = new wxMenu;
    file->AppendSubMenu(recent_, "Open &recent");
    add(*file, id_save, "&Save expanded lines...\tCtrl+S", [this] { save(); });
    file->AppendCheckItem(id_record, "&Record...\tCtrl+Shift+R");
    Bind(
        wxEVT_MENU, [this](wxCommandEvent&) { recorder_ ? end_recording() : record(); }, id_record);
    file->AppendSeparator();
    add(*file, wxID_EXIT, "&Quit\tCtrl+Q", [this] { Close(); });

    auto* const edit = new wxMenu;
    add(*edit, id_copy_line, "&Copy line\tCtrl+C", [this] {
        // A text that is being typed has a selection of its own.
        if (auto* const text = dynamic_cast<wxTextEntry*>(FindFocus()); text != nullptr) return text->Copy();
        const wxTreeItemId line = tree_->control().GetSelection();
        if (!line.IsOk()) return;
        const bool is_stream = tree_->control().GetItemParent(line) == tree_->control().GetRootItem();
        copy(tree_->control().GetItemText(line) + (is_stream && tree_->selected() != nullptr
                                                       ? wxString::FromUTF8(bus_note(*tree_->selected()))
                                                       : wxString()));
    });
    add(*edit, id_copy_text, "Copy message as &text", [this] {
        copy_of_stream([this](const Stream& s) { return as_text(s, bus_of(s), units(), definitions()); });
    });
    add(*edit, id_copy_json, "Copy message as &JSON",
        [this] { copy_of_stream([this](const Stream& s) { return as_json(s, bus_of(s), definitions()); }); });
    add(*edit, id_copy_hex, "Copy message as &hex", [this] {
        copy_of_stream([](const Stream& s) { return spaced_bytes(s.msg().data, s.msg().length); });
    });
    add(*edit, id_copy_key, "Copy &key of the field", [this] { copy_field_key(); });
    edit->AppendSeparator();
    add(*edit, id_find, "&Filter\tCtrl+F", [this] {
        search_->SetFocus();
        search_->SelectAll();
    });
    add(*edit, id_find_next, "Find &next\tF3", [this] { find_next(); });

    auto* const view = new wxMenu;
    add(*view, id_message, "Show &message", [this] { open_message(); });
    add(*view, id_expand, "&Expand all\tCtrl+E", [this] { tree_->expand_all(true); });
    add(*view, id_collapse, "&Collapse all\tCtrl+L", [this] { tree_->expand_all(false); });
    add(*view, id_sort, "&Sort anew\tF5", [this] { is_stale_ = true; });
    add(*view, id_everything, "&All devices and streams\tCtrl+R", [this] { show_everything(); });
    add(*view, id_clear, "&Forget all streams\tCtrl+D", [this] {
        tree_->show({});
        if (traffic_) traffic_->clear();
        rebuild();
    });
    add(*view, id_losses, "&Losses...\tF4", [this] {
        if (loss_window_ == nullptr) loss_window_ = new LossWindow(this);
        show_losses();
        loss_window_->Show();
        loss_window_->Raise();
    });
    add(*view, id_units, "&Units...\tCtrl+U", [this] {
        if (unit_window_ == nullptr)
            unit_window_ = new UnitWindow(this, units(), [this](const core::UnitSelection& picked) {
                options_.settings.units = picked;
                apply(picked);
            });
        unit_window_->load(units());
        unit_window_->Show();
        unit_window_->Raise();
    });

    auto* const playing = new wxMenu;
    playing->AppendCheckItem(id_pause, "&Pause\tCtrl+P");
    Bind(
        wxEVT_MENU, [this](wxCommandEvent& event) { pause(event.IsChecked()); }, id_pause);
    add(*playing, id_step, "&Next message\tCtrl+T", [this] {
        if (player_ && player_->paused() && player_->is_paced()) traffic_->step();
    });
    add(*playing, id_faster, "&Faster\tCtrl++", [this] { player_bar_->change_speed(1); });
    add(*playing, id_slower, "&Slower\tCtrl+-", [this] { player_bar_->change_speed(-1); });

    auto* const help = new wxMenu;
    add(*help, id_keys, "&Keys\tF1", [this] { show_keys(); });
    add(*help, wxID_ABOUT, "&About", [this] {
        wxAboutDialogInfo info;
        info.SetName("PGN Vistel");
        info.SetVersion(PGN_VISTEL_VERSION);
        info.SetDescription("Shows the traffic of NMEA 2000 networks, live and decoded.");
        wxAboutBox(info, this);
    });

    auto* const bar = new wxMenuBar;
    bar->Append(file, "&File");
    bar->Append(edit, "&Edit");
    bar->Append(view, "&View");
    bar->Append(playing, "&Play");
    bar->Append(help, "&Help");
    menu_bar_ = bar;
    // Not before it is drawn: GTK allocates the menu bar of a window that is not there yet no room, and
    // warns.
    tree_->control().Bind(wxEVT_PAINT, [this](wxPaintEvent& event) {
        if (GetMenuBar() == nullptr)
            CallAfter([this] {
                if (GetMenuBar() == nullptr) SetMenuBar(menu_bar_);
            });
        event.Skip();
    });
    Bind(
        wxEVT_MENU,
        [this](wxCommandEvent& event) {
            const auto chosen = static_cast<std::size_t>(event.GetId() - id_recent);
            if (chosen < options_.settings.recent.size())
                open_or_tell(std::string(options_.settings.recent[chosen]));
        },
        id_recent, id_recent + static_cast<int>(Settings::most_recent));
    Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
        const bool is_searching = search_->HasFocus() || search_->IsDescendant(FindFocus());
        if (event.GetKeyCode() != WXK_ESCAPE || !is_searching) return event.Skip();
        search_->Clear();
        tree_->control().SetFocus();
    });
}

void MonitorWindow::place() {
    SetMinSize(FromDIP(wxSize(520, 360)));
    const wxRect& last = options_.settings.place;
    const int display = last.IsEmpty() ? wxNOT_FOUND : wxDisplay::GetFromPoint(last.GetPosition());
    const wxRect screen =
        wxDisplay(display != wxNOT_FOUND ? static_cast<unsigned>(display) : 0).GetClientArea();
    wxSize size = last.IsEmpty() ? FromDIP(wxSize(1280, 720)) : last.GetSize();
    size.IncTo(GetMinSize());
    size.DecTo(screen.GetSize());
    SetSize(size);
    if (display != wxNOT_FOUND && screen.Contains(wxRect(last.GetPosition(), size)))
        Move(last.GetPosition());
    else
        Centre();
    const auto& layout = options_.settings.layout;
    const auto known = layout.find("devices");
    sides_->SetSashPosition(known != layout.end() ? FromDIP(known->second)
                                                  : std::min(GetClientSize().x * 36 / 100, FromDIP(460)));
    sides_->SetSashGravity(0.2);
    device_table_->restore_widths(layout, "devices");
    if (options_.settings.is_maximised) Maximize();
}

void MonitorWindow::close() {
    timer_.Stop();
    end_recording();
    Settings& settings = options_.settings;
    settings.is_maximised = IsMaximized();
    if (!IsMaximized() && !IsIconized()) settings.place = GetRect();
    settings.order = order_->GetSelection();
    settings.layout["devices"] = ToDIP(sides_->GetSashPosition());
    device_table_->keep_widths(settings.layout, "devices");
    if (halves_->IsSplit()) {
        settings.layout["message"] = ToDIP(halves_->GetClientSize().y - halves_->GetSashPosition());
        message_->keep_layout(settings.layout);
    }
    if (!options_.settings_file.empty()) settings.save(options_.settings_file);
    if (options_.closed) options_.closed(player_.get());
}

// ---- sources ----

void MonitorWindow::play(std::unique_ptr<Player> player) {
    end_recording();
    tree_->show({});  // before its streams are gone
    player_ = std::move(player);
    traffic_ = std::make_unique<Traffic>(*player_);
    options_.play.speed = player_->options().speed;
    chosen_devices_.clear();
    told_problem_.clear();
    problems_->Dismiss();
    pause_->SetValue(false);
    menu_bar_->Check(id_pause, false);
    player_bar_->use(*player_);
    Layout();
    player_bar_->GetParent()->Layout();
    wxString title;
    std::string whole;
    for (const std::string& input : player_->options().input.names) {
        wxFileName path(wxString::FromUTF8(input));
        const bool is_file = path.FileExists() && path.MakeAbsolute();
        const wxString name = input == "-" ? wxString("standard input") : wxString::FromUTF8(input);
        if (!title.empty()) title << between;
        title << (is_file ? path.GetFullName() : name);
        if (!whole.empty()) whole += between;
        whole += is_file ? path.GetFullPath().ToStdString(wxConvUTF8) : input;
    }
    SetTitle(title + " - PGN Vistel");
    if (std::ranges::find(player_->options().input.names, "-") == player_->options().input.names.end())
        options_.settings.remember_source(whole);
    show_recent();
    options_.filter.bus.reset();
    show_buses();
    rebuild();
    show_frame();
    show_devices();
    show_status();
    timer_.Start(frame_interval_ms);
}

bool MonitorWindow::open(const std::string& names, std::string& error) {
    PlayOptions how = options_.play;
    how.input = InputOptions{};
    how.input.names = split(names);
    how.input.merge = options_.play.input.merge;
    auto next = std::make_unique<Player>(how);
    if (const auto opened = next->open(); !opened) {
        error = opened.error().text;
        return false;
    }
    play(std::move(next));
    return true;
}

void MonitorWindow::open_or_tell(const std::string& names) {
    if (std::string error; !open(names, error))
        wxMessageBox(wxString::FromUTF8(error), "Cannot be opened", wxOK | wxICON_ERROR, this);
}

void MonitorWindow::choose_source() {
    if (const std::string names = ask_for_source(this, options_.settings.recent); !names.empty())
        open_or_tell(names);
}

void MonitorWindow::show_recent() {
    while (recent_->GetMenuItemCount() > 0) recent_->Destroy(recent_->FindItemByPosition(0));
    int id = id_recent;
    for (const std::string& name : options_.settings.recent)
        recent_->Append(id++, wxControl::EscapeMnemonics(wxString::FromUTF8(name)));
}

// ---- what is shown ----

void MonitorWindow::show_frame() {
    ++frames_;
    traffic_->advance();
    take_new_streams();
    if (is_stale_) rebuild();
    tree_->refresh(traffic_->now(), !player_->paused());
    if (frames_ % frames_per_column == 1) {
        show_columns();
        show_message();
        player_bar_->refresh();
    }
    if (frames_ % frames_per_status == 0) {
        show_devices();
        show_status();
    }
}

bool MonitorWindow::admits(const Stream& stream) const {
    if (options_.filter.bus && *options_.filter.bus != stream.bus()) return false;
    const bool is_of_device = chosen_.empty() || chosen_.contains({stream.bus(), stream.msg().source});
    return is_of_device &&
           (options_.filter.is_empty() || options_.filter.admits(stream, units(), definitions()));
}

void MonitorWindow::take_new_streams() {
    const Streams& streams = traffic_->streams();
    const std::size_t known = streams_.size();
    const bool looks_again = !options_.filter.text.empty() && frames_ % frames_per_filter == 0;
    if (streams.size() == known && !looks_again) return;
    if (streams.size() != known) {
        streams_ = streams.select({}, StreamOrder::appearance, traffic_->now(), units(), definitions());
        is_shown_.resize(streams_.size());
    }
    std::vector<const Stream*> further;
    for (std::size_t i = looks_again ? 0 : known; i < streams_.size(); ++i)
        if (!is_shown_[i] && admits(*streams_[i])) {
            further.push_back(streams_[i]);
            is_shown_[i] = true;
        }
    if (further.empty()) return;
    if (order_->GetSelection() == static_cast<int>(StreamOrder::appearance))
        tree_->add(further);
    else
        is_stale_ = true;
}

void MonitorWindow::rebuild() {
    is_stale_ = false;
    if (!traffic_) return;
    const Streams& streams = traffic_->streams();
    streams_ = streams.select({}, StreamOrder::appearance, traffic_->now(), units(), definitions());
    is_shown_.assign(streams_.size(), false);
    auto chosen = streams.select({}, static_cast<StreamOrder>(order_->GetSelection()), traffic_->now(),
                                 units(), definitions());
    std::erase_if(chosen, [this](const Stream* stream) { return !admits(*stream); });
    for (const Stream* const stream : chosen) is_shown_[static_cast<std::size_t>(stream->order())] = true;
    tree_->show(chosen);
    tree_->refresh(traffic_->now(), false);
    show_columns();
}

void MonitorWindow::show_devices() {
    if (!traffic_ || (player_->paused() && !devices_.empty())) return;
    show_buses();
    devices_ = traffic_->devices();
    std::erase_if(devices_, [this](const DeviceRow& device) {
        return options_.filter.bus && device.bus != *options_.filter.bus;
    });
    device_table_->show_column(bus_column, has_several_buses(), title_column);
    std::vector<TextTable::Row> rows;
    titles_.clear();
    for (const DeviceRow& device : devices_) {
        const wxString title = wxString::FromUTF8(device.title);
        if (device.address) titles_[{device.bus, *device.address}] = title;
        rows.push_back({has_several_buses()
                            ? wxString::FromUTF8(short_bus(player_->bus_label(device.bus), widest_bus))
                            : wxString(),
                        device.address ? std::to_string(*device.address) : std::string(), title,
                        wxString::Format("%.1f", device.rate), wxString::FromUTF8(device.notes)});
    }
    // A device keeps being chosen wherever its row and its address went.
    is_choosing_ = true;
    device_table_->set_rows(std::move(rows));
    for (std::size_t i = 0; i < devices_.size(); ++i)
        device_table_->select(i, std::ranges::any_of(chosen_devices_, [&](const DeviceRow& chosen) {
                                  return is_same(chosen, devices_[i]);
                              }));
    is_choosing_ = false;
    choose_devices();
}

void MonitorWindow::choose_devices() {
    chosen_devices_.clear();
    std::set<Address> addresses;
    for (const std::size_t i : device_table_->selection()) {
        if (i >= devices_.size()) continue;
        chosen_devices_.push_back(devices_[i]);
        if (devices_[i].address) addresses.insert({devices_[i].bus, *devices_[i].address});
    }
    if (addresses == chosen_) return;
    chosen_ = std::move(addresses);
    rebuild();
    show_status();
}

void MonitorWindow::show_columns() {
    if (!traffic_) return;
    std::vector<StreamColumns::Line> lines;
    const PlayTime now = traffic_->now();
    for (const auto& [stream, area] : tree_->visible()) {
        const auto title = titles_.find({stream->bus(), stream->msg().source});
        wxString source = wxString::Format("%d", stream->msg().source);
        if (has_several_buses())
            source = wxString::FromUTF8(short_bus(bus_of(*stream), widest_bus)) + "  " + source;
        lines.push_back({area.y + area.height / 2, source,
                         title != titles_.end() ? title->second : wxString(), rate_text(stream->rate(now)),
                         age_text(now - stream->seen()), stream->is_silent(now)});
    }
    columns_->show(std::move(lines));
}

void MonitorWindow::show_message() {
    if (!halves_->IsSplit()) return;
    if (const Stream* const stream = tree_->selected(); stream != nullptr)
        message_->show(*stream, concat(stream->msg().source, bus_note(*stream)), units(), definitions());
}

/// Where there are several; else empty.
std::string MonitorWindow::bus_of(const Stream& stream) const {
    return has_several_buses() ? player_->bus_label(stream.bus()) : std::string();
}

/// Behind what is of one of several: " [can1]"
std::string MonitorWindow::bus_note(const Stream& stream) const {
    return has_several_buses() ? concat(" [", bus_of(stream), "]") : std::string();
}

void MonitorWindow::show_buses() {
    if (!player_) return;
    const std::size_t count = player_->bus_count();
    if (bus_->GetCount() == count + 1) return;
    while (bus_->GetCount() > 1) bus_->Delete(bus_->GetCount() - 1);
    for (std::size_t i = 0; i < count; ++i)
        bus_->Append(wxString::FromUTF8(player_->bus_label(static_cast<std::uint8_t>(i))));
    bus_->SetSelection(options_.filter.bus ? *options_.filter.bus + 1 : 0);
    bus_->Show(count > 1);
    bus_->GetParent()->Layout();
}

void MonitorWindow::show_losses() {
    if (loss_window_ != nullptr && player_) loss_window_->show(*player_, *traffic_);
}

wxString MonitorWindow::status() const {
    if (!player_) return "No source; Ctrl+O opens one";
    std::string text;
    const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : " · ") + part; };
    if (player_->paused()) add("PAUSED");
    if (player_->ended()) add("END");
    if (recorder_) add(concat("RECORDING ", recorder_->written()));
    if (!player_->notice().empty()) add(player_->notice());
    const std::size_t all = streams_.size();
    const auto add_part = [&add](std::size_t shown, std::size_t of, const char* what) {
        add(concat(shown < of ? concat(shown, " of ") : std::string(), of, what, of == 1 ? "" : "s"));
    };
    add_part(chosen_.empty() ? devices_.size() : chosen_.size(), devices_.size(), " device");
    add_part(tree_->size(), all, " stream");
    double rate = 0;
    for (std::size_t i = 0; i < all; ++i)
        if (is_shown_[i]) rate += streams_[i]->rate(traffic_->now());
    add(formatted("%.0f/s", rate));
    if (const auto share = traffic_->share_of_bus())
        add(formatted("%.1f %% of the ", 100 * *share) + (has_several_buses() ? "busiest bus" : "bus"));
    if (player_->can_seek()) add(formatted("%.0f %%", 100 * player_->place()));
    for (const std::string& part : losses_in_short(*player_, *traffic_)) add(part);
    return wxString::FromUTF8(text);
}

void MonitorWindow::show_status() {
    const wxString text = status();
    if (GetStatusBar()->GetStatusText() != text) SetStatusText(text);
    show_problems();
    if (recorder_) {
        recorder_->flush();
        if (!recorder_->failure().empty()) end_recording();
    }
    if (loss_window_ != nullptr && loss_window_->IsShown()) show_losses();
}

void MonitorWindow::show_problems() {
    if (!player_ || player_->first_problem() == told_problem_) return;
    told_problem_ = player_->first_problem();
    problems_->ShowMessage("The first error: " + wxString::FromUTF8(told_problem_), wxICON_WARNING);
}

// ---- what the user does ----

void MonitorWindow::pause(bool paused) {
    pause_->SetValue(paused);
    menu_bar_->Check(id_pause, paused);
    if (!traffic_) return;
    traffic_->pause(paused);
    // While a live source is paused the streams are others, of which there may be fewer.
    streams_ =
        traffic_->streams().select({}, StreamOrder::appearance, traffic_->now(), units(), definitions());
    tree_->rebind(streams_);
    is_shown_.resize(streams_.size());
    is_stale_ = is_stale_ || !paused;
    show_status();
}

void MonitorWindow::apply(core::UnitSelection units) {
    // Trees take the units of the text interface, which has no kelvin.
    if (units[core::quantity::temperature] == core::unit::kelvin)
        units.select(core::quantity::temperature, core::unit::celsius);
    units_ = units;
    tree_->set_units(units);
    if (!traffic_) return;
    tree_->refresh(traffic_->now(), false);
    show_message();
}

void MonitorWindow::show_everything() {
    options_.filter = {};
    bus_->SetSelection(0);
    search_->ChangeValue("");
    for (std::size_t i = 0; i < devices_.size(); ++i) device_table_->select(i, false);
    is_stale_ = true;
}

void MonitorWindow::show_context_menu(wxTreeEvent& event) {
    if (event.GetItem().IsOk()) tree_->control().SelectItem(event.GetItem());
    wxMenu menu;
    menu.Append(id_message, "Show &message");
    menu.AppendSeparator();
    menu.Append(id_copy_line, "&Copy line");
    menu.Append(id_copy_text, "Copy message as &text");
    menu.Append(id_copy_json, "Copy message as &JSON");
    menu.Append(id_copy_hex, "Copy message as &hex");
    menu.Append(id_copy_key, "Copy &key of the field");
    PopupMenu(&menu);
}

void MonitorWindow::open_message() {
    if (tree_->selected() == nullptr) return;
    if (!halves_->IsSplit()) {
        const auto& layout = options_.settings.layout;
        const auto known = layout.find("message");
        halves_->SplitHorizontally(halves_->GetWindow1(), message_,
                                   -FromDIP(known != layout.end() ? known->second : 240));
        message_->restore_layout(layout);
    }
    show_message();
    if (const auto field = tree_->selected_field()) message_->choose(*field);
}

void MonitorWindow::find_next() {
    if (!tree_->find_next(search_->GetValue()) && !search_->IsEmpty()) wxBell();
}

template <class Text>
void MonitorWindow::copy_of_stream(Text text) {
    if (const Stream* const stream = tree_->selected(); stream != nullptr)
        copy(wxString::FromUTF8(text(*stream)));
}

void MonitorWindow::copy_field_key() {
    if (const auto field = tree_->selected_field())
        copy_of_stream([&](const Stream& s) { return key_of_field(s.msg(), *field, definitions()); });
}

void MonitorWindow::save() {
    wxFileDialog chooser(this, "Save the expanded lines", wxEmptyString, "monitor.txt", "Text (*.txt)|*.txt",
                         wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (chooser.ShowModal() != wxID_OK) return;
    const wxString lines =
        tree_->visible_lines([this](const Stream& stream) { return wxString::FromUTF8(bus_note(stream)); });
    wxFile file;
    if (!file.Create(chooser.GetPath(), true) || !file.Write(lines, wxConvUTF8) || !file.Close())
        wxMessageBox("The file could not be written.", "Save", wxOK | wxICON_ERROR, this);
}

void MonitorWindow::record() {
    menu_bar_->Check(id_record, false);
    if (!player_) return;
    const std::vector<std::string> formats = written_formats();
    wxString kinds;
    for (const std::string& format : formats)
        kinds << (kinds.empty() ? "" : "|") << format << " (*." << format << ")|*." << format;
    wxFileDialog chooser(this, "Record what comes", wxEmptyString, "recording.candump", kinds,
                         wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    const auto usual = std::ranges::find(formats, "candump");
    chooser.SetFilterIndex(static_cast<int>(usual - formats.begin()));
    if (chooser.ShowModal() != wxID_OK) return;
    const std::string path = chooser.GetPath().ToStdString(wxConvUTF8);
    auto recorder = Recorder::open(path, formats.at(static_cast<std::size_t>(chooser.GetFilterIndex())),
                                   player_->options().input.names, definitions());
    if (!recorder) {
        wxMessageBox(wxString::FromUTF8(path + ": " + recorder.error().text), "Record", wxOK | wxICON_ERROR,
                     this);
        return;
    }
    recorder_ = std::move(*recorder);
    traffic_->record(recorder_.get());
    menu_bar_->Check(id_record, true);
    show_status();
}

void MonitorWindow::end_recording() {
    if (!recorder_) return;
    traffic_->record(nullptr);
    recorder_->flush();
    const std::unique_ptr<Recorder> ended = std::move(recorder_);
    menu_bar_->Check(id_record, false);
    if (!ended->failure().empty())
        problems_->ShowMessage(wxString::FromUTF8("Recording has ended: " + ended->failure()), wxICON_ERROR);
    else if (ended->refused() > 0)
        problems_->ShowMessage(
            wxString::FromUTF8(concat("Left out, since the format cannot hold them: ", ended->refused())),
            wxICON_WARNING);
}

void MonitorWindow::show_keys() {
    wxDialog dialog(this, wxID_ANY, "Keys");
    auto* const grid = new wxFlexGridSizer(2, FromDIP(wxSize(16, 4)));
    for (const Key& key : keys) {
        auto* const name = new wxStaticText(&dialog, wxID_ANY, key.key);
        name->SetFont(name->GetFont().Bold());
        grid->Add(name);
        grid->Add(new wxStaticText(&dialog, wxID_ANY, key.what));
    }
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(grid, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(12)));
    sizer->Add(dialog.CreateButtonSizer(wxOK), wxSizerFlags().Expand().Border());
    dialog.SetSizerAndFit(sizer);
    dialog.CentreOnParent();
    dialog.ShowModal();
}

}  // namespace vistel
