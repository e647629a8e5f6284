#include "pgn_vistel/catalogue.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using Keys = std::array<int, 4>;

Keys keys_of(std::uint32_t pgn, std::vector<std::uint8_t> payload) {
    payload.resize(sizeof(N2KMsg::data));
    std::uint8_t k[4] = {255, 255, 255, 255};
    EXPECT_EQ(extract_stream_keys(pgn, payload.data(), &k[0], &k[1], &k[2], &k[3]), 1) << pgn;
    return {k[0], k[1], k[2], k[3]};
}

std::vector<std::uint8_t> label(int length, int encoding) {
    std::vector<std::uint8_t> payload(200, 0x77);
    payload[0] = 0x89, payload[1] = 0x98;
    payload[5] = static_cast<std::uint8_t>(length), payload[6] = static_cast<std::uint8_t>(encoding);
    if (length >= 2 && length < 190) payload[static_cast<std::size_t>(5 + length)] = 42;
    return payload;
}

TEST(StreamKeys, BytesAndBits) {
    EXPECT_EQ(keys_of(127505, {0x21}), (Keys{1, 2, 255, 255}));
    EXPECT_EQ(keys_of(126208, {1, 2, 3, 4}), (Keys{1, 2, 3, 4}));
    EXPECT_EQ(keys_of(129038, {0xFF, 0xFE}), (Keys{255, 0x3F, 0x0E, 255}));
    EXPECT_EQ(keys_of(130311, {9, 0xC5}), (Keys{255, 5, 3, 255}));
    EXPECT_EQ(keys_of(65286, {0, 0, 0, 7, 0xAB}), (Keys{7, 0xB, 255, 7}));
    EXPECT_EQ(keys_of(130066, {5, 6, 0}), (Keys{255, 5, 6, 0}));
    EXPECT_EQ(keys_of(130843, {0, 0, 0x9F}), (Keys{9, 255, 255, 255}));
    EXPECT_EQ(keys_of(127488, {0xFF}), (Keys{255, 255, 255, 255}));
}

TEST(StreamKeys, ProprietaryHeader) {
    EXPECT_EQ(keys_of(61184, {0x89, 0x98, 7, 1, 2, 3, 9}), (Keys{7, 255, 255, 255}));
    EXPECT_EQ(keys_of(126720, {0x89, 0x98, 7, 1, 2, 3, 9}), (Keys{9, 255, 255, 255}));
    EXPECT_EQ(keys_of(61184, {0x88, 0x98, 7}), (Keys{255, 255, 255, 255})) << "somebody else's";
    EXPECT_EQ(keys_of(126720, {0x89, 0x99, 7, 1, 2, 3, 9}), (Keys{255, 255, 255, 255}));
}

TEST(StreamKeys, LabelsChannelStandsBehindTheText) {
    for (const int length : {2, 10, 128})
        EXPECT_EQ(keys_of(130818, label(length, 1)), (Keys{42, 255, 255, 255}));
    EXPECT_EQ(keys_of(130818, label(10, 0))[0], 42);
    for (const int length : {0, 1, 129, 255}) EXPECT_EQ(keys_of(130818, label(length, 1))[0], 255) << length;
    EXPECT_EQ(keys_of(130818, label(10, 2))[0], 255);
    auto foreign = label(10, 1);
    foreign[0] = 0x88;
    EXPECT_EQ(keys_of(130818, foreign)[0], 255);
}

TEST(StreamKeys, OnlyKeysThatAreAskedForAreWritten) {
    const std::uint8_t payload[sizeof(N2KMsg::data)] = {0x89, 0x98, 3, 4};
    for (const std::uint32_t pgn : {126208u, 61184u}) {
        std::uint8_t k[4] = {0, 255, 0, 1};
        EXPECT_EQ(extract_stream_keys(pgn, payload, &k[0], &k[1], &k[2], &k[3]), 1);
        EXPECT_EQ(k[0], 0);
        EXPECT_EQ(k[1], pgn == 126208 ? 0x98 : 255);
        EXPECT_EQ(k[2], 0);
        EXPECT_EQ(k[3], pgn == 126208 ? 4 : 255);
    }
    std::uint8_t k[4] = {255, 255, 255, 7};
    for (const std::uint32_t pgn : {0u, 61183u, 127250u, 131000u, 0xFFFFFFFFu, 0x80000000u + 61184})
        EXPECT_EQ(extract_stream_keys(pgn, payload, &k[0], &k[1], &k[2], &k[3]), 0) << pgn;
    EXPECT_EQ(extract_stream_keys(61184, nullptr, &k[0], &k[1], &k[2], &k[3]), 0);
    EXPECT_EQ(k[3], 7);
}

}  // namespace
}  // namespace pgn_vistel::test
