#include "readers/actisense_ascii_format.h"

#include <algorithm>
#include <string>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/characters.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

constexpr std::size_t clock_digits = 6;

constexpr char message_letter = 'A';

bool is_letter_and_clock(std::string_view word) {
    return word.size() > clock_digits && word[0] >= 'A' && word[0] <= 'Z' &&
           std::all_of(word.begin() + 1, word.begin() + 1 + clock_digits, is_digit);
}

}  // namespace

bool ActisenseAsciiFormat::resembles(std::string_view line) {
    return line.starts_with(message_letter) && is_letter_and_clock(take_word(line));
}

LineResult ActisenseAsciiFormat::read(std::string_view line, Record& record, Problem& problem) {
    const std::string_view time = take_word(line);
    constexpr std::size_t most_time = sizeof("Ahhmmss.123456789") - 1;
    if (is_letter_and_clock(time) && time[0] != message_letter) return LineResult::nothing;
    if (!is_letter_and_clock(time) || time.size() > most_time) {
        describe(problem, "time ", quoted(time), " is not Ahhmmss.mmm");
        return LineResult::problem;
    }
    char clock[most_time + 2] = {time[1], time[2], ':', time[3], time[4], ':', time[5], time[6]};
    const std::size_t clock_size = 8 + time.substr(7).copy(clock + 8, most_time - 7);
    auto parsed = timestamps_.parse({clock, clock_size});
    if (!parsed) {
        describe(problem, "time ", quoted(time), ": ", parsed.error());
        return LineResult::problem;
    }
    record.time = *parsed;

    const std::string_view addresses = take_word(line);
    std::uint32_t header = 0;
    if (addresses.size() != 5 || !parse_hex(addresses, header)) {
        describe(problem, "addresses and priority ", quoted(addresses), " are not 5 hexadecimal digits");
        return LineResult::problem;
    }
    const std::string_view pgn_text = take_word(line);
    N2KMsg& msg = record.msg;
    if (!parse_hex(pgn_text, msg.pgn)) {
        describe(problem, "PGN ", quoted(pgn_text), " is not hexadecimal");
        return LineResult::problem;
    }
    if (msg.pgn > max_pgn) {
        describe(problem, "PGN ", msg.pgn, " is above ", max_pgn);
        return LineResult::problem;
    }
    msg.source = static_cast<std::uint8_t>(header >> 12);
    msg.destination = static_cast<std::uint8_t>(header >> 4);
    msg.priority = static_cast<std::uint8_t>(header & 7);
    record.kind = Record::Kind::message;
    return read_packed_bytes(take_word(line), N2K_MAX_PAYLOAD, msg, problem) ? LineResult::record
                                                                             : LineResult::problem;
}

}  // namespace vistel
