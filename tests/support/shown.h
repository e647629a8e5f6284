#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "pgn_vistel/core/render.h"

/// What a message looks like, and what holds for it whatever it carries: for tests and fuzz targets alike,
/// which take an exception for a failure.
namespace pgn_vistel::test {

using namespace core;

inline void require(bool condition, const char* what) {
    if (!condition) throw std::logic_error(what);
}

/// What `print(buffer, size)` writes into a buffer of `size`; nothing for a negative result. Nothing outside
/// the buffer may change, and the text must be terminated where the result says, if there is room for a
/// terminator.
template <class Print>
std::wstring printed(Print print, int size = 1024) {
    constexpr std::size_t most = 8192;
    static const std::wstring margin(8, wchar_t{0xE000});
    std::array<wchar_t, 8 + most + 8> memory;  // to take it from the heap takes longer than to print
    const auto room = static_cast<std::size_t>(size);
    require(room <= most, "a buffer of that size");
    std::wmemset(memory.data(), margin[0], room + 2 * margin.size());
    const std::wstring_view area(memory.data(), room + 2 * margin.size());
    const int count = print(memory.data() + margin.size(), size);
    require(area.starts_with(margin) && area.ends_with(margin), "written outside the buffer");
    if (count < 0 || size == 0) return {};
    const auto written = static_cast<std::size_t>(count);
    require(count < size && area[margin.size() + written] == 0, "not terminated at its end");
    return std::wstring(area.substr(margin.size(), written));
}

inline std::wstring stream_line(const N2KMsg& msg, int size = 1024, Definitions set = Definitions::fixed) {
    return printed([&](wchar_t* b, int n) { return print_stream_line(b, n, msg, find_definition(set, msg)); },
                   size);
}

/// All that there are of a source.
inline std::vector<std::wstring> lines_of(StreamLines source, int size = line_size) {
    std::vector<std::wstring> lines;
    for (int count = 0; count >= 0;) {
        require(lines.size() < 30000,
                "the walk does not end");  // a round of a group takes a bit at the least
        lines.push_back(printed([&](wchar_t* b, int n) { return count = source.next(b, n); }, size));
    }
    lines.pop_back();
    return lines;
}

/// All lines below a message's stream line.
inline std::vector<std::wstring> lines_of(const N2KMsg& msg, bool plain_numbers = false,
                                          const UnitSelection& units = {}, int size = line_size,
                                          Definitions set = Definitions::fixed) {
    TextScratch scratch;
    return lines_of(StreamLines(find_definition(set, msg), msg, units, scratch, plain_numbers), size);
}

/// A line as UTF-8 text has it: without control characters and halves of pairs.
inline std::string as_utf8(const std::wstring& line) {
    std::string out;
    out.reserve(line.size());
    for (std::size_t i = 0; i < line.size(); ++i) {
        auto c = static_cast<std::uint32_t>(line[i]);
        const auto next = i + 1 < line.size() ? static_cast<std::uint32_t>(line[i + 1]) : 0;
        if (c >= 0xD800 && c < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00);
            ++i;
        } else if ((c >= 0xD800 && c < 0xE000) || c < 0x20 || (c >= 0x7F && c < 0xA0)) {
            c = 0xFFFD;
        }
        const int tails = (c >= 0x80) + (c >= 0x800) + (c >= 0x10000);
        constexpr std::uint32_t leads[] = {0, 0xC0, 0xE0, 0xF0};
        out += static_cast<char>(leads[tails] | c >> 6 * tails);
        for (int t = tails; t-- > 0;) out += static_cast<char>(0x80 | (c >> 6 * t & 0x3F));
    }
    return out;
}

/// What a started renderer writes with windows of `room` bytes, which end where the heap's own do, so that a
/// step too far is seen.
template <class Renderer>
std::string rendered(Renderer& renderer, std::size_t room = 8 * piece_room) {
    const auto window = std::make_unique_for_overwrite<char[]>(room);
    std::string all;
    all.reserve(piece_room);
    do {
        char* const end = renderer.write(window.get(), window.get() + room);
        require(end >= window.get() && end <= window.get() + room, "written beyond the window");
        all.append(window.get(), end);
    } while (!renderer.is_done());
    return all;
}

inline std::string json_of(const N2KMsg& msg, Definitions set, const UnitSelection& units) {
    JsonRenderer json(units);
    json.start(msg, find_definition(set, msg), {});
    return rendered(json);
}

/// A message as text, JSON and CSV.
using Forms = std::array<std::string, 3>;

inline Forms forms_of(const N2KMsg& msg, bool plain_numbers, const UnitSelection& units, std::size_t room,
                      Definitions set = Definitions::fixed) {
    const PgnDef* const pgn = find_definition(set, msg);
    const MessageTime time{msg.time_stamp * INT64_C(10'000'000), msg.source % 2 == 0,
                           msg.time_stamp * -INT64_C(1'000'003)};
    TextRenderer text(units, plain_numbers);
    JsonRenderer json(units);
    CsvRenderer csv(units);
    text.start(msg, pgn, msg.time_stamp);
    json.start(msg, pgn, time);
    csv.start(msg, pgn, time);
    return {rendered(text, room), rendered(json, room), rendered(csv, room)};
}

/// One object in one line, whose brackets close.
inline bool is_json_line(std::string_view line) {
    const char* const text = line.data();  // whose end the loop keeps away from
    int depth = 0;
    bool quoted = false;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const char c = text[i], next = text[i + 1];
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) return false;
        if (c == '\\' && quoted)
            ++i;
        else if (c == '"' && quoted && next != ':' && next != ',' && next != ']' && next != '}')
            return false;
        else if (c == '"')
            quoted = !quoted;
        else if (!quoted)
            depth += (c == '{' || c == '[') - (c == '}' || c == ']');
        if (depth == 0 && i + 2 < line.size()) return false;
    }
    return depth == 0 && !quoted && line.ends_with("}\n");
}

/// Rows of fifteen columns.
inline bool is_csv(std::string_view text) {
    int commas = 0;
    bool quoted = false;
    for (const char c : text) {
        quoted ^= c == '"';
        if (quoted) continue;
        if (c == '\r' || (c == '\n' && commas != 14)) return false;
        commas = c == '\n' ? 0 : commas + (c == ',');
    }
    return !quoted && commas == 0 && !text.empty();
}

/// Lines and forms agree, whatever memory they are written into, and show nothing that does not belong to the
/// message. The first byte always does: it says what an empty group function shows.
inline void check_shown(const N2KMsg& msg, bool plain_numbers, const UnitSelection& units,
                        Definitions set = Definitions::fixed) {
    N2KMsg other = msg;
    for (int i = std::max(payload_length(msg), 1); i < static_cast<int>(sizeof msg.data); ++i)
        other.data[i] = static_cast<std::uint8_t>(~other.data[i]);
    const auto lines = lines_of(msg, plain_numbers, units, line_size, set);
    require(lines == lines_of(other, plain_numbers, units, line_size, set),
            "lines show what is behind the length");
    const Forms whole = forms_of(msg, plain_numbers, units, 8 * piece_room, set);
    require(whole == forms_of(other, plain_numbers, units, piece_room, set), "pieces make another whole");
    require(is_json_line(whole[1]) && is_csv(whole[2]), "broken JSON or CSV");
    std::string expected = as_utf8(stream_line(msg, line_size, set)) + '\n';
    std::string_view rest = whole[0];
    require(rest.starts_with(expected), "another stream line");
    rest.remove_prefix(expected.size());
    for (const std::wstring& line : lines) {
        // A line that fills its buffer is cut there; the text goes on.
        const bool is_whole = line.size() + 1 < line_size;
        require(rest.starts_with("    " + as_utf8(line) + (is_whole ? "\n" : "")),
                "text differs from its line");
        rest.remove_prefix(rest.find('\n') + 1);
    }
    require(rest.empty(), "text without a line");
}

}  // namespace pgn_vistel::test
