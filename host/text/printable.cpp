#include "text/printable.h"

#include <algorithm>

#include "text/utf8.h"
#include "text/words.h"

namespace vistel {

namespace {

std::string without_controls(std::string_view text) {
    constexpr std::string_view replacement = "\xEF\xBF\xBD";
    const auto is_control = [](char c, unsigned first, unsigned end) {
        return static_cast<unsigned char>(c) >= first && static_cast<unsigned char>(c) < end;
    };
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (is_control(text[i], 0, 0x20) || text[i] == 0x7F) {
            result += replacement;
        } else if (text[i] == '\xC2' && i + 1 < text.size() && is_control(text[i + 1], 0x80, 0xA0)) {
            // those from U+0080 on have two bytes
            result += replacement;
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}

}  // namespace

std::string printable(std::string_view text) {
    return std::string(trimmed(without_controls(text)));
}

std::string harmless(std::string_view bytes) {
    std::string text(bytes);
    if (!utf16_of(text))
        std::ranges::replace_if(
            text, [](char c) { return (c & 0x80) != 0; }, '?');
    return without_controls(text);
}

}  // namespace vistel
