#pragma once

#include <cassert>
#include <cstring>
#include <string_view>

#include "readers/byte_source.h"
#include "readers/line_format.h"
#include "readers/record_reader.h"
#include "text/words.h"

namespace vistel {

/// Longest line read, line end not counted. The longest message takes 5,400 bytes as plain text.
constexpr std::size_t max_line = 16384;

/// Cuts the next line with its line end off `text`; false when there is no complete one. `line` gets it
/// without the blanks around it. The last line of all may lack its end: that is for the caller.
bool take_line(std::string_view& text, std::string_view& line);

/// `text`, which begins a recording, without the byte order mark that some editors put there.
std::string_view without_mark(std::string_view text);

/// Cuts a byte source into lines. Of a line that is too long no more than a buffer is ever held.
class Lines {
  public:
    explicit Lines(ByteSource& source) : source_(source) {}

    /// Takes the next line, without the blanks around it. Anything but `record` tells what came instead.
    ReadResult take(std::string_view& line, Problem& problem) {
        return take_ready_line(line) ? ReadResult::record : take_any_line(line, problem);
    }
    bool would_wait();

    /// What is there from the beginning of the next line on, as far as that is known: else nothing.
    std::string_view ahead() const { return at_line_start_ ? source_.unread() : std::string_view{}; }

    /// Passes a line of what is ahead, up to its line end.
    void pass(const char* end) {
        assert(*end == '\n');
        source_.consume(static_cast<std::size_t>(end + 1 - source_.unread().data()));
        ++number_;
    }

    /// Number of the line that was taken last, from 1.
    std::uint64_t number() const { return number_; }

    /// What is there of a file's beginning, before the first line is taken. Empty for a pipe or terminal.
    std::string_view beginning();

  private:
    enum class Found { line, too_long, idle, failed, end };

    bool take_ready_line(std::string_view& line);
    ReadResult take_any_line(std::string_view& line, Problem& problem);
    Found find(ByteSource::Wait wait);
    void skip(Problem& problem);
    ReadResult report_failure(Problem& problem);

    ByteSource& source_;
    bool at_line_start_ = false;  // of any line but the first, with nothing known of what follows
    Found found_ = Found::idle;   // what would_wait() has found already
    std::size_t size_ = 0;        // of the line found, without its end
    std::size_t searched_ = 0;    // unread bytes known to hold no line end
    bool skipping_ = false;       // within the rest of a line that is too long
    bool failure_reported_ = false;
    std::uint64_t number_ = 0;
};

inline bool Lines::take_ready_line(std::string_view& line) {
    if (!at_line_start_) return false;
    const std::string_view unread = source_.unread();
    const void* const end = std::memchr(unread.data(), '\n', unread.size());
    if (end == nullptr) return false;
    const auto size = static_cast<std::size_t>(static_cast<const char*>(end) - unread.data());
    if (size > max_line) return false;
    source_.consume(size + 1);
    ++number_;
    line = {unread.data(), size};
    if (line.empty() || line.front() <= ' ' || line.back() <= ' ') line = trimmed(line);
    return true;
}

/// Reads a text format line by line.
template <LineFormat Format>
class LineReader final : public RecordReader {
  public:
    explicit LineReader(ByteSource& source) : lines_(source) {
        if (format_.wants_look_ahead()) look_ahead();
    }

    ReadResult next(Record& record, Problem& problem) override {
        const char* const end = format_.read_usual(lines_.ahead(), record);
        if (end == nullptr) [[unlikely]]
            return next_of_any_shape(record, problem);
        lines_.pass(end);
        return ReadResult::record;
    }

    bool would_wait() override { return lines_.would_wait(); }
    std::uint64_t foreign_frames() const override { return foreign_frames_; }
    std::string_view bus_name(std::uint8_t bus) const override { return bus_name_of(format_, bus); }

  private:
    [[gnu::noinline]] ReadResult next_of_any_shape(Record& record, Problem& problem) {
        std::string_view line;
        const ReadResult taken = lines_.take(line, problem);
        if (taken != ReadResult::record) return taken;
        if (line.empty()) return ReadResult::nothing;
        if (line[0] == '#') {
            format_.comment(line);
            return ReadResult::nothing;
        }
        const LineResult result = format_.read(line, record, problem);
        if (result == LineResult::record) [[likely]]
            return ReadResult::record;
        if (result == LineResult::problem) {
            problem.put_at_line(lines_.number());
            return ReadResult::problem;
        }
        if (result == LineResult::foreign) ++foreign_frames_;
        return ReadResult::nothing;
    }

    /// Shows the format the beginning of a file. What its lines hold is read again later.
    void look_ahead() {
        std::string_view text = lines_.beginning(), line;
        Record record;
        Problem problem;
        while (format_.wants_look_ahead()) {
            if (const char* const end = format_.read_usual(text, record); end != nullptr) {
                text.remove_prefix(static_cast<std::size_t>(end + 1 - text.data()));
                continue;
            }
            if (!take_line(text, line)) break;
            if (line.empty()) continue;
            if (line[0] == '#') {
                format_.comment(line);
            } else {
                (void)format_.read(line, record, problem);
            }
        }
    }

    Lines lines_;
    Format format_;
    std::uint64_t foreign_frames_ = 0;
};

}  // namespace vistel
