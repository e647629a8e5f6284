#include "monitor/plot.h"

#include <wx/control.h>
#include <wx/dcbuffer.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "monitor/colours.h"

namespace vistel {

Plot::Plot(wxWindow* parent) : wxPanel(parent) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    SetMinSize(FromDIP(wxSize(120, 70)));
    Bind(wxEVT_PAINT, [this](wxPaintEvent&) { paint(); });
    Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
        Refresh();
        event.Skip();
    });
}

void Plot::start(const wxString& title) {
    title_ = title;
    points_.clear();
    Refresh();
}

void Plot::add(PlayTime time, double number) {
    if (!std::isfinite(number)) return;
    if (!points_.empty() && time < points_.back().time) points_.clear();  // the recording went back
    points_.push_back({time, number});
    while (points_.size() > most_points || points_.front().time < time - longest) points_.pop_front();
    Refresh();
}

void Plot::paint() {
    wxAutoBufferedPaintDC dc(this);
    dc.SetBackground(wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOX));
    dc.Clear();
    dc.SetFont(GetFont());
    dc.SetTextForeground(text_colour());
    const int gap = FromDIP(4), line_height = dc.GetCharHeight();
    dc.DrawText(wxControl::Ellipsize(title_, dc, wxELLIPSIZE_MIDDLE, GetClientSize().x - 2 * gap), gap, gap);
    if (points_.empty()) return;

    const auto [low, high] = std::ranges::minmax(points_, {}, &Point::number);
    const PlayTime begin = points_.front().time, end = points_.back().time;
    const double range = high.number - low.number;
    const wxString high_text = wxString::Format("%.6g", high.number);
    const wxString low_text = wxString::Format("%.6g", low.number);
    const int left = gap * 2 + std::max(dc.GetTextExtent(high_text).x, dc.GetTextExtent(low_text).x);
    const wxRect area(left, gap + line_height, GetClientSize().x - left - gap,
                      GetClientSize().y - 2 * line_height - 2 * gap);
    if (area.width < 2 || area.height < 2) return;
    dc.SetPen(wxPen(faint_colour()));
    dc.DrawLine(area.GetLeft(), area.GetBottom(), area.GetRight(), area.GetBottom());
    dc.DrawLine(area.GetLeft(), area.GetTop(), area.GetLeft(), area.GetBottom());
    if (range > 0) dc.DrawText(high_text, gap, area.GetTop());
    dc.DrawText(low_text, gap, area.GetBottom() - line_height);
    const wxString span = wxString::Format("%.0f s", static_cast<double>(end - begin) / one_second);
    dc.DrawText(span, area.GetRight() - dc.GetTextExtent(span).x, area.GetBottom() + 1);

    std::vector<wxPoint> line;
    line.reserve(points_.size());
    for (const Point& point : points_) {
        const double x =
            end > begin ? static_cast<double>(point.time - begin) / static_cast<double>(end - begin) : 1;
        const double y = range > 0 ? (point.number - low.number) / range : 0.5;
        line.emplace_back(area.GetLeft() + static_cast<int>(x * area.width),
                          area.GetBottom() - static_cast<int>(y * (area.height - 1)));
    }
    dc.SetPen(wxPen(fresh_colour(), FromDIP(1)));
    if (line.size() > 1) dc.DrawLines(static_cast<int>(line.size()), line.data());
}

}  // namespace vistel
