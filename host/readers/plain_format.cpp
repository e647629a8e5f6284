#include "readers/plain_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/characters.h"
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
inline bool read_number(const char*& p, const char* end, const HeaderField& field, std::uint32_t& value,
                        Problem& problem) {
    constexpr std::ptrdiff_t most_digits = 9;
    const char* const start = p;
    std::uint32_t result = 0;
    while (p != end && is_digit(*p) && p - start < most_digits) {
        result = result * 10 + static_cast<std::uint32_t>(*p++ - '0');
    }
    if (p != start && (p == end || *p == ',') && result <= field.most) [[likely]] {
        value = result;
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
void describe_payload(Problem& problem, std::string_view text, unsigned announced) {
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

/// Reads `,hh` for each of `count` bytes. The loop has no exit of its own: bad bytes are rare, and what is
/// wrong is found out afterwards.
bool read_payload(std::string_view text, unsigned count, N2KMsg& msg, Problem& problem) {
    if (text.size() == 3 * std::size_t{count}) [[likely]] {
        const char* p = text.data();
        unsigned bad = 0;
        for (unsigned i = 0; i < count; ++i, p += 3) {
            const unsigned high = hex_digit(p[1]), low = hex_digit(p[2]);
            bad |= ((high | low) & 0xF0) | static_cast<unsigned char>(p[0] ^ ',');
            msg.data[i] = static_cast<std::uint8_t>(high << 4 | low);
        }
        if (bad == 0) [[likely]] {
            msg.length = static_cast<std::uint16_t>(count);
            return true;
        }
    } else if (count == 0 && text == ",") {
        msg.length = 0;
        return true;
    }
    describe_payload(problem, text, count);
    return false;
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

LineResult PlainFormat::read(std::string_view line, Record& record, Problem& problem) {
    const std::size_t comma = line.find(',');
    if (comma == std::string_view::npos) {
        describe(problem, quoted(line), " is not timestamp,priority,PGN,source,destination,length,bytes");
        return LineResult::problem;
    }
    if (comma == 0) {
        record.time = {};
    } else if (const char* why = ""; !timestamps_.parse(line.substr(0, comma), record.time, why)) {
        describe(problem, "timestamp ", quoted(line.substr(0, comma)), ": ", why);
        return LineResult::problem;
    }

    // Gateways log what they say of themselves under numbers above those of any PGN.
    constexpr std::uint32_t max_gateway_number = max_pgn + 256;
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
    const std::string_view payload(p, static_cast<std::size_t>(end - p));
    if (!read_payload(payload, header[4], msg, problem)) return LineResult::problem;

    if (msg.length > max_frame_bytes) whole_messages_ = true;
    record.kind = whole_messages_ ? Record::Kind::message : Record::Kind::frame;
    return LineResult::record;
}

void PlainFormat::comment(std::string_view line) {
    line.remove_prefix(1);
    if (trimmed(line) == "format=FAST") whole_messages_ = true;
}

}  // namespace vistel
