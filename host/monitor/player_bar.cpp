#include "monitor/player_bar.h"

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/sizer.h>
#include <wx/slider.h>
#include <wx/stattext.h>

#include <algorithm>
#include <array>

#include "monitor/player.h"

namespace vistel {

namespace {

constexpr int places = 1000;
constexpr double as_quick_as_possible = 0;
constexpr std::array speeds = {0.1, 0.25, 0.5, 1.0, 2.0, 5.0, 10.0, 60.0, as_quick_as_possible};

wxString speed_text(double speed) {
    return speed == as_quick_as_possible ? wxString("max") : wxString::Format("%g times", speed);
}

}  // namespace

PlayerBar::PlayerBar(wxWindow* parent, Actions actions) : wxPanel(parent), actions_(std::move(actions)) {
    step_ = new wxButton(this, wxID_ANY, "Step");
    place_ = new wxSlider(this, wxID_ANY, 0, 0, places);
    speed_ = new wxChoice(this, wxID_ANY);
    for (const double speed : speeds) speed_->Append(speed_text(speed));
    loop_ = new wxCheckBox(this, wxID_ANY, "Loop");
    step_->SetToolTip("The next message of a recording that is paused");
    place_->SetToolTip("Place in the recording");
    speed_->SetToolTip("Times the recording's own pace");
    loop_->SetToolTip("From the start again at the end");

    step_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { actions_.step(); });
    place_->Bind(wxEVT_SCROLL_THUMBTRACK, [this](wxScrollEvent&) { is_dragged_ = true; });
    place_->Bind(wxEVT_SCROLL_CHANGED, [this](wxScrollEvent& event) {
        is_dragged_ = false;
        actions_.seek(static_cast<double>(event.GetPosition()) / places);
    });
    speed_->Bind(wxEVT_CHOICE, [this](wxCommandEvent& event) {
        const auto chosen = static_cast<std::size_t>(event.GetSelection());
        if (chosen < speeds.size()) player_->set_speed(speeds[chosen]);
    });
    loop_->Bind(wxEVT_CHECKBOX, [this](wxCommandEvent& event) { player_->set_loop(event.IsChecked()); });

    auto* const sizer = new wxBoxSizer(wxHORIZONTAL);
    const auto middle = wxSizerFlags().CenterVertical().Border(wxALL, FromDIP(3));
    sizer->Add(step_, middle);
    sizer->Add(place_, wxSizerFlags(1).CenterVertical());
    sizer->Add(speed_, middle);
    sizer->Add(loop_, middle);
    SetSizer(sizer);
}

void PlayerBar::use(Player& player) {
    player_ = &player;
    const double speed = player.options().speed.value_or(1);
    const auto* const found = std::ranges::find(speeds, speed);
    while (speed_->GetCount() > speeds.size()) speed_->Delete(speed_->GetCount() - 1);
    if (found == speeds.end()) speed_->Append(speed_text(speed));
    speed_->SetSelection(static_cast<int>(found - speeds.begin()));
    loop_->SetValue(player.options().loop);
    Show(player.is_paced());
    loop_->Show(player.can_seek());
    place_->Show(player.can_seek());
    Layout();
    refresh();
}

void PlayerBar::refresh() {
    step_->Enable(player_->paused() && !player_->ended());
    const int place = static_cast<int>(player_->place() * places);
    if (!is_dragged_ && place_->GetValue() != place) place_->SetValue(place);
}

void PlayerBar::change_speed(int steps) {
    const auto at = std::ranges::find(speeds, player_->options().speed.value_or(1));
    const auto last = static_cast<std::ptrdiff_t>(speeds.size()) - 1;
    const std::ptrdiff_t usual = 3;
    const std::ptrdiff_t next =
        std::clamp((at != speeds.end() ? at - speeds.begin() : usual) + steps, std::ptrdiff_t{0}, last);
    player_->set_speed(speeds[static_cast<std::size_t>(next)]);
    speed_->SetSelection(static_cast<int>(next));
}

}  // namespace vistel
