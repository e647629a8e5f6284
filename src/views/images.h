#pragma once

#include <wx/bitmap.h>

namespace pgn_vistel {

/// The buttons' images, 16 by 16 pixels: built at the first call, released with the library.
const wxBitmap& clear_image();
const wxBitmap& pause_image();

}  // namespace pgn_vistel
