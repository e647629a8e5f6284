#include "readers/scan.h"

#include <charconv>

#include "can/identifier.h"
#include "text/characters.h"
#include "text/hex.h"
#include "text/quotes.h"

namespace vistel {

bool read_spaced_bytes(std::string_view text, unsigned most, N2KMsg& msg, Problem& problem) {
    unsigned count = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (is_blank(text[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < text.size() && !is_blank(text[end])) ++end;
        std::uint32_t value = 0;
        if (end - at != 2 || !parse_hex(text.substr(at, 2), value)) {
            describe_bad_byte(problem, count + 1, text.substr(at, end - at));
            return false;
        }
        if (count == most) {
            describe(problem, "more than ", most, " bytes given");
            return false;
        }
        msg.data[count++] = static_cast<std::uint8_t>(value);
        at = end;
    }
    msg.length = static_cast<std::uint16_t>(count);
    return true;
}

bool read_packed_bytes(std::string_view text, unsigned most, N2KMsg& msg, Problem& problem) {
    const std::size_t count = text.size() / 2;
    if (count > most) {
        describe(problem, count, " bytes given, at most ", most, " are possible");
        return false;
    }
    const bool good = read_hex_bytes<2>(text.data(), static_cast<unsigned>(count), msg.data);
    if (!good || text.size() % 2 != 0) {
        std::size_t i = 0;
        while (i < count && hex_pair(text.data() + 2 * i) < not_hex) ++i;
        describe_bad_byte(problem, static_cast<unsigned>(i) + 1, text.substr(2 * i, 2));
        return false;
    }
    msg.length = static_cast<std::uint16_t>(count);
    return true;
}

std::string_view take_cell(std::string_view& text) {
    const std::size_t comma = text.find(',');
    const std::string_view cell = trimmed(text.substr(0, comma));
    text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
    return cell;
}

bool parse_number(std::string_view text, unsigned base, std::uint32_t most, std::uint32_t& value) {
    std::uint64_t result = 0;
    if (text.empty()) return false;
    for (const char c : text) {
        const unsigned digit = hex_digit(c);
        if (digit >= base) return false;
        result = result * base + digit;
        if (result > most) return false;
    }
    value = static_cast<std::uint32_t>(result);
    return true;
}

bool parse_number(std::string_view text, std::uint32_t most, std::uint32_t& value) {
    return parse_number(text, 10, most, value);
}

bool read_number(std::string_view text, std::string_view name, std::uint32_t most, std::uint32_t& value,
                 Problem& problem) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) {
        describe(problem, name, " ", quoted(text), " is not a number");
        return false;
    }
    if (error != std::errc{} || value > most) {
        describe(problem, name, " ", text.substr(0, 32), " is above ", most);
        return false;
    }
    return true;
}

bool read_frame_length(std::string_view text, unsigned& length, Problem& problem) {
    std::uint32_t value = 0;
    if (!read_number(text, "length", max_frame_bytes, value, problem)) return false;
    length = value;
    return true;
}

bool take_bytes(std::string_view& text, unsigned count, unsigned base, N2KMsg& msg, Problem& problem) {
    constexpr std::uint32_t most = 255;
    for (unsigned i = 0; i < count; ++i) {
        const std::string_view word = take_word(text);
        std::uint32_t value = 0;
        if (word.empty()) {
            describe(problem, count, " bytes announced, ", i, " given");
            return false;
        }
        if (!parse_number(word, base, most, value) || word.size() > 3) {
            describe(problem, "byte ", i + 1, " ", quoted(word), " is no number up to ",
                     base == 16 ? "FF" : "255");
            return false;
        }
        msg.data[i] = static_cast<std::uint8_t>(value);
    }
    msg.length = static_cast<std::uint16_t>(count);
    return true;
}

LineResult read_frame_bytes(std::string_view text, unsigned length, unsigned base, N2KMsg& msg,
                            Problem& problem) {
    if (!take_bytes(text, length, base, msg, problem)) return LineResult::problem;
    if (text.empty()) return LineResult::record;
    describe(problem, length, " bytes announced, ", quoted(text), " follows them");
    return LineResult::problem;
}

void describe_bad_byte(Problem& problem, unsigned number, std::string_view text) {
    describe(problem, "byte ", number, " ", quoted(text), " is not hexadecimal");
}

bool read_hex_field(std::string_view text, const char* name, unsigned digits, std::uint32_t& value,
                    Problem& problem) {
    if (text.size() == digits && parse_hex(text, value)) return true;
    describe(problem, name, " ", quoted(text), " is not ", digits, " hexadecimal digits");
    return false;
}

bool read_identifier(std::string_view text, std::uint32_t& identifier, Problem& problem) {
    if (text.size() != 8 || !parse_hex(text, identifier)) {
        describe(problem, "identifier ", quoted(text), " is not 8 hexadecimal digits");
        return false;
    }
    if (identifier > max_identifier) {
        describe(problem, "identifier ", quoted(text), " has more than 29 bits");
        return false;
    }
    return true;
}

bool read_number_as_identifier(std::string_view text, unsigned base, std::uint32_t& identifier,
                               Problem& problem) {
    const std::string_view digits = base == 16 && text.starts_with("0x") ? text.substr(2) : text;
    if (parse_number(digits, base, max_identifier, identifier)) return true;
    describe(problem, "identifier ", quoted(text), " is no number of 29 bits");
    return false;
}

void set_frame(Record& record, std::uint32_t identifier) {
    record.kind = Record::Kind::frame;
    set_header(record.msg, identifier);
}

}  // namespace vistel
