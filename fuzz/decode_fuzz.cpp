// Bytes as one message of any PGN, with any length in its record: as wide lines, UTF-8 text, JSON, CSV and
// values, which have to agree. Then the same bytes by way of the text interface, as the field of any format,
// as a typed text and as a caller's format. See Input for the first bytes.
#include "contract/asked_fields.h"
#include "contract/value_printer.h"

namespace {

using namespace pgn_vistel::test;

struct [[gnu::packed]] Input {
    std::uint16_t number;  // of a row of the catalogue, or a PGN's low bits; a format's number, too
    std::uint16_t length;  // in the message's record
    std::uint8_t mode;  // bit 0: `number` is a PGN, bits 1 and 2 above it; bit 3: lengths just as sent; rest:
                        // value type
    std::uint8_t unit;  // chosen for all quantities, from 140 on: one after the other
};

void look_up(const UnitSelection& units, const Input& in, const N2KMsg& msg) {
    const int field = field_at(msg.pgn, in.length % 2000, in.unit % 8);
    require(field == -1 || field > 0, "no field");
    std::uint8_t keys[4] = {255, 255, 255, 255};
    extract_stream_keys(msg.pgn, msg.data, &keys[0], &keys[1], &keys[2], &keys[3]);

    // Any field anywhere in the record.
    TextScratch scratch;
    const FieldDef& row = all_fields()[in.number % all_fields().size()];
    const PayloadPosition at{in.length % static_cast<int>(sizeof msg.data), in.unit % 8};
    const FieldReading reading = read_field(msg, row, at, units, in.unit, scratch);
    require(reading.next.byte >= at.byte && reading.next.bit >= 0 && reading.next.bit < 8, "no position");
    if (const DDstrings* const set = find_enumeration(row.dd->dd);
        set != nullptr && set->kind != ENUM_FLAGS) {
        const char* const text = enumeration_text(*set, enumeration_value(reading.value));
        require(text == nullptr || std::strlen(text) > 0, "no text");
    }
}

void show_values(QV_N2K_PGN_DB_c& db, const Input& in, const N2KMsg& msg) {
    using pgn_vistel::all_format_rows;
    std::uint8_t field[2 + sizeof msg.data + 16] = {};
    std::memcpy(field, msg.data, sizeof msg.data);
    ConvValue value;
    std::memcpy(&value.value, field, sizeof value.value);
    const auto print = [&](DF df) {
        db.conv_DF(df, &value, field + 2, in.unit);
        printed([&](wchar_t* b, int) { return db.print_val_unit(b, df, field + 2, in.unit); }, 513);
    };
    print(in.number);
    const pgn_vistel::DFDef& format = all_format_rows()[in.number % all_format_rows().size()];
    print(static_cast<DF>(format.df));
    format.parse(&value, reinterpret_cast<const char*>(field + 8), in.unit % unit::count);

    // Types up to CV_WCHAR_PLAIN hold no pointer.
    value.type = std::min<int>(in.mode >> 4, CV_WCHAR_PLAIN);
    std::memcpy(&value.value, field, sizeof value.value);
    wchar_t text[200];
    for (std::size_t i = 0; i < std::size(text); ++i) text[i] = field[8 + i];
    text[std::size(text) - 1] = 0;
    if (value.type <= CV_I64 || value.type == CV_TIME_OF_DAY)
        printed([&](wchar_t* b, int) { return pgn_vistel::print_conv_value(b, text, value); },
                pgn_vistel::print_limit);
    printed([&](wchar_t* b, int) { return pgn_vistel::format_q(b, text, value.value.f32); },
            pgn_vistel::print_limit);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input in;
    if (size < sizeof in) return 0;
    std::memcpy(&in, bytes, sizeof in);
    bytes += sizeof in;
    size -= sizeof in;

    static QV_N2K_PGN_DB_c db;
    UnitSelection units;
    for (int q = 0; q < quantity::count; ++q) {
        constexpr int count = unit::kelvin;  // the last one, which the text interface does not have
        const UnitId u = in.unit < count ? in.unit : (in.unit + q) % count;
        require(units.select(q, u) && db.SelectUnit(q, u) == 0, "not selected");
    }
    N2KMsg msg{};
    msg.pgn =
        (in.mode & 1) != 0 ? in.number | (in.mode & 6u) << 15 : all_pgns()[in.number % all_pgns().size()].pgn;
    msg.destination = in.unit;
    msg.source = in.mode;
    msg.time_stamp = in.length * 65537u;
    std::memcpy(msg.data, bytes, std::min(size, sizeof msg.data));
    msg.length = (in.mode & 8) != 0 ? in.length : static_cast<std::uint16_t>(std::min(size, sizeof msg.data));
    lines_of(msg, in.length % 2 == 0, units, in.number % 300);
    for (const Definitions set : {Definitions::fixed, Definitions::corrected})
        check_shown(msg, in.length % 2 != 0, units, set);
    look_up(units, in, msg);
    check_asked_fields(db, units, msg);
    show_values(db, in, msg);
    return 0;
}
