#include "text/utf8.h"

#include <cstdint>

namespace vistel {

namespace {

char* put_multibyte(char* out, std::uint32_t c) {
    const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x800) {
        *out++ = static_cast<char>(0xC0 | c >> 6);
        *out++ = tail(0);
    } else if (c < 0x10000) {
        *out++ = static_cast<char>(0xE0 | c >> 12);
        *out++ = tail(6);
        *out++ = tail(0);
    } else {
        *out++ = static_cast<char>(0xF0 | c >> 18);
        *out++ = tail(12);
        *out++ = tail(6);
        *out++ = tail(0);
    }
    return out;
}

}  // namespace

char* put_utf8(char* out, std::wstring_view text) {
    // Nearly all texts are ASCII but for a degree sign near their end; that part goes without branches.
    constexpr std::size_t block = 16;
    std::size_t i = 0;
    for (; i + block <= text.size(); i += block) {
        std::uint32_t all = 0;
        for (std::size_t k = 0; k < block; ++k) all |= static_cast<std::uint32_t>(text[i + k]);
        if (all >= 0x80) break;
        for (std::size_t k = 0; k < block; ++k) out[k] = static_cast<char>(text[i + k]);
        out += block;
    }
    while (i < text.size()) {
        std::uint32_t c = static_cast<std::uint32_t>(text[i++]);
        if (c < 0x80) {
            *out++ = static_cast<char>(c);
            continue;
        }
        if (c >= 0xD800 && c < 0xE000) {
            const std::uint32_t next = i < text.size() ? static_cast<std::uint32_t>(text[i]) : 0;
            if (c < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
                c = 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00);
                ++i;
            } else {
                c = 0xFFFD;
            }
        } else if (c > 0x10FFFF) {
            c = 0xFFFD;
        }
        out = put_multibyte(out, c);
    }
    return out;
}

std::string utf8_of(std::wstring_view text) {
    std::string result(text.size() * utf8_most, '\0');
    result.resize(static_cast<std::size_t>(put_utf8(result.data(), text) - result.data()));
    return result;
}

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

}  // namespace vistel
