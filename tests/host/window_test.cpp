#include "monitor/window.h"

#include <wx/choice.h>
#include <wx/filename.h>
#include <wx/infobar.h>
#include <wx/listctrl.h>
#include <wx/splitter.h>
#include <wx/srchctrl.h>
#include <wx/stattext.h>
#include <wx/tglbtn.h>

#include <algorithm>

#include "host/temporary_recording.h"
#include "monitor/colours.h"
#include "monitor/plot.h"
#include "views/windows.h"

namespace vistel {
namespace {

using namespace pgn_vistel::test;
using namespace vistel::test;

/// The first control of a kind in a window, at any depth.
template <class Control>
Control* find_in(const wxWindow& window) {
    for (wxWindow* const child : window.GetChildren()) {
        if (auto* const control = dynamic_cast<Control*>(child)) return control;
        if (auto* const control = find_in<Control>(*child)) return control;
    }
    return nullptr;
}

/// Whether a text that begins so can be seen in a window.
bool shows(const wxWindow& window, const char* start) {
    const auto& children = window.GetChildren();
    return std::any_of(children.begin(), children.end(), [start](const wxWindow* child) {
        const auto* const text = dynamic_cast<const wxStaticText*>(child);
        return (text != nullptr && text->IsShownOnScreen() && text->GetLabel().StartsWith(start)) ||
               shows(*child, start);
    });
}

/// The window, playing as quickly as it can.
struct Shown {
    explicit Shown(MonitorWindow::Options options = {}) {
        options.play.speed = 0;
        window = new MonitorWindow(std::move(options));
        bring_up(*window);
    }
    ~Shown() {
        window->Close();
        EXPECT_TRUE(eventually([] { return wxTopLevelWindows.empty(); }));
    }
    bool open(const std::string& name) { return window->open(name, error); }
    void play_to_end(const TemporaryRecording& recording) {
        ASSERT_TRUE(open(recording.name())) << error;
        EXPECT_TRUE(eventually_says("END")) << status();
    }
    /// In UTF-8.
    std::string status() const { return window->GetStatusBar()->GetStatusText().ToStdString(wxConvUTF8); }
    bool eventually_says(const char* part) const {
        return eventually([&] { return status().find(part) != std::string::npos; });
    }
    std::vector<Block> blocks() const { return blocks_of(*find_in<wxTreeCtrl>(*window)); }
    /// PGN and name of the streams that are shown.
    std::vector<std::wstring> names() const {
        std::vector<std::wstring> found;
        for (const Block& block : blocks()) found.push_back(block.label.substr(block.label.find(L',') + 2));
        return found;
    }

    MonitorWindow* window;
    std::string error;
};

using Names = std::vector<std::wstring>;

const char* const boat =
    "00:00:00,2,127250,7,255,8,00,00,00,ff,7f,ff,7f,fd\n"
    "00:00:01,3,128267,4,255,8,00,2c,01,00,00,ff,7f,ff\n"
    "00:00:02,6,127508,9,255,8,00,b0,04,ff,ff,ff,ff,00\n";

TEST(Window, SaysWhatIsNotShown) {
    const TemporaryRecording too_many(batteries(4200)), few(batteries(2)),
        torn(std::string(boat) + "no line of it\n");
    Shown shown;
    EXPECT_FALSE(shown.open("/none.log"));
    EXPECT_NE(shown.error, "");
    shown.play_to_end(too_many);
    EXPECT_EQ(shown.window->GetTitle(),
              wxFileName(wxString::FromUTF8(too_many.name())).GetFullName() + " - PGN Vistel");
    EXPECT_TRUE(shown.eventually_says("104 without room")) << shown.status();
    shown.play_to_end(few);
    EXPECT_TRUE(shown.status().starts_with("END · 2 devices · 2 streams")) << shown.status();
    EXPECT_EQ(shown.status().find("room"), std::string::npos) << "of this recording alone";
    EXPECT_EQ(shown.blocks().size(), 2u);
    shown.play_to_end(torn);
    const auto* const problems = find_in<wxInfoBar>(*shown.window);
    EXPECT_TRUE(eventually([&] { return problems->IsShown(); }));
}

TEST(Window, ShowsWhatTheFilterAdmits) {
    const TemporaryRecording recording(boat);
    Shown shown;
    shown.play_to_end(recording);
    const Names all = {L"Vessel Heading", L"Water Depth", L"Battery Status"};
    EXPECT_EQ(shown.names(), all);
    EXPECT_EQ(shown.blocks().at(2).label.substr(0, 5), L"2.00 ");

    press('F', wxMOD_CONTROL);
    for (const char key : {'d', 'e', 'p', 't', 'h'}) press(key);
    EXPECT_TRUE(shown.eventually_says("1 of 3 streams")) << shown.status();
    EXPECT_EQ(shown.names(), Names{L"Water Depth"});
    press(WXK_F3);
    auto& tree = *find_in<wxTreeCtrl>(*shown.window);
    EXPECT_TRUE(tree.GetItemText(tree.GetSelection()).Contains("Water Depth"));
    press(WXK_F3);
    EXPECT_TRUE(tree.GetItemText(tree.GetSelection()).Contains("Depth")) << "a field beneath";
    EXPECT_TRUE(tree.IsExpanded(tree.GetItemParent(tree.GetSelection())));
    press(WXK_ESCAPE);
    EXPECT_TRUE(shown.eventually_says("· 3 streams")) << shown.status();
    EXPECT_EQ(shown.names(), all);

    // The device at the second of three addresses.
    auto& devices = *find_in<wxListCtrl>(*shown.window);
    wxRect row;
    ASSERT_TRUE(devices.GetItemRect(1, row));
    const wxPoint at = devices.ClientToScreen(row.GetPosition());
    click_at(at.x + 10, at.y + row.height / 2);
    EXPECT_TRUE(shown.eventually_says("1 of 3 devices · 1 of 3 streams")) << shown.status();
    EXPECT_EQ(shown.names(), Names{L"Vessel Heading"});
    press('R', wxMOD_CONTROL);
    EXPECT_TRUE(shown.eventually_says("3 devices · 3 streams")) << shown.status();
}

TEST(Window, KeepsBusesApart) {
    const TemporaryRecording recording(
        "(1.0) can0 09F11207#05102700FF7FFF7F\n(1.1) boat 09F80107#00000000FFFFFF7F\n"
        "(1.2) boat 09F11207#05EC3D00FF7FFF7F\n(1.3) can0 09F11207#05102700FF7FFF7F\n");
    Shown shown;
    shown.play_to_end(recording);
    EXPECT_TRUE(shown.eventually_says("2 devices · 3 streams")) << shown.status();
    const Names all = {L"Vessel Heading", L"Position, Rapid Update", L"Vessel Heading"};
    EXPECT_EQ(shown.names(), all);
    EXPECT_EQ(shown.blocks().at(0).lines.at(3), L"Heading Sensor Reading: 57.296 °");
    EXPECT_EQ(shown.blocks().at(2).lines.at(3), L"Heading Sensor Reading: 90.825 °");
    auto& buses = *static_cast<wxChoice*>(wxWindow::FindWindowByName("buses", shown.window));
    EXPECT_TRUE(buses.IsShown());
    buses.SetFocus();
    press(WXK_DOWN);
    EXPECT_TRUE(shown.eventually_says("1 device · 1 of 3 streams")) << shown.status();
    press('R', wxMOD_CONTROL);
    EXPECT_TRUE(shown.eventually_says("2 devices · 3 streams")) << shown.status();
    EXPECT_EQ(shown.names(), all);
}

TEST(Window, RedrawsInOtherUnitsAtTheEndOfARecording) {
    const TemporaryRecording recording(boat);
    Shown shown;
    shown.play_to_end(recording);
    const auto depth = [&] { return shown.blocks().at(1).lines.at(3); };
    EXPECT_EQ(depth(), L"Water Depth, Transducer: 9.8425 ft");
    press('U', wxMOD_CONTROL);
    const auto button = [](const char* label) {
        wxWindow* found = nullptr;
        EXPECT_TRUE(eventually([&] { return (found = wxWindow::FindWindowByLabel(label)) != nullptr; }));
        return found;
    };
    click(*button("&Metric"));
    click(*button("&Apply"));
    EXPECT_TRUE(eventually([&] { return depth() == L"Water Depth, Transducer: 3.0000 m"; }))
        << wxString(depth());
    click(*button("&Close"));
}

TEST(Window, PausesAndShowsOneMessage) {
    const TemporaryRecording recording(boat);
    MonitorWindow::Options looped;
    looped.play.loop = true;
    Shown shown(looped);
    ASSERT_TRUE(shown.open(recording.name()));
    EXPECT_TRUE(eventually([&] { return shown.blocks().size() == 3; }));
    press('P', wxMOD_CONTROL);
    EXPECT_TRUE(shown.eventually_says("PAUSED")) << shown.status();
    EXPECT_TRUE(find_in<wxToggleButton>(*shown.window)->GetValue());
    auto& tree = *find_in<wxTreeCtrl>(*shown.window);
    wxTreeItemIdValue cookie;
    tree.SelectItem(tree.GetFirstChild(tree.GetRootItem(), cookie));
    tree.SetFocus();
    press(WXK_RETURN);
    EXPECT_TRUE(eventually([&] { return shows(*shown.window, "127250 Vessel Heading"); }));
}

TEST(Window, PlotsTheNumbersOfOneTime) {
    auto& frame = *new wxFrame(nullptr, wxID_ANY, "plot");
    auto& plot = *new Plot(&frame);
    bring_up(frame);
    for (const double number : {1, 3, 2}) plot.add(0, number);
    const wxColour line = fresh_colour();
    EXPECT_TRUE(eventually([&] {
        wxImageHistogram shown;
        picture_of(frame, plot.GetScreenRect()).ComputeHistogram(shown);
        return shown.count(wxImageHistogram::MakeKey(line.Red(), line.Green(), line.Blue())) > 0;
    }));
    frame.Destroy();
}

TEST(Window, GivesTheLinesRoomWhereItIsNarrow) {
    Settings settings;
    settings.place = wxRect(0, 0, 600, 400);
    settings.layout["devices"] = 460;
    Shown shown({.settings = settings});
    const auto& sides = *find_in<wxSplitterWindow>(*shown.window);
    EXPECT_TRUE(eventually([&] { return sides.GetSashPosition() <= sides.GetSize().x * 2 / 5; }))
        << sides.GetSashPosition();
}

TEST(Window, RemembersWhatItIsTold) {
    const wxString file = wxFileName::CreateTempFileName("window");
    Settings written;
    for (int i = 0; i < 12; ++i) written.remember_source("tcp://host:" + std::to_string(i));
    written.remember_source("tcp://host:9");
    written.place = wxRect(10, 20, 700, 500);
    written.order = 2;
    written.layout = {{"devices", 123}, {"fields_0", 99}};
    written.units.select(pgn_vistel::core::quantity::depth, pgn_vistel::core::unit::m);
    written.save(file);
    Settings read;
    read.load(file);
    EXPECT_EQ(read.place, written.place);
    EXPECT_EQ(read.recent, written.recent);
    EXPECT_EQ(read.recent.front(), "tcp://host:9");
    EXPECT_EQ(read.recent.size(), Settings::most_recent);
    EXPECT_EQ(read.order, 2);
    EXPECT_EQ(read.layout, written.layout);
    EXPECT_EQ(read.units[pgn_vistel::core::quantity::depth], pgn_vistel::core::unit::m);
    EXPECT_EQ(read.units[pgn_vistel::core::quantity::speed], default_unit(pgn_vistel::core::quantity::speed));

    // The window goes by it, and keeps what the user makes of it.
    const TemporaryRecording recording(boat);
    {
        Shown shown({.settings = read, .settings_file = file});
        shown.play_to_end(recording);
        EXPECT_EQ(shown.names(), (Names{L"Water Depth", L"Vessel Heading", L"Battery Status"}))
            << "by source";
        auto& sides = *find_in<wxSplitterWindow>(*shown.window);
        EXPECT_EQ(sides.GetSashPosition(), 123);
        sides.SetSashPosition(234);
    }
    Settings kept;
    kept.load(file);
    EXPECT_EQ(kept.layout["devices"], 234);
    EXPECT_EQ(kept.layout["fields_0"], 99);
    EXPECT_EQ(kept.order, 2);
    kept.units = {};
    kept.save(file);
    Settings usual;
    usual.load(file);
    EXPECT_EQ(usual.units[pgn_vistel::core::quantity::depth],
              default_unit(pgn_vistel::core::quantity::depth));
    wxRemoveFile(file);
}

}  // namespace
}  // namespace vistel
