#include "monitor/stream_columns.h"

#include <wx/control.h>
#include <wx/dcbuffer.h>

#include <algorithm>

#include "monitor/colours.h"

namespace vistel {

StreamColumns::StreamColumns(wxWindow* parent) : wxPanel(parent) {
    SetBackgroundStyle(wxBG_STYLE_PAINT);
    Bind(wxEVT_PAINT, [this](wxPaintEvent&) { paint(); });
}

void StreamColumns::show(std::vector<Line> lines) {
    if (lines == lines_) return;
    lines_ = std::move(lines);
    Refresh();
}

void StreamColumns::paint() {
    wxAutoBufferedPaintDC dc(this);
    dc.SetBackground(wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOX));
    dc.Clear();
    dc.SetFont(GetFont());
    const int gap = FromDIP(6), width = GetClientSize().x;
    const int number = dc.GetTextExtent("000.0/s").x + gap;
    const int half = dc.GetCharHeight() / 2;
    int source = dc.GetTextExtent("000").x;
    for (const Line& line : lines_) source = std::max(source, dc.GetTextExtent(line.source).x);
    const int title = 2 * gap + source;
    for (const Line& line : lines_) {
        dc.SetTextForeground(line.is_faint ? faint_colour() : text_colour());
        const int y = line.middle - half;
        dc.DrawText(line.source, gap + source - dc.GetTextExtent(line.source).x, y);
        dc.DrawText(wxControl::Ellipsize(line.title, dc, wxELLIPSIZE_END,
                                         std::max(0, width - title - 2 * number - gap)),
                    title, y);
        dc.DrawText(line.rate, width - number - gap - dc.GetTextExtent(line.rate).x, y);
        dc.DrawText(line.age, width - gap - dc.GetTextExtent(line.age).x, y);
    }
}

}  // namespace vistel
