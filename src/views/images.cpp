#include "views/images.h"

namespace pgn_vistel {

namespace {

#include "views/clear.xpm"
#include "views/pause.xpm"

}  // namespace

const wxImage& clear_image() {
    static const wxImage image(clear_xpm);
    return image;
}

const wxImage& pause_image() {
    static const wxImage image(pause_xpm);
    return image;
}

}  // namespace pgn_vistel
