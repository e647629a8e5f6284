#pragma once

#include <wx/dialog.h>

namespace vistel {

class Player;
class TextTable;
class Traffic;

/// What was lost, in all and by PGN and source.
class LossWindow : public wxDialog {
  public:
    explicit LossWindow(wxWindow* parent);
    void show(const Player& player, const Traffic& traffic);

  private:
    TextTable* counts_;
    TextTable* streams_;
};

}  // namespace vistel
