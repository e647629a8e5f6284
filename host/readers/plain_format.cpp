#include "readers/plain_format.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "can/fast_packet.h"
#include "can/identifier.h"
#include "can/transport_protocol.h"
#include "pgn_vistel/core/catalogue.h"
#include "readers/scan.h"
#include "text/characters.h"
#include "text/fixed_digits.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

struct HeaderField {
    const char* name;
    std::uint32_t most;
};

// Gateways log what they say of themselves under numbers of their own, above those of any PGN.
constexpr HeaderField priority_field{"priority", 7}, source_field{"source", 255},
    pgn_field{"PGN", std::numeric_limits<std::uint32_t>::max()}, destination_field{"destination", 255},
    length_field{"length", N2K_MAX_PAYLOAD};
constexpr unsigned header_fields = 5;
using HeaderFields = HeaderField[header_fields];
constexpr HeaderFields priority_first{priority_field, pgn_field, source_field, destination_field,
                                      length_field};
constexpr HeaderFields source_first{source_field, pgn_field, priority_field, destination_field, length_field};
constexpr HeaderFields either_first{source_field, pgn_field, source_field, destination_field, length_field};

/// The numbers of a header in the order in which they stand.
struct Numbers {
    std::uint32_t number[header_fields];
    std::string_view payload;  ///< begins with the comma, or is empty

    std::uint32_t pgn() const { return number[1]; }
    std::uint32_t length() const { return number[4]; }
};

void skip_blanks(const char*& p, const char* end) {
    while (p != end && is_blank(*p)) ++p;
}

/// Reads the decimal number at `p` up to the next comma, where `p` is left, or the end.
bool read_number(const char*& p, const char* end, const HeaderField& field, std::uint32_t& value,
                 Problem& problem) {
    constexpr std::ptrdiff_t most_digits = 10;  // of 32 bits
    skip_blanks(p, end);
    const char* const start = p;
    std::uint64_t result = 0;
    while (p != end && is_digit(*p) && p - start < most_digits) {
        result = result * 10 + static_cast<unsigned>(*p++ - '0');
    }
    const bool has_digits = p != start;
    skip_blanks(p, end);
    if (has_digits && (p == end || *p == ',') && result <= field.most) [[likely]] {
        value = static_cast<std::uint32_t>(result);
        return true;
    }
    const std::string_view text =
        trimmed({start, static_cast<std::size_t>(std::find(start, end, ',') - start)});
    if (text.empty()) {
        describe(problem, field.name, " is missing");
    } else if (std::all_of(text.begin(), text.end(), is_digit)) {
        describe(problem, field.name, " ", text.substr(0, 32), " is above ", field.most);
    } else {
        describe(problem, field.name, " ", quoted(text), " is not a number");
    }
    return false;
}

/// Reads the numbers of `text`, which begins with the comma behind the time.
bool read_numbers(std::string_view text, const HeaderFields& fields, Numbers& numbers, Problem& problem) {
    const char* p = text.data();
    const char* const end = p + text.size();
    for (unsigned i = 0; i < header_fields; ++i) {
        if (p != end) ++p;
        if (!read_number(p, end, fields[i], numbers.number[i], problem)) return false;
    }
    numbers.payload = {p, static_cast<std::size_t>(end - p)};
    return true;
}

/// Size of the time at the beginning of a line. There may be a comma within it, before its decimals.
std::size_t size_of_time(std::string_view line) {
    const std::size_t comma = line.find(',');
    if (comma == std::string_view::npos || comma == 0) return comma;
    const std::string_view time = line.substr(0, comma);
    if (time.find(':') == std::string_view::npos || time.find('.') != std::string_view::npos) return comma;
    const std::size_t digits_end = line.find(',', comma + 1);
    if (digits_end == std::string_view::npos) return comma;
    std::string_view digits = line.substr(comma + 1, digits_end - comma - 1);
    if (digits.ends_with('Z')) digits.remove_suffix(1);
    // No number of three digits or more stands before a number of one: behind a source comes the PGN.
    const bool are_decimals = digits.size() >= 3 && std::all_of(digits.begin(), digits.end(), is_digit) &&
                              digits_end + 2 < line.size() && is_digit(line[digits_end + 1]) &&
                              line[digits_end + 2] == ',';
    return are_decimals ? digits_end : comma;
}

/// Reads `,hh` or `,h` for each of `count` bytes, with blanks at will. False where there are others.
bool read_loose_payload(std::string_view text, unsigned count, N2KMsg& msg, Problem& problem) {
    const auto given = static_cast<unsigned>(std::count(text.begin(), text.end(), ','));
    if (given != count) {
        describe(problem, count, " bytes announced, ", given, " given");
        return false;
    }
    for (unsigned number = 0; number < count; ++number) {
        text.remove_prefix(1);
        const std::size_t size = std::min(text.find(','), text.size());
        const std::string_view byte = trimmed(text.substr(0, size));
        std::uint32_t value = 0;
        if (byte.size() > 2 || !parse_hex(byte, value)) {
            describe_bad_byte(problem, number + 1, byte);
            return false;
        }
        msg.data[number] = static_cast<std::uint8_t>(value);
        text.remove_prefix(size);
    }
    return true;
}

bool read_payload(std::string_view text, unsigned count, N2KMsg& msg, Problem& problem) {
    if (text.size() == 3 * std::size_t{count} && lead_pairs(',', text.data(), count) &&
        read_hex_bytes<3>(text.data() + 1, count, msg.data)) {
        return true;
    }
    return (count == 0 && text == ",") || read_loose_payload(text, count, msg, problem);
}

bool equals_in_any_case(std::string_view text, std::string_view upper) {
    return std::equal(text.begin(), text.end(), upper.begin(), upper.end(), [](char a, char b) {
        return (a >= 'a' && a <= 'z' ? static_cast<char>(a - 'a' + 'A') : a) == b;
    });
}

}  // namespace

bool PlainFormat::resembles(std::string_view line) {
    constexpr auto header_commas = 5;
    if (std::count(line.begin(), line.end(), ',') < header_commas) return false;
    const std::size_t comma = line.find(',');
    const std::string_view time = line.substr(0, comma);
    const bool timed = !time.empty() && is_digit(time[0]) && time.find(':') != std::string_view::npos &&
                       time.find_first_not_of("0123456789:-.+TtZz \t") == std::string_view::npos;
    const std::size_t number = line.find_first_not_of(" \t", comma + 1);
    return (timed || time.empty()) && number != std::string_view::npos && is_digit(line[number]);
}

/// Reads numbers without a fault. `p` has `room` characters, and as many again.
bool PlainFormat::Header::read(const char* p) {
    const char* const start = p;
    const auto first = static_cast<unsigned>(*p - '0');
    if (first > 7 || p[1] != ',') return false;
    p += 2;
    std::uint32_t number[4];
    if (!take_number_and_comma<std::uint64_t>(p, number[0]) ||
        !take_number_and_comma<std::uint32_t>(p, number[1]) ||
        !take_number_and_comma<std::uint32_t>(p, number[2]) ||
        !take_number_and_comma<std::uint64_t>(p, number[3])) {
        return false;
    }
    if (number[0] > max_pgn || number[1] > 255 || number[2] > 255 || number[3] > N2K_MAX_PAYLOAD)
        return false;
    const auto size = static_cast<std::size_t>(p - start);
    if (size > characters.room) return false;
    characters.set({start, size});
    priority = static_cast<std::uint8_t>(first);
    pgn = number[0];
    source = static_cast<std::uint8_t>(number[1]);
    destination = static_cast<std::uint8_t>(number[2]);
    length = static_cast<std::uint16_t>(number[3]);
    return true;
}

/// The place of the header that begins at `p`, by its PGN and what stands around it.
std::size_t PlainFormat::place_of(const char* p) {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;  // 2 to the 64th by the golden ratio
    return static_cast<std::size_t>(characters_at<std::uint64_t>(p + 2) * multiplier >>
                                    (64 - std::countr_zero(header_places)));
}

const char* PlainFormat::read_usual(std::string_view text, Record& record) {
    if (text.size() < usual_room_) return nullptr;
    const char* p = text.data();
    record.time = {};
    if (*p != ',') {
        p = timestamps_.read_usual(p, record.time);
        if (p == nullptr || *p != ',') return nullptr;
    }
    Header& header = headers_[place_of(++p)];
    if (!header.characters.matches(p) && !header.read(p)) return nullptr;
    const unsigned length = header.length;
    if (length == 0) return nullptr;
    const char* const payload = p + header.characters.size() - 1;
    const std::size_t left = text.size() - static_cast<std::size_t>(payload - text.data());
    const std::size_t size = 3 * std::size_t{length};
    if (left < size + 2) return nullptr;
    const char* const end = payload + size + (payload[size] == '\r' ? 1 : 0);
    if (*end != '\n' || !lead_pairs(',', payload, length)) return nullptr;
    N2KMsg& msg = record.msg;
    if (!read_hex_bytes<3>(payload + 1, length, msg.data)) return nullptr;
    msg.pgn = header.pgn;
    msg.priority = header.priority;
    msg.source = header.source;
    msg.destination = header.destination;
    finish(record, length);
    return end;
}

LineResult PlainFormat::read(std::string_view line, Record& record, Problem& problem) {
    if (is_settled() && order_ == Order::priority_first) usual_room_ = fewest_for_usual;
    const std::size_t time_size = size_of_time(line);
    if (time_size == std::string_view::npos) {
        describe(problem, quoted(line), " is not timestamp,priority,PGN,source,destination,length,bytes");
        return LineResult::problem;
    }
    record.time = {};
    if (time_size > 0) {
        const std::string_view time = trimmed(line.substr(0, time_size));
        auto parsed = timestamps_.parse(time);
        if (!parsed) {
            describe(problem, "timestamp ", quoted(time), ": ", parsed.error());
            return LineResult::problem;
        }
        record.time = *parsed;
    }
    const bool is_source_first = order_ == Order::source_first;
    Numbers numbers;
    if (!read_numbers(line.substr(time_size), is_source_first ? source_first : priority_first, numbers,
                      problem))
        return LineResult::problem;
    N2KMsg& msg = record.msg;
    msg.pgn = numbers.pgn();
    msg.priority = static_cast<std::uint8_t>(numbers.number[is_source_first ? 2 : 0]);
    msg.source = static_cast<std::uint8_t>(numbers.number[is_source_first ? 0 : 2]);
    msg.destination = static_cast<std::uint8_t>(numbers.number[3]);
    if (msg.pgn > max_pgn) return LineResult::foreign;
    if (!read_payload(numbers.payload, numbers.length(), msg, problem)) return LineResult::problem;
    finish(record, numbers.length());
    return LineResult::record;
}

void PlainFormat::finish(Record& record, unsigned length) {
    record.msg.length = static_cast<std::uint16_t>(length);
    const bool is_longer = length > max_frame_bytes;
    if (is_longer && kind_ != Kind::by_size) kind_ = Kind::messages;
    record.kind = is_longer || kind_ == Kind::messages ? Record::Kind::message : Record::Kind::frame;
}

void PlainFormat::set_contents(ContentKind contents) {
    if (contents == ContentKind::messages) kind_ = Kind::messages;
    if (contents == ContentKind::frames) kind_ = Kind::by_size;
    is_told_ = contents != ContentKind::as_it_seems;
}

void PlainFormat::comment(std::string_view line) {
    constexpr std::string_view mark = "FORMAT=";
    line = trimmed(line.substr(1));
    if (is_told_ || !equals_in_any_case(line.substr(0, mark.size()), mark)) return;
    line.remove_prefix(mark.size());
    static constexpr std::string_view messages[] = {
        "FAST", "AIRMAR", "CHETCO", "GARMIN_CSV1", "GARMIN_CSV2", "ACTISENSE_N2K_ASCII", "NAVLINK2"};
    static constexpr std::string_view frames[] = {"PLAIN", "PLAIN_MIX_FAST", "YDWG02"};
    const auto is_line = [line](std::string_view name) { return equals_in_any_case(line, name); };
    if (std::ranges::any_of(messages, is_line)) kind_ = Kind::messages;
    if (std::ranges::any_of(frames, is_line)) kind_ = Kind::by_size;
}

namespace {

/// Messages that a line of this PGN and length may be a piece of.
bool may_be_piece(std::uint32_t pgn, std::uint32_t length) {
    return length <= max_frame_bytes &&
           (pgn == transport_protocol::control_pgn || pgn == transport_protocol::data_pgn ||
            pgn_vistel::core::is_fast_packet(pgn, pgn_vistel::core::Definitions::corrected));
}

bool read_either(std::string_view line, Numbers& numbers) {
    Problem ignored;
    const std::size_t time_size = size_of_time(line);
    return time_size != std::string_view::npos &&
           read_numbers(line.substr(time_size), either_first, numbers, ignored);
}

}  // namespace

/// Takes the order from numbers of which one alone can be a priority.
void PlainFormat::learn_order(std::uint32_t first, std::uint32_t third) {
    constexpr std::uint32_t most = priority_field.most;
    if (order_ != Order::unknown || (first <= most) == (third <= most)) return;
    order_ = first <= most ? Order::priority_first : Order::source_first;
}

bool PlainFormat::depends_on_later(std::string_view line) {
    Numbers numbers;
    if (!read_either(line, numbers)) return false;
    learn_order(numbers.number[0], numbers.number[2]);
    return (order_ == Order::unknown && numbers.length() == max_frame_bytes) ||
           (kind_ == Kind::unknown && may_be_piece(numbers.pgn(), numbers.length()));
}

void PlainFormat::foresee(std::string_view line) {
    constexpr unsigned most_of_either_order = 32;
    Numbers numbers;
    if (!read_either(line, numbers)) return;
    learn_order(numbers.number[0], numbers.number[2]);
    if (order_ == Order::unknown && ++lines_of_either_order_ == most_of_either_order)
        order_ = Order::priority_first;
    if (kind_ != Kind::unknown) return;
    N2KMsg msg;
    Problem ignored;
    if (numbers.length() > max_frame_bytes) {
        kind_ = Kind::messages;
    } else if (may_be_piece(numbers.pgn(), numbers.length()) && numbers.length() > 1 &&
               read_payload(numbers.payload, numbers.length(), msg, ignored)) {
        look_for_pieces({numbers.pgn(), numbers.number[0] << 8 | numbers.number[2], msg.data[0]}, msg.data[1],
                        numbers.length());
    }
}

/// `piece` is the frame that a line may be, of so many bytes, of which the second one is given.
void PlainFormat::look_for_pieces(const Piece& piece, unsigned second_byte, unsigned length) {
    if (fast_packet::number_of(piece.first_byte) == 0) {
        piece_ = piece;
        ++piece_.first_byte;
        bytes_left_ = second_byte > fast_packet::bytes_in_first && length == max_frame_bytes
                          ? second_byte - fast_packet::bytes_in_first
                          : 0;
    } else if (bytes_left_ > 0 && piece == piece_) {
        ++piece_.first_byte;
        bytes_left_ -= std::min(bytes_left_, fast_packet::bytes_in_later);
        if (bytes_left_ == 0) kind_ = Kind::by_size;
    }
}

void PlainFormat::settle() {
    if (order_ == Order::unknown) order_ = Order::priority_first;
    if (kind_ == Kind::unknown) kind_ = Kind::frames;
}

}  // namespace vistel
