#include "pgn_vistel/unit_dlg.h"

#include <wx/combobox.h>
#include <wx/frame.h>
#include <wx/stattext.h>

#include <memory>

#include "pgn_vistel/units.h"
#include "views/windows.h"

namespace pgn_vistel::test {
namespace {

int applied;
void count_apply() {
    ++applied;
}

class UnitDialog : public testing::Test {
  protected:
    UnitDialog() {
        applied = 0;
        dialog_->AssignUnitChangeApply(count_apply);
    }

    /// The choice beside a label.
    wxComboBox& choice(const wxString& label) {
        const auto labels = children_of<wxStaticText>(*dialog_);
        const auto choices = children_of<wxComboBox>(*dialog_);
        for (std::size_t i = 0; i < std::min(labels.size(), choices.size()); ++i)
            if (labels[i]->GetLabel() == label) return *choices[i];
        throw std::runtime_error("no choice");
    }
    void click_button(const char* label) {
        click(*child_of<wxButton>(*dialog_, [&](wxButton& b) { return b.GetLabel() == label; }));
    }
    /// Walks down a choice with the keyboard.
    void choose_by_keys(wxComboBox& choice, const wxString& unit) {
        click(choice);
        ASSERT_TRUE(eventually([&] { return wxWindow::FindFocus() == &choice; }));
        for (unsigned i = 0; i < choice.GetCount() && choice.GetValue() != unit; ++i) press(WXK_DOWN);
        ASSERT_EQ(choice.GetValue(), unit);
    }

    int created_ = -1;
    QV_N2K_PGN_DB_c db_;
    wxFrame parent_{nullptr, wxID_ANY, "Host"};
    std::unique_ptr<PGN_VistelUnitDlg_c> dialog_ =
        std::make_unique<PGN_VistelUnitDlg_c>(&parent_, &db_, &created_, 0);
};

TEST_F(UnitDialog, HasARowForEachQuantity) {
    EXPECT_EQ(dialog_->GetTitle(), "Unit Selection");
    EXPECT_EQ(dialog_->GetWindowStyleFlag() & wxSTAY_ON_TOP, wxSTAY_ON_TOP);
    EXPECT_FALSE(dialog_->IsShown());
    const auto labels = children_of<wxStaticText>(*dialog_);
    const auto choices = children_of<wxComboBox>(*dialog_);
    const auto rows = quantity_rows();
    ASSERT_EQ(rows.size(), 22u);
    ASSERT_EQ(labels.size(), 22u);
    ASSERT_EQ(choices.size(), 22u);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].label);
        EXPECT_EQ(labels[i]->GetLabel(), rows[i].label);
        EXPECT_EQ(choices[i]->GetId(), 48);
        unsigned count = 0;
        for (const UnitId* unit = available_units(rows[i].quantity); *unit < unit::count; ++unit, ++count)
            EXPECT_EQ(choices[i]->GetString(count), unit_name(*unit));
        EXPECT_EQ(choices[i]->GetCount(), count);
        EXPECT_EQ(choices[i]->GetSelection(), 0) << "a new database has the default";
    }
}

TEST_F(UnitDialog, AppliesWhatIsChosen) {
    bring_up(*dialog_);
    choose_by_keys(choice("Time"), unit_name(unit::minutes));
    EXPECT_NE(db_.GetSelectUnit(quantity::duration), unit::minutes) << "not applied yet";
    click_button("Apply");
    EXPECT_EQ(db_.GetSelectUnit(quantity::duration), unit::minutes);
    EXPECT_EQ(applied, 1);
    click_button("Apply");
    EXPECT_EQ(applied, 2) << "no change counts too";
    for (const QuantityRow& row : quantity_rows()) {
        if (row.quantity != quantity::duration) {
            EXPECT_EQ(db_.GetSelectUnit(row.quantity), *available_units(row.quantity)) << row.label;
        }
    }
    dialog_->AssignUnitChangeApply(nullptr);
    click_button("Apply");
    EXPECT_EQ(applied, 2);
}

TEST_F(UnitDialog, OpensAListWithTheMouse) {
    bring_up(*dialog_);
    wxComboBox& depth = choice("Depth");
    const wxRect area = depth.GetScreenRect();
    click_at(area.GetRight() - 10, area.y + area.height / 2);  // its arrow
    press(WXK_DOWN);
    press(WXK_RETURN);
    EXPECT_TRUE(eventually([&] { return depth.GetValue() == unit_name(unit::m); })) << depth.GetValue();
    click_button("Apply");
    EXPECT_EQ(db_.GetSelectUnit(quantity::depth), unit::m);
}

TEST_F(UnitDialog, FreeTextKeepsTheUnit) {
    db_.SelectUnit(quantity::depth, unit::ftm);
    bring_up(*dialog_);
    EXPECT_EQ(choice("Depth").GetValue(), unit_name(unit::ftm));
    type_over(choice("Depth"), "furlong");
    click_button("Apply");
    EXPECT_EQ(db_.GetSelectUnit(quantity::depth), unit::ftm);
    EXPECT_EQ(applied, 1) << "the other rows";
}

TEST_F(UnitDialog, LoadsTheDefaultsOfTheFirstEight) {
    const auto other_unit = [](DispDataType q) {
        const UnitId* const units = available_units(q);
        return units[0] < unit::count && units[1] < unit::count ? units[1] : units[0];
    };
    for (DispDataType q = 0; q < quantity::count; ++q) db_.SelectUnit(q, other_unit(q));
    bring_up(*dialog_);
    EXPECT_EQ(choice("Depth").GetSelection(), 1);
    click_button("Load default");
    for (DispDataType q = 0; q < quantity::count; ++q)
        EXPECT_EQ(db_.GetSelectUnit(q), q < 8 ? *available_units(q) : other_unit(q)) << "quantity " << q;
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
    EXPECT_TRUE(eventually([&] { return !dialog_->IsShown(); }));
    db_.SelectUnit(quantity::depth, unit::V);  // none of depth's
    bring_up(*dialog_);
    EXPECT_EQ(choice("Depth").GetSelection(), 0) << "left as it was";
    dialog_.reset();
    EXPECT_EQ(created_, 0);
}

TEST_F(UnitDialog, EveryWayOfCreation) {
    PGN_VistelUnitDlg_c later;
    later.Create(&parent_, nullptr, 0);
    EXPECT_EQ(later.GetTitle(), "Unit Selection");
    PGN_VistelUnitDlg_c named(&parent_, nullptr, 77, "Units", wxDefaultPosition, wxDefaultSize,
                              wxDEFAULT_DIALOG_STYLE, 0);
    EXPECT_EQ(named.GetTitle(), "Units");
    EXPECT_EQ(named.GetId(), 77);

    PGN_VistelUnitDlg_c nowhere(HWND{}, &db_, 0), still_empty;
    still_empty.Create(HWND{}, &db_, 0);
    EXPECT_EQ(nowhere.GetHandle(), nullptr);
    EXPECT_EQ(still_empty.GetHandle(), nullptr);

    HostWindow host;
    PGN_VistelUnitDlg_c native(host.handle(), &db_, 0);
    EXPECT_NE(native.GetParent(), nullptr);
    bring_up(native);
    EXPECT_EQ(children_of<wxComboBox>(native).size(), 22u);
}

/// What the user does in a dialog, without the buttons that a window would have for it.
struct PressedUnitDialog : PGN_VistelUnitDlg_c {
    void press_all() {
        wxCommandEvent click;
        wxShowEvent shown;
        OnButtonLDF(click);
        OnButtonApply(click);
        OnButtonClose(click);
        OnShow(shown);
    }
};

TEST_F(UnitDialog, WithoutAWindowButtonsDoNothing) {
    PressedUnitDialog later;
    later.AssignUnitChangeApply(count_apply);
    later.press_all();
    EXPECT_EQ(applied, 0);
    later.Create(&parent_, &db_, 0);
    EXPECT_EQ(children_of<wxComboBox>(later).size(), 22u);
}

}  // namespace
}  // namespace pgn_vistel::test
