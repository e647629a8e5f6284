#pragma once

#include <wx/treectrl.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "network/streams.h"
#include "pgn_vistel/pgn_tree.h"

namespace vistel {

/// The tree of the streams that a filter admits. Lines of messages are those of the library's tree, which is
/// given the latest message of a stream when it can be seen; others are brought up to date when they are
/// scrolled into sight or asked for. Changed lines glow, streams that fell silent are grey.
///
/// The library's tree knows no buses: it tells streams apart by PGN and source. So each bus has one of its
/// own, all of them on one control.
class StreamTree : public wxEvtHandler {
  public:
    StreamTree(wxWindow& parent, pgn_vistel::core::Definitions definitions);

    wxTreeCtrl& control() { return *control_; }

    /// Shows these streams alone. Lines stay expanded and selected as they were.
    void show(const std::vector<const Stream*>& streams);
    /// Shows further streams below the others. Streams must live until they are shown no more.
    void add(const std::vector<const Stream*>& streams);
    std::size_t size() const { return rows_.size(); }

    /// Goes by other copies of the streams from here on: `streams` are all that there are, in the order of
    /// their appearance.
    void rebind(const std::vector<const Stream*>& streams);

    /// Brings what can be seen up to date. `fades`: lets the glow of changes go on.
    void refresh(PlayTime now, bool fades);

    /// Everything is written anew.
    void set_units(const pgn_vistel::core::UnitSelection& units);
    void expand_all(bool expanded);

    /// The stream that the selected line belongs to, or null.
    const Stream* selected() const;
    /// The position of the field that is selected, from 0; nothing where the line is no field's.
    [[nodiscard]] std::optional<std::size_t> selected_field() const;
    /// The lines that are expanded, fields indented, with a note behind that of each stream.
    wxString visible_lines(const std::function<wxString(const Stream&)>& note);
    /// Selects the next line in which a text stands, in any case, behind the selected one and then from the
    /// top. False where there is none.
    [[nodiscard]] bool find_next(const wxString& text);

    /// A stream that can be seen at least in part, and where its own line lies.
    struct Visible {
        const Stream* stream;
        wxRect line;
    };
    std::vector<Visible> visible() const;

  private:
    struct Row {
        const Stream* stream;
        std::uint64_t order;      // of the stream
        wxTreeItemId item = {};   // none where the library's tree shows it in the line of another
        std::uint64_t shown = 0;  // `count` of what is shown
        bool is_stale = true;     // written by other units
        bool is_grey = false;
    };

    void forget(wxTreeEvent& event);
    void add_tree(std::uint8_t bus);
    void clear();
    void append(const Stream& stream);
    void put(Row& row);
    void put_seen(Row& row);
    void complete();
    void remember_expanded();
    std::pair<std::size_t, std::size_t> seen_rows() const;
    wxTreeItemId root_line(wxTreeItemId item) const;
    const Row* row_of(wxTreeItemId item) const;
    void glow();
    template <class Act>
    void for_each_field(const wxTreeItemId& item, Act act) const;

    wxTreeCtrl* control_;
    const unsigned long flags_;                       // of the trees
    std::map<std::uint8_t, PGN_VistelTree_c> trees_;  // by bus
    bool expands_new_ = false;
    std::vector<Row> rows_;
    std::vector<std::size_t> lines_;  // those that have an item, from the top
    wxTreeItemId last_;               // of the messages' own lines
    std::unordered_map<void*, std::size_t> row_by_item_;
    std::unordered_map<void*, unsigned> glowing_;  // items, and for how many frames they have
    std::map<std::uint64_t, bool> is_expanded_;  // by the order of streams, also of those that are not shown
};

}  // namespace vistel
