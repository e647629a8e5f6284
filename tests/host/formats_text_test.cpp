// Text formats, a small recording each, with what makes their lines differ.
#include <random>
#include <tuple>

#include "host/recording_contents.h"
#include "pgn_vistel/core/decode.h"
#include "support/shown.h"

namespace vistel {
namespace {

constexpr const char* heading = "F 2 127250 35 255 01393000";
constexpr const char* start = "1777887000";  // 2026-05-04T09:30:00Z

/// `epoch(250)` is a quarter of a second later.
std::string epoch(int milliseconds) {
    return start + std::to_string(1000 + milliseconds).substr(1) + "000000 epoch";
}

TEST(TextFormats, ReadTheirRecordings) {
    const std::string pcan = ";$FILEVERSION=", pcan_start = "\n;$STARTTIME=46146.3958333333\n;\n";
    const std::string date = "date Mon May 4 09:30:00.000 am 2026\n",
                      absolute = "base hex timestamps absolute\n";
    const std::string busmaster =
        "***BUSMASTER Ver 3.2.2***\n***START DATE AND TIME 4:5:2026 9:30:0:250***\n";
    const std::string savvy = "Time Stamp,ID,Extended,Dir,Bus,LEN,D1,D2,D3,D4,D5,D6,D7,D8\n";
    const std::string python = "timestamp,arbitration_id,extended,remote,error,dlc,data\n";
    const std::string kvaser =
        "Chn Identifier Flg   DLC  D0...1...2...3...4...5...6..D7       Time     Dir\n";
    const std::string garmin = "Sequence #,Timestamp,PGN,Name,...\n";
    const std::string message = "M 2 127250 35 255 01393000";
    const std::tuple<std::string, std::string, Texts, Texts> cases[] = {
        // format, recording, what is read, the times
        // clang-format off
        {"airmar", "09:30:00.25 - 127250 09F11223 01 39,30, 00\nx - 1 09F11223 01 39 30 00\n"
                   "x - 1 29F11223 01\nx - 1 09F11223 1\n",
         {message, message, "3: identifier `29F11223` has more than 29 bits", "4: byte 1 `1` is not hexadecimal"},
         {"34200250000000 day", "0 none"}},
        {"pcan", ";\n;   Start time: 04.05.2026 09:30:00.000\n 1) 250 09F11223 4  01 39 30 00\n"
                 " 2) 251 18EAFF23 3  RTR\n 3) 252 0123 1  00\n 4) 253 FFFFFFFF 4  00 00 00 08  BUSLIGHT\n 5) 254 09F11223 0\n",
         {heading, "F 2 127250 35 255 ", "2 foreign"}, {epoch(250), epoch(254)}},
        {"pcan", pcan + "1.1" + pcan_start + " 1) 250.0 Rx 09F11223 4  01 39 30 00 \n 2) 251.5 Warng FFFFFFFF 4 00 00 00 04 BUSLIGHT\n"
                 "3) 252.5 Error 0 0\n 4) 1.x Rx 09F11223 0\n5) 1 Rx 09F11223 5 01 02 03\n6) 1 Rx 09F11223 1 01 02\n7) 1 Rx 09F11223 9 01\n8) 1 Ry",
         {heading, "7: time `1.x` is not a number of milliseconds", "8: 5 bytes announced, 3 given", "9: 1 bytes announced, `02` follows them",
          "10: length 9 is above 8", "11: type `Ry` is not known", "1 foreign"}, {epoch(250)}},
        {"pcan", pcan + "1.2" + pcan_start + " 1) 250.000 1 Tx 09F11223 4  01 39 30 00\n" + pcan + "1.3\n 1) 250.000 1 Rx 09F11223 -  4    01 39 30 00\n",
         {heading, heading}, {epoch(250), "250000000 start"}},
        {"pcan", pcan + "2.0" + pcan_start + ";$COLUMNS=N,O,T,d,I,l,D\n 1 250.000 DT Rx 09F11223 4 01 39 30 00\n 2 250.5 FB Rx 09F11223 12 00\n"
                 " 3 251.000 ST Rx 00 00 00 08\n 4 252.0 RR Rx 18EAFF23 3\n 5 0 DT Rx 09F11223 0 --",
         {heading, "F 2 127250 35 255 ", "2 foreign"}, {epoch(250), epoch(0)}},
        {"pcan", pcan + "2.1" + pcan_start + " 1 250.000 DT 1 09F11223 Rx - 4 01 39 30 00\n 2 1 ST 1 - Rx - 4 00 00 00 08\n", {heading}, {epoch(250)}},
        {"vector-asc", date + absolute + "internal events logged\n// version\nBegin Triggerblock Mon May 4 09:30:00.125 am 2026\n"
                       "   0.000000 Start of measurement\n 0.125 1  9F11223x Rx   d 4 01 39 30 00  Length = 559910 ID = 1x\n"
                       " 0.5 1 ErrorFrame\n 0.5 1 18EAFF23x Rx r 3\n 0.5 1 123 Rx d 1 00\n 0.5 1 9F11223x TxRq d 4 01 39 30 00\n"
                       " 0.5 1 Statistic: D 35 R 0\n0.5 2 9F11223x Tx d 9 00 11 22 33 44 55 66 77\nEnd TriggerBlock\n0.5 1 9F11223x Rx d 2 00\n",
         {heading, "F 2 127250 35 255 0011223344556677", "15: 2 bytes announced, 1 given", "3 foreign"}, {epoch(250), epoch(625)}},
        {"vector-asc", "date Mon M\xE4r 1 12:00:00 2027\nbase dec timestamps relative\n0.5 1 166793763x Rx d 4 1 57 48 0\n0.5 1 Statistic: D\n0.25 1 166793763x Rx d 0\n"
                       "0.25 1 166793763x Rx d 1 256\n",
         {heading, "F 2 127250 35 255 ", "6: byte 1 `256` is no number up to 255"}, {"1803902400500000000 epoch", "1803902401250000000 epoch"}},
        {"vector-asc", "date Die Dez 1 12:00:00 pm 2026\n" + absolute +
                       "0.25 CANFD 1 Rx 9F11223x 0 0 4 4 01 39 30 00 102203 130 0 0 0 0\n0.25 CANFD 1 Rx 9F11223x Name 1 0 c 12 00 11 22 33 44 55 66 77 88 99 aa bb 1 1 3000\n"
                       "0.25 CANFD 1 Rx 9F11223x 0 0 0 0 1 1 1000\n",
         {heading, "2 foreign"}, {"1796126400250000000 epoch"}},
        {"busmaster", busmaster + "***HEX***\n***SYSTEM MODE***\n09:30:00:2500 Rx 1 0x09F11223 x 4 01 39 30 00 \n09:30:00:7000 Rx 1 0x18EAFF23 xr 3\n"
                      "09:30:00:7000 Rx 1 0x123 s 1 00\n00:00:00:001 Tx 1 0x09F11223 x 0\n09:30:00 Rx\n***END DATE AND TIME 4:5:2026 9:30:1:0***\n",
         {heading, "F 2 127250 35 255 ", "9: time `09:30:00` is not hh:mm:ss:ffff", "2 foreign"}, {epoch(250), "1777939200001000000 epoch"}},
        {"busmaster", busmaster + "***DEC***\n***ABSOLUTE MODE***\n00:00:00:2500 Rx 1 166793763 x 4 1 57 48 0\n***RELATIVE MODE***\n00:00:00:1000 Rx 1 166793763 x 0",
         {heading, "F 2 127250 35 255 "}, {epoch(500), epoch(600)}},
        {"busmaster", busmaster + "***PROTOCOL J1939***\n09:30:00:2500 1 0x09F11223 0x1F112 DATA 23 FF 2 Rx 4 01 39 30 00", {heading}, {epoch(250)}},
        {"savvycan", savvy + "1777887000250000,09F11223,true,Rx,0,4,01,39,30,00,00,00,00,00,\n25000,9F11223,false,Rx,1,4,01,39,30,00,\n12,123,false,Rx,0,1,00,\n"
                     "12,09F11223,true,Rx,0,2,00,\nx,1,true\nTime Stamp,ID,Extended,Bus,LEN,D1\n12,09F11223,true,0,0,\nID,Data Bytes\n9F11223,01 39 30 00\n",
         {heading, heading, "5: byte 2 `` is not hexadecimal", "6: time `x` is not a number of microseconds", "F 2 127250 35 255 ", heading, "1 foreign"},
         {epoch(250), "25000000 start", "0 none", "0 none"}},
        {"python-can", python + "1777887000.250000,0x9f11223,1,0,0,4,ATkwAA==\n1,0x18eaff23,1,1,0,3,\n1,0x9f11223,1,0,1,0,\n1,0x123,0,0,0,0,\n1,0x9f11223,1,0,0,3,ATkwAA==\n1,0x99f11223,1,0,0,0,\n",
         {heading, "6: data `ATkwAA==` are not 3 bytes in base64", "7: identifier `0x99f11223` is no number of 29 bits", "3 foreign"}, {epoch(250)}},
        {"kvaser", kvaser + " 0    09F11223 X       4  01  39  30  00                       0.250000 R\n 0    18EAFF23 XR      3                0.25 R\n 0  123  1 00 0.1 R\n"
                   " 0   166793763 X       4   1  57  48   0                       0.500000 R\n 1  9F11223 X 2 00 1F x R\nlogging stopped\n",
         {heading, heading, "6: time `x` is not a number of seconds", "2 foreign"}, {"250000000 start", "500000000 start"}},
        {"twocan", "0x23,0x12,0xF1,0x09,0x01,0x39,0x30,0x00,0x00,0xFF,0x7F,0xFD\r\n0x23,0x12,0xF1,0x09,0x01,0x39,0x30,0x00,0x00,0xFF,0x7F\n",
         {"F 2 127250 35 255 0139300000FF7FFD", "2: `0x23,0x12,0xF1,0x09,0x01,0x39,0x...` is not 12 bytes as 0xhh"}, {"0 none"}},
        {"garmin", garmin + "0,250,127250,Vessel, Heading,Sample,35,255,2,1,4,0x01393000\n1,300,127250,Vessel Heading,Unknown\nManufacturer,35,255,2,1,4,0x01393000\n"
                   "2,1,127250,cut\n3,500,127250,N,S,35,255,2,1,5,0x01393000\nSequence #,Month_Day_Year,PGN\n4,5_4_2026_9_30_0_24931250,127250,Processed,N,S,35,255,2,1,4,0x01393000\n"
                   "5,5_4_2026_9_30,127250\n6,1,127250,N,S,35,255,8,1,0,0x\n",
         {message, message, "6: 5 bytes announced, 4 given", message, "9: time `5_4_2026_9_30` is neither milliseconds nor month_day_year_...", "10: priority 8 is above 7"},
         {"250000000 start", "300000000 start", epoch(250)}},
        {"signal-k", "1777887000250;A;09:30:00.000,2,127250,35,255,4,01,39,30,00\n1777887000251;N;$GPGLL\n1777887000250;A;A093000.000 23FF2 1F112 01393000\n"
                     "1777887000250;A;19:07:21.014 R 09F11223 01 39 30 00\n1777887000000;A;(1777887000.250) can0 09F11223#01393000\n1777887000251;A;x\nx\n1777887000250;A;!PDGY,127250,2,35,255,11.250,ATkwAA==\n"
                     "1777887000250;A;,2,129029,35,255,1,00\n1777887000250;A;,2,129029,35,255,9,00,01,02,03,04,05,06,07,08\n9999999999999;A;x\n",
         {heading, message, heading, heading, "6: `x` is no message in a form that is known", "7: `x` is not milliseconds;letter;line",
          message, "M 2 129029 35 255 00", "M 2 129029 35 255 000102030405060708", "11: `9999999999999;A;x` is not milliseconds;letter;line", "1 foreign"},
         {epoch(250), epoch(250), epoch(250), epoch(250), epoch(250), epoch(250), epoch(250)}},
        {"vistel-json", "{\"time\":0.25,\"pgn\":127250,\"name\":\"x\",\"priority\":2,\"source\":35,\"destination\":255,\"fields\":["
                        "{\"label\":\"\\\"raw\\\":\\\"FF\",\"raw\":\"01\"},{\"x\":1,\"raw\":\"3930\"},{\"x\":1,\"raw\":\"00\"}]}\n"
                        "{\"time\":0,\"pgn\":127250,\"priority\":2,\"source\":35,\"destination\":255,\"fields\":[{\"x\":1,\"raw\":\"0139\"}]}\n"
                        "{\"time\":0,\"pgn\":262144,\"fields\":[]}\n{\"time\":x,\"fields\":[]}\n{\"time\":0",
         {message, "2: the fields are not those of a message 127250", "3: PGN 262144 is above 262143", "4: the time is missing or wrong",
          "5: `{\"time\":0` is no message that was decoded to JSON"}, {"250000000 start"}},
        {"slcan", "V1013\rT09F11223401393000\r\at1230\rr1230\rR18EAFF233\rT09F1122340139300\rz\r\r?\rT09F11223401393000EA5C\rx09F112230\nT09F1122340139300003E8",
         {heading, "49: `T09F1122340139300` is not T, identifier, length and bytes", "70: `?` begins like no frame and no answer", heading, "F 2 127250 35 255 ", heading, "3 foreign"},
         {"0 none", "59996000000 start", "0 none", "61000000000 start"}},
        // clang-format on
    };
    for (const auto& [format, text, shown, times] : cases)
        for (const From from : {From::file, From::pipe}) {
            const Contents contents = read(text, "", from);
            EXPECT_EQ(contents.format, format);
            EXPECT_EQ(contents.shown, shown) << text;
            EXPECT_EQ(contents.times, times) << text;
        }
}

/// What was decoded packs to the same bytes. Of a few messages that end within a field that is told.
TEST(TextFormats, PackWhatWasDecoded) {
    constexpr auto set = pgn_vistel::core::Definitions::corrected;
    std::mt19937 random(1);
    std::string text;
    Texts expected;
    for (std::uint32_t i = 0; i < 4 * 131072; ++i) {
        Record record;
        N2KMsg& msg = record.msg;
        msg.pgn = i % 131072;
        msg.length = static_cast<std::uint16_t>(random() % 60);
        for (int k = 0; k < msg.length; ++k)
            msg.data[k] = static_cast<std::uint8_t>(random() % 3 * (random() & 0xFF));
        const auto* definition = find_definition(set, msg);
        if (definition == nullptr || (definition->pgn == 0 && i % 64 != 0)) continue;
        text += pgn_vistel::test::json_of(msg, set, pgn_vistel::core::UnitSelection::si());
        expected.push_back(show(record));
    }
    const Texts shown = read(text, "vistel-json").shown;
    ASSERT_EQ(shown.size(), expected.size());
    std::size_t told = 0;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const bool is_told = shown[i].find(": the fields are not those") != std::string::npos;
        told += is_told;
        EXPECT_TRUE(is_told || shown[i] == expected[i]) << shown[i] << '\n' << expected[i];
    }
    EXPECT_LT(told, expected.size() / 100);
}

}  // namespace
}  // namespace vistel
