#include "encode/text_entry.h"

#include <algorithm>

#include "encode/sent_text.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/utf8.h"
#include "text/words.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

/// Compares what is read with what was typed.
Status difference(const FieldCell& cell, std::string_view typed) {
    const std::string shown = cell.shown();
    if (trimmed(shown) == trimmed(typed)) return done;
    if (typed.starts_with(shown)) {
        const auto characters = utf16_of(shown)->size();
        const std::size_t next = shown.size();
        if (next < typed.size() && (typed[next] & 0x80) == 0)
            return failure("holds ", characters, " characters only: ", in_quotes(typed), " is longer");
    }
    return failure(in_quotes(typed), " has characters that the field cannot hold");
}

Status enter_bytes(FieldCell& cell, std::string_view text) {
    const auto bytes = bytes_of(text);
    if (!bytes) return failure(in_quotes(text), " is not bytes, as in 01 02 FF");
    if (const std::size_t room = cell.room(); bytes->size() > room)
        return failure("has ", room, " bytes, not ", bytes->size());
    if (cell.is_corrected()) cell.clear();
    cell.write(*bytes);
    if (cell.may_end_message()) cell.end_behind(static_cast<int>(bytes->size()));
    return done;
}

/// Two digits a byte.
Status enter_decimals(FieldCell& cell, std::string_view text) {
    std::vector<std::uint8_t> bytes(cell.room());
    const bool are_digits = text.find_first_not_of("0123456789") == text.npos;
    if (!are_digits || text.size() != 2 * bytes.size())
        return failure(in_quotes(text), " is not ", 2 * bytes.size(), " decimal digits");
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>((text[2 * i] - '0') * 10 + (text[2 * i + 1] - '0'));
    cell.write(bytes);
    return done;
}

/// A text in a field of a fixed size.
Status enter_padded(FieldCell& cell, std::string_view text, std::u16string_view characters) {
    const bool is_counted = cell.is_corrected() && cell.coding().text == TextLayout::counted;
    const std::size_t room = cell.room() - (is_counted ? 1 : 0);
    if (characters.size() > room)
        return failure("holds ", room, " characters only: ", in_quotes(text), " has ", characters.size());
    std::vector<std::uint8_t> field;
    if (is_counted) field.push_back(static_cast<std::uint8_t>(characters.size()));
    if (const auto narrow = narrow_text(characters); cell.is_corrected() && narrow)
        field.insert(field.end(), narrow->begin(), narrow->end());
    else
        for (const char16_t c : characters) field.push_back(c < 0x100 ? static_cast<std::uint8_t>(c) : 0);
    if (is_counted && characters.size() < room) field.push_back(0);
    field.resize(cell.room(), 0xFF);
    cell.write(field);
    return difference(cell, text);
}

}  // namespace

std::optional<std::vector<std::uint8_t>> bytes_of(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
        std::uint32_t byte = 0;
        if (text.size() < 2 || !parse_hex(text.substr(0, 2), byte)) return {};
        bytes.push_back(static_cast<std::uint8_t>(byte));
        text.remove_prefix(2);
    }
    return bytes;
}

Status enter_text(FieldCell& cell, std::string_view text) {
    if (cell.holds_bytes()) return enter_bytes(cell, text);
    if (cell.is_corrected() && cell.coding().text == TextLayout::decimals)
        return enter_decimals(cell, trimmed(text));
    // Blanks at the end cannot be seen, and decoding puts one of its own there.
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    const std::u16string characters = utf16_of(text).value_or(u"");
    if (!cell.holds_sized_text()) return enter_padded(cell, text, characters);
    const TextForm form = text_form_of(cell);
    const bool is_long = form.header > sent_short_text.header;
    constexpr std::size_t longest = sent_short_text.longest;
    if (!is_long && !cell.is_corrected() && characters.size() > longest - sent_short_text.header)
        return failure("holds ", unsigned{sent_short_text.characters}, " characters only: ", in_quotes(text),
                       " is longer");
    const std::vector<std::uint8_t> field = sent_text(form, characters);
    if (!is_long && !cell.is_corrected() && field.size() > longest)
        return failure(in_quotes(text), " is too long for the field");
    // The length is a byte, which counts what stands in front of the text and not what stands behind.
    const std::size_t around = form.has_zero ? 0 : static_cast<std::size_t>(form.header);
    const std::size_t sent = field.size() - around - (form.has_zero ? 2 : 0);
    if (!is_long && around + sent > 255)
        return failure("holds ", (255 - around) / (sent / characters.size()),
                       " characters only: ", in_quotes(text), " is longer");
    if (field.size() > cell.room())
        return failure(in_quotes(text), " does not fit into the ", unsigned{N2K_MAX_PAYLOAD},
                       " bytes of a message");
    cell.write(field);
    return difference(cell, text);
}

}  // namespace vistel
