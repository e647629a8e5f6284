#pragma once

#include <wx/panel.h>

#include <functional>

class wxButton;
class wxCheckBox;
class wxChoice;
class wxSlider;

namespace vistel {

class Player;

/// Speed and place of a recording.
class PlayerBar : public wxPanel {
  public:
    /// What the user asks for.
    struct Actions {
        std::function<void(double)> seek;  ///< to a place between 0 and 1
        std::function<void()> step;
    };

    PlayerBar(wxWindow* parent, Actions actions);

    /// By another player from here on.
    void use(Player& player);
    /// Shows where the player is.
    void refresh();
    /// To the next speed of the list, up or down.
    void change_speed(int steps);

  private:
    Actions actions_;
    Player* player_ = nullptr;
    wxButton* step_;
    wxSlider* place_;
    wxChoice* speed_;
    wxCheckBox* loop_;
    bool is_dragged_ = false;
};

}  // namespace vistel
