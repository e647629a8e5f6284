#include "readers/candump_format.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>
#include <optional>
#include <span>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/characters.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

/// A line taken apart: what identifies the frame, and the text of its data.
struct Shape {
    enum class Kind { none, spaced, packed, other_frame } kind = Kind::none;
    std::string_view identifier;
    std::string_view length;  ///< spaced alone
    std::string_view data;
};

std::string_view last_word(std::string_view text) {
    text = trimmed(text);
    std::size_t start = text.size();
    while (start > 0 && !is_blank(text[start - 1])) --start;
    return text.substr(start);
}

/// `... IDENTIFIER  [8]  00 FC` or `<0xIDENTIFIER> [8] 00 fc`; in braces stands the length code of the frame.
bool take_spaced(std::string_view line, Shape& shape) {
    for (std::size_t open = line.find_first_of("[{"); open != std::string_view::npos;
         open = line.find_first_of("[{", open + 1)) {
        const bool is_code = line[open] == '{';
        std::size_t close = open + 1;
        while (close < line.size() && (is_code ? hex_digit(line[close]) < not_hex : is_digit(line[close])))
            ++close;
        if (open == 0 || !is_blank(line[open - 1]) || close == open + 1 || close == line.size() ||
            line[close] != (is_code ? '}' : ']')) {
            continue;
        }
        shape.identifier = last_word(line.substr(0, open));
        if (shape.identifier.starts_with("<0x") && shape.identifier.ends_with('>')) {
            shape.identifier = shape.identifier.substr(3, shape.identifier.size() - 4);
        }
        shape.length = line.substr(open + 1, close - open - 1);
        shape.data = trimmed(line.substr(close + 1));
        // A length of more digits is how frames of other kinds are printed, whatever their size.
        shape.kind = shape.length.size() == 1 ? Shape::Kind::spaced : Shape::Kind::other_frame;
        return true;
    }
    return false;
}

/// `... IDENTIFIER#00FC`; a second `#` for other kinds of frames.
void take_packed(std::string_view line, Shape& shape) {
    const std::size_t last_hash = line.rfind('#');
    if (last_hash == std::string_view::npos) return;
    std::size_t start = last_hash;
    while (start > 0 && !is_blank(line[start - 1])) --start;
    const std::size_t hash = line.find('#', start);
    shape.identifier = line.substr(start, hash - start);
    shape.data = line.substr(hash + 1);
    shape.kind = hash == last_hash ? Shape::Kind::packed : Shape::Kind::other_frame;
}

Shape shape_of(std::string_view line) {
    Shape shape;
    if (!take_spaced(line, shape)) take_packed(line, shape);
    return shape;
}

/// Words about an error frame, which stand in lines of their own behind it: `bus-off`,
/// `lost-arbitration{at bit 3}`.
bool explains_error(std::string_view line) {
    const std::string_view word = line.substr(0, line.find_first_of("{,"));
    return word.find('-') != std::string_view::npos &&
           std::all_of(word.begin(), word.end(), [](char c) { return c == '-' || (c >= 'a' && c <= 'z'); });
}

constexpr std::string_view drop_mark = "DROPCOUNT: dropped ";

/// Without what sets colours (ESC [ ... letter), in `room`; the line itself where there is none.
std::string_view without_colours(std::string_view line, std::span<char> room) {
    constexpr char escape = '\x1B';
    if (line.find(escape) == std::string_view::npos) return line;
    std::size_t size = 0;
    for (std::size_t at = 0; at < line.size() && size < room.size(); ++at) {
        if (line[at] == escape) {
            at += 1;
            while (at < line.size() && !(line[at] >= 'A' && line[at] <= 'z' && line[at] != '[')) ++at;
        } else {
            room[size++] = line[at];
        }
    }
    return trimmed({room.data(), size});
}

/// More than any line about a frame takes.
constexpr std::size_t colour_room = 1024;

enum class FrameType { nmea2000, foreign, bad };

/// Three digits are an 11-bit identifier, eight one of 29 bits or, with bit 29, an error frame.
FrameType read_frame_identifier(std::string_view text, std::uint32_t& identifier, Problem& problem) {
    constexpr std::size_t short_digits = 3;
    constexpr std::uint32_t error_flag = 0x20000000;
    if (text.size() == short_digits && parse_hex(text, identifier)) return FrameType::foreign;
    if (text.size() == 8 && parse_hex(text, identifier) && (identifier & ~max_identifier) == error_flag) {
        return FrameType::foreign;
    }
    return read_identifier(text, identifier, problem) ? FrameType::nmea2000 : FrameType::bad;
}

/// Reads words of two hexadecimal digits or eight binary ones. Back quotes between them tell that the last
/// byte comes first.
bool read_printed_bytes(std::string_view text, N2KMsg& msg, Problem& problem) {
    constexpr std::size_t binary_digits = 8;
    const auto is_separator = [](char c) { return is_blank(c) || c == '`'; };
    unsigned count = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (is_separator(text[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < text.size() && !is_separator(text[end])) ++end;
        const std::string_view word = text.substr(at, end - at);
        std::uint32_t value = 0;
        if (word.size() == binary_digits && word.find_first_not_of("01") == std::string_view::npos) {
            for (const char c : word) value = value * 2 + static_cast<unsigned>(c - '0');
        } else if (word.size() != 2 || !parse_hex(word, value)) {
            describe_bad_byte(problem, count + 1, word);
            return false;
        }
        if (count == max_frame_bytes) {
            describe(problem, "more than ", max_frame_bytes, " bytes given");
            return false;
        }
        msg.data[count++] = static_cast<std::uint8_t>(value);
        at = end;
    }
    if (text.find('`') != std::string_view::npos) std::reverse(msg.data, msg.data + count);
    msg.length = static_cast<std::uint16_t>(count);
    return true;
}

/// The bytes without the picture of them as text, which stands in quotes behind a blank.
std::string_view without_picture(std::string_view data) {
    for (std::size_t at = 0; at < data.size(); ++at) {
        if ((data[at] == '\'' || data[at] == '`') && (at == 0 || is_blank(data[at - 1])))
            return data.substr(0, at);
    }
    return data;
}

LineResult read_spaced(const Shape& shape, bool is_code, N2KMsg& msg, Problem& problem) {
    if (shape.data.starts_with("remote request")) return LineResult::foreign;
    if (!read_printed_bytes(without_picture(shape.data), msg, problem)) return LineResult::problem;
    unsigned announced = hex_digit(shape.length[0]);
    if (is_code) announced = std::min(announced, max_frame_bytes);
    if (announced > max_frame_bytes) {
        describe(problem, "data length ", announced, " is above ", max_frame_bytes);
        return LineResult::problem;
    }
    if (announced != msg.length) {
        describe(problem, announced, " bytes announced, ", msg.length, " given");
        return LineResult::problem;
    }
    return LineResult::record;
}

/// Reads `0102`, `01.02`, and behind eight bytes `_C`, the length code that was sent for them.
LineResult read_packed(const Shape& shape, N2KMsg& msg, Problem& problem) {
    const std::size_t size = std::min(shape.data.find_first_of(" \t"), shape.data.size());
    std::string_view bytes = shape.data.substr(0, size);
    const std::string_view direction = trimmed(shape.data.substr(size));
    if (bytes.starts_with('R')) return LineResult::foreign;
    if (!direction.empty() && direction != "R" && direction != "T") {
        describe(problem, quoted(direction), " follows the data");
        return LineResult::problem;
    }
    if (bytes.size() >= 2 && bytes[bytes.size() - 2] == '_') bytes.remove_suffix(2);
    char joined[3 * max_frame_bytes];
    if (bytes.size() < sizeof joined && bytes.find('.') != std::string_view::npos) {
        const char* const end =
            std::copy_if(bytes.begin(), bytes.end(), joined, [](char c) { return c != '.'; });
        bytes = {joined, static_cast<std::size_t>(end - joined)};
    }
    return read_packed_bytes(bytes, max_frame_bytes, msg, problem) ? LineResult::record : LineResult::problem;
}

/// Number of blanks at `p`, which has eight characters.
unsigned size_of_blanks(const char* p) {
    constexpr std::uint64_t blanks = 0x2020202020202020;
    return static_cast<unsigned>(std::countr_zero(characters_at<std::uint64_t>(p) ^ blanks)) / 8;
}

/// Goes to the very end of a line that ends at `p`, perhaps behind a blank, or else gives null. `p` has three
/// characters.
const char* line_end(const char* p) {
    if (*p == ' ') ++p;
    if (*p == '\r') ++p;
    return *p == '\n' ? p : nullptr;
}

/// Reads the bytes of a frame, `stride` characters apart.
template <unsigned stride>
bool read_usual_data(const char* p, unsigned count, N2KMsg& msg) {
    std::uint8_t data[max_frame_bytes] = {};
    if (!read_hex_bytes<stride>(p, count, data)) return false;
    std::memcpy(msg.data, data, sizeof data);
    msg.length = static_cast<std::uint16_t>(count);
    return true;
}

/// Reads `00 FC` up to the end of the line, which is returned, or null.
const char* read_usual_spaced_data(const char* p, unsigned count, N2KMsg& msg) {
    if (count == 0 || count > max_frame_bytes) return nullptr;
    const char* const end = line_end(p + 3 * count - 1);
    if (end == nullptr || !lead_pairs(' ', p - 1, count) || !read_usual_data<3>(p, count, msg))
        return nullptr;
    return end;
}

/// The same of `00FC`.
const char* read_usual_packed_data(const char* p, N2KMsg& msg) {
    unsigned count = max_frame_bytes;  // as most have
    const char* end = line_end(p + 2 * count);
    if (end == nullptr) {
        for (count = 0; count < max_frame_bytes && end == nullptr; ++count) end = line_end(p + 2 * count);
        if (end == nullptr) return nullptr;
        --count;
    }
    return read_usual_data<2>(p, count, msg) ? end : nullptr;
}

}  // namespace

bool CandumpFormat::resembles(std::string_view line) {
    char room[colour_room];
    line = without_colours(line, room);
    const Shape shape = shape_of(line);
    std::uint32_t identifier = 0;
    return shape.kind != Shape::Kind::none && shape.identifier.size() >= 3 &&
           parse_hex(shape.identifier, identifier);
}

bool CandumpFormat::take_time(std::string_view& line, RecordTime& time, Problem& problem) {
    time = {};
    if (line[0] != '(') return true;
    const std::size_t close = line.find(')');
    if (close == std::string_view::npos) {
        describe(problem, "the parenthesis of the time is not closed");
        return false;
    }
    const std::string_view text = trimmed(line.substr(1, close - 1));
    line.remove_prefix(close + 1);
    if (text.find(':') == std::string_view::npos) {
        if (parse_seconds(text, time)) {
            if (counting_ == Counting::from_last_line && time.origin == RecordTime::Origin::start)
                time = later({since_start_, {}}, time.nanoseconds), since_start_ = time.nanoseconds;
            return true;
        }
        describe(problem, "time ", quoted(text), " is not a number of seconds");
        return false;
    }
    auto parsed = timestamps_.parse(text);
    if (!parsed) {
        describe(problem, "time ", quoted(text), ": ", parsed.error());
        return false;
    }
    time = *parsed;
    return true;
}

namespace {

/// The seconds at the beginning of a line since whatever start, or nothing.
std::optional<std::int64_t> seconds_since_start(std::string_view line) {
    char room[colour_room];
    line = without_colours(line, room);
    RecordTime time;
    if (line.empty() || line[0] != '(' || !parse_seconds(line.substr(1, line.find(')') - 1), time) ||
        time.origin != RecordTime::Origin::start) {
        return std::nullopt;
    }
    return time.nanoseconds;
}

}  // namespace

/// Both ways of counting begin with a line at 0.
bool CandumpFormat::depends_on_later(std::string_view line) {
    if (counting_ == Counting::unknown && resembles(line) && seconds_since_start(line) != 0) settle();
    return counting_ == Counting::unknown && resembles(line);
}

void CandumpFormat::foresee(std::string_view line) {
    constexpr unsigned most_lines = 32;
    const auto seconds = seconds_since_start(line);
    if (!seconds) return;
    if (*seconds < last_seen_) {
        counting_ = Counting::from_last_line;
    } else if (++lines_seen_ == most_lines) {
        settle();
    }
    last_seen_ = *seconds;
}

LineResult CandumpFormat::read(std::string_view line, Record& record, Problem& problem) {
    char room[colour_room];
    line = without_colours(line, room);
    if (line.empty() || line.starts_with("interface = ")) return LineResult::nothing;  // an old heading
    if (line.starts_with(drop_mark)) {
        std::string_view rest = line.substr(drop_mark.size());
        std::uint32_t count = 0;
        if (!parse_number(take_word(rest), UINT32_MAX, count)) {
            describe(problem, quoted(line), " tells no number of frames");
            return LineResult::problem;
        }
        dropped_frames_ += count;
        return LineResult::nothing;
    }
    const bool timed = line[0] == '(';
    if (!take_time(line, record.time, problem)) return LineResult::problem;
    const Shape shape = shape_of(line);
    if (shape.kind == Shape::Kind::none) {
        if (explains_error(line)) return LineResult::nothing;
        describe(problem, quoted(trimmed(line)), " has neither [length] nor # before its data");
        return LineResult::problem;
    }
    if (shape.kind == Shape::Kind::other_frame) return LineResult::foreign;
    std::uint32_t identifier = 0;
    switch (read_frame_identifier(shape.identifier, identifier, problem)) {
        case FrameType::bad: return LineResult::problem;
        case FrameType::foreign: return LineResult::foreign;
        case FrameType::nmea2000: break;
    }
    record.kind = Record::Kind::frame;
    set_header(record.msg, identifier);
    const auto part = [](const char* begin, const char* end) {
        return std::string_view(begin, static_cast<std::size_t>(end - begin));
    };
    const std::string_view before = part(line.data(), shape.identifier.data());
    const std::string_view behind =
        part(shape.identifier.data() + shape.identifier.size(), shape.data.data());
    const bool spaced = shape.kind == Shape::Kind::spaced;
    const bool is_code = spaced && behind.find('{') != std::string_view::npos;
    const LineResult result =
        spaced ? read_spaced(shape, is_code, record.msg, problem) : read_packed(shape, record.msg, problem);
    if (result == LineResult::record) {
        std::string_view rest = before;
        const std::string_view interface = take_word(rest);
        record.bus = interface.starts_with("<0x") ? 0 : buses_.number_of(interface);
        // A code stands for lengths, and times may count from the line before: not so in usual lines.
        if (is_code || counting_ != Counting::from_one_start) return result;
        Layout& layout = layouts_[next_layout_++ % layouts_.size()];
        layout.learn(timed, before, behind);
        layout.bus = record.bus;
    }
    return result;
}

/// Takes what the lines of a recording have in common from one of them.
void CandumpFormat::Layout::learn(bool has_time, std::string_view before_identifier,
                                  std::string_view behind_identifier) {
    known = before_identifier.size() <= before.room && behind_identifier.size() <= behind.room;
    if (!known) return;
    timed = has_time;
    before.set(before_identifier);
    behind.set(behind_identifier);
    const std::size_t bracket = behind_identifier.find('[');
    spaced = bracket != std::string_view::npos;
    if (spaced) {
        length_at = static_cast<unsigned>(bracket) + 1;
        behind.allow_any(length_at);
    }
}

/// Seconds, or date and time as the last line's minute has them, in parentheses. Null for anything else.
const char* CandumpFormat::read_usual_time(const char* p, RecordTime& time) const {
    constexpr std::size_t seconds_size = sizeof "(1502979132.106111)" - 1;
    if (read_usual_seconds(p + 1, time)) return p + seconds_size;
    p = timestamps_.read_usual(p + 1, time);
    return p != nullptr && *p == ')' ? p + 1 : nullptr;
}

const char* CandumpFormat::read_usual(std::string_view text, Record& record) const {
    constexpr std::size_t room = sizeof "        (2017-08-17 14:32:12.106111222Z)0123456789ABCDEF09F8027F   [8]  "
                                        "00 11 22 33 44 55 66 77 \r\n" -
                                 1;
    if (text.size() < room) return nullptr;
    const char* p = text.data() + size_of_blanks(text.data());
    record.time = {};
    const bool timed = *p == '(';
    if (timed) {
        p = read_usual_time(p, record.time);
        if (p == nullptr) return nullptr;
    }
    const auto layout = std::find_if(layouts_.begin(), layouts_.end(), [&](const Layout& known) {
        return known.known && known.timed == timed && known.before.matches(p);
    });
    if (layout == layouts_.end()) return nullptr;
    p += layout->before.size();
    constexpr std::size_t identifier_size = 8;
    std::uint32_t identifier = 0;
    if (!read_hex_number(p, identifier) || identifier > max_identifier) return nullptr;
    p += identifier_size;
    if (!layout->behind.matches(p)) return nullptr;
    const auto count = static_cast<unsigned>(p[layout->length_at] - '0');
    p += layout->behind.size();
    const char* const end =
        layout->spaced ? read_usual_spaced_data(p, count, record.msg) : read_usual_packed_data(p, record.msg);
    if (end == nullptr) return nullptr;
    record.kind = Record::Kind::frame;
    record.bus = layout->bus;
    set_header(record.msg, identifier);
    return end;
}

}  // namespace vistel
