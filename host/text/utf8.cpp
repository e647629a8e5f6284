#include "text/utf8.h"

#include <cstdint>

namespace vistel {

std::optional<std::u16string> utf16_of(std::string_view text) {
    std::u16string result;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i++]);
        const unsigned more = lead < 0x80 ? 0 : lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4 || text.size() - i < more) return {};
        std::uint32_t c = more == 0 ? lead : lead & (0x3Fu >> more);
        for (unsigned k = 0; k < more; ++k) {
            const auto tail = static_cast<unsigned char>(text[i++]);
            if ((tail & 0xC0) != 0x80) return {};
            c = c << 6 | (tail & 0x3Fu);
        }
        // Longer than needed, a half of a pair, or beyond the last character.
        constexpr std::uint32_t least[] = {0, 0x80, 0x800, 0x10000};
        if (c < least[more] || (c >= 0xD800 && c < 0xE000) || c > 0x10FFFF) return {};
        if (c >= 0x10000) {
            result += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            c = 0xDC00 + (c & 0x3FF);
        }
        result += static_cast<char16_t>(c);
    }
    return result;
}

void append_utf8(std::string& text, char32_t c) {
    const auto put = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (c < 0x80) return put(c);
    if (c < 0x800) {
        put(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            put(0xE0 | c >> 12);
        } else {
            put(0xF0 | c >> 18);
            put(0x80 | (c >> 12 & 0x3F));
        }
        put(0x80 | (c >> 6 & 0x3F));
    }
    put(0x80 | (c & 0x3F));
}

}  // namespace vistel
