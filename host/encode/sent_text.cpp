#include "encode/sent_text.h"

#include <algorithm>

using namespace pgn_vistel::core;

namespace vistel {

namespace {

/// The 8-bit code that decoding shows as this character, 0 for none.
std::uint8_t code_of(char16_t c) {
    if (c < 0x80) return static_cast<std::uint8_t>(c);
    std::uint8_t code = 0xFF;
    while (code >= 0x80 && character_of(code) != c) --code;
    return code >= 0x80 ? code : std::uint8_t{0};
}

}  // namespace

std::vector<std::uint8_t> sent_text(DF df, std::u16string_view text) {
    const bool medium = df == format::text_medium;
    const bool narrow = std::ranges::all_of(text, [](char16_t c) { return code_of(c) != 0; });
    std::vector<std::uint8_t> body;
    for (const char16_t c : text) {
        body.push_back(narrow ? code_of(c) : static_cast<std::uint8_t>(c));
        if (!narrow) body.push_back(static_cast<std::uint8_t>(c >> 8));
    }
    if (medium && !narrow) body.insert(body.end(), {0, 0});  // decoding leaves out the last character

    const int header = (medium ? sent_medium_text : sent_short_text).header;
    std::size_t length = body.size() + static_cast<std::size_t>(header);
    std::vector<std::uint8_t> field;
    for (int i = 1; i < header; ++i, length >>= 8) field.push_back(static_cast<std::uint8_t>(length));
    field.push_back(static_cast<std::uint8_t>(narrow ? SentEncoding::ascii : SentEncoding::utf16));
    field.insert(field.end(), body.begin(), body.end());
    return field;
}

}  // namespace vistel
