#include "views/focus_ctrl.h"

#include <wx/button.h>
#include <wx/frame.h>
#include <wx/sizer.h>

#include <memory>

#include "views/windows.h"

namespace pgn_vistel::test {
namespace {

using Reports = std::vector<std::string>;
Reports reports;
wxWindow* expected_owner;

void note(const char* what, wxWindow* owner, long number, const wxString& text = "") {
    EXPECT_EQ(owner, expected_owner);
    reports.push_back(what + std::to_string(number) + (text.empty() ? "" : " " + text.ToStdString()));
}

// Two fields, the first reported by id where ids are in use, and two buttons.
TEST(FocusWatcher, ReportsByIndexOrElseByIdWhereAsked) {
    for (const bool by_index : {true, false}) {
        wxFrame frame(nullptr, wxID_ANY, "Owner");
        expected_owner = &frame;
        auto watcher = std::make_unique<wxFocusCtrl_c>(&frame);
        auto *const first = new wxTextCtrl, *const second = new wxTextCtrl;
        auto* const ok = new wxButton(&frame, wxID_ANY, "OK");
        auto* const stop = new wxButton(&frame, wxID_ANY, "Stop");
        EXPECT_EQ(watcher->create_field(nullptr, 0, 1, "", wxDefaultSize, 0), -1);
        EXPECT_EQ(
            watcher->create_field(first, wxFocusCtrl_c::by_id, 501, "one", wxDefaultSize, wxTE_PROCESS_ENTER),
            0);
        EXPECT_EQ(watcher->create_field(second, 0, 502, "two", wxSize(90, 40), wxTE_PROCESS_ENTER), 1);
        EXPECT_EQ(first->GetValue(), "one");
        EXPECT_EQ(first->GetSize(), wxSize(50, std::max(25, first->GetSize().y)));
        auto* const row = new wxBoxSizer(wxHORIZONTAL);
        for (wxWindow* const each : frame.GetChildren()) row->Add(each);
        frame.SetSizerAndFit(row);
        bring_up(frame);
        click(*stop);
        if (by_index) {
            watcher->on_set_focus = [](wxWindow* w, long n) { note("set ", w, n); };
            watcher->on_kill_focus = [](wxWindow* w, long n, const wxString& t) { note("kill ", w, n, t); };
            watcher->on_enter = [](wxWindow* w, long n, const wxString& t) { note("enter ", w, n, t); };
        }
        watcher->on_set_focus_by_id = [](wxWindow* w, long n) { note("set id ", w, n); };
        watcher->on_kill_focus_by_id = [](wxWindow* w, long n, const wxString& t) {
            note("kill id ", w, n, t);
        };
        watcher->on_enter_by_id = [](wxWindow* w, long n, const wxString& t) { note("enter id ", w, n, t); };
        first->ChangeValue("7");

        const struct {
            wxWindow* clicked;  // null: Enter is pressed
            Reports by_index, by_id;
        } steps[] = {{first, {"set 0"}, {"set id 501"}},
                     {nullptr, {"enter 0 7"}, {"enter id 501 7"}},
                     {second, {"kill 0 7", "set 1"}, {"kill id 501 7"}},
                     {nullptr, {"enter 1 two"}, {}},
                     {ok, {"kill 1 two"}, {}},
                     {stop, {}, {}},
                     {second, {"set 1"}, {}},
                     {first, {"kill 1 two", "set 0"}, {"set id 501"}},
                     {ok, {"kill 0 7"}, {"kill id 501 7"}}};
        for (const auto& step : steps) {
            SCOPED_TRACE(&step - steps);
            reports.clear();
            step.clicked != nullptr ? click(*step.clicked) : press(WXK_RETURN);
            EXPECT_TRUE(
                eventually([&] { return step.clicked == nullptr || wxWindow::FindFocus() == step.clicked; }));
            wxChildFocusEvent again(step.clicked);  // as the toolkit may tell it twice
            frame.ProcessWindowEvent(again);
            EXPECT_EQ(reports, by_index ? step.by_index : step.by_id);
        }
        reports.clear();
        watcher.reset();  // the owner goes on without it
        click(*first);
        press(WXK_RETURN);
        EXPECT_EQ(reports, Reports{});
    }
}

}  // namespace
}  // namespace pgn_vistel::test
