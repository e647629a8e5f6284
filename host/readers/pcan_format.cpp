#include "readers/pcan_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/characters.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

constexpr std::int64_t millisecond = 1'000'000;

/// The columns of versions that do not name them: number, offset, bus, type, identifier, direction, reserved,
/// length (its code in the case of L), data.
constexpr std::string_view untyped_columns = "NOIlD";
constexpr struct {
    std::string_view version, columns;
} versions[] = {{"1.0", untyped_columns}, {"1.1", "NOTIlD"},  {"1.2", "NOBTIlD"},
                {"1.3", "NOBTIRlD"},      {"2.0", "NOTIdlD"}, {"2.1", "NOTBIdRLD"}};

constexpr std::string_view version_mark = ";$FILEVERSION=", start_mark = ";$STARTTIME=",
                           columns_mark = ";$COLUMNS=", written_start_mark = "Start time:";

bool is_one_of(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// `12)`, as versions before 2.0 number their lines.
bool is_line_number(std::string_view word) {
    return word.size() > 1 && word.back() == ')' &&
           std::all_of(word.begin(), word.end() - 1, [](char c) { return is_digit(c); });
}

}  // namespace

bool PcanFormat::resembles(std::string_view line) {
    if (line.starts_with(version_mark)) return true;
    std::int64_t offset = 0;
    return is_line_number(take_word(line)) && parse_duration(take_word(line), millisecond, offset);
}

void PcanFormat::read_comment(std::string_view line) {
    if (line.starts_with(version_mark)) {
        const std::string_view version = trimmed(line.substr(version_mark.size()));
        column_count_ = 0;
        start_ = {};
        for (const auto& known : versions)
            if (version == known.version) column_count_ = known.columns.copy(columns_, most_columns);
    } else if (line.starts_with(columns_mark)) {
        column_count_ = 0;
        for (const char c : line.substr(columns_mark.size()))
            if (c != ',' && !is_blank(c) && column_count_ < most_columns) columns_[column_count_++] = c;
    } else if (line.starts_with(start_mark)) {
        read_start(line.substr(start_mark.size()));
    } else {
        const std::string_view text = trimmed(line.substr(1));
        if (text.starts_with(written_start_mark) && start_.origin == RecordTime::Origin::none)
            read_written_start(trimmed(text.substr(written_start_mark.size())));
    }
}

/// Days since 1899-12-30 with a fraction, which is good for a millisecond.
void PcanFormat::read_start(std::string_view days) {
    constexpr std::int64_t epoch = 25569, milliseconds_a_day = 86'400'000, last_day = epoch + 106'000;
    constexpr unsigned most_decimals = 10;
    std::int64_t whole = 0, fraction = 0, scale = 1;
    std::size_t at = 0;
    for (; at < days.size() && is_digit(days[at]) && whole <= last_day; ++at)
        whole = whole * 10 + (days[at] - '0');
    if (at < days.size() && days[at] == '.') {
        for (unsigned i = 0; i < most_decimals && ++at < days.size() && is_digit(days[at]); ++i) {
            fraction = fraction * 10 + (days[at] - '0');
            scale *= 10;
        }
    }
    if (whole < epoch || whole > last_day) return;
    const std::int64_t milliseconds = (fraction * milliseconds_a_day + scale / 2) / scale;
    start_ = {((whole - epoch) * milliseconds_a_day + milliseconds) * millisecond, RecordTime::Origin::epoch};
}

/// `04.05.2026 09:30:00.000.0` or `2015-06-21 18:11:07.246.0`; a last part that is not there has no decimals.
void PcanFormat::read_written_start(std::string_view text) {
    std::string_view date = take_word(text);
    std::string_view clock = text.substr(0, std::min<std::size_t>(text.size(), sizeof "18:11:07.246" - 1));
    auto time = timestamps_.parse(clock);
    if (date.size() != 10 || !time || time->origin != RecordTime::Origin::day) return;
    const bool year_first = date[4] == '-';
    std::uint32_t year = 0, month = 0, day = 0;
    if (parse_number(date.substr(year_first ? 0 : 6, 4), 9999, year) &&
        parse_number(date.substr(year_first ? 5 : 3, 2), 12, month) &&
        parse_number(date.substr(year_first ? 8 : 0, 2), 31, day)) {
        (void)make_time(year, month, day, time->nanoseconds, start_);
    }
}

LineResult PcanFormat::read(std::string_view line, Record& record, Problem& problem) {
    if (line[0] == ';') {
        read_comment(line);
        return LineResult::nothing;
    }
    std::string_view columns = untyped_columns;
    if (column_count_ > 0) columns = {columns_, column_count_};
    std::uint32_t identifier = 0;
    unsigned length = 0;
    record.bus = 0;
    for (const char column : columns) {
        if (column == 'D') break;  // up to the end
        const std::string_view word = take_word(line);
        switch (column) {
            case 'O': {
                std::int64_t offset = 0;
                if (!parse_duration(word, millisecond, offset)) {
                    describe(problem, "time ", quoted(word), " is not a number of milliseconds");
                    return LineResult::problem;
                }
                record.time = later(start_, offset);
                break;
            }
            case 'T':
                if (is_one_of(word, {"Rx", "Tx", "DT"})) break;
                if (is_one_of(word, {"Warng", "ST", "EC", "EV"})) return LineResult::nothing;
                if (is_one_of(word, {"Error", "FD", "FB", "FE", "BI", "RR", "ER"}))
                    return LineResult::foreign;
                describe(problem, "type ", quoted(word), " is not known");
                return LineResult::problem;
            case 'I':
                if (word == "FFFFFFFF" || word == "-") return LineResult::nothing;  // state of the bus
                if (word.size() == 4 && parse_hex(word, identifier)) return LineResult::foreign;
                if (!read_identifier(word, identifier, problem)) return LineResult::problem;
                break;
            case 'B': record.bus = buses_.number_of(word); break;
            case 'L':
            case 'l':
                if (!read_frame_length(word, length, problem)) return LineResult::problem;
                break;
            default: break;
        }
    }
    if (line.starts_with("RTR") || line.starts_with("ERROR")) return LineResult::foreign;
    set_frame(record, identifier);
    if (line.starts_with("--")) line = {};
    return read_frame_bytes(line, length, 16, record.msg, problem);
}

}  // namespace vistel
