#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "contract/parsers/numeric.h"
#include "contract/parsers/special.h"

namespace pgn_vistel {

namespace {

struct UnitFormat {
    UnitId unit;
    DF df;
};

constexpr UnitFormat unit_formats[] = {
#include "unit_format_table.inc"
};

constexpr std::size_t header = sizeof(DF), most_bytes = 4;

struct Field {
    std::array<std::uint8_t, header + most_bytes> bytes{};
    std::size_t size = 0;
};

Field field;

}  // namespace

ConvValue* parse_self_described(ConvValue* out, const char* text, UnitId unit) {
    if (out == nullptr) return out;
    field.size = 0;
    const auto row = std::ranges::find(unit_formats, unit, &UnitFormat::unit);
    if (row == std::end(unit_formats)) {
        out->type = CV_RAW_FIELD;
        out->value.u64 = 0;
        out->value.raw = nullptr;
        return out;
    }
    // A unit that leads to a format need not be one that its parser serves (milliamperes lead to one that
    // takes amperes alone): the field then says "not available".
    parse_numeric(row->df, out, text, unit);
    const auto bytes = static_cast<std::size_t>(parsed_bytes(row->df));
    std::memcpy(field.bytes.data(), &row->df, header);
    std::memcpy(field.bytes.data() + header, &out->value, bytes);
    field.size = header + bytes;
    return out;
}

std::span<const std::uint8_t> self_described_field() {
    return {field.bytes.data(), field.size};
}

}  // namespace pgn_vistel
