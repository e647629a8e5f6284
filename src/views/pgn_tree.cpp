#include "pgn_vistel/pgn_tree.h"

#include <wx/treectrl.h>

#include <memory>

#include "pgn_vistel/native_tree.h"
#include "pgn_vistel/stream_lines.h"
#include "platform/platform.h"
#include "views/stream_table.h"
#include "views/tree_control.h"

using namespace pgn_vistel;

namespace {

// Distances of a control to the edges of its parent's client area.
struct Anchor {
    int left = 0, top = 0, right_margin = 0, bottom_margin = 0;
};

}  // namespace

struct TreeState {
    std::unique_ptr<ToolkitTree> toolkit;  // one of the two is set
    std::unique_ptr<NativeTree> native;
    HWND native_parent = nullptr;
    CTreeCtrl* native_control = nullptr;
    Anchor anchor;
    std::unique_ptr<StreamTable> streams;
    QV_N2K_PGN_DB_c* db = nullptr;
    bool paused = false;
    bool expand_new = true;
    unsigned long display_flags = 0;

    /// Calls `act(control, line of the stream in it)` for each back end that there is.
    template <class Act>
    void for_each_back_end(StreamEntry& stream, Act act) {
        if (toolkit != nullptr) act(*toolkit, stream.toolkit_line);
        if (native != nullptr) act(*native, stream.native_line);
    }
};

PGN_VistelTree_c::PGN_VistelTree_c(HWND parent, CTreeCtrl* tree, unsigned long maxStreams,
                                   unsigned long flags) {
    init();
    state_->native_parent = parent;
    state_->native_control = tree;
    if (tree != nullptr) state_->native = std::make_unique<NativeTree>(*tree);
    assign(nullptr, maxStreams, flags);
}

PGN_VistelTree_c::PGN_VistelTree_c(wxWindow* parent, wxWindow* tree, unsigned long maxStreams,
                                   unsigned long flags)
    : PGN_VistelTree_c(parent, tree, nullptr, maxStreams, flags) {}

PGN_VistelTree_c::PGN_VistelTree_c(wxWindow*, wxWindow* tree, QV_N2K_PGN_DB_c* db, unsigned long maxStreams,
                                   unsigned long flags) {
    init();
    if (tree != nullptr) state_->toolkit = std::make_unique<ToolkitTree>(*static_cast<wxTreeCtrl*>(tree));
    assign(db, maxStreams, flags);
}

PGN_VistelTree_c::~PGN_VistelTree_c() {
    delete state_;
}

void PGN_VistelTree_c::init() {
    state_ = new TreeState;
}

void PGN_VistelTree_c::assign(QV_N2K_PGN_DB_c* db, unsigned long maxStreams, unsigned long flags) {
    state_->display_flags = flags;
    state_->streams = std::make_unique<StreamTable>(maxStreams);
    state_->db = db != nullptr ? db : &qv_n2k_pgn_db;
}

void PGN_VistelTree_c::OnInit() {
    state_->streams->clear();
    if (state_->toolkit != nullptr) state_->toolkit->prepare();
    if (state_->native != nullptr) {
        state_->native->prepare();
        const NativeRect& rect = state_->native_control->GetRect();
        const platform::Size size = platform::client_size(state_->native_parent);
        state_->anchor = {rect.left, rect.top, size.width - rect.right, size.height - rect.bottom};
    }
}

void PGN_VistelTree_c::OnSize() {
    if (state_->native == nullptr) return;
    const Anchor& a = state_->anchor;
    const platform::Size size = platform::client_size(state_->native_parent);
    state_->native_control->MoveWindow(
        {a.left, a.top, size.width - a.right_margin, size.height - a.bottom_margin});
}

void PGN_VistelTree_c::Pause(int paused) {
    state_->paused = paused != 0;
}

int PGN_VistelTree_c::ClearMsg() {
    if (state_->toolkit != nullptr) state_->toolkit->clear();
    if (state_->native != nullptr) state_->native->clear();
    state_->streams->clear();
    return 0;
}

int PGN_VistelTree_c::CollapseAll() {
    for (StreamEntry& stream : *state_->streams)
        state_->for_each_back_end(stream, [](TreeControl& tree, void* line) { tree.expand(line, false); });
    state_->expand_new = false;
    return 0;
}

int PGN_VistelTree_c::ExpandAll() {
    for (StreamEntry& stream : *state_->streams)
        state_->for_each_back_end(stream, [](TreeControl& tree, void* line) { tree.expand(line, true); });
    state_->expand_new = true;
    return 0;
}

QV_N2K_PGN_DB_c* PGN_VistelTree_c::GetDB() {
    return state_->db;
}

int PGN_VistelTree_c::SelectUnit(int dispDataType, int unit) {
    return state_->db->SelectUnit(dispDataType, unit);
}

int PGN_VistelTree_c::GetSelectUnit(int dispDataType) {
    return state_->db->GetSelectUnit(dispDataType);
}

int PGN_VistelTree_c::PutMsg(N2KMsg* msg) {
    if (state_->paused) return 2;
    const StreamKey key(*msg);
    StreamEntry* stream = state_->streams->find(key);
    const bool is_new = stream == nullptr;
    if (is_new) {
        stream = state_->streams->add(key);
        if (stream == nullptr) return -1;
        state_->for_each_back_end(
            *stream, [](TreeControl& tree, void*& line) { line = tree.append(nullptr, L"None"); });
    }

    const PgnDef* const pgn = find_pgn_def(msg->pgn);
    wchar_t label[line_size];
    print_stream_line(label, line_size, *msg, pgn);
    state_->for_each_back_end(*stream, [&](TreeControl& tree, void* line) { tree.set_text(line, label); });
    add_pgn_fields(const_cast<PgnDef*>(pgn), msg, wxTreeItemId(stream->toolkit_line),
                   static_cast<_TREEITEM*>(stream->native_line));
    if (is_new && state_->expand_new)
        state_->for_each_back_end(*stream, [](TreeControl& tree, void* line) { tree.expand(line, true); });
    return 0;
}

wxTreeItemId PGN_VistelTree_c::insert_child(const wchar_t* text, wxTreeItemId parent, wxTreeItemId cursor) {
    return wxTreeItemId(state_->toolkit->write(text, parent.GetID(), cursor.GetID()));
}

_TREEITEM* PGN_VistelTree_c::insert_child(const wchar_t* text, _TREEITEM* parent, _TREEITEM* cursor) {
    return static_cast<_TREEITEM*>(state_->native->write(text, parent, cursor));
}

void PGN_VistelTree_c::add_pgn_fields(void* pgnDef, N2KMsg* msg, wxTreeItemId item) {
    add_pgn_fields(pgnDef, msg, item, nullptr);
}

void PGN_VistelTree_c::add_pgn_fields(void* pgnDef, N2KMsg* msg, _TREEITEM* hItem) {
    add_pgn_fields(pgnDef, msg, wxTreeItemId(), hItem);
}

void PGN_VistelTree_c::add_pgn_fields(void* pgnDef, N2KMsg* msg, wxTreeItemId item, _TREEITEM* hItem) {
    ToolkitTree* const toolkit = state_->toolkit.get();
    NativeTree* const native = state_->native.get();
    wxTreeItemId toolkit_cursor(toolkit != nullptr ? toolkit->first_child(item.GetID()) : nullptr);
    auto* native_cursor = static_cast<_TREEITEM*>(native != nullptr ? native->first_child(hItem) : nullptr);

    wchar_t line[line_size];
    StreamLines lines(*state_->db, static_cast<const PgnDef*>(pgnDef), *msg, state_->display_flags);
    while (lines.next(line, line_size) >= 0) {
        if (toolkit != nullptr) toolkit_cursor = insert_child(line, item, toolkit_cursor);
        if (native != nullptr) native_cursor = insert_child(line, hItem, native_cursor);
    }
    // What is left over is from an earlier, longer message of the stream.
    if (toolkit != nullptr) toolkit->remove_from(toolkit_cursor.GetID());
    if (native != nullptr) native->remove_from(native_cursor);
}

int PGN_VistelTree_PutMsg(void* context, N2KMsg* msg) {
    return context != nullptr ? static_cast<PGN_VistelTree_c*>(context)->PutMsg(msg) : -1;
}
