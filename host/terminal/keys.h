#pragma once

#include <cstdint>

namespace vistel {

/// A key of the terminal: a character, or one of these.
enum Key : std::uint32_t {
    key_up = 0x110000,  // behind the last character
    key_down,
    key_left,
    key_right,
    key_page_up,
    key_page_down,
    key_home,
    key_end,
    key_enter,
    key_escape,
    key_backspace,
};

}  // namespace vistel
