#include "core/read.h"

#include "core/tables.h"

namespace pgn_vistel::core {

DispDataType dynamic_quantity(std::uint8_t how, const RawField& raw, const std::uint8_t* data, const DDDef& dd) {
    if (how == air_pressure_if_source_0) {
        constexpr int source_byte = 2;
        return data[source_byte] == 0 ? quantity::atmospheric_pressure : quantity::pressure;
    }
    const DF df = how == quantity_of_format_inside ? static_cast<DF>(raw.bits) : raw.before;
    const DispDataType found = quantity_of_format(df);
    if (is_quantity(found)) return found;
    const DispDataType own = quantity_of_dd(static_cast<int>(dd.dd));
    return is_quantity(own) ? own : DispDataType{quantity::no_quantity};
}

int convert_moved_text(const FieldShape& shape, std::uint64_t bits, TextScratch& scratch, Value& out) {
    scratch.moved.fill(0);
    std::memcpy(scratch.moved.data(), &bits, sizeof bits);
    return convert_text(*shape.format, scratch.moved.data(), static_cast<int>(scratch.moved.size()), shape.bytes,
                        scratch, out);
}

FieldReading read_field(const N2KMsg& msg, const FieldDef& field, PayloadPosition at, const UnitSelection& units,
                        UnitId unit, TextScratch& scratch) {
    FieldReading reading;
    read(FieldShape::of(plan_of(field)), *field.dd, {msg.data, payload_length(msg)}, at, units, unit, scratch,
         reading);
    return reading;
}

std::uint32_t enumeration_value(const Value& value) {
    switch (value.type) {
        case ValueType::u8:
        case ValueType::i8: return value.number.u8;
        case ValueType::u16:
        case ValueType::i16: return value.number.u16;
        default: return value.number.u32;
    }
}

}  // namespace pgn_vistel::core
