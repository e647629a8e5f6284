#include "core/read.h"

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

/// A field of any entry, size and place, with the unit as sent.
FieldReading read_at(const N2KMsg& msg, std::uint32_t dd, int bytes, int bits, PayloadPosition at,
                     UnitId u = unit::raw_count) {
    const DDDef& entry = *find_dictionary_entry(dd);
    const FormatPlan* const format = find_format_plan(entry.df);
    TextScratch scratch;
    FieldValue v;
    read({format, bytes, bits, quantity::no_quantity, is_text(format->reading)}, entry.dd,
         {msg.data, payload_length(msg)}, at.byte * 8 + at.bit, UnitSelection{}, u, scratch, v);
    v.value.text.data = nullptr;  // of a scratch that is gone
    return {v.quantity, v.unit, {v.next >> 3, v.next & 7}, v.cut_off, v.value};
}

constexpr std::uint32_t binary = 142, number = 7, latitude = 202, name = 4;
constexpr int none = -1;

TEST(Reading, BitsOfEveryWidthAtEveryPosition) {
    std::mt19937 random(1);
    for (int bit = 0; bit < 8; ++bit)
        for (int width = 1; width <= 64; ++width) {
            SCOPED_TRACE(testing::Message() << width << " bits at bit " << bit);
            N2KMsg msg = message(127250, random_bytes(random, 1786));
            constexpr int byte = 5;
            std::uint64_t expected = 0;
            for (int i = 0; i < width; ++i) {
                const int place = byte * 8 + bit + i;
                expected |= std::uint64_t{msg.data[place / 8] >> place % 8 & 1u} << i;
            }
            msg.length = static_cast<std::uint16_t>((byte * 8 + bit + width + 7) / 8);  // ends with the field
            const FieldReading whole = read_at(msg, binary, 0, width, {byte, bit});
            EXPECT_EQ(whole.value.type, ValueType::u64);
            EXPECT_EQ(whole.value.number.u64(), expected);
            EXPECT_EQ(whole.next.byte * 8 + whole.next.bit, byte * 8 + bit + width);
            EXPECT_LT(whole.next.bit, 8);
            --msg.length;
            if (msg.length <= byte) continue;  // does not start in the message
            const FieldReading cut = read_at(msg, binary, 0, width, {byte, bit});
            EXPECT_TRUE(cut.cut_off);
            EXPECT_EQ(cut.value.type, ValueType::none);
            EXPECT_EQ(cut.next, whole.next);
        }
}

TEST(Reading, AtTheEnd) {
    N2KMsg msg = message(127250, {1, 2, 3, 4, 5, 6, 7, 8});
    // Entry, bytes, place; the number, or none where it is cut off, and where the next field begins.
    const std::tuple<std::uint32_t, int, PayloadPosition, int, PayloadPosition> cases[] = {
        {number, 0, {6, 0}, 0x0807, {8, 0}},  {number, 0, {7, 0}, none, {9, 0}},  // one byte is there
        {number, 0, {8, 0}, 0x1234, {10, 0}},  // wholly beyond: from the record
        {number, 0, {1785, 0}, 0, {1787, 0}}, {latitude, 0, {1, 0}, none, {9, 0}},
        {number, 2, {3, 5}, 0, {5, 5}},     // whole bytes that begin inside one
        {number, 2, {6, 4}, none, {8, 4}},  // its last four bits are missing
    };
    msg.data[8] = 0x34, msg.data[9] = 0x12;
    for (const auto& [dd, bytes, at, expected, next] : cases) {
        SCOPED_TRACE(at.byte);
        const FieldReading field = read_at(msg, dd, bytes, 0, at, unit::raw_bits);
        EXPECT_EQ(field.cut_off, expected == none);
        EXPECT_EQ(field.value.type == ValueType::none, expected == none);
        EXPECT_TRUE(expected == none || integer_of(field.value) == expected);
        EXPECT_EQ(field.next, next);
    }
    EXPECT_FALSE(read_at(msg, name, 0, 0, {4, 0}).cut_off) << "texts show what is there";
    // The size masks integers, modulo 256 bits.
    msg.length = 400;
    for (const auto& [bytes, expected] : {std::pair{1, 0x01}, {2, 0x0201}, {31, 0x0201}, {32, 0}, {33, 0x01}})
        EXPECT_EQ(read_at(msg, number, bytes, 0, {0, 0}).value.number.u16(), expected) << bytes;
}

}  // namespace
}  // namespace pgn_vistel::test
