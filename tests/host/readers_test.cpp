#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "readers/recording.h"

namespace vistel {
namespace {

using namespace std::string_literals;

constexpr std::int64_t second = 1'000'000'000;
constexpr std::int64_t hour = 3600 * second;

/// `F` or `M` for frame or message, priority, PGN, source, destination, payload: "F 2 127250 7 255 ff103b".
std::string show(const Record& record) {
    const N2KMsg& msg = record.msg;
    std::string text = (record.kind == Record::Kind::frame ? "F " : "M ") + std::to_string(msg.priority) +
                       ' ' + std::to_string(msg.pgn) + ' ' + std::to_string(msg.source) + ' ' +
                       std::to_string(msg.destination) + ' ';
    for (int i = 0; i < msg.length; ++i) {
        constexpr char digits[] = "0123456789abcdef";
        text += digits[msg.data[i] >> 4];
        text += digits[msg.data[i] & 15];
    }
    return text;
}

/// A pipe whose reading end a recording takes over.
class Pipe {
  public:
    Pipe() { EXPECT_EQ(0, ::pipe(ends_)); }
    ~Pipe() { close(); }
    int reading_end() const { return ends_[0]; }
    void write(std::string_view text) {
        while (!text.empty()) {
            const ssize_t size = ::write(ends_[1], text.data(), text.size());
            ASSERT_GT(size, 0);
            text.remove_prefix(static_cast<std::size_t>(size));
        }
    }
    void close() {
        if (ends_[1] >= 0) ::close(ends_[1]);
        ends_[1] = -1;
    }

  private:
    int ends_[2] = {-1, -1};
};

class TemporaryFile {
  public:
    explicit TemporaryFile(std::string_view text) : path_(testing::TempDir() + "vistel-XXXXXX") {
        const int descriptor = ::mkstemp(path_.data());
        EXPECT_EQ(static_cast<ssize_t>(text.size()), ::write(descriptor, text.data(), text.size()));
        ::close(descriptor);
    }
    ~TemporaryFile() { ::unlink(path_.c_str()); }
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

struct Contents {
    std::vector<Record> records;
    std::vector<std::string> shown;  // records as by show(), problems as "LINE: text"
    std::string format;
    std::uint64_t foreign = 0;
};

Contents drain(Recording& recording) {
    Contents contents;
    Record record;
    for (;;) {
        switch (recording.next(record)) {
            case ReadResult::record:
                contents.records.push_back(record);
                contents.shown.push_back(show(record));
                break;
            case ReadResult::problem:
                contents.shown.push_back(std::to_string(recording.problem().line) + ": " +
                                         recording.problem().text);
                break;
            case ReadResult::nothing: break;
            case ReadResult::end:
                contents.format = recording.format_name();
                contents.foreign = recording.foreign_frames();
                return contents;
        }
    }
}

Contents read_file(std::string_view text, const std::string& format = "") {
    const TemporaryFile file(text);
    Recording recording;
    EXPECT_TRUE(recording.open(file.path(), {.format = format}));
    Contents contents = drain(recording);
    EXPECT_EQ(recording.bytes_total(), text.size());
    return contents;
}

Contents read_pipe(std::string_view text, const std::string& format = "") {
    Pipe pipe;
    std::thread writer([&] {
        pipe.write(text);
        pipe.close();
    });
    Recording recording;
    EXPECT_TRUE(recording.attach(pipe.reading_end(), {.format = format}));
    Contents contents = drain(recording);
    writer.join();
    return contents;
}

using Lines = std::vector<std::string>;

TEST(Readers, ReadEachShapeOfLine) {
    const std::string most = [] {
        std::string text;
        for (int i = 0; i < 1785; ++i) text += ",5a";
        return text;
    }();
    const struct {
        const char* format;
        std::string line;
        std::string expected;  // empty: nothing comes of the line
    } cases[] = {
        {"plain", "12:00:00,2,127250,7,255,3,fF,10,3b", "F 2 127250 7 255 ff103b"},
        {"plain", ",7,262143,0,0,8,00,11,22,33,44,55,66,77", "F 7 262143 0 0 0011223344556677"},
        {"plain", ",0,0,255,254,9,00,11,22,33,44,55,66,77,88", "M 0 0 255 254 001122334455667788"},
        {"plain", ",6,65301,255,0,0", "F 6 65301 255 0 "},
        {"plain", ",6,65301,255,0,0,", "F 6 65301 255 0 "},
        {"plain", ",8,127250,7,255,1,ff", "1: priority 8 is above 7"},
        {"plain", ",2,4294967295,7,255,1,ff", ""},
        {"plain", ",2,4294967296,7,255,1,ff", "1: PGN 4294967296 is above 4294967295"},
        {"plain", ",2,99999999999999999999,7,255,1,ff", "1: PGN 99999999999999999999 is above 4294967295"},
        {"plain", ",2,127250,256,255,1,ff", "1: source 256 is above 255"},
        {"plain", ",2,127250,7,256,1,ff", "1: destination 256 is above 255"},
        {"plain", ",2,127250,7,255,1786" + most + ",5a", "1: length 1786 is above 1785"},
        {"plain", ",2,127250,7,255,-1,ff", "1: length `-1` is not a number"},
        {"plain", ",2,,7,255,1,ff", "1: PGN is missing"},
        {"plain", ",2,127250,7", "1: destination is missing"},
        {"plain", "hello", "1: `hello` is not timestamp,priority,PGN,source,destination,length,bytes"},
        {"plain", ",2,127250,7,255,7,1,2,3,4,5,6", "1: 7 bytes announced, 6 given"},
        {"plain", ",2,127250,7,255,1,00,01", "1: 1 bytes announced, 2 given"},
        {"plain", ",2,127250,7,255,0,00", "1: 0 bytes announced, 1 given"},
        {"plain", ",2,127250,7,255,3,00,01,G1", "1: byte 3 `G1` is not hexadecimal"},
        {"plain", ",2,127250,7,255,3,00,1,223", "1: byte 2 `1` is not hexadecimal"},
        {"plain", ",2,127250,7,255,2,00;01", "1: 2 bytes announced, 1 given"},
        {"plain", ",2,127250,7,255,2,00,\x01\xFF", "1: byte 2 `\\x01\\xFF` is not hexadecimal"},

        {"candump", "can0  09F8027F   [8]  00 FC 01 02 03 04 05 06", "F 2 129026 127 255 00fc010203040506"},
        {"candump", "(1502979132.106111)  a long name  TX - -  19EF0A7F   [1]  a0", "F 6 126720 127 10 a0"},
        {"candump", "can0  1DEFFF01   [2]  41 42   'A['", "F 7 126720 1 255 4142"},
        {"candump", "can0  18EAFF01   [0] ", "F 6 59904 1 255 "},
        {"candump", "<0x18eeff01> [3] 05 a0 be", "F 6 60928 1 255 05a0be"},
        {"candump", "(0.000001) can0 19F50374#000A", "F 6 128259 116 255 000a"},
        {"candump", "can0 19F50374#0001020304050607", "F 6 128259 116 255 0001020304050607"},
        {"candump", "can0 19F0127F#", "F 6 126994 127 255 "},
        {"candump", "can0 1FFFFFFF#", "F 7 262143 255 255 "},
        {"candump", "can0 19F50374#000a R", "F 6 128259 116 255 000a"},
        {"candump", "interface = can0, family = 29, type = 3, proto = 1", ""},
        {"candump", "can0  123   [2]  00 FC", ""},
        {"candump", "can0 123#00FC", ""},
        {"candump", "can0  20000004   [8]  00 04 00 00 00 00 00 00   ERRORFRAME", ""},
        {"candump", "can0  18EAFF01   [3]  remote request", ""},
        {"candump", "can0 18EAFF01#R", ""},
        {"candump", "can0  09F8027F   [8]  00 FC", "1: 8 bytes announced, 2 given"},
        {"candump", "can0  09F8027F   [9]  00", "1: data length 9 is above 8"},
        {"candump", "can0  09F8027F   [8]  00 01 02 03 04 05 06 07 08", "1: more than 8 bytes given"},
        {"candump", "can0  09F8027F   [2]  00 F", "1: byte 2 `F` is not hexadecimal"},
        {"candump", "can0  09F8027F  [12]  00 01 02 03 04 05 06 07 08 09 10 11",
         "1: a CAN FD frame cannot be NMEA 2000"},
        {"candump", "can0 09F8027F##100FC", "1: a CAN FD frame cannot be NMEA 2000"},
        {"candump", "can0 09F8027F#00FCA", "1: byte 3 `A` is not hexadecimal"},
        {"candump", "can0 09F8027F#0G", "1: byte 1 `0G` is not hexadecimal"},
        {"candump", "can0 09F8027F#000102030405060708", "1: 9 bytes given, at most 8 are possible"},
        {"candump", "can0 09F8027F#00 01", "1: `01` follows the data"},
        {"candump", "can0 9F8027F#00", "1: identifier `9F8027F` is not 8 hexadecimal digits"},
        {"candump", "can0 49F8027F#00", "1: identifier `49F8027F` has more than 29 bits"},
        {"candump", "can0  09F8027F  00 FC",
         "1: `can0  09F8027F  00 FC` has neither [length] nor # before its data"},
        {"candump", "(12 can0 09F8027F#00", "1: the parenthesis of the time is not closed"},
        {"candump", "(1.5s) can0 09F8027F#00", "1: time `1.5s` is not a number of seconds"},
        {"candump", "(.5) can0 09F8027F#00", "1: time `.5` is not a number of seconds"},
        {"candump", "(1,5) can0 09F8027F#00", "1: time `1,5` is not a number of seconds"},
        {"candump", "(25:00:00) can0 09F8027F#00", "1: time `25:00:00`: there is no such time of day"},
        {"candump", "can[0] [x] a[8] 09F8027F [2] 00 FC", "F 2 129026 127 255 00fc"},
        {"candump", "(9214646400.0) can0 09F8027F#00", "1: time `9214646400.0` is not a number of seconds"},

        {"yacht-devices", "19:07:21.014 R 09F8017F 50 C3", "F 2 129025 127 255 50c3"},
        {"yacht-devices", "19:07:21.014 T 18EA23FE", "F 6 59904 254 35 "},
        {"yacht-devices", "19:07:21.014 X 09F8017F 50", "1: direction `X` is neither R nor T"},
        {"yacht-devices", "19:07 R 09F8017F 50", "1: time `19:07`: it is not hh:mm:ss"},
        {"yacht-devices", "19:07:21 R 29F8017F 50", "1: identifier `29F8017F` has more than 29 bits"},
        {"yacht-devices", "19:07:21 R 09F8017F 1 2 3", "1: byte 1 `1` is not hexadecimal"},
        {"yacht-devices", "19:07:21 R 09F8017F 1 2 3 4 5 6 7 8 9", "1: byte 1 `1` is not hexadecimal"},

        {"actisense-ascii", "A173321.107 23FF7 1F513 012F", "M 7 128275 35 255 012f"},
        {"actisense-ascii", "A173321 01230 3FFFF", "M 0 262143 1 35 "},
        {"actisense-ascii", "A173321.107 23FF8 1F513 012F", "1: priority 8 is above 7"},
        {"actisense-ascii", "A173321.107 23FF7 40000 012F", "1: PGN 262144 is above 262143"},
        {"actisense-ascii", "A173321.107 23FF 1F513 012F",
         "1: addresses and priority `23FF` are not 5 hexadecimal digits"},
        {"actisense-ascii", "A173321.107 23FF7 1F51G 012F", "1: PGN `1F51G` is not hexadecimal"},
        {"actisense-ascii", "A173321.107 23FF7", "1: PGN `` is not hexadecimal"},
        {"actisense-ascii", "A173321.107 23FF7 00001F513", "1: PGN `00001F513` is not hexadecimal"},
        {"actisense-ascii", "A173321.107 23FF7 1F513 012F3", "1: byte 3 `3` is not hexadecimal"},
        {"actisense-ascii", "A1733.107 23FF7 1F513 012F", "1: time `A1733.107` is not Ahhmmss.mmm"},
        {"actisense-ascii", "A253321.107 23FF7 1F513 00",
         "1: time `A253321.107`: there is no such time of day"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(read_file(c.line, c.format).shown, c.expected.empty() ? Lines{} : Lines{c.expected})
            << c.line;
    }
    const Contents longest = read_file(",2,127250,7,255,1785" + most, "plain");
    ASSERT_EQ(longest.records.size(), 1u);
    EXPECT_EQ(longest.records[0].msg.length, 1785);
    EXPECT_EQ(longest.records[0].msg.data[1784], 0x5a);
}

TEST(Readers, ReadTimestamps) {
    using Origin = RecordTime::Origin;
    const char* const neither = "it is neither date and time nor time of day";
    const char* const zone = "its end is neither Z nor an offset such as +02:00";
    constexpr std::int64_t noon = 1'456'660'800 * second;  // 2016-02-28T12:00:00Z
    const struct {
        const char* text;
        Origin origin;
        std::int64_t nanoseconds;
        const char* problem;
    } cases[] = {
        {"", Origin::none, 0, ""},
        {"2016-02-28T12:00:00Z", Origin::epoch, noon, ""},
        {"2016-02-28-12:00:00.5", Origin::epoch, noon + second / 2, ""},
        {"2016-02-28Z12:00:00.000000001", Origin::epoch, noon + 1, ""},
        {"2016-02-28 12:00:00.123456789Z", Origin::epoch, noon + 123'456'789, ""},
        {"2016-02-28T14:00:00.250+02:00", Origin::epoch, noon + second / 4, ""},
        {"2016-02-28T14:30:00+0230", Origin::epoch, noon, ""},
        {"2016-02-28-09:00:00-03", Origin::epoch, noon, ""},
        {"2016-02-29T12:00:00Z", Origin::epoch, noon + 24 * hour, ""},
        {"2016-03-01T00:59:60+01:00", Origin::epoch, noon + 36 * hour, ""},
        {"1970-01-01T00:00:00Z", Origin::epoch, 0, ""},
        {"19:57:02.364", Origin::day, 19 * hour + 57 * 60 * second + 2'364'000'000, ""},
        {"00:30:00+01:00", Origin::day, 23 * hour + 1800 * second, ""},
        {"1999-12-31T23:59:59+23:59", Origin::epoch, 946'598'459 * second, ""},
        {"2261-12-31T23:59:59Z", Origin::epoch, 9'214'646'399 * second, ""},
        {"2099-09-09 09:09:09", Origin::epoch, 4'092'628'149 * second, ""},
        {"2016-02-28T12:00:00+24", {}, 0, zone},
        {"2016-02-28T12:00:00+2", {}, 0, zone},
        {"2016-02-28T12:00:00+020", {}, 0, zone},
        {"2016-02-28T12:00:00+02:60", {}, 0, zone},
        {"2016-02-28T12:00:00+02.00", {}, 0, zone},
        {"2016-02-28T12:00:00*0200", {}, 0, zone},
        {"2016-02-28T12:00:00ZZ", {}, 0, zone},
        {"2015-02-29T12:00:00Z", {}, 0, "there is no such date"},
        {"9999-02-28T12:00:00Z", {}, 0, "its year is outside 1970..2261"},
        {"2016-99-28T12:00:00Z", {}, 0, "there is no such date"},
        {"a016-02-28T12:00:00Z", {}, 0, "it is not yyyy-mm-dd"},
        {"20a6-02-28T12:00:00Z", {}, 0, "it is not yyyy-mm-dd"},
        {"2016-0a-28T12:00:00Z", {}, 0, "it is not yyyy-mm-dd"},
        {"2016-02-a8T12:00:00Z", {}, 0, "it is not yyyy-mm-dd"},
        {"2016-02-28T", {}, 0, "it is not hh:mm:ss"},
        {"2016-02-28T12:00x00Z", {}, 0, "it is not hh:mm:ss"},
        {"2016-02-28T12x00:00Z", {}, 0, "it is not hh:mm:ss"},
        {"2016-02-28Ta2:00:00Z", {}, 0, "it is not hh:mm:ss"},
        {"2016-02-28", {}, 0, neither},
        {"2016x02-28T12:00:00Z", {}, 0, neither},
        {"2016-02x28T12:00:00Z", {}, 0, neither},
        {"2016-13-01T12:00:00Z", {}, 0, "there is no such date"},
        {"1969-12-31T12:00:00Z", {}, 0, "its year is outside 1970..2261"},
        {"2262-01-01T12:00:00Z", {}, 0, "its year is outside 1970..2261"},
        {"2016-02-28T24:00:00Z", {}, 0, "there is no such time of day"},
        {"2016-02-28T12:60:00Z", {}, 0, "there is no such time of day"},
        {"2016-02-28T12:00:61Z", {}, 0, "there is no such time of day"},
        {"2016-02-28T12:00", {}, 0, "it is not hh:mm:ss"},
        {"2016-02-28T12:0a:00", {}, 0, "it is not hh:mm:ss"},
        {"2016-02-28T12:00:00.", {}, 0, "the decimals are missing"},
        {"2016-02-28T12:00:00.1234567890", {}, 0, "it has more than 9 decimals"},
        {"2016-2-28T12:00:00Z", {}, 0, neither},
        {"2016-02-28x12:00:00Z", {}, 0, neither},
        {"yesterday", {}, 0, neither},
    };
    // All in one recording, so that every date follows another one.
    std::string text;
    for (const auto& c : cases) text += c.text + ",2,127250,7,255,1,ff\n"s;
    const Contents contents = read_file(text, "plain");
    ASSERT_EQ(contents.shown.size(), std::size(cases));
    std::size_t record = 0;
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const auto& c = cases[i];
        if (*c.problem != '\0') {
            EXPECT_EQ(contents.shown[i],
                      std::to_string(i + 1) + ": timestamp `" + c.text + "`: " + c.problem);
        } else {
            const RecordTime expected{c.nanoseconds, c.origin};
            EXPECT_TRUE(contents.records.at(record++).time == expected) << c.text;
        }
    }
    const struct {
        const char* line;
        RecordTime expected;
    } frames[] = {
        {"(1456660800.000001) can0 18EAFF01#", {noon + 1000, Origin::epoch}},
        {"(9214646399) can0 18EAFF01#", {9'214'646'399 * second, Origin::epoch}},
        {"(100000000.0) can0 18EAFF01#", {100'000'000 * second, Origin::epoch}},
        {"(99999999.5) can0 18EAFF01#", {99'999'999 * second + second / 2, Origin::start}},
        {"(0.1) can0 18EAFF01#", {100'000'000, Origin::start}},
        {"(0.02) can0 18EAFF01#", {20'000'000, Origin::start}},
        {"(0.003) can0 18EAFF01#", {3'000'000, Origin::start}},
        {"(0.0004) can0 18EAFF01#", {400'000, Origin::start}},
        {"(0.00005) can0 18EAFF01#", {50'000, Origin::start}},
        {"(0.0000006) can0 18EAFF01#", {600, Origin::start}},
        {"(0.00000007) can0 18EAFF01#", {70, Origin::start}},
        {"(2016-02-28 12:00:00.000001) can0 18EAFF01#", {noon + 1000, Origin::epoch}},
        {"can0 18EAFF01#", {}},
    };
    for (const auto& c : frames) {
        EXPECT_TRUE(read_file(c.line, "candump").records.at(0).time == c.expected) << c.line;
    }
}

TEST(Readers, TimesOfDayRiseOverMidnight) {
    const struct {
        const char* clock;
        std::int64_t expected;
    } cases[] = {
        {"23:00:00", 23 * hour},
        {"22:00:00", 22 * hour},  // put back by an hour
        {"23:59:59", 24 * hour - second},
        {"00:00:01", 24 * hour + second},
        {"23:59:59", 24 * hour - second},  // a straggler
        {"00:00:02", 24 * hour + 2 * second},
        {"20:00:00", 44 * hour},
        {"10:00:00", 58 * hour},  // the next trip
        {"01:00:00", 73 * hour},
    };
    std::string text;
    for (const auto& c : cases) text += c.clock + " R 09F8017F 50\n"s;
    const Contents contents = read_pipe(text);
    ASSERT_EQ(contents.records.size(), std::size(cases));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(contents.records[i].time.nanoseconds, cases[i].expected) << i;
    }
}

TEST(Readers, RecogniseFormats) {
    const std::string unknown = "0: the format is none of plain, candump, yacht-devices, actisense-ascii";
    const std::string no_time = "it is neither date and time nor time of day";
    const std::string frame = "F 2 129025 127 255 50";
    const struct {
        std::string text, format;
        Lines shown;
    } cases[] = {
        {"# can0 09F8017F#51\n12:00:00,2,129025,127,255,1,50\n", "plain", {frame}},
        {",2,129025,127,255,1,50", "plain", {frame}},
        {"# can0 09F8017F#51\n\n \t\r\ncan0 09F8017F#50\r\n", "candump", {frame}},
        {"\xEF\xBB\xBF"
         "12:00:00 R 09F8017F 50\n",
         "yacht-devices",
         {frame}},
        {"\xEF\xBB\xBF"
         "12:00:00,2,129025,127,255,1,50",
         "plain",
         {frame}},
        {"A120000.000 7FFF2 1F801 50\n", "actisense-ascii", {"M 2 129025 127 255 50"}},
        // The first sign counts, and what does not fit is told afterwards.
        {"17F 50\n12:00:00 R 09F8017F 50\ncan0 09F8017F#50",
         "yacht-devices",
         {"1: time `17F`: " + no_time, frame, "3: time `can0`: " + no_time}},
        {",9,129025,127,255,1,50", "plain", {"1: priority 9 is above 7"}},
        {"", "", {}},
        {"\n# nothing\n  \n", "", {}},
        {"# nothing\nat all", "", {unknown}},
        {"no such thing\n", "", {unknown}},
        {"a12:00:00,2,129025,127,255,1,50\n", "", {unknown}},
        {"12,2,129025,127,255,1,50\n", "", {unknown}},
        {"12:00:00,two,129025,127,255,1,50\n", "", {unknown}},
        {",6,65301,255,0,0\n", "plain", {"F 6 65301 255 0 "}},
        {"vcan ab#50\n", "", {unknown}},
        {"vcan abc#50\n", "candump", {}},
        {"vcan xyz [1] 50\n", "", {unknown}},
        {"19:07 R 09F8017F 50\n", "", {unknown}},
        {"19:07:21 Q 09F8017F 50\n", "", {unknown}},
        {"B173321.107 23FF7 1F513 012F\n", "", {unknown}},
        {"A17332 23FF7 1F513 012F\n", "", {unknown}},
        {"$PCDIN,01F10D,00020576,73,FFF8FFFF51FFFFFF*2A\n!PDGY,127250,2,3,255,481.7,2C20\n", "", {unknown}},
        {std::string(100'000, '\0'), "", {unknown}},
    };
    for (const auto& c : cases) {
        for (const auto read : {read_file, read_pipe}) {
            const Contents contents = read(c.text, "");
            EXPECT_EQ(contents.shown, c.shown) << c.text.substr(0, 80);
            EXPECT_EQ(contents.format, c.format) << c.text.substr(0, 80);
        }
    }
}

TEST(Readers, TellWholeMessagesFromFrames) {
    const std::string piece = ",2,129029,1,255,8,00,01,02,03,04,05,06,07\n";
    const std::string whole = ",2,129029,1,255,9,00,01,02,03,04,05,06,07,08\n";
    const std::string bad = ",2,129029,1,255,9,00\n";
    const struct {
        std::string text;
        const char *in_file, *in_pipe;  // kinds of the records
    } cases[] = {
        {piece + piece, "FF", "FF"},
        {piece + bad + piece, "FF", "FF"},
        {piece + whole + piece, "MMM", "FMM"},
        {piece + "# format=FAST\n" + piece, "MM", "FM"},
        {"#format=FAST\r\n" + piece, "M", "M"},
        {"# format=FASTER\n" + piece, "F", "F"},
    };
    for (const auto& c : cases) {
        const auto kinds = [](const Contents& contents) {
            std::string text;
            for (const Record& record : contents.records)
                text += record.kind == Record::Kind::frame ? 'F' : 'M';
            return text;
        };
        EXPECT_EQ(kinds(read_file(c.text)), c.in_file) << c.text;
        EXPECT_EQ(kinds(read_pipe(c.text)), c.in_pipe) << c.text;
    }
}

/// What the lines come to, all of them in one recording.
Contents read_lines(const Lines& lines, const std::string& format) {
    std::string text = "# format=FAST\n";
    for (const std::string& line : lines) text += line + "\n";
    return read_file(text, format);
}

std::string mutated(std::string line, std::mt19937& random) {
    static const std::string others = "0123456789abcdefABCDEF,.:#()[]<>Z -+xRTgG\t\r'\x01\xFF";
    for (unsigned count = random() % 4; count > 0; --count) {
        const std::size_t at = random() % (line.size() + 1);
        const char other = others[random() % others.size()];
        switch (random() % 4) {
            case 0: line.insert(at, 1, other); break;
            case 1: line.erase(at, 1 + random() % 3); break;
            case 2: line.insert(at, line.substr(random() % (line.size() + 1), random() % 4)); break;
            default: line.replace(at, at < line.size(), 1, other); break;
        }
    }
    return line;
}

/// Lines of the usual shapes are read in a way of their own, which must not be seen. Other ones that say the
/// same are: those in another minute than the one before, and those with tabs.
TEST(Readers, ReadUsualLinesAsAllOthers) {
    const struct {
        const char* format;
        Lines lines;
    } cases[] = {
        {"plain",
         {"2016-02-28T19:57:02.364Z,2,127250,7,255,8,ff,10,3B,ff,7f,ce,F5,fc",
          "2016-02-28T19:57:60.999,7,262143,255,0,0,", "2016-02-28T19:57:59.000Z,0,59904,0,14,3,14,f0,01",
          "2016-02-28T19:57:00.001Z,6,129029,12,255,19,00,11,22,33,44,55,66,77,88,99,aa,bb,cc,dd,ee,ff,01,02,"
          "03"}},
        {"candump",
         {"(1502979132.106111) can0 09F50374#000A00FF00000000", "(0000000001.000001) vcan12 19F0127F#",
          "(1502979132.999999)  can0  09F8027F   [8]  00 FC 01 02 03 04 05 06",
          "can0  09F8027F   [3]  00 fc 01", "<0x18eeff01> [8] 05 a0 be 1c 00 a0 a0 c0",
          "(9214646399.999999) can0 1FFFFFFF#FF"}},
    };
    for (const auto& c : cases) {
        const bool plain = c.format == std::string("plain");
        std::mt19937 random(1);
        Lines usual, other;
        for (int i = 0; i < 20'000; ++i) {
            std::string line = mutated(c.lines[random() % c.lines.size()], random);
            usual.insert(usual.end(), {plain ? "2016-02-28T19:57:00Z,2,127250,7,255,0" : "", line});
            if (!plain) std::replace(line.begin(), line.end(), ' ', '\t');
            other.insert(other.end(), {plain ? "2001-01-01T00:00:00Z,2,127250,7,255,0" : "", line});
        }
        const auto outcome = [&](const Lines& lines) {
            Contents contents = read_lines(lines, c.format);
            for (std::string& shown : contents.shown) {
                for (std::size_t at; !plain && (at = shown.find("\\x09")) != std::string::npos;)
                    shown.replace(at, 4, " ");
            }
            for (const Record& record : contents.records) {
                contents.shown.push_back(std::to_string(record.time.nanoseconds) + " " +
                                         std::to_string(static_cast<int>(record.time.origin)));
            }
            std::erase_if(contents.shown, [](const std::string& text) {
                return text == "978307200000000000 3" || text == "1456689420000000000 3";
            });
            return contents;
        };
        const Contents a = outcome(usual), b = outcome(other);
        EXPECT_EQ(a.foreign, b.foreign);
        const auto [x, y] = std::ranges::mismatch(a.shown, b.shown);
        EXPECT_EQ(x == a.shown.end() ? "" : *x, y == b.shown.end() ? "" : *y);
    }
}

TEST(Readers, KeepLinesApart) {
    const std::string good = "can0 09F8017F#50";
    const std::string shown = "F 2 129025 127 255 50";
    const std::string limit = good + std::string(16384 - good.size(), ' ');
    const std::string neither = " has neither [length] nor # before its data";
    const std::string too_long = "the line is longer than 16384 bytes";
    const struct {
        std::string text;
        Lines shown;
    } cases[] = {
        {good + "\n" + good, {shown, shown}},
        {"\r\n" + good + "\r\n  " + good + "\t\n\n", {shown, shown}},
        {good + "\n\0\0\n"s + good, {shown, "2: `\\x00\\x00`" + neither, shown}},
        {limit + "\n" + good, {shown, shown}},
        {limit, {shown}},
        {limit + " \n" + good + "\nx", {"1: " + too_long, shown, "3: `x`" + neither}},
        {limit + " ", {"1: " + too_long}},
        {std::string(3 << 20, 'x') + "\n\n" + good + "\n" + std::string(3 << 20, 'y'),
         {"1: " + too_long, shown, "4: " + too_long}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(read_file(c.text, "candump").shown, c.shown) << c.text.substr(0, 80);
        EXPECT_EQ(read_pipe(c.text, "candump").shown, c.shown) << c.text.substr(0, 80);
    }
}

TEST(Readers, ReadMoreThanTheirBufferHolds) {
    std::string text = "# format=FAST\n";
    Lines expected;
    for (unsigned i = 0; text.size() < 5'000'000; ++i) {
        const unsigned length = i * 7 % 60;
        text += ",6," + std::to_string(i) + ",1,255," + std::to_string(length);
        expected.push_back("M 6 " + std::to_string(i) + " 1 255 ");
        for (unsigned k = 0; k < length; ++k) {
            char byte[3];
            std::snprintf(byte, sizeof byte, "%02x", (i + k) & 0xFF);
            text += ","s + byte;
            expected.back() += byte;
        }
        text += '\n';
    }
    for (const auto read : {read_file, read_pipe}) {
        const Contents contents = read(text, "");
        ASSERT_EQ(contents.shown, expected);
        for (const Record& record : contents.records) {
            ASSERT_TRUE(std::all_of(record.msg.data + record.msg.length, std::end(record.msg.data),
                                    [](std::uint8_t byte) { return byte == 0; }));
        }
    }
}

TEST(Readers, CountForeignFrames) {
    const Contents contents = read_file("can0 123#00\ncan0 20000004#00\ncan0 18EAFF01#R\ncan0 18EAFF01#00\n");
    EXPECT_EQ(contents.foreign, 3u);
    EXPECT_EQ(contents.records.size(), 1u);
    const Contents gateway = read_file(
        ",0,262144,0,0,2,01,0e\n12:00:00,7,4294967295,0,255,8,00,01,02,03,04,05,06,07\n,2,127250,7,255,1,"
        "ff\n");
    EXPECT_EQ(gateway.foreign, 2u);
    EXPECT_EQ(gateway.records.size(), 1u);
}

TEST(Readers, TellWhenTheyWouldWait) {
    for (const char* format : {"", "candump"}) {
        Pipe pipe;
        Recording recording;
        Record record;
        ASSERT_TRUE(recording.attach(pipe.reading_end(), {.format = format, .patience_ms = 0}));
        const auto after = [&](std::string_view text) {
            pipe.write(text);
            return recording.would_wait();
        };
        EXPECT_TRUE(after(""));
        EXPECT_EQ(recording.next(record), ReadResult::nothing);
        EXPECT_TRUE(after("c"));
        EXPECT_TRUE(after("an0 09F8017F#5"));
        EXPECT_EQ(recording.format_name(), format);
        EXPECT_EQ(recording.next(record), ReadResult::nothing);
        EXPECT_FALSE(after("0\n# comment\ncan0 09F8017F#51\ncan0"));
        EXPECT_EQ(recording.next(record), ReadResult::record);
        EXPECT_FALSE(recording.would_wait());
        EXPECT_EQ(recording.next(record), ReadResult::nothing);
        EXPECT_FALSE(recording.would_wait());
        EXPECT_EQ(recording.next(record), ReadResult::record);
        EXPECT_EQ(record.msg.data[0], 0x51);
        EXPECT_TRUE(recording.would_wait());
        EXPECT_EQ(recording.bytes_read(), 44u);
        pipe.close();
        EXPECT_FALSE(recording.would_wait());
        EXPECT_EQ(recording.next(record), ReadResult::problem);
        EXPECT_EQ(recording.problem().line, 4u);
        EXPECT_FALSE(recording.would_wait());
        EXPECT_EQ(recording.next(record), ReadResult::end);
    }
}

TEST(Readers, ReturnWhenASignalInterrupts) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    struct sigaction before {};
    ASSERT_EQ(0, ::sigaction(SIGUSR1, &action, &before));
    Pipe pipe;
    Recording recording;
    Record record;
    ASSERT_TRUE(recording.attach(pipe.reading_end()));
    EXPECT_TRUE(recording.would_wait());
    std::atomic<bool> returned = false;
    std::thread other([&, reader = ::pthread_self()] {
        while (!returned) ::pthread_kill(reader, SIGUSR1);
    });
    EXPECT_EQ(recording.next(record), ReadResult::nothing);
    returned = true;
    other.join();
    ::sigaction(SIGUSR1, &before, nullptr);
    pipe.write("can0 09F8017F#50\n");
    EXPECT_EQ(recording.next(record), ReadResult::record);
}

TEST(Readers, ReportWhatCannotBeRead) {
    const struct {
        std::string path, format, expected;
    } cases[] = {
        {testing::TempDir() + "no/such/file", "", "No such file or directory"},
        {testing::TempDir(), "", "Is a directory"},
        {"/dev/null", "pcap",
         "unknown format `pcap`; known are plain, candump, yacht-devices, actisense-ascii"},
    };
    for (const auto& c : cases) {
        Recording recording;
        const auto opened = recording.open(c.path, {.format = c.format});
        ASSERT_FALSE(opened);
        EXPECT_EQ(opened.reason(), c.expected);
    }
    // A peer that leaves with unread data resets the connection.
    const std::string reset = "cannot read on: Connection reset by peer";
    const struct {
        std::string text, format;
        Lines expected;
    } broken[] = {
        {"can0 09F8017F#50\ncan0 09F8017F#51", "", {"F 2 129025 127 255 50", "2: " + reset}},
        {"can0 09F8017F#50", "candump", {"1: " + reset}},
        {"", "", {"0: " + reset}},
    };
    for (const auto& c : broken) {
        int ends[2];
        ASSERT_EQ(0, ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends));
        ASSERT_EQ(1, ::write(ends[0], "x", 1));
        ASSERT_EQ(static_cast<ssize_t>(c.text.size()), ::write(ends[1], c.text.data(), c.text.size()));
        ::close(ends[1]);
        Recording recording;
        ASSERT_TRUE(recording.attach(ends[0], {.format = c.format}));
        EXPECT_EQ(drain(recording).shown, c.expected);
    }
}

}  // namespace
}  // namespace vistel
