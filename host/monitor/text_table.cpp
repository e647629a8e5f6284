#include "monitor/text_table.h"

#include <algorithm>
#include <utility>

namespace vistel {

TextTable::TextTable(wxWindow* parent, const std::vector<Column>& columns, long style)
    : wxListCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxLC_REPORT | wxLC_VIRTUAL | style) {
    for (const Column& column : columns) {
        widths_.push_back(FromDIP(column.width));
        AppendColumn(column.heading, column.is_number ? wxLIST_FORMAT_RIGHT : wxLIST_FORMAT_LEFT,
                     widths_.back());
    }
}

void TextTable::restore_widths(const std::map<std::string, int>& layout, const std::string& name) {
    constexpr int least = 10, most = 4000;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        const auto known = layout.find(name + "_" + std::to_string(i));
        if (known == layout.end() || known->second < least || known->second > most) continue;
        widths_[i] = FromDIP(known->second);
        const int column = static_cast<int>(i);
        if (GetColumnWidth(column) > 0) SetColumnWidth(column, widths_[i]);
    }
}

void TextTable::keep_widths(std::map<std::string, int>& layout, const std::string& name) const {
    for (int i = 0; i < GetColumnCount(); ++i)
        if (const int width = GetColumnWidth(i); width > 0)
            layout[name + "_" + std::to_string(i)] = ToDIP(i == giver_ ? width + given_ : width);
}

void TextTable::show_column(int column, bool shown, int giver) {
    int& width = widths_[static_cast<std::size_t>(column)];
    const int present = GetColumnWidth(column);
    if (shown == (present > 0)) return;
    if (!shown) width = present;
    SetColumnWidth(column, shown ? width : 0);
    constexpr int least = 100;  // that the giver keeps
    const int whole = GetColumnWidth(giver) + given_;
    giver_ = giver;
    given_ = shown ? std::clamp(width, 0, std::max(0, whole - FromDIP(least))) : 0;
    SetColumnWidth(giver, whole - given_);
}

void TextTable::set_rows(std::vector<Row> rows) {
    const std::vector<Row> before = std::exchange(rows_, std::move(rows));
    if (before.size() != rows_.size()) {
        SetItemCount(static_cast<long>(rows_.size()));
        Refresh();
        return;
    }
    for (std::size_t i = 0; i < rows_.size(); ++i)
        if (rows_[i] != before[i]) RefreshItem(static_cast<long>(i));
}

std::vector<std::size_t> TextTable::selection() const {
    std::vector<std::size_t> chosen;
    for (long i = -1; (i = GetNextItem(i, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED)) >= 0;)
        chosen.push_back(static_cast<std::size_t>(i));
    return chosen;
}

void TextTable::select(std::size_t row, bool selected) {
    SetItemState(static_cast<long>(row), selected ? wxLIST_STATE_SELECTED : 0, wxLIST_STATE_SELECTED);
}

wxString TextTable::OnGetItemText(long item, long column) const {
    const auto row = static_cast<std::size_t>(item), cell = static_cast<std::size_t>(column);
    return row < rows_.size() && cell < rows_[row].size() ? rows_[row][cell] : wxString();
}

}  // namespace vistel
