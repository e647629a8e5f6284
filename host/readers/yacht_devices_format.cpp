#include "readers/yacht_devices_format.h"

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {

bool YachtDevicesFormat::resembles(std::string_view line) {
    const std::string_view time = take_word(line);
    const std::string_view direction = take_word(line);
    return time.size() >= 8 && time[2] == ':' && time[5] == ':' && (direction == "R" || direction == "T");
}

LineResult YachtDevicesFormat::read(std::string_view line, Record& record, Problem& problem) {
    const std::string_view time = take_word(line);
    auto parsed = timestamps_.parse(time);
    if (!parsed) {
        describe(problem, "time ", quoted(time), ": ", parsed.error());
        return LineResult::problem;
    }
    record.time = *parsed;
    const std::string_view direction = take_word(line);
    if (direction != "R" && direction != "T") {
        describe(problem, "direction ", quoted(direction), " is neither R nor T");
        return LineResult::problem;
    }
    std::uint32_t identifier = 0;
    if (!read_identifier(take_word(line), identifier, problem)) return LineResult::problem;
    record.kind = Record::Kind::frame;
    set_header(record.msg, identifier);
    return read_spaced_bytes(line, max_frame_bytes, record.msg, problem) ? LineResult::record
                                                                         : LineResult::problem;
}

}  // namespace vistel
