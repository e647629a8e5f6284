#include "readers/savvycan_format.h"

#include "can/identifier.h"
#include "readers/scan.h"
#include "readers/timestamp.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

constexpr std::string_view full_header = "Time Stamp,ID,Extended,Dir,",
                           older_header = "Time Stamp,ID,Extended,Bus,", short_header = "ID,Data Bytes";
constexpr std::uint32_t most_standard = 0x7FF;

/// Microseconds since 1970 or some start. Numbers of fewer digits stand for none.
bool read_microseconds(std::string_view text, RecordTime& time) {
    constexpr std::size_t fewest_digits = 4, decimals = 6, most_digits = 16;
    std::uint32_t rest = 0;
    time = {};
    if (text.size() < fewest_digits) return parse_number(text, 999, rest);
    char seconds[most_digits + 2];
    if (text.size() > most_digits) return false;
    const std::size_t whole = text.size() > decimals ? text.size() - decimals : 0;
    std::size_t size = text.copy(seconds, whole);
    if (whole == 0) seconds[size++] = '0';
    seconds[size++] = '.';
    for (std::size_t i = text.size(); i < decimals; ++i) seconds[size++] = '0';
    size += text.copy(seconds + size, text.size() - whole, whole);
    return parse_seconds({seconds, size}, time);
}

}  // namespace

bool SavvycanFormat::resembles(std::string_view line) {
    return line.starts_with(full_header) || line.starts_with(older_header) || line.starts_with(short_header);
}

LineResult SavvycanFormat::read(std::string_view line, Record& record, Problem& problem) {
    if (!resembles(line)) return read_row(line, record, problem);
    columns_ = line.starts_with(full_header)    ? Columns::full
               : line.starts_with(older_header) ? Columns::without_direction
                                                : Columns::bytes_alone;
    return LineResult::nothing;
}

LineResult SavvycanFormat::read_row(std::string_view line, Record& record, Problem& problem) {
    const bool has_time = columns_ != Columns::bytes_alone;
    const std::string_view time = has_time ? take_cell(line) : std::string_view{};
    if (has_time && !read_microseconds(time, record.time)) {
        describe(problem, "time ", quoted(time), " is not a number of microseconds");
        return LineResult::problem;
    }
    std::uint32_t identifier = 0, length = 0;
    if (!read_number_as_identifier(take_cell(line), 16, identifier, problem)) return LineResult::problem;
    record.bus = 0;
    if (!has_time) {
        record.time = {};
        if (identifier <= most_standard) return LineResult::foreign;
        set_frame(record, identifier);
        return read_spaced_bytes(line, max_frame_bytes, record.msg, problem) ? LineResult::record
                                                                             : LineResult::problem;
    }
    // The column has been seen to be wrong of frames with a long identifier.
    const bool is_extended = take_cell(line) == "true" || identifier > most_standard;
    if (columns_ == Columns::full) take_cell(line);
    record.bus = buses_.number_of(take_cell(line));
    if (!read_number(take_cell(line), "length", 64, length, problem)) return LineResult::problem;
    if (!is_extended || length > max_frame_bytes) return LineResult::foreign;
    set_frame(record, identifier);
    for (unsigned i = 0; i < length; ++i) {
        const std::string_view byte = take_cell(line);
        std::uint32_t value = 0;
        if (byte.size() > 2 || !parse_hex(byte, value)) {
            describe_bad_byte(problem, i + 1, byte);
            return LineResult::problem;
        }
        record.msg.data[i] = static_cast<std::uint8_t>(value);
    }
    record.msg.length = static_cast<std::uint16_t>(length);
    return LineResult::record;
}

}  // namespace vistel
