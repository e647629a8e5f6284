#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>
#include <set>
#include <tuple>

#include "can/identifier.h"
#include "encode/choices.h"
#include "encode/message_builder.h"
#include "encode/number_entry.h"
#include "encode/value_entry.h"
#include "output/unit_names.h"

using namespace pgn_vistel;

namespace vistel {
namespace {

QV_N2K_PGN_DB_c& db() {
    return qv_n2k_pgn_db;
}

/// Every field of the message as decoding shows it, and the payload where it does so.
std::vector<TypedField> shown_fields(const N2KMsg& message) {
    N2KMsg msg = message;
    std::vector<TypedField> result;
    MessageWalk walk(find_pgn_def(msg.pgn), msg);
    while (walk.next()) {
        const FieldCell cell(db(), msg, walk.field(), walk.position);
        result.push_back({cell.label(), cell.shown(true)});
        walk.position = cell.next();
    }
    if (walk.has_undecoded_rest()) {
        result.push_back({"Data", ""});
        for (int i = 0; i < payload_length(msg); ++i) {
            char digits[4];
            std::snprintf(digits, sizeof digits, " %02X", msg.data[i]);
            result.back().value += digits;
        }
    }
    return result;
}

bool is_one_frame(std::uint32_t pgn) {
    return !is_fast_packet(pgn);
}

/// A message with everything at random but the texts, three rounds of what repeats.
N2KMsg random_message(std::uint32_t pgn, const std::vector<std::uint8_t>& variant, std::mt19937& random) {
    N2KMsg msg{};
    msg.pgn = pgn;
    msg.length = N2K_MAX_PAYLOAD;
    for (std::uint8_t& byte : msg.data) byte = static_cast<std::uint8_t>(random());
    std::ranges::copy(variant, msg.data);
    static const std::vector<std::string> texts = {"", "Pump 1", "Caf\u00e9 \u20ac",
                                                   "Ostsee \u2192 \u6771\u4eac \U0001F6A2"};
    MessageWalk walk(find_pgn_def(pgn), msg);
    int length = 0;
    constexpr int rounds = 3;
    while (walk.next() && walk.field().repeat <= rounds) {
        FieldCell cell(db(), msg, walk.field(), walk.position);
        const std::uint32_t df = cell.dd().format->df;
        if (cell.holds_text() && df != hex_dump) {
            const bool fixed = df == fixed_text;
            EXPECT_TRUE(enter_value(cell, fixed ? "T" : texts[random() % texts.size()]));
        }
        walk.position = cell.next();
        length = cell.end();
    }
    msg.length = static_cast<std::uint16_t>(length);
    if (is_one_frame(pgn) && length < 8) {
        std::memset(msg.data + length, 0xFF, static_cast<std::size_t>(8 - length));
        msg.length = 8;
    }
    return msg;
}

std::set<std::uint32_t> pgns() {
    std::set<std::uint32_t> numbers;
    for (const FieldDef& row : all_fields())
        if (row.field != 0) numbers.insert(row.pgn);
    return numbers;
}

TEST(Encode, WhatDecodingShowsCanBeTyped) {
    std::mt19937 random(7);
    for (const std::uint32_t pgn : pgns()) {
        const PgnDef* const row = find_pgn_def(pgn);
        if (row == nullptr) continue;
        for (const auto& variant : variants_of(*row))
            for (int i = 0; i < 10; ++i) {
                const N2KMsg msg = random_message(pgn, variant, random);
                const auto typed = shown_fields(msg);
                const BuiltMessage built = build_message(db(), pgn, row, typed);
                for (const std::string& error : built.errors) ADD_FAILURE() << pgn << ": " << error;
                if (!built.errors.empty()) continue;
                const auto shown = shown_fields(built.msg);
                for (std::size_t k = 0; k < std::min(shown.size(), typed.size()); ++k)
                    EXPECT_EQ(shown[k].label + "=" + shown[k].value, typed[k].label + "=" + typed[k].value)
                        << pgn;
                EXPECT_EQ(shown.size(), typed.size()) << pgn;
            }
    }
}

// ---- one field after the other ----

/// Calls `check(cell)` for every kind of field: one for each dictionary entry and size.
template <class Check>
void for_every_kind(Check check) {
    std::set<std::tuple<std::uint32_t, int, int>> met;
    for (const std::uint32_t pgn : pgns()) {
        const PgnDef* const row = find_pgn_def(pgn);
        if (row == nullptr) continue;
        for (const auto& variant : variants_of(*row))
            visit_fields(db(), *row, variant, [&](FieldCell& cell) {
                if (!met.emplace(cell.dd().dd, cell.row().bytes, cell.row().bits).second) return;
                SCOPED_TRACE(std::to_string(pgn) + " " + cell.label());
                check(cell);
            });
    }
    EXPECT_GT(met.size(), 400u);
}

TEST(Encode, FieldsThatAreNotGivenAreNotAvailable) {
    // Without a code for it: some bits, pairs of bits with a text for each value, binary data; and what the
    // product information reads as 0.
    for_every_kind([](FieldCell& cell) {
        if (low_half(cell.row().key1) != no_selector && cell.start().byte < 2)
            return;  // what tells the variant
        const std::uint64_t all = ~std::uint64_t{0} >> (64 - cell.bits());
        ConvValue value;
        cell.read(value, unit::raw_count);
        const bool whole_number = cell.bits() % 8 == 0 && cell.dd().bits == 0 && cell.row().bits == 0;
        const std::uint32_t df = cell.dd().format->df;
        const bool without_code = df == 52 || (df >= 60010 && df <= 60019) || cell.row().pgn == 126996 ||
                                  (cell.start().bit != 0 && whole_number);
        if (cell.holds_text()) {
            EXPECT_EQ(cell.shown().find_first_not_of("F "), std::string::npos) << cell.shown();
        } else if (!whole_number) {
            EXPECT_EQ(cell.raw(), all);
        } else if (!without_code) {
            EXPECT_FALSE(is_available(value)) << cell.shown();
        }
    });
}

TEST(Encode, EveryTextOfACodedField) {
    int entered = 0;
    for_every_kind([&entered](FieldCell& cell) {
        for (const CodedChoice& choice : choices_of(cell)) {
            cell.put(choice.value);
            const std::string shown = cell.shown();  // none where the code is that of "not available"
            const bool none = shown.starts_with('-');
            EXPECT_TRUE(none || shown == choice.text) << shown;
            std::vector<std::string> spellings = {choice.text, simplified(choice.text)};
            if (!holds_flags(cell)) spellings.push_back(std::to_string(choice.value));
            for (const std::string& spelling : spellings) {
                cell.put(none ? 0 : ~std::uint64_t{0});
                EXPECT_TRUE(enter_value(cell, spelling));
                EXPECT_EQ(simplified(cell.shown()), simplified(shown)) << spelling;
            }
            ++entered;
        }
    });
    EXPECT_GT(entered, 1000);
}

// Converting a number of any size to any unit and typing what comes out leads back to it, as far as single
// precision tells numbers apart.
TEST(Encode, EveryUnitOfEveryNumber) {
    std::mt19937_64 random(11);
    int entered = 0;
    for_every_kind([&](FieldCell& cell) {
        for (const UnitId unit : served_units(cell)) {
            if (cell.holds_text() || unit == unit::clock_12 || unit == unit::clock_24) continue;
            const std::string name = unit_text(unit);
            for (int i = 0; i < 20; ++i) {
                cell.put(random() >> random() % 64);
                ConvValue before, after;
                cell.read(before, unit);
                char typed[64];
                if (!is_available(before)) continue;
                if (before.type == CV_FLOAT || before.type == CV_FLOAT_PLAIN)
                    std::snprintf(typed, sizeof typed, "%.9g %s", static_cast<double>(before.value.f32),
                                  name.c_str());
                else if (before.type == CV_DOUBLE)
                    std::snprintf(typed, sizeof typed, "%.17g %s", before.value.f64, name.c_str());
                else
                    continue;
                cell.clear();
                EXPECT_TRUE(enter_value(cell, typed)) << typed;
                cell.read(after, unit);
                EXPECT_EQ(after.type, before.type) << typed;
                if (after.type == CV_DOUBLE) {
                    EXPECT_EQ(after.value.f64, before.value.f64) << typed;
                } else {
                    EXPECT_EQ(after.value.f32, before.value.f32) << typed;
                }
                ++entered;
            }
        }
    });
    EXPECT_GT(entered, 5000);
}

// ---- single cases ----

std::string hex(const N2KMsg& msg) {
    std::string text;
    for (int i = 0; i < msg.length; ++i) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", msg.data[i]);
        text += digits;
    }
    return text;
}

BuiltMessage built(std::uint32_t pgn, const std::vector<TypedField>& fields) {
    return build_message(db(), pgn, find_pgn_def(pgn), fields);
}

TEST(Encode, Payloads) {
    const struct {
        const char* what;
        std::uint32_t pgn;
        std::vector<TypedField> fields;
        const char* payload;
    } cases[] = {
        {"nothing given; signed numbers have their own code", 127250, {}, "FFFFFFFF7FFF7FFF"},
        {"degrees, radians, a text in another case; reserved bits stay 1",
         127250,
         {{"heading sensor reading", "57.2958 \u00B0"},
          {"Deviation", "-0.1 Rad"},
          {"Heading Sensor Reference", "magnetic"}},
         "FF102718FCFF7FFD"},
        {"the nearest number, not the one below",
         127250,
         {{"Heading Sensor Reading", "0.0086 \u00B0"}},
         "FF0200FF7FFF7FFF"},
        {"hours and minutes west of Greenwich",
         129033,
         {{"Local Offset, Minutes", "-3:30"}},
         "FFFFFFFFFFFF2EFF"},
        {"less than an hour", 129033, {{"Local Offset, Minutes", "-0:30:00"}}, "FFFFFFFFFFFFE2FF"},
        {"too little for a double", 127250, {{"Deviation", "-1e-999"}}, "FFFFFF0000FF7FFF"},
        {"a date in another layout than the selected one, a time of day in the other, a signed number",
         129033,
         {{"Date", "2026-09-10"}, {"Time", "1:00:00 PM"}, {"Local Offset, Minutes", "-60 Min"}},
         "E250001DE51BC4FF"},
        {"the count before a group is filled in, labels that are alike in turn",
         127503,
         {{"Line", "1"}, {"Line", "2"}},
         "FF02FDFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF7FFEFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF7F"},
        {"a count that is given stays, and no other is taken for it",
         130071,
         {{"nItems", "9"}, {"Comment", "a"}},
         "FFFF0900FFFFFFFFFFFF04000161"},
        {"the count is \"nItems\", not the total behind it",
         130071,
         {{"Comment", "a"}},
         "FFFF0100FFFFFFFFFFFF04000161"},
        {"a numbered round brings those before it",
         126464,
         {{"PGN supported #2", "129029"}},
         "00FFFFFF05F801"},
        {"rounds without their numbers",
         126464,
         {{"PGN supported", "129029"}, {"PGN supported", "59904"}, {"PGN supported #3", "60928"}},
         "0005F80100EA0000EE00"},
        {"a payload as bytes, and a field put into it",
         61184,
         {{"Data", "01 02 03"}, {"Industry Group", "4"}},
         "018203"},
        {"bytes alone, although they end in a field", 127250, {{"Data", "01 02"}}, "0102"},
        {"bytes of an unknown message", 131000, {{"Data", "010203"}}, "010203"},
        {"the maker's code unless given; a text in 8 bits",
         130818,
         {{"Label", "a\u20AC"}},
         "8998FFFFFF04016180FF"},
        {"a text in 16 bits", 130818, {{"Label", "\u6771"}}, "8998FFFFFF04007167FF"},
        {"a word of a text in brackets, a number that is a text",
         127501,
         {{"Status 1", "on"}, {"Status 2", "DISABLED"}, {"Status 3", "2"}},
         "FFE1FFFFFFFFFFFF"},
        {"flags in any case",
         127489,
         {{"Engine Discrete Status 2", "power reduction, Warning Level 2"}},
         "FFFFFFFFFFFFFFFF7FFF7FFFFFFFFFFFFFFFFFFFFFFF06007F7F"},
        {"texts that are not given are empty",
         126998,
         {{"Installation Description, Field 2", "b"}},
         "02010301620201"},
    };
    for (const auto& c : cases) {
        const BuiltMessage message = built(c.pgn, c.fields);
        EXPECT_TRUE(message.errors.empty())
            << c.what << ": " << (message.errors.empty() ? "" : message.errors[0]);
        EXPECT_EQ(hex(message.msg), c.payload) << c.what;
    }
}

TEST(Encode, UnitsHaveOtherSpellings) {
    const struct {
        std::uint32_t pgn;
        const char* label;
        const char* typed;
        const char* shown;
    } cases[] = {
        {129026, "Speed Over Ground", "12 knots", "12 kt"},
        {129026, "Speed Over Ground", "12 KN", "12 kt"},
        {129026, "Speed Over Ground", "12kts", "12 kt"},
        {129026, "Speed Over Ground", "12km/h", "12 kph"},
        {129026, "Course Over Ground", "12.3 deg", "12.3 \u00B0M"},
        {129026, "Course Over Ground", "12.3 deg T", "12.3 \u00B0T"},
        {129025, "Latitude", "-12.5 degrees", "-12.5 \u00B0 Lat"},
        {129025, "Longitude", "12.5 \u00B0", "12.5 \u00B0 Long"},
        {127251, "Rate of Turn", "-3 deg/min", "-3 \u00B0/min"},
        {130312, "Actual Temperature", "20 degC", "20 \u00B0C"},
        {130312, "Actual Temperature", "70 Fahrenheit", "70 \u00B0F"},
        {130314, "Pressure", "1013 hPa", "1013 mBar"},
        {127505, "Tank Capacity", "400 liters", "400 L"},
        {127505, "Fluid Level", "75 percent", "75 %"},
        {127508, "Battery Voltage", "12.5 Volts", "12.5 V"},
        {127488, "Engine Speed", "900 r/min", "900 RPM"},
        {128267, "Water Depth, Transducer", "10 metres", "10 m"},
    };
    for (const auto& c : cases) {
        const BuiltMessage typed = built(c.pgn, {{c.label, c.typed}}),
                           shown = built(c.pgn, {{c.label, c.shown}});
        EXPECT_EQ(typed.errors, std::vector<std::string>{}) << c.typed;
        EXPECT_EQ(hex(typed.msg), hex(shown.msg)) << c.typed;
        EXPECT_NE(hex(typed.msg), hex(built(c.pgn, {}).msg)) << c.typed;
    }
}

TEST(Encode, WhatIsWrongIsSaid) {
    const struct {
        std::uint32_t pgn;
        TypedField field;
        std::string error;  // how it ends
    } cases[] = {
        {127250,
         {"Headng", "1"},
         "no field 'Headng' in PGN 127250; there are: Sequence ID, Heading Sensor Reading, Deviation, "
         "Variation, Heading Sensor Reference, NMEA Reserved"},
        {129029,
         {"Lattitude", "1"},
         "no field 'Lattitude' in PGN 129029; did you mean 'Latitude' or 'Altitude' or 'Longitude'?"},
        {127489, {"Engine temperature", "1"}, "did you mean 'Engine temp.'?"},
        {129029, {"xyzzy", "1"}, "'vistel encode --list 129029' shows its fields"},
        {127250, {"Heading Sensor Reading", "400"}, "'400' is out of range: from 0 to 375.4707 \u00B0M"},
        {127250, {"Heading Sensor Reading", "-0.01"}, "'-0.01' is out of range: from 0 to 375.4707 \u00B0M"},
        {127250, {"Heading Sensor Reading", "1e999"}, "'1e999' is out of range: from 0 to 375.4707 \u00B0M"},
        {130836, {"OFF Counter", "4294967294"}, "'4294967294' is out of range: from 0 to 4294967292"},
        {130836, {"OFF Counter", "4294967296"}, "'4294967296' is out of range: from 0 to 4294967292"},
        {130841, {"CAN Frame Data", "18446744073709551615"}, "is out of range: from 0 to 1.8446744e+19"},
        {130841, {"CAN Frame Data", "18446744073709551616"}, "is out of range: from 0 to 1.8446744e+19"},
        {127250, {"Deviation", "1,5"}, "'1,5' has a comma: a fraction is typed with a point, as in 1.5"},
        {127250, {"Heading Sensor Reading", "1 ft"}, "has no unit 'ft'; there are: \u00B0M, \u00B0T"},
        {127250, {"Heading Sensor Reading", "north"}, "'north' does not begin with a number"},
        {127250, {"Heading Sensor Reading", "nan"}, "'nan' does not begin with a number"},
        {127250, {"Heading Sensor Reading", ""}, "has no value behind the '='; '-' stands for not available"},
        {127250,
         {"Heading Sensor Reference", "Magn"},
         "has no 'Magn'; there are: True, Magnetic, Error, Null"},
        {127250, {"Heading Sensor Reference", "4"}, "'4' is out of range: from 0 to 3"},
        {127250, {"Sequence ID", "5 (0x06)"}, "5 and (0x06) are different numbers"},
        {127250, {"Sequence ID", "5 m"}, "takes no unit, but has 'm'"},
        {127250, {"Sequence ID", "5 \u00B0"}, "takes no unit, but has '\u00B0'"},
        {129029,
         {"Position date", "31-31-2026"},
         "is not a date from 01-01-1970 to 06-02-2149, as in 09-10-2026 MMDDYYYY or 2026-09-10"},
        {129029, {"Position time", "25:77"}, "'25:77' is not a time of day, as in 13:05:30 or 1:05:30 PM"},
        {129029, {"Position time", "8"}, "'8' is not a time of day, as in 13:05:30 or 1:05:30 PM"},
        {129794,
         {"Name", "A name of more than twenty"},
         "holds 20 characters only: 'A name of more than twenty' has 26"},
        {129794, {"Name", "\u6771"}, "'\u6771' has characters that the field cannot hold"},
        {126208,
         {"Group Function Code", "Read Fields"},
         "Group Function Code has a value for which decoding shows other fields, or none"},
        {131000,
         {"a", "b"},
         "PGN 131000 is not in the catalogue; only its bytes can be given, as in \"Data=01 02 FF\""},
        {127250, {"Data", "0"}, "Data takes the bytes of the payload once, at most 1785, as in 01 02 FF"},
    };
    for (const auto& c : cases) {
        const BuiltMessage message = built(c.pgn, {c.field});
        ASSERT_EQ(message.errors.size(), 1u)
            << c.field.label << "=" << c.field.value << " " << hex(message.msg);
        EXPECT_TRUE(message.errors[0].ends_with(c.error)) << message.errors[0];
    }
    const auto only_error = [](std::uint32_t pgn, std::size_t count, const TypedField& field) {
        const auto errors = built(pgn, std::vector<TypedField>(count, field)).errors;
        return errors.size() == 1 ? errors[0] : std::to_string(errors.size()) + " errors";
    };
    EXPECT_EQ(only_error(129285, 300, {"WP Latitude", "1"}),
              "WP Latitude does not fit into the 1785 bytes of a message");
    EXPECT_TRUE(only_error(129285, 20, {"WP Name", std::string(100, 'x')})
                    .ends_with(" does not fit into the 1785 bytes of a message"));
    const auto twice = built(127250, {{"Deviation", "1"}, {"Deviation", "2"}}).errors;
    ASSERT_EQ(twice.size(), 1u);
    EXPECT_EQ(twice[0], "'Deviation' is given more than once, as often as it is in PGN 127250");
}

}  // namespace
}  // namespace vistel
