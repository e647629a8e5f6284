#include "pgn_vistel/pgn_dlg.h"

#include <wx/bmpbuttn.h>
#include <wx/sizer.h>

#include "contract/exported_entry.h"
#include "pgn_vistel/core/units.h"
#include "pgn_vistel/pgn_tree.h"
#include "pgn_vistel/unit_dlg.h"
#include "platform/platform.h"
#include "views/focus_ctrl.h"
#include "views/images.h"

using namespace pgn_vistel;

// Hosts derive from it and hold it by value.
#if defined(_WIN32)
static_assert(sizeof(PGN_VistelDlg_c) == 2488);
#endif

namespace {

constexpr const char* fixed_title = "PGN Vistel";
constexpr unsigned long no_unit_button = 1;
constexpr unsigned char all_sources = 255;
constexpr long filter_field = 0;  // the watcher's index of the filter text

PGN_VistelDlg_c* dialog_of(wxWindow* owner) {
    return static_cast<PGN_VistelDlg_c*>(owner);
}

}  // namespace

PGN_VistelDlg_c::PGN_VistelDlg_c() {
    init();
}

PGN_VistelDlg_c::PGN_VistelDlg_c(wxWindow* parent, unsigned long maxStreams, unsigned long flags)
    : PGN_VistelDlg_c(parent, nullptr, nullptr, maxStreams, flags) {}

PGN_VistelDlg_c::PGN_VistelDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams,
                                 unsigned long flags)
    : PGN_VistelDlg_c(parent, db, nullptr, maxStreams, flags) {}

PGN_VistelDlg_c::PGN_VistelDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated,
                                 unsigned long maxStreams, unsigned long flags) {
    init();
    Create(parent, db, pCreated, maxStreams, flags);
}

PGN_VistelDlg_c::PGN_VistelDlg_c(NativeWindow parent, unsigned long maxStreams, unsigned long flags)
    : PGN_VistelDlg_c(parent, nullptr, maxStreams, flags) {}

PGN_VistelDlg_c::PGN_VistelDlg_c(NativeWindow parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams,
                                 unsigned long flags) {
    const ModuleGuard in_this_module;
    if (parent == nullptr) return;
    init();
    Create(parent, db, maxStreams, flags);
}

PGN_VistelDlg_c::~PGN_VistelDlg_c() {
    if (created_ != nullptr) *created_ = 0;
    delete unit_dialog_;
    delete tree_;
    delete focus_watcher_;
}

void PGN_VistelDlg_c::init() {
    unit_dialog_ = contained<PGN_VistelUnitDlg_c*>(nullptr, [] { return new PGN_VistelUnitDlg_c; });
}

void PGN_VistelDlg_c::Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, unsigned long maxStreams,
                             unsigned long flags) {
    if (GetHandle() != nullptr) return;  // it has a window
    flags_ = flags;
    created_ = pCreated;
    contained([&] { build(parent, db, maxStreams); });
}

void PGN_VistelDlg_c::build(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams) {
    if (!wxFrame::Create(parent, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize,
                         wxDEFAULT_FRAME_STYLE))
        return;
    platform::set_program_icon(*this);
    platform::let_tab_pass(*this);

    // A frame that looks like a dialog.
    auto* const model =
        new wxDialog(this, wxID_ANY, wxEmptyString, wxDefaultPosition, wxDefaultSize, wxDEFAULT_DIALOG_STYLE);
    SetBackgroundColour(model->GetBackgroundColour());
    model->Destroy();

    title_ = module_ != nullptr ? wxString(platform::product_name(module_)) : wxString(fixed_title);
    SetLabel(title_);

    build_controls();
    lay_out();

    tree_ = new PGN_VistelTree_c(this, &tree_control_, db, maxStreams, flags_);
    tree_->SelectUnit(core::quantity::duration, core::unit::minutes);
    tree_->CollapseAll();  // new streams appear collapsed
    tree_->OnInit();

    if (unit_dialog_ != nullptr)
        unit_dialog_->Create(this, tree_->GetDB(), nullptr, wxID_ANY, "Unit Selection", wxDefaultPosition,
                             wxDefaultSize, wxDEFAULT_DIALOG_STYLE | wxSTAY_ON_TOP, 0);
    if (created_ != nullptr) *created_ = 1;
}

void PGN_VistelDlg_c::build_controls() {
    focus_watcher_ = new wxFocusCtrl_c(this);
    focus_watcher_->on_set_focus = s_OnTextSetfocus;
    focus_watcher_->on_kill_focus = s_OnTextKillfocus;
    focus_watcher_->on_enter = s_OnTextEnter;

    constexpr int button_side = 30;
    const wxSize button_size(button_side, button_side);
    clear_button_ = new wxBitmapButton(this, wxID_ANY, clear_image(), wxDefaultPosition, button_size);
    pause_button_ = new wxBitmapButton(this, wxID_ANY, pause_image(), wxDefaultPosition, button_size);

    platform::remove_padding(*clear_button_);
    platform::remove_padding(*pause_button_);

    // A control of one line goes by its own style, on Windows by the one that it is made with.
    focus_watcher_->create_field(&filter_text_, 0, 0, "FF", wxDefaultSize, wxTE_CENTRE);
    wxTextAttr centred = filter_text_.GetDefaultStyle();
    centred.SetAlignment(wxTEXT_ALIGNMENT_CENTRE);
    filter_text_.SetDefaultStyle(centred);
    filter_text_.SetStyle(0, 3, centred);

    clear_button_->SetToolTip("Clear data display");
    pause_button_->SetToolTip("Pause data display");
    clear_button_->Bind(wxEVT_BUTTON, &PGN_VistelDlg_c::OnButtonClear, this);
    pause_button_->Bind(wxEVT_BUTTON, &PGN_VistelDlg_c::OnButtonPause, this);
    if ((flags_ & no_unit_button) == 0) {
        unit_button_.Create(this, wxID_ANY, "Unit");
        unit_button_.Bind(wxEVT_BUTTON, &PGN_VistelDlg_c::OnButtonUnit, this);
    }
    tree_control_.Create(this, wxID_ANY, wxDefaultPosition, wxSize(320, 300),
                         wxTR_HAS_BUTTONS | wxTR_LINES_AT_ROOT);
    Bind(wxEVT_CLOSE_WINDOW, &PGN_VistelDlg_c::OnClose, this);
}

void PGN_VistelDlg_c::lay_out() {
    constexpr int gap = 10;
    button_sizer_ = new wxBoxSizer(wxHORIZONTAL);
    button_sizer_->Add(clear_button_);
    button_sizer_->Add(pause_button_);
    button_sizer_->AddSpacer(gap);
    button_sizer_->Add(&filter_text_, 0, wxALIGN_CENTER_VERTICAL);
    button_sizer_->AddSpacer(gap);
    button_sizer_->AddStretchSpacer(1);
    if ((flags_ & no_unit_button) == 0) button_sizer_->Add(&unit_button_);
    main_sizer_ = new wxBoxSizer(wxVERTICAL);
    main_sizer_->Add(button_sizer_, 0, wxEXPAND, 2);
    main_sizer_->Add(&tree_control_, 1, wxEXPAND | wxFIXED_MINSIZE, 2);
    SetSizer(main_sizer_);
    main_sizer_->Fit(this);
}

void PGN_VistelDlg_c::Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams,
                             unsigned long flags) {
    Create(parent, db, created_, maxStreams, flags);
}

void PGN_VistelDlg_c::Create(NativeWindow parent, unsigned long maxStreams, unsigned long flags) {
    const ModuleGuard in_this_module;
    Create(parent, nullptr, maxStreams, flags);
}

void PGN_VistelDlg_c::Create(NativeWindow parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams,
                             unsigned long flags) {
    const ModuleGuard in_this_module;
    if (GetHandle() != nullptr) return;
    wxWindow* const stand_in =
        contained<wxWindow*>(nullptr, [&] { return platform::wrap_native_window(parent); });
    if (stand_in == nullptr) return;
    Create(stand_in, db, maxStreams, flags);
    if (GetHandle() != nullptr) platform::keep_above(*this, parent);
}

int PGN_VistelDlg_c::PutMsg(N2KMsg* msg) {
    if (tree_ == nullptr || msg == nullptr) return -1;
    if (source_filter_ != all_sources && source_filter_ != msg->source) return 0;
    return tree_->PutMsg(msg);
}

int PGN_VistelDlg_c::s_PutMsg(void* context, N2KMsg* msg) {
    return context != nullptr ? static_cast<PGN_VistelDlg_c*>(context)->PutMsg(msg) : -1;
}

int PGN_VistelDlg_c::ClearMsg() {
    return tree_ != nullptr ? tree_->ClearMsg() : -1;
}

int PGN_VistelDlg_c::CollapseAll() {
    return tree_ != nullptr ? tree_->CollapseAll() : -1;
}

int PGN_VistelDlg_c::ExpandAll() {
    return tree_ != nullptr ? tree_->ExpandAll() : -1;
}

void PGN_VistelDlg_c::SetModule(NativeModule module) {
    module_ = module;
}

void PGN_VistelDlg_c::OnClose(wxCloseEvent&) {
    if (GetHandle() != nullptr) Hide();
}

void PGN_VistelDlg_c::OnButtonClear(wxCommandEvent&) {
    ClearMsg();
}

void PGN_VistelDlg_c::OnButtonPause(wxCommandEvent&) {
    if (tree_ == nullptr || tree_->GetDB() == nullptr) return;  // or it has no memory
    contained([&] {
        paused_ = paused_ == 0 ? 1 : 0;
        tree_->Pause(paused_);
        pause_button_->SetLabel(paused_ != 0 ? "Continue" : "Pause");
    });
}

void PGN_VistelDlg_c::OnButtonUnit(wxCommandEvent&) {
    const bool is_built = unit_dialog_ != nullptr && unit_dialog_->GetHandle() != nullptr;
    if (is_built) contained([&] { unit_dialog_->Show(true); });
}

void PGN_VistelDlg_c::OnTextSetfocus(long) {}

void PGN_VistelDlg_c::OnTextKillfocus(long id, const wxString& text) {
    OnTextEnter(id, text);
}

void PGN_VistelDlg_c::OnTextEnter(long id, const wxString&) {
    if (tree_ == nullptr || id != filter_field) return;
    contained([&] {
        wxLongLong_t address;  // of one width on every platform
        if (!filter_text_.GetLineText(0).ToLongLong(&address, 16)) return;
        source_filter_ = static_cast<unsigned char>(address > all_sources ? all_sources : address & 0xFF);
    });
}

void PGN_VistelDlg_c::s_OnTextSetfocus(wxWindow* owner, long id) {
    dialog_of(owner)->OnTextSetfocus(id);
}

void PGN_VistelDlg_c::s_OnTextKillfocus(wxWindow* owner, long id, const wxString& text) {
    dialog_of(owner)->OnTextKillfocus(id, text);
}

void PGN_VistelDlg_c::s_OnTextEnter(wxWindow* owner, long id, const wxString& text) {
    dialog_of(owner)->OnTextEnter(id, text);
}
