#include "core/read.h"

#include <cassert>

#include "core/tables.h"

namespace pgn_vistel::core {

namespace {

std::uint16_t bytes_before(const std::uint8_t* data, int byte) {
    return static_cast<std::uint16_t>((byte > 1 ? data[byte - 2] : 0) | (byte > 0 ? data[byte - 1] << 8 : 0));
}

/// The quantity where the payload tells it.
DispDataType dynamic_quantity(std::uint8_t how, const RawField& raw, const std::uint8_t* data,
                              std::uint32_t dd) {
    if (how == air_pressure_if_source_0) {
        constexpr int source_byte = 2;
        return data[source_byte] == 0 ? quantity::atmospheric_pressure : quantity::pressure;
    }
    const DF df = how == quantity_of_format_inside ? static_cast<DF>(raw.bits) : raw.before;
    const DispDataType found = quantity_of_format(df);
    if (is_quantity(found)) return found;
    const DispDataType own = quantity_of_dd(static_cast<int>(dd));
    return is_quantity(own) ? own : DispDataType{quantity::no_quantity};
}

/// A text that starts or ends inside a byte. Of the text interface's, only the bits of a number are looked
/// at.
int convert_moved_text(const FieldShape& shape, std::uint64_t bits, const Payload& payload, int position,
                       TextScratch& scratch, Value& out) {
    auto& moved = scratch.moved;
    int room = static_cast<int>(moved.size());
    int bytes = shape.bytes;
    moved.fill(0);
    if (is_of_corrected(*shape.format)) {
        const int wanted = shape.bytes > 0 ? 8 * shape.bytes : shape.bits;
        const int there = std::clamp(payload.length * 8 - position, 0, 8 * room);
        const int size = wanted > 0 ? std::min(wanted, there) : there;
        for (int i = 0; i < size; i += 8)
            moved[static_cast<std::size_t>(i / 8)] =
                static_cast<std::uint8_t>(gather_bits(payload.data, position + i, std::min(size - i, 8)));
        room = bytes = (size + 7) / 8;
    } else {
        std::memcpy(moved.data(), &bits, sizeof bits);
    }
    return convert_text(*shape.format, moved.data(), room, bytes, scratch, out);
}

}  // namespace

void read(const FieldShape& shape, std::uint32_t dd, const Payload& payload, int position,
          const UnitSelection& units, UnitId unit, TextScratch& scratch, FieldValue& out) {
    const int byte = position >> 3;
    const int available = payload.end(byte) - byte;
    const bool aligned = shape.bits == 0 && (position & 7) == 0;
    int bytes = shape.bytes;
    RawField raw{0, 0, bytes};
    if (aligned)
        raw.bits = load_bytes(payload.data, byte, available);
    else
        // Of the text interface, a field sized in bytes that starts inside a byte reads as zeros: the
        // gathering keeps its 0 bits.
        raw.bits = gather_bits(payload.data, position,
                               is_of_corrected(*shape.format) ? shape.bits + 8 * shape.bytes : shape.bits);

    if (shape.quantity <= quantity::no_quantity) {
        out.quantity = shape.quantity;
    } else {
        if (aligned) raw.before = bytes_before(payload.data, byte);
        out.quantity = dynamic_quantity(shape.quantity, raw, payload.data, dd);
    }
    out.unit = is_unit(unit) ? unit : units[out.quantity];

    out.value = {};
    int taken;
    if (!shape.is_text)
        taken = convert(*shape.format, raw, out.unit, scratch, out.value);
    else if (aligned)
        taken = convert_text(*shape.format, payload.data + byte, available, bytes, scratch, out.value);
    else
        taken = convert_moved_text(shape, raw.bits, payload, position, scratch, out.value);
    if (bytes == 0 && shape.bits == 0 && taken > 0) bytes = taken;

    const int size = shape.bits + 8 * bytes;
    out.next = position + size;
    out.cut_off = !shape.is_text && byte < payload.length && out.next > payload.length * 8;
    if (out.cut_off) {
        out.value = {};
    } else if (is_integer(out.value.type) && size > 0) {
        out.value.number.bits &= size_mask(size);
    }
}

FieldReading read_field(const N2KMsg& msg, const FieldDef& field, PayloadPosition at,
                        const UnitSelection& units, UnitId unit, TextScratch& scratch) {
    assert(at.byte >= 0 && at.byte < payload_area && at.bit >= 0 && at.bit <= 7);
    FieldValue v;
    read(FieldShape::of(plan_of(field)), field.dd->dd, {msg.data, payload_length(msg)}, at.byte * 8 + at.bit,
         units, unit, scratch, v);
    return {v.quantity, v.unit, {v.next >> 3, v.next & 7}, v.cut_off, v.value};
}

std::uint32_t enumeration_value(const Value& value) {
    return visit_number(value, value.number.u32(), [&value](auto number) {
        return sizeof number == 1   ? value.number.u8()
               : sizeof number == 2 ? value.number.u16()
                                    : value.number.u32();
    });
}

}  // namespace pgn_vistel::core
