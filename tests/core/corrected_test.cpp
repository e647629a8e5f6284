#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

// What devices send, by the corrected definitions.

/// The message's name, then its lines behind source and destination.
std::vector<std::string> shown(const N2KMsg& msg) {
    const std::string name(pgn_name(find_definition(Definitions::corrected, msg)));
    std::vector<std::string> all{name};
    const auto lines = lines_of(msg, plain, {}, line_size, Definitions::corrected);
    for (std::size_t i = 2; i < lines.size(); ++i) all.push_back(as_utf8(lines[i]));
    return all;
}

/// A proprietary payload: header of a maker in the marine industry, then bytes.
Bytes of_maker(unsigned maker, Bytes behind) {
    const unsigned header = maker | 3u << 11 | 4u << 13;
    behind.insert(behind.begin(),
                  {static_cast<std::uint8_t>(header), static_cast<std::uint8_t>(header >> 8)});
    return behind;
}

/// Position data that say how many reference stations follow, with one behind it.
Bytes with_count(std::uint8_t count) {
    Bytes bytes(47, 0xFF);
    bytes[42] = count;
    bytes[43] = 5;
    return bytes;
}

Bytes product_information() {
    Bytes bytes{0x34, 0x08, 0x88, 0x42};
    for (const std::string_view text : {"Model @1", "2.80", "", "12345"}) {
        Bytes padded(text.begin(), text.end());
        padded.resize(32, text.empty() ? 0xFF : ' ');
        bytes.insert(bytes.end(), padded.begin(), padded.end());
    }
    bytes.insert(bytes.end(), {1, 2});
    return bytes;
}

TEST(Corrected, Messages) {
    const struct {
        N2KMsg msg;
        std::vector<std::string> lines;  // the name, then lines that are shown in this order
    } cases[] = {
        // A direction is true or magnetic as its message says.
        {message(127250, {1, 0x10, 0x27, 0xFF, 0x7F, 0xFF, 0x7F, 0xFC}),
         {"Vessel Heading", "Heading Sensor Reading: 57.296 °T", "Deviation: - °"}},
        {message(127250, {1, 0x10, 0x27, 0xFF, 0x7F, 0xFF, 0x7F, 0xFD}),
         {"Vessel Heading", "Heading Sensor Reading: 57.296 °M"}},
        {message(127250, {1, 0x10, 0x27, 0xFF, 0x7F, 0xFF, 0x7F, 0xFF}),
         {"Vessel Heading", "Heading Sensor Reading: 57.296 °"}},
        {message(127252, {1, 0xFC, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}), {"Heave", "Heave: -4.0000 cm"}},
        // Texts have their own places, and end at their fill characters.
        {message(126996, product_information()),
         {"Product Information", "NMEA Network Message Database Version: 2.1000 ",
          "NMEA Manufacturer's Product Code: 17032 ", "Manufacturer's Model ID: Model ",
          "Manufacturer's Software Version Code: 2.80 ",
          "Manufacturer's Model Version:  ", "Manufacturer's Model Serial Code: 12345 ",
          "NMEA 2000 Certification Level: Level B", "Load Equivalency: 2 "}},
        // Whose a proprietary message is comes first; bytes that no field covers are shown.
        {message(65280, of_maker(1855, {0x12, 0, 0, 0, 0xFF, 0xFF})),
         {"Furuno: Heave", "Manufacturer Code: Furuno", "Heave: 1.8000 cm"}},
        {message(65280, of_maker(2000, {1, 2, 3, 4, 5, 6})),
         {"Unknown maker, proprietary", "Manufacturer Code: 2000 ", "Industry Code: Marine",
          "Data: 01 02 03 04 05 06"}},
        {message(130999, of_maker(229, {7})),
         {"Garmin, proprietary", "Manufacturer Code: Garmin", "Data: 07"}},
        {message(130999, {7}), {"Unknown", "Data: 07"}},
        {message(129025, {0, 0, 0, 0, 0, 0, 0, 0, 0xAB}),
         {"Position, Rapid Update", "Longitude: 0.00000000 ° Long", "Data: AB"}},
        // The rounds of a group are counted, by the message where it says how many there are.
        {message(126208, {2, 0x12, 0xF1, 0x01, 0, 3, 0x10, 0x02, 0xAB}),
         {"NMEA -  Acknowledge group function", "Number of Requested or Commanded Parameters: 3 ",
          "parameter error code #1: No Error/Acknowledge",
          "parameter error code #3: Temporarily unable to comply", "Data: 02 AB"}},
        {message(129029, with_count(0)),
         {"GNSS Position Data", "Number of Reference Stations: 0 ", "Data: 05 FF FF FF"}},
        {message(129029, with_count(0xFF)),
         {"GNSS Position Data", "Number of Reference Stations: - ", "Data: 05 FF FF FF"}},
        {message(129029, with_count(1)),
         {"GNSS Position Data", "Number of Reference Stations: 1 ", "Reference Station Type\"1\" #1: Chayka",
          "Reference Station ID\"1\" #1: 4080 "}},
        // A group function is about fields of another message.
        {message(126208, {1, 0x12, 0xF1, 0x01, 0xF8, 2, 2, 0x10, 0x27, 5, 1}),
         {"NMEA -  Command group function", "Commanded PGN: 127250 (Vessel Heading)",
          "Priority Setting: Do not change priority", "Number of Pairs of Commanded Parameters to follow: 2 ",
          "Field number of first commanded parameter #1: 2 ", "Heading Sensor Reading: 57.296 °",
          "Field number of first commanded parameter #2: 5 ", "Heading Sensor Reference: Magnetic"}},
        {message(126208, {1, 0x00, 0xEF, 0x00, 0xF8, 1, 99, 1, 2}),
         {"NMEA -  Command group function", "Field number of first commanded parameter #1: 99 ",
          "Value of first command parameter #1: 01 02 "}},
        {message(126208, {1, 0x00, 0xEF, 0x00, 0xF8, 2, 99, 1, 2}),
         {"NMEA -  Command group function", "Field number of first commanded parameter #1: 99 ",
          "Data: 01 02"}},
        // Pairs tell the maker, and which of its messages is meant.
        {message(126208,
                 {0, 0x00, 0xEF, 0x01, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 3, 1, 0x87, 0x98, 4, 0x2A, 5, 1}),
         {"NMEA -  Request group function", "Requested PGN: 126720 (Proprietary)",
          "Transmission interval: Do not change interval", "Manufacturer Code: Airmar",
          "Proprietary ID: Calibrate Temperature", "Temperature instance: Onboard Water Sensor"}},
        {message(126208, {5, 0x00, 0xEF, 0x01, 0x87, 0x98, 1, 2, 1, 4, 0x2A, 5, 1, 4, 0x2A}),
         {"NMEA - Write Fields - group function", "Proprietary ID: Calibrate Temperature",
          "Temperature instance: Onboard Water Sensor", "Proprietary ID: Calibrate Temperature"}},
        {message(126208, {9, 1, 2}), {"NMEA Group Function", "Data: 09 01 02"}},
        // A code without a text keeps its number; a code that says that there is no value is none.
        {message(127245, {0, 0xFD, 0xFF, 0x7F, 0, 0, 0xFF, 0xFF}),
         {"Rudder", "Direction Order: Reserved (5)", "Angle Order: - °", "Position: 0.00000 °"}},
        // A value is read by the key in front of it.
        {message(130824, of_maker(381, {0x35, 0x20, 0x10, 0x27})),
         {"B&G: key-value data", "Key #1: Optimum Wind Angle", "Length #1: 2 ",
          "Optimum Wind Angle: 57.296 °"}},
        // A size of 0 is no field, not all that follows.
        {message(130824, of_maker(381, {0x35, 0x00, 0x35, 0x20, 0x10, 0x27})),
         {"B&G: key-value data", "Length #1: 0 ", "Key #2: Optimum Wind Angle",
          "Optimum Wind Angle: 57.296 °"}},
        {message(129814, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 9}),
         {"AIS Single Slot Binary Message", "Data: 09"}},
        {message(129809, {24, 0x4E, 0x61, 0xBC, 0, 'A', 'B', '@', 'C'}),
         {"AIS Class B \"CS\" Static Data Report, Part A", "User ID: 012345678", "Name: AB "}},
    };
    for (const auto& c : cases) {
        const auto lines = shown(c.msg);
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines[0], c.lines[0]);
        auto at = lines.begin() + 1;
        for (std::size_t i = 1; i < c.lines.size(); ++i) {
            const auto found = std::find(at, lines.end(), c.lines[i]);
            EXPECT_NE(found, lines.end()) << c.lines[i] << " in " << testing::PrintToString(lines);
            if (found == lines.end()) break;
            at = found + 1;
        }
    }
}

TEST(Corrected, NoTextStaysFromAnotherMessage) {
    const auto configuration = [](Bytes bytes) { return message(126998, bytes); };
    const N2KMsg said = configuration({6, 1, 'm', 'i', 'n', 'e', 2, 1, 2, 1});
    for (const Bytes& refused :
         {Bytes{6, 9, 'x', 'x', 'x', 'x'}, Bytes{1, 1}, Bytes{0}, Bytes{6}, Bytes{255, 2}}) {
        TextScratch scratch;
        const UnitSelection units;
        std::wstring all;
        for (const N2KMsg& msg : {said, configuration(refused)}) {
            all.clear();
            StreamLines lines(find_definition(Definitions::corrected, msg), msg, units, scratch, plain);
            wchar_t line[line_size];
            while (lines.next(line, line_size) >= 0) all += line;
        }
        EXPECT_EQ(all.find(L"mine"), all.npos) << all.c_str();
    }
}

}  // namespace
}  // namespace pgn_vistel::test
