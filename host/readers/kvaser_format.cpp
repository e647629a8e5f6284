#include "readers/kvaser_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "readers/timestamp.h"
#include "text/characters.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {

bool KvaserFormat::resembles(std::string_view line) {
    return take_word(line) == "Chn" && take_word(line) == "Identifier" && take_word(line) == "Flg";
}

LineResult KvaserFormat::read(std::string_view line, Record& record, Problem& problem) {
    std::string_view rest = line;
    const std::string_view channel = take_word(rest);
    std::uint32_t number = 0, identifier = 0;
    if (!parse_number(channel, 255, number)) return LineResult::nothing;  // headings
    const std::string_view id = take_word(rest);
    std::string_view flags, length_text = take_word(rest);
    if (!length_text.empty() && !is_digit(length_text[0])) {
        flags = length_text;
        length_text = take_word(rest);
    }
    unsigned length = 0;
    if (flags.find('X') == std::string_view::npos || flags.find_first_of("RE") != std::string_view::npos)
        return LineResult::foreign;
    constexpr std::size_t most_hex_digits = 8;
    const bool has_letter = std::any_of(id.begin(), id.end(), [](char c) { return !is_digit(c); });
    if (has_letter || id.size() > most_hex_digits) base_ = has_letter ? 16 : 10;
    if (!read_number_as_identifier(id, base_, identifier, problem) ||
        !read_frame_length(length_text, length, problem)) {
        return LineResult::problem;
    }
    record.bus = buses_.number_of(channel);
    set_frame(record, identifier);
    if (!take_bytes(rest, length, base_, record.msg, problem)) return LineResult::problem;
    const std::string_view time = take_word(rest);
    if (!parse_seconds(time, record.time)) {
        describe(problem, "time ", quoted(time), " is not a number of seconds");
        return LineResult::problem;
    }
    return LineResult::record;
}

}  // namespace vistel
