#include "readers/vector_ascii_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

constexpr std::int64_t second = 1'000'000'000, hour = 3600 * second;
constexpr std::size_t weekday_size = 2;  // in German; the dot or the third letter may follow

/// How the names of months begin; the umlaut in either encoding.
constexpr struct {
    std::string_view begins;
    std::uint32_t number;
} months[] = {{"Jan", 1}, {"Feb", 2},  {"Mar", 3},  {"M\xE4r", 3}, {"M\xC3\xA4r", 3}, {"Mrz", 3},
              {"Apr", 4}, {"May", 5},  {"Mai", 5},  {"Jun", 6},    {"Jul", 7},        {"Aug", 8},
              {"Sep", 9}, {"Oct", 10}, {"Okt", 10}, {"Nov", 11},   {"Dec", 12},       {"Dez", 12}};

std::uint32_t month_of(std::string_view name) {
    for (const auto& month : months)
        if (name.starts_with(month.begins)) return month.number;
    return 0;
}

bool is_date(std::string_view text) {
    const std::string_view weekday = take_word(text);
    return weekday.size() >= weekday_size && month_of(take_word(text)) != 0;
}

bool is_direction(std::string_view word) {
    return word == "Rx" || word == "Tx" || word == "TxRq";
}

/// Behind the word `Begin`.
bool begins_block(std::string_view word) {
    return word == "Triggerblock" || word == "TriggerBlock";
}

}  // namespace

bool VectorAsciiFormat::resembles(std::string_view line) {
    const std::string_view first = take_word(line);
    if (first == "date") return is_date(line);
    const std::string_view second_word = take_word(line);
    if (first == "base") return second_word == "hex" || second_word == "dec";
    if (first == "Begin") return begins_block(second_word) && is_date(line);
    std::int64_t seconds = 0;
    std::uint32_t number = 0;
    if (first.find('.') == std::string_view::npos || !parse_duration(first, second, seconds)) return false;
    if (!parse_number(second_word, 255, number)) return false;
    const std::string_view id = take_word(line), direction = take_word(line), kind = take_word(line);
    return !id.empty() && is_direction(direction) && (kind == "d" || kind == "r");
}

/// `Mon May 4 09:30:00.000 am 2026`
void VectorAsciiFormat::read_date(std::string_view text) {
    take_word(text);
    const std::uint32_t month = month_of(take_word(text));
    std::uint32_t day = 0, year = 0;
    if (!parse_number(take_word(text), 31, day)) return;
    auto clock = timestamps_.parse(take_word(text));
    if (!clock || clock->origin != RecordTime::Origin::day) return;
    std::string_view last = take_word(text);
    std::int64_t time = clock->nanoseconds;
    if (last == "am" || last == "pm") {
        if (time >= 12 * hour) time -= 12 * hour;
        if (last == "pm") time += 12 * hour;
        last = take_word(text);
    }
    if (parse_number(last, 9999, year)) (void)make_time(year, month, day, time, start_);
}

bool VectorAsciiFormat::read_header(std::string_view line) {
    const std::string_view first = take_word(line);
    if (first == "date") {
        if (is_date(line)) read_date(line);
    } else if (first == "base") {
        base_ = take_word(line) == "dec" ? 10 : 16;
        take_word(line);
        is_relative_ = take_word(line) == "relative";
    } else if (first == "Begin") {
        if (begins_block(take_word(line)) && is_date(line)) read_date(line);
        since_start_ = 0;
    } else {
        return first == "End" || first == "internal" || first == "no" || first.starts_with("//");
    }
    return true;
}

LineResult VectorAsciiFormat::read(std::string_view line, Record& record, Problem& problem) {
    if (read_header(line)) return LineResult::nothing;
    const std::string_view time = take_word(line);
    std::int64_t seconds = 0;
    if (!parse_duration(time, second, seconds)) {
        describe(problem, "time ", quoted(time), " is not a number of seconds");
        return LineResult::problem;
    }
    since_start_ = is_relative_ ? later({since_start_, {}}, seconds).nanoseconds : seconds;
    record.time = later(start_, since_start_);
    const std::string_view channel = take_word(line);
    if (channel == "CANFD") return read_flexible_frame(line, record, problem);
    if (channel == "CANXL") return LineResult::foreign;
    std::uint32_t number = 0;
    if (!parse_number(channel, 255, number)) return LineResult::nothing;
    record.bus = buses_.number_of(channel);
    const std::string_view id = take_word(line);
    if (id == "ErrorFrame") return LineResult::foreign;
    return read_frame(id, line, record, problem);
}

/// `9F11223x Rx d 8 00 39`, with more behind the bytes.
LineResult VectorAsciiFormat::read_frame(std::string_view id, std::string_view rest, Record& record,
                                         Problem& problem) const {
    const std::string_view direction = take_word(rest), kind = take_word(rest);
    // What was asked to be sent comes once more when it is.
    if (!is_direction(direction) || direction == "TxRq") return LineResult::nothing;
    if (kind == "r" || !id.ends_with('x')) return LineResult::foreign;
    if (kind != "d") return LineResult::nothing;
    std::uint32_t identifier = 0, length = 0;
    id.remove_suffix(1);
    if (!read_number_as_identifier(id, base_, identifier, problem)) return LineResult::problem;
    const std::string_view code = take_word(rest);
    if (!parse_number(code, 16, 15, length)) {
        describe(problem, "length ", quoted(code), " is no hexadecimal digit");
        return LineResult::problem;
    }
    set_frame(record, identifier);
    return take_bytes(rest, std::min(length, max_frame_bytes), base_, record.msg, problem)
               ? LineResult::record
               : LineResult::problem;
}

/// `1 Rx 9F11223x 0 0 8 8 00 39 ... duration bits flags`, perhaps a name behind the identifier. The flags
/// tell whether the frame has a flexible data rate.
LineResult VectorAsciiFormat::read_flexible_frame(std::string_view rest, Record& record, Problem& problem) {
    constexpr std::uint32_t flexible = 0x1000;
    record.bus = buses_.number_of(take_word(rest));
    take_word(rest);
    std::string_view id = take_word(rest), rate_switch = take_word(rest);
    if (rate_switch != "0" && rate_switch != "1") rate_switch = take_word(rest);
    take_word(rest);
    take_word(rest);
    std::uint32_t length = 0, identifier = 0, flags = flexible;
    if (!parse_number(take_word(rest), 64, length)) return LineResult::nothing;
    std::string_view behind = rest;
    for (unsigned i = 0; i < length + 2; ++i) take_word(behind);
    (void)parse_hex(take_word(behind), flags);
    if (!id.ends_with('x') || (flags & flexible) != 0 || length > max_frame_bytes) return LineResult::foreign;
    id.remove_suffix(1);
    if (!read_number_as_identifier(id, base_, identifier, problem)) return LineResult::problem;
    set_frame(record, identifier);
    return take_bytes(rest, length, base_, record.msg, problem) ? LineResult::record : LineResult::problem;
}

}  // namespace vistel
