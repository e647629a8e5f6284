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

/// Bytes of the field where its size is fixed.
std::size_t room_of(FieldCell& cell) {
    const int count = cell.next().byte - cell.start().byte;
    return std::min(static_cast<std::size_t>(std::max(0, count)), cell.bytes().size());
}

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
    if (const std::size_t room = room_of(cell); bytes->size() > room)
        return failure("has ", room, " bytes, not ", bytes->size());
    std::ranges::copy(*bytes, cell.bytes().begin());
    cell.end_behind(static_cast<int>(bytes->size()));
    return done;
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
    const DF df = cell.dd().df;
    if (df == format::hex_dump) return enter_bytes(cell, text);
    // Blanks at the end cannot be seen, and decoding puts one of its own there.
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    const std::u16string characters = utf16_of(text).value_or(u"");
    std::vector<std::uint8_t> field;
    if (df == format::text_fixed) {
        const std::size_t room = room_of(cell);
        if (characters.size() > room)
            return failure("holds ", room, " characters only: ", in_quotes(text), " has ", characters.size());
        for (const char16_t c : characters) field.push_back(c < 0x100 ? static_cast<std::uint8_t>(c) : 0);
        field.resize(room, 0xFF);
    } else {
        constexpr std::size_t longest = sent_short_text.longest;
        if (df == format::text_short && characters.size() > longest - sent_short_text.header)
            return failure("holds ", unsigned{sent_short_text.characters},
                           " characters only: ", in_quotes(text), " is longer");
        field = sent_text(df, characters);
        if (df == format::text_short && field.size() > longest)
            return failure(in_quotes(text), " is too long for the field");
        if (field.size() > cell.bytes().size())
            return failure(in_quotes(text), " does not fit into the ", unsigned{N2K_MAX_PAYLOAD},
                           " bytes of a message");
    }
    std::ranges::copy(field, cell.bytes().begin());
    return difference(cell, text);
}

}  // namespace vistel
