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

TextForm text_form_of(const FieldCell& cell) {
    if (!cell.is_corrected()) {
        const bool medium = cell.dd().df == format::text_medium;
        return {(medium ? sent_medium_text : sent_short_text).header, medium, false};
    }
    if (cell.coding().text == TextLayout::counted) return {1, false, true};
    return {cell.coding().header, false, false};
}

std::optional<std::vector<std::uint8_t>> narrow_text(std::u16string_view text) {
    std::vector<std::uint8_t> codes;
    for (const char16_t c : text) {
        codes.push_back(code_of(c));
        if (codes.back() == 0) return {};
    }
    return codes;
}

std::vector<std::uint8_t> sent_text(const TextForm& form, std::u16string_view text) {
    std::optional<std::vector<std::uint8_t>> body = narrow_text(text);
    const bool narrow = body.has_value() || form.has_zero;  // which has no encoding
    if (!body) {
        body.emplace();
        for (const char16_t c : text) {
            body->push_back(narrow && c > 0xFF ? std::uint8_t{0} : static_cast<std::uint8_t>(c));
            if (!narrow) body->push_back(static_cast<std::uint8_t>(c >> 8));
        }
    }
    if (form.is_cut && !narrow) body->insert(body->end(), {0, 0});

    const bool counts_itself = !form.has_zero;
    std::size_t length = body->size() + (counts_itself ? static_cast<std::size_t>(form.header) : 0);
    std::vector<std::uint8_t> field;
    for (int i = counts_itself; i < form.header; ++i, length >>= 8)
        field.push_back(static_cast<std::uint8_t>(length));
    if (counts_itself)
        field.push_back(static_cast<std::uint8_t>(narrow ? SentEncoding::ascii : SentEncoding::utf16));
    field.insert(field.end(), body->begin(), body->end());
    if (form.has_zero) field.push_back(0);
    return field;
}

}  // namespace vistel
