#pragma once

/// @file
/// The unit selection.

#include <wx/button.h>
#include <wx/dialog.h>

#include "pgn_vistel/export.h"
#include "pgn_vistel/native.h"
#include "pgn_vistel/pgn_db.h"

class wxBoxSizer;
class wxComboBox;
struct UnitDlgState;

/// A small modeless dialog in which the user picks a unit for each quantity
/// (`pgn_vistel::core::quantity_rows`). It reads and writes the selection of a database. The user can only
/// hide it, by Close or Escape; its owner deletes it. On a screen that is too low for all rows, these scroll
/// above the buttons.
///
/// User-interface thread only. `db` null is the global database. `pCreated`, where given, receives 1 when the
/// window is built and 0 when it is destroyed, and must live as long. `flags` is kept and not used.
class PGN_VISTEL_API PGN_VistelUnitDlg_c : public wxDialog {
  public:
    /// No window yet; call a `Create`.
    PGN_VistelUnitDlg_c();
    /// @{
    /// Under a toolkit window.
    PGN_VistelUnitDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, int id, const wxString& title,
                        const wxPoint& pos, const wxSize& size, long style, unsigned long flags);
    PGN_VistelUnitDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, int id, const wxString& title,
                        const wxPoint& pos, const wxSize& size, long style, unsigned long flags);
    PGN_VistelUnitDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, unsigned long flags);
    PGN_VistelUnitDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long flags);
    /// @}
    /// Under a native window. Nothing is built for a null handle.
    PGN_VistelUnitDlg_c(pgn_vistel::NativeWindow parent, QV_N2K_PGN_DB_c* db, unsigned long flags);

    ~PGN_VistelUnitDlg_c() override;

    /// @{
    /// Builds the window of an object that was constructed without one. Nothing where there is one already.
    void Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, int id, const wxString& title,
                const wxPoint& pos, const wxSize& size, long style, unsigned long flags);
    void Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, unsigned long flags);
    void Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long flags);
    void Create(pgn_vistel::NativeWindow parent, QV_N2K_PGN_DB_c* db, unsigned long flags);
    /// @}

    /// Called after the user has applied a choice, on the same thread, inside the click.
    void AssignUnitChangeApply(void (*callback)());

  protected:
    /// @{
    /// What the user and the toolkit do.
    void OnShow(wxShowEvent& event);
    void OnInitDialog(wxInitDialogEvent& event);
    void OnClose(wxCloseEvent& event);
    void OnButtonApply(wxCommandEvent& event);
    void OnButtonLDF(wxCommandEvent& event);
    void OnButtonClose(wxCommandEvent& event);
    /// @}

  private:
    void init();
    void db2disp();
    void build();

    wxComboBox** choices_ = nullptr;  // one for each row, null beyond
    wxButton load_default_;
    wxButton apply_;
    wxButton close_;
    wxBoxSizer* main_sizer_ = nullptr;
    wxBoxSizer* button_sizer_ = nullptr;
    UnitDlgState* state_ = nullptr;
    int* created_ = nullptr;
};
