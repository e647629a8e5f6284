#include "readers/line_reader.h"

#include <algorithm>

namespace vistel {

bool take_line(std::string_view& text, std::string_view& line) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return false;
    line = within_line(text.substr(0, end));
    text.remove_prefix(end + 1);
    return true;
}

bool take_rest(std::string_view& text, std::string_view& line) {
    line = within_line(text);
    text.remove_prefix(text.size());
    return !line.empty();
}

std::string_view without_mark(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    if (text.starts_with(mark)) text.remove_prefix(mark.size());
    return text;
}

Lines::Found Lines::find(ByteSource::Wait wait) {
    for (;;) {
        const std::string_view unread = source_.unread();
        const std::size_t end = unread.find('\n', searched_);
        if (end != std::string_view::npos) {
            searched_ = 0;
            size_ = end;
            if (!skipping_) return end <= max_line ? Found::line : Found::too_long;
            skipping_ = false;
            source_.consume(end + 1);
            continue;
        }
        if (skipping_) {
            source_.consume(unread.size());
            searched_ = 0;
        } else {
            searched_ = size_ = unread.size();
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

bool Lines::would_wait() {
    if (at_line_start_ && source_.unread().find('\n') != std::string_view::npos) return false;
    at_line_start_ = false;
    if (found_ == Found::idle) found_ = find(ByteSource::Wait::no);
    return found_ == Found::idle;
}

ReadResult Lines::take_any_line(std::string_view& line, Problem& problem) {
    at_line_start_ = false;
    const Found found = found_ == Found::idle ? find(ByteSource::Wait::yes) : found_;
    found_ = Found::idle;
    switch (found) {
        case Found::line: break;
        case Found::too_long: skip(problem); return ReadResult::problem;
        case Found::idle: return ReadResult::nothing;
        case Found::failed: return report_failure(problem);
        case Found::end: return ReadResult::end;
    }
    const std::string_view unread = source_.unread();
    line = unread.substr(0, size_);
    source_.consume(std::min(size_ + 1, unread.size()));
    searched_ = 0;
    at_line_start_ = true;
    if (++number_ == 1) line = without_mark(line);
    line = within_line(line);
    return ReadResult::record;
}

void Lines::skip(Problem& problem) {
    const std::size_t unread = source_.unread().size();
    skipping_ = size_ == unread;
    source_.consume(std::min(size_ + 1, unread));
    searched_ = 0;
    problem.put_at_line(++number_);
    describe(problem, "the line is longer than ", max_line, " bytes");
}

ReadResult Lines::report_failure(Problem& problem) {
    if (failure_reported_) return ReadResult::end;
    failure_reported_ = true;
    source_.consume(source_.unread().size());
    searched_ = 0;
    problem.put_at_line(number_ + 1);
    describe(problem, "cannot read on: ", source_.error());
    return ReadResult::problem;
}

}  // namespace vistel
