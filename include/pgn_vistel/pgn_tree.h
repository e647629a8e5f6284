#pragma once

/// @file
/// The monitor tree.

#include "pgn_vistel/export.h"
#include "pgn_vistel/n2k_msg.h"
#include "pgn_vistel/native.h"
#include "pgn_vistel/pgn_db.h"

class wxTreeItemId;
class wxWindow;
struct TreeState;

/// Display flag of trees and monitor windows: messages are read by the corrected definitions, which follow
/// what devices send, with variants by manufacturer, function code and length.
constexpr unsigned long PGN_VISTEL_CORRECTED_DEFINITIONS = 4;

/// The monitor tree: one line for each stream of messages (PGN, source and up to four stream keys), beneath
/// it the source, the destination and the fields of the stream's latest message, rewritten in place.
///
/// Every call is made on the thread that owns the tree control; nothing is locked and nothing is posted. What
/// a call does shows without the toolkit's main loop. In texts of devices U+FFFD stands for control
/// characters and for what is no character.
///
/// Order of calls: construct, `OnInit`, then anything, then destroy. The tree control belongs to the caller
/// and outlives the object.
///
/// Nothing throws. An object that was constructed without memory for its state has no tree: its operations do
/// nothing and give -1, `GetDB` null. What there is no memory for later gives -1, too, and leaves the tree as
/// far as it came; the next message of the stream writes it anew.
class PGN_VISTEL_API PGN_VistelTree_c {
  public:
    /// On a native tree control. `maxStreams` is the number of streams kept; messages of further ones are
    /// refused. `flags` bit value 2: numbers without their hexadecimal form;
    /// `PGN_VISTEL_CORRECTED_DEFINITIONS`: what devices send instead of the catalogue of the text interface.
    PGN_VistelTree_c(pgn_vistel::NativeWindow parent, CTreeCtrl* tree, unsigned long maxStreams,
                     unsigned long flags);

    /// @{
    /// On a toolkit tree control (`tree` is a `wxTreeCtrl`). `db` null: the global database.
    PGN_VistelTree_c(wxWindow* parent, wxWindow* tree, unsigned long maxStreams, unsigned long flags);
    PGN_VistelTree_c(wxWindow* parent, wxWindow* tree, QV_N2K_PGN_DB_c* db, unsigned long maxStreams,
                     unsigned long flags);
    /// @}

    /// @{
    /// Copies are one tree: what is done to one is done to all, and the last one frees the streams.
    PGN_VistelTree_c(const PGN_VistelTree_c&);
    PGN_VistelTree_c& operator=(const PGN_VistelTree_c&);
    /// @}

    /// Frees the streams, unless a copy has them still; leaves the control's items alone.
    virtual ~PGN_VistelTree_c();

    /// Empties and prepares the control. Once before the first message; again to start over.
    void OnInit();

    /// Native form: keeps the control's distances to the edges of its parent, as `OnInit` found them.
    void OnSize();

    /// Not 0: messages are ignored from here on.
    void Pause(int paused);

    int ClearMsg();     ///< Forgets all streams. 0
    int CollapseAll();  ///< Collapses the streams, new ones too. 0
    int ExpandAll();    ///< Expands the streams, new ones too. 0

    QV_N2K_PGN_DB_c* GetDB();                    ///< The database that the tree decodes with
    int SelectUnit(int dispDataType, int unit);  ///< see `QV_N2K_PGN_DB_c`
    int GetSelectUnit(int dispDataType);         ///< see `QV_N2K_PGN_DB_c`

    /// Shows a message: 0 shown, 2 paused, -1 no room for a new stream, or null.
    int PutMsg(N2KMsg* msg);

  private:
    void init();
    void assign(QV_N2K_PGN_DB_c* db, unsigned long maxStreams, unsigned long flags);
    wxTreeItemId insert_child(const wchar_t* text, wxTreeItemId parent, wxTreeItemId cursor);
    _TREEITEM* insert_child(const wchar_t* text, _TREEITEM* parent, _TREEITEM* cursor);
    void add_pgn_fields(void* pgnDef, N2KMsg* msg, wxTreeItemId item);
    void add_pgn_fields(void* pgnDef, N2KMsg* msg, _TREEITEM* hItem);
    void add_pgn_fields(void* pgnDef, N2KMsg* msg, wxTreeItemId item, _TREEITEM* hItem);

    TreeState* state_;
};

/// The shape of a message callback, with the tree as its context. -1 for a null context.
PGN_VISTEL_API int PGN_VistelTree_PutMsg(void* context, N2KMsg* msg);
