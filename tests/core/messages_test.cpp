#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <sstream>

#include "core/value_text.h"
#include "support/testing.h"

namespace pgn_vistel::test {
namespace {

// What holds for every message, whatever it carries and however it is shown.

enum class Fill { zeros, ones, twos, random, makers, texts };
constexpr Fill fills[] = {Fill::zeros, Fill::ones, Fill::twos, Fill::random, Fill::makers, Fill::texts};
constexpr int lengths[] = {0, 1, 2, 3, 5, 8, 9, 43, 223, 1785, 65535};

N2KMsg filled(std::uint32_t pgn, Fill fill, int length, std::mt19937& random) {
    N2KMsg msg = message(pgn, random_bytes(random, sizeof(N2KMsg::data)));
    if (fill == Fill::zeros || fill == Fill::ones || fill == Fill::twos)
        std::memset(msg.data, fill == Fill::zeros ? 0 : fill == Fill::ones ? 255 : 2, sizeof msg.data);
    if (fill == Fill::makers) msg.data[0] = 0x89, msg.data[1] = 0x98;
    if (fill == Fill::texts)  // short texts, now and then in UTF-16
        for (std::size_t i = 0; i < sizeof msg.data; ++i)
            msg.data[i] = static_cast<std::uint8_t>(random() % 8);
    msg.length = static_cast<std::uint16_t>(length);
    return msg;
}

template <class Check>
void for_all_messages(Check check) {
    std::mt19937 random(42);
    for (const std::uint32_t pgn : catalogued_pgns())
        for (const Fill fill : fills)
            for (const int length : lengths) {
                SCOPED_TRACE(testing::Message()
                             << "PGN " << pgn << " fill " << static_cast<int>(fill) << " length " << length);
                check(filled(pgn, fill, length, random), random);
                if (testing::Test::HasFailure()) return;
            }
}

UnitSelection everywhere(UnitId unit) {
    UnitSelection units;
    for (DispDataType q = 0; q < quantity::count; ++q) units.select(q, unit);
    return units;
}

/// The last unit that each quantity offers.
UnitSelection other_units() {
    UnitSelection units;
    for (DispDataType q = 0; q < quantity::count; ++q)
        for (const UnitId* u = available_units(q); *u < unit::count; ++u) units.select(q, *u);
    return units;
}

TEST(EveryMessage, ShowsNothingFromBeyondItsLength) {
    for_all_messages([](const N2KMsg& msg, std::mt19937& random) {
        N2KMsg other = msg;
        const int length = payload_length(msg);
        const Bytes rest = random_bytes(random, sizeof msg.data - static_cast<std::size_t>(length));
        std::copy(rest.begin(), rest.end(), other.data + length);
        const auto lines = lines_of(msg);
        ASSERT_EQ(lines, lines_of(other));
        for (const auto& line : lines) ASSERT_LT(line.size(), static_cast<std::size_t>(line_size));
    });
}

TEST(EveryMessage, PositionsOnlyGrow) {
    const UnitSelection units;
    TextScratch scratch;
    for_all_messages([&](const N2KMsg& msg, std::mt19937&) {
        MessageWalk walk(find_pgn_def(msg.pgn), msg);
        while (walk.next()) {
            const PayloadPosition before = walk.position;
            ASSERT_LT(before.byte, payload_length(msg));
            walk.position = read_field(msg, walk.field(), before, units, unit::selected, scratch).next;
            ASSERT_GE(walk.position.byte * 8 + walk.position.bit, before.byte * 8 + before.bit);
            ASSERT_TRUE(walk.position.bit >= 0 && walk.position.bit <= 7);
            const auto raw = read_field(msg, walk.field(), before, units, unit::raw_bits, scratch);
            ASSERT_EQ(raw.next, walk.position) << "units do not matter";
        }
        ASSERT_FALSE(walk.next()) << "an ended walk stays ended";
    });
}

TEST(EveryMessage, TinyBuffersHoldTheBeginning) {
    std::mt19937 random(3);
    for (const std::uint32_t pgn : catalogued_pgns()) {
        const N2KMsg msg = filled(pgn, Fill::random, 60, random);
        const auto lines = lines_of(msg);
        for (const std::size_t size : {0u, 1u, 2u, 7u, 20u, 40u}) {
            const auto cut = lines_of(msg, false, {}, static_cast<int>(size));
            ASSERT_EQ(cut.size(), lines.size()) << pgn;
            for (std::size_t i = 0; i < cut.size(); ++i) {
                EXPECT_EQ(cut[i], lines[i].substr(0, cut[i].size())) << pgn;
                // A list of flags may lose the comma and the blank at its end.
                EXPECT_GT(cut[i].size() + 3, std::min(size, lines[i].size())) << pgn;
            }
        }
    }
}

// ---- the renderers ----

/// What a started renderer writes with windows of `room` bytes, which end where the heap's own do, so that a
/// step too far is seen.
template <std::size_t room, class Renderer>
std::string rendered(Renderer& renderer) {
    static const auto window = std::make_unique<char[]>(room);
    std::string all;
    do {
        char* const end = renderer.write(window.get(), window.get() + room);
        EXPECT_LE(end, window.get() + room);
        all.append(window.get(), end);
    } while (!renderer.is_done());
    return all;
}

template <class Renderer>
std::string rendered(Renderer& renderer) {
    return rendered<std::size_t{2} << 20>(renderer);
}

/// As UTF-8; what could steer a terminal and what is no character is U+FFFD.
std::string utf8(const std::wstring& text) {
    std::string all;
    const Text wide{text.data(), static_cast<int>(text.size()), Encoding::wide};
    for_each_character(wide, INT_MAX, [&all](std::uint32_t c) {
        char area[4];
        all.append(area, write_utf8(area, is_control(c) ? 0xFFFD : c));
    });
    return all;
}

TEST(Renderers, Utf8LinesAreTheWideOnes) {
    for (const UnitSelection& units : {UnitSelection{}, other_units(), everywhere(unit::raw_bits)}) {
        TextRenderer renderer(units, plain);
        for_all_messages([&](const N2KMsg& msg, std::mt19937& random) {
            if (random() % 8 != 0) return;
            const PgnDef* const pgn = find_pgn_def(msg.pgn);
            N2KMsg stamped = msg;
            stamped.time_stamp = static_cast<std::uint32_t>(random()) >> random() % 32;
            std::string expected =
                utf8(printed([&](wchar_t* b, int n) { return print_stream_line(b, n, stamped, pgn); })) +
                "\n";
            for (const auto& line : lines_of(stamped, plain, units)) expected += "    " + utf8(line) + "\n";
            // A text that is refused shows none, and not that of the message before.
            TextRenderer fresh(units, plain);
            fresh.start(stamped, pgn, stamped.time_stamp);
            ASSERT_EQ(rendered(fresh), expected);
        });
    }
}

TEST(Renderers, PiecesMakeTheWhole) {
    for (const UnitSelection& units : {UnitSelection{}, everywhere(unit::raw_bits)}) {
        const auto compare = [](auto renderer, auto... start) {
            auto other = renderer;
            renderer.start(start...);
            other.start(start...);
            ASSERT_EQ(rendered<piece_room>(renderer), rendered(other));
        };
        for_all_messages([&](const N2KMsg& msg, std::mt19937& random) {
            if (random() % (msg.length < 223 ? 16 : 3) != 0) return;
            const PgnDef* const pgn = find_pgn_def(msg.pgn);
            const MessageTime time{-1, true, -1};
            compare(TextRenderer(units, false), std::ref(msg), pgn, 0xFFFFFFFF);
            compare(JsonRenderer(units), std::ref(msg), pgn, time);
            compare(CsvRenderer(units), std::ref(msg), pgn, time);
        });
    }
}

/// One field as JSON has it: number, label, value, unit, text, raw; texts as such, numbers and null as
/// written.
using Parts = std::vector<std::string>;

/// Just enough of a reader to fail on what is no JSON of this shape.
class Json {
  public:
    explicit Json(std::string_view text) : rest_(text) {}

    bool take(std::string_view what) {
        const bool is_there = rest_.starts_with(what);
        if (is_there) rest_.remove_prefix(what.size());
        return is_there;
    }
    void expect(std::string_view what) { EXPECT_TRUE(take(what)) << what << " at " << rest_.substr(0, 60); }
    std::string string() {
        std::string text;
        expect("\"");
        while (!rest_.empty() && rest_[0] != '"') {
            EXPECT_TRUE(static_cast<unsigned char>(rest_[0]) >= 0x20 && rest_[0] != 0x7F);
            if (take("\\u00")) {
                text += static_cast<char>(std::stoi(std::string(rest_.substr(0, 2)), nullptr, 16));
                rest_.remove_prefix(2);
                continue;
            }
            if (take("\\")) {
                EXPECT_TRUE(rest_[0] == '"' || rest_[0] == '\\');
            }
            text += rest_[0];
            rest_.remove_prefix(1);
        }
        expect("\"");
        return text;
    }
    /// A text as such, a number or null as written.
    std::string value() {
        if (rest_.starts_with('"')) return string();
        if (take("null")) return "null";
        double number = 0;
        const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), number);
        EXPECT_EQ(error, std::errc{}) << rest_.substr(0, 60);
        const std::string text(rest_.data(), end);
        rest_.remove_prefix(text.size());
        return text;
    }

  private:
    std::string_view rest_;
};

std::vector<Parts> read_json(std::string_view line, const N2KMsg& msg, std::string_view name,
                             std::string& data) {
    Json json(line);
    std::vector<Parts> fields;
    json.expect("{\"time\":1.500000,\"pgn\":" + std::to_string(msg.pgn) + ",\"name\":");
    EXPECT_EQ(json.string(), name);
    json.expect(",\"priority\":3,\"source\":35,\"destination\":255,\"fields\":[");
    while (!json.take("]") && !testing::Test::HasFailure()) {
        if (!fields.empty()) json.expect(",");
        fields.emplace_back();
        for (const char* const key :
             {"{\"number\":", ",\"label\":", ",\"value\":", ",\"unit\":", ",\"text\":", ",\"raw\":"}) {
            json.expect(key);
            fields.back().push_back(json.value());
        }
        json.expect("}");
    }
    if (json.take(",\"data\":")) data = json.string();
    json.expect("}\n");
    EXPECT_FALSE(json.take("}")) << "nothing behind it";
    return fields;
}

/// Rows of cells; a null is an empty cell.
std::vector<std::vector<std::string>> read_csv(const std::string& text) {
    std::vector<std::vector<std::string>> rows = {{""}};
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quoted && c == '"' && text[i + 1] == '"')
            rows.back().back() += text[++i];
        else if (c == '"')
            quoted = !quoted;
        else if (!quoted && c == ',')
            rows.back().emplace_back();
        else if (!quoted && c == '\n')
            rows.push_back({""});
        else
            rows.back().back() += c;
    }
    rows.pop_back();
    return rows;
}

/// The bits of a field or a payload as bytes, the low ones first.
std::string hexadecimal(const N2KMsg& msg, int first, int last) {
    std::string text;
    last = std::min(last, payload_length(msg) * 8);
    for (int at = first; at < last; at += 8) {
        unsigned byte = 0;
        for (int i = at; i < std::min(at + 8, last); ++i) byte |= (msg.data[i / 8] >> i % 8 & 1u) << (i - at);
        char digits[3];
        std::snprintf(digits, 3, "%02X", byte);
        text += digits;
    }
    return text;
}

std::string value_of(const Value& v) {
    char area[most_number_size];
    if (v.type == ValueType::text) {
        std::string text;
        for_each_character(v.text, 255, [&](std::uint32_t c) { text.append(area, write_utf8(area, c)); });
        return text;
    }
    const auto write = [&area](auto number) {
        return std::string(area, std::to_chars(area, area + 48, number).ptr);
    };
    if (!is_available(v)) return "null";
    if (v.type == ValueType::single) return std::isfinite(v.number.f32) ? write(v.number.f32) : "null";
    if (v.type == ValueType::real) return std::isfinite(v.number.f64) ? write(v.number.f64) : "null";
    return v.type == ValueType::u64 ? write(v.number.u64) : write(integer_of(v));
}

/// The meaning of a value, where it has one. No unit stands beside it.
std::optional<std::string> meaning_of(const FieldDef& row, const FieldReading& reading) {
    if (row.dd->dd == dd::pgn_number) {
        const PgnDef* const pgn = find_pgn_def(reading.value.number.u32);
        return is_available(reading.value) && pgn != nullptr ? std::string(pgn_name(pgn)) : "null";
    }
    const DDstrings* const set = find_enumeration(row.dd->dd);
    if (set == nullptr || reading.cut_off) return {};
    const std::uint32_t value = enumeration_value(reading.value);
    if (set->kind != ENUM_FLAGS) {
        const char* const text = enumeration_text(*set, value);
        return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
    }
    std::string all;
    for (std::uint32_t i = 0; i < set->count; ++i)
        if ((value >> i & 1) != 0) all += (all.empty() ? "" : ", ") + std::string(set->pairs[i].text);
    return all.empty() ? "null" : all;
}

Parts parts_of(const N2KMsg& msg, const FieldDef& row, int round, PayloadPosition at,
               const FieldReading& reading) {
    std::string label = row.name;
    if (row.dd->dd == 144 || row.dd->dd == 145) label = "Group Function Code";
    if (round > 0 && label.find("First") != std::string::npos)
        label = label.substr(6) + " #" + std::to_string(round);
    const auto meaning = meaning_of(row, reading);
    const std::string unit(unit_text(reading.unit));
    return {std::to_string(row.field),
            label,
            value_of(reading.value),
            meaning || unit.empty() ? "null" : unit,
            meaning.value_or("null"),
            hexadecimal(msg, at.byte * 8 + at.bit, reading.next.byte * 8 + reading.next.bit)};
}

TEST(Renderers, JsonAndCsvSayWhatTheFieldsAre) {
    for (const UnitSelection& units : {UnitSelection{}, other_units()})
        for_all_messages([&](const N2KMsg& msg, std::mt19937& random) {
            if (random() % 8 != 0) return;
            const PgnDef* const pgn = find_pgn_def(msg.pgn);
            const MessageTime time{1'500'000'000, false, 0};
            TextRenderer text(units, plain);
            JsonRenderer json(units);
            CsvRenderer csv(units);
            text.start(msg, pgn, 0);
            std::istringstream lines(rendered(text));
            std::string line;
            for (int head = 0; head < 3; ++head) std::getline(lines, line);
            json.start(msg, pgn, time);
            csv.start(msg, pgn, time);
            std::string data;
            const auto fields = read_json(rendered(json), msg, pgn_name(pgn), data);
            const auto rows = read_csv(rendered(csv));
            const std::string all = hexadecimal(msg, 0, payload_length(msg) * 8);
            std::vector<std::string> row = {
                "1.500000", "", std::to_string(msg.pgn), std::string(pgn_name(pgn)), "3", "35", "255"};
            const std::size_t shared = row.size();

            TextScratch scratch;
            std::size_t i = 0;
            MessageWalk walk(pgn, msg);
            for (; walk.next(); ++i) {
                const PayloadPosition at = walk.position;
                const FieldReading reading =
                    read_field(msg, walk.field(), at, units, unit::selected, scratch);
                Parts parts = parts_of(msg, walk.field(), walk.repeat(), at, reading);
                ASSERT_TRUE(i < fields.size() && i < rows.size());
                ASSERT_EQ(fields[i], parts);
                std::getline(lines, line);
                EXPECT_TRUE(line.starts_with("    " + parts[1] + ": ")) << line;
                std::ranges::replace(parts, "null", "");
                row.resize(shared);
                row.insert(row.end(), parts.begin(), parts.end());
                ASSERT_EQ(rows[i], row);
                walk.position = reading.next;
            }
            EXPECT_EQ(fields.size(), i);
            EXPECT_EQ(data, walk.has_undecoded_rest() ? all : "");
            EXPECT_EQ(rows.size(), i + (walk.has_undecoded_rest() || i == 0 ? 1 : 0))
                << "a message does not vanish";
            row.resize(shared);
            row.insert(row.end(), {"", "Data", "", "", "", all});
            if (rows.size() > i) {
                EXPECT_EQ(rows[i], row);
            }
        });
}

TEST(Renderers, InfiniteNumbersAreNoneInJson) {
    const PgnDef* const datum = find_pgn_def(129045);  // has floating numbers behind each other
    int shown = 0;
    for (std::size_t first = 0; first < 4; ++first) {
        Bytes payload(48);
        for (std::size_t i = first; i + 4 <= payload.size(); i += 4)
            payload[i + 2] = 0x80, payload[i + 3] = 0x7F;
        const N2KMsg msg = message(129045, payload);
        TextRenderer text(UnitSelection{}, plain);
        JsonRenderer json{UnitSelection{}};
        CsvRenderer csv{UnitSelection{}};
        text.start(msg, datum, 0);
        json.start(msg, datum, {});
        csv.start(msg, datum, {});
        shown += rendered(text).find(":   inf ") != std::string::npos;
        EXPECT_EQ((rendered(json) + rendered(csv)).find("inf"), std::string::npos);
    }
    EXPECT_GT(shown, 0);
}

TEST(Renderers, AbsoluteTimes) {
    const N2KMsg msg = message(127250, {});
    JsonRenderer json{UnitSelection{}};
    for (const auto& [nanoseconds, expected] :
         {std::pair{std::int64_t{0}, "1970-01-01T00:00:00.000000Z"},
          {std::int64_t{-1}, "1969-12-31T23:59:59.999999Z"},
          {std::int64_t{1'709'210'096'250'999'999}, "2024-02-29T12:34:56.250999Z"},
          {std::int64_t{1'709'210'097'000'000'000}, "2024-02-29T12:34:57.000000Z"}}) {
        json.start(msg, nullptr, {nanoseconds, true, nanoseconds});
        EXPECT_NE(rendered(json).find(expected), std::string::npos) << expected;
    }
}

}  // namespace
}  // namespace pgn_vistel::test
