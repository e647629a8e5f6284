#pragma once

#include <algorithm>
#include <cstring>

#include "core/convert.h"
#include "core/plan.h"
#include "pgn_vistel/core/decode.h"

namespace pgn_vistel::core {

constexpr int payload_area = sizeof(N2KMsg::data);

/// The bytes of a payload that a field may look at.
struct Payload {
    const std::uint8_t* data;  ///< of a message record: `payload_area` bytes
    int length;

    /// A field that starts inside the message ends with it; one that a caller asks for beyond the end is read
    /// from the record as it is.
    int end(int byte) const { return byte < length ? length : payload_area; }
};

/// Size and format of a field, from its plan or as a caller gives them.
struct FieldShape {
    const FormatPlan* format;
    int bytes, bits;        ///< normalised size; both 0 where only the value tells
    std::uint8_t quantity;  ///< or how the payload tells it
    bool is_text;           ///< shows what is there where the message cuts it off

    static FieldShape of(const FieldPlan& plan) {
        const bool whole = plan.bits % 8 == 0;
        return {&format_plans[plan.format], whole ? plan.bits / 8 : 0, whole ? 0 : plan.bits, plan.quantity,
                (plan.flags & text) != 0};
    }
};

/// Eight bytes, of which those behind the `available` ones are 0.
inline std::uint64_t load_bytes(const std::uint8_t* data, int byte, int available) {
    constexpr int size = 8;
    std::uint64_t word = 0;
    if (available >= size) {
        std::memcpy(&word, data + byte, size);
    } else if (byte <= payload_area - size) {
        std::memcpy(&word, data + byte, size);
        word &= ~(~std::uint64_t{0} << 8 * std::max(available, 0));
    } else {
        std::memcpy(&word, data + byte, static_cast<std::size_t>(std::max(available, 0)));
    }
    return word;
}

/// The bits of a field that does not start or end on a byte, moved to the bottom of a word.
inline std::uint64_t gather_bits(const std::uint8_t* data, PayloadPosition at, int bits) {
    if (bits <= 0 || bits > 64) return 0;
    std::uint64_t word = load_bytes(data, at.byte, payload_area - at.byte) >> at.bit;
    constexpr int next = 8;
    if (at.bit + bits > 64 && at.byte + next < payload_area)
        word |= static_cast<std::uint64_t>(data[at.byte + next]) << (64 - at.bit);
    return word << (64 - bits) >> (64 - bits);
}

/// What an integer keeps of its bits under the field's size. The size counts modulo 256, so a field of 32 bytes
/// keeps none: the numbers of the product information message, which are given that size, read as 0.
inline std::uint64_t size_mask(int bits) {
    const int count = bits % 256;
    return count < 64 ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0};
}

inline std::uint16_t bytes_before(const std::uint8_t* data, int byte) {
    return static_cast<std::uint16_t>((byte > 1 ? data[byte - 2] : 0) | (byte > 0 ? data[byte - 1] << 8 : 0));
}

/// The quantity where the payload tells it.
DispDataType dynamic_quantity(std::uint8_t how, const RawField& raw, const std::uint8_t* data, const DDDef& dd);

/// A text that starts or ends inside a byte. The message's bytes are not looked at beyond its bits.
int convert_moved_text(const FieldShape& shape, std::uint64_t bits, TextScratch& scratch, Value& out);

/// Cuts a field out of a payload and converts it. `out.value` comes in as `Value{}`.
inline void read(const FieldShape& shape, const DDDef& dd, const Payload& payload, PayloadPosition at,
                 const UnitSelection& units, UnitId unit, TextScratch& scratch, FieldReading& out) {
    const int available = payload.end(at.byte) - at.byte;
    const bool aligned = shape.bits == 0 && at.bit == 0;
    int bytes = shape.bytes;
    RawField raw{0, 0, bytes};
    if (aligned)
        raw.bits = load_bytes(payload.data, at.byte, available);
    else
        // A field sized in bytes that starts inside a byte reads as zeros: the gathering keeps its 0 bits.
        raw.bits = gather_bits(payload.data, at, shape.bits);

    if (shape.quantity <= quantity::no_quantity) {
        out.quantity = shape.quantity;
    } else {
        if (aligned) raw.before = bytes_before(payload.data, at.byte);
        out.quantity = dynamic_quantity(shape.quantity, raw, payload.data, dd);
    }
    out.unit = is_unit(unit) ? unit : units[out.quantity];

    int taken;
    if (!shape.is_text)
        taken = convert_quickly(*shape.format, raw, out.unit, scratch, out.value);
    else if (aligned)
        taken = convert_text(*shape.format, payload.data + at.byte, available, bytes, scratch, out.value);
    else
        taken = convert_moved_text(shape, raw.bits, scratch, out.value);
    if (bytes == 0 && shape.bits == 0 && taken > 0) bytes = taken;

    const int size = shape.bits + 8 * bytes;
    if (!shape.is_text && at.byte < payload.length && at.byte + (at.bit + size + 7) / 8 > payload.length) {
        store_none(out.value);
        out.value.is_left = false;
        out.cut_off = true;
    } else if (is_integer(out.value.type) && size > 0) {
        out.value.number.u64 &= size_mask(size);
    }
    const int next_bit = at.bit + shape.bits;
    out.next = {at.byte + (shape.bits > 0 ? 0 : bytes) + (next_bit >> 3), next_bit & 7};
}

}  // namespace pgn_vistel::core
