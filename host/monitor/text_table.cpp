#include "monitor/text_table.h"

#include <utility>

namespace vistel {

TextTable::TextTable(wxWindow* parent, const std::vector<Column>& columns, long style)
    : wxListCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxLC_REPORT | wxLC_VIRTUAL | style) {
    for (const Column& column : columns)
        AppendColumn(column.heading, column.is_number ? wxLIST_FORMAT_RIGHT : wxLIST_FORMAT_LEFT,
                     FromDIP(column.width));
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
