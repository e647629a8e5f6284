#include <algorithm>
#include <cmath>

#include "pgn_vistel/pgn_db.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using Db = QV_N2K_PGN_DB_c;

std::wstring name(int dd, const wchar_t* label, int repeat, int size = 256) {
    return printed([&](wchar_t* b, int n) { return Db::print_field_name(b, n, dd, label, repeat, 0, 0); },
                   size);
}

TEST(FieldText, Names) {
    EXPECT_EQ(name(7, L"First PGN supported", 0), L"First PGN supported: ");
    EXPECT_EQ(name(7, L"First PGN supported", 3), L"PGN supported #3: ");
    EXPECT_EQ(name(7, L"The First one", 1), L"rst one #1: ") << "six characters go from the start";
    EXPECT_EQ(name(7, L"First", 2), L" #2: ");
    EXPECT_EQ(name(7, L"Value of first parameter", 2), L"Value of first parameter: ");
    EXPECT_EQ(name(144, L"First whatever", 2), L"Group Function Code: ");
    EXPECT_EQ(name(145, nullptr, 0), L"Group Function Code: ");
    EXPECT_EQ(name(7, nullptr, 1), L": ");
    EXPECT_EQ(name(7, L"Label", 0, 4), L"Lab");
    EXPECT_EQ(name(7, L"Label", 0, 1), L"");
    EXPECT_EQ(name(7, L"Label", 0, 0), L"");
}

struct Shown {
    int dd;
    int quantity;
    ConvValue value;
    UnitId unit;
    const wchar_t* expected;
    unsigned long flags = 0;
    int field = 2;
};

std::wstring data(const Shown& s, int with_unit = 1) {
    ConvValue v = s.value;
    return printed([&](wchar_t* b, int n) {
        return qv_n2k_pgn_db.print_field_data(b, n, s.dd, s.quantity, &v, s.unit, with_unit, s.flags, 126996,
                                              s.field);
    });
}

using namespace unit;

const ConvValue none = whole(CV_NOT_AVAILABLE, 0x7FFFFFFF);
const std::uint8_t raw_field[] = {5, 1, 'A', 'B', 'C', 0};
const auto as_pointer = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(raw_field));

TEST(FieldText, SpecialFormsAndEnumerations) {
    // clang-format off
    const Shown cases[] = {
        {9, 28, whole(CV_U64, 127250), -1, L"127250 (Vessel Heading)"},
        {9, 28, whole(CV_U64, 59904), -1, L" 59904 (ISO Request)"},
        {9, 28, whole(CV_U32, 1), -1, L"     1 (Unknown)"}, {7, 28, whole(CV_U16, 2100), -1, L"2.100", 0, 1},
        {7, 28, whole(CV_U16, 2100), -1, L"2100 (0x0834) "},
        // number where nothing is listed
        {2, 65, whole(CV_U64, 2), -1, L"Error"}, {2, 65, whole(CV_U64, 7), -1, L"7 (0x07) "},
        {2, 65, none, -1, L"- "}, {176, 28, whole(CV_I8, -1), -1, L"Global address"},
        {176, 28, whole(CV_U8, 5), -1, L"5 (0x05) "},
        {35, 22, whole(CV_U32, 0xFFFFFFFE), -1, L"Restore Default Interval"},
        {168, 65, whole(CV_U64, 4), -1, L" Marine"},
        // the entry below
        {58, 65, whole(CV_U64, 5), -1, L"Reserved"}, {58, 65, whole(CV_U64, 8), -1, L"Null"},
        {177, 65, whole(CV_U64, 200), -1, L"Reserved"},
        {10052, 50, whole(CV_U64, 4), -1, L"Second Stage Alarm"},
        {10052, 50, whole(CV_U64, 5), -1, L"Third Stage Alarm"},
        {10052, 50, whole(CV_U64, 253), -1, L"Reserved"},
        // reserved, unknown
        {37, 65, whole(CV_U64, 4), -1, L"Request is not supported"},
        {37, 65, whole(CV_U64, 9), -1, L"Reserved"}, {37, 65, none, -1, L"Reserved"},
        {170, 65, whole(CV_U64, 15), -1, L"Unknown"}, {172, 65, whole(CV_U16, 137), -1, L"Keldor"},
        {172, 65, whole(CV_U16, 77), -1, L"Unknown"},
        {10058, 27, whole(CV_U16, 105), -1, L"DF105 (Temperature)"},
        {10058, 27, whole(CV_U16, 2), -1, L"Unknown"},
        // flags
        {10023, 50, whole(CV_U64, 0x1001), -1, L"RAM Region 0, Incompatible HW-SW Version"},
        {10023, 50, whole(CV_U64, 0), -1, L""},
        {10023, 50, whole(CV_U64, 0x80000000), -1, L"Device-Specific 31"},
        {30, 65, whole(CV_U64, 0x1F), -1, L"Station in use, Low SNR, Cycle error, Blink"},
    };
    // clang-format on
    for (const Shown& s : cases) EXPECT_EQ(data(s), s.expected) << "dd " << s.dd;
}

TEST(FieldText, Quantities) {
    // clang-format off
    const Shown cases[] = {
        // time of day
        {0, 21, single(47109), clock_12, L" 1:05:09 PM "}, {0, 21, single(47109), clock_24, L"13:05:09 "},
        {0, 21, single(0), clock_12, L"12:00:00 AM "}, {0, 21, single(43200), clock_12, L"12:00:00 PM "},
        {0, 21, whole(CV_U32, 3661), clock_24, L" 1:01:01 "},
        {0, 21, single(1080000), clock_24, L"44:00:00 "}, {0, 21, single(47109), seconds, L"47109 Sec"},
        {0, 21, wide(L"text"), clock_24, L"text "}, {0, 21, single(NAN), clock_24, L"- "},
        {0, 21, none, -1, L"- "}, {0, 21, whole(CV_U32, 0xFFFFFFFF), clock_12, L"- "},
        // durations
        {0, 22, single(1.5f), -1, L"1.500000 Hr"}, {0, 22, single(1.5f), seconds, L"1.500000 Sec"},
        {0, 22, single(90), minutes, L"1:30.000000 Min"},
        {0, 22, single(-90), minutes, L"-1:-4294967326.000000 Min"},
        {0, 22, whole(CV_TIME_OF_DAY, 3600), seconds, L"3600.000000 Sec"}, {0, 22, none, -1, L"- Hr"},
        {0, 22, whole(CV_U16, 0xFFFF), minutes, L"- Min"}, {0, 22, single(5), clock_24, L"5.0000 "},
        {0, 22, narrow("text"), -1, L"text Hr"}, {0, 22, real(1.5), -1, L"1.500000 Hr"},
        {0, 22, whole(CV_I8, -2), -1, L"-2.000000 Hr"}, {0, 22, whole(CV_I64, -2), -1, L"-2.000000 Hr"},
        {0, 22, whole(CV_U64, 1ll << 40), -1, L"1099511627776.000000 Hr"},
        // dates
        {0, 23, whole(CV_U16, 19000), -1, L"01-08-2022 MMDDYYYY"},
        {0, 23, whole(CV_U16, 19000), hours, L"19000 (0x4A38) Hr"},
        {0, 23, whole(CV_U32, 0x10000 + 19000), date_md, L"01/08 MM/DD"}, {0, 23, none, -1, L"- MMDDYYYY"},
        {0, 23, whole(CV_U16, 0xFFFE), -1, L"- MMDDYYYY"}, {0, 23, wide(L"text"), -1, L"text MMDDYYYY"},
        // raw hexadecimal
        {0, 50, single(1), -1, L"0x3F800000 "}, {0, 50, single(1, CV_FLOAT_PLAIN), -1, L" "},
        {0, 50, real(0.1), -1, L"0x000000009999999A "}, {0, 50, whole(CV_U8, 10), -1, L"0x0A "},
        {0, 50, whole(CV_I8, -2), -1, L"0xFFFFFFFE "}, {0, 50, whole(CV_U16, 10), -1, L"0x000A "},
        {0, 50, whole(CV_I16, -1), -1, L"0xFFFFFFFF "}, {0, 50, whole(CV_U32, 10), -1, L"0x0000000A "},
        {0, 50, whole(CV_I32, -1), -1, L"0xFFFFFFFF "},
        {0, 50, whole(CV_U64, 0x1122334455667788), -1, L"0x0000000055667788 "},
        {0, 50, whole(CV_I64, 255), -1, L"0x              FF "}, {0, 50, whole(CV_TIME_OF_DAY, 5), -1, L" "},
        {0, 50, whole(CV_CHAR, 'x'), -1, L" "}, {0, 50, narrow("caf\xE9 \x81"), -1, L"caf\x00E9 \x03A9 "},
        {0, 50, wide(L"abc", CV_TEXT_WIDE), -1, L"abc "},
        {0, 50, whole(CV_RAW_FIELD, as_pointer), -1, L"05 01 41 42 43  "},
        {0, 50, whole(18, as_pointer), -1, L"05 01 41 42 43  "}, {0, 50, whole(CV_RAW_FIELD, 0), -1, L" "},
        {0, 50, none, -1, L" "},
        // any other
        {0, 0, single(1.5f), -1, L"1.5000 ft"}, {0, 0, single(1.5f), m, L"1.5000 m"},
        {0, 0, none, 140, L"- ft"}, {0, 0, whole(CV_U8, 10), 1000, L"10 (0x0A) ft"},
        {0, 0, whole(CV_U8, 10), -5, L"10 ft", plain}, {0, 65, whole(CV_U64, 63), -1, L"63 (0x3F) "},
        {0, 65, whole(CV_I64, -63), -1, L"-63 ", plain}, {0, 0, whole(CV_U8, 255), -1, L"- ft"},
        {0, 0, whole(18, 1), -1, L"<Unknown data format> ft"}, {0, 0, whole(25, 1), -1, L"- ft"},
        {0, 0, whole(CV_RAW_FIELD, 1), -1, L"<Unknown data format> ft"},
        {0, 33, whole(CV_U8, 1), -1, L"1 (0x01) "}, {0, -1, whole(CV_U8, 1), -1, L"1 (0x01) "},
        {0, 66, whole(CV_U8, 1), -1, L"1 (0x01) "}, {0, INT32_MAX, whole(CV_U8, 1), m, L"1 (0x01) m"},
    };
    // clang-format on
    for (const Shown& s : cases) {
        EXPECT_EQ(data(s), s.expected)
            << "quantity " << s.quantity << " type " << s.value.type << " unit " << s.unit;
        const std::wstring bare = data(s, 0);
        EXPECT_EQ(bare + L' ', std::wstring(s.expected).substr(0, bare.size() + 1)) << "the unit comes last";
    }
    for (const int with_unit : {0, 1})
        EXPECT_EQ(printed([&](wchar_t* b, int n) {
                      return qv_n2k_pgn_db.print_field_data(b, n, 9, 0, nullptr, -1, with_unit, 0, 0, 1);
                  }),
                  with_unit ? L" ft" : L"")
            << "no value: the unit alone";
}

TEST(FieldText, UndecodedBytes) {
    const std::vector<std::uint8_t> bytes(1000, 0x5A);
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
    EXPECT_EQ(dump(bytes.data(), 2, 1), L"Data: 5A 5A");
    EXPECT_EQ(dump(bytes.data(), 2, 0), L" 5A 5A");
    for (const int length : {0, -1}) EXPECT_EQ(dump(bytes.data(), length, 1), L"Data:");
    EXPECT_EQ(dump(nullptr, 5, 1), L"Data:");
    for (const std::size_t size : {1, 4, 6, 8, 9, 1024})
        EXPECT_EQ(dump(bytes.data(), 1000, 1, static_cast<int>(size)),
                  dump(bytes.data(), 1000, 1).substr(0, size - 1));
    EXPECT_EQ(Db::print_field_data_unknown(nullptr, 10, bytes.data(), 5, 1, nullptr), 0);
}

}  // namespace
}  // namespace pgn_vistel::test
