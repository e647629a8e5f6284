#include "pgn_vistel/pgn_db.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

struct Reading {
    ConvValue value{CV_NOT_AVAILABLE, {}};
    std::wstring text;
    PayloadPosition next;
};

Reading read(N2KMsg msg, const DDDef* dd, int bytes, int bits, PayloadPosition at,
             UnitId unit = unit::raw_count, bool own_record = true, int field = 1) {
    Reading r;
    r.value.value.u64 = 0x7FFFFFFF;
    r.next = at;
    r.text = printed([&](wchar_t* buf, int size) {
        return qv_n2k_pgn_db.get_field_str(buf, size, &msg, field, const_cast<DDDef*>(dd), L"L", bytes, bits,
                                           &r.next.byte, &r.next.bit, nullptr, 0, 1, plain, nullptr,
                                           own_record ? &r.value : nullptr, unit);
    });
    return r;
}

const DDDef* const binary = &dictionary_entry(142);    // DF 52, no size of its own
const DDDef* const counter = &dictionary_entry(6);     // DF 53, 8 bits
const DDDef* const number = &dictionary_entry(7);      // DF 54, 16 bits
const DDDef* const latitude = &dictionary_entry(202);  // DF 76, 64 bits
const DDDef* const name = &dictionary_entry(4);        // DF 50
const DDDef* const text = &dictionary_entry(198);      // DF 51

TEST(FieldReading, BitsOfEveryWidthAtEveryPosition) {
    std::mt19937 random(1);
    for (int bit = 0; bit < 8; ++bit)
        for (int width = 1; width <= 64; ++width) {
            SCOPED_TRACE(std::to_string(width) + " bits at bit " + std::to_string(bit));
            N2KMsg msg = message(127250, random_bytes(random, 1786));
            constexpr int byte = 5;
            std::uint64_t expected = 0;
            for (int i = 0; i < width; ++i) {
                const int place = byte * 8 + bit + i;
                expected |= std::uint64_t{msg.data[place / 8] >> place % 8 & 1u} << i;
            }
            const int end = (byte * 8 + bit + width + 7) / 8;
            msg.length = static_cast<std::uint16_t>(end);  // ends with the field
            const Reading whole_field = read(msg, binary, 0, width, {byte, bit});
            EXPECT_EQ(whole_field.value.type, CV_U64);
            EXPECT_EQ(whole_field.value.value.u64, expected);
            EXPECT_EQ(whole_field.next.byte * 8 + whole_field.next.bit, byte * 8 + bit + width);
            EXPECT_LT(whole_field.next.bit, 8);
            --msg.length;
            if (msg.length <= byte) continue;  // does not start in the message
            const Reading cut = read(msg, binary, 0, width, {byte, bit});
            EXPECT_EQ(cut.value.type, CV_NOT_AVAILABLE);
            EXPECT_EQ(cut.text, L"L: - ");
            EXPECT_EQ(cut.next.byte, whole_field.next.byte);
        }
}

TEST(FieldReading, NumbersAtTheEnd) {
    N2KMsg msg = message(127250, {1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(read(msg, number, 0, 0, {6, 0}).value.value.u16, 0x0807);
    EXPECT_EQ(read(msg, number, 0, 0, {6, 0}).next.byte, 8);
    EXPECT_EQ(read(msg, counter, 0, 0, {7, 0}).value.value.u8, 8);
    msg.data[8] = 0x34, msg.data[9] = 0x12;
    EXPECT_EQ(read(msg, number, 0, 0, {7, 0}).text, L"L: - ") << "one byte is there";
    EXPECT_EQ(read(msg, number, 0, 0, {8, 0}).value.value.u16, 0x1234) << "wholly beyond: from the record";
    EXPECT_EQ(read(msg, latitude, 0, 0, {1, 0}, unit::deg_lat).text, L"L: - \x00B0 Lat");
    // A field of whole bytes that begins inside a byte reads as zeros.
    EXPECT_EQ(read(msg, number, 2, 0, {3, 5}).text, L"L: 0 ");
    EXPECT_EQ(read(msg, number, 2, 0, {3, 5}).next.byte, 5);
    EXPECT_EQ(read(msg, number, 2, 0, {3, 5}).next.bit, 5);
    EXPECT_EQ(read(msg, number, 2, 0, {6, 4}).text, L"L: - ") << "its last four bits are missing";
    // The size masks integers, modulo 256 bits.
    msg.length = 400;
    for (const auto& [bytes, expected] : {std::pair{1, 0x01}, {2, 0x0201}, {31, 0x0201}, {32, 0}, {33, 0x01}})
        EXPECT_EQ(read(msg, number, bytes, 0, {0, 0}).value.value.u16, expected) << bytes;
    // In kilograms only the caller's own record has a value to show.
    msg = message(127250, {1, 0, 0, 0});
    EXPECT_EQ(read(msg, &dictionary_entry(313), 0, 0, {0, 0}, unit::kg, false).text, L"L: - kg");
    EXPECT_EQ(read(msg, &dictionary_entry(313), 0, 0, {0, 0}, unit::gram, false).text, L"L: 10000000 g");
}

TEST(FieldReading, TextsShowWhatIsThere) {
    N2KMsg msg = message(127250, {20, 1, 'a', 'b', 'c'});
    std::memset(msg.data + 5, 'X', 100);
    EXPECT_EQ(read(msg, name, 0, 0, {0, 0}).text, L"L: abc ");
    EXPECT_EQ(read(msg, name, 0, 0, {0, 0}).next.byte, 20);
    EXPECT_EQ(read(msg, &dictionary_entry(192), 8, 0, {2, 0}).text, L"L: abc ");
    EXPECT_EQ(read(msg, &dictionary_entry(10053), 256, 0, {2, 0}).text, L"L: 61 62 63 ");
    msg.data[0] = 100, msg.data[1] = 0, msg.data[2] = 1;
    EXPECT_EQ(read(msg, text, 0, 0, {0, 0}).text, L"L: bc ");
    EXPECT_EQ(read(msg, text, 0, 0, {0, 0}).next.byte, 100);
    clear_text_areas();
    EXPECT_EQ(read(message(127250, {0xFF, 0xFF}), text, 0, 0, {1, 0}).text, L"L:  ") << "half a length";
}

TEST(FieldReading, NotDecodable) {
    const DDDef no_format{7, "", nullptr, 0, 0};
    const DFDef dead{9999, "DF9999", nullptr, nullptr};
    const DDDef no_conversion{7, "", &dead, 0, 0};
    const N2KMsg msg = message(127250, {1, 0xAB, 0xFF});
    const PayloadPosition inside{1, 3};
    std::vector<Reading> readings = {read(msg, nullptr, 1, 0, inside), read(msg, &no_format, 1, 0, inside),
                                     read(msg, &no_conversion, 1, 0, inside),
                                     read(msg, number, 1, 0, inside, -1, true, 0)};
    for (const std::uint32_t pgn : {0u, 0xFFFFFFFFu})
        readings.push_back(read(message(pgn, {1, 0xAB, 0xFF}), number, 1, 0, inside));
    for (const int byte : {-1, 1786, INT32_MAX, INT32_MIN})
        readings.push_back(read(msg, number, 1, 0, {byte, 0}));
    for (const Reading& r : readings) {
        EXPECT_EQ(r.text, L"Data: 01 AB FF");
        EXPECT_EQ(r.next.byte, 3);
        EXPECT_EQ(r.next.bit, 0);
    }
    EXPECT_EQ(read(message(0, {}), number, 1, 0, {0, 0}).text, L"Data:");
    N2KMsg overlong = message(0, {});
    overlong.length = 65535;
    EXPECT_EQ(read(overlong, number, 1, 0, {0, 0}).next.byte, 1785);
}

TEST(FieldReading, LabelAndValueApart) {
    N2KMsg msg = message(127250, {5});
    wchar_t label[1024], value[1024];
    const auto split = [&](int field) {
        return qv_n2k_pgn_db.get_field_str(label, value, &msg, field, const_cast<DDDef*>(counter), L"Count",
                                           0, 0, nullptr, nullptr, nullptr, 0, 0, plain, nullptr, -1);
    };
    EXPECT_EQ(split(1), 8);
    EXPECT_STREQ(label, L"Count: ");
    EXPECT_STREQ(value, L"5");
    EXPECT_EQ(split(0), 8);
    EXPECT_STREQ(label, L"Data:");
    EXPECT_STREQ(value, L" 05");
}

TEST(FieldReading, SourceOfPressure) {
    for (const std::uint32_t pgn : {130314u, 130315u}) {
        N2KMsg msg = message(pgn, {1, 0, 1});
        unsigned char source = 99;
        wchar_t buf[100];
        qv_n2k_pgn_db.get_field_str(buf, 100, &msg, 3, const_cast<DDDef*>(&dictionary_entry(289)), L"S", 1, 0,
                                    nullptr, nullptr, &source, 0, 1, 0, nullptr, nullptr, -1);
        EXPECT_EQ(source, pgn == 130314 ? 1 : 99);
    }
    // One atmosphere, 1013250 of 0.1 Pa: air is shown in inches of mercury, anything else in pounds per
    // square inch.
    std::vector<std::uint8_t> atmosphere = {1, 0, 0, 0x02, 0x76, 0x0F, 0x00, 0xFF};
    EXPECT_NE(field_lines(message(130314, atmosphere))[3].find(L"inHg"), std::wstring::npos);
    atmosphere[2] = 1;
    EXPECT_NE(field_lines(message(130314, atmosphere))[3].find(L": 14.696 PSI"), std::wstring::npos);
}

}  // namespace
}  // namespace pgn_vistel::test
