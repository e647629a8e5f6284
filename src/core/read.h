#pragma once

#include <algorithm>
#include <bit>
#include <cstring>

#include "core/convert.h"
#include "core/plan.h"
#include "pgn_vistel/core/decode.h"

static_assert(std::endian::native == std::endian::little,
              "payloads and the message record are little-endian");

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

    /// Gives the field another size, in bits.
    void resize(int size) {
        bytes = size % 8 == 0 ? size / 8 : 0;
        bits = size % 8 == 0 ? 0 : size;
    }

    static FieldShape of(const FieldPlan& plan) {
        const bool whole = (plan.flags & whole_bytes) != 0;
        return {&format_plans[plan.format], whole ? plan.bits / 8 : 0, whole ? 0 : plan.bits, plan.quantity,
                (plan.flags & text) != 0};
    }
};

/// One field cut out and converted. Positions are counted in bits here.
struct FieldValue {
    Value value;
    DispDataType quantity;
    UnitId unit;
    int next;      ///< behind the field
    bool cut_off;  ///< the message ends inside the number
};

/// Eight bytes, of which those behind the `available` ones are 0.
[[gnu::always_inline]] inline std::uint64_t load_bytes(const std::uint8_t* data, int byte, int available) {
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
inline std::uint64_t gather_bits(const std::uint8_t* data, int position, int bits) {
    if (bits <= 0 || bits > 64) return 0;
    constexpr int next = 8;
    const int byte = position >> 3, bit = position & 7;
    std::uint64_t word = load_bytes(data, byte, payload_area - byte) >> bit;
    if (bit + bits > 64 && byte + next < payload_area)
        word |= static_cast<std::uint64_t>(data[byte + next]) << (64 - bit);
    return word << (64 - bits) >> (64 - bits);
}

/// What an integer keeps of its bits under the field's size. The size counts modulo 256, so a field of 32
/// bytes keeps none: the numbers of the product information message, which are given that size, read as 0.
inline std::uint64_t size_mask(int bits) {
    const int count = bits % 256;
    return count < 64 ? (std::uint64_t{1} << count) - 1 : ~std::uint64_t{0};
}

/// Cuts a field out of a payload and converts it. `dd` is asked for its quantity where the payload tells it.
void read(const FieldShape& shape, std::uint32_t dd, const Payload& payload, int position,
          const UnitSelection& units, UnitId unit, TextScratch& scratch, FieldValue& out);

/// A whole number of a known size, as read in line: the bulk of all fields.
struct QuickNumber {
    enum class Kind : std::uint8_t { slow, none, single, real, integer } kind;  ///< `slow`: ask `read`
    ValueType type;                                                             ///< of an integer
    UnitId unit;                                                                ///< the selected one
    int next;            ///< position behind the field, in bits
    std::uint64_t bits;  ///< as sent
    Decimal decimal;     ///< of a single or real number
    // One of these, by the kind.
    float single = 0;
    double real = 0;
    std::int64_t integer = 0;

    void store(Value& out) const {
        switch (kind) {
            case Kind::single: store_single(out, static_cast<double>(single)); break;
            case Kind::real: store_real(out, real); break;
            case Kind::integer: store_integer(out, type, integer); break;
            default: store_none(out); break;
        }
    }
};

[[gnu::always_inline]] inline void read_quick(const FieldPlan& plan, const Payload& payload, int position,
                                              const UnitSelection& units, QuickNumber& out) {
    using Kind = QuickNumber::Kind;
    out.next = position + plan.bits;
    const int byte = position >> 3, bit = position & 7;
    const bool is_quick = (plan.flags & quick) != 0;
    out.kind = Kind::slow;
    out.decimal.decimals = -1;
    if (!is_quick | ((bit & plan.misplaced) != 0) | (out.next > payload.length * 8)) return;

    out.unit = units[plan.quantity];
    const FormatPlan& format = format_plans[plan.format];
    const std::uint64_t word = load_bytes(payload.data, byte, payload_area - byte);
    out.bits = word >> bit & ~std::uint64_t{0} >> (64 - plan.bits);
    if (format.reading == Reading::bit_field) {
        out.kind = Kind::integer;
        out.type = ValueType::u64;
        out.integer = static_cast<std::int64_t>(out.bits);
        return;
    }
    const float factor = unit_factors[static_cast<std::size_t>(format.rule)][out.unit];
    if (factor == 0) return;
    const std::uint64_t sign = std::uint64_t{format.is_signed} << (plan.bits - 1);
    const auto number = static_cast<std::int64_t>((out.bits ^ sign) - sign);
    if (number >= format.first_reserved) {
        out.kind = Kind::none;
    } else if (format.reading == Reading::scaled) {
        out.kind = Kind::single;
        // The product of two single precision numbers is exact in double precision: rounded once, on storing.
        out.single = static_cast<float>(static_cast<double>(scaled(number, format.scale)) *
                                        static_cast<double>(factor));
    } else if (format.reading == Reading::integer) {
        out.kind = Kind::integer;
        out.type = integer_type(format.width, format.is_signed != 0);
        out.integer = number;
    } else if (format.reading == Reading::measured) {
        const Measure& measure = measures[format.measure];
        if (is_none(format, measure, number)) {
            out.kind = Kind::none;
            return;
        }
        const bool fine = is_fine(format, number);
        const double value = measured(measure, number, factor, fine);
        if (factor == 1) out.decimal = decimal_of(measure, number, fine);
        if (fine) {
            out.kind = Kind::real;
            out.real = value;
        } else {
            out.kind = Kind::single;
            out.single = static_cast<float>(value);
        }
    } else if (format.reading == Reading::whole) {
        out.kind = is_none(format, measures[format.measure], number) ? Kind::none : Kind::integer;
        out.type = integer_type(format.width, format.is_signed != 0);
        out.integer = number;
    } else {
        out.kind = Kind::real;
        out.real = static_cast<double>(number) * degrees_per_count_32;
    }
}

/// The entry of a number's code that has a text, or `no_entry`.
inline std::uint16_t find_coded_entry(const FieldPlan& plan, const Payload& payload, int position) {
    if (plan.form != Form::coded || position + plan.bits > payload.length * 8) return no_entry;
    return find_entry(plan.enumeration,
                      static_cast<std::uint32_t>(gather_bits(payload.data, position, plan.bits)));
}

/// Whether a value of the corrected definitions is none: no text stands for it.
inline bool shows_nothing(const FieldPlan& plan, const Value& value) {
    return value.type == ValueType::none && is_of_corrected(format_plans[plan.format]);
}

}  // namespace pgn_vistel::core
