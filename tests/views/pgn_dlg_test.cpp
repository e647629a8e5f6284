#include "pgn_vistel/pgn_dlg.h"

#include <wx/bmpbuttn.h>
#include <wx/combobox.h>
#include <wx/dialog.h>

#include <memory>

#include "pgn_vistel/core/units.h"
#include "pgn_vistel/unit_dlg.h"
#include "views/pressed_dialog.h"
#include "views/windows.h"

using namespace pgn_vistel::core;

PGN_VISTEL_TEST_PRODUCT_NAME("Kartentisch für 2")

namespace pgn_vistel::test {
namespace {

/// The parts of a monitor window, as a user finds them.
struct Parts {
    explicit Parts(const PGN_VistelDlg_c& dialog)
        : filter(children_of<wxTextCtrl>(dialog).at(0)),
          unit(wxWindow::FindWindowByLabel("Unit", &dialog)),
          tree(children_of<wxTreeCtrl>(dialog).at(0)),
          units(dynamic_cast<wxDialog*>(wxWindow::FindWindowByLabel("Unit Selection", &dialog))) {
        for (wxBitmapButton* const button : children_of<wxBitmapButton>(dialog)) {
            if (button->GetToolTipText() == "Clear data display") clear = button;
            if (button->GetToolTipText() == "Pause data display") pause = button;
        }
    }
    wxBitmapButton *clear = nullptr, *pause = nullptr;
    wxTextCtrl* filter;
    wxWindow* unit;
    wxTreeCtrl* tree;
    wxDialog* units;
};

class MonitorDialog : public testing::Test {
  protected:
    int put(std::uint8_t source) {
        N2KMsg msg = message_from(source);
        msg.time_stamp = ++time_;
        return PGN_VistelDlg_c::s_PutMsg(dialog_.get(), &msg);
    }
    std::vector<Block> blocks() const { return blocks_of(*parts_.tree); }
    /// Whether messages of a source come through; for sources not used before.
    bool shows(std::uint8_t source) {
        const std::size_t before = blocks().size();
        EXPECT_EQ(put(source), 0);
        return blocks().size() > before;
    }

    int created_ = -1;
    std::uint32_t time_ = 0;
    QV_N2K_PGN_DB_c db_;
    std::unique_ptr<PGN_VistelDlg_c> dialog_ =
        std::make_unique<PGN_VistelDlg_c>(nullptr, &db_, &created_, 100, plain_display);
    Parts parts_{*dialog_};
};

TEST_F(MonitorDialog, StartsHiddenWithItsParts) {
    EXPECT_EQ(created_, 1);
    EXPECT_EQ(dialog_->GetTitle(), "PGN Vistel");
    EXPECT_FALSE(dialog_->IsShown());
    EXPECT_EQ(db_.GetSelectUnit(quantity::duration), unit::minutes);
    ASSERT_TRUE(parts_.clear && parts_.pause && parts_.filter && parts_.unit && parts_.tree && parts_.units);
    EXPECT_EQ(parts_.filter->GetValue(), "FF");
    bring_up(*dialog_);
    EXPECT_EQ(parts_.unit->GetRect().GetRight() + 1, dialog_->GetClientSize().x) << "at the right edge";
    EXPECT_GE(parts_.tree->GetSize().y, 300);
    EXPECT_EQ(put(1), 0);
    ASSERT_EQ(blocks().size(), 1u);
    EXPECT_FALSE(blocks()[0].expanded) << "new streams are collapsed";
    EXPECT_EQ(blocks()[0].lines, lines_of(message_from(1), plain));
    EXPECT_TRUE(dialog_->ExpandAll() == 0 && blocks()[0].expanded);
    EXPECT_TRUE(dialog_->CollapseAll() == 0 && !blocks()[0].expanded);
    dialog_.reset();
    EXPECT_EQ(created_, 0);
}

TEST_F(MonitorDialog, CreatedLater) {
    const std::pair<HINSTANCE, const char*> cases[] = {
        {nullptr, "PGN Vistel"},
        {program(), "Kartentisch für 2"},
        {module_without_name(), ""},
    };
    for (const auto& [module, title] : cases) {
        N2KMsg msg = message_from(1);
        PressedDialog later;
        EXPECT_EQ(later.PutMsg(&msg), -1);
        later.press_all();
        later.SetModule(module);
        later.Create(dialog_.get(), nullptr, 1, 1);
        EXPECT_EQ(later.GetTitle(), wxString::FromUTF8(title));
        EXPECT_EQ(Parts(later).unit, nullptr) << "flag bit value 1";
        EXPECT_EQ(later.PutMsg(&msg), 0) << "what was pressed without a window neither pauses nor filters";
        EXPECT_EQ(blocks_of(*Parts(later).tree).at(0).lines[2], L"Sequence ID: 5 (0x05) ");
        msg.source = 2;
        EXPECT_EQ(later.PutMsg(&msg), -1) << "room for one";
        EXPECT_EQ(later.ClearMsg(), 0);
        EXPECT_EQ(later.PutMsg(&msg), 0);
    }
}

TEST_F(MonitorDialog, FiltersBySource) {
    bring_up(*dialog_);
    EXPECT_TRUE(shows(1));
    // and left by the keyboard; 0: none
    const std::tuple<const char*, std::uint8_t, std::uint8_t> steps[] = {
        {"7", 2, 7},   {"", 2, 0},        // unreadable: as before, 7 alone
        {"zz", 2, 0},  {"23", 23, 0x23},  // hexadecimal
        {"1C4", 0, 2},                    // beyond 255 is all
        {"7", 3, 0},   {"-1", 0, 3},      // its low byte
        {"7", 10, 0},  {"FFFFFFFF", 0, 10}};
    for (const auto& [typed, hidden, shown] : steps) {
        SCOPED_TRACE(typed);
        type_over(*parts_.filter, typed);
        press(WXK_TAB);
        EXPECT_TRUE(eventually([&] { return wxWindow::FindFocus() != parts_.filter; }));
        EXPECT_FALSE(hidden != 0 && shows(hidden));
        EXPECT_TRUE(shown == 0 || shows(shown));
    }
    type_over(*parts_.filter, "8");
    press(WXK_RETURN);
    EXPECT_TRUE(shows(4)) << "the field sends no Enter";
    click(*parts_.tree);
    EXPECT_FALSE(shows(5)) << "leaving by the mouse";

    PGN_VistelDlg_c::s_OnTextSetfocus(dialog_.get(), 0);
    parts_.filter->ChangeValue("9");
    PGN_VistelDlg_c::s_OnTextEnter(dialog_.get(), 1, "9");
    EXPECT_FALSE(shows(9)) << "of another field";
    PGN_VistelDlg_c::s_OnTextEnter(dialog_.get(), 0, "A");
    EXPECT_TRUE(shows(9)) << "the field's text counts";
    EXPECT_FALSE(shows(10));
}

TEST_F(MonitorDialog, DoesWhatItsButtonsSay) {
    bring_up(*dialog_);
    EXPECT_TRUE(shows(1));
    click(*parts_.pause);
    EXPECT_EQ(parts_.pause->GetLabel(), "Continue");
    EXPECT_EQ(put(2), 2);
    EXPECT_EQ(blocks().size(), 1u);
    click(*parts_.pause);
    EXPECT_EQ(parts_.pause->GetLabel(), "Pause");
    EXPECT_TRUE(shows(2));
    click(*parts_.clear);
    EXPECT_TRUE(blocks().empty());
    EXPECT_TRUE(shows(2));

    EXPECT_FALSE(parts_.units->IsShown());
    click(*parts_.unit);
    ASSERT_TRUE(eventually([&] { return parts_.units->IsShownOnScreen(); }));
    EXPECT_TRUE(shows(1)) << "it is not modal";
    EXPECT_EQ(children_of<wxComboBox>(*parts_.units).at(10)->GetValue(), unit_name(unit::minutes));
    close_by_title_bar(*parts_.units);

    EXPECT_TRUE(dialog_->IsShown());
    close_by_title_bar(*dialog_);
    EXPECT_EQ(created_, 1);
    EXPECT_TRUE(shows(3)) << "hidden, messages flow on";
    bring_up(*dialog_);
    EXPECT_EQ(blocks().size(), 3u);
    EXPECT_TRUE(shows(4));
}

TEST_F(MonitorDialog, IsBuiltOnce) {
    EXPECT_TRUE(shows(1));
    const std::size_t windows = wxTopLevelWindows.size(), parts = dialog_->GetChildren().size();
    HostWindow host;
    int created = -1;
    dialog_->Create(nullptr, nullptr, &created, 1, 1);
    dialog_->Create(host.handle(), nullptr, 1, 1);
    auto& units = dynamic_cast<PGN_VistelUnitDlg_c&>(*parts_.units);
    units.Create(nullptr, nullptr, &created, 0);
    EXPECT_EQ(created, -1);
    EXPECT_EQ(wxTopLevelWindows.size(), windows);
    EXPECT_FALSE(host.owns(*dialog_));
    EXPECT_EQ(dialog_->GetChildren().size(), parts);
    EXPECT_TRUE(shows(2)) << "with the room that it had";
    EXPECT_EQ(blocks().size(), 2u);
    dialog_.reset();
    EXPECT_EQ(created_, 0);
}

TEST_F(MonitorDialog, CentresTheFilter) {
    // Where it stands is seen: as much is blank to the left of the text as to its right.
    bring_up(*dialog_);
    const wxRect area = parts_.filter->GetScreenRect().Deflate(6);
    const wxImage picture = picture_of(*dialog_, area);
    int first = area.width, last = 0;
    for (int y = 0; y < area.height; ++y)
        for (int x = 0; x < area.width; ++x) {
            if (picture.GetRed(x, y) > 128) continue;
            first = std::min(first, x);
            last = std::max(last, x);
        }
    ASSERT_LT(first, last);
    EXPECT_NEAR(first, area.width - 1 - last, off_centre);
}

TEST(NativeParent, CarriesADialog) {
    const std::size_t windows_before = wxTopLevelWindows.size();
    HostWindow host;
    QV_N2K_PGN_DB_c db;
    N2KMsg msg = message_from(1);
    {
        PGN_VistelDlg_c empty;
        empty.Create(HWND{}, 10, 0);
        EXPECT_EQ(empty.PutMsg(&msg), -1) << "nothing is built for a null handle";
        PGN_VistelDlg_c dialog(host.handle(), &db, 10, 0), second(host.handle(), 10, 0);
        EXPECT_EQ(db.GetSelectUnit(quantity::duration), unit::minutes);
        EXPECT_NE(dialog.GetParent(), nullptr);
        EXPECT_EQ(dialog.GetParent(), second.GetParent()) << "one stands for the host's window";
        EXPECT_TRUE(host.owns(dialog)) << "a window manager keeps it above";
        bring_up(dialog);
        EXPECT_EQ(dialog.PutMsg(&msg), 0);
        click(*Parts(dialog).clear);
        EXPECT_TRUE(blocks_of(*Parts(dialog).tree).empty());
        close_by_title_bar(dialog);
        resize(host, 410, 310);  // the host's window lives on beside them
        EXPECT_FALSE(host.is_covered());
    }
    int created = -1;
    auto* const left_open = new PGN_VistelDlg_c;
    left_open->Create(host.handle(), &db, 10, 0);
    new PGN_VistelDlg_c(left_open, &db, &created, 10, 0);
    host.destroy();
    EXPECT_EQ(created, 0) << "a parent's windows go with it";
    EXPECT_TRUE(eventually([&] { return wxTopLevelWindows.size() == windows_before; }))
        << "what stood for the host's window goes with it";
}

}  // namespace
}  // namespace pgn_vistel::test
