#include <gtest/gtest.h>

#include <charconv>
#include <cstring>
#include <random>
#include <set>
#include <tuple>

#include "encode/choices.h"
#include "encode/definitions.h"
#include "encode/number_entry.h"
#include "host/shown_fields.h"
#include "output/unit_names.h"

using namespace pgn_vistel::core;

namespace vistel {
namespace {

using namespace test;

ReadingContext& corrected() {
    return context(Definitions::corrected);
}

std::string lines_of(const std::vector<TypedField>& fields) {
    std::string lines;
    for (const TypedField& field : fields) lines += concat(field.label, "=", field.value, "\n");
    return lines;
}

std::string error_of(const Status& status) {
    return status ? "" : status.error().text;
}

/// Calls `visit(pgn, variant)` for every variant of every PGN.
template <class Visit>
void for_every_variant(Visit visit) {
    std::set<std::uint32_t> pgns;
    for (const FieldDef& row : all_fields()) pgns.insert(row.pgn);
    for (const std::uint32_t pgn : pgns)
        if (const PgnDef* const row = find_pgn_def(pgn))
            for (const auto& variant : variants_of(*row)) visit(*row, variant);
}

/// A message with everything at random but the texts, three rounds of what repeats.
N2KMsg random_message(const PgnDef& pgn, const std::vector<std::uint8_t>& variant, std::mt19937& random) {
    N2KMsg msg{};
    msg.pgn = pgn.pgn;
    msg.length = N2K_MAX_PAYLOAD;
    for (std::uint8_t& byte : msg.data) byte = static_cast<std::uint8_t>(random());
    std::ranges::copy(variant, msg.data);
    const char* const texts[] = {"", "Pump 1", "Caf\u00e9 \u20ac", "Ostsee \u2192 \u6771\u4eac \U0001F6A2"};
    MessageWalk walk(&pgn, msg);
    int length = 0;
    constexpr int rounds = 3;
    while (walk.next() && walk.repeat() <= rounds) {
        FieldCell cell(context(), msg, walk);
        if (cell.holds_text() && cell.dd().df != format::hex_dump) {
            std::string text = texts[random() % std::size(texts)];
            if (cell.dd().df == format::text_fixed) text = "T";
            if (cell.dd().df == format::text_medium) text += std::string(200, 'x');
            EXPECT_EQ(error_of(enter_value(cell, text)), "");
        }
        walk.position = cell.next();
        length = cell.end();
    }
    msg.length = static_cast<std::uint16_t>(length);
    if (!is_fast_packet(pgn.pgn) && length < 8) {
        std::memset(msg.data + length, 0xFF, static_cast<std::size_t>(8 - length));
        msg.length = 8;
    }
    return msg;
}

TEST(Encode, WhatDecodingShowsCanBeTyped) {
    std::mt19937 random(7);
    for_every_variant([&random](const PgnDef& pgn, const std::vector<std::uint8_t>& variant) {
        for (int i = 0; i < 10; ++i) {
            const auto typed = shown_fields(random_message(pgn, variant, random));
            BuiltMessage built = build_message(context(), pgn.pgn, &pgn, typed);
            if (built)
                EXPECT_EQ(lines_of(shown_fields(*built)), lines_of(typed)) << pgn.pgn;
            else
                ADD_FAILURE() << pgn.pgn << ": " << joined(built.error().texts);
        }
    });
}

// ---- one field after the other ----

/// Calls `check(cell)` for every kind of field: one for each dictionary entry and size.
template <class Check>
void for_every_kind(Check check) {
    std::set<std::tuple<std::uint32_t, int, int>> met;
    for_every_variant([&](const PgnDef& pgn, const std::vector<std::uint8_t>& variant) {
        visit_fields(context(), pgn, variant, [&](FieldCell& cell) {
            if (!met.emplace(cell.dd().dd, cell.row().bytes, cell.row().bits).second) return;
            SCOPED_TRACE(concat(pgn.pgn, " ", cell.label()));
            check(cell);
        });
    });
    EXPECT_GT(met.size(), 400u);
}

TEST(Encode, FieldsThatAreNotGivenAreNotAvailable) {
    // Without a code for it: some bits, pairs of bits with a text for each value, binary data; and what the
    // product information reads as 0.
    for_every_kind([](FieldCell& cell) {
        if (low_half(cell.row().key1) != no_selector && cell.start().byte < 2)
            return;  // what tells the variant
        const bool whole_number = cell.bits() % 8 == 0 && cell.dd().bits == 0 && cell.row().bits == 0;
        const DF df = cell.dd().df;
        const bool without_code = df == 52 || (df >= 60010 && df <= 60019) ||
                                  cell.row().pgn == pgn::product_information ||
                                  (cell.start().bit != 0 && whole_number);
        if (cell.holds_text()) {
            EXPECT_EQ(cell.shown().find_first_not_of("F "), std::string::npos) << cell.shown();
        } else if (!whole_number) {
            EXPECT_EQ(cell.raw(), ~std::uint64_t{0} >> (64 - cell.bits()));
        } else if (!without_code) {
            EXPECT_FALSE(is_available(cell.read(unit::raw_count).value)) << cell.shown();
        }
    });
}

std::string digits_of(const Value& value) {
    return visit_number(value, std::string(), [](auto number) {
        char area[40];
        return std::string(area, std::to_chars(area, std::end(area), number).ptr);
    });
}

// Converting a number of any size to any unit and typing what comes out leads back to it, as far as single
// precision tells numbers apart.
TEST(Encode, EveryUnitOfEveryNumber) {
    std::mt19937_64 random(11);
    int entered = 0;
    for_every_kind([&](FieldCell& cell) {
        for (const UnitId unit : served_units(cell)) {
            if (cell.holds_text() || unit == unit::clock_12 || unit == unit::clock_24) continue;
            for (int i = 0; i < 20; ++i) {
                cell.put(random() >> random() % 64);
                const Value value = cell.read(unit).value;
                const std::string typed = digits_of(value);
                if (typed.empty() || !is_available(value)) continue;
                cell.clear();
                EXPECT_EQ(error_of(enter_value(cell, concat(typed, " ", unit_text(unit)))), "") << typed;
                EXPECT_EQ(digits_of(cell.read(unit).value), typed);
                ++entered;
            }
        }
    });
    EXPECT_GT(entered, 5000);
}

// ---- corrected definitions ----

bool is_moment(const FieldCell& cell) {
    const DispDataType quantity = cell.read().quantity;
    return quantity == quantity::date || quantity == quantity::time_of_day;
}

/// The field as it would be typed: as decoding shows it, numbers with all their digits.
TypedField typed_field(const FieldCell& cell) {
    const FieldReading reading = cell.read();
    const bool is_exact = is_integer(reading.value.type) && reading.quantity == quantity::no_quantity;
    const bool is_number =
        cell.is_value(reading.value) && cell.texts() == nullptr && !is_exact && !is_moment(cell);
    const std::string digits = is_number ? digits_of(reading.value) : "";
    const bool is_plain = digits.empty() || reading.value.type == ValueType::seconds;
    return {cell.label(), is_plain ? cell.shown(true) : concat(digits, " ", unit_text(reading.unit))};
}

/// Fields whose value does not tell the bits: a line has whole seconds, and days only as long as layouts have
/// room for their year; some bits of flags have no text; several codes have one text, or are shown as none;
/// numbers of the base's formats and of 64 bits have more digits than a value.
bool may_lose_bits(const FieldCell& cell) {
    const FieldReading reading = cell.read();
    return is_moment(cell) || cell.texts() != nullptr || !cell.is_value(reading.value) ||
           reading.value.type == ValueType::seconds ||
           (cell.bits() >= 24 && (reading.value.type == ValueType::single || cell.bits() == 64));
}

std::string random_text(const FieldCell& cell, std::mt19937_64& random) {
    const int size = cell.coding().bits / 8;
    std::string text;
    if (cell.holds_bytes()) {
        for (std::uint64_t i = size > 0 ? static_cast<unsigned>(size) : random() % 6; i > 0; --i)
            append_hex(text, static_cast<std::uint8_t>(random()), 2);
    } else if (cell.coding().text == TextLayout::decimals) {
        for (int i = 0; i < 2 * size; ++i) text += static_cast<char>('0' + random() % 10);
    } else {
        const char* const texts[] = {"", "T", "Pump 1", "Caf\u00e9", "Ostsee \u2192 \u6771\u4eac"};
        const bool has_room = cell.coding().text == TextLayout::sent;
        text = texts[random() % (has_room ? std::size(texts) : 2)];
    }
    return text;
}

/// Everything at random; counts and sizes are small, and what loses bits when it is shown is what is sent for
/// that.
N2KMsg random_message(const PgnDef& definition, std::uint32_t number, std::mt19937_64& random) {
    const ListedMessage message = listed(definition);
    const auto put_conditions = [&message](N2KMsg& to) { apply(message.conditions, to); };
    std::set<const FieldDef*> counts, sizes;
    for (const FieldDef& row : fields_of(definition)) {
        counts.insert(links_of(definition, row).count);
        sizes.insert(links_of(definition, row).size);
    }
    N2KMsg msg{};
    msg.pgn = number;
    msg.length = N2K_MAX_PAYLOAD;
    std::memset(msg.data, 0xFF, sizeof msg.data);
    put_conditions(msg);
    MessageWalk walk(&definition, msg);
    int length = message.shortest;
    std::optional<FieldCell> size;
    for (MessageWalk before = walk; walk.next() && walk.repeat() <= 3; before = walk) {
        FieldCell cell(corrected(), msg, walk);
        if (sizes.contains(cell.coding().row)) size.emplace(cell);
        if (cell.coding().own_bits > 0 && cell.coding().own_bits != cell.coding().bits) {
            // The value of a key: what counts its bytes has to fit.
            size->put(static_cast<std::uint64_t>(cell.coding().own_bits / 8));
            walk = before;
            continue;
        }
        const bool is_small = counts.contains(cell.coding().row) || sizes.contains(cell.coding().row);
        if (!cell.holds_text()) cell.put(is_small ? random() % 4 * 8 : random() >> random() % 64);
        put_conditions(msg);
        const std::uint64_t raw = cell.raw();
        const std::string typed = cell.holds_text() ? random_text(cell, random) : typed_field(cell).value;
        if (!is_small) {
            EXPECT_EQ(error_of(enter_value(cell, typed)), "") << number << ' ' << cell.label();
            put_conditions(msg);
            if (!cell.holds_text()) {
                EXPECT_EQ(typed_field(cell).value, typed) << number << ' ' << cell.label();
                EXPECT_TRUE(cell.raw() == raw || may_lose_bits(cell))
                    << number << ' ' << cell.label() << typed;
            }
        }
        walk.position = cell.next();
        length = std::max(length, cell.end());
    }
    msg.length = static_cast<std::uint16_t>(length);
    const bool fills_frame = !is_fast_packet(number, Definitions::corrected) && number != pgn::iso_request;
    if (fills_frame) msg.length = std::max<std::uint16_t>(msg.length, 8);
    return msg;
}

TEST(Encode, WhatCorrectedDefinitionsShowCanBeTyped) {
    std::mt19937_64 random(13);
    int same = 0;
    for (const PgnDef& definition : all_corrected_pgns()) {
        constexpr std::uint32_t without_variants = 65500;
        const std::uint32_t number = definition.pgn != 0 ? definition.pgn : without_variants;
        for (int i = 0; i < (definition.pgn != 0 ? 3 : 1); ++i) {
            N2KMsg msg = random_message(definition, number, random);
            if (find_definition(Definitions::corrected, msg) != &definition) continue;
            MessageWalk walk(&definition, msg);
            const auto typed = typed_fields(walk, msg, Definitions::corrected, typed_field);
            BuiltMessage built = build_corrected(corrected(), number, definition, typed);
            if (!built)
                ADD_FAILURE() << pgn_name(&definition) << ": " << joined(built.error().texts);
            else
                EXPECT_EQ(hex(*built), hex(msg)) << pgn_name(&definition) << '\n' << lines_of(typed);
            ++same;
        }
    }
    EXPECT_GT(same, 1900);
}

// ---- single cases ----

/// Fields are typed with bars between them.
std::vector<TypedField> parsed(std::string_view typed) {
    std::vector<TypedField> fields;
    while (!typed.empty()) {
        const std::string_view field = typed.substr(0, typed.find('|'));
        typed.remove_prefix(std::min(field.size() + 1, typed.size()));
        const std::size_t sign = field.find('=');
        fields.push_back({std::string(field.substr(0, sign)), std::string(field.substr(sign + 1))});
    }
    return fields;
}

/// The payload of a message, or the one thing that is wrong.
std::string built(std::uint32_t pgn, std::string_view typed) {
    BuiltMessage message = build_message(context(), pgn, find_pgn_def(pgn), parsed(typed));
    if (message) return hex(*message);
    EXPECT_EQ(message.error().texts.size(), 1u);
    return message.error().texts.front();
}

bool is_hex(std::string_view text) {
    return text.find_first_not_of("0123456789ABCDEF") == text.npos;
}

/// A payload, or the end of an error.
void expect(const std::string& result, const std::string& expected, const std::string& typed) {
    const bool is_met = is_hex(expected) ? result == expected : result.ends_with(expected);
    EXPECT_TRUE(is_met) << typed << ": " << result;
}

TEST(Encode, TypedFields) {
    const auto repeated = [](const std::string& field, int times) {
        std::string fields = field;
        while (--times > 0) fields += '|' + field;
        return fields;
    };
    // What is typed, and the payload or the end of the only message.
    const std::tuple<std::uint32_t, std::string, std::string> cases[] = {
        // clang-format off
        // nothing given; signed numbers have their own code
        {127250, "", "FFFFFFFF7FFF7FFF"},
        // degrees, radians, a text in another case; reserved bits stay 1
        {127250, "heading sensor reading=57.2958 \u00B0|Deviation=-0.1 Rad|Heading Sensor Reference=magnetic",
         "FF102718FCFF7FFD"},
        // the nearest number, not the one below; half a step goes to zero
        {127250, "Heading Sensor Reading=0.0086 \u00B0", "FF0200FF7FFF7FFF"},
        {65014, "Utility Phase A Line-Neutral AC RMS Voltage=44.5", "FFFF2C00FFFFFFFF"},
        // of numbers that single precision takes for one, that with the typed digits
        {65018, "Generator Total kW Hours Export=923468097.0|Generator Total kW Hours Import=1e9", "41010B3700CA9A3B"},
        {65007, "Utility Phase C Real Power=-500060179 W", "ED436759FFFFFFFF"},
        // hours and minutes west of Greenwich; too little for a double
        {129033, "Local Offset, Minutes=-3:30", "FFFFFFFFFFFF2EFF"},
        {129033, "Local Offset, Minutes=-0:30:00", "FFFFFFFFFFFFE2FF"},
        {127250, "Deviation=-1e-999", "FFFFFF0000FF7FFF"},
        // a date in another layout than the selected one, a time of day in the other
        {129033, "Date=2026-09-10|Time=1:00:00 PM|Local Offset, Minutes=-60 Min", "E250001DE51BC4FF"},
        {129033, "Time=12:30 AM", "FFFF80A81201FF7F"}, {129033, "Time=12:30:00 PM", "FFFF8074D21AFF7F"},
        {129033, "Time=0:30", "FFFF80A81201FF7F"},
        // the count before a group is filled in, labels that are alike in turn
        {127503, "Line=1|Line=2", "FF02FDFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF7FFEFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF7F"},
        // a count that is given stays, and no other is taken for it: neither the total behind it
        {130071, "nItems=9|Comment=a", "FFFF0900FFFFFFFFFFFF04000161"},
        {130071, "Comment=a", "FFFF0100FFFFFFFFFFFF04000161"},
        // a numbered round brings those before it; rounds without their numbers
        {126464, "PGN supported #2=129029", "00FFFFFF05F801"},
        {126464, "PGN supported=129029|PGN supported=59904|PGN supported #3=60928", "0005F80100EA0000EE00"},
        // a payload as bytes, and a field put into it; one that changes the variant; an unknown message
        {61184, "Data=01 02 03|Industry Group=4", "018203"}, {127250, "Data=01 02", "0102"},
        {131000, "Data=010203", "010203"},
        {126720, "Data=83 98|Manufacturer Code=Keldor|Product Code=1", "89980100FFFF"},
        // the maker's code unless given; texts in 8 bits, in 16 bits, with control characters, of no characters
        {130818, "Label=a\u20AC", "8998FFFFFF04016180FF"}, {130818, "Label=\u6771", "8998FFFFFF04007167FF"},
        {130818, "Label=a\x01", "8998FFFFFF04016101FF"},
        {126998, "Installation Description, Field 2=b", "02010301620201"},
        // a word of a text in brackets, a number that is a text; fewer bytes than the field has; flags in any case
        {127501, "Status 1=on|Status 2=DISABLED|Status 3=2", "FFE1FFFFFFFFFFFF"},
        {130816, "Message Data=01 02", "1D990102"},
        {127489, "Engine Discrete Status 2=power reduction, Warning Level 2",
         "FFFFFFFFFFFFFFFF7FFF7FFFFFFFFFFFFFFFFFFFFFFF06007F7F"},
        // what is wrong
        {127250, "Headng=1", "Deviation, Variation, Heading Sensor Reference, NMEA Reserved"},
        {129029, "Lattitude=1", "in PGN 129029; did you mean 'Latitude' or 'Altitude' or 'Longitude'?"},
        {129029, "xyzzy=1", "'vistel encode --list 129029' shows its fields"},
        {127250, "Deviation=1|Deviation=2", "'Deviation' is typed twice, but PGN 127250 has it once"},
        {127250, "Heading Sensor Reading=-0.01", "'-0.01' is out of range: from 0 to 375.4707 \u00B0M"},
        {127250, "Heading Sensor Reading=1e999", "'1e999' is out of range: from 0 to 375.4707 \u00B0M"},
        {130836, "OFF Counter=4294967294", "'4294967294' is out of range: from 0 to 4294967292"},
        {130841, "CAN Frame Data=18446744073709551616", "is out of range: from 0 to 1.8446744e+19"},
        {127250, "Heading Sensor Reference=4", "'4' is out of range: from 0 to 3"},
        {127250, "Heading Sensor Reference=Magn", "has no 'Magn'; there are: True, Magnetic, Error, Null"},
        {127250, "Deviation=1,5", "'1,5' has a comma: a fraction is typed with a point, as in 1.5"},
        {127250, "Heading Sensor Reading=1 ft", "has no unit 'ft'; there are: \u00B0M, \u00B0T"},
        {127250, "Deviation=nan", "'nan' does not begin with a number"},
        {127250, "Deviation=", "has no value behind the '='; '-' stands for not available"},
        {127250, "Sequence ID=5 (0x06)", "5 and (0x06) are different numbers"},
        {127250, "Sequence ID=5 \u00B0", "takes no unit, but has '\u00B0'"},
        {129029, "Position date=31-31-2026", "from 01-01-1970 to 06-02-2149, as in 09-10-2026 MMDDYYYY or 2026-09-10"},
        {129029, "Position time=25:77", "'25:77' is not a time of day, as in 13:05:30 or 1:05:30 PM"},
        {129029, "Position time=8", "'8' is not a time of day, as in 13:05:30 or 1:05:30 PM"},
        {129794, "Name=A name of more than twenty", "holds 20 characters only: 'A name of more than twenty' has 26"},
        {129794, "Name=\u6771", "'\u6771' has characters that the field cannot hold"},
        {126208, "Group Function Code=Read Fields", "has a value for which decoding shows other fields, or none"},
        {131000, "a=b", "is not in the catalogue; only its bytes can be given, as in \"Data=01 02 FF\""},
        {127250, "Data=0", "Data takes the bytes of the payload once, at most 1785, as in 01 02 FF"},
        {129285, repeated("WP Latitude=1", 300), "does not fit into the 1785 bytes of a message"},
        {129285, repeated("WP Name=" + std::string(100, 'x'), 20), "does not fit into the 1785 bytes of a message"},
        // clang-format on
    };
    for (const auto& [pgn, typed, expected] : cases) expect(built(pgn, typed), expected, typed);
}

TEST(Encode, TypedFieldsOfCorrectedDefinitions) {
    // What is typed, and the payload or the end of the first message.
    const std::tuple<std::uint32_t, const char*, const char*> cases[] = {
        // clang-format off
        // exact numbers
        {129025, "Latitude=52.5|Longitude=-0.0000001 \u00B0", "40DD4A1FFFFFFFFF"},
        {126992, "Time=19:57:09.2736", "FFFFFFFF0047D02A"}, {126992, "Time=19:57:12.2", "FFFFFFFF50B9D02A"},
        // below zero where the lowest code is none
        {129029, "Altitude=-27.2 m", "FFFFFFFFFFFFFFFFFFFFFFFFFFFF7FFFFFFFFFFFFFFF7F00F660FEFFFFFFFFFFFFFFFF7FFF7FFFFFFF7F00"},
        // the variant that the fields fit, whose fixed bits are filled in or may be typed; another one's
        {65280, "Heave=-1.2 m|Manufacturer Code=Furuno", "3F9F50FBFFFFFFFF"},
        {65280, "Manufacturer Code=Furuno|Industry Code=Marine|Reserved=0", "3F87FFFFFF7FFFFF"},
        {65280, "Manufacturer Code=BEP Marine", "2799FFFFFFFFFFFF"},
        {65280, "Manufacturer Code=Furuno|Industry Code=Global|Heave=1", "nearest; 'vistel encode --list 65280' names them"},
        {65280, "", "give a name in place of the number, or a field that tells them apart"},
        // digits of decimals that are missing
        {129808, "DSC Category Symbol=112|DSC Message Address=123456789", "nearest; 'vistel encode --list 129808' names them"},
        // rounds that are counted, with and without their numbers; a count that is given
        {127503, "Line #2=Line 2", "FF02FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF7FFDFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF7F"},
        {130574, "Zone Number=1|Zone Name=a|Zone Number=2", "FF02FF01030161020201"},
        {130574, "Zone Number #2=2|Zone Number #1=1", "FF02FF010201020201"},
        {127503, "", "FF00"}, {127503, "Number of Lines=9", "FF09"},
        {130574, "Number of Zone Numbers in this PGN=1|Zone Number #2=7", "'Zone Number #2' has a round more than the count says"},
        {127503, "Number of Lines=252|Line #252=1", "does not fit into the 1785 bytes of a message"},
        // sizes in bits and in bytes, of a key's value, of more than the value
        {129814, "Binary Data=01 02 03", "FFFFFFFFFFFFFFFFFFFFFFFF1800010203"},
        {130824, "Manufacturer Code=B & G|Key #1=Rudder Angle|Rudder Angle=5 \u00B0", "7D990B206903"},
        {130823, "Manufacturer Code=Navico|Report Type=5|Value=01 02 03", "1399FFFF05FFFF06FFFFFF010203"},
        // pairs whose values are of another message
        {126208, "Command Group Function Code=1|Commanded PGN=127250|Field number of first commanded parameter=2|"
                 "Heading Sensor Reading=1 rad", "0112F101FF01021027"},
        // bytes behind the fields, the whole payload, a field of that name
        {65300, "Manufacturer Code=137|Industry Code=4|Reserved=3|Data=01 02", "89980102"}, {65300, "Data=0102", "0102"},
        // bytes that the message ends with, bytes before other fields
        {130822, "Manufacturer Code=Navico|Command=2|Marker=1|Section=1|Data=0102", "139901C2FF01FF0102"},
        // a text with its length, an identity, a code without a text
        {130820, "Manufacturer Code=Fusion Electronics|Message ID=Zone Name|Number=2|Name=Deck", "A3992D8002044465636B00"},
        {129038, "User ID=002345678|Repeat Indicator=1", "7FCECA2300FFFFFF7FFFFFFF7FFFFFFFFFFFFFFFFFFFFFFF7FFFFFFF"},
        {126992, "Source=Reserved (13)", "FFFDFFFFFFFFFFFF"},
        // clang-format on
    };
    for (const auto& [pgn, typed, expected] : cases) {
        BuiltMessage message = build_by_any(corrected(), pgn, definitions_of(pgn), parsed(typed));
        expect(message ? hex(*message) : message.error().texts.back(), expected, typed);
    }
}

TEST(Encode, UnitsHaveOtherSpellings) {
    const std::tuple<std::uint32_t, const char*, const char*, std::vector<const char*>> cases[] = {
        // clang-format off
        {129026, "Speed Over Ground=", "12 kt", {"12 knots", "12 KN", "12kts"}},
        {129026, "Speed Over Ground=", "12 kph", {"12km/h"}},
        {129026, "Course Over Ground=", "12.3 \u00B0M", {"12.3 deg"}},
        {129026, "Course Over Ground=", "12.3 \u00B0T", {"12.3 deg T"}},
        {129025, "Latitude=", "-12.5 \u00B0 Lat", {"-12.5 degrees"}},
        {130312, "Actual Temperature=", "70 \u00B0F", {"70 Fahrenheit"}},
        {130314, "Pressure=", "1013 mBar", {"1013 hPa"}}, {127505, "Tank Capacity=", "400 L", {"400 liters"}},
        // clang-format on
    };
    for (const auto& [pgn, label, shown, all_typed] : cases)
        for (const char* const typed : all_typed) {
            const std::string payload = built(pgn, concat(label, typed));
            EXPECT_EQ(payload, built(pgn, concat(label, shown))) << typed;
            EXPECT_TRUE(is_hex(payload)) << payload;
            EXPECT_NE(payload, built(pgn, "")) << typed;
        }
}

}  // namespace
}  // namespace vistel
