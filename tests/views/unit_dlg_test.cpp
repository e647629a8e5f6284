#include "pgn_vistel/unit_dlg.h"

#include <wx/combobox.h>
#include <wx/frame.h>
#include <wx/gdicmn.h>
#include <wx/stattext.h>

#include <map>
#include <memory>

#include "pgn_vistel/core/units.h"
#include "views/windows.h"

using namespace pgn_vistel::core;

namespace pgn_vistel::test {
namespace {

int applied;

class UnitDialog : public testing::Test {
  protected:
    UnitDialog() {
        applied = 0;
        dialog_->AssignUnitChangeApply([] { ++applied; });
    }
    /// The choice beside a label.
    wxComboBox& choice(const wxString& label) {
        const auto labels = children_of<wxStaticText>(*dialog_);
        const auto choices = children_of<wxComboBox>(*dialog_);
        for (std::size_t i = 0; i < std::min(labels.size(), choices.size()); ++i)
            if (labels[i]->GetLabel() == label) return *choices[i];
        throw std::runtime_error("no choice");
    }
    void click_button(const char* label) { click(*wxWindow::FindWindowByLabel(label, dialog_.get())); }
    /// For each quantity; `chosen` says which ones have another unit than the first that they offer.
    void expect_units(const std::map<DispDataType, UnitId>& chosen) {
        for (DispDataType q = 0; q < quantity::count; ++q)
            EXPECT_EQ(db_.GetSelectUnit(q), chosen.contains(q) ? chosen.at(q) : *available_units(q)) << q;
    }

    int created_ = -1;
    QV_N2K_PGN_DB_c db_;
    wxFrame parent_{nullptr, wxID_ANY, "Host"};
    std::unique_ptr<PGN_VistelUnitDlg_c> dialog_ =
        std::make_unique<PGN_VistelUnitDlg_c>(&parent_, &db_, &created_, 0);
};

TEST_F(UnitDialog, HasARowForEachQuantity) {
    EXPECT_EQ(dialog_->GetTitle(), "Unit Selection");
    EXPECT_TRUE(dialog_->HasFlag(wxSTAY_ON_TOP));
    EXPECT_FALSE(dialog_->IsShown());
    const auto labels = children_of<wxStaticText>(*dialog_);
    const auto choices = children_of<wxComboBox>(*dialog_);
    const auto rows = quantity_rows();
    ASSERT_TRUE(rows.size() == 22 && labels.size() == 22 && choices.size() == 22);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        wxArrayString units;
        for (const UnitId* unit = available_units(rows[i].quantity); *unit < unit::count; ++unit)
            units.Add(unit_name(*unit));
        EXPECT_EQ(labels[i]->GetLabel(), rows[i].label);
        EXPECT_EQ(choices[i]->GetStrings(), units) << rows[i].label;
        EXPECT_EQ(choices[i]->GetId(), 48);
        EXPECT_EQ(choices[i]->GetSelection(), 0) << "a new database has the default";
    }
}

TEST_F(UnitDialog, AppliesWhatIsChosen) {
    db_.SelectUnit(quantity::volume, unit::litre);
    bring_up(*dialog_);
    wxComboBox &time = choice("Time"), &depth = choice("Depth"), &volume = choice("Volume");
    click(time);  // with the keyboard
    ASSERT_TRUE(eventually([&] { return wxWindow::FindFocus() == &time; }));
    for (unsigned i = 0; i < time.GetCount() && time.GetValue() != unit_name(unit::minutes); ++i)
        press(WXK_DOWN);
    const wxRect area = depth.GetScreenRect();  // with the mouse, on its arrow
    click_at(area.GetRight() - 10, area.y + area.height / 2);
    press(WXK_DOWN);
    press(WXK_RETURN);
    EXPECT_TRUE(eventually([&] { return depth.GetValue() == unit_name(unit::m); })) << depth.GetValue();
    EXPECT_EQ(volume.GetValue(), unit_name(unit::litre));
    type_over(volume, "furlong");
    expect_units({{quantity::volume, unit::litre}});
    EXPECT_EQ(applied, 0);

    for (int time = 1; time <= 2; ++time) {
        click_button("Apply");
        expect_units({{quantity::duration, unit::minutes},
                      {quantity::depth, unit::m},
                      {quantity::volume, unit::litre}});
        EXPECT_EQ(applied, time) << "where nothing has changed, too";
    }
    dialog_->AssignUnitChangeApply(nullptr);
    click_button("Apply");
    EXPECT_EQ(applied, 2);
}

TEST_F(UnitDialog, LoadsTheDefaultsOfTheFirstEight) {
    std::map<DispDataType, UnitId> second;
    for (DispDataType q = 0; q < quantity::count; ++q)
        if (const UnitId* const units = available_units(q); units[0] < unit::count && units[1] < unit::count)
            db_.SelectUnit(q, second[q] = units[1]);
    bring_up(*dialog_);
    EXPECT_EQ(choice("Depth").GetSelection(), 1);
    click_button("Load default");
    std::erase_if(second, [](const auto& selected) { return selected.first < 8; });
    expect_units(second);
    EXPECT_EQ(choice("Depth").GetSelection(), 0);
    EXPECT_EQ(choice("Volume").GetSelection(), 0);
    EXPECT_EQ(choice("Heading").GetSelection(), 1);
    EXPECT_EQ(applied, 0);
}

TEST_F(UnitDialog, HidesAndShowsTheSelectionAnew) {
    bring_up(*dialog_);
    click_button("Close");
    EXPECT_TRUE(eventually([&] { return !dialog_->IsShown(); }));
    EXPECT_EQ(created_, 1) << "hidden, not destroyed";
    db_.SelectUnit(quantity::duration, unit::minutes);
    bring_up(*dialog_);
    EXPECT_EQ(choice("Time").GetValue(), unit_name(unit::minutes));

    close_by_title_bar(*dialog_);
    db_.SelectUnit(quantity::depth, unit::V);  // none of depth's
    bring_up(*dialog_);
    EXPECT_EQ(choice("Depth").GetSelection(), 0) << "left as it was";
    dialog_.reset();
    EXPECT_EQ(created_, 0);
}

TEST_F(UnitDialog, FitsItsScreen) {
    bring_up(*dialog_);
    const wxRect screen = wxGetClientDisplayRect();
    EXPECT_TRUE(screen.Contains(wxWindow::FindWindowByLabel("Close", dialog_.get())->GetScreenRect()));
    EXPECT_LE(dialog_->GetSize().y, screen.height - 40) << "with room for a title bar";
    wxComboBox& last = choice(quantity_rows().back().label);
    last.SetFocus();  // as by the keyboard: rows that are out of sight come into it
    EXPECT_TRUE(eventually([&] { return dialog_->GetScreenRect().Contains(last.GetScreenRect()); }));
    settle();
    const wxRect area = last.GetScreenRect();
    EXPECT_EQ(wxFindWindowAtPoint(area.GetPosition() + wxPoint(20, area.height / 2)), &last);
    click_button("Apply");
    EXPECT_EQ(applied, 1);
    press(WXK_ESCAPE);
    EXPECT_TRUE(eventually([&] { return !dialog_->IsShown(); }));
    EXPECT_EQ(created_, 1);
}

TEST_F(UnitDialog, EveryWayOfCreation) {
    PGN_VistelUnitDlg_c later;
    later.Create(HWND{}, &db_, 0);
    EXPECT_EQ(later.GetHandle(), nullptr);
    later.Create(&parent_, nullptr, 0);
    PGN_VistelUnitDlg_c named(&parent_, nullptr, 77, "Units", wxDefaultPosition, wxDefaultSize,
                              wxDEFAULT_DIALOG_STYLE, 0);
    EXPECT_EQ(named.GetTitle(), "Units");
    EXPECT_EQ(named.GetId(), 77);

    HostWindow host;
    PGN_VistelUnitDlg_c nowhere(HWND{}, &db_, 0), native(host.handle(), &db_, 0);
    EXPECT_EQ(nowhere.GetHandle(), nullptr);
    EXPECT_NE(native.GetParent(), nullptr);
    EXPECT_TRUE(host.owns(native));
    bring_up(native);
    for (const PGN_VistelUnitDlg_c* const each : {&later, &native})
        EXPECT_EQ(children_of<wxComboBox>(*each).size(), 22u);
}

}  // namespace
}  // namespace pgn_vistel::test
