#pragma once

#include <wx/panel.h>

#include <functional>
#include <vector>

namespace vistel {

/// Beside a tree: what there is to say of its lines, each text at the height of its line.
class StreamColumns : public wxPanel {
  public:
    struct Line {
        int middle;       ///< height in pixels
        wxString source;  ///< short, a number for instance
        wxString title, rate, age;
        bool is_faint;
        bool operator==(const Line&) const = default;
    };

    explicit StreamColumns(wxWindow* parent);
    void show(std::vector<Line> lines);
    static constexpr int usual_width = 340;  ///< in pixels of the usual scale

  private:
    void paint();

    std::vector<Line> lines_;
};

}  // namespace vistel
