#include "readers/airmar_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {

bool AirmarFormat::resembles(std::string_view line) {
    take_word(line);
    if (take_word(line) != "-") return false;
    std::uint32_t pgn = 0, identifier = 0;
    if (!parse_number(take_word(line), max_pgn, pgn)) return false;
    const std::string_view id = take_word(line);
    return id.size() == 8 && parse_hex(id, identifier) && identifier <= max_identifier;
}

LineResult AirmarFormat::read(std::string_view line, Record& record, Problem& problem) {
    const std::string_view time = take_word(line), dash = take_word(line);
    if (dash != "-") {
        describe(problem, quoted(dash), " stands for the dash behind the time");
        return LineResult::problem;
    }
    auto parsed = timestamps_.parse(time);
    record.time = parsed ? *parsed : RecordTime{};
    take_word(line);
    std::uint32_t identifier = 0;
    if (!read_identifier(take_word(line), identifier, problem)) return LineResult::problem;
    set_frame(record, identifier);
    record.kind = Record::Kind::message;
    N2KMsg& msg = record.msg;
    unsigned count = 0;
    while (!line.empty()) {
        const std::size_t size = std::min(line.find_first_of(" \t,"), line.size());
        std::uint32_t value = 0;
        if (size != 2 || !parse_hex(line.substr(0, size), value)) {
            describe_bad_byte(problem, count + 1, line.substr(0, size));
            return LineResult::problem;
        }
        if (count == N2K_MAX_PAYLOAD) {
            describe(problem, "more than ", unsigned{N2K_MAX_PAYLOAD}, " bytes given");
            return LineResult::problem;
        }
        msg.data[count++] = static_cast<std::uint8_t>(value);
        line.remove_prefix(std::min(line.find_first_not_of(" \t,", size), line.size()));
    }
    msg.length = static_cast<std::uint16_t>(count);
    return LineResult::record;
}

}  // namespace vistel
