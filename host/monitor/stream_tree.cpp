#include "monitor/stream_tree.h"

#include <wx/wupdlock.h>

#include <algorithm>
#include <utility>

#include "monitor/colours.h"

namespace vistel {

namespace core = pgn_vistel::core;

namespace {

constexpr long style = wxTR_HAS_BUTTONS | wxTR_LINES_AT_ROOT | wxTR_NO_LINES | wxTR_HIDE_ROOT |
                       wxTR_FULL_ROW_HIGHLIGHT | wxTR_SINGLE;

/// Until which frame a glow is how strong.
struct GlowStep {
    unsigned until;
    double strength;
};
constexpr GlowStep glow_steps[] = {{4, 1}, {7, 0.6}, {10, 0.3}};

}  // namespace

StreamTree::StreamTree(wxWindow& parent, core::Definitions definitions)
    : control_(new wxTreeCtrl(&parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, style)),
      flags_(definitions == core::Definitions::corrected ? PGN_VISTEL_CORRECTED_DEFINITIONS : 0) {
    add_tree(0);
    clear();
    control_->Bind(wxEVT_TREE_DELETE_ITEM, &StreamTree::forget, this);
}

void StreamTree::add_tree(std::uint8_t bus) {
    trees_.try_emplace(bus, control_->GetParent(), control_, Streams::most, flags_);
}

void StreamTree::clear() {
    for (auto& [bus, tree] : trees_) {
        tree.OnInit();
        if (expands_new_)
            tree.ExpandAll();
        else
            tree.CollapseAll();
    }
    control_->SetWindowStyleFlag(style);  // the library's trees have one of their own
}

void StreamTree::forget(wxTreeEvent& event) {
    glowing_.erase(event.GetItem().GetID());
    event.Skip();
}

void StreamTree::set_units(const core::UnitSelection& units) {
    for (core::DispDataType q = 0; q < core::quantity::count; ++q)
        trees_.begin()->second.SelectUnit(q, units[q]);  // all have one selection
    for (Row& row : rows_) row.is_stale = true;
}

template <class Act>
void StreamTree::for_each_field(const wxTreeItemId& item, Act act) const {
    wxTreeItemIdValue cookie;
    for (wxTreeItemId line = control_->GetFirstChild(item, cookie); line.IsOk();
         line = control_->GetNextSibling(line))
        act(line);
}

// ---- rows ----

void StreamTree::append(const Stream& stream) {
    Row row{&stream, stream.order()};
    put(row);
    wxTreeItemIdValue cookie;
    const wxTreeItemId added = last_.IsOk() ? control_->GetNextSibling(last_)
                                            : control_->GetFirstChild(control_->GetRootItem(), cookie);
    if (added.IsOk()) {
        row.item = last_ = added;
        row_by_item_[added.GetID()] = rows_.size();
        lines_.push_back(rows_.size());
        if (const auto known = is_expanded_.find(row.order);
            known != is_expanded_.end() && known->second != control_->IsExpanded(added))
            control_->Toggle(added);
    }
    rows_.push_back(row);
}

void StreamTree::add(const std::vector<const Stream*>& streams) {
    if (streams.empty()) return;
    const auto is_new = [this](const Stream* stream) { return !trees_.contains(stream->bus()); };
    if (std::ranges::any_of(streams, is_new)) {
        // A tree of its own begins with an empty control.
        std::vector<const Stream*> all;
        for (const Row& row : rows_) all.push_back(row.stream);
        all.insert(all.end(), streams.begin(), streams.end());
        return show(all);
    }
    const wxWindowUpdateLocker still(control_);  // laid out once for all
    for (const Stream* const stream : streams) append(*stream);
}

void StreamTree::remember_expanded() {
    for (const Row& row : rows_)
        if (row.item.IsOk()) is_expanded_[row.order] = control_->IsExpanded(row.item);
}

void StreamTree::show(const std::vector<const Stream*>& streams) {
    remember_expanded();
    if (streams.empty()) is_expanded_.clear();
    for (const Stream* const stream : streams) add_tree(stream->bus());
    const Row* const row = row_of(control_->GetSelection());
    const std::uint64_t chosen = row != nullptr ? row->order : Streams::most;
    rows_.clear();
    lines_.clear();
    row_by_item_.clear();
    last_ = {};
    glowing_.clear();
    clear();
    add(streams);
    const auto again = std::ranges::find(rows_, chosen, &Row::order);
    if (again == rows_.end() || !again->item.IsOk()) return;
    control_->SelectItem(again->item);
    control_->EnsureVisible(again->item);
}

void StreamTree::rebind(const std::vector<const Stream*>& streams) {
    for (Row& row : rows_)
        if (row.order < streams.size()) row.stream = streams[static_cast<std::size_t>(row.order)];
}

void StreamTree::put(Row& row) {
    constexpr PlayTime time_stamp_unit = 10'000'000;
    N2KMsg msg = row.stream->msg();
    msg.time_stamp = static_cast<std::uint32_t>(std::max<PlayTime>(0, row.stream->seen()) / time_stamp_unit);
    trees_.at(row.stream->bus()).PutMsg(&msg);
    row.shown = row.stream->count();
    row.is_stale = false;
}

void StreamTree::complete() {
    const wxWindowUpdateLocker still(control_);
    for (Row& row : rows_)
        if (row.is_stale || row.shown != row.stream->count()) put(row);
}

// ---- what can be seen ----

wxTreeItemId StreamTree::root_line(wxTreeItemId item) const {
    const wxTreeItemId root = control_->GetRootItem();
    for (wxTreeItemId above = item; above.IsOk() && above != root; above = control_->GetItemParent(above))
        item = above;
    return item;
}

const StreamTree::Row* StreamTree::row_of(wxTreeItemId item) const {
    if (!item.IsOk()) return nullptr;
    const auto found = row_by_item_.find(root_line(item).GetID());
    return found != row_by_item_.end() ? &rows_[found->second] : nullptr;
}

// Asking the control what lies at a point would have it look at every line above.
std::pair<std::size_t, std::size_t> StreamTree::seen_rows() const {
    const auto first_from = [this](int y) {
        return std::ranges::partition_point(lines_, [&](std::size_t row) {
            wxRect area;
            return control_->GetBoundingRect(rows_[row].item, area) && area.y < y;
        });
    };
    auto from = first_from(1);
    if (from != lines_.begin()) --from;  // its fields may reach into sight
    const auto to = first_from(control_->GetClientSize().y);
    if (from == to) return {0, 0};
    return {*from, *std::prev(to) + 1};
}

std::vector<StreamTree::Visible> StreamTree::visible() const {
    std::vector<Visible> lines;
    const auto [from, to] = seen_rows();
    for (std::size_t i = from; i < to; ++i) {
        wxRect area;
        if (rows_[i].item.IsOk() && control_->GetBoundingRect(rows_[i].item, area, true))
            lines.push_back({rows_[i].stream, area});
    }
    return lines;
}

void StreamTree::put_seen(Row& row) {
    if (!row.item.IsOk() || row.is_stale) return put(row);
    // Fields that show something else than before glow; of a collapsed message its own line does.
    std::vector<std::pair<wxTreeItemId, wxString>> before;
    const bool is_expanded = control_->IsExpanded(row.item);
    if (is_expanded)
        for_each_field(row.item, [&](const wxTreeItemId& line) {
            if (control_->IsVisible(line)) before.emplace_back(line, control_->GetItemText(line));
        });
    const bool is_changed = row.stream->changed() == row.stream->seen();
    put(row);
    if (!is_expanded) {
        if (is_changed) glowing_[row.item.GetID()] = 0;
        return;
    }
    auto known = before.begin();
    for_each_field(row.item, [&](const wxTreeItemId& line) {
        if (known == before.end() || known->first != line) return;
        if (control_->GetItemText(line) != known->second) glowing_[line.GetID()] = 0;
        ++known;
    });
}

void StreamTree::glow() {
    for (auto at = glowing_.begin(); at != glowing_.end();) {
        const wxTreeItemId item(at->first);
        const unsigned age = at->second++;
        const auto* const step =
            std::ranges::find_if(glow_steps, [age](const GlowStep& s) { return age < s.until; });
        const bool is_over = step == std::end(glow_steps);
        const wxColour colour = is_over ? wxColour() : blend(text_colour(), fresh_colour(), step->strength);
        if (control_->GetItemTextColour(item) != colour) control_->SetItemTextColour(item, colour);
        at = is_over ? glowing_.erase(at) : std::next(at);
    }
}

void StreamTree::refresh(PlayTime now, bool fades) {
    const auto [from, to] = seen_rows();
    for (std::size_t i = from; i < to; ++i) {
        Row& row = rows_[i];
        if (row.item.IsOk() && row.stream->is_silent(now) != row.is_grey) {
            row.is_grey = !row.is_grey;
            glowing_.erase(row.item.GetID());
            control_->SetItemTextColour(row.item, row.is_grey ? faint_colour() : wxColour());
        }
        if (row.is_stale || row.shown != row.stream->count()) put_seen(row);
    }
    if (fades) glow();
}

// ---- what the user asks for ----

void StreamTree::expand_all(bool expanded) {
    is_expanded_.clear();
    expands_new_ = expanded;
    const wxWindowUpdateLocker still(control_);
    for (auto& [bus, tree] : trees_)
        if (expanded)
            tree.ExpandAll();
        else
            tree.CollapseAll();
}

const Stream* StreamTree::selected() const {
    const Row* const row = row_of(control_->GetSelection());
    return row != nullptr ? row->stream : nullptr;
}

std::optional<std::size_t> StreamTree::selected_field() const {
    constexpr std::size_t lines_before = 2;  // source and destination
    const wxTreeItemId selection = control_->GetSelection();
    const Row* const row = row_of(selection);
    if (row == nullptr || row->item == selection) return {};
    std::size_t line = 0, chosen = 0;
    for_each_field(row->item, [&](const wxTreeItemId& item) {
        if (item == selection) chosen = line;
        ++line;
    });
    if (chosen < lines_before) return {};
    return chosen - lines_before;
}

wxString StreamTree::visible_lines(const std::function<wxString(const Stream&)>& note) {
    complete();
    wxString text;
    for (const Row& row : rows_) {
        if (!row.item.IsOk()) continue;
        text << control_->GetItemText(row.item) << note(*row.stream) << '\n';
        if (control_->IsExpanded(row.item))
            for_each_field(row.item, [&](const wxTreeItemId& line) {
                text << "    " << control_->GetItemText(line) << '\n';
            });
    }
    return text;
}

bool StreamTree::find_next(const wxString& text) {
    if (text.empty()) return false;
    complete();
    const wxString wanted = text.Lower();
    const wxTreeItemId selection = control_->GetSelection();
    wxTreeItemId first, next;
    bool is_behind = false;
    const auto look_at = [&](const wxTreeItemId& line) {
        if (!next.IsOk() && control_->GetItemText(line).Lower().Contains(wanted)) {
            if (!first.IsOk()) first = line;
            if (is_behind) next = line;
        }
        if (line == selection) is_behind = true;
    };
    for (const Row& row : rows_) {
        if (!row.item.IsOk()) continue;
        look_at(row.item);
        for_each_field(row.item, look_at);
    }
    const wxTreeItemId found = next.IsOk() ? next : first;
    if (!found.IsOk()) return false;
    control_->SelectItem(found);
    control_->EnsureVisible(found);
    return true;
}

}  // namespace vistel
