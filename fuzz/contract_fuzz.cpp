// Bytes as one message by way of the text interface: its fields one by one, then the payload as the field of
// any format and as a record of the host's. See MessageHead for the first bytes.
#include "contract/asked_fields.h"
#include "contract/value_printer.h"
#include "support/message_input.h"

namespace {

using namespace pgn_vistel::test;
using fuzz::MessageHead;

void look_up(const UnitSelection& units, const MessageHead& in, const N2KMsg& msg) {
    const int field = field_at(msg.pgn, in.length % 2000, in.unit % 8);
    require(field == -1 || field > 0, "no field");

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

void show_values(QV_N2K_PGN_DB_c& db, const MessageHead& in, const N2KMsg& msg) {
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
    print(static_cast<DF>(all_format_rows()[in.number % all_format_rows().size()].df));

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

/// A database for each selection of units.
QV_N2K_PGN_DB_c& database(std::uint8_t choice, const UnitSelection& units) {
    static std::array<std::unique_ptr<QV_N2K_PGN_DB_c>, 256> all;
    if (!all[choice]) {
        all[choice] = std::make_unique<QV_N2K_PGN_DB_c>();
        for (int q = 0; q < quantity::count; ++q)
            require(all[choice]->SelectUnit(q, units[q]) == 0, "not selected");
    }
    return *all[choice];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::Input input(bytes, size);
    const auto head = input.take<MessageHead>();
    const N2KMsg msg = fuzz::message_of(head, input.rest());
    const UnitSelection& units = fuzz::units_of(head.unit);
    QV_N2K_PGN_DB_c& db = database(head.unit, units);
    look_up(units, head, msg);
    show_values(db, head, msg);
    if (head.length % 2 == 0) check_asked_fields(db, units, msg);
    return 0;
}
