#include "monitor/unit_window.h"

#include <wx/button.h>
#include <wx/choice.h>
#include <wx/display.h>
#include <wx/scrolwin.h>
#include <wx/sizer.h>
#include <wx/stattext.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "commands/unit_options.h"
#include "output/unit_names.h"
#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/core/render.h"

namespace vistel {

namespace core = pgn_vistel::core;
namespace quantity = core::quantity;
using core::DispDataType, core::UnitId, core::UnitSelection;

namespace {

/// Those that `core::quantity_rows` has no name for.
struct Title {
    DispDataType quantity;
    const char* text;
};
constexpr Title titles[] = {
    {quantity::elevation, "Elevation"},
    {quantity::lat_or_long, "Latitude or longitude"},
    {quantity::resistance, "Resistance"},
    {quantity::force, "Force"},
    {quantity::attitude, "Attitude"},
    {quantity::snr, "Signal-to-noise ratio"},
    {quantity::gear, "Gear"},
    {quantity::acceleration, "Acceleration"},
    {quantity::magnetic, "Magnetic field"},
    {quantity::power_factor, "Power factor"},
    {quantity::identifier, "Identifier"},
    {quantity::plain_29, "Number (29)"},
    {quantity::latitude_30, "Latitude (30)"},
    {quantity::rpm, "Rotational speed"},
    {quantity::hours, "Hours"},
    {quantity::none_33, "Number (33)"},
    {quantity::percent, "Percentage"},
    {quantity::angle_35, "Angle (35)"},
    {quantity::angle_36, "Angle (36)"},
    {quantity::percent_37, "Percentage (37)"},
    {quantity::percent_38, "Percentage (38)"},
    {quantity::plain_39, "Number (39)"},
    {quantity::reference, "Reference"},
    {quantity::latitude, "Latitude"},
    {quantity::longitude, "Longitude"},
    {quantity::charge, "Charge"},
    {quantity::apparent_power, "Apparent power"},
    {quantity::reactive_power, "Reactive power"},
    {quantity::ac_power, "AC power"},
    {quantity::small_voltage, "Small voltage"},
    {quantity::small_current, "Small current"},
    {quantity::energy, "Energy"},
    {quantity::message_id, "Message number"},
    {quantity::power_51, "Power (51)"},
    {quantity::plain_52, "Number (52)"},
    {quantity::data_size, "Size of data"},
    {quantity::mass, "Mass"},
    {quantity::concentration, "Concentration"},
    {quantity::strain, "Strain"},
    {quantity::angular_velocity, "Angular velocity"},
    {quantity::angular_acceleration, "Angular acceleration"},
    {quantity::short_length, "Short length"},
    {quantity::velocity, "Velocity"},
    {quantity::particles, "Particles"},
    {quantity::field_strength, "Field strength"},
    {quantity::pressure_rate, "Rate of pressure"},
    {quantity::torque, "Torque"},
};

/// A unit as a choice names it.
wxString choice_text(UnitId unit) {
    if (unit == core::unit::clock_12) return "12-hour clock";
    if (unit == core::unit::clock_24) return "24-hour clock";
    const std::string text = unit_text(unit);
    return text.empty() ? wxString("as a number") : wxString::FromUTF8(text);
}

constexpr int most_bits = 64, usual_width = 16;

/// A number that is a likely value of most fields of this width: of some quantities a usual one, of others a
/// tenth of what the field holds.
std::uint64_t likely_number(DispDataType q, int bits) {
    struct Usual {
        DispDataType quantity;
        std::uint64_t number;
    };
    constexpr Usual usual[] = {{quantity::temperature, 2931},            // 0.1 K
                               {quantity::date, 20600},                  // days
                               {quantity::speed, 310},                   // 0.01 m/s
                               {quantity::wind_speed, 720},              // 0.01 m/s
                               {quantity::atmospheric_pressure, 1013}};  // 100 Pa
    const auto* const known = std::ranges::find(usual, q, &Usual::quantity);
    if (known != std::end(usual) && bits == usual_width) return known->number;
    constexpr std::uint64_t tenth = 10;
    return (bits >= most_bits ? UINT64_MAX : (std::uint64_t{1} << bits) - 1) / tenth;
}

}  // namespace

std::string quantity_title(DispDataType q) {
    const auto rows = core::quantity_rows();
    if (const auto row = std::ranges::find(rows, q, &core::QuantityRow::quantity); row != rows.end())
        return row->label;
    const auto* const title = std::ranges::find(titles, q, &Title::quantity);
    return title != std::end(titles) ? title->text : "Quantity " + std::to_string(q);
}

std::string example_of(DispDataType q, UnitId unit) {
    // A field for each quantity, as near to the usual width as there is one.
    static const auto samples = [] {
        std::array<const core::FieldDef*, quantity::count> found{};
        std::array<int, quantity::count> widths{};
        const N2KMsg nothing{};
        core::TextScratch scratch;
        for (const core::FieldDef& field : core::all_fields()) {
            if (field.field == 0) continue;
            const auto reading =
                core::read_field(nothing, field, {}, UnitSelection(), core::unit::selected, scratch);
            const int width = reading.next.byte * 8 + reading.next.bit;
            if (!core::is_quantity(reading.quantity) || width > most_bits) continue;
            const auto at = static_cast<std::size_t>(reading.quantity);
            const auto distance = [](int bits) { return std::abs(bits - usual_width); };
            if (found[at] == nullptr || distance(width) < distance(widths[at]))
                widths[at] = width, found[at] = &field;
        }
        return std::pair(found, widths);
    }();
    const core::FieldDef* const field = samples.first[static_cast<std::size_t>(q)];
    if (field == nullptr) return {};
    N2KMsg msg{};
    msg.pgn = field->pgn;
    msg.length = most_bits / 8;
    const std::uint64_t number = likely_number(q, samples.second[static_cast<std::size_t>(q)]);
    for (int i = 0; i < msg.length; ++i) msg.data[i] = static_cast<std::uint8_t>(number >> 8 * i);
    core::TextScratch scratch;
    const core::FieldReading reading = core::read_field(msg, *field, {}, UnitSelection(), unit, scratch);
    if (!core::is_available(reading.value)) return {};
    std::vector<char> area(core::piece_room);
    return std::string(area.data(), core::write_value(area.data(), *field, reading, true));
}

UnitWindow::UnitWindow(wxWindow* parent, const UnitSelection& units, Apply apply)
    : wxDialog(parent, wxID_ANY, "Units", wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      apply_(std::move(apply)) {
    auto* const area = new wxScrolledWindow(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxVSCROLL);
    area->SetScrollRate(0, FromDIP(12));
    auto* const grid = new wxFlexGridSizer(3, FromDIP(wxSize(12, 3)));
    grid->AddGrowableCol(2);
    std::vector<DispDataType> order;
    for (const core::QuantityRow& row : core::quantity_rows()) order.push_back(row.quantity);
    for (DispDataType q = 0; q < quantity::count; ++q)
        if (std::ranges::find(order, q) == order.end()) order.push_back(q);
    for (const DispDataType q : order) {
        Row row{q, offered_units(q), nullptr, nullptr};
        std::erase_if(row.units, [](UnitId u) { return u >= core::unit::kelvin; });
        wxArrayString names;
        for (const UnitId unit : row.units) names.Add(choice_text(unit));
        const auto middle = wxSizerFlags().CenterVertical();
        grid->Add(new wxStaticText(area, wxID_ANY, wxString::FromUTF8(quantity_title(q))), middle);
        row.choice = new wxChoice(area, wxID_ANY, wxDefaultPosition, wxDefaultSize, names);
        row.choice->SetName(wxString::FromUTF8(quantity_title(q)));
        row.choice->Enable(row.units.size() > 1);
        grid->Add(row.choice, wxSizerFlags().Expand());
        row.example = new wxStaticText(area, wxID_ANY, "");
        grid->Add(row.example, middle);
        row.choice->Bind(wxEVT_CHOICE, [this, at = rows_.size()](wxCommandEvent&) { show_example(at); });
        rows_.push_back(row);
    }
    area->SetSizer(grid);
    load(units);

    auto* const buttons = new wxBoxSizer(wxHORIZONTAL);
    const auto add = [&](const char* label, int id, auto act) {
        auto* const button = new wxButton(this, id, label);
        button->Bind(wxEVT_BUTTON, [act](wxCommandEvent&) { act(); });
        buttons->Add(button, wxSizerFlags().Border(wxALL, FromDIP(3)));
        return button;
    };
    for (const auto& [label, set] : {std::pair{"&Default", "default"},
                                     {"&Metric", "metric"},
                                     {"&Nautical", "nautical"},
                                     {"&US", "us"},
                                     {"&SI", "si"}})
        add(label, wxID_ANY, [this, set = set] {
            UnitSelection whole;
            if (select_units(whole, set)) load(whole);
        });
    buttons->AddStretchSpacer();
    add("&Apply", wxID_APPLY, [this] { apply_(picked()); })->SetDefault();
    add("&Close", wxID_CLOSE, [this] { Hide(); });
    SetEscapeId(wxID_CLOSE);

    auto* const sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(area, wxSizerFlags(1).Expand().Border(wxALL, FromDIP(8)));
    sizer->Add(buttons, wxSizerFlags().Expand().Border(wxALL, FromDIP(5)));
    SetSizer(sizer);
    const wxRect screen = wxDisplay(parent).GetClientArea();
    SetSize(std::min(grid->GetMinSize().x + FromDIP(160), screen.width),
            std::min(FromDIP(640), screen.height * 9 / 10));
    SetMinSize(FromDIP(wxSize(360, 240)));
}

void UnitWindow::load(const UnitSelection& units) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const Row& row = rows_[i];
        const auto at = std::ranges::find(row.units, units[row.quantity]);
        row.choice->SetSelection(at != row.units.end() ? static_cast<int>(at - row.units.begin()) : 0);
        show_example(i);
    }
}

void UnitWindow::show_example(std::size_t at) {
    const Row& row = rows_[at];
    const int chosen = row.choice->GetSelection();
    if (chosen < 0) return;
    row.example->SetLabelText(
        wxString::FromUTF8(example_of(row.quantity, row.units[static_cast<std::size_t>(chosen)])));
}

UnitSelection UnitWindow::picked() const {
    UnitSelection units;
    for (const Row& row : rows_)
        if (const int chosen = row.choice->GetSelection(); chosen >= 0)
            units.select(row.quantity, row.units[static_cast<std::size_t>(chosen)]);
    return units;
}

}  // namespace vistel
