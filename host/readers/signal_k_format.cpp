#include "readers/signal_k_format.h"

#include "readers/scan.h"
#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

constexpr char nmea2000 = 'A';

/// A line taken apart.
struct Entry {
    std::int64_t milliseconds = 0;
    char kind = 0;
    std::string_view line;
};

bool read_entry(std::string_view text, Entry& entry) {
    constexpr std::size_t time_digits = 13;
    constexpr std::int64_t most_milliseconds = INT64_MAX / 1'000'000;  // of the year 2262
    if (text.size() < time_digits + 3 || text[time_digits] != ';' || text[time_digits + 2] != ';')
        return false;
    const auto is_upper = [](char c) { return c >= 'A' && c <= 'Z'; };
    entry.kind = text[time_digits + 1];
    if (!is_upper(entry.kind) || !parse_duration(text.substr(0, time_digits), 1, entry.milliseconds) ||
        entry.milliseconds > most_milliseconds)
        return false;
    entry.line = trimmed(text.substr(time_digits + 3));
    return true;
}

/// Reads the sentence that a line is.
template <class SentenceFormat>
LineResult read_sentence(SentenceFormat& format, std::string_view line, Record& record, Problem& problem) {
    std::size_t size = 0;
    switch (format.take(line, true, size, record, problem)) {
        case Found::record: return LineResult::record;
        case Found::nothing: return LineResult::nothing;
        case Found::foreign: return LineResult::foreign;
        case Found::more: describe(problem, "the sentence is cut off"); return LineResult::problem;
        default: return LineResult::problem;
    }
}

}  // namespace

bool SignalKFormat::resembles(std::string_view line) {
    Entry entry;
    return read_entry(line, entry);
}

LineResult SignalKFormat::read_inner(std::string_view line, Record& record, Problem& problem) {
    if (PlainFormat::resembles(line)) return plain_.read(line, record, problem);
    if (ActisenseAsciiFormat::resembles(line)) return actisense_ascii_.read(line, record, problem);
    if (YachtDevicesFormat::resembles(line)) return yacht_devices_.read(line, record, problem);
    if (CandumpFormat::resembles(line)) return candump_.read(line, record, problem);
    if (IkonvertFormat::resembles(line)) return read_sentence(ikonvert_, line, record, problem);
    if (PcdinFormat::resembles(line)) return read_sentence(pcdin_, line, record, problem);
    if (MxpgnFormat::resembles(line)) return read_sentence(mxpgn_, line, record, problem);
    describe(problem, quoted(line), " is no message in a form that is known");
    return LineResult::problem;
}

LineResult SignalKFormat::read(std::string_view line, Record& record, Problem& problem) {
    Entry entry;
    if (!read_entry(line, entry)) {
        describe(problem, quoted(line), " is not milliseconds;letter;line");
        return LineResult::problem;
    }
    if (entry.kind != nmea2000) return LineResult::foreign;
    const LineResult result = read_inner(entry.line, record, problem);
    if (record.time.origin != RecordTime::Origin::epoch)
        record.time = {entry.milliseconds * 1'000'000, RecordTime::Origin::epoch};
    return result;
}

bool SignalKFormat::depends_on_later(std::string_view line) {
    Entry entry;
    return read_entry(line, entry) && entry.kind == nmea2000 && PlainFormat::resembles(entry.line) &&
           plain_.depends_on_later(entry.line);
}

void SignalKFormat::foresee(std::string_view line) {
    Entry entry;
    if (read_entry(line, entry) && PlainFormat::resembles(entry.line)) plain_.foresee(entry.line);
}

}  // namespace vistel
