#include "core/read.h"

#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

constexpr std::uint32_t binary = 142;

/// So many bits as binary data, as sent.
FieldReading read_at(const N2KMsg& msg, int bits, PayloadPosition at) {
    const FormatPlan* const format = find_format_plan(find_dictionary_entry(binary)->df);
    TextScratch scratch;
    FieldValue v;
    read({format, 0, bits, quantity::no_quantity, false}, binary, {msg.data, payload_length(msg)},
         at.byte * 8 + at.bit, UnitSelection{}, unit::raw_count, scratch, v);
    return {v.quantity, v.unit, {v.next >> 3, v.next & 7}, v.cut_off, v.value};
}

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
            const FieldReading whole = read_at(msg, width, {byte, bit});
            EXPECT_EQ(whole.value.type, ValueType::u64);
            EXPECT_EQ(whole.value.number.u64(), expected);
            EXPECT_EQ(whole.next.byte * 8 + whole.next.bit, byte * 8 + bit + width);
            EXPECT_LT(whole.next.bit, 8);
            --msg.length;
            if (msg.length <= byte) continue;  // does not start in the message
            const FieldReading cut = read_at(msg, width, {byte, bit});
            EXPECT_TRUE(cut.cut_off);
            EXPECT_EQ(cut.value.type, ValueType::none);
            EXPECT_EQ(cut.next, whole.next);
        }
}

}  // namespace
}  // namespace pgn_vistel::test
