#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

// JSON and CSV: what programs read.

std::string between(std::string_view text, std::size_t& at, std::string_view open, std::string_view close) {
    const std::size_t first = text.find(open, at) + open.size();
    at = text.find(close, first);
    return std::string(text.substr(first, at - first));
}

/// "key=value,unit,text" of each field, and "#round" behind it.
std::vector<std::string> brief(const std::string& json) {
    std::vector<std::string> fields;
    for (std::size_t at = 0; json.find("{\"number\":", at) != json.npos;) {
        std::string field = between(json, at, "\"key\":\"", "\"");
        field += '=' + between(json, at, "\"value\":", ",\"unit\":");
        field += ',' + between(json, at, "\"unit\":", ",\"text\":");
        field += ',' + between(json, at, "\"text\":", ",\"raw\":");
        const std::string behind = between(json, at, "\"raw\":\"", "}");
        if (const std::size_t round = behind.find("\"round\":"); round != behind.npos)
            field += '#' + behind.substr(round + 8);
        fields.push_back(field);
    }
    return fields;
}

void expect_fields(const N2KMsg& msg, Definitions set, const std::vector<std::string>& some) {
    const auto fields = brief(json_of(msg, set, UnitSelection::si()));
    for (const std::string& field : some)
        EXPECT_NE(std::ranges::find(fields, field), fields.end())
            << field << " in " << testing::PrintToString(fields);
}

std::array<std::string, 2> records_of(const N2KMsg& msg) {
    const Forms forms = forms_of(msg, plain, UnitSelection::si(), piece_room);
    return {forms[1], forms[2]};
}

TEST(Records, WholeMessage) {
    EXPECT_EQ(
        records_of(message(126464, {1, 0x12, 0xF1, 0x01}))[0],
        R"({"time":0.000000,"pgn":126464,"name":"PGN List","priority":3,"source":35,"destination":255,"fields":[)"
        R"({"number":1,"key":"group_function_code","label":"Group Function Code","value":1,"unit":null,)"
        R"("text":"Receive PGN List Message","raw":"01"},)"
        R"({"number":2,"key":"pgn_supported","label":"PGN supported #1","value":127250,"unit":null,)"
        R"("text":"Vessel Heading","raw":"12F101","round":1}]})"
        "\n");
    const auto [json, csv] = records_of(
        message(129540, {1, 0xFC, 1, 2, 0x97, 0x29, 0xFF, 0xFF, 0xFB, 0x10, 255, 255, 255, 0x7F, 0xF5}));
    for (const char* const field :
         {R"("label":"Elevation \"1\"","value":1.0647,"unit":"rad","text":null,"raw":"9729","round":1},)",
          R"("label":"SNR \"1\"","value":43.469997,"unit":"dB","text":null,"raw":"FB10","round":1},)",
          R"("label":"Azimuth \"1\"","value":null,"unit":"rad","text":null,"raw":"FFFF","round":1},)"})
        EXPECT_NE(json.find(field), json.npos) << field << json;
    EXPECT_NE(
        csv.find(R"(,,129540,GNSS Sats in View,3,35,255,6,elevation,"Elevation ""1""",1.0647,rad,,9729,1)"
                 "\n"),
        csv.npos)
        << csv;
}

Bytes with_text(Bytes head, std::string_view text, Bytes tail = {}) {
    head.insert(head.end(), text.begin(), text.end());
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}

TEST(Records, Values) {
    using namespace std::string_view_literals;
    const struct {
        std::uint32_t pgn;
        Bytes payload;
        std::vector<std::string> fields;  // some of them
        // clang-format off
    } cases[] = {
        // dates and times: as sent, within the leap second, not available, none of any day
        {126992, {1, 0xF0, 0xE2, 0x50, 0x52, 0x94, 0x2A, 0x11},
         {"source=0,null,\"GPS\"", "date=\"2026-09-10\",null,null", "time=\"08:00:00.3154\",null,null"}},
        {126992, {1, 0xF0, 0x45, 0xB9, 0xF4, 0x99, 0x7F, 0x33}, {"date=\"2099-11-09\",null,null", "time=\"23:59:60.0500\",null,null"}},
        {126992, {1, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, {"source=null,null,null", "date=null,null,null", "time=null,null,null"}},
        {126992, {0xFF, 0xF1, 0xFD, 0xFF, 0, 0, 0, 0x40}, {"sequence_id=null,null,null", "date=null,null,null", "time=null,null,null"}},
        // codes: none, one with a text that is no value either, one of a single bit that says "Not available"
        {127250, {255, 0x10, 0x27, 0xFF, 0x7F, 1, 0, 0xFF},
         {"heading_sensor_reading=1,\"rad\",null", "deviation=null,\"rad\",null", "heading_sensor_reference=null,null,null"}},
        {127250, {0, 0, 0, 0, 0, 0, 0, 0xFE}, {"heading_sensor_reference=2,null,\"Error\""}},
        {59904, {0xFF, 0xFF, 0xFF}, {"pgn_being_requested=null,null,null"}},
        {130312, {1, 0, 0, 0x8C, 0x72, 0xFF, 0xFF, 0xFF}, {"actual_temperature=293.24,\"K\",null", "set_temperature=null,\"K\",null"}},
        {127489, {0, 10, 0, 0, 0, 0, 0, 0, 0, 0xFA, 0, 1, 0, 1, 0},
         {"engine_oil_pressure=1000,\"Pa\",null", "fuel_rate=0.025,\"m3/h\",null", "total_engine_hours=65537,\"s\",null"}},
        // texts: filled with @, blanks, 0xFF or zeros; nothing but these
        {129809, with_text({24, 1, 0, 0, 0}, "A@B @@ @@@@@@@@@@@@@", {0, 0}), {"name=\"A@B\",null,null"}},
        {129809, with_text({24, 1, 0, 0, 0}, "@@@@@@@@@@@@@@@@@@@@", {0, 0}), {"name=null,null,null"}},
        {129809, with_text({24, 1, 0, 0, 0}, "X\xFFYZZZZZZZZZZZZZZZZZ", {0, 0}), {"name=\"X\",null,null"}},
        {129041, with_text(Bytes(26, 0), "\x05\x01" "A\xFF@"sv), {"aid_to_navigation_aton_name=\"A\",null,null"}},
        // UTF-16: a lone half of a pair, what JSON escapes, unused units
        {129041, with_text(Bytes(26, 0), "\x0C\x00\x00\xD8\"\x00\x1F\x00@\x00\xFF\xFF"sv),
         {"aid_to_navigation_aton_name=\"\xEF\xBF\xBD\\\"\\u001F\",null,null"}},
        // a text that cannot be is none: the one before was of another message
        {129041, with_text(Bytes(26, 0), "\x05\x07" "ABC"sv), {"aid_to_navigation_aton_name=null,null,null"}},
        // clang-format on
    };
    for (const auto& c : cases) expect_fields(message(c.pgn, c.payload), Definitions::fixed, c.fields);
    JsonRenderer json(UnitSelection::si());  // the one renderer of several messages
    const N2KMsg good = message(cases[std::size(cases) - 2].pgn, cases[std::size(cases) - 2].payload);
    const N2KMsg bad = message(std::rbegin(cases)->pgn, std::rbegin(cases)->payload);
    for (const N2KMsg* const msg : {&good, &bad})
        json.start(*msg, find_pgn_def(msg->pgn), {}), rendered(json);
    json.start(bad, find_pgn_def(bad.pgn), {});
    EXPECT_EQ(brief(rendered(json)).back(), "aid_to_navigation_aton_name=null,null,null");
}

TEST(Records, ValuesByTheCorrectedDefinitions) {
    const struct {
        std::uint32_t pgn;
        Bytes payload;
        std::vector<std::string> fields;  // some of them
        // clang-format off
    } cases[] = {
        // the highest codes: values where the definition says which codes are none, and where they have a text
        {60416, {16, 0, 1, 254, 255, 0x14, 0xF0, 1},
         {"total_number_of_frames_to_be_transmitted=254,null,null"}},
        {60416, {255, 1, 255, 255, 255, 0x14, 0xF0, 1}, {"abort_group_function_code=255,null,\"Abort\""}},
        // 64 bits
        {130061, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x80}, {"source_name=9223372036854775808,null,null"}},
        {126988, Bytes(30, 255), {"data_source_network_id_name=null,null,null"}},
        // a number of whole bytes that starts inside one
        {129815, {0, 26, 1, 0, 0, 0, 0x6F, 0xC7, 0x5F, 0xE9, 0xF0, 0xFF, 0xFF, 0xFF, 0xFF},
         {"destination_id=244710518,null,\"244710518\""}},
        // an offset; a unit that no quantity has
        {127513, {0, 0, 0, 0, 0, 0, 125, 0}, {"peukert_exponent=1.25,null,null"}},
        {130324, Bytes(40, 1), {"pressure_tendency_rate=2570,null,null"}},
        // a value of another size than its key has, of the same, of one that is not available
        {130824, {0x7D, 0x99, 0xF8, 0x40, 0x9D, 0xDB, 0xA2, 5, 0xF8, 0x20, 0x9D, 0xDB, 0xF8, 0xF0, 1, 0},
         {"key=248,null,\"Remote 9\"#1", "value=\"9D DB A2 05\",null,null#1", "remote_9=56.221,null,null#2", "remote_9=0.001,null,null#3"}},
        // clang-format on
    };
    for (const auto& c : cases) expect_fields(message(c.pgn, c.payload), Definitions::corrected, c.fields);
}

TEST(Records, EveryMessage) {
    std::mt19937 random(6);
    int values = 0;
    const auto has_value = [](const std::string& field) { return field.find("=null,") == field.npos; };
    constexpr std::uint32_t names_its_format = 130840;
    const auto formats = all_formats();
    for (const std::uint32_t pgn : catalogued_pgns())
        for (std::size_t i = 0; i < (pgn == names_its_format ? formats.size() : 24); ++i) {
            Bytes payload = random_bytes(random, 223);
            payload[0] = static_cast<std::uint8_t>(i);  // of a group function
            if (i % 3 == 1 || pgn == names_its_format) payload[0] = 0x89, payload[1] = 0x98;
            if (pgn == names_its_format) std::memcpy(&payload[3], &formats[i], sizeof formats[i]);
            const N2KMsg msg = message(pgn, payload);
            const Definitions set =
                i % 2 == 0 && pgn != names_its_format ? Definitions::corrected : Definitions::fixed;
            const auto fields = brief(json_of(msg, set, UnitSelection::si()));
            const auto shown = brief(json_of(msg, set, {}));
            ASSERT_EQ(fields.size(), shown.size());
            std::set<std::string> seen;
            for (std::size_t at = 0; at < fields.size(); ++at) {
                const std::string& field = fields[at];
                // A format that a value names may have none in the unit of its quantity.
                if (pgn != names_its_format || has_value(shown[at])) {
                    EXPECT_EQ(has_value(field), has_value(shown[at])) << pgn << field << shown[at];
                }
                values += has_value(field);
                const std::size_t round = field.rfind('#');
                const std::string name =
                    field.substr(0, field.find('=')) + (round != field.npos ? field.substr(round) : "");
                EXPECT_TRUE(seen.insert(name).second) << pgn << ": a key that does not tell " << name;
            }
        }
    EXPECT_GT(values, 10'000);
}

}  // namespace
}  // namespace pgn_vistel::test
