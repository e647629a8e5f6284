#include "readers/recording.h"

#include <algorithm>
#include <cstring>

#include "readers/known_files.h"
#include "readers/line_reader.h"
#include "readers/stream_capture.h"
#include "readers/unpacked_input.h"
#include "text/characters.h"
#include "text/quotes.h"

namespace vistel {
namespace {

/// A recording that shows no format within its first bytes will not show one later.
constexpr std::size_t most_head = 2 * max_line;
static_assert(most_head <= ByteSource::capacity);

/// Or what serial adapters answer, which are bells.
bool only_blank_lines(std::string_view head) {
    bool comment = false;
    for (const char c : head) {
        if (c == '\n') {
            comment = false;
        } else if (c == '#') {
            comment = true;
        } else if (!comment && !is_blank(c) && c != '\a') {
            return false;
        }
    }
    return true;
}

}  // namespace

Status Recording::open(const std::string& path, const RecordingOptions& options) {
    auto opened = open_file(path);
    if (!opened) return opened.error();
    return attach(std::move(*opened), options);
}

Status Recording::attach(std::unique_ptr<ByteInput> input, const RecordingOptions& options) {
    source_.attach(played_stream(unpacked(std::move(input))));
    source_.set_patience(options.patience_ms);
    source_.set_before_wait(options.before_wait);
    contents_ = options.contents;
    if (options.format.empty()) return done;
    auto format = find_format(options.format);
    if (!format) return format.error();
    use(**format);
    return done;
}

void Recording::attach(std::unique_ptr<RecordReader> reader, std::string_view name) {
    reader_ = std::move(reader);
    format_name_ = name;
}

void Recording::use(const Format& format) {
    format_name_ = format.name;
    reader_ = format.open(source_, contents_);
}

/// Reads the head of the recording until it shows its format.
Recording::State Recording::prepare(ByteSource::Wait wait) {
    for (;;) {
        const std::string_view head = source_.unread();
        if (!archive_kind(head).empty()) return State::unknown_format;
        if (const Format* format = recognise_format(head, passed_, source_.ended())) {
            use(*format);
            return State::ready;
        } else if (source_.ended() || head.size() >= most_head) {
            return State::unknown_format;
        } else if (source_.fill(wait) == ByteSource::Fill::idle) {
            return State::idle;
        }
    }
}

void Recording::stamp(RecordTime& time) {
    day_clock_.unroll(time);
    if (const std::int64_t arrival = source_.arrival(); arrival != 0)
        time = {arrival, RecordTime::Origin::epoch};
}

ReadResult Recording::explain_end() {
    const std::string_view head = source_.unread();
    if (end_explained_ || (source_.ended() && source_.error().empty() && only_blank_lines(head)))
        return ReadResult::end;
    end_explained_ = true;
    problem_.put_at_whole();
    if (!source_.error().empty()) {
        describe(problem_, "cannot read on: ", source_.error());
    } else if (const std::string_view kind = archive_kind(head); !kind.empty()) {
        describe(problem_, "this is ", kind, "; take the recording out of it");
    } else if (const std::string_view packing = packing_of(head); !packing.empty()) {
        describe(problem_, "this seems to be ", packing, " data within other data; unpack it first");
    } else {
        const std::string_view guess = guess_file(head);
        describe(problem_, guess.empty() ? "" : "this seems to be ", guess, guess.empty() ? "" : "; ",
                 "the format is none of ", format_names());
    }
    return ReadResult::problem;
}

ReadResult Recording::next(Record& record) {
    if (!reader_) {
        switch (prepare(ByteSource::Wait::yes)) {
            case State::idle: return ReadResult::nothing;
            case State::unknown_format: return explain_end();
            case State::ready: break;
        }
    }
    N2KMsg& msg = record.msg;
    const std::size_t used_before = std::min<std::size_t>(msg.length, sizeof msg.data);
    const ReadResult result = reader_->next(record, problem_);
    if (result == ReadResult::record) [[likely]] {
        has_records_ = true;
        if (record.time.origin != RecordTime::Origin::epoch) stamp(record.time);
        if (msg.length < used_before) std::memset(msg.data + msg.length, 0, used_before - msg.length);
    } else if (result == ReadResult::problem) {
        has_problems_ = has_problems_ || problem_.place != Problem::Place::whole;
        msg.length = 0;
        std::memset(msg.data, 0, sizeof msg.data);
    }
    return result;
}

bool Recording::is_left_unknown() {
    constexpr std::size_t most_begun = 1024;
    if (reader_ || end_explained_ || source_.is_file()) return false;
    std::string_view head = source_.unread();
    if (head.size() < most_begun) head = head.substr(0, head.rfind('\n') + 1);
    return !only_blank_lines(head) && explain_end() == ReadResult::problem;
}

bool Recording::would_wait() {
    if (!reader_) {
        switch (prepare(ByteSource::Wait::no)) {
            case State::idle: return true;
            case State::unknown_format: return false;
            case State::ready: break;
        }
    }
    return reader_->would_wait();
}

}  // namespace vistel
