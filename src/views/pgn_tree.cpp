#include "pgn_vistel/pgn_tree.h"

#include <wx/treectrl.h>

#include <new>
#include <optional>
#include <utility>

#include "contract/exported_entry.h"
#include "contract/field_text.h"
#include "contract/units.h"
#include "contract/values.h"
#include "pgn_vistel/core/render.h"
#include "pgn_vistel/native_tree.h"
#include "platform/platform.h"
#include "views/shown_line.h"
#include "views/stream_table.h"
#include "views/tree_control.h"

using namespace pgn_vistel;

// Hosts derive from it and hold it by value: the virtual table and the state.
static_assert(sizeof(PGN_VistelTree_c) == 2 * sizeof(void*));

namespace {

// Distances of a control to the edges of its parent's client area.
struct Anchor {
    int left = 0, top = 0, right_margin = 0, bottom_margin = 0;
};

}  // namespace

struct TreeState {
    int owners = 1;                      // copies of the tree; user-interface thread only, so no atomic
    std::optional<ToolkitTree> toolkit;  // at most one of the two
    std::optional<NativeTree> native;
    NativeWindow native_parent = nullptr;
    CTreeCtrl* native_control = nullptr;
    Anchor anchor;
    std::optional<StreamTable> streams;
    QV_N2K_PGN_DB_c* db = nullptr;
    bool paused = false;
    bool expand_new = true;
    unsigned long display_flags = 0;

    /// Calls `act(control, line of the stream in it)` for each back end that there is.
    template <class Act>
    void for_each_back_end(StreamEntry& stream, Act act) {
        if (toolkit) act(*toolkit, stream.toolkit_line);
        if (native) act(*native, stream.native_line);
    }

    /// A stream that was not seen before, with its line; null when there is no room for it.
    StreamEntry* add_stream(const StreamKey& key) {
        StreamEntry* const stream = streams->add(key);
        if (stream == nullptr) return nullptr;
        try {
            for_each_back_end(*stream,
                              [](TreeControl& tree, void*& line) { line = tree.append(nullptr, L"None"); });
        } catch (...) {
            // Without a line there is no stream.
            for_each_back_end(*stream, [](TreeControl& tree, void* line) {
                if (line != nullptr) tree.remove(line);
            });
            streams->take_back_last();
            throw;
        }
        return stream;
    }

    /// Calls `act(control)` for each back end that there is.
    template <class Act>
    void for_each_control(Act act) {
        if (toolkit) act(*toolkit);
        if (native) act(*native);
    }

    void expand_all(bool expanded) {
        for (StreamEntry& stream : *streams)
            for_each_back_end(stream, [&](TreeControl& tree, void* line) { tree.expand(line, expanded); });
        expand_new = expanded;
    }
};

namespace {

/// Runs an exported entry of the tree: in the library's module state, -1 where there was no memory for the
/// tree or for what the entry does. What it did to the controls shows when it returns.
template <class Act>
int entry(TreeState* state, Act act) noexcept {
    const ModuleGuard in_this_module;
    if (state == nullptr) return -1;
    const int result = contained(-1, [&] { return act(*state); });
    contained([&] { state->for_each_control([](TreeControl& tree) { tree.show_changes(); }); });
    return result;
}

TreeState* share(TreeState* state) {
    if (state != nullptr) ++state->owners;
    return state;
}

/// Frees the state where this was its last owner.
void release(TreeState* state) {
    const ModuleGuard in_this_module;
    if (state != nullptr && --state->owners == 0) delete state;
}

}  // namespace

PGN_VistelTree_c::PGN_VistelTree_c(NativeWindow parent, CTreeCtrl* tree, unsigned long maxStreams,
                                   unsigned long flags) {
    const ModuleGuard in_this_module;
    init();
    if (state_ == nullptr) return;
    state_->native_parent = parent;
    state_->native_control = tree;
    if (tree != nullptr) state_->native.emplace(*tree);
    assign(nullptr, maxStreams, flags);
}

PGN_VistelTree_c::PGN_VistelTree_c(wxWindow* parent, wxWindow* tree, unsigned long maxStreams,
                                   unsigned long flags)
    : PGN_VistelTree_c(parent, tree, nullptr, maxStreams, flags) {}

PGN_VistelTree_c::PGN_VistelTree_c(wxWindow*, wxWindow* tree, QV_N2K_PGN_DB_c* db, unsigned long maxStreams,
                                   unsigned long flags) {
    const ModuleGuard in_this_module;
    init();
    if (state_ == nullptr) return;
    if (tree != nullptr) state_->toolkit.emplace(*static_cast<wxTreeCtrl*>(tree));
    assign(db, maxStreams, flags);
}

PGN_VistelTree_c::PGN_VistelTree_c(const PGN_VistelTree_c& other) : state_(share(other.state_)) {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): what is shared first is not freed
PGN_VistelTree_c& PGN_VistelTree_c::operator=(const PGN_VistelTree_c& other) {
    release(std::exchange(state_, share(other.state_)));
    return *this;
}

PGN_VistelTree_c::~PGN_VistelTree_c() {
    release(state_);
}

void PGN_VistelTree_c::init() {
    state_ = new (std::nothrow) TreeState;
}

void PGN_VistelTree_c::assign(QV_N2K_PGN_DB_c* db, unsigned long maxStreams, unsigned long flags) {
    state_->display_flags = flags;
    state_->streams.emplace(maxStreams);
    state_->db = db != nullptr ? db : &qv_n2k_pgn_db;
}

void PGN_VistelTree_c::OnInit() {
    entry(state_, [](TreeState& state) {
        state.streams->clear();
        if (state.toolkit) state.toolkit->prepare();
        if (state.native) {
            state.native->prepare();
            const NativeRect& rect = state.native_control->GetRect();
            const platform::Size size = platform::client_size(state.native_parent);
            state.anchor = {rect.left, rect.top, size.width - rect.right, size.height - rect.bottom};
        }
        return 0;
    });
}

void PGN_VistelTree_c::OnSize() {
    entry(state_, [](TreeState& state) {
        if (!state.native) return 0;
        const Anchor& a = state.anchor;
        const platform::Size size = platform::client_size(state.native_parent);
        state.native_control->MoveWindow(
            {a.left, a.top, size.width - a.right_margin, size.height - a.bottom_margin});
        return 0;
    });
}

void PGN_VistelTree_c::Pause(int paused) {
    entry(state_, [&](TreeState& state) {
        state.paused = paused != 0;
        return 0;
    });
}

int PGN_VistelTree_c::ClearMsg() {
    return entry(state_, [](TreeState& state) {
        state.streams->clear();
        state.for_each_control([](TreeControl& tree) { tree.clear(); });
        return 0;
    });
}

int PGN_VistelTree_c::CollapseAll() {
    return entry(state_, [](TreeState& state) {
        state.expand_all(false);
        return 0;
    });
}

int PGN_VistelTree_c::ExpandAll() {
    return entry(state_, [](TreeState& state) {
        state.expand_all(true);
        return 0;
    });
}

QV_N2K_PGN_DB_c* PGN_VistelTree_c::GetDB() {
    return state_ != nullptr ? state_->db : nullptr;
}

int PGN_VistelTree_c::SelectUnit(int dispDataType, int unit) {
    return entry(state_, [&](TreeState& state) { return state.db->SelectUnit(dispDataType, unit); });
}

int PGN_VistelTree_c::GetSelectUnit(int dispDataType) {
    return entry(state_, [&](TreeState& state) { return state.db->GetSelectUnit(dispDataType); });
}

int PGN_VistelTree_c::PutMsg(N2KMsg* msg) {
    return entry(state_, [&](TreeState& state) {
        if (msg == nullptr) return -1;
        if (state.paused) return 2;
        const StreamKey key(*msg);
        StreamEntry* stream = state.streams->find(key);
        const bool is_new = stream == nullptr;
        if (is_new) stream = state.add_stream(key);
        if (stream == nullptr) return -1;

        const bool corrected = (state.display_flags & PGN_VISTEL_CORRECTED_DEFINITIONS) != 0;
        const core::PgnDef* const pgn =
            core::find_definition(corrected ? core::Definitions::corrected : core::Definitions::fixed, *msg);
        wchar_t label[core::line_size];
        core::print_stream_line(label, core::line_size, *msg, pgn);
        state.for_each_back_end(*stream, [&](TreeControl& tree, void* line) { tree.set_text(line, label); });
        add_pgn_fields(const_cast<core::PgnDef*>(pgn), msg, wxTreeItemId(stream->toolkit_line),
                       static_cast<_TREEITEM*>(stream->native_line));
        if (is_new && state.expand_new)
            state.for_each_back_end(*stream, [](TreeControl& tree, void* line) { tree.expand(line, true); });
        return 0;
    });
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
    ToolkitTree* const toolkit = state_->toolkit ? &*state_->toolkit : nullptr;
    NativeTree* const native = state_->native ? &*state_->native : nullptr;
    wxTreeItemId toolkit_cursor(toolkit != nullptr ? toolkit->first_child(item.GetID()) : nullptr);
    auto* native_cursor = static_cast<_TREEITEM*>(native != nullptr ? native->first_child(hItem) : nullptr);

    wchar_t line[core::line_size];
    core::StreamLines lines(static_cast<const core::PgnDef*>(pgnDef), *msg, SelectionAccess::of(*state_->db),
                            shared_scratch(), (state_->display_flags & plain_numbers) != 0);
    while (lines.next(line, core::line_size) >= 0) {
        make_fit(line);
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
