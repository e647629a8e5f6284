// Formats of blocks: what they hold, and what becomes of recordings that are damaged.
#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <tuple>
#include <vector>

#include "host/recording_contents.h"
#include "readers/unpacker.h"

namespace vistel {
namespace {

using namespace std::string_literals;

std::string little(std::uint64_t value, int size) {
    std::string text;
    for (; size > 0; --size, value >>= 8) text += static_cast<char>(value);
    return text;
}

std::string big(std::uint64_t value, int size) {
    const std::string text = little(value, size);
    return {text.rbegin(), text.rend()};
}

std::string doubled(std::string_view text, char escape) {
    std::string result;
    for (const char c : text) result += c == escape ? std::string(2, c) : std::string(1, c);
    return result;
}

struct Case {
    std::string recording;
    Texts shown, times = {}, buses = {};
};

/// Reads each as what it is recognised as, or as `format` where it begins with a fault.
void expect(const std::vector<Case>& cases, const std::string& format, bool recognised = true) {
    for (const Case& c : cases)
        for (const From from : {From::file, From::pipe}) {
            const Contents contents = read(c.recording, recognised ? "" : format, from);
            SCOPED_TRACE(testing::PrintToString(c.shown));
            EXPECT_EQ(contents.format, format);
            EXPECT_EQ(contents.shown, c.shown);
            EXPECT_EQ(contents.times, c.times.empty() ? contents.times : c.times);
            EXPECT_EQ(contents.buses, c.buses.empty() ? contents.buses : c.buses);
            // Byte by byte these tell what belongs to no record, or is cut off, at another place.
            const bool is_same = format != "actisense" && format != "ebl" && format != "pcapng";
            const Contents drops = read_drops(c.recording, 1, format);
            EXPECT_EQ(records_of(drops), records_of(contents));
            EXPECT_EQ(drops.shown, is_same ? c.shown : drops.shown);
        }
}

// ---- Actisense ----

std::string bst(std::string_view digits) {
    const std::string record = bytes(digits);
    return record + static_cast<char>(-std::accumulate(record.begin(), record.end(), 0));
}
std::string framed(std::string_view record) {
    return "\x10\x02"s + doubled(record, '\x10') + "\x10\x03"s;
}

const std::string heading = "93 13 02 12F101 FF 23 {time} 08 0010001B0210FFFD";
std::string heading_at(std::string_view time) {
    std::string digits = heading;
    return bst(digits.replace(digits.find("{time}"), 6, time));
}
const std::string shown_heading = "M 2 127250 35 255 0010001B0210FFFD";
const std::string shown_frame = "F 2 127250 35 255 0102";

TEST(BinaryFormats, Actisense) {
    const std::string good = framed(heading_at("0A000000")), cut = good.substr(0, 9);
    const std::string frame = framed(bst("95 08 0500 2312F189 0102"));
    std::string wrong = good;
    wrong[wrong.size() - 3] ^= 1;
    const std::string most = std::string(1785 * 2, '5');
    expect(
        {{good + framed(bst("94 08 06 00EA01 23 02 14F0")), {shown_heading, "M 6 125440 254 35 14F0"}},
         {framed(bst("D0 0F00 23 05 00EA 18 01 0A000000 14F0")), {"M 6 59904 5 35 14F0"}, {"10000000 start"}},
         {framed(bst("D0 0607 FF 05 12F1 09 01 0A000000" + most)), {"M 2 127250 5 255 " + most}},
         {frame + framed(bst("A0 03 F2 01 00")) + framed(bst("9D 02 2447")), {shown_frame, "2 foreign"}},
         // from the middle of a record on, and what is missing later
         {"\x03"s + good.substr(4) + good, {shown_heading}},
         {good + cut + good, {shown_heading, "28: a record is cut off", shown_heading}},
         {good + cut + "\x10\x05"s + good, {shown_heading, "28: a record is cut off", shown_heading}},
         {good + "abc" + good, {shown_heading, "28: 3 bytes belong to no record", shown_heading}},
         {good + good.substr(0, 12), {shown_heading, "28: the last record is cut off"}},
         {good + "\x10"s, {shown_heading, "28: 1 bytes belong to no record"}},
         {good + wrong + good, {shown_heading, "28: the checksum of a record is wrong", shown_heading}},
         {good + framed(bst("93 02 0203 04")), {shown_heading, "28: a record of 6 bytes says that it has 5"}},
         {good + framed(bst("93 0C 02 12F101 FF 23 0A000000 02 01")),
          {shown_heading, "28: a record of 14 bytes says that it has 15"}},
         {good + framed(bst("93 03 020304")), {shown_heading, "28: a record of 5 bytes is too short"}},
         {good + framed("\x93"), {shown_heading, "28: a record of 1 bytes is too short"}},
         {good + framed(bst("95 0F 0500 2312F109 010203040506070809")),
          {shown_heading, "28: a frame of 9 bytes cannot be"}},
         {good + "\x10\x02"s + std::string(5000, 'x') + good,
          {shown_heading, "28: a record is cut off", shown_heading}},
         // clocks that wrap: 32 bits of milliseconds, 16 bits of one unit and of another
         {framed(heading_at("F0FFFFFF")) + framed(heading_at("10000000")) + framed(heading_at("FFFFFFFF")),
          Texts(3, shown_heading),
          {"4294967280000000 start", "4294967312000000 start", "0 none"}},
         {framed(bst("95 08 F0FF 2312F109 0102")) + framed(bst("95 08 0A00 2312F109 0102")) +
              framed(bst("95 08 0A00 2312F129 0102")) + framed(bst("95 08 1400 2312F1A9 0102")),
          Texts(4, shown_frame),
          {"65520000000 start", "65546000000 start", "65547000000 start", "65548000000 start"}}},
        "actisense");
    expect({{"no record at all", {"0: 16 bytes belong to no record"}}}, "actisense", false);
}

TEST(BinaryFormats, Ebl) {
    const auto tag = [](std::string_view payload) {
        return "\x1B\x01"s + doubled(payload, '\x1B') + "\x1B\x0A";
    };
    const std::string stamp = tag("\x03" + little(116'444'736'000'000'000 + 27, 8)),
                      version = tag("\x01" + little(1002, 4));
    const std::string start = stamp + version, later = tag("\x03" + little(27, 8));  // since a start
    const std::string good = doubled(framed(heading_at("0A000000")), '\x1B');
    const std::string frame = bst("95 08 0500 2312F109 0102"), next = bst("95 08 0700 2312F109 0102");
    const std::string at = std::to_string(start.size()) + ": ";
    expect({{start + good + later + good, {shown_heading, shown_heading}, {"2700 epoch", "2700 start"}},
            {start + good.substr(0, 9) + later + good.substr(9), {shown_heading}, {"2700 start"}},
            {start + tag("\x07" + frame) + tag("\x05\x01") + tag("\x07" + next.substr(0, next.size() - 1)) +
                 tag("\x09xyz"),
             {shown_frame, shown_frame},
             {"2700 epoch", "2002700 epoch"}},
            {start + good.substr(0, 9) + good, {at + "a record is cut off", shown_heading}},
            {start + good.substr(0, 9) + tag("\x07" + frame), {at + "a record is cut off", shown_frame}},
            {start + "abc" + good, {at + "bytes that belong to no record", shown_heading}},
            {start +
                 tag("\x03"
                     "123") +
                 good,
             {at + "a tag with a time that cannot be", shown_heading}},
            {start + "\x1B\x01\x02 abc\x1B" + good,
             {at + "a tag is cut off",
              at.substr(0, 0) + std::to_string(start.size() + 7) + ": bytes that belong to no record",
              shown_heading}},
            {start + good + "\x1B\x01\x03",
             {shown_heading, std::to_string(start.size() + good.size()) + ": the last record is cut off"}},
            {stamp + tag("\x01" + little(2000, 4)) + good,
             {std::to_string(stamp.size()) + ": this version of EBL recordings is not known"}}},
           "ebl");
}

TEST(BinaryFormats, W2kJson) {
    const std::string good = R"({"pgn":127250,"payload":[147,19,2,18,241,1,255,35,10,0,0,0,2,1,2]})";
    expect({{good + "\n" + R"({"pgn":1, "payload":[ 147, 0 ,6,0,234,8,35,3,255,255,255,255,1,20 ]})",
             {"M 2 127250 35 255 0102", "M 6 59904 3 35 14"},
             {"10000000 start", "0 none"}},
            {good + "\n" + R"({"pgn":1,"payload":[148,19]})" + "\n" + R"({"pgn":1,"payload":[147,19,256]})" +
                 "\n" + R"({"pgn":1,"payload":[147,19,2,18,241,1,255,35,10,0,0,0,3,1,2]})" + "\n" +
                 R"({"pgn":1,"payload":[147,)",
             {"M 2 127250 35 255 0102", "3: number 3 of the payload is no byte",
              "4: a record of 15 bytes says that it has 16", "5: number 2 of the payload is no byte",
              "1 foreign"}}},
           "w2k-json");
}

// ---- captures ----

const std::string can = bytes("89F11223 02 000000 0102 000000000000");
const std::string at_second = " epoch", second = "1777887000";

std::string pcap(std::string (*number)(std::uint64_t, int), std::uint32_t magic, int type,
                 std::vector<std::string> packets) {
    std::string text = number(magic, 4) + number(2, 2) + number(4, 2) + number(0, 4) + number(0, 4) +
                       number(262144, 4) + number(static_cast<unsigned>(type), 4);
    for (const std::string& packet : packets)
        text += number(1777887000, 4) + number(5, 4) + number(packet.size(), 4) + number(packet.size(), 4) +
                packet;
    return text;
}
std::string cooked(std::string_view frame, int device = 280, int protocol = 0x0C) {
    return big(1, 2) + big(static_cast<unsigned>(device), 2) + big(0, 10) +
           big(static_cast<unsigned>(protocol), 2) + std::string(frame);
}
std::string cooked2(unsigned interface, std::string_view frame) {
    return big(0x0C, 2) + big(0, 2) + big(interface, 4) + big(280, 2) + big(0, 10) + std::string(frame);
}
std::string host_order(std::string frame) {
    std::reverse(frame.begin(), frame.begin() + 4);
    return frame;
}

TEST(BinaryFormats, Pcap) {
    constexpr std::uint32_t micro = 0xA1B2C3D4, nano = 0xA1B23C4D;
    const auto frame = [](const char* identifier, const char* length) {
        return bytes(identifier + " "s + length + " 0000 0102030405060708");
    };
    std::string shortened = pcap(little, micro, 227, {can, can.substr(0, 9)});
    expect(
        {{pcap(little, micro, 227, {can, can.substr(0, 10)}),
          {shown_frame, shown_frame},
          Texts(2, second + "000005000" + at_second)},
         {pcap(big, nano, 227, {can}), {shown_frame}, {second + "000000005" + at_second}},
         {pcap(little, micro, 113, {cooked(host_order(can)), cooked(can, 1), cooked(can, 280, 13)}),
          {shown_frame, "2 foreign"}},
         {pcap(big, micro, 276, {cooked2(7, can), cooked2(9, can), cooked2(7, can)}),
          Texts(3, shown_frame),
          {},
          {"0", "1", "0"}},
         // standard, remote, error, CAN FD, CAN XL
         {pcap(little, micro, 227,
               {frame("00000123", "0800"), frame("C9F11223", "0800"), frame("A0000004", "0800"),
                frame("89F11223", "0804"), frame("89F11223", "8800")}),
          {"5 foreign"}},
         {pcap(little, micro, 227,
               {can.substr(0, 9), can.substr(0, 7), frame("89F11223", "0900") + "9", can}),
          {"24: a frame says that it has 2 bytes; there are 1", "49: a packet of 7 bytes holds no frame",
           "72: a frame says that it has 9 bytes; there are 9", shown_frame}},
         {pcap(little, micro, 113, {cooked("").substr(0, 15)}), {"24: a packet of 15 bytes holds no frame"}},
         {pcap(little, micro, 227, {can, can}).substr(0, 80),
          {shown_frame, "56: the last record is cut off"}},
         {pcap(little, micro, 227, {can}) + little(0, 8) + little(1 << 20, 8) + can,
          {shown_frame, "56: a packet of 1048576 bytes cannot be; nothing behind it can be read"}},
         {pcap(little, micro, 190, {can}),
          {"0: a capture of link type 190 (CAN 2.0B), of which no layout is published"}},
         {pcap(little, micro, 1, {can}),
          {"0: a capture of link type 1, which is none of CAN frames (they have 113, 227 or 276)"}}},
        "pcap");
    expect({{"hello, this is no capture", {"0: it does not begin as a capture does"}}}, "pcap", false);
}

TEST(BinaryFormats, Pcapng) {
    using Number = std::string (*)(std::uint64_t, int);
    const auto block = [](Number number, unsigned type, std::string body) {
        body += std::string(-body.size() % 4, '\0');
        return number(type, 4) + number(body.size() + 12, 4) + body + number(body.size() + 12, 4);
    };
    const auto section = [&](Number number, unsigned version = 1) {
        return block(number, 0x0A0D0D0A,
                     number(0x1A2B3C4D, 4) + number(version, 2) + number(0, 2) + number(~0ull, 8));
    };
    const auto interface = [&](Number number, unsigned type, const std::string& options) {
        return block(number, 1, number(type, 2) + number(0, 2) + number(0, 4) + options);
    };
    const auto packet = [&](Number number, unsigned on, std::uint64_t time, unsigned size = 16) {
        return block(
            number, 6,
            number(on, 4) + number(time >> 32, 4) + number(time, 4) + number(size, 4) + number(16, 4) + can);
    };
    const auto drop_count = [](unsigned count) { return little(4, 2) + little(8, 2) + little(count, 8); };
    const auto statistics = [&](Number number, unsigned of, unsigned by_interface, unsigned by_system) {
        return block(number, 5,
                     number(of, 4) + number(0, 8) + number(5, 2) + number(8, 2) + number(by_interface, 8) +
                         number(7, 2) + number(8, 2) + number(by_system, 8));
    };
    const std::string start = section(little) + interface(little, 227, "");
    // Resolutions: microseconds without an option, 10 to the -12th, 2 to the -20th and -40th behind an
    // offset.
    const std::string fine = little(9, 2) + little(1, 2) + little(12, 4),
                      binary = little(9, 2) + little(1, 2) + little(0x94, 4) + little(14, 2) + little(8, 2) +
                               little(1'777'887'000, 8);
    const std::string finest = big(9, 2) + big(1, 2) + bytes("A8000000") + big(14, 2) + big(8, 2) +
                               big(1'777'887'000, 8) + big(0, 4);
    const std::string lost = "; nothing behind it can be read", place = std::to_string(start.size()) + ": ";
    expect(
        {{start + packet(little, 0, 1'777'887'000'000'005),
          {shown_frame},
          {second + "000005000 epoch"},
          {"0"}},
         {start + interface(little, 227, fine) + interface(little, 227, binary) +
              packet(little, 1, 5'000'000'007'000) + packet(little, 2, 3 << 19) + section(big) +
              interface(big, 227, finest) + packet(big, 0, 3ull << 39),
          Texts(3, shown_frame),
          {"5000000007 start", "1777887001"s + "500000000 epoch", "1777887001"s + "500000000 epoch"},
          {"1", "2", "0"}},
         {start + block(little, 3, little(16, 4) + can) +
              block(little, 2,
                    little(0, 4) + little(0, 4) + little(5, 4) + little(16, 4) + little(16, 4) + can) +
              block(little, 0xBAD, std::string(600'000, 'x')),
          {shown_frame, shown_frame},
          {"0 none", "5000 start"}},
         {start + interface(little, 1, "") + packet(little, 1, 0),
          {place + "a capture of link type 1, which is none of CAN frames (they have 113, 227 or 276)",
           "1 foreign"}},
         {start + interface(little, 276, "") +
              block(
                  little, 6,
                  little(1, 4) + little(0, 8) + little(36, 4) + little(36, 4) + cooked2(4, host_order(can))),
          {shown_frame}},
         {start + statistics(little, 0, 100, 1) + statistics(little, 0, 3, 4) + statistics(little, 9, 5, 5) +
              block(little, 6, little(0, 20) + drop_count(2)) + section(big) + interface(big, 227, "") +
              block(big, 2, big(0, 2) + big(5, 2) + big(0, 8) + big(16, 4) + big(16, 4) + can) +
              block(big, 2, big(0, 2) + big(0xFFFF, 2) + big(0, 8) + big(16, 4) + big(16, 4) + can),
          {std::to_string(start.size() + 3 * 48) + ": a packet of 0 bytes holds no frame", shown_frame,
           shown_frame, "12 dropped"}},
         {start + packet(little, 0, ~0ull), {place + "the time of a packet is out of range"}},
         {start + packet(little, 1, 0), {place + "a packet of no interface" + lost}},
         {start + packet(little, 0, 0, 17) + start,
          {place + "a packet that is longer than its block" + lost}},
         {start + little(6, 4) + little(18, 4) + start, {place + "a block whose length cannot be" + lost}},
         {start + little(6, 4) + little(8, 4) + start, {place + "a block whose length cannot be" + lost}},
         {start + little(6, 4) + little(1 << 30, 4) + start, {place + "a block that is too long" + lost}},
         {start + packet(little, 0, 0).replace(44, 1, "x") + start,
          {place + "a block whose two lengths differ" + lost}},
         {start + block(little, 6, little(0, 4)), {place + "a block that is too short for a packet" + lost}},
         {start + little(4, 4) + little(100, 4) + little(0, 8),
          {std::to_string(start.size() + 8) + ": the last record is cut off"}},
         {section(little, 2) + start, {"0: a section of a version that is not known" + lost}}},
        "pcapng");
    expect({{"hello, this is no capture", {"0: here should a section begin" + lost}}}, "pcapng", false);
}

// ---- sentences ----

TEST(BinaryFormats, Sentences) {
    const std::string heading_sentence = "!PDGY,127250,2,35,255,345.12,AQI=",
                      shown = "M 2 127250 35 255 0102";
    expect(
        {{"$PDGY,000000,3,,5,482,1,0\r\n" + heading_sentence + "\r\n" + heading_sentence +
              "$PDGY,ACK,N2NET_INIT\r\n",
          {shown, shown, "2 foreign"},
          Texts(2, "345012000000 start")},
         {heading_sentence + "*22\n" + heading_sentence + "*74\n!PDGY,59904,35,FPAB\n",
          {"1: the checksum of a sentence is wrong", shown, "M 6 59904 254 35 14F001"}},
         {"!PDGY,127250,2,35,255,999999,AQI=\n!PDGY,127250,2,35,255,1.5,AQI=\n",
          {shown, shown},
          {"999999000000 start", "1001005000000 start"}},
         {"# $PDGY,1, and more\n!PDGY,127250,2,35,255,1.250,ATkw\n", {"M 2 127250 35 255 013930"}},
         // torn ones
         {heading_sentence + "\n\n$PD" + heading_sentence + "\n,o" + heading_sentence +
              "\n!PDGY,127250,2,35,255,345.12,AQID$PDGY,000000,3,,5,482,1,0\n$PDGY,12725" + heading_sentence,
          {shown, "3: `$PD` is no sentence", shown, "4: `,o` is no sentence", shown,
           "5: payload `AQID` is not base64 up to its end", shown, "2 foreign"}},
         {heading_sentence + "\n!PDGY,127250,2,35\n!PDGY,127250,2,35,255\n!PDGY,127250,8,35,255,345.12,AQI="
                             "\n!PDGY,262144,2,35,255,1.0,AQI=\n!PDGY,x,2,35,255,1.0,AQI=\n$PDGY,127250,2,35,"
                             "255,1.0,AQI=\n!PDGY,127250,2,35,255,1.1000,AQI=\n",
          {shown, "2: payload `35` is not base64 up to its end", "3: a message of 4 fields; there are 3 or 6",
           "4: priority 8 is above 7", "5: PGN 262144 is above 262143", "6: PGN `x` is not a number",
           "7: a message that begins with $", "8: the milliseconds of a time 1000 is above 999"}}},
        "ikonvert");

    const std::string pcdin = "$PCDIN,01F112,0000000A,23,0102*56", shown_pcdin = "M 6 127250 35 255 0102";
    expect({{"$GPGLL,5907.4074,N*00\r\n# comment\r\n" + pcdin + pcdin + "$GPDPT,2.4,-0.0*7C\n\\s:x,c:1*11\\" +
                 pcdin,
             Texts{shown_pcdin, shown_pcdin, shown_pcdin, "2 foreign"}, Texts(3, "10000000 start")},
            {"$PCDIN,00EA05,089C77D!,23,14*42\n", {"M 6 59904 35 255 14"}, {"144472016000000 start"}},
            {"$PCDIN,01F112,FFFFFFFF,23,*24\n$PCDIN,01F112,00000001,23,*25\n",
             Texts(2, "M 6 127250 35 255 "),
             {"4294967295000000 start", "4294967297000000 start"}},
            {pcdin + "\n$PCDIN,01F112,0000000A,23,0102\n$PCDIN,01F112,0000000A,23,0103*56\n$PCDIN,01F112,"
                     "0000000A,23,01*5\n\\s:torn\n$PCDIN,1F112,0A,2,0102*00",
             {shown_pcdin, "2: a sentence without its checksum", "3: the checksum of a sentence is wrong",
              "4: the checksum of a sentence is wrong", "5: a tag block has no end",
              "5: `s:torn` is no sentence", "6: the checksum of a sentence is wrong"}}},
           "pcdin");

    expect({{"$MXPGN,01F112,2223,0201*17\n$MXPGN,00EA23,6303,01F014*11\n$IIPGN,00EA00,E323,01F014*74\n$MXPGN,"
             "01F112,,0201*16\n",
             {"F 2 127250 35 255 0102", "F 6 59904 3 35 14F001", "F 6 59904 254 35 14F001",
              "F 7 127250 254 255 0102"},
             Texts(4, "0 none")},
            {"$MXPGN,01F112,2323,0201*16\n$MXPGN,01F112,2223,020*26\n$MXPGN,040000,2223,0201*66\n",
             {"1: 3 bytes announced, 2 given", "2: byte 2 `0` is not hexadecimal",
              "3: PGN 262144 is above 262143"}}},
           "mxpgn");
}

// ---- recorders ----

TEST(BinaryFormats, Blf) {
    const auto object = [](unsigned type, const std::string& body, unsigned header = 16) {
        return "LOBJ" + little(header, 2) + little(1, 2) + little(16 + body.size(), 4) + little(type, 4) +
               body;
    };
    const auto timed = [&](unsigned type, const std::string& body, unsigned unit = 2) {
        return object(type, little(unit, 4) + little(0, 4) + little(5000, 8) + body, 32);
    };
    const auto container = [&](const std::string& contents, unsigned size) {
        return object(10, little(0, 8) + little(size, 4) + little(0, 4) + contents);
    };
    const auto stored = [&](const std::string& contents) {
        return container(contents, static_cast<unsigned>(contents.size()));
    };
    const std::string file = "LOGG" + little(72, 4) + std::string(32, '\0') +
                             bytes("EA07 0500 0100 0400 0900 1E00 0000 0000") + std::string(16, '\0'),
                      no_date = "LOGG" + little(72, 4) + std::string(64, '\0');
    const std::string identifier = little(0x89F11223, 4), data = bytes("0102000000000000");
    const std::string classical = timed(1, little(2, 2) + bytes("00 02") + identifier + data);
    const std::string fd = timed(
                          100, little(1, 2) + bytes("00 02") + identifier + std::string(12, '\0') + data, 1),
                      fd64 = timed(101,
                                   bytes("03 02 02 00") + identifier + std::string(32, '\0') + bytes("0102"));
    std::string real_fd = fd, real_fd64 = fd64, remote = classical, standard = classical;
    real_fd[32 + 13] = 1, real_fd64[32 + 13] = 0x10, remote[32 + 2] = '\x80', standard[32 + 7] = 0;
    const std::string zlib =
        bytes("78daf3f177f25260606430606000920c0c4c0c10d0b0e9191f03448c4359e86327a32550c5fffabf008d11083f");
    const std::string ns = second + "000005000 epoch", place = "72: ";
    std::string both = classical + "\0\0\0"s + object(5, std::string(9000, 'x')) + fd;
    expect(
        {{file + stored(classical + "\0"s + fd + fd64),
          Texts(3, shown_frame),
          {ns, second + "050000000 epoch", ns},
          {"1", "0", "2"}},
         {no_date + classical, {shown_frame}, {"5000 start"}},
         {file + stored(both.substr(0, 60)) + "\0\0"s + object(65, "abc") + "\0\0\0"s +
              stored(both.substr(60, 9000)) + stored(both.substr(9060)),
          {shown_frame, shown_frame}},
         {file + stored(real_fd + real_fd64 + remote + standard + timed(73, data)), {"4 foreign"}},
         // A container that is missing takes the objects with it of which a part is in others.
         {file + stored(classical + classical.substr(0, 20)) +
              object(10, little(2, 8) + little(48, 4) + little(0, 4) + "xyz") +
              stored(classical.substr(20) + classical),
          {shown_frame, std::to_string(72 + 32 + classical.size() + 20) + ": a container of 48 bytes gives 0",
           shown_frame}},
         {file + container(classical, 1 << 30), {place + "a container that cannot be opened"}},
         {file + container(classical, 100), {place + "a container of 100 bytes gives 48", shown_frame}},
         {file + object(10, "abc") + stored(classical),
          {place + "a container that cannot be opened", shown_frame}},
         {file + "LOBJ" + little(16, 4) + little(3, 4) + little(1, 4) + stored(classical),
          {place + "an object of 3 bytes cannot be", shown_frame}},
         {file + std::string(20, 'x') + stored(classical),
          {place + "here should an object begin", shown_frame}},
         {file + timed(1, identifier), {place + "a frame of 36 bytes is too short"}},
         {file + "LOBJ" + little(16, 4) + little(1 << 30, 4) + little(10, 4) + "x",
          {place + "a container of 1073741824 bytes is too long", "88: the last record is cut off"}},
         {file + stored(classical).substr(0, 50), {place + "the last record is cut off"}}},
        "blf");
    if (make_unpacker(Packing::gzip))  // or built without the library
        expect({{file + object(10, little(2, 8) + little(48, 4) + little(0, 4) + zlib),
                 {"F 2 127250 35 255 0139300000FF7FFD"},
                 {second + "250000000 epoch"}}},
               "blf");
}

TEST(BinaryFormats, Ydvr) {
    const auto record = [](unsigned time, std::uint32_t identifier, const std::string& payload) {
        return little(time, 2) + little(identifier, 4) + payload;
    };
    const std::string itself = record(59990, 0xFFFFFFFF, "YDVR    "),
                      single = record(59991, 0x09F11223, bytes("0102030405060708"));
    const std::string request = record(10, 0x18EA2303, bytes("14F001")),
                      fast = record(11, 0x0DF80503, bytes("A0 03 010203"));
    const std::string shown_single = "M 2 127250 35 255 0102030405060708",
                      shown_request = "M 6 59904 3 35 14F001", shown_fast = "M 3 129029 3 255 010203";
    // A PGN that travels in one frame, stored as a fast packet is, and the other way round.
    const std::string as_fast = record(12, 0x09F11223, bytes("00 0B 0102030405060708090A0B")),
                      as_single = record(13, 0x0DF80503, bytes("A0 FF 030405060708"));
    const std::string good = single + request + fast, start = itself + good + good;
    const Texts first = {shown_single, shown_request, shown_fast, shown_single, shown_request, shown_fast};
    const auto with = [&](Texts lines) {
        lines.insert(lines.begin(), first.begin(), first.end());
        return lines.push_back("1 foreign"), lines;
    };
    const std::string place = std::to_string(start.size()) + ": ";
    expect(
        {{start,
          with({}),
          {"59991000000 start", "60010000000 start", "60011000000 start", "119991000000 start",
           "120010000000 start", "120011000000 start"}},
         {start + as_fast + as_single + request, with({"M 2 127250 35 255 0102030405060708090A0B",
                                                       "M 3 129029 3 255 A0FF030405060708", shown_request})},
         {start + single + std::string(30, '\xF0') + good + good,
          with({place + "here the records are lost, as what follows cannot be any", shown_single,
                shown_request, shown_fast, shown_single, shown_request, shown_fast})},
         {start + single + std::string(30, '\xF0'),
          with({place + "here the records are lost, as what follows cannot be any"})},
         // too few records behind the place where they were lost
         {start + single + std::string(30, '\xF0') + single + request + std::string(30, '\x98'),
          with({place + "here the records are lost, as what follows cannot be any"})},
         {start + single.substr(0, 11), with({place + "the last record is cut off"})},
         {start + single.substr(0, 5), with({place + "the last record is cut off"})}},
        "ydvr");
}

}  // namespace
}  // namespace vistel
