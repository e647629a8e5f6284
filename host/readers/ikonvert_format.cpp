#include "readers/ikonvert_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/base64.h"
#include "text/quotes.h"

namespace vistel {

bool IkonvertSentences::is_one(const Sentence& sentence) {
    return sentence.text.starts_with("PDGY,");
}

bool IkonvertSentences::read_time(std::string_view text, RecordTime& time, Problem& problem) {
    constexpr std::uint32_t most_seconds = 4'000'000'000;
    const std::size_t point = text.find('.');
    std::uint32_t seconds = 0, milliseconds = 0;
    if (point != std::string_view::npos &&
        !read_number(text.substr(0, point), "the seconds of a time", most_seconds, seconds, problem))
        return false;
    const std::string_view rest = point == std::string_view::npos ? text : text.substr(point + 1);
    const std::uint32_t most_rest = point == std::string_view::npos ? most_seconds : 999;
    if (!read_number(rest, "the milliseconds of a time", most_rest, milliseconds, problem)) return false;
    const std::int64_t count = (std::int64_t{seconds} * 1000 + milliseconds) % period;
    time = {clock_.unroll(count) * 1'000'000, RecordTime::Origin::start};
    return true;
}

/// Reads what stands before the payload.
bool IkonvertSentences::read_header(std::string_view (&fields)[6], std::size_t count, Record& record,
                                    Problem& problem) {
    std::uint32_t pgn = 0, priority = usual_priority, source = nobody, destination = 0;
    const bool received = count == std::size(fields);
    if (!read_number(fields[0], "PGN", max_pgn, pgn, problem) ||
        !read_number(fields[received ? 3 : 1], "destination", everyone, destination, problem))
        return false;
    if (received) {
        if (!read_number(fields[1], "priority", 7, priority, problem) ||
            !read_number(fields[2], "source", 255, source, problem) ||
            !read_time(fields[4], last_time_, problem))
            return false;
    }
    record.kind = Record::Kind::message;
    record.time = last_time_;
    record.msg.pgn = pgn;
    record.msg.priority = static_cast<std::uint8_t>(priority);
    record.msg.source = static_cast<std::uint8_t>(source);
    record.msg.destination = static_cast<std::uint8_t>(destination);
    return true;
}

Found IkonvertSentences::read(Sentence sentence, Record& record, Problem& problem) {
    if (sentence.checksum != Sentence::Checksum::none && !is_whole(sentence, problem)) return Found::problem;
    (void)sentence.take_field();
    if (sentence.start == '$') {
        // Messages do not begin so; a sentence that goes on as one is the rest of two.
        const bool like_message = std::count(sentence.text.begin(), sentence.text.end(), '.') == 1 &&
                                  sentence.text[0] >= '0' && sentence.text[0] <= '9';
        if (!like_message) return Found::foreign;
        describe(problem, "a message that begins with $");
        return Found::problem;
    }
    std::string_view fields[6];
    std::size_t count = 0;
    while (count < std::size(fields) && !sentence.text.empty()) fields[count++] = sentence.take_field();
    if ((count != 3 && count != std::size(fields)) || !sentence.text.empty()) {
        describe(problem, "a message of ", count, " fields; there are 3 or 6");
        return Found::problem;
    }
    const std::string_view payload = fields[count - 1];
    const auto size = read_base64(payload, {record.msg.data, N2K_MAX_PAYLOAD});
    // One that has been cut short may be good as well, but for the padding at its end.
    if (!size || (sentence.torn && !payload.ends_with('='))) {
        describe(problem, "payload ", quoted(payload.substr(0, 80)), " is not base64 up to its end");
        return Found::problem;
    }
    if (!read_header(fields, count, record, problem)) return Found::problem;
    record.msg.length = static_cast<std::uint16_t>(*size);
    return Found::record;
}

}  // namespace vistel
