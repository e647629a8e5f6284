#include "monitor/window.h"

#include <wx/app.h>
#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/file.h>
#include <wx/filedlg.h>
#include <wx/filename.h>
#include <wx/menu.h>
#include <wx/msgdlg.h>
#include <wx/treectrl.h>

#include <algorithm>

#include "pgn_vistel/pgn_dlg.h"
#include "pgn_vistel/pgn_tree.h"

namespace vistel {

namespace {

constexpr unsigned long most_streams = 2000;
constexpr int frame_interval_ms = 100;  // quicker than the eye reads figures, and calm
constexpr unsigned frames_per_status = 5;

enum Command { id_open = wxID_HIGHEST + 1, id_save, id_copy, id_pause, id_expand, id_collapse };

wxTreeCtrl* tree_of(const wxWindow& window) {
    for (wxWindow* const child : window.GetChildren())
        if (auto* const tree = dynamic_cast<wxTreeCtrl*>(child)) return tree;
    return nullptr;
}

void append_visible(const wxTreeCtrl& tree, const wxTreeItemId& parent, const wxString& indent,
                    wxString& text) {
    wxTreeItemIdValue cookie;
    for (wxTreeItemId item = tree.GetFirstChild(parent, cookie); item.IsOk();
         item = tree.GetNextSibling(item)) {
        text << indent << tree.GetItemText(item) << '\n';
        if (tree.IsExpanded(item)) append_visible(tree, item, indent + "    ", text);
    }
}

}  // namespace

MonitorWindow::MonitorWindow(std::unique_ptr<Player> player)
    : dialog_(new PGN_VistelDlg_c(static_cast<wxWindow*>(nullptr), most_streams,
                                  player->options().definitions == pgn_vistel::core::Definitions::corrected
                                      ? PGN_VISTEL_CORRECTED_DEFINITIONS
                                      : 0)),
      tree_(tree_of(*dialog_)),
      player_(std::move(player)),
      timer_(this) {
    build_menu();
    dialog_->CreateStatusBar();
    dialog_->SetSize(dialog_->FromDIP(wxSize(640, 760)));
    show_source();
    dialog_->Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent&) {
        timer_.Stop();
        dialog_->Destroy();
        wxTheApp->ExitMainLoop();
    });
    Bind(wxEVT_TIMER, [this](wxTimerEvent&) { show_frame(); });
}

MonitorWindow::~MonitorWindow() = default;

void MonitorWindow::show() {
    dialog_->Show();
    timer_.Start(frame_interval_ms);
}

void MonitorWindow::build_menu() {
    auto* const file = new wxMenu;
    file->Append(id_open, "&Open...\tCtrl+O");
    file->Append(id_save, "&Save visible lines...\tCtrl+S");
    file->AppendSeparator();
    file->Append(wxID_EXIT, "&Quit\tCtrl+Q");
    auto* const view = new wxMenu;
    view->AppendCheckItem(id_pause, "&Pause playing\tCtrl+P");
    view->Append(id_expand, "&Expand all\tCtrl+E");
    view->Append(id_collapse, "&Collapse all\tCtrl+L");
    view->Append(id_copy, "Cop&y line\tCtrl+C");
    auto* const bar = new wxMenuBar;
    bar->Append(file, "&File");
    bar->Append(view, "&View");
    dialog_->SetMenuBar(bar);

    const auto on = [this](int id, auto act) {
        dialog_->Bind(
            wxEVT_MENU, [act](wxCommandEvent& e) { act(e); }, id);
    };
    on(id_open, [this](wxCommandEvent&) { choose_recording(); });
    on(id_save, [this](wxCommandEvent&) { save(); });
    on(id_copy, [this](wxCommandEvent&) { copy(); });
    on(id_pause, [this](wxCommandEvent& event) { player_->pause(event.IsChecked()); });
    on(id_expand, [this](wxCommandEvent&) { dialog_->ExpandAll(); });
    on(id_collapse, [this](wxCommandEvent&) { dialog_->CollapseAll(); });
    on(wxID_EXIT, [this](wxCommandEvent&) { dialog_->Close(); });
}

void MonitorWindow::on_message(const N2KMsg& msg, const RecordTime&, std::uint8_t, PlayTime now) {
    constexpr PlayTime time_stamp_unit = 10'000'000;
    N2KMsg stamped = msg;
    stamped.time_stamp = static_cast<std::uint32_t>(std::max<PlayTime>(0, now) / time_stamp_unit);
    if (latest_.put(stamped)) ++replaced_;
}

void MonitorWindow::show_frame() {
    player_->advance(*this);
    latest_.show_pending([this](N2KMsg& msg) {
        constexpr int dialog_is_paused = 2;
        const int result = dialog_->PutMsg(&msg);
        display_paused_ = result == dialog_is_paused;
        if (result < 0) ++refused_;
    });
    if (++frames_ % frames_per_status == 0) show_status();
}

void MonitorWindow::show_status() {
    const PlayCounters& c = player_->counters();
    wxString text = wxString::Format(
        "%llu messages, %llu of them replaced by later ones before they were shown",
        static_cast<unsigned long long>(c.messages), static_cast<unsigned long long>(replaced_));
    if (latest_.dropped() > 0)
        text << wxString::Format(", %llu dropped because of too many streams",
                                 static_cast<unsigned long long>(latest_.dropped()));
    if (c.problems > 0)
        text << wxString::Format(", %llu errors", static_cast<unsigned long long>(c.problems));
    if (refused_ > 0)
        text << wxString::Format(", %llu without room", static_cast<unsigned long long>(refused_));
    if (!player_->notice().empty())
        text << " - " << wxString::FromUTF8(player_->notice());
    else if (player_->ended())
        text << " - end";
    else if (player_->paused())
        text << " - paused";
    else if (display_paused_)
        text << " - display paused";
    if (dialog_->GetStatusBar()->GetStatusText() != text) dialog_->SetStatusText(text);
}

void MonitorWindow::show_source() {
    const std::string& file = player_->options().file;
    dialog_->SetTitle(
        (file == "-" ? wxString("standard input") : wxFileName(wxString::FromUTF8(file)).GetFullName()) +
        " - PGN Vistel");
}

void MonitorWindow::choose_recording() {
    wxFileDialog chooser(dialog_, "Open a recording", wxEmptyString, wxEmptyString,
                         wxFileSelectorDefaultWildcardStr, wxFD_OPEN | wxFD_FILE_MUST_EXIST);
    if (chooser.ShowModal() != wxID_OK) return;
    if (std::string error; !open(chooser.GetPath().ToStdString(wxConvUTF8), error))
        wxMessageBox(wxString::FromUTF8(error), "Cannot open the recording", wxOK | wxICON_ERROR, dialog_);
}

bool MonitorWindow::open(const std::string& file, std::string& error) {
    PlayOptions options = player_->options();
    options.file = file;
    options.format.clear();
    options.contents = ContentKind::as_it_seems;
    auto next = std::make_unique<Player>(options);
    if (const auto opened = next->open(); !opened) {
        error = opened.error().text;
        return false;
    }
    player_ = std::move(next);
    latest_.clear();
    replaced_ = refused_ = 0;
    dialog_->ClearMsg();
    dialog_->GetMenuBar()->Check(id_pause, false);
    show_source();
    return true;
}

void MonitorWindow::save() {
    wxFileDialog chooser(dialog_, "Save the visible lines", wxEmptyString, "monitor.txt",
                         "Text (*.txt)|*.txt", wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
    if (chooser.ShowModal() != wxID_OK) return;
    wxString text;
    append_visible(*tree_, tree_->GetRootItem(), "", text);
    wxFile file;
    if (!file.Create(chooser.GetPath(), true) || !file.Write(text, wxConvUTF8) || !file.Close())
        wxMessageBox("The file could not be written.", "Save", wxOK | wxICON_ERROR, dialog_);
}

void MonitorWindow::copy() {
    const wxTreeItemId item = tree_->GetSelection();
    if (!item.IsOk() || !wxTheClipboard->Open()) return;
    wxTheClipboard->SetData(new wxTextDataObject(tree_->GetItemText(item)));
    wxTheClipboard->Flush();
    wxTheClipboard->Close();
}

}  // namespace vistel
