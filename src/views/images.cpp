#include "views/images.h"

namespace pgn_vistel {

namespace {

#include "views/clear.xpm"
#include "views/pause.xpm"

}  // namespace

const wxBitmap& clear_image() {
    static const wxBitmap image(clear_xpm);
    return image;
}

const wxBitmap& pause_image() {
    static const wxBitmap image(pause_xpm);
    return image;
}

}  // namespace pgn_vistel
