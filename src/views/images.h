#pragma once

#include <wx/image.h>

namespace pgn_vistel {

/// The buttons' images, 16 by 16 pixels, for the life of the library.
const wxImage& clear_image();
const wxImage& pause_image();

}  // namespace pgn_vistel
