#include "readers/plain_format.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "can/identifier.h"
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

/// Reads the decimal number at `p` up to the next comma, where `p` is left, or the end.
bool read_number(const char*& p, const char* end, const HeaderField& field, std::uint32_t& value,
                 Problem& problem) {
    constexpr std::ptrdiff_t most_digits = 10;  // of 32 bits
    const char* const start = p;
    std::uint64_t result = 0;
    while (p != end && is_digit(*p) && p - start < most_digits) {
        result = result * 10 + static_cast<unsigned>(*p++ - '0');
    }
    if (p != start && (p == end || *p == ',') && result <= field.most) [[likely]] {
        value = static_cast<std::uint32_t>(result);
        return true;
    }
    const std::string_view text(start, static_cast<std::size_t>(std::find(start, end, ',') - start));
    if (text.empty()) {
        describe(problem, field.name, " is missing");
    } else if (std::all_of(text.begin(), text.end(), is_digit)) {
        describe(problem, field.name, " ", text.substr(0, 32), " is above ", field.most);
    } else {
        describe(problem, field.name, " ", quoted(text), " is not a number");
    }
    return false;
}

/// Explains why `text`, which should be `,hh` once for each of `announced` bytes, is not.
[[gnu::noinline]] void describe_payload(Problem& problem, std::string_view text, unsigned announced) {
    const auto given = static_cast<unsigned>(std::count(text.begin(), text.end(), ','));
    if (given != announced) {
        describe(problem, announced, " bytes announced, ", given, " given");
        return;
    }
    for (unsigned number = 1; !text.empty(); ++number) {
        text.remove_prefix(1);
        const std::string_view byte = text.substr(0, text.find(','));
        std::uint32_t value = 0;
        if (byte.size() != 2 || !parse_hex(byte, value)) {
            describe_bad_byte(problem, number, byte);
            return;
        }
        text.remove_prefix(byte.size());
    }
}

/// Reads `,hh` for each of `count` bytes, as `text` should have them.
bool read_payload(std::string_view text, unsigned count, N2KMsg& msg, Problem& problem) {
    const bool good =
        text.size() == 3 * std::size_t{count}
            ? lead_pairs(',', text.data(), count) && read_hex_bytes<3>(text.data() + 1, count, msg.data)
            : count == 0 && text == ",";
    if (!good) [[unlikely]] {
        describe_payload(problem, text, count);
        return false;
    }
    return true;
}

}  // namespace

bool PlainFormat::resembles(std::string_view line) {
    constexpr auto header_commas = 5;
    if (std::count(line.begin(), line.end(), ',') < header_commas) return false;
    const std::size_t comma = line.find(',');
    const std::string_view time = line.substr(0, comma);
    const bool timed = !time.empty() && is_digit(time[0]) && time.find(':') != std::string_view::npos;
    return (timed || time.empty()) && is_digit(line[comma + 1]);
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
    constexpr std::size_t room = TimestampParser::usual_room + 2 * Header::room;
    if (text.size() < room) return nullptr;
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

/// Reads any header. `payload` begins with the comma, or is empty.
LineResult PlainFormat::read_header(std::string_view line, Record& record, unsigned& length,
                                    std::string_view& payload, Problem& problem) {
    const std::size_t comma = line.find(',');
    if (comma == std::string_view::npos) {
        describe(problem, quoted(line), " is not timestamp,priority,PGN,source,destination,length,bytes");
        return LineResult::problem;
    }
    if (comma == 0) {
        record.time = {};
    } else {
        auto parsed = timestamps_.parse(line.substr(0, comma));
        if (!parsed) {
            describe(problem, "timestamp ", quoted(line.substr(0, comma)), ": ", parsed.error());
            return LineResult::problem;
        }
        record.time = *parsed;
    }

    // Gateways log what they say of themselves under numbers of their own, above those of any PGN.
    constexpr std::uint32_t max_gateway_number = std::numeric_limits<std::uint32_t>::max();
    static constexpr HeaderField fields[] = {{"priority", 7},
                                             {"PGN", max_gateway_number},
                                             {"source", 255},
                                             {"destination", 255},
                                             {"length", N2K_MAX_PAYLOAD}};
    std::uint32_t header[std::size(fields)];
    const char* p = line.data() + comma;
    const char* const end = line.data() + line.size();
    for (std::size_t i = 0; i < std::size(fields); ++i) {
        if (p != end) ++p;
        if (!read_number(p, end, fields[i], header[i], problem)) return LineResult::problem;
    }
    N2KMsg& msg = record.msg;
    msg.priority = static_cast<std::uint8_t>(header[0]);
    msg.pgn = header[1];
    msg.source = static_cast<std::uint8_t>(header[2]);
    msg.destination = static_cast<std::uint8_t>(header[3]);
    if (msg.pgn > max_pgn) return LineResult::foreign;
    length = header[4];
    payload = {p, static_cast<std::size_t>(end - p)};
    return LineResult::record;
}

LineResult PlainFormat::read(std::string_view line, Record& record, Problem& problem) {
    unsigned length = 0;
    std::string_view payload;
    const LineResult result = read_header(line, record, length, payload, problem);
    if (result != LineResult::record) return result;
    if (!read_payload(payload, length, record.msg, problem)) return LineResult::problem;
    finish(record, length);
    return LineResult::record;
}

void PlainFormat::finish(Record& record, unsigned length) {
    record.msg.length = static_cast<std::uint16_t>(length);
    if (length > max_frame_bytes) whole_messages_ = true;
    record.kind = whole_messages_ ? Record::Kind::message : Record::Kind::frame;
}

void PlainFormat::comment(std::string_view line) {
    line.remove_prefix(1);
    if (trimmed(line) == "format=FAST") whole_messages_ = true;
}

}  // namespace vistel
