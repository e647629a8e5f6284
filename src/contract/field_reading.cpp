#include "contract/field_reading.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "contract/store.h"
#include "contract/units.h"
#include "core/read.h"

namespace pgn_vistel {

namespace {

constexpr int size_limit = 65535;  // larger sizes cannot come from any table
constexpr int look_back = 2;       // a self-described value's format stands in the two bytes before it

/// Formats that take as many bytes as the text has.
bool is_text_format(std::uint32_t df) {
    const core::FormatPlan* const plan = core::find_format_plan(static_cast<DF>(df));
    return plan != nullptr && core::is_text(plan->reading);
}

DispDataType quantity_of(const N2KMsg& msg, std::uint32_t dd, const std::uint8_t* raw) {
    const DispDataType found = core::quantity_of_dd(static_cast<int>(dd), raw);
    if (!core::is_quantity(found)) return quantity::no_quantity;
    if (found != quantity::pressure) return found;
    constexpr int source_byte = 2;
    const std::uint8_t of_pgn = core::pressure_quantity(msg.pgn);
    const bool is_air = of_pgn == quantity::atmospheric_pressure ||
                        (of_pgn == core::air_pressure_if_source_0 && msg.data[source_byte] == 0);
    return is_air ? quantity::atmospheric_pressure : quantity::pressure;
}

}  // namespace

ReadField read_field(const N2KMsg& msg, const FieldPlace& field, const core::UnitSelection& units,
                     ConvValue* value) {
    int bytes = std::clamp(field.bytes, 0, size_limit);
    const int bits = std::clamp(field.bits, 0, size_limit);
    const auto [byte, bit] = field.at;
    const core::Payload payload{msg.data, core::payload_length(msg)};
    const bool is_text = is_text_format(field.dd->format->df);

    // What a conversion can look at, with zeros behind the message's end: a number, or a text with all that
    // it may say to have.
    constexpr int widest_number = sizeof(std::uint64_t);
    std::array<std::uint8_t, look_back + core::payload_area + widest_number> area;
    std::fill_n(area.begin(), is_text ? area.size() : look_back + 2 * widest_number, std::uint8_t{0});
    std::uint8_t* const raw = area.data() + look_back;
    int count = bytes;
    if (bits > 0 || bit > 0) {
        // A field sized in bytes that starts inside a byte reads as zeros: the gathering keeps its 0 bits.
        const std::uint64_t word = core::gather_bits(msg.data, byte * 8 + bit, bits);
        std::memcpy(raw, &word, sizeof word);
    } else {
        const int before = std::min(byte, look_back);
        const int available = payload.end(byte) - byte;
        const int extent = is_text ? available : std::min(available, widest_number);
        std::memcpy(raw - before, msg.data + byte - before,
                    static_cast<std::size_t>(before) + static_cast<std::size_t>(extent));
        if (is_text) count = std::min(count, available);
    }

    ReadField read;
    read.quantity = quantity_of(msg, field.dd->dd, raw);
    read.unit = is_unit(field.unit) ? field.unit : units[read.quantity];
    field.dd->format->conv(value, raw, read.unit, &count);
    if (bytes == 0 && bits == 0) bytes = count;

    const int used_bits = bit + (bits > 0 ? bits : 8 * bytes);
    if (!is_text && byte < payload.length && byte + (used_bits + 7) / 8 > payload.length) {
        store_not_available(value);
        read.cut_off = true;
    } else if (const int size = bits + 8 * bytes; value->type >= CV_U8 && value->type <= CV_I64 && size > 0) {
        value->value.u64 = bits_of(*value) & core::size_mask(size);
    }
    const int next_bit = bit + bits;
    read.next = {byte + (bits > 0 ? 0 : bytes) + (next_bit >> 3), next_bit & 7};
    return read;
}

}  // namespace pgn_vistel
