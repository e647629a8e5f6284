#include "monitor/message_pane.h"

#include <wx/sizer.h>
#include <wx/splitter.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <cmath>
#include <vector>

#include "monitor/plot.h"
#include "monitor/text_table.h"
#include "network/message_view.h"
#include "output/unit_names.h"
#include "pgn_vistel/core/listing.h"
#include "pgn_vistel/core/render.h"
#include "text/words.h"

namespace vistel {

namespace core = pgn_vistel::core;

namespace {

/// The raw bits as a number; empty where they are too many.
std::string raw_number(const N2KMsg& msg, int first, int behind) {
    constexpr int most = 64;
    if (behind - first > most || behind > msg.length * 8) return {};
    std::uint64_t number = 0;
    for (int bit = behind - 1; bit >= first; --bit)
        number = number << 1 | (msg.data[bit / 8] >> bit % 8 & 1u);
    return std::to_string(number);
}

double number_of(const core::Value& value) {
    if (!core::is_available(value)) return NAN;
    return core::visit_number(value, static_cast<double>(NAN),
                              [](auto number) { return static_cast<double>(number); });
}

/// What is known of a field beside its value, a line each.
std::string description_of(const MessageView& view) {
    std::string text = view.label() + ": " + view.value();
    const core::FieldDef& field = view.field();
    const core::DispDataType quantity = view.reading().quantity;
    if (core::is_quantity(quantity)) {
        std::string others;
        for (const core::UnitId unit : offered_units(quantity))
            if (unit != view.reading().unit) others += (others.empty() ? "" : " · ") + view.value_in(unit);
        if (!others.empty()) text += "\nIn other units: " + others;
    }
    text += concat("\nKey: ", core::field_key(field), " · field ", field.field);
    if (field.dd != nullptr && field.dd->dd != 0) {
        text += concat("\nDictionary entry ", field.dd->dd);
        if (field.dd->name != nullptr)
            text += concat(": ", wxString(field.dd->name, wxConvISO8859_1).ToStdString(wxConvUTF8));
    }
    const core::FieldNotes notes = core::field_notes(field);
    const auto add = [&text](const char* what, std::string_view note) {
        if (!note.empty()) text += concat(" · ", what, note);
    };
    if (!notes.coding.empty()) {
        text += concat("\nCoding: ", notes.coding);
        add("resolution ", notes.resolution);
        add("", notes.unit);
        add("offset ", notes.offset);
        add("none at ", notes.none);
        add("texts ", notes.texts);
    }
    return text;
}

}  // namespace

MessagePane::MessagePane(wxWindow* parent) : wxPanel(parent) {
    title_ = new wxStaticText(this, wxID_ANY, "", wxDefaultPosition, wxDefaultSize, wxST_ELLIPSIZE_END);
    title_->SetFont(title_->GetFont().Bold());
    halves_ = new wxSplitterWindow(this, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                   wxSP_LIVE_UPDATE | wxSP_3DSASH);
    fields_ = new TextTable(halves_,
                            {{"Field", 150}, {"Value", 165}, {"Raw", 65, true}, {"Bits", 50}, {"Bytes", 85}},
                            wxLC_SINGLE_SEL);
    auto* const right = new wxPanel(halves_);
    description_ = new wxTextCtrl(right, wxID_ANY, "", wxDefaultPosition, wxDefaultSize,
                                  wxTE_MULTILINE | wxTE_READONLY | wxTE_BESTWRAP | wxBORDER_NONE);
    plot_ = new Plot(right);
    auto* const right_sizer = new wxBoxSizer(wxVERTICAL);
    right_sizer->Add(description_, 1, wxEXPAND);
    right_sizer->Add(plot_, 1, wxEXPAND | wxTOP, FromDIP(2));
    right->SetSizer(right_sizer);
    halves_->SetMinimumPaneSize(FromDIP(180));
    halves_->SetSashGravity(0.65);
    halves_->SplitVertically(fields_, right, FromDIP(450));
    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(title_, 0, wxEXPAND | wxALL, FromDIP(4));
    sizer->Add(halves_, 1, wxEXPAND);
    SetSizer(sizer);
}

void MessagePane::restore_layout(const std::map<std::string, int>& layout) {
    const auto known = layout.find("fields");
    halves_->SetSashPosition(known != layout.end() ? FromDIP(known->second) : GetClientSize().x * 63 / 100);
    fields_->restore_widths(layout, "fields");
}

void MessagePane::keep_layout(std::map<std::string, int>& layout) const {
    layout["fields"] = ToDIP(halves_->GetSashPosition());
    fields_->keep_widths(layout, "fields");
}

void MessagePane::show(const Stream& stream, const std::string& origin, const core::UnitSelection& units,
                       core::Definitions definitions) {
    const N2KMsg& msg = stream.msg();
    MessageView view(msg, units, definitions);
    const wxString title = wxString::FromUTF8(concat(
        msg.pgn, " ", view.name(), " · from ", origin, " to ", msg.destination, " · priority ", msg.priority,
        " · ", msg.length, " bytes · ", stream.count(), stream.count() == 1 ? " message" : " messages"));
    if (title_->GetLabel() != title) title_->SetLabelText(title);
    std::vector<TextTable::Row> rows;
    while (view.next())
        rows.push_back({wxString::FromUTF8(view.label()), wxString::FromUTF8(view.value()),
                        raw_number(msg, view.first_bit(), view.behind_bit()),
                        wxString::Format("%d-%d", view.first_bit(), view.behind_bit() - 1), view.raw()});
    if (const std::string rest = view.undecoded(); !rest.empty()) rows.push_back({"Data", rest});
    const bool is_another = order_ != stream.order();
    order_ = stream.order();
    fields_->set_rows(std::move(rows));
    if (is_another) choose(0);
    describe(stream, units, definitions);
}

void MessagePane::choose(std::size_t field) {
    if (field < fields_->rows().size()) fields_->select(field, true);
}

void MessagePane::describe(const Stream& stream, const core::UnitSelection& units,
                           core::Definitions definitions) {
    const std::vector<std::size_t> chosen = fields_->selection();
    field_ = chosen.empty() ? 0 : chosen.front();
    MessageView view(stream.msg(), units, definitions);
    for (std::size_t i = 0; i <= field_; ++i)
        if (!view.next()) return description_->ChangeValue("");
    const wxString text = wxString::FromUTF8(description_of(view));
    if (description_->GetValue() != text) description_->ChangeValue(text);

    const std::string unit =
        core::is_unit(view.reading().unit) ? unit_text(view.reading().unit) : std::string();
    const std::string plotted = concat(order_, " ", field_, " ", view.label(), " ", unit);
    if (plotted != plotted_) {
        plotted_ = plotted;
        plotted_count_ = 0;
        plot_->start(wxString::FromUTF8(view.label() + (unit.empty() ? "" : ", " + unit)));
    }
    if (stream.count() == plotted_count_) return;
    plotted_count_ = stream.count();
    plot_->add(stream.seen(), number_of(view.reading().value));
}

}  // namespace vistel
