#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using Strings = std::vector<std::wstring>;

TEST(Lines, HeadOfAMessage) {
    N2KMsg msg = message(127250, {});
    msg.time_stamp = 1234;
    EXPECT_EQ(stream_line(msg), L"12.34          127250, Vessel Heading");
    msg.time_stamp = 0xFFFFFFFF;
    msg.pgn = 5;
    EXPECT_EQ(stream_line(msg), L"42949672.95          5, Unknown");
    EXPECT_EQ(stream_line(msg, 4), L"429");
    TextRenderer text({}, plain);
    text.start(msg, nullptr, MessageTime{.since_start = -2'259'000'000});
    EXPECT_TRUE(rendered(text).starts_with("-2.25               5, Unknown\n"));
    EXPECT_EQ(lines_of(message(5, {})),
              (Strings{L"Source Address: 0x23 (35)", L"Destination: Global, pri=3", L"Data:"}));
    EXPECT_EQ(lines_of(message(5, {9}, 254)),
              (Strings{L"Source Address: 0x23 (35)", L"Destination: 0xFE (254)", L"Data: 09"}));
    N2KMsg overlong = message(25, {});
    overlong.length = 65535;
    EXPECT_EQ(lines_of(overlong)[2].size(), 1023u);
}

TEST(Lines, Fields) {
    const wchar_t *const keldor = L"Manufacturer Code: Keldor", *const reserved = L"Reserved: 3 ",
                         *const marine = L"Industry Group:  Marine";
    // "..." stands for any at the start or the end
    const std::tuple<std::uint32_t, Bytes, Strings> cases[] = {
        // clang-format off
        // 90 degrees are 15708 counts of 0.0001 rad; the top three codes of a width are no values
        {127250, {5, 0x5C, 0x3D, 0xFD, 0x7F, 0xFF, 0x7F, 0xFD},
         {L"Sequence ID: 5 ", L"Heading Sensor Reading: 90.000 \x00B0M", L"Deviation: - \x00B0",
          L"Variation: - \x00B0", L"Heading Sensor Reference: Magnetic", L"NMEA Reserved: 63 "}},
        // cut off inside a number; nothing at all; more bytes than fields
        {127250, {5, 0x5C, 0x3D, 0xFF},
         {L"Sequence ID: 5 ", L"Heading Sensor Reading: 90.000 \x00B0M", L"Deviation: - \x00B0"}},
        {127250, {}, {}},
        {65240, {0x21, 0x43, 0x25, 0x11, 0x5A, 0x91, 0x78, 0xC9, 1, 0xAA, 0xBB}, {L"...", L"New Source Address: 1 "}},
        // repeated fields; a round may be cut off
        {126464, {0, 0x12, 0xF1, 0x01, 0x00, 0xEA, 0x00, 0x01, 0x02},
         {L"Group Function Code: Transmit PGN List Message", L"PGN supported #1: 127250 (Vessel Heading)",
          L"PGN supported #2:  59904 (ISO Request)", L"PGN supported #3: - "}},
        // behind a text that takes no byte the walk goes on at the same place; a round that takes none ends it
        {129285, {0, 0, 1, 0, 1, 0, 2, 0, 0xE8, 3, 1, 'A', 0xFF, 1, 0, 3, 1, 'B'}, {L"...", L"WP Name: B "}},
        {129285, {0, 0, 1, 0, 1, 0, 2, 0, 0xE8, 0, 1, 'A'},
         {L"...", L"Route Name:  ", L"NMEA Reserved: 0 ", L"WPID: 16641 "}},
        {130818, {0x76, 0x99, 1, 2, 3, 0, 0, 9, 9}, {L"...", L"Label:  ", L"Hardware Channel: 0 "}},
        {129285, {0, 0, 1, 0, 1, 0, 2, 0, 0xE8, 2, 1, 0xFF, 1, 0, 0, 1}, {L"...", L"WP Name:  ", L"WP Latitude: - \x00B0 Lat"}},
        // group functions: what a request is about depends on the PGN asked for; field 6 of an acknowledgment repeats
        {126208, {0, 0x12, 0xF1, 0x01, 0xE8, 0x03, 0, 0, 0xFF, 0xFF, 1, 2, 3},
         {L"Group Function Code: Request Message", L"Requested PGN: 127250 (Vessel Heading)",
          L"Transmission interval: 0.000278 Hr", L"Transmission interval offset: - Hr",
          L"Number of Pairs of Request Parameters to follow: 1 ", L"Data: 00 12 F1 01 E8 03 00 00 FF FF 01 02 03"}},
        {126208, {0, 0x12, 0xF1, 0x01, 0, 0, 0, 0, 0, 0, 0},
         {L"...", L"Number of Pairs of Request Parameters to follow: 0 "}},
        {126208, {1, 0x12, 0xF1, 0x01, 8, 1}, {L"Group Function Code: Command Message", L"..."}},
        {126208, {2, 0x12, 0xF1, 0x01, 0, 0, 0, 0, 0, 0, 3, 7, 9},
         {L"...", L"Field number of first requested parameter: 9 "}},
        {126208, {3, 0x12}, {L"Data: 03 12"}}, {126208, {255, 0x12}, {L"Data: FF 12"}},
        // the record's first byte is the function even of an empty message
        {126208, {}, {}},
        // proprietary messages: the header, and of the manufacturer's own what identifies them
        {61184, {}, {L"Data:"}}, {126720, {0x89}, {L"Data: 89"}}, {126720, {0x89, 0x98}, {keldor, reserved, marine}},
        {61184, {0x88, 0x98, 1, 2}, {L"Manufacturer Code: Unknown", reserved, marine, L"Data: 88 98 01 02"}},
        {61184, {0x89, 0x98, 1, 2, 3, 4, 5, 6}, {keldor, reserved, marine, L"Data: 89 98 01 02 03 04 05 06"}},
        {126720, {0x89, 0x98, 1, 0, 2, 0, 5, 6},
         {keldor, reserved, marine, L"Product Code: 1 ", L"Keldor Software Code: 2 ",
          L"Data: 89 98 01 00 02 00 05 06"}},
        // a value that names its format: 300 K; and a format that a value may not name
        {130840, {0x89, 0x98, 7, 105, 0, 0xE0, 0x93, 0x04},
         {L"...", L"Data Format: DF105 (Temperature)", L"Sensor Data: 80.330 \x00B0" L"F"}},
        {130840, {0x89, 0x98, 7, 2, 0, 0xE0, 0x93, 0x04}, {L"...", L"Data Format: Unknown", L"Sensor Data:  "}},
        // clang-format on
    };
    for (auto [pgn, payload, expected] : cases) {
        Strings lines = field_lines(message(pgn, payload), plain);
        if (!expected.empty() && expected.back() == L"...") {
            expected.pop_back();
            lines.resize(expected.size());
        } else if (!expected.empty() && expected.front() == L"...") {
            expected.erase(expected.begin());
            ASSERT_GE(lines.size(), expected.size());
            lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(expected.size()));
        }
        EXPECT_EQ(lines, expected) << pgn;
    }
    EXPECT_EQ(field_lines(message(127250, {5}))[0], L"Sequence ID: 5 (0x05) ");
}

}  // namespace
}  // namespace pgn_vistel::test
