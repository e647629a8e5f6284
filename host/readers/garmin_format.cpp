#include "readers/garmin_format.h"

#include <iterator>
#include <limits>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

constexpr std::int64_t millisecond = 1'000'000, second = 1000 * millisecond;

/// `5_4_2026_9_30_0_24931012`: of the counter at the end, three digits are milliseconds.
bool read_clock(std::string_view text, RecordTime& time) {
    constexpr std::uint32_t most[] = {12, 31, 9999, 23, 59, 60, 4'294'967'295};
    std::uint32_t number[std::size(most)];
    for (std::size_t i = 0; i < std::size(most); ++i) {
        const std::size_t end = text.find('_');
        if (!parse_number(text.substr(0, end), most[i], number[i])) return false;
        if ((end == std::string_view::npos) != (i + 1 == std::size(most))) return false;
        if (end != std::string_view::npos) text.remove_prefix(end + 1);
    }
    const auto& [month, day, year, hours, minutes, seconds, ticks] = number;
    const std::int64_t clock = (std::int64_t{hours} * 60 + minutes) * 60 + seconds;
    return make_time(year, month, day, clock * second + ticks % 1000 * millisecond, time);
}

/// Cuts the cell behind the last comma off `text`.
std::string_view take_last_cell(std::string_view& text) {
    const std::size_t comma = text.rfind(',');
    if (comma == std::string_view::npos) return {};
    const std::string_view cell = trimmed(text.substr(comma + 1));
    text = text.substr(0, comma);
    return cell;
}

bool has_packet(std::string_view line) {
    return take_last_cell(line).starts_with("0x");
}

}  // namespace

bool GarminFormat::resembles(std::string_view line) {
    return line.starts_with("Sequence #,Timestamp,PGN") || line.starts_with("Sequence #,Month_Day_");
}

bool GarminFormat::read_beginning(std::string_view line, Beginning& beginning, Problem& problem) {
    std::uint32_t sequence = 0;
    if (!read_number(take_cell(line), "sequence", std::numeric_limits<std::uint32_t>::max(), sequence,
                     problem))
        return false;
    const std::string_view time = take_cell(line);
    std::int64_t since_start = 0;
    if (parse_duration(time, millisecond, since_start)) {
        beginning.time = later({}, since_start);
    } else if (!read_clock(time, beginning.time)) {
        describe(problem, "time ", quoted(time), " is neither milliseconds nor month_day_year_...");
        return false;
    }
    return read_number(take_cell(line), "PGN", max_pgn, beginning.pgn, problem);
}

LineResult GarminFormat::read_end(const Beginning& beginning, std::string_view line, Record& record,
                                  Problem& problem) {
    const std::string_view packet = take_last_cell(line), size_text = take_last_cell(line);
    take_last_cell(line);
    const std::string_view priority_text = take_last_cell(line), destination_text = take_last_cell(line),
                           source_text = take_last_cell(line);
    std::uint32_t size = 0, priority = 0, destination = 0, source = 0;
    if (!read_number(size_text, "size", N2K_MAX_PAYLOAD, size, problem) ||
        !read_number(priority_text, "priority", 7, priority, problem) ||
        !read_number(destination_text, "local address", 255, destination, problem) ||
        !read_number(source_text, "remote address", 255, source, problem) ||
        !read_packed_bytes(packet.substr(2), N2K_MAX_PAYLOAD, record.msg, problem)) {
        return LineResult::problem;
    }
    if (record.msg.length != size) {
        describe(problem, size, " bytes announced, ", unsigned{record.msg.length}, " given");
        return LineResult::problem;
    }
    record.kind = Record::Kind::message;
    record.time = beginning.time;
    record.msg.pgn = beginning.pgn;
    record.msg.priority = static_cast<std::uint8_t>(priority);
    record.msg.source = static_cast<std::uint8_t>(source);
    record.msg.destination = static_cast<std::uint8_t>(destination);
    return LineResult::record;
}

LineResult GarminFormat::read(std::string_view line, Record& record, Problem& problem) {
    const bool goes_on = open_.is_open;
    open_.is_open = false;
    if (resembles(line)) return LineResult::nothing;
    Beginning beginning;
    if (!read_beginning(line, beginning, problem))
        return goes_on && has_packet(line) ? read_end(open_, line, record, problem) : LineResult::problem;
    if (has_packet(line)) return read_end(beginning, line, record, problem);
    open_ = beginning;
    open_.is_open = true;
    return LineResult::nothing;
}

}  // namespace vistel
