#include "pgn_vistel/unit_dlg.h"

#include <wx/combobox.h>
#include <wx/display.h>
#include <wx/scrolwin.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include "contract/exported_entry.h"
#include "pgn_vistel/core/units.h"
#include "platform/platform.h"

using namespace pgn_vistel;
using namespace pgn_vistel::core;

// Hosts derive from it and hold it by value.
#if defined(_WIN32)
static_assert(sizeof(PGN_VistelUnitDlg_c) == 1768);
#endif

struct UnitDlgState {
    QV_N2K_PGN_DB_c* db = nullptr;
    unsigned long flags = 0;
    void (*apply_callback)() = nullptr;
};

namespace {

constexpr const char* default_title = "Unit Selection";
constexpr long default_style = wxDEFAULT_DIALOG_STYLE | wxSTAY_ON_TOP;
constexpr std::size_t choice_slots = quantity::count;
constexpr int choice_id = 48;  // of every row

/// The unit at a position of a quantity's list, or -1 beyond its end.
UnitId unit_at(DispDataType quantity, int position) {
    const UnitId* const units = available_units(quantity);
    for (int i = 0; units[i] < unit::count; ++i)
        if (i == position) return units[i];
    return -1;
}

/// Height that a window can have on its screen.
int most_height(const wxWindow& window) {
    constexpr int title_bar = 40;  // it has none as long as it is hidden
    const int screen = wxDisplay::GetFromWindow(window.GetParent() != nullptr ? window.GetParent() : &window);
    return wxDisplay(screen != wxNOT_FOUND ? static_cast<unsigned>(screen) : 0).GetClientArea().height -
           title_bar;
}

/// Lets the rows of a dialog scroll above the rest of it, in a dialog of this height.
void scroll(wxWindow& dialog, wxSizer& main_sizer, wxSizer& rows, int height) {
    constexpr int step = 10, border = 5;
    auto* const area = new wxScrolledWindow(&dialog, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxVSCROLL);
    main_sizer.Detach(&rows);
    for (const wxSizerItem* const item : rows.GetChildren()) item->GetWindow()->Reparent(area);
    area->SetSizer(&rows);
    area->SetScrollRate(0, step);
    area->MoveBeforeInTabOrder(dialog.GetChildren().front());
    const wxSize size = rows.GetMinSize();
    area->SetMinSize(wxSize(size.x + wxSystemSettings::GetMetric(wxSYS_VSCROLL_X, area), step));
    main_sizer.Insert(0, area, 1, wxEXPAND | wxALL, border);
    dialog.SetSize(main_sizer.ComputeFittingWindowSize(&dialog).x, height);
    area->FitInside();
}

/// Calls `act(quantity, its choice)` for each row that is built.
template <class Act>
void for_each_row(wxComboBox* const* choices, Act act) {
    for (const QuantityRow& row : quantity_rows()) {
        if (choices == nullptr || *choices == nullptr) return;
        act(row.quantity, **choices++);
    }
}

}  // namespace

PGN_VistelUnitDlg_c::PGN_VistelUnitDlg_c() {
    init();
}

PGN_VistelUnitDlg_c::PGN_VistelUnitDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, int id,
                                         const wxString& title, const wxPoint& pos, const wxSize& size,
                                         long style, unsigned long flags) {
    init();
    Create(parent, db, pCreated, id, title, pos, size, style, flags);
}

PGN_VistelUnitDlg_c::PGN_VistelUnitDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, int id, const wxString& title,
                                         const wxPoint& pos, const wxSize& size, long style,
                                         unsigned long flags)
    : PGN_VistelUnitDlg_c(parent, db, nullptr, id, title, pos, size, style, flags) {}

PGN_VistelUnitDlg_c::PGN_VistelUnitDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated,
                                         unsigned long flags) {
    init();
    Create(parent, db, pCreated, flags);
}

PGN_VistelUnitDlg_c::PGN_VistelUnitDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long flags)
    : PGN_VistelUnitDlg_c(parent, db, nullptr, flags) {}

PGN_VistelUnitDlg_c::PGN_VistelUnitDlg_c(NativeWindow parent, QV_N2K_PGN_DB_c* db, unsigned long flags) {
    const ModuleGuard in_this_module;
    if (parent == nullptr) return;
    init();
    Create(parent, db, flags);
}

PGN_VistelUnitDlg_c::~PGN_VistelUnitDlg_c() {
    if (created_ != nullptr) *created_ = 0;
    for (std::size_t i = 0; choices_ != nullptr && i < choice_slots; ++i) delete choices_[i];
    delete[] choices_;
    delete state_;
}

void PGN_VistelUnitDlg_c::init() {
    state_ = new (std::nothrow) UnitDlgState;
    created_ = nullptr;
}

void PGN_VistelUnitDlg_c::Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, int id,
                                 const wxString& title, const wxPoint& pos, const wxSize& size, long style,
                                 unsigned long flags) {
    if (GetHandle() != nullptr) return;  // it has a window
    created_ = pCreated;
    if (state_ == nullptr) return;
    state_->flags = flags;
    state_->db = db != nullptr ? db : &qv_n2k_pgn_db;
    contained([&] {
        if (wxDialog::Create(parent, id, title, pos, size, style)) build();
    });
}

void PGN_VistelUnitDlg_c::build() {
    choices_ = new wxComboBox* [choice_slots] {};
    auto* const grid = new wxFlexGridSizer(static_cast<int>(choice_slots), 2, 2, 5);
    std::size_t slot = 0;
    for (const QuantityRow& row : quantity_rows()) {
        grid->Add(new wxStaticText(this, wxID_ANY, row.label), 0, wxALIGN_CENTER_VERTICAL | wxLEFT, 5);
        auto* const choice =
            new wxComboBox(this, choice_id, wxEmptyString, wxDefaultPosition, wxDefaultSize, 0, nullptr, 0);
        choices_[slot++] = choice;
        for (const UnitId* unit = available_units(row.quantity); *unit < unit::count; ++unit)
            choice->Append(unit_name(*unit));
        grid->Add(choice, 1, wxEXPAND | wxALIGN_CENTER_VERTICAL, 0);
    }
    db2disp();

    load_default_.Create(this, wxID_ANY, "Load default");
    apply_.Create(this, wxID_ANY, "Apply");
    close_.Create(this, wxID_ANY, "Close");
    load_default_.Bind(wxEVT_BUTTON, &PGN_VistelUnitDlg_c::OnButtonLDF, this);
    apply_.Bind(wxEVT_BUTTON, &PGN_VistelUnitDlg_c::OnButtonApply, this);
    close_.Bind(wxEVT_BUTTON, &PGN_VistelUnitDlg_c::OnButtonClose, this);
    Bind(wxEVT_CLOSE_WINDOW, &PGN_VistelUnitDlg_c::OnClose, this);
    Bind(wxEVT_INIT_DIALOG, &PGN_VistelUnitDlg_c::OnInitDialog, this);
    Bind(wxEVT_SHOW, &PGN_VistelUnitDlg_c::OnShow, this);

    constexpr int all_free_width = 8192;  // so that the buttons stand at the right
    button_sizer_ = new wxBoxSizer(wxHORIZONTAL);
    button_sizer_->Add(0, 0, all_free_width);
    for (wxButton* const button : {&load_default_, &apply_, &close_})
        button_sizer_->Add(button, 0, wxALIGN_CENTER_VERTICAL, 0);
    main_sizer_ = new wxBoxSizer(wxVERTICAL);
    main_sizer_->Add(grid, 0, wxEXPAND | wxALL, 5);
    main_sizer_->Add(button_sizer_, 0, wxEXPAND | wxALL, 2);
    SetSizer(main_sizer_);
    const int room = most_height(*this);
    if (main_sizer_->ComputeFittingWindowSize(this).y > room)
        scroll(*this, *main_sizer_, *grid, room);
    else
        main_sizer_->Fit(this);
    SetEscapeId(close_.GetId());

    if (created_ != nullptr) *created_ = 1;
}

void PGN_VistelUnitDlg_c::Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, unsigned long flags) {
    Create(parent, db, pCreated, wxID_ANY, default_title, wxDefaultPosition, wxDefaultSize, default_style,
           flags);
}

void PGN_VistelUnitDlg_c::Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long flags) {
    Create(parent, db, nullptr, flags);
}

void PGN_VistelUnitDlg_c::Create(NativeWindow parent, QV_N2K_PGN_DB_c* db, unsigned long flags) {
    const ModuleGuard in_this_module;
    if (GetHandle() != nullptr) return;
    wxWindow* const stand_in =
        contained<wxWindow*>(nullptr, [&] { return platform::wrap_native_window(parent); });
    if (stand_in == nullptr) return;
    Create(stand_in, db, flags);
    if (GetHandle() != nullptr) platform::keep_above(*this, parent);
}

void PGN_VistelUnitDlg_c::AssignUnitChangeApply(void (*callback)()) {
    if (state_ != nullptr) state_->apply_callback = callback;
}

void PGN_VistelUnitDlg_c::db2disp() {
    for_each_row(choices_, [this](DispDataType quantity, wxComboBox& choice) {
        const int selected = state_->db->GetSelectUnit(quantity);
        for (int i = 0; unit_at(quantity, i) >= 0; ++i)
            if (unit_at(quantity, i) == selected) return choice.SetSelection(i);
    });
}

void PGN_VistelUnitDlg_c::OnShow(wxShowEvent& event) {
    event.Skip();
    contained([&] { db2disp(); });
}

void PGN_VistelUnitDlg_c::OnInitDialog(wxInitDialogEvent&) {}

void PGN_VistelUnitDlg_c::OnClose(wxCloseEvent&) {
    if (GetHandle() != nullptr) Hide();
}

void PGN_VistelUnitDlg_c::OnButtonClose(wxCommandEvent&) {
    wxCloseEvent close;
    OnClose(close);
}

void PGN_VistelUnitDlg_c::OnButtonApply(wxCommandEvent&) {
    int applied = 0;
    for_each_row(choices_, [&](DispDataType quantity, const wxComboBox& choice) {
        // A text that was typed is no selection; its row keeps its unit.
        const UnitId unit = unit_at(quantity, choice.GetSelection());
        if (unit < 0) return;
        state_->db->SelectUnit(quantity, unit);
        ++applied;
    });
    if (applied > 0 && state_->apply_callback != nullptr) state_->apply_callback();
}

void PGN_VistelUnitDlg_c::OnButtonLDF(wxCommandEvent&) {
    if (state_ == nullptr || state_->db == nullptr) return;
    // The defaults are those of the first eight quantities; the others keep what the user chose.
    for (DispDataType q = 0; q <= quantity::elevation; ++q) state_->db->SelectUnit(q, *available_units(q));
    db2disp();
}
