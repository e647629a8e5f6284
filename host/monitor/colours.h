#pragma once

#include <wx/colour.h>
#include <wx/settings.h>

namespace vistel {

/// One colour, with a part (0 .. 1) of another.
inline wxColour blend(const wxColour& base, const wxColour& other, double part) {
    const auto mixed = [part](unsigned char a, unsigned char b) {
        return static_cast<unsigned char>(a + (b - a) * part);
    };
    return {mixed(base.Red(), other.Red()), mixed(base.Green(), other.Green()),
            mixed(base.Blue(), other.Blue())};
}

inline wxColour text_colour() {
    return wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOXTEXT);
}

inline bool is_dark_theme() {
    return wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOX).GetLuminance() < 0.5;
}

/// What has just changed: readable on the theme's background.
inline wxColour fresh_colour() {
    return is_dark_theme() ? wxColour(110, 230, 110) : wxColour(0, 120, 30);
}

/// What fell silent.
inline wxColour faint_colour() {
    return blend(text_colour(), wxSystemSettings::GetColour(wxSYS_COLOUR_LISTBOX), 0.5);
}

}  // namespace vistel
