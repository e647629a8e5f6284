#include "readers/busmaster_format.h"

#include "can/identifier.h"
#include "readers/scan.h"
#include "readers/timestamp.h"
#include "text/characters.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

constexpr std::int64_t second = 1'000'000'000;
constexpr std::string_view start_mark = "START DATE AND TIME ";

/// Cuts a number off `text` with the colon behind it.
bool take_part(std::string_view& text, std::uint32_t most, std::uint32_t& value) {
    const std::size_t colon = text.find(':');
    if (!parse_number(text.substr(0, colon), most, value)) return false;
    text.remove_prefix(colon == std::string_view::npos ? text.size() : colon + 1);
    return true;
}

/// `hh:mm:ss:ffff`, or three digits of milliseconds.
bool read_clock(std::string_view text, std::int64_t& clock) {
    constexpr std::uint32_t most_hours = 9999;
    std::uint32_t hours = 0, minutes = 0, seconds = 0, fraction = 0;
    if (!take_part(text, most_hours, hours) || !take_part(text, 59, minutes) || !take_part(text, 60, seconds))
        return false;
    const std::int64_t unit = text.size() == 3 ? second / 1000 : second / 10'000;
    if (text.size() < 3 || text.size() > 4 || !parse_number(text, 9999, fraction)) return false;
    clock = ((std::int64_t{hours} * 60 + minutes) * 60 + seconds) * second + fraction * unit;
    return true;
}

}  // namespace

bool BusmasterFormat::resembles(std::string_view line) {
    return line.starts_with("***BUSMASTER");
}

/// `4:5:2026 9:30:0:0`: day, month, year, hours, minutes, seconds, milliseconds.
void BusmasterFormat::read_start(std::string_view text) {
    std::string_view date = take_word(text);
    std::uint32_t day = 0, month = 0, year = 0, hours = 0, minutes = 0, seconds = 0, milliseconds = 0;
    start_ = midnight_ = {};
    since_start_ = 0;
    if (!take_part(date, 31, day) || !take_part(date, 12, month) || !take_part(date, 9999, year) ||
        !take_part(text, 23, hours) || !take_part(text, 59, minutes) || !take_part(text, 60, seconds) ||
        !take_part(text, 999, milliseconds) || !make_time(year, month, day, 0, midnight_)) {
        return;
    }
    day_clock_ = {};
    start_ = later(midnight_, ((std::int64_t{hours} * 60 + minutes) * 60 + seconds) * second +
                                  milliseconds * (second / 1000));
}

void BusmasterFormat::read_heading(std::string_view line) {
    line.remove_prefix(3);
    if (line.ends_with("***")) line.remove_suffix(3);
    if (line == "HEX") base_ = 16;
    if (line == "DEC") base_ = 10;
    if (line == "SYSTEM MODE") mode_ = Mode::system;
    if (line == "ABSOLUTE MODE") mode_ = Mode::absolute;
    if (line == "RELATIVE MODE") mode_ = Mode::relative;
    if (line.starts_with(start_mark)) read_start(line.substr(start_mark.size()));
}

RecordTime BusmasterFormat::time_of(std::int64_t clock) {
    if (mode_ == Mode::system) {
        RecordTime time{clock, RecordTime::Origin::day};
        day_clock_.unroll(time);
        return midnight_.origin == RecordTime::Origin::epoch ? later(midnight_, time.nanoseconds) : time;
    }
    since_start_ = mode_ == Mode::absolute ? clock : later({since_start_, {}}, clock).nanoseconds;
    return later(start_, since_start_);
}

LineResult BusmasterFormat::read(std::string_view line, Record& record, Problem& problem) {
    if (line.starts_with("***")) {
        read_heading(line);
        return LineResult::nothing;
    }
    const std::string_view time = take_word(line);
    std::int64_t clock = 0;
    if (!read_clock(time, clock)) {
        describe(problem, "time ", quoted(time), " is not hh:mm:ss:ffff");
        return LineResult::problem;
    }
    record.time = time_of(clock);
    const std::string_view second_word = take_word(line);
    const bool is_j1939 = !second_word.empty() && is_digit(second_word[0]);
    const std::string_view channel = is_j1939 ? second_word : take_word(line);
    const std::string_view id = take_word(line);
    if (second_word.starts_with("ERR") || channel.starts_with("ERR") || id.starts_with("ERR"))
        return LineResult::foreign;
    std::uint32_t identifier = 0, length = 0;
    if (is_j1939) {
        for (int passed = 0; passed < 6; ++passed)
            take_word(line);  // PGN to direction, as the identifier says
    } else if (take_word(line) != "x") {
        return LineResult::foreign;
    }
    if (!read_number_as_identifier(id, base_, identifier, problem) ||
        !read_number(take_word(line), "length", is_j1939 ? N2K_MAX_PAYLOAD : max_frame_bytes, length,
                     problem)) {
        return LineResult::problem;
    }
    record.bus = buses_.number_of(channel);
    set_frame(record, identifier);
    if (length > max_frame_bytes) record.kind = Record::Kind::message;
    return read_frame_bytes(line, length, base_, record.msg, problem);
}

}  // namespace vistel
