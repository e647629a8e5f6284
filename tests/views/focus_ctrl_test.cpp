#include "views/focus_ctrl.h"

#include <wx/button.h>
#include <wx/frame.h>
#include <wx/panel.h>
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
/// A callback that notes what it is told.
template <const char* what>
void note_focus(wxWindow* owner, long number) {
    note(what, owner, number);
}
template <const char* what>
void note_text(wxWindow* owner, long number, const wxString& text) {
    note(what, owner, number, text);
}
constexpr char set[] = "set ", kill[] = "kill ", enter[] = "enter ";
constexpr char set_id[] = "set id ", kill_id[] = "kill id ", enter_id[] = "enter id ";

/// Two fields, the first reported by id too where ids are in use, and two buttons.
class FocusWatcher : public testing::Test {
  protected:
    FocusWatcher() {
        expected_owner = frame_.get();
        EXPECT_EQ(watcher_->create_field(nullptr, 0, 1, "", wxDefaultSize, 0), -1);
        EXPECT_EQ(watcher_->create_field(first_, wxFocusCtrl_c::by_id, 501, "one", wxDefaultSize,
                                         wxTE_PROCESS_ENTER),
                  0);
        EXPECT_EQ(watcher_->create_field(second_, 0, 502, "two", wxSize(90, 40), wxTE_PROCESS_ENTER), 1);
        auto* const row = new wxBoxSizer(wxHORIZONTAL);
        for (wxWindow* const each : {static_cast<wxWindow*>(first_), static_cast<wxWindow*>(second_),
                                     static_cast<wxWindow*>(ok_), static_cast<wxWindow*>(stop_)})
            row->Add(each);
        frame_->SetSizer(row);
        row->Fit(frame_.get());
        bring_up(*frame_);
        click(*stop_);
        EXPECT_EQ(wxWindow::FindFocus(), stop_);
        reports.clear();
    }
    ~FocusWatcher() override { watcher_.reset(); }

    void watch_by_index() {
        watcher_->on_set_focus = note_focus<set>;
        watcher_->on_kill_focus = note_text<kill>;
        watcher_->on_enter = note_text<enter>;
    }
    void watch_by_id() {
        watcher_->on_set_focus_by_id = note_focus<set_id>;
        watcher_->on_kill_focus_by_id = note_text<kill_id>;
        watcher_->on_enter_by_id = note_text<enter_id>;
    }
    /// The reports of the focus going to a control.
    Reports reports_of_going_to(wxWindow* control) {
        reports.clear();
        click(*control);
        EXPECT_TRUE(eventually([&] { return wxWindow::FindFocus() == control; }));
        return reports;
    }

    std::unique_ptr<wxFrame> frame_ = std::make_unique<wxFrame>(nullptr, wxID_ANY, "Owner");
    std::unique_ptr<wxFocusCtrl_c> watcher_ = std::make_unique<wxFocusCtrl_c>(frame_.get());
    wxTextCtrl* first_ = new wxTextCtrl;
    wxTextCtrl* second_ = new wxTextCtrl;
    wxButton* ok_ = new wxButton(frame_.get(), wxID_ANY, "OK");
    wxButton* stop_ = new wxButton(frame_.get(), wxID_ANY, "Stop");
};

TEST_F(FocusWatcher, ReportsByIndex) {
    watch_by_index();
    watch_by_id();  // comes second
    EXPECT_EQ(first_->GetValue(), "one");
    EXPECT_EQ(first_->GetSize(), wxSize(50, std::max(25, first_->GetSize().y)));
    EXPECT_EQ(reports_of_going_to(first_), (Reports{"set 0"}));
    EXPECT_EQ(reports_of_going_to(first_), Reports{}) << "it has the focus";
    type_over(*first_, "7");
    EXPECT_EQ(reports_of_going_to(second_), (Reports{"kill 0 7", "set 1"}));
    EXPECT_EQ(reports_of_going_to(ok_), (Reports{"kill 1 two"}));
    EXPECT_EQ(reports_of_going_to(stop_), Reports{}) << "nothing between two strangers";
    EXPECT_EQ(reports_of_going_to(second_), (Reports{"set 1"}));
    reports.clear();
    press(WXK_RETURN);
    EXPECT_EQ(reports, (Reports{"enter 1 two"}));
    EXPECT_EQ(reports_of_going_to(first_), (Reports{"kill 1 two", "set 0"}));
    reports.clear();
    press(WXK_RETURN);
    EXPECT_EQ(reports, (Reports{"enter 0 7"}));
}

TEST_F(FocusWatcher, ReportsByIdWhereAsked) {
    watch_by_id();
    EXPECT_EQ(reports_of_going_to(first_), (Reports{"set id 501"}));
    reports.clear();
    press(WXK_RETURN);
    EXPECT_EQ(reports, (Reports{"enter id 501 one"}));
    EXPECT_EQ(reports_of_going_to(second_), (Reports{"kill id 501 one"})) << "the second did not ask";
    press(WXK_RETURN);
    EXPECT_EQ(reports_of_going_to(ok_), Reports{});
    watcher_.reset();  // the owner goes on without it
    EXPECT_EQ(reports_of_going_to(first_), Reports{});
}

}  // namespace
}  // namespace pgn_vistel::test
