#include <algorithm>
#include <iterator>

#include "pgn_vistel/n2k_msg.h"
#include "values/conversions/raw.h"
#include "values/conversions/special.h"
#include "values/conversions/store.h"
#include "values/text_copy.h"

namespace pgn_vistel {

namespace {

enum Encoding : std::uint8_t { utf16 = 0, ascii = 1 };

void copy_ascii(wchar_t* area, const std::uint8_t* text, int most) {
    int count = 0;
    for (; count < most && text[count] != 0; ++count) area[count] = code_page_to_wide(text[count]);
    area[count] = 0;
}

void copy_utf16(wchar_t* area, const std::uint8_t* text, int most) {
    int count = 0;
    for (; count < most; ++count) {
        const auto unit = raw::load<std::uint16_t>(text + 2 * count);
        if (unit == 0) break;
        area[count] = static_cast<wchar_t>(unit);
    }
    area[count] = 0;
}

}  // namespace

void convert_text_short(ConvValue* out, const void* at, UnitId, int* count) {
    static wchar_t area[126];
    constexpr int most = std::size(area) - 1;
    const auto* const field = static_cast<const std::uint8_t*>(at);
    const int length = field[0];  // counts itself and the encoding byte
    store_count(count, length);
    // A field with a length or an encoding that cannot be shows the area's previous text.
    if (length >= 2 && length <= 252 && field[1] <= ascii) {
        if (field[1] == ascii)
            copy_ascii(area, field + 2, std::min(length - 2, most));
        else
            copy_utf16(area, field + 2, std::min((length - 2) / 2, most));
    }
    store_text(out, area);
}

void convert_text_medium(ConvValue* out, const void* at, UnitId, int* count) {
    static wchar_t area[892];
    constexpr int most = std::size(area) - 1;
    const auto* const field = static_cast<const std::uint8_t*>(at);
    const int length = raw::load<std::uint16_t>(field);  // counts itself and the encoding byte
    store_count(count, length);
    if (length >= 3 && length <= N2K_MAX_PAYLOAD && field[2] <= ascii) {
        if (field[2] == ascii)
            copy_ascii(area, field + 3, std::min(length - 3, most));
        else  // the last character is left out: hosts know these texts so
            copy_utf16(area, field + 3, std::clamp((length - 2) / 2 - 1, 0, most));
    }
    store_text(out, area);
}

void convert_text_fixed(ConvValue* out, const void* at, UnitId, int* count) {
    static char area[N2K_MAX_PAYLOAD + 1];
    const int length = count != nullptr ? std::min(*count, N2K_MAX_PAYLOAD) : 0;
    const auto* const field = static_cast<const char*>(at);
    int used = 0;
    // Texts are padded with zeros or with 0xFF.
    for (; used < length && field[used] != 0 && field[used] != '\xFF'; ++used) area[used] = field[used];
    area[used] = 0;
    store_text(out, area);
}

void convert_hex_dump(ConvValue* out, const void* at, UnitId, int* count) {
    static char area[256];
    constexpr int most_characters = 252;
    constexpr char digits[] = "0123456789ABCDEF";
    const int length = count != nullptr ? *count : 0;
    const auto* const field = static_cast<const std::uint8_t*>(at);
    int used = 0;
    for (int i = 0; i < length && used < most_characters; ++i) {
        area[used++] = digits[field[i] >> 4];
        area[used++] = digits[field[i] & 15];
        area[used++] = ' ';
    }
    area[used > 0 ? used - 1 : 0] = 0;  // over the last blank
    store_text(out, area);
}

}  // namespace pgn_vistel
