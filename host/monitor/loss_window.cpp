#include "monitor/loss_window.h"

#include <wx/sizer.h>

#include "monitor/loss_text.h"
#include "monitor/text_table.h"

namespace vistel {

LossWindow::LossWindow(wxWindow* parent)
    : wxDialog(parent, wxID_ANY, "Losses", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER) {
    counts_ = new TextTable(this, {{"In all", 300}, {"Number", 90, true}}, wxLC_SINGLE_SEL);
    streams_ = new TextTable(this,
                             {{"PGN", 70, true},
                              {"Name", 220},
                              {"Source", 65, true},
                              {"Missing", 75, true},
                              {"Of no message", 115, true},
                              {"Repeated", 80, true}},
                             wxLC_SINGLE_SEL);
    counts_->SetMinSize(FromDIP(wxSize(-1, 300)));  // all of them
    streams_->SetMinSize(FromDIP(wxSize(-1, 120)));
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    const auto border = wxSizerFlags().Expand().Border(wxALL, FromDIP(8));
    sizer->Add(counts_, border);
    sizer->Add(streams_, wxSizerFlags(border).Proportion(1));
    sizer->Add(CreateButtonSizer(wxCLOSE), border);
    SetEscapeId(wxID_CLOSE);
    SetSizerAndFit(sizer);
    SetSize(FromDIP(wxSize(680, 620)));
    CentreOnParent();
}

void LossWindow::show(const Player& player, const Traffic& traffic) {
    std::vector<TextTable::Row> rows;
    for (const LossCount& count : loss_counts(player, traffic))
        rows.push_back({count.what, std::to_string(count.count)});
    counts_->set_rows(std::move(rows));
    rows.clear();
    for (const LossRow& row : loss_rows(player))
        rows.push_back({row.pgn != 0 ? std::to_string(row.pgn) : std::string(), wxString::FromUTF8(row.name),
                        row.pgn != 0 ? std::to_string(row.source) : std::string(),
                        std::to_string(row.missing), std::to_string(row.orphans),
                        std::to_string(row.repeated)});
    streams_->set_rows(std::move(rows));
}

}  // namespace vistel
