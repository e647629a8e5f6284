#include "text/hex.h"

namespace vistel {

bool parse_hex(std::string_view text, std::uint32_t& value) {
    if (text.empty() || text.size() > 8) return false;
    std::uint32_t result = 0;
    for (const char c : text) {
        const unsigned digit = hex_digit(c);
        if (digit >= not_hex) return false;
        result = result << 4 | digit;
    }
    value = result;
    return true;
}

void append_hex(std::string& text, std::uint32_t value, unsigned digits) {
    while (digits-- > 0) text += hex_digits[value >> 4 * digits & 15];
}

}  // namespace vistel
