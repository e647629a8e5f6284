#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "pgn_vistel/decode.h"
#include "values/conversions/store.h"

namespace pgn_vistel {

namespace {

constexpr int payload_area = sizeof(N2KMsg::data);
constexpr int size_limit = 65535;  // larger sizes cannot come from any table
constexpr int widest_number = 8;   // bytes
constexpr int look_back = 2;       // a self-described value's format stands in the two bytes before it

/// Formats that take as many bytes as the text has.
bool is_text_format(std::uint32_t df) {
    return df == 50 || df == 51 || df == 63 || df == 3002;
}

/// Bytes that a text format will look at, at least the header of the ones that tell their own length.
int text_extent(std::uint32_t df, const std::uint8_t* at, int available, int bytes) {
    constexpr int header = 3;
    if (df == 50) return available > 0 ? std::max<int>(header, at[0]) : header;
    if (df == 51) return available > 1 ? std::max<int>(header, at[0] | at[1] << 8) : header;
    return bytes;
}

/// The bits of a field that does not start or end on a byte, moved to the bottom of a word.
std::uint64_t gather_bits(const std::uint8_t* payload, PayloadPosition at, int bits) {
    const auto copy = [payload](int from, int count) {
        std::uint64_t word = 0;
        count = std::clamp(count, 0, std::max(0, payload_area - from));
        std::memcpy(&word, payload + from, static_cast<std::size_t>(count));
        return word;
    };
    if (bits <= 0 || bits > 64) return 0;
    const int total = at.bit + bits;
    std::uint64_t word = copy(at.byte, (std::min(total, 64) + 7) / 8) >> at.bit;
    if (total > 64) word |= copy(at.byte + 8, (total - 57) / 8) << (64 - at.bit);
    return word << (64 - bits) >> (64 - bits);
}

/// Where a conversion may read: in the payload itself where all that it can look at is there, else a copy
/// with zeros behind (and before) it.
class RawBytes {
  public:
    const std::uint8_t* of_bits(std::uint64_t word, bool text) {
        std::uint8_t* const at = clear(text);
        std::memcpy(at, &word, sizeof word);
        return at;
    }

    const std::uint8_t* of_bytes(const std::uint8_t* payload, int byte, int available, int extent,
                                 bool text) {
        if (available >= extent && byte >= look_back) return payload + byte;
        std::uint8_t* const at = clear(text);
        const int before = std::min(byte, look_back);
        const int count = std::min(extent, available) + before;
        std::memcpy(at - before, payload + byte - before, static_cast<std::size_t>(count));
        return at;
    }

  private:
    std::uint8_t* clear(bool text) {
        const auto used = text ? bytes_.size() : look_back + 2 * widest_number;
        std::fill_n(bytes_.begin(), used, std::uint8_t{0});
        return bytes_.data() + look_back;
    }

    // The longest text, its length word out of range included.
    std::array<std::uint8_t, look_back + payload_area + widest_number> bytes_;
};

bool is_integer_type(std::int32_t type) {
    return type >= CV_U8 && type <= CV_I64;
}

// What an integer keeps of its bits under the field's size. The size counts modulo 256, so a field of 32
// bytes keeps none: the numbers of the product information message, which are given that size, read as 0.
std::uint64_t size_mask(int bits) {
    const int count = bits % 256;
    return count < 64 ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0};
}

}  // namespace

int payload_length(const N2KMsg& msg) {
    return std::min<int>(msg.length, N2K_MAX_PAYLOAD);
}

bool is_decodable(const N2KMsg& msg, int field, const DDDef* dd) {
    return msg.pgn != 0 && msg.pgn != 0xFFFFFFFF && field != 0 && dd != nullptr && dd->format != nullptr &&
           dd->format->conv != nullptr;
}

FieldReading read_field(QV_N2K_PGN_DB_c& db, const N2KMsg& msg, const DDDef& dd, int bytes, int bits,
                        PayloadPosition at, UnitId unit, ConvValue* value) {
    bytes = std::clamp(bytes, 0, size_limit);
    bits = std::clamp(bits, 0, size_limit);
    const int length = payload_length(msg);
    // A field that starts inside the message ends with it; one that a caller asks for beyond the end is read
    // from the record as it is.
    const int end = at.byte < length ? length : payload_area;
    const int available = end - at.byte;
    const std::uint32_t df = dd.format->df;
    const bool text = is_text_format(df);

    RawBytes storage;
    const std::uint8_t* raw;
    int count = bytes;
    if (bits > 0 || at.bit > 0) {
        // A field sized in bytes that starts inside a byte reads as zeros: hosts know it so.
        raw = storage.of_bits(gather_bits(msg.data, at, bits), text);
    } else {
        const std::uint8_t* const start = msg.data + at.byte;
        const int extent = text ? text_extent(df, start, available, bytes) : widest_number;
        raw = storage.of_bytes(msg.data, at.byte, available, std::min(extent, payload_area), text);
        if (text) count = std::min(count, available);
    }

    FieldReading reading;
    const DispDataType quantity = quantity_of_dd(static_cast<int>(dd.dd), raw);
    if (quantity >= 0 && quantity < quantity::no_quantity) reading.quantity = quantity;
    // The two old environment messages, and the atmospheric source of the newer one, carry air pressure.
    if (reading.quantity == quantity::pressure &&
        (msg.pgn == 130310 || msg.pgn == 130311 || (msg.pgn == 130314 && msg.data[2] == 0)))
        reading.quantity = quantity::atmospheric_pressure;

    if (unit >= 0 && unit < unit::count)
        reading.unit = unit;
    else if (reading.quantity != quantity::no_quantity)
        reading.unit = db.GetSelectUnit(reading.quantity);

    dd.format->conv(value, raw, reading.unit, &count);
    if (bytes == 0 && bits == 0) bytes = count;

    const int used_bits = at.bit + (bits > 0 ? bits : 8 * bytes);
    if (!text && at.byte < length && at.byte + (used_bits + 7) / 8 > length) {
        store_not_available(value);
        reading.cut_off = true;
    } else if (const int size = bits + 8 * bytes; is_integer_type(value->type) && size > 0) {
        value->value.u64 &= size_mask(size);
    }

    const int next_bit = at.bit + bits;
    reading.next.byte = at.byte + (bits > 0 ? 0 : bytes) + (next_bit >> 3);
    reading.next.bit = next_bit & 7;
    return reading;
}

const char* enumeration_text(const DDstrings& set, std::uint32_t value) {
    const ValueText* const pairs = set.pairs;
    if (pairs == nullptr) return set.kind == ENUM_UNKNOWN ? "Unknown" : nullptr;
    std::uint32_t index = 0;
    bool found;
    if (set.count == 0) {
        while (pairs[index].text != nullptr && pairs[index].value != value) ++index;
        found = pairs[index].text != nullptr;
    } else {
        index = static_cast<std::uint32_t>(std::lower_bound(pairs, pairs + set.count, value,
                                                            [](const ValueText& pair, std::uint32_t sought) {
                                                                return pair.value < sought;
                                                            }) -
                                           pairs);
        found = index < set.count && pairs[index].value == value;
    }
    if (found) return pairs[index].text;
    switch (set.kind) {
        case ENUM_ENTRY_BELOW: return index > 0 ? pairs[index - 1].text : nullptr;
        case ENUM_RESERVED: return "Reserved";
        case ENUM_UNKNOWN: return "Unknown";
        default: return nullptr;
    }
}

std::uint32_t enumeration_value(const ConvValue& value) {
    switch (value.type) {
        case CV_U8:
        case CV_I8:
        case CV_CHAR: return value.value.u8;
        case CV_U16:
        case CV_I16: return value.value.u16;
        default: return value.value.u32;
    }
}

}  // namespace pgn_vistel
