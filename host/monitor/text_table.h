#pragma once

#include <wx/listctrl.h>

#include <map>
#include <string>
#include <vector>

namespace vistel {

/// A list of rows of text under headings, of which only what changed is drawn again.
class TextTable : public wxListCtrl {
  public:
    struct Column {
        const char* heading;
        int width;  ///< in pixels of the usual scale
        bool is_number = false;
    };
    using Row = std::vector<wxString>;

    TextTable(wxWindow* parent, const std::vector<Column>& columns, long style = 0);

    void set_rows(std::vector<Row> rows);
    const std::vector<Row>& rows() const { return rows_; }

    /// @{ The widths of the columns, by a name for the table. Hidden columns have none.
    void restore_widths(const std::map<std::string, int>& layout, const std::string& name);
    void keep_widths(std::map<std::string, int>& layout, const std::string& name) const;
    /// @}
    /// Its room is that of the giver, as far as this has any to give, so that the columns behind stay in
    /// sight.
    void show_column(int column, bool shown, int giver);

    std::vector<std::size_t> selection() const;
    void select(std::size_t row, bool selected);

  private:
    wxString OnGetItemText(long item, long column) const override;

    std::vector<int> widths_;     // of the columns when shown
    int giver_ = -1, given_ = 0;  // the column that gave room, and how much of it
    std::vector<Row> rows_;
};

}  // namespace vistel
