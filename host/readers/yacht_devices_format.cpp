#include "readers/yacht_devices_format.h"

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

constexpr std::size_t identifier_digits = 8;

}  // namespace

bool YachtDevicesFormat::resembles(std::string_view line) {
    const std::string_view time = take_word(line);
    const std::string_view direction = take_word(line);
    return time.size() >= 8 && time[2] == ':' && time[5] == ':' && (direction == "R" || direction == "T");
}

LineResult YachtDevicesFormat::read(std::string_view line, Record& record, Problem& problem) {
    std::string_view word = take_word(line);
    record.time = {};
    const bool is_order = word.size() == identifier_digits && word.find(':') == std::string_view::npos;
    if (!is_order) {
        auto parsed = timestamps_.parse(word);
        if (!parsed) {
            describe(problem, "time ", quoted(word), ": ", parsed.error());
            return LineResult::problem;
        }
        record.time = *parsed;
        const std::string_view direction = take_word(line);
        if (direction != "R" && direction != "T") {
            describe(problem, "direction ", quoted(direction), " is neither R nor T");
            return LineResult::problem;
        }
        word = take_word(line);
    }
    std::uint32_t identifier = 0;
    if (!read_identifier(word, identifier, problem)) return LineResult::problem;
    set_frame(record, identifier);
    return read_spaced_bytes(line, max_frame_bytes, record.msg, problem) ? LineResult::record
                                                                         : LineResult::problem;
}

}  // namespace vistel
