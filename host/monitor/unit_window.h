#pragma once

#include <wx/dialog.h>

#include <functional>
#include <string>
#include <vector>

#include "pgn_vistel/core/units.h"

class wxChoice;
class wxStaticText;

namespace vistel {

/// The units of all quantities, with an example of each. Closing only hides it.
class UnitWindow : public wxDialog {
  public:
    using Apply = std::function<void(const pgn_vistel::core::UnitSelection&)>;

    UnitWindow(wxWindow* parent, const pgn_vistel::core::UnitSelection& units, Apply apply);

    /// Shows this selection in place of what was picked and not applied.
    void load(const pgn_vistel::core::UnitSelection& units);

  private:
    void show_example(std::size_t at);
    pgn_vistel::core::UnitSelection picked() const;

    struct Row {
        pgn_vistel::core::DispDataType quantity;
        std::vector<pgn_vistel::core::UnitId> units;
        wxChoice* choice;
        wxStaticText* example;
    };
    std::vector<Row> rows_;
    Apply apply_;
};

/// What a quantity is called.
std::string quantity_title(pgn_vistel::core::DispDataType quantity);

/// A value of a quantity in a unit, "33.00 V"; empty where no field has the quantity.
std::string example_of(pgn_vistel::core::DispDataType quantity, pgn_vistel::core::UnitId unit);

}  // namespace vistel
