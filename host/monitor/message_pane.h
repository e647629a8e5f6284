#pragma once

#include <wx/panel.h>

#include <map>
#include <string>

#include "network/streams.h"
#include "pgn_vistel/core/units.h"

class wxSplitterWindow;
class wxStaticText;
class wxTextCtrl;

namespace vistel {

class Plot;
class TextTable;

/// One message in full: its fields, what is known of the one that is chosen, and its number over time.
class MessagePane : public wxPanel {
  public:
    explicit MessagePane(wxWindow* parent);

    /// Shows the latest message of a stream; of another stream than before from its first field on. `origin`
    /// says whose it is.
    void show(const Stream& stream, const std::string& origin, const pgn_vistel::core::UnitSelection& units,
              pgn_vistel::core::Definitions definitions);
    /// Chooses the field at a position, from 0.
    void choose(std::size_t field);

    /// @{ the place of its divider and the widths of its columns
    void restore_layout(const std::map<std::string, int>& layout);
    void keep_layout(std::map<std::string, int>& layout) const;
    /// @}

  private:
    void describe(const Stream& stream, const pgn_vistel::core::UnitSelection& units,
                  pgn_vistel::core::Definitions definitions);

    wxStaticText* title_;
    wxSplitterWindow* halves_;
    TextTable* fields_;
    wxTextCtrl* description_;
    Plot* plot_;
    std::uint64_t order_ = Streams::most;  // of the stream
    std::size_t field_ = 0;
    std::string plotted_;              // what the plot is of
    std::uint64_t plotted_count_ = 0;  // message of the stream that is in it
};

}  // namespace vistel
