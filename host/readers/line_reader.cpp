#include "readers/line_reader.h"

#include <algorithm>
#include <utility>

#include "text/words.h"

namespace vistel {

bool take_line(std::string_view& text, std::string_view& line) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return false;
    line = trimmed(text.substr(0, end));
    text.remove_prefix(end + 1);
    return true;
}

std::string_view without_mark(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) text.remove_prefix(mark.size());
    return text;
}

LineReader::LineReader(ByteSource& source, std::unique_ptr<LineFormat> format)
    : source_(source), format_(std::move(format)) {}

/// Shows the format the beginning of a file. What its lines hold is read again later.
void LineReader::look_ahead() {
    while (source_.unread().size() < ByteSource::capacity &&
           source_.fill(ByteSource::Wait::yes) == ByteSource::Fill::data) {
    }
    std::string_view text = without_mark(source_.unread()), line;
    Record record;
    Problem problem;
    while (format_->wants_look_ahead() && take_line(text, line)) {
        if (line.empty()) continue;
        if (line[0] == '#') {
            format_->comment(line);
        } else {
            format_->read(line, record, problem);
        }
    }
}

LineReader::Found LineReader::find_line(ByteSource::Wait wait) {
    for (;;) {
        const std::string_view unread = source_.unread();
        const std::size_t end = unread.find('\n', searched_);
        if (end != std::string_view::npos) {
            searched_ = 0;
            line_size_ = end;
            if (!skipping_) return end <= max_line ? Found::line : Found::too_long;
            skipping_ = false;
            source_.consume(end + 1);
            continue;
        }
        if (skipping_) {
            source_.consume(unread.size());
            searched_ = 0;
        } else {
            searched_ = line_size_ = unread.size();
            if (unread.size() > max_line) return Found::too_long;
        }
        switch (source_.fill(wait)) {
            case ByteSource::Fill::data: continue;
            case ByteSource::Fill::idle: return Found::idle;
            case ByteSource::Fill::failed: return Found::failed;
            case ByteSource::Fill::end: return source_.unread().empty() ? Found::end : Found::line;
        }
    }
}

void LineReader::start() {
    if (started_) return;
    started_ = true;
    if (source_.is_file() && format_->wants_look_ahead()) look_ahead();
}

bool LineReader::would_wait() {
    start();
    if (found_ == Found::idle) found_ = find_line(ByteSource::Wait::no);
    return found_ == Found::idle;
}

ReadResult LineReader::next(Record& record, Problem& problem) {
    start();
    const Found found = found_ == Found::idle ? find_line(ByteSource::Wait::yes) : found_;
    found_ = Found::idle;
    switch (found) {
        case Found::line: return read_line(record, problem);
        case Found::too_long: skip_line(problem); return ReadResult::problem;
        case Found::idle: return ReadResult::nothing;
        case Found::failed: return report_failure(problem);
        case Found::end: return ReadResult::end;
    }
    return ReadResult::end;
}

ReadResult LineReader::read_line(Record& record, Problem& problem) {
    std::string_view line = source_.unread().substr(0, line_size_);
    source_.consume(std::min(line_size_ + 1, source_.unread().size()));
    searched_ = 0;
    problem.line = ++line_;
    if (line_ == 1) line = without_mark(line);
    line = trimmed(line);
    if (line.empty()) return ReadResult::nothing;
    if (line[0] == '#') {
        format_->comment(line);
        return ReadResult::nothing;
    }
    switch (format_->read(line, record, problem)) {
        case LineResult::record: return ReadResult::record;
        case LineResult::problem: return ReadResult::problem;
        case LineResult::foreign: ++foreign_frames_; break;
        case LineResult::nothing: break;
    }
    return ReadResult::nothing;
}

void LineReader::skip_line(Problem& problem) {
    const std::size_t unread = source_.unread().size();
    skipping_ = line_size_ == unread;
    source_.consume(std::min(line_size_ + 1, unread));
    searched_ = 0;
    problem.line = ++line_;
    describe(problem, "the line is longer than ", max_line, " bytes");
}

ReadResult LineReader::report_failure(Problem& problem) {
    if (failure_reported_) return ReadResult::end;
    failure_reported_ = true;
    source_.consume(source_.unread().size());
    searched_ = 0;
    problem.line = line_ + 1;
    describe(problem, "cannot read on: ", source_.error());
    return ReadResult::problem;
}

}  // namespace vistel
