// Recordings of values by name, packed into messages.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "host/recording_contents.h"

namespace vistel {
namespace {

const std::string std_units = R"({"version":"7.0.0","units":"std","showLookupValues":false})",
                  si_units = R"({"version":"7.0.0","units":"si"})";

std::string message(int pgn, const std::string& fields) {
    return R"({"timestamp":"2026-05-04T09:30:00.250Z","prio":3,"src":35,"dst":255,"pgn":)" +
           std::to_string(pgn) + R"(,"description":"x","fields":{)" + fields + "}}";
}

/// What is read behind a header, less priority, source and destination of message().
std::string packed(const std::string& header, const std::string& line) {
    const Contents found = read(header + '\n' + line + '\n', "canboat-json");
    EXPECT_EQ(found.shown.size(), 1u) << line;
    std::string shown = found.shown.empty() ? "" : found.shown[0];
    if (shown.starts_with("M 3 ")) shown.erase(0, 4);
    return shown;
}

std::string repeated(std::string_view text, int times) {
    std::string result;
    while (times-- > 0) result += text;
    return result;
}

TEST(AnalyzerJson, Values) {
    const struct {
        int pgn;
        const char *fields, *payload;
    } cases[] = {
        // clang-format off
        // names, other spellings of them, the nearest number, what is null or missing
        {127250, R"("SID":1,"Heading":70.7,"Deviation":0.0,"Reference":"Magnetic")", "0133300000FF7FFD"},
        {127250, R"("sid":1,"heading":70.7,"deviation":-1,"variation":null,"reference":{"value":1,"name":"Magnetic"})", "01333051FFFF7FFD"},
        {127250, R"("Reference":1)", "FFFFFFFF7FFF7FFD"}, {127250, "", "FFFFFFFF7FFF7FFF"},
        {127250, R"("Reference":{"value":0})", "FFFFFFFF7FFF7FFC"}, {127250, R"("Reference":{"value":null,"name":null})", "FFFFFFFF7FFF7FFF"},
        {129025, R"("Latitude":59.1234567,"Longitude":-24.7654321)", "07863D234F183DF1"},
        // units: Celsius, bar, litres, degrees a second, a number as text
        {130312, R"("Instance":0,"Source":"Sea Temperature","Actual Temperature":13.37)", "FF0000EC6FFFFFFF"},
        {127489, R"("Instance":"Single Engine or Dual Engine Port","Oil pressure":3.45,"Oil temperature":85.5,"Fuel Rate":1.5,"Discrete Status 1":["Check Engine","Low Oil Pressure"])",
                 "007A0D020EFFFFFF7F0F00FFFFFFFFFFFFFFFFFF0500FFFF7F7F"},
        {127251, R"("Rate":"-0.5")", "FF2BBDFBFFFFFFFF"},
        // date, time of day, rounds of a group with their count, none of them
        {129029, R"("Date":"2026.05.04","Time":"09:30:00.2500","Altitude":-1.5,"Reference Stations":1,"list":[{"Reference Station ID":5}])",
                 "FF6150448B6214FFFFFFFFFFFFFF7FFFFFFFFFFFFFFF7FA01CE9FFFFFFFFFFFFFFFFFF7FFF7FFFFFFF7F015F00FFFF"},
        {129540, R"("SID":7,"list":[{"PRN":1,"SNR":40.0},{"PRN":2,"Status":"Tracked"}])", "07FF0201FF7FFFFFA00FFFFFFF7FFF02FF7FFFFFFF7FFFFFFF7FF1"},
        // a variant by what its fields say; texts; an identity
        {65280, R"("Manufacturer Code":"Furuno","Industry Code":"Marine Industry","Heave":-1.2)", "3F9F50FBFFFFFFFF"},
        {126998, R"("Installation Description #1":"Mast foot","Installation Description #2":"Bj\u00f8rn")", "0B014D61737420666F6F740701426AF8726E0201"},
        {129809, R"("User ID":2345678,"Name":"ANNA")", "FFCECA2300414E4E41FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"},
        // clang-format on
    };
    for (const auto& [pgn, fields, payload] : cases)
        EXPECT_EQ(packed(std_units, message(pgn, fields)), concat(unsigned(pgn), " 35 255 ", payload))
            << fields;
    EXPECT_EQ(packed(si_units, message(130312, R"("Actual Temperature":286.52)")),
              "130312 35 255 FFFFFFEC6FFFFFFF");
    EXPECT_EQ(packed(si_units, message(127250, R"("Heading":1.234)")), "127250 35 255 FF3430FF7FFF7FFF");
}

TEST(AnalyzerJson, Shapes) {
    const std::string payload = "07863D234F183DF1",
                      fields = R"("Latitude":59.1234567,"Longitude":-24.7654321)";
    const Contents found =
        read(message(129025, fields) + "\n" + R"({"positionRapidUpdate":)" + message(129025, fields) +
             "}\n{ \"pgn\": 129025, \"fields\": {" + fields + "}}\n");
    EXPECT_EQ(found.format, "canboat-json");
    EXPECT_EQ(found.shown, (Texts{"M 3 129025 35 255 " + payload, "M 3 129025 35 255 " + payload,
                                  "M 6 129025 254 255 " + payload}));
    EXPECT_EQ(found.times, (Texts{"1777887000250000000 epoch", "1777887000250000000 epoch", "0 none"}));
}

TEST(AnalyzerJson, WhatCannotBePackedIsAProblem) {
    const std::string deep = repeated(R"({"value":)", 10'000);
    const std::pair<std::string, const char*> cases[] = {
        {message(127250, R"("Heading":70.7,"Speed":1)"), "PGN 127250: no field `Speed` in it"},
        {message(127250, R"("Heading":400)"), "is out of range"},
        {message(127250, R"("Heading":1e300)"), "is out of range"},
        {message(127250, R"("Heading":1e999)"), "no JSON object"},
        {message(127250, R"("Heading":true)"), "`Heading` cannot be `true`"},
        {message(127250, R"("Heading":[1])"), "`Heading` cannot be a list"},
        {message(127250, R"("Heading":{"value":[]})"), "`Heading` is no value"},
        {message(127250, R"("Heading":1,"heading":2)"), "is given twice"},
        {message(127250, R"("Reference":"Magnetik")"), "Magnetik"},
        {message(127250, R"("list":[{"Heading":1}])"), "no field `list` in it"},
        {message(129540, R"("list":{})"), "no field `list` in it"},
        {message(129540, R"("list":[7])"), "`list` has `7`"},
        {message(129540, R"("list":[{"SID":7}])"), "no field `SID` in it"},
        {message(130560, R"("Payload Mass":7)"), "no field `Payload Mass` in it"},
        {message(127489, R"("Discrete Status 1":["Tired"])"), "has no flag `Tired`"},
        {message(65280, R"("Reserved":3)"), "do not tell which variant"},
        {message(129540, R"("list":[{})" + repeated(",{}", 4'000) + "]"), "`list` is too long"},
        {message(999, R"("SID":7)"), "PGN 999: is not in the catalogue"},
        {message(262144, ""), "\"pgn\" is no number up to 262143"},
        {R"({"pgn":127250,"fields":[]})", "the fields are no object"},
        {R"({"pgn":127250,"prio":8,"fields":{}})", "\"prio\" is no number up to 7"},
        {R"({"pgn":127250,"src":"7","fields":{}})", "\"src\" is no number up to 255"},
        {R"({"pgn":127250,"timestamp":7,"fields":{}})", "the timestamp is no text"},
        {R"({"pgn":127250,"timestamp":"soon","fields":{}})", "timestamp: "},
        {R"({"version":"7","units":"imperial"})", "the units are neither"},
        {R"({"pgn":127250})", "no message with \"pgn\" and \"fields\""},
        {"[]", "no JSON object"},
        {message(127250, deep), "no JSON object"},
        {message(127250, "\"Heading\":" + deep + "1" + std::string(10'000, '}')), "`Heading` is no value"},
    };
    for (const auto& [line, problem] : cases) {
        const std::string found = packed(std_units, line);
        EXPECT_TRUE(found.starts_with("2: ")) << line.substr(0, 100) << ": " << found;
        EXPECT_NE(found.find(problem), std::string::npos) << found;
    }
    const Contents rest =
        read(std_units + "\nnoise\n" + message(127250, R"("Heading":0)") + '\n', "canboat-json");
    ASSERT_EQ(rest.shown.size(), 2u);
    EXPECT_EQ(rest.shown[1], "M 3 127250 35 255 FF0000FF7FFF7FFF");
}

}  // namespace
}  // namespace vistel
