#include "text/quotes.h"

#include <algorithm>

#include "text/characters.h"
#include "text/hex.h"

namespace vistel {

std::string quoted(std::string_view bytes) {
    constexpr std::size_t most = 32;
    const bool is_cut = bytes.ends_with(cut_mark);
    if (is_cut) bytes.remove_suffix(1);
    std::string text = "`";
    for (const char c : bytes.substr(0, most)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
            text += c;
        } else {
            text += "\\x";
            append_hex(text, byte, 2);
        }
    }
    text += is_cut || bytes.size() > most ? "...`" : "`";
    return text;
}

std::string in_quotes(std::string_view typed) {
    constexpr std::size_t most = 60;
    std::size_t size = std::min(typed.size(), most);
    while (size < typed.size() && size > 0 && (typed[size] & 0xC0) == 0x80) --size;  // whole characters
    std::string result = "'";
    for (const char c : typed.substr(0, size))
        result += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? '?' : c;
    return result + (size < typed.size() ? "...'" : "'");
}

}  // namespace vistel
