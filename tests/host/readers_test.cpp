#include <gtest/gtest.h>
#include <unistd.h>
#if !defined(_WIN32)
#include <sys/socket.h>
#endif

#include <random>
#include <string>
#include <vector>

#include "host/recording_contents.h"

namespace vistel {
namespace {

using namespace std::string_literals;
TEST(Readers, ReadEachShapeOfLine) {
    std::string most;
    for (int i = 0; i < 1785; ++i) most += ",5A";
    std::string most_shown = most;
    std::erase(most_shown, ',');
    // Empty: nothing comes of the line.
    // clang-format off
    const std::pair<const char*, std::vector<std::pair<std::string, std::string>>> formats[] = {{"plain", {
        {"12:00:00,2,127250,7,255,3,fF,10,3b", "F 2 127250 7 255 FF103B"}, {",6,65301,255,0,0,", "F 6 65301 255 0 "},
        {",7,262143,0,0,8,00,11,22,33,44,55,66,77", "F 7 262143 0 0 0011223344556677"},
        {",0,0,255,254,9,00,11,22,33,44,55,66,77,88", "M 0 0 255 254 001122334455667788"},
        {",2,127250,7,255,1785" + most, "M 2 127250 7 255 " + most_shown}, {",2,4294967295,7,255,1,ff", "1 foreign"}, {",0,262144,0,0,2,01,0e", "1 foreign"},
        {"12:00:00 , 2,127250 , 7,255,3, f, 10,3b", "F 2 127250 7 255 0F103B"}, {",2,127250,7,255,2,00,", "byte 2 `` is not hexadecimal"},
        {",2,127250,7,255,1786" + most + ",5a", "length 1786 is above 1785"},
        {"hello", "`hello` is not timestamp,priority,PGN,source,destination,length,bytes"},
        {",2,127250,7,255,2,00,\x01\xFF", "byte 2 `\\x01\\xFF` is not hexadecimal"},
    }}, {"candump", {
        {"(1502979132.106111)  a long name  TX - -  19EF0A7F   [1]  a0", "F 6 126720 127 10 A0"},
        {"can0  1DEFFF01   [2]  41 42   'A['", "F 7 126720 1 255 4142"}, {"can0  18EAFF01   [0] ", "F 6 59904 1 255 "},
        {"<0x18eeff01> [3] 05 a0 be", "F 6 60928 1 255 05A0BE"}, {"can0 19F50374#000a R", "F 6 128259 116 255 000A"},
        {"can0 19F50374#0001020304050607", "F 6 128259 116 255 0001020304050607"},
        {"can[0] [x] a[8] 09F8027F [2] 00 FC", "F 2 129026 127 255 00FC"},
        {"interface = can0, family = 29, type = 3, proto = 1", ""}, {"can0  123   [2]  00 FC", "1 foreign"},
        {"can0  18EAFF01   [3]  remote request", "1 foreign"},
        {"can0 18EAFF01#R", "1 foreign"}, {"can0 20000004#00", "1 foreign"}, {"can0  09F8027F   [8]  00 FC", "8 bytes announced, 2 given"},
        {"can0  09F8027F  [12]  00 01 02 03", "1 foreign"}, {"can0 09F8027F##500", "1 foreign"},
        {"can0   123 [0004] (45|81:00:12345678) 00 00 00 00", "1 foreign"}, {"can0 45123#81:00:12345678#00", "1 foreign"},
        {"can0  09F8027F   {2}  00 FC", "F 2 129026 127 255 00FC"}, {"can0  09F8027F   {2}  00", "2 bytes announced, 1 given"},
        {"can0  09F8027F   {C}  00 01 02 03 04 05 06 07", "F 2 129026 127 255 0001020304050607"},
        {"can0 09F8027F#0001020304050607_C", "F 2 129026 127 255 0001020304050607"},
        {"can0 09F8027F#01.D5.02", "F 2 129026 127 255 01D502"}, {"can0 09F8027F#01.D5.0", "byte 3 `0` is not hexadecimal"},
        {"can0  09F8027F   [2]  11111111 00000001   '..'", "F 2 129026 127 255 FF01"},
        {"can0  RX - -  09F8027F   [3]  FD`7F`00   `..A`", "F 2 129026 127 255 007FFD"},
        {"\x1B[34m  can0  \x1B[1;31m09F8027F\x1B[0m   [2]  00 \x1B[0mFC\x1B[0m", "F 2 129026 127 255 00FC"},
        {"can0  20000004   [8]  00 04 00 00 00 00 00 00   ERRORFRAME", "1 foreign"},
        {"controller-problem{rx-error-warning}", ""}, {"lost-arbitration{at bit 3}", ""}, {"bus-off", ""},
        {"DROPCOUNT: dropped 2 CAN frames on 'can0' socket (total drops 2)", "2 dropped"},
        {"DROPCOUNT: dropped some", "`DROPCOUNT: dropped some` tells no number of frames"},
        {"can0 09F8027F#000102030405060708", "9 bytes given, at most 8 are possible"},
        {"can0 49F8027F#00", "identifier `49F8027F` has more than 29 bits"},
        {"can0  09F8027F  0", "`can0  09F8027F  0` has neither [length] nor # before its data"},
        {"(1,5) can0 09F8027F#00", "time `1,5` is not a number of seconds"},
    }}, {"yacht-devices", {
        {"19:07:21.014 R 09F8017F 50 C3", "F 2 129025 127 255 50C3"}, {"19:07:21.014 T 18EA23FE", "F 6 59904 254 35 "},
        {"19F51323 01 02", "F 6 128275 35 255 0102"}, {"49F51323 01", "identifier `49F51323` has more than 29 bits"}, {"19:07:21.014 X 09F8017F 50", "direction `X` is neither R nor T"},
    }}, {"actisense-ascii", {
        {"A173321.107 23FF7 1F513 012F", "M 7 128275 35 255 012F"}, {"A173321 01230 3FFFF", "M 0 262143 1 35 "},
        {"A173321.107 23FFA 1F513 012F more", "M 2 128275 35 255 012F"}, {"B173321.107 23FF7 1F513 012F", ""},
        {"A173321.107 23FF7 40000 012F", "PGN 262144 is above 262143"},
        {"A1733.107 23FF7 1F513 012F", "time `A1733.107` is not Ahhmmss.mmm"},
    }}};
    // clang-format on
    for (const auto& [format, cases] : formats)
        for (const auto& [line, expected] : cases) {
            const bool is_problem = !expected.starts_with("F ") && !expected.starts_with("M ") &&
                                    expected != "1 foreign" && expected != "2 dropped";
            const Texts shown = expected.empty() ? Texts{} : Texts{(is_problem ? "1: " : "") + expected};
            EXPECT_EQ(read(line, format).shown, shown) << line;
        }
}

TEST(Readers, ReadTimestamps) {
    const std::string zone = "its end is neither Z nor an offset such as +02:00";
    const std::pair<std::string, std::string> cases[] = {
        // time, or what is wrong
        // clang-format off
        {"", "0 none"}, {"2016-02-28T12:00:00Z", "1456660800000000000 epoch"},
        {"2016-02-28-12:00:00.5", "1456660800500000000 epoch"}, {"1970-01-01T00:00:00Z", "0 epoch"},
        {"2016-02-28 12:00:00.123456789Z", "1456660800123456789 epoch"},
        {"2016-02-28T14:00:00.250+02:00", "1456660800250000000 epoch"},
        {"2016-02-28-09:00:00-03", "1456660800000000000 epoch"},
        {"2016-02-29T12:00:00Z", "1456747200000000000 epoch"},
        {"2016-03-01T00:59:60+01:00", "1456790400000000000 epoch"},
        {"2261-12-31T23:59:59Z", "9214646399000000000 epoch"}, {"19:57:02.364", "71822364000000 day"},
        {"00:30:00+01:00", "84600000000000 day"}, {"2016-02-28T12:00:00+24", zone}, {"2016-02-28T12:00:00+02:60", zone},
        {"2015-02-29T12:00:00Z", "there is no such date"}, {"2262-01-01T12:00:00Z", "0 none"},
        {"1969-12-31T23:59:59.9Z", "0 none"}, {"1970-01-01T00:30:00+01:00", "0 none"},
        {"0001-01-01T00:00:00,250", "0 none"}, {"2016-02-28T12:00:00,500Z", "1456660800500000000 epoch"},
        {"2016-02-28T24:00:00Z", "there is no such time of day"},
        {"2016-02-28T12:00:61Z", "there is no such time of day"},
        {"2016-02-28T12:00:00.1234567890", "it has more than 9 decimals"},
        {"2016-02-28x12:00:00Z", "it is neither date and time nor time of day"},
        {"(1456660800.000001) can0 18EAFF01#", "1456660800000001000 epoch"},
        {"(99999999.5) can0 18EAFF01#", "99999999500000000 start"}, {"can0 18EAFF01#", "0 none"},
        {"(2016-02-28 12:00:00.000001) can0 18EAFF01#", "1456660800000001000 epoch"},
        // clang-format on
    };
    for (const auto& [text, expected] : cases) {
        const bool frame = text.ends_with('#');
        const Contents contents =
            read(frame ? text : text + ",2,127250,7,255,1,ff", frame ? "candump" : "plain");
        const std::string wrong = "1: timestamp `" + text + "`: " + expected;
        EXPECT_EQ(contents.times.empty() ? contents.shown : contents.times,
                  Texts{contents.times.empty() ? wrong : expected});
    }
}

TEST(Readers, TimesOfDayRiseOverMidnight) {
    const std::pair<const char*, int> cases[] = {
        {"23:00:00", 82'800},  {"22:00:00", 79'200},  {"23:59:59", 86'399},   // put back by an hour
        {"00:00:01", 86'401},  {"23:59:59", 86'399},  {"00:00:02", 86'402},   // a straggler
        {"20:00:00", 158'400}, {"10:00:00", 208'800}, {"01:00:00", 262'800},  // the next trip
    };
    std::string text;
    Texts expected;
    for (const auto& [clock, seconds] : cases) {
        text += clock + " R 09F8017F 50\n"s;
        expected.push_back(std::to_string(seconds) + "000000000 day");
    }
    EXPECT_EQ(read(text, "", From::pipe).times, expected);
}

TEST(Readers, ReadRecordings) {
    const std::string no_time = "it is neither date and time nor time of day",
                      plain = ",2,129025,127,255,1,50\n";
    const std::string shown = "F 2 129025 127 255 50", mark = "\xEF\xBB\xBF", good = "can0 09F8017F#50";
    const std::string limit = good + std::string(131'072 - good.size(), ' '), endless(3 << 20, 'x');
    const std::string neither = " has neither [length] nor # before its data";
    const std::string too_long = "the line is longer than 131072 bytes";
    const std::string unknown = "0: the format is none of " + format_names();
    // The second is the format that is recognised, or else an option when it begins with "=".
    const std::tuple<std::string, std::string, Texts> cases[] = {
        // clang-format off
        {"# " + good + "\n12:00:00" + plain, "plain", {shown}}, {mark + plain, "plain", {shown}},
        {"# " + good + "\n\n \t\r\n" + good + "\r\n", "candump", {shown}},
        {mark + "12:00:00 R 09F8017F 50\n", "yacht-devices", {shown}},
        {"A120000.000 7FFF2 1F801 50\n", "actisense-ascii", {"M 2 129025 127 255 50"}},
        // The first sign counts, and what does not fit is told afterwards.
        {"17F 50\n12:00:00 R 09F8017F 50\n" + good, "yacht-devices",
         {"1: time `17F`: " + no_time, shown, "3: time `can0`: " + no_time}},
        {",9,129025,127,255,1,50", "plain", {"1: priority 9 is above 7"}}, {"vcan abc#50\n", "candump", {"1 foreign"}},
        {"\0\0"s + plain + "\0\r\n\0"s + plain, "plain", {shown, shown}},
        {",0,262144,0,0,2,01,0e\n12:00:00,7,4294967295,0,255,1,00\n" + plain, "plain", {shown, "2 foreign"}},
        {"", "", {}}, {"\n# nothing\n  \n", "", {}},
        {"# nothing\nat all", "", {unknown}}, {"\x89PNG\r\n\x1A\n", "", {"0: this seems to be a PNG picture; " + unknown.substr(3)}},
        {"h\0e\0l\0l\0o\0 \0h\0e\0l\0l\0o\0 \0h\0e\0l\0l\0o\0 \0h\0e\0l\0l\0o\0 \0h\0e\0l\0l\0o\0 \0h\0e\0l\0l\0o\0\n\0"s, "",
         {"0: this seems to be UTF-16 text; " + unknown.substr(3)}}, {std::string(100'000, '\0'), "", {unknown}},
        {"a12:00:00" + plain + "12:00:00,two,129025,127,255,1,50\n", "", {unknown}},
        {"vcan ab#50\nvcan xyz [1] 50\n19:07 R 09F8017F 50\n19:07:21 Q 09F8017F 50\n", "", {unknown}},
        {"B173321.107 23FF7 1F513 012F\nA17332 23FF7 1F513 012F\n", "", {unknown}},
        // where lines end
        {"\r\n" + good + "\r\n  " + good + "\t\n\n", "candump", {shown, shown}},
        {good + "\n\0\0\n"s + good, "candump", {shown, shown}},
        {limit + "\n" + good, "candump", {shown, shown}}, {limit, "candump", {shown}},
        {limit + " \n" + good + "\nx", "=candump", {"1: " + too_long, shown, "3: `x`" + neither}},
        {limit + " ", "=candump", {"1: " + too_long}},
        {good + "\n" + limit + " \n" + good, "candump", {shown, "2: " + too_long, shown}},
        {endless + "\n\n" + good + "\n" + endless, "=candump", {"1: " + too_long, shown, "4: " + too_long}},
        // clang-format on
    };
    for (const auto& [text, format, expected] : cases)
        for (const From from : {From::file, From::pipe}) {
            const bool is_given = format.starts_with('=');
            const Contents contents = read(text, is_given ? format.substr(1) : "", from);
            EXPECT_EQ(contents.shown, expected) << text.substr(0, 80);
            EXPECT_EQ(contents.format, format.substr(is_given)) << text.substr(0, 80);
        }
}

TEST(Readers, TimesOfCandumpMayCountFromTheLineBefore) {
    const auto text = [](std::initializer_list<const char*> times) {
        std::string lines;
        for (const char* time : times) lines += "("s + time + ") can0 09F8017F#50\n";
        return lines;
    };
    const std::string rising = text({"000.000000", "000.500000", "000.500000", "001.000000"});
    std::string many = rising;
    for (int i = 0; i < 28; ++i) many += text({"001.000000"});
    for (const From from : {From::file, From::pipe}) {
        const Texts since_start{"0 start", "500000000 start", "500000000 start", "1000000000 start"};
        EXPECT_EQ(read(rising, "", from).times, since_start);
        const Texts since_last{"0 start", "500000000 start", "1000000000 start", "2000000000 start"};
        const Texts& times = read(rising + text({"000.250000"}), "", from).times;
        EXPECT_EQ(Texts(times.begin(), times.begin() + 4), since_last);
        EXPECT_EQ(times[4], "2250000000 start");
        EXPECT_EQ(read(many + text({"000.250000"}), "", from).times.back(), "250000000 start") << "too late";
        EXPECT_EQ(read(text({"001.000000", "000.250000"}), "", from).times.back(), "250000000 start");
    }
}

TEST(Readers, TellInterfacesApart) {
    std::string text, shown;
    for (const char* interface : {"can1 ", "can0 ", "can0 ", "can1 ", "vcan"})
        text += " (000.5)  "s + interface + "  09F8017F   [1]  50\n (1502979132.106111) " + interface +
                " 09F8017F#50\n";
    for (const std::string& bus : read(text).buses) shown += bus;
    EXPECT_EQ(shown, "0011110022");
}

TEST(Readers, TellWholeMessagesFromFrames) {
    const std::string piece = ",2,129029,35,255,8,00,01,02,03,04,05,06,07\n";
    const std::string whole = ",2,129029,35,255,9,00,01,02,03,04,05,06,07,08\n";
    const std::string single = ",2,127250,35,255,8,00,01,02,03,04,05,06,07\n";
    const std::string packet =
        ",2,129029,35,255,8,20,0E,02,03,04,05,06,07\n" + single +
        ",2,129029,35,255,8,21,01,02,03,04,05,06,07\n" +
        ",2,129029,36,255,8,22,01,02,03,04,05,06,07\n,2,129029,35,255,8,22,01,02,03,04,05,06,07\n";
    std::string many;
    while (many.size() < 70'000) many += single;
    const std::tuple<std::string, ContentKind, const char*> cases[] = {
        {piece + ",2,129029,35,255,9,00\n" + piece, ContentKind::as_it_seems, "M1M"},
        {single + piece + whole + piece, ContentKind::as_it_seems, "FMMM"},
        {piece + "# format=FAST\n" + piece, ContentKind::as_it_seems, "MM"},
        {"#FORMAT=fast\r\n" + piece, ContentKind::as_it_seems, "M"},
        {"# format=FASTER\n" + piece, ContentKind::as_it_seems, "F"},
        {"# format=PLAIN_MIX_FAST\n" + whole + piece, ContentKind::as_it_seems, "MF"},
        {packet + whole + piece, ContentKind::as_it_seems, "FFFFFMF"},
        {packet + whole + piece, ContentKind::messages, "MMMMMMM"},
        {whole + piece, ContentKind::frames, "MF"},
        {piece + many + whole + piece, ContentKind::as_it_seems, "FMM"},  // that far nobody looks
    };
    for (const auto& [text, kind, expected] : cases)
        for (const From from : {From::file, From::pipe}) {
            std::string kinds;
            for (const std::string& shown : read(text, "", from, kind).shown)
                if (shown.substr(1, 11) != " 2 127250 3" || text.size() < 1000)
                    kinds += shown.starts_with("M") || shown.starts_with("F") ? shown[0] : '1';
            EXPECT_EQ(kinds, expected) << text.substr(0, 1000);
        }
}

TEST(Readers, TellTheOrderOfPlainHeaders) {
    const std::string either = "09:30:00,3,129025,2,255,8,00,01,02,03,04,05,06,07\n";
    std::string few, many;
    for (int i = 0; i < 31; ++i) few += either;
    many = few + either;
    const std::pair<std::string, const char*> cases[] = {
        {"09:30:00,35,127250,2,255,8,00,01,02,03,04,05,06,07\n", "F 2 129025 3 255 0001020304050607"},
        {"09:30:00,2,127250,35,255,8,00,01,02,03,04,05,06,07\n", "F 3 129025 2 255 0001020304050607"},
        {"", "F 3 129025 2 255 0001020304050607"},
    };
    for (const auto& [last, first] : cases)
        for (const From from : {From::file, From::pipe}) {
            EXPECT_EQ(read(few + last, "", from).shown[0], first);
            EXPECT_EQ(read(many + last, "", from).shown[0], "F 3 129025 2 255 0001020304050607");
        }
}

std::string mutated(std::string line, std::mt19937& random) {
    static const std::string others = "0123456789abcdefABCDEF,.:#()[]<>Z -+xRTgG\t\r'\x01\xFF";
    for (unsigned count = random() % 4; count > 0; --count) {
        const std::size_t at = random() % (line.size() + 1);
        switch (random() % 4) {
            case 0: line.insert(at, 1, others[random() % others.size()]); break;
            case 1: line.erase(at, 1 + random() % 3); break;
            case 2: line.insert(at, line.substr(random() % (line.size() + 1), random() % 4)); break;
            default: line.replace(at, at < line.size(), 1, others[random() % others.size()]); break;
        }
    }
    return line;
}

/// Texts of the usual shapes are read in a way of their own, which must not be seen. The same lines with
/// blanks behind them are none.
TEST(Readers, ReadUsualLinesAsAllOthers) {
    // clang-format off
    const std::tuple<const char*, const char*, Texts> cases[] = {
        {"plain", "2016-02-28T19:57:00Z,2,127250,7,255,0\n",
         {"2016-02-28T19:57:02.364Z,2,127250,7,255,8,ff,10,3B,ff,7f,ce,F5,fc",
          "2016-02-28T19:57:60.999,7,262143,255,0,0,", "2016-02-28T19:57:59.000Z,0,59904,0,14,3,14,f0,01",
          "2016-02-28T19:57:00.001Z,6,129029,12,255,17,00,11,22,33,44,55,66,77,88,99,aa,bb,cc,dd,ee,ff,01",
          "2016-02-28T19:57:02.364123Z,2,127250,0007,255,1,0F", "2016-02-28T19:57:02.123456789,2,1,7,9,1,F0",
          "2016-02-28T19:57:02.3641234567Z,2,127250,7,255,1,ff", ",2,127250,7,255,2,ff,10"}},
        {"candump", "",
         {"(1502979132.106111) can0 09F50374#000A00FF00000000", "(0000000001.000001) vcan12 19F0127F#",
          "(1502979132.999999)  can0  09F8027F   [8]  00 FC 01 02 03 04 05 06", "  can0  09F8027F   [3]  00 fc 01",
          "<0x18eeff01> [8] 05 a0 be 1c 00 a0 a0 c0 ", "(9214646399.999999) can0 1FFFFFFF#FF",
          "(1502979132.106111) [8] 09F50374#0A", "(1502979132.106111) can0 09F50374#R234567890123456",
          " (2017-08-17 14:32:12.106111)  a_name_that_is_long  09F8027F   [2]  00 FC",
          "(1.5)interface = 09F50374#00\ninterface = 09F50374#00", "(1.5)#can 09F50374#00\n#can 09F50374#00"}},
    };
    // clang-format on
    for (const auto& [format, start, lines] : cases) {
        std::mt19937 random(1);
        std::string usual = "# format=FAST\n", other = usual;
        for (int i = 0; i < 20'000; ++i) {
            const std::string& good = lines[random() % lines.size()];
            const std::string before = start + good + '\n', line = mutated(good, random);
            usual += before + line + '\n';
            other += before + line + "  \n";
        }
        const Contents a = read(usual, format), b = read(other, format);
        ASSERT_EQ(a.shown, b.shown);
        ASSERT_EQ(a.times, b.times);
    }
}

TEST(Readers, ReadMoreThanTheirBufferHolds) {
    std::string text = "# format=FAST\n";
    Texts expected;
    for (unsigned i = 0; text.size() < 5'000'000; ++i) {
        const unsigned length = i * 7 % 60;
        text += ",6," + std::to_string(i) + ",1,255," + std::to_string(length);
        expected.push_back("M 6 " + std::to_string(i) + " 1 255 ");
        for (unsigned k = 0; k < length; ++k) {
            append_hex(text += ',', i + k, 2);
            append_hex(expected.back(), i + k, 2);
        }
        text += '\n';
    }
    for (const From from : {From::file, From::pipe}) ASSERT_EQ(read(text, "", from).shown, expected);
}

#if !defined(_WIN32)  // descriptors of sockets, and pipes that are read at once
TEST(Readers, TellWhenTheyWouldWait) {
    for (const char* format : {"", "candump"}) {
        int ends[2];
        ASSERT_EQ(0, ::pipe(ends));
        Recording recording;
        Record record;
        ASSERT_TRUE(recording.attach(input_of(ends[0]), {.format = format, .patience_ms = 0}));
        const auto after = [&](std::string_view text) {
            write_all(ends[1], text);
            return recording.would_wait();
        };
        EXPECT_TRUE(after(""));
        EXPECT_TRUE(after("c"));
        EXPECT_TRUE(after("an0 09F8017F#5"));
        EXPECT_EQ(recording.format_name(), format);
        EXPECT_EQ(recording.next(record), ReadResult::nothing);
        EXPECT_FALSE(after("0\n# comment\ncan0 09F8017F#51\ncan0"));
        for (const ReadResult result : {ReadResult::record, ReadResult::nothing, ReadResult::record}) {
            EXPECT_FALSE(recording.would_wait());
            EXPECT_EQ(recording.next(record), result);
        }
        EXPECT_TRUE(recording.would_wait());
        EXPECT_EQ(recording.bytes_read(), 44u);
        ::close(ends[1]);
        EXPECT_FALSE(recording.would_wait());
        EXPECT_EQ(drain(recording).shown.size(), 1u) << "the half line";
    }
}

TEST(Readers, ReportWhatCannotBeReadOn) {
    // A peer that leaves with unread data resets the connection.
    const std::string reset = "cannot read on: Connection reset by peer", frame = "can0 09F8017F#50";
    for (const auto& [text, expected] :
         {std::pair{frame + "\n" + frame, Texts{"F 2 129025 127 255 50", "2: " + reset}},
          {frame, Texts{"1: " + reset}},
          {"", Texts{"1: " + reset}}}) {
        int ends[2];
        ASSERT_EQ(0, ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends));
        write_all(ends[0], "x");
        write_all(ends[1], text);
        ::close(ends[1]);
        Recording recording;
        ASSERT_TRUE(recording.attach(input_of(ends[0]), {.format = "candump"}));
        EXPECT_EQ(drain(recording).shown, expected);
    }
}
#endif

}  // namespace
}  // namespace vistel
