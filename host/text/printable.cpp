#include "text/printable.h"

#include "text/words.h"

namespace vistel {

std::string printable(std::string_view text) {
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
    return std::string(trimmed(result));
}

}  // namespace vistel
