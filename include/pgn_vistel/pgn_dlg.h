#pragma once

/// @file
/// The monitor dialog.

#include <wx/button.h>
#include <wx/frame.h>
#include <wx/textctrl.h>
#include <wx/treectrl.h>

#include "pgn_vistel/export.h"
#include "pgn_vistel/n2k_msg.h"
#include "pgn_vistel/native.h"
#include "pgn_vistel/pgn_db.h"

class PGN_VistelTree_c;
class PGN_VistelUnitDlg_c;
class wxBitmapButton;
class wxBoxSizer;
class wxFocusCtrl_c;

/// The ready-made monitor window: Clear, Pause, a hexadecimal source filter and Unit above a monitor tree.
/// The host creates it, shows it and hands it every message; the user can only hide it, and the host deletes
/// it.
///
/// User-interface thread only. `db` null is the global database. `maxStreams` is the capacity of the tree.
/// `flags`: bit value 1 leaves the Unit button out; the others are those of the tree.
/// `pCreated`, where given, receives 1 when the window is built and 0 when it is destroyed, and must live as
/// long.
///
/// Nothing throws. Where the window cannot be built (no memory, a native handle that no window can be had
/// for) the created flag stays as it was and `PutMsg` gives -1.
class PGN_VISTEL_API PGN_VistelDlg_c : public wxFrame {
  public:
    /// No window yet: call `SetModule` where wanted, then a `Create`.
    PGN_VistelDlg_c();
    /// @{
    /// Under a toolkit window, or under none.
    PGN_VistelDlg_c(wxWindow* parent, unsigned long maxStreams, unsigned long flags);
    PGN_VistelDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams, unsigned long flags);
    PGN_VistelDlg_c(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, unsigned long maxStreams,
                    unsigned long flags);
    /// @}
    /// @{
    /// Under a native window. With a null handle nothing is built.
    PGN_VistelDlg_c(pgn_vistel::NativeWindow parent, unsigned long maxStreams, unsigned long flags);
    PGN_VistelDlg_c(pgn_vistel::NativeWindow parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams,
                    unsigned long flags);
    /// @}

    ~PGN_VistelDlg_c() override;

    /// @{
    /// Builds the window of an object that was constructed without one. Nothing where there is one already.
    void Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, int* pCreated, unsigned long maxStreams,
                unsigned long flags);
    void Create(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams, unsigned long flags);
    void Create(pgn_vistel::NativeWindow parent, unsigned long maxStreams, unsigned long flags);
    void Create(pgn_vistel::NativeWindow parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams,
                unsigned long flags);
    /// @}

    /// 0 shown or filtered out, 2 paused, -1 no room for a new stream, not created yet, or null.
    int PutMsg(N2KMsg* msg);
    /// The shape of a message callback, with the dialog as its context.
    static int s_PutMsg(void* context, N2KMsg* msg);

    int ClearMsg();     ///< Forgets all streams. 0, or -1 before `Create`
    int CollapseAll();  ///< Collapses the streams, new ones too. 0, or -1 before `Create`
    int ExpandAll();    ///< Expands the streams, new ones too. 0, or -1 before `Create`

    /// The module whose product name becomes the title at the next `Create`.
    void SetModule(pgn_vistel::NativeModule module);

    /// @{
    /// What the filter's text control tells of focus and Enter; `owner` is the dialog.
    static void s_OnTextSetfocus(wxWindow* owner, long id);
    static void s_OnTextKillfocus(wxWindow* owner, long id, const wxString& text);
    static void s_OnTextEnter(wxWindow* owner, long id, const wxString& text);
    /// @}

  protected:
    /// @{
    /// What the user does.
    virtual void OnClose(wxCloseEvent& event);
    virtual void OnButtonClear(wxCommandEvent& event);
    virtual void OnButtonPause(wxCommandEvent& event);
    virtual void OnButtonUnit(wxCommandEvent& event);
    virtual void OnTextSetfocus(long id);
    virtual void OnTextKillfocus(long id, const wxString& text);
    virtual void OnTextEnter(long id, const wxString& text);
    /// @}

  private:
    void init();
    void build(wxWindow* parent, QV_N2K_PGN_DB_c* db, unsigned long maxStreams);
    void build_controls();
    void lay_out();

    PGN_VistelTree_c* tree_ = nullptr;
    PGN_VistelUnitDlg_c* unit_dialog_ = nullptr;
    int paused_ = 0;
    unsigned char source_filter_ = 255;  // 255: all sources
    [[maybe_unused]] int reserved_ = 0;
    wxFocusCtrl_c* focus_watcher_ = nullptr;
    wxTreeCtrl tree_control_;
    wxBitmapButton* clear_button_ = nullptr;
    wxBitmapButton* pause_button_ = nullptr;
    wxButton unit_button_;
    wxTextCtrl filter_text_;
    wxBoxSizer* main_sizer_ = nullptr;
    wxBoxSizer* button_sizer_ = nullptr;
    unsigned long flags_ = 0;
    wxString title_;
    int* created_ = nullptr;
    pgn_vistel::NativeModule module_ = nullptr;
};
