#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

using Strings = std::vector<std::wstring>;

TEST(Lines, StreamLine) {
    N2KMsg msg = message(127250, {});
    const auto line = [&](int size = 1024) {
        return printed([&](wchar_t* b, int n) { return print_stream_line(b, n, msg, find_pgn_def(msg.pgn)); },
                       size);
    };
    msg.time_stamp = 1234;
    EXPECT_EQ(line(), L"12.34          127250, Vessel Heading");
    msg.time_stamp = 0xFFFFFFFF;
    msg.pgn = 5;
    EXPECT_EQ(line(), L"42949672.95          5, Unknown");
    EXPECT_EQ(line(4), L"429");
}

TEST(Lines, SourceAndDestination) {
    EXPECT_EQ(lines_of(message(130816 + 100, {})),
              (Strings{L"Source Address: 0x23 (35)", L"Destination: Global, pri=3", L"Data:"}));
    EXPECT_EQ(lines_of(message(130816 + 100, {9}, 35)),
              (Strings{L"Source Address: 0x23 (35)", L"Destination: 0x23 (35)", L"Data: 09"}));
    EXPECT_EQ(lines_of(message(130816 + 100, {9}, 254))[1], L"Destination: 0xFE (254)");
    N2KMsg overlong = message(25, {});
    overlong.length = 65535;
    EXPECT_EQ(lines_of(overlong)[2].size(), 1023u);
}

TEST(Lines, Heading) {
    // 90 degrees are 15708 counts of 0.0001 rad.
    EXPECT_EQ(
        field_lines(message(127250, {5, 0x5C, 0x3D, 0xFF, 0x7F, 0xFF, 0x7F, 0xFD}), plain),
        (Strings{L"Sequence ID: 5 ", L"Heading Sensor Reading: 90.000 \x00B0M", L"Deviation: - \x00B0",
                 L"Variation: - \x00B0", L"Heading Sensor Reference: Magnetic", L"NMEA Reserved: 63 "}));
    EXPECT_EQ(field_lines(message(127250, {5, 0x5C, 0x3D, 0xFF})),
              (Strings{L"Sequence ID: 5 (0x05) ", L"Heading Sensor Reading: 90.000 \x00B0M",
                       L"Deviation: - \x00B0"}))
        << "cut off inside a number";
    EXPECT_TRUE(field_lines(message(127250, {})).empty()) << "nothing to show, nothing undecoded";
    EXPECT_EQ(field_lines(message(127250, {1, 0, 0, 0, 0, 0, 0, 0, 0xAA, 0xBB})).size(), 6u);
}

TEST(Lines, AddressClaim) {
    // 21, 11, 3, 5, 8, 1, 7, 4, 3 and 1 bits
    const auto lines = field_lines(message(60928, {0x21, 0x43, 0x25, 0x11, 0x5A, 0x91, 0x78, 0xC9}), plain);
    ASSERT_EQ(lines.size(), 10u);
    EXPECT_EQ(lines[0], L"Unique Number (ISO Identity Number): 344865 ") << "0x054321";
    EXPECT_EQ(lines[1], L"Manufacturer Code: Keldor") << "0x1125 >> 5 is 137";
    EXPECT_EQ(lines[2], L"Device Instance Lower (ISO ECU Instance): 2 ");
    EXPECT_EQ(lines[3], L"Device Instance Upper (ISO Function Instance): 11 ");
    EXPECT_EQ(lines[6], L"Device Class: Navigation systems") << "0x78 >> 1 is 60";
    EXPECT_EQ(lines[7], L"System Instance (ISO Device Class Instance): 9 ");
    EXPECT_EQ(lines[8], L"Industry Group:  Marine");
    EXPECT_EQ(lines[9], L"NMEA Reserved (ISO Self Configurable): 1 ");
}

TEST(Lines, RepeatedFields) {
    EXPECT_EQ(field_lines(message(126464, {0, 0x12, 0xF1, 0x01, 0x00, 0xEA, 0x00, 0x01, 0x02})),
              (Strings{L"Group Function Code: Transmit PGN List Message",
                       L"PGN supported #1: 127250 (Vessel Heading)",
                       L"PGN supported #2:  59904 (ISO Request)", L"PGN supported #3: - "}));
    std::vector<std::uint8_t> fix(43);
    fix[42] = 3;
    for (int station = 0; station < 3; ++station) fix.insert(fix.end(), {0x21, 0x43, 0x64, 0x00});
    const auto lines = field_lines(message(129029, fix), plain);
    ASSERT_EQ(lines.size(), 15u + 9);
    for (std::size_t i = 15; i < 24; i += 3) {
        EXPECT_EQ(lines[i].substr(0, 27), L"Reference Station Type\"1\": ");
        EXPECT_EQ(lines[i + 1], L"Reference Station ID\"1\": 1074 ") << "0x432";
        EXPECT_EQ(lines[i + 2], L"Age of DGNSS Corrections \"1\": 0.000278 Hr") << "one second";
    }
}

TEST(Lines, WhatTakesNoByteEndsTheWalk) {
    // A route's name with a length of 0: what follows it cannot be placed.
    const auto named =
        field_lines(message(129285, {0, 0, 1, 0, 1, 0, 2, 0, 0xE8, 3, 1, 'A', 0xFF, 1, 0, 3, 1, 'B'}));
    EXPECT_EQ(named[7], L"Route Name: A ");
    EXPECT_EQ(named[10], L"WP Name: B ");
    const auto unnamed = field_lines(message(129285, {0, 0, 1, 0, 1, 0, 2, 0, 0xE8, 0, 1, 'A'}));
    ASSERT_EQ(unnamed.size(), 9u);
    EXPECT_EQ(unnamed[7].substr(0, 12), L"Route Name: ");
    EXPECT_EQ(unnamed[8], L"Data: 00 00 01 00 01 00 02 00 E8 00 01 41");
}

TEST(Lines, GroupFunctions) {
    // a request: its pairs depend on the PGN asked for
    EXPECT_EQ(
        field_lines(message(126208, {0, 0x12, 0xF1, 0x01, 0xE8, 0x03, 0, 0, 0xFF, 0xFF, 1, 2, 3}), plain),
        (Strings{L"Group Function Code: Request Message", L"Requested PGN: 127250 (Vessel Heading)",
                 L"Transmission interval: 0.000278 Hr", L"Transmission interval offset: - Hr",
                 L"Number of Pairs of Request Parameters to follow: 1 ",
                 L"Data: 00 12 F1 01 E8 03 00 00 FF FF 01 02 03"}));
    EXPECT_EQ(field_lines(message(126208, {0, 0x12, 0xF1, 0x01, 0, 0, 0, 0, 0, 0, 0})).size(), 5u)
        << "nothing left over";
    const auto command = field_lines(message(126208, {1, 0x12, 0xF1, 0x01, 8, 0, 0, 0, 0, 0, 1, 2, 3}));
    EXPECT_EQ(command.size(), 6u);
    EXPECT_EQ(command[0], L"Group Function Code: Command Message");
    const auto acknowledgment =
        field_lines(message(126208, {2, 0x12, 0xF1, 0x01, 0, 0, 0, 0, 0, 0, 3, 7, 8, 9}), plain);
    ASSERT_EQ(acknowledgment.size(), 8u) << "field 6 repeats to the end";
    EXPECT_EQ(acknowledgment[0], L"Group Function Code: Acknowledge Message");
    EXPECT_EQ(acknowledgment[7], L"Field number of first requested parameter: 9 ");
    for (const std::uint8_t code : {3, 5, 6, 7, 255})
        EXPECT_EQ(field_lines(message(126208, {code, 0x12})),
                  Strings{code == 255 ? L"Data: FF 12" : L"Data: 0" + std::to_wstring(code) + L" 12"});
}

TEST(Lines, ProprietaryMessages) {
    const Strings header = {L"Manufacturer Code: Keldor", L"Reserved: 3 ", L"Industry Group:  Marine"};
    const auto shown = [&](std::uint32_t pgn, const std::vector<std::uint8_t>& payload) {
        return field_lines(message(pgn, payload), plain);
    };
    for (const std::uint32_t pgn : {61184u, 126720u}) {
        EXPECT_EQ(shown(pgn, {}), Strings{L"Data:"});
        EXPECT_EQ(shown(pgn, {0x89}), Strings{L"Data: 89"});
        EXPECT_EQ(shown(pgn, {0x89, 0x98}), header) << "nothing behind the header";
        const auto foreign = shown(pgn, {0x88, 0x98, 1, 2});
        ASSERT_EQ(foreign.size(), 4u);
        EXPECT_EQ(foreign[3], L"Data: 88 98 01 02");
    }
    Strings expected = header;
    expected.push_back(L"Data: 89 98 01 02 03 04 05 06");
    EXPECT_EQ(shown(61184, {0x89, 0x98, 1, 2, 3, 4, 5, 6}), expected);
    const auto fast = shown(126720, {0x89, 0x98, 1, 0, 2, 0, 5, 6});
    ASSERT_EQ(fast.size(), 6u) << "product code and software code are shown, too";
    EXPECT_EQ(fast[5], L"Data: 89 98 01 00 02 00 05 06");
}

TEST(Lines, GenericSensor) {
    // 300 K are 80.33 F
    EXPECT_EQ(field_lines(message(130840, {0x89, 0x98, 7, 105, 0, 0xE0, 0x93, 0x04}), plain),
              (Strings{L"Manufacturer Code: Keldor", L"Reserved: 3 ", L"Industry Group:  Marine",
                       L"Data Instance: 7 ", L"Data Format: DF105 (Temperature)",
                       L"Sensor Data: 80.330 \x00B0"
                       L"F"}));
    EXPECT_EQ(field_lines(message(130840, {0x89, 0x98, 7, 2, 0, 0xE0, 0x93, 0x04}), plain)[5],
              L"Sensor Data:  ")
        << "a format that a value may not name: of the entry's own class, which shows no dash";
}

TEST(Lines, ProductInformation) {
    std::vector<std::uint8_t> payload(256);
    payload[0] = 0x34, payload[1] = 0x08, payload[2] = 1;
    std::memcpy(payload.data() + 64, "Model\xFF", 6);
    std::memset(payload.data() + 96, 'x', 32);
    // The codes take 32 bytes like the texts, and of that many bytes a number keeps nothing.
    const auto lines = field_lines(message(126996, payload), plain);
    ASSERT_EQ(lines.size(), 8u);
    EXPECT_EQ(lines[0], L"NMEA Network Message Database Version: 0.000");
    EXPECT_EQ(lines[1], L"NMEA Manufacturer's Product Code: 0 ");
    EXPECT_EQ(lines[2], L"Manufacturer's Model ID: Model ");
    EXPECT_EQ(lines[3], L"Manufacturer's Software Version Code: " + std::wstring(32, L'x') + L" ");
    EXPECT_EQ(lines[7], L"Load Equivalency: 0 ");
}

}  // namespace
}  // namespace pgn_vistel::test
