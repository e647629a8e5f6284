#include "readers/problem.h"

namespace vistel {

std::string quoted(std::string_view bytes) {
    constexpr std::size_t most = 32;
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text = "`";
    for (const char c : bytes.substr(0, most)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
            text += c;
        } else {
            text += "\\x";
            text += digits[byte >> 4];
            text += digits[byte & 15];
        }
    }
    text += bytes.size() > most ? "...`" : "`";
    return text;
}

}  // namespace vistel
