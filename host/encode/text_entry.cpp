#include "encode/text_entry.h"

#include <algorithm>

#include "text/hex.h"
#include "text/quotes.h"
#include "text/utf8.h"
#include "text/words.h"

using namespace pgn_vistel;

namespace vistel {

namespace {

/// The 8-bit code that decoding shows as this character, 0 for none.
std::uint8_t code_of(char16_t c) {
    if (c < 0x80) return static_cast<std::uint8_t>(c);
    const ConvFunction show = find_conversion(short_text);
    for (unsigned code = 0x80; code <= 0xFF; ++code) {
        const std::uint8_t field[] = {3, 1, static_cast<std::uint8_t>(code), 0};
        ConvValue value{CV_NOT_AVAILABLE, {}};
        show(&value, field, unit::raw_count, nullptr);
        if (value.type == CV_TEXT && value.value.wide[0] == static_cast<wchar_t>(c))
            return static_cast<std::uint8_t>(code);
    }
    return 0;
}

/// The text in 8 bits a character, or nothing where there are others.
std::optional<std::vector<std::uint8_t>> narrowed(const std::u16string& text) {
    std::vector<std::uint8_t> result;
    for (const char16_t c : text) {
        const std::uint8_t code = code_of(c);
        if (code == 0) return {};
        result.push_back(code);
    }
    return result;
}

/// The field as sent: length, encoding, text. ASCII where that is enough.
std::vector<std::uint8_t> prefixed(const std::u16string& text, std::uint32_t format) {
    enum : std::uint8_t { utf16 = 0, ascii = 1 };
    std::vector<std::uint8_t> body;
    const auto narrow = narrowed(text);
    if (narrow) {
        body = *narrow;
    } else {
        for (const char16_t c : text)
            body.insert(body.end(), {static_cast<std::uint8_t>(c), static_cast<std::uint8_t>(c >> 8)});
        // Of these decoding leaves out the last character.
        if (format == medium_text) body.insert(body.end(), {0, 0});
    }
    const std::size_t header = format == medium_text ? 3 : 2;
    const std::size_t length = body.size() + header;
    std::vector<std::uint8_t> field = {static_cast<std::uint8_t>(length)};
    if (format == medium_text) field.push_back(static_cast<std::uint8_t>(length >> 8));
    field.push_back(narrow ? ascii : utf16);
    field.insert(field.end(), body.begin(), body.end());
    return field;
}

/// Bytes of the field where its size is fixed.
std::size_t room_of(FieldCell& cell) {
    const int count = cell.next().byte - cell.start().byte;
    return std::min(static_cast<std::size_t>(std::max(0, count)), cell.bytes().size());
}

/// Compares what is read with what was typed.
Result<> check_shown(const FieldCell& cell, std::string_view typed) {
    const std::string shown = cell.shown();
    if (trimmed(shown) == trimmed(typed)) return {};
    if (typed.starts_with(shown)) {
        const auto characters = utf16_of(shown)->size();
        const std::size_t next = shown.size();
        if (next < typed.size() && (typed[next] & 0x80) == 0)
            return failure("holds ", characters, " characters only: ", in_quotes(typed), " is longer");
    }
    return failure(in_quotes(typed), " has characters that the field cannot hold");
}

Result<> enter_bytes(FieldCell& cell, std::string_view text) {
    const auto bytes = bytes_of(text);
    if (!bytes) return failure(in_quotes(text), " is not bytes, as in 01 02 FF");
    if (const std::size_t room = room_of(cell); bytes->size() > room)
        return failure("has ", room, " bytes, not ", bytes->size());
    std::ranges::copy(*bytes, cell.bytes().begin());
    cell.end_behind(static_cast<int>(bytes->size()));
    return {};
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

Result<> enter_text(FieldCell& cell, std::string_view text) {
    const std::uint32_t format = cell.dd().format->df;
    if (format == hex_dump) return enter_bytes(cell, text);
    // Blanks at the end cannot be seen, and decoding puts one of its own there.
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    const std::u16string characters = utf16_of(text).value_or(u"");
    std::vector<std::uint8_t> field;
    if (format == fixed_text) {
        const std::size_t room = room_of(cell);
        if (characters.size() > room)
            return failure("holds ", room, " characters only: ", in_quotes(text), " has ", characters.size());
        for (const char16_t c : characters) field.push_back(c < 0x100 ? static_cast<std::uint8_t>(c) : 0);
        field.resize(room, 0xFF);
    } else {
        constexpr std::size_t longest = 250;  // characters, in any of the two
        if (characters.size() > longest && format == short_text)
            return failure("holds 125 characters only: ", in_quotes(text), " is longer");
        field = prefixed(characters, format);
        if (format == short_text && field.size() > 252)
            return failure(in_quotes(text), " is too long for the field");
        if (field.size() > cell.bytes().size())
            return failure(in_quotes(text), " does not fit into the ", unsigned{N2K_MAX_PAYLOAD},
                           " bytes of a message");
    }
    std::ranges::copy(field, cell.bytes().begin());
    return check_shown(cell, text);
}

}  // namespace vistel
