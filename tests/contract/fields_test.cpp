#include <cmath>

#include "contract/asked_fields.h"
#include "contract/records.h"

namespace pgn_vistel::test {
namespace {

using Db = QV_N2K_PGN_DB_c;
using HostEntry = pgn_vistel::DDDef;
using namespace core::unit;

// ---- labels and values ----

TEST(Fields, Names) {
    const std::tuple<int, int, const wchar_t*, std::wstring> cases[] = {
        {7, 0, L"First PGN supported", L"First PGN supported: "},
        {7, 3, L"First PGN supported", L"PGN supported #3: "},
        {7, 1, L"The First one", L"rst one #1: "},  // six characters go from the start
        {7, 2, L"First", L" #2: "},
        {7, 2, L"Value of first parameter", L"Value of first parameter: "},
        {144, 2, L"First whatever", L"Group Function Code: "},
        {7, 1, nullptr, L": "},
    };
    for (const auto& [dd, repeat, label, expected] : cases)
        for (const std::size_t size : {256u, 4u, 1u, 0u}) {
            const auto print = [dd = dd, label = label, repeat = repeat](wchar_t* b, int n) {
                return Db::print_field_name(b, n, dd, label, repeat, 0, 0);
            };
            EXPECT_EQ(printed(print, static_cast<int>(size)),
                      expected.substr(0, std::max<std::size_t>(size, 1) - 1));
        }
}

const ConvValue none = whole(CV_NOT_AVAILABLE, 0x7FFFFFFF);
const std::uint8_t raw_field[] = {5, 1, 'A', 'B', 'C', 0};
const auto as_pointer = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(raw_field));

struct Shown {
    int dd, quantity;
    ConvValue value;
    UnitId unit;
    const wchar_t* expected;
    unsigned long flags = 0;
    int field = 2;
};

std::wstring data(const Shown& s, const ConvValue* value, int with_unit) {
    return printed([&](wchar_t* b, int n) {
        return qv_n2k_pgn_db.print_field_data(b, n, s.dd, s.quantity, const_cast<ConvValue*>(value), s.unit,
                                              with_unit, s.flags, 126996, s.field);
    });
}

TEST(Fields, Values) {
    const Shown cases[] = {
        // clang-format off
        {9, 28, whole(CV_U64, 59904), -1, L" 59904 (ISO Request)"}, {9, 28, whole(CV_U32, 1), -1, L"     1 (Unknown)"},
        {7, 28, whole(CV_U16, 2100), -1, L"2.100", 0, 1}, {7, 28, whole(CV_U16, 2100), -1, L"2100 (0x0834) "},
        // enumerations: the number, the entry below, reserved, unknown, flags
        {2, 65, whole(CV_U64, 2), -1, L"Error"}, {2, 65, whole(CV_U64, 7), -1, L"7 (0x07) "}, {2, 65, none, -1, L"- "},
        {176, 28, whole(CV_I8, -1), -1, L"Global address"}, {10052, 50, whole(CV_U64, 5), -1, L"Third Stage Alarm"},
        {37, 65, none, -1, L"Reserved"}, {172, 65, whole(CV_U16, 77), -1, L"Unknown"},
        {10058, 27, whole(CV_U16, 105), -1, L"DF105 (Temperature)"},
        {10023, 50, whole(CV_U64, 0x1001), -1, L"RAM Region 0, Incompatible HW-SW Version"},
        {10023, 50, whole(CV_U64, 0), -1, L""},
        // time of day
        {0, 21, single(47109), clock_12, L" 1:05:09 PM "}, {0, 21, single(0), clock_12, L"12:00:00 AM "},
        {0, 21, single(43200), clock_12, L"12:00:00 PM "}, {0, 21, whole(CV_U32, 3661), clock_24, L" 1:01:01 "},
        {0, 21, single(1080000), clock_24, L"44:00:00 "}, {0, 21, single(47109), seconds, L"47109 Sec"},
        {0, 21, wide(L"text"), clock_24, L"text "}, {0, 21, single(NAN), clock_24, L"- "},
        // durations; the remainder of minutes is taken from an unsigned product
        {0, 22, single(1.5f), -1, L"1.500000 Hr"}, {0, 22, single(90), minutes, L"1:30.000000 Min"},
        {0, 22, single(-90), minutes, L"-1:-4294967326.000000 Min"}, {0, 22, none, -1, L"- Hr"},
        {0, 22, whole(CV_TIME_OF_DAY, 3600), seconds, L"3600.000000 Sec"}, {0, 22, single(5), clock_24, L"5.0000 "},
        {0, 22, narrow("text"), -1, L"text Hr"}, {0, 22, whole(CV_U64, 1ll << 40), -1, L"1099511627776.000000 Hr"},
        {0, 22, whole(CV_WCHAR, -2), -1, L"-2.000000 Hr"}, {0, 22, whole(-5, -2), -1, L"-2.000000 Hr"},
        // dates
        {0, 23, whole(CV_U16, 19000), -1, L"01-08-2022 MMDDYYYY"}, {0, 23, whole(CV_U16, 0xFFFE), -1, L"- MMDDYYYY"},
        {0, 23, whole(CV_U16, 19000), hours, L"19000 (0x4A38) Hr"},
        {0, 23, whole(CV_U32, 0x10000 + 19000), date_md, L"01/08 MM/DD"},
        // raw hexadecimal
        {0, 50, single(1), -1, L"0x3F800000 "}, {0, 50, single(1, CV_FLOAT_PLAIN), -1, L" "},
        {0, 50, real(0.1), -1, L"0x000000009999999A "}, {0, 50, whole(CV_I8, -2), -1, L"0xFFFFFFFE "},
        {0, 50, whole(CV_U16, 10), -1, L"0x000A "},
        {0, 50, whole(CV_U64, 0x1122334455667788), -1, L"0x0000000055667788 "},
        {0, 50, whole(CV_I64, 255), -1, L"0x              FF "}, {0, 50, whole(CV_TIME_OF_DAY, 5), -1, L" "},
        {0, 50, narrow("caf\xE9 \x81"), -1, L"caf\x00E9 \x03A9 "}, {0, 50, wide(L"abc", CV_TEXT_WIDE), -1, L"abc "},
        {0, 50, whole(CV_RAW_FIELD, as_pointer), -1, L"05 01 41 42 43  "}, {0, 50, none, -1, L" "},
        // any other
        {0, 0, single(1.5f), m, L"1.5000 m"}, {0, 0, none, 140, L"- ft"},
        {0, 0, whole(CV_U8, 10), 1000, L"10 (0x0A) ft"},
        {0, 0, whole(CV_U8, 10), -5, L"10 ft", plain_display}, {0, 65, whole(CV_I64, -63), -1, L"-63 "},
        {0, 0, real(-INFINITY), -1, L"    -inf ft"}, {0, 0, narrow("\x80"), -1, L"\x0080 ft"},
        {0, 0, whole(CV_CHAR, 0x81), -1, L"\x03A9 ft"}, {0, 0, whole(18, 1), -1, L"<Unknown data format> ft"},
        {0, 33, whole(CV_U8, 1), -1, L"1 (0x01) "}, {0, INT32_MAX, whole(CV_U8, 1), m, L"1 (0x01) m"},
        // clang-format on
    };
    for (const Shown& s : cases) {
        SCOPED_TRACE(testing::Message()
                     << "dd " << s.dd << " quantity " << s.quantity << " type " << s.value.type);
        EXPECT_EQ(data(s, &s.value, 1), s.expected);
        EXPECT_TRUE((s.expected + std::wstring(1, L' ')).starts_with(data(s, &s.value, 0) + L' '))
            << "the unit comes last";
    }
    EXPECT_EQ(data({9, 0, none, -1, L""}, nullptr, 1), L" ft") << "no value: the unit alone";
}

TEST(Fields, UndecodedBytes) {
    const Bytes bytes(1000, 0x5A);
    const auto dump = [](const std::uint8_t* from, int length, int with_label, int size = 4000) {
        int label = -1;
        const std::wstring text = printed(
            [&](wchar_t* b, int n) {
                return Db::print_field_data_unknown(b, n, from, length, with_label, &label);
            },
            size);
        EXPECT_EQ(label, with_label != 0 ? std::clamp(size - 1, 0, 5) : 0);
        return text;
    };
    EXPECT_EQ(dump(bytes.data(), 2, 0), L" 5A 5A");
    EXPECT_EQ(dump(bytes.data(), -1, 1), L"Data:");
    EXPECT_EQ(dump(nullptr, 5, 1), L"Data:");
    for (const std::size_t size : {1u, 4u, 6u, 8u, 12u})
        EXPECT_EQ(dump(bytes.data(), 1000, 1, static_cast<int>(size)),
                  std::wstring(L"Data: 5A 5A 5A").substr(0, size - 1));
}

// ---- fields of a message ----

TEST(Fields, AskedForAloneReadAsInTheirLines) {
    std::mt19937 random(5);
    Db db;
    const UnitSelection units;
    for (const std::uint32_t pgn : catalogued_pgns())
        for (int i = 0; i < 6; ++i) {
            SCOPED_TRACE(pgn);
            Bytes payload = random_bytes(random, i == 0 ? 3 : i == 1 ? 223 : 40);
            if (i % 2 == 1)
                for (auto& byte : payload) byte %= 8;  // texts, flags, group functions
            if (i == 2) payload[0] = 0x89, payload[1] = 0x98;
            EXPECT_NO_THROW(check_asked_fields(db, units, message(pgn, payload)));
        }
}

const HostEntry* entry(std::uint32_t dd) {
    for (const HostEntry& row : all_dictionary_rows())
        if (row.dd == dd) return &row;
    return nullptr;
}

struct Read {
    ConvValue value{CV_NOT_AVAILABLE, {}};
    std::wstring text;
    PayloadPosition next;
};

Read read(N2KMsg msg, const HostEntry* dd, int bytes, int bits, PayloadPosition at, UnitId unit = raw_count,
          bool own_record = true, int field = 1) {
    Read r;
    r.value.value.u64 = Value::no_number;
    r.next = at;
    r.text = printed([&](wchar_t* buf, int size) {
        return qv_n2k_pgn_db.get_field_str(buf, size, &msg, field, const_cast<HostEntry*>(dd), L"L", bytes,
                                           bits, &r.next.byte, &r.next.bit, nullptr, 0, 1, 2, nullptr,
                                           own_record ? &r.value : nullptr, unit);
    });
    return r;
}

const HostEntry *const number = entry(7), *const name = entry(192);

TEST(Fields, AsHostsDescribeThem) {
    const N2KMsg eight = message(127250, {1, 2, 3, 4, 5, 6, 7, 8}), mass = message(127250, {1, 0, 0, 0}),
                 speed = message(127250, {36, 0, 0xF4, 0x01}), text = message(127250, {20, 1, 'a', 'b', 'c'});
    const auto air = [](std::uint32_t pgn, std::uint8_t source) {  // 1013250 of 0.1 Pa
        return message(pgn, {1, 0, source, 0x02, 0x76, 0x0F, 0x00, 0xFF});
    };
    N2KMsg ended = message(127250, {1, 2, 3, 4, 5, 6, 7, 8, 0x34, 0x12});
    ended.length = 8;
    N2KMsg much = ended;
    much.length = 400;
    // A pressure that the payload tells; a value behind its format, whatever entry it has.
    const HostEntry inside{dd::format_then_value, "", number->format, 0, 0};
    const HostEntry behind{192, "", entry(dd::value_behind_format)->format, 0, 0};
    // Message, entry, its bytes and bits, place, unit; the end of the line, where the next one is.
    const std::tuple<N2KMsg, const HostEntry*, int, int, PayloadPosition, UnitId, const wchar_t*,
                     PayloadPosition>
        cases[] = {
            // clang-format off
        {eight, number, 0, 0, {6, 0}, raw_count, L"L: 2055 ", {8, 0}},
        {eight, entry(142), 0, 11, {0, 3}, raw_count, L"L: 64 ", {1, 6}},  // 0x201 >> 3
        {eight, number, 0, 0, {7, 0}, raw_count, L"L: - ", {9, 0}},  // one byte is there
        {ended, number, 0, 0, {8, 0}, raw_count, L"L: 4660 ", {10, 0}},  // wholly beyond: from the record
        {eight, number, 0, 0, {1785, 0}, raw_count, L"L: 0 ", {1787, 0}},
        {eight, entry(202), 0, 0, {1, 0}, raw_count, L"L: - ", {9, 0}},
        {eight, number, 2, 0, {3, 5}, raw_count, L"L: 0 ", {5, 5}},  // whole bytes that begin inside one
        {eight, number, 2, 0, {6, 4}, raw_count, L"L: - ", {8, 4}},  // its last four bits are missing
        // the size masks a number, modulo 256 bits
        {eight, number, 1, 0, {0, 0}, raw_count, L"L: 1 ", {1, 0}}, {much, number, 31, 0, {0, 0}, raw_count, L"L: 513 ", {31, 0}},
        {much, number, 32, 0, {0, 0}, raw_count, L"L: 0 ", {32, 0}}, {much, number, 33, 0, {0, 0}, raw_count, L"L: 1 ", {33, 0}},
        {eight, entry(142), 3, 8, {7, 0}, raw_count, L"L: 8 ", {8, 0}},  // of both sizes the bits say where it ends
        {mass, entry(313), 0, 0, {0, 0}, kg, L"L: - kg", {4, 0}},
        {mass, entry(313), 0, 0, {0, 0}, gram, L"L: 10000000 g", {4, 0}},
        {text, name, 8, 0, {2, 0}, raw_count, L"L: abc ", {10, 0}},  // what is there
        {text, entry(10053), 256, 0, {2, 0}, raw_count, L"L: 61 62 63 ", {258, 0}},
        {air(130314, 0), entry(290), 0, 0, {3, 0}, -1, L"inHg", {7, 0}},
        {air(130314, 1), entry(290), 0, 0, {3, 0}, -1, L"PSI", {7, 0}},
        {air(130311, 1), entry(290), 0, 0, {3, 0}, -1, L"inHg", {7, 0}},
        {message(130311, {29, 0}), &inside, 0, 0, {0, 0}, -1, L"L: - inHg", {2, 0}},
        {speed, &behind, 0, 0, {2, 0}, kph, L"L: 1.8000 kph", {4, 0}},
            // clang-format on
        };
    for (const auto& [msg, dd, bytes, bits, at, unit, expected, next] : cases) {
        const Read r = read(msg, dd, bytes, bits, at, unit, false);
        EXPECT_TRUE(r.text.ends_with(expected)) << std::string(r.text.begin(), r.text.end());
        EXPECT_EQ(r.next, next);
    }
    clear_text_areas();
    EXPECT_EQ(read(message(127250, {0xFF, 0xFF}), entry(198), 0, 0, {1, 0}).text, L"L:  ") << "half a length";
    for (const std::uint32_t pgn : {130314u, 130315u}) {
        N2KMsg msg = message(pgn, {1, 0, 1});
        unsigned char source = 99;
        wchar_t buf[100];
        qv_n2k_pgn_db.get_field_str(buf, 100, &msg, 3, const_cast<HostEntry*>(entry(289)), L"S", 1, 0,
                                    nullptr, nullptr, &source, 0, 1, 0, nullptr, nullptr, -1);
        EXPECT_EQ(source, pgn == 130314 ? 1 : 99);
    }
}

TEST(Fields, AConversionOfTheHost) {
    const auto convert_own = [](ConvValue* out, const void* raw, UnitId u, int* count) {
        const auto* const at = static_cast<const std::uint8_t*>(raw);
        *out = whole(CV_TIME_OF_DAY, at[0] | at[1] << 8 | u << 16 | *count << 24);
        if (*count == 0) *count = 2;
    };
    const pgn_vistel::DFDef own{61234, "own", convert_own, nullptr};
    const HostEntry dd{7, "", &own, 0, 0};
    const N2KMsg msg = message(127250, {1, 2, 3, 4});
    EXPECT_EQ(read(msg, &dd, 0, 0, {1, 0}, kph).value.value.u32, 0x00090302u);
    EXPECT_EQ(read(msg, &dd, 0, 0, {1, 0}, kph).next.byte, 3);
    EXPECT_EQ(read(msg, &dd, 4, 0, {0, 0}, kph).value.value.u32, 0x04090201u);
    EXPECT_EQ(read(msg, &dd, 1, 0, {3, 0}, kph).value.value.u32, 0x01090004u)
        << "behind the message there are zeros";
}

TEST(Fields, NotDecodable) {
    const HostEntry no_format{7, "", nullptr, 0, 0};
    const pgn_vistel::DFDef dead{9999, "DF9999", nullptr, nullptr};
    const HostEntry no_conversion{7, "", &dead, 0, 0};
    const N2KMsg msg = message(127250, {1, 0xAB, 0xFF}), unknown = message(0, {1, 0xAB, 0xFF});
    for (const Read& r :
         {read(msg, nullptr, 1, 0, {1, 3}), read(msg, &no_format, 1, 0, {1, 3}),
          read(msg, &no_conversion, 1, 0, {1, 3}), read(msg, number, 1, 0, {1, 3}, -1, true, 0),
          read(unknown, number, 1, 0, {1, 3}), read(msg, number, 1, 0, {-1, 0}),
          read(msg, number, 1, 0, {1786, 0}), read(msg, number, 1, 0, {INT32_MIN, 0})}) {
        EXPECT_EQ(r.text, L"Data: 01 AB FF");
        EXPECT_EQ(r.next, (PayloadPosition{3, 0}));
    }
}

TEST(Fields, LabelAndValueApart) {
    N2KMsg msg = message(127250, {5});
    wchar_t label[1024], value[1024];
    for (const auto& [field, label_text, value_text] :
         {std::tuple{1, L"Count: ", L"5"}, {0, L"Data:", L" 05"}}) {
        const int size =
            qv_n2k_pgn_db.get_field_str(label, value, &msg, field, const_cast<HostEntry*>(entry(6)), L"Count",
                                        0, 0, nullptr, nullptr, nullptr, 0, 0, 2, nullptr, -1);
        EXPECT_EQ(size, 8);
        EXPECT_STREQ(label, label_text);
        EXPECT_STREQ(value, value_text);
    }
}

TEST(Fields, Lookups) {
    int bytes = 0, bits = 0;
    Db::get_bytes_bits(126996, const_cast<HostEntry*>(number), &bytes, &bits);
    EXPECT_EQ(bytes, 32);
    Db::get_bytes_bits(126996, nullptr, nullptr, nullptr);
    const std::uint8_t raw[] = {105, 0, 36, 0};
    EXPECT_EQ(Db::get_DispDataTypeX(10059, raw + 2), quantity::temperature);
    EXPECT_EQ(Db::get_DispDataType(22), quantity::latitude);
    EXPECT_EQ(qv_n2k_pgn_db.get_field_id(60928, 2, 5), 2);
    EXPECT_EQ(Db::find_DDstrings(2), find_enumeration(2));
    const std::wstring name = L"ISO Request";
    for (int size = 1; size <= 14; ++size) {
        const std::wstring expected = name.substr(0, static_cast<std::size_t>(size - 1));
        EXPECT_EQ(printed([](wchar_t* b, int n) { return Db::print_pgn_name(b, n, 59904); }, size), expected);
        char narrow[16] = "???????????????";
        EXPECT_EQ(Db::print_pgn_name(narrow, size, 59904), static_cast<int>(expected.size()));
        EXPECT_EQ(std::wstring(narrow, narrow + std::strlen(narrow)), expected);
        EXPECT_EQ(narrow[expected.size() + 1], '?');
    }
    wchar_t buf[16];
    EXPECT_EQ(Db::print_pgn_name(buf, 0, 59904), -1);
    EXPECT_EQ(Db::print_pgn_name(buf, 16, 25), -1);
    EXPECT_EQ(Db::print_pgn_name(static_cast<char*>(nullptr), 16, 59904), -1);
}

}  // namespace
}  // namespace pgn_vistel::test
