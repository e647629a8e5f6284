#pragma once

#include <wx/panel.h>

#include <deque>

#include "network/streams.h"

namespace vistel {

/// A number over the last minutes as a line.
class Plot : public wxPanel {
  public:
    explicit Plot(wxWindow* parent);

    /// Begins anew, with what the numbers are called.
    void start(const wxString& title);
    void add(PlayTime time, double number);

    static constexpr PlayTime longest = 300 * one_second;
    static constexpr std::size_t most_points = 4000;

  private:
    void paint();

    struct Point {
        PlayTime time;
        double number;
    };
    wxString title_;
    std::deque<Point> points_;
};

}  // namespace vistel
