#include <algorithm>
#include <cstring>
#include <iterator>

#include "contract/parsers/special.h"
#include "contract/store.h"
#include "contract/text_copy.h"
#include "pgn_vistel/core/value.h"

namespace pgn_vistel {

namespace {

/// Copies a text into an area and shows it, for formats that are just that.
template <std::size_t size>
ConvValue* keep_text(ConvValue* out, char (&area)[size], const char* text) {
    if (out == nullptr) return out;
    copy_narrow(area, text, static_cast<int>(size));
    store_text(out, area);
    return out;
}

void put_u16(std::uint8_t* at, unsigned number) {
    at[0] = static_cast<std::uint8_t>(number);
    at[1] = static_cast<std::uint8_t>(number >> 8);
}

}  // namespace

ConvValue* parse_text_short(ConvValue* out, const char* text, UnitId) {
    if (out == nullptr) return out;
    constexpr int header = 2;
    static std::uint8_t area[252];
    constexpr std::size_t room = sizeof area - header;
    if (text == nullptr) text = "";
    const auto wide = [](char c) { return core::character_of(static_cast<std::uint8_t>(c)); };
    const char* const end = text + std::strlen(text);
    if (std::all_of(text, end, [&](char c) { return wide(c) <= 255; })) {
        const auto count = std::min(static_cast<std::size_t>(end - text), room);
        std::memcpy(area + header, text, count);
        area[0] = static_cast<std::uint8_t>(header + count);
        area[1] = static_cast<std::uint8_t>(core::SentEncoding::ascii);
    } else {
        const auto count = std::min(static_cast<std::size_t>(end - text), room / 2);
        for (std::size_t i = 0; i < count; ++i)
            put_u16(area + header + 2 * i, static_cast<unsigned>(wide(text[i])));
        area[0] = static_cast<std::uint8_t>(header + 2 * count);
        area[1] = static_cast<std::uint8_t>(core::SentEncoding::utf16);
    }
    out->type = CV_RAW_FIELD;
    out->value.u64 = 0;
    out->value.raw = area;
    return out;
}

ConvValue* parse_text_medium(ConvValue* out, const char* text, UnitId) {
    if (out == nullptr) return out;
    constexpr int header = 3, bound = 1872;
    static char area[header + bound];
    const int count = copy_narrow(area + header, text, bound);
    // The length leaves out the first two characters instead of counting the header in, so a reader of the
    // field misses the text's last five: the text interface leaves it to the sender to write the field's
    // length.
    put_u16(reinterpret_cast<std::uint8_t*>(area), static_cast<unsigned>(std::max(count - 2, 0)));
    area[2] = static_cast<char>(core::SentEncoding::ascii);
    store_text(out, area);
    return out;
}

ConvValue* parse_text_fixed(ConvValue* out, const char* text, UnitId) {
    static char area[256];
    return keep_text(out, area, text);
}

ConvValue* parse_hex_dump(ConvValue* out, const char* text, UnitId) {
    static char area[256];
    return keep_text(out, area, text);  // the digits as typed, not the bytes that they stand for
}

}  // namespace pgn_vistel
