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

void describe_bad_byte(Problem& problem, unsigned number, std::string_view text) {
    describe(problem, "byte ", number, " ", quoted(text), " is not hexadecimal");
}

bool read_number(std::string_view text, const char* name, std::uint32_t most, std::uint32_t& value,
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

}  // namespace vistel
