#pragma once

#include <cassert>
#include <chrono>
#include <cstring>
#include <optional>
#include <string_view>

#include "readers/byte_source.h"
#include "readers/content_kind.h"
#include "readers/line_format.h"
#include "readers/record_reader.h"
#include "text/characters.h"

namespace vistel {

/// Longest line read, line end not counted. The longest message takes 5,400 bytes as plain text, and as JSON
/// with hundreds of fields about 100,000.
constexpr std::size_t max_line = 131'072;

/// What a line says: without the blanks around it, and the zeros that serial lines leave there.
constexpr std::string_view within_line(std::string_view text) {
    const auto is_nothing = [](char c) { return c == '\0' || is_blank(c); };
    while (!text.empty() && is_nothing(text.back())) text.remove_suffix(1);
    while (!text.empty() && is_nothing(text.front())) text.remove_prefix(1);
    return text;
}

/// Cuts the next line with its line end off `text`; false when there is no complete one. `line` gets it
/// without the blanks around it. The last line of all may lack its end: that is for the caller.
[[nodiscard]] bool take_line(std::string_view& text, std::string_view& line);

/// Cuts the rest off `text` as the last line, if there is any.
[[nodiscard]] bool take_rest(std::string_view& text, std::string_view& line);

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

    /// What has come and is not taken.
    std::string_view unread() const {
        return number_ == 0 ? without_mark(source_.unread()) : source_.unread();
    }
    bool ended() const { return source_.ended(); }
    /// Has some more come. False when that takes a wait which is not wanted, or was cut short.
    bool fetch(ByteSource::Wait wait) { return source_.fill(wait) != ByteSource::Fill::idle; }

  private:
    enum class Found { line, too_long, idle, failed, end };

    [[nodiscard]] bool take_ready_line(std::string_view& line);
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
    if (line.empty() || line.front() <= ' ' || line.back() <= ' ') line = within_line(line);
    return true;
}

/// Reads a text format line by line.
template <LineFormat Format>
class LineReader final : public RecordReader {
  public:
    explicit LineReader(ByteSource& source, ContentKind contents = ContentKind::as_it_seems)
        : lines_(source) {
        if constexpr (requires { format_.set_contents(contents); }) format_.set_contents(contents);
    }

    ReadResult next(Record& record, Problem& problem) override {
        const char* const end = format_.read_usual(lines_.ahead(), record);
        if (end == nullptr) [[unlikely]]
            return next_of_any_shape(record, problem);
        lines_.pass(end);
        return ReadResult::record;
    }

    bool would_wait() override { return !settle(ByteSource::Wait::no) || lines_.would_wait(); }
    std::uint64_t foreign_frames() const override { return foreign_frames_; }
    std::uint64_t dropped_frames() const override { return dropped_frames_of(format_); }
    std::string_view bus_name(std::uint8_t bus) const override { return bus_name_of(format_, bus); }

  private:
    [[gnu::noinline]] ReadResult next_of_any_shape(Record& record, Problem& problem) {
        if (!settle(ByteSource::Wait::yes)) return ReadResult::nothing;
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

    /// Shows the format what follows, where its next line cannot be understood without. False when that has
    /// not come.
    bool settle(ByteSource::Wait wait) {
        if constexpr (ForesightedFormat<Format>) {
            if (!format_.is_settled()) [[unlikely]]
                return look_ahead(wait);
        }
        return true;
    }

    [[gnu::noinline]] bool look_ahead(ByteSource::Wait wait) {
        constexpr std::size_t most_ahead = 65536;
        for (;;) {
            const std::string_view ahead = lines_.unread().substr(0, most_ahead);
            const bool is_whole = lines_.ended() && ahead.size() < most_ahead;
            const bool is_all = is_whole || ahead.size() == most_ahead;
            std::string_view text = ahead, next, line;
            const auto take = [&](std::string_view& taken) {
                return take_line(text, taken) || (is_whole && take_rest(text, taken));
            };
            bool is_clear = take(next) ? !depends_on_later(next) : is_all;
            text = ahead.substr(foreseen_);
            while (!is_clear && take(line)) {
                if (line.starts_with('#')) {
                    format_.comment(line);
                } else if (!line.empty()) {
                    format_.foresee(line);
                }
                foreseen_ = ahead.size() - text.size();
                is_clear = !depends_on_later(next);
            }
            if (!is_clear && (is_all || (!next.empty() && is_silent()))) {
                format_.settle();
                is_clear = true;
            }
            if (is_clear) {
                foreseen_ = 0;
                silent_since_.reset();
                return true;
            }
            if (lines_.fetch(wait)) {
                silent_since_.reset();
            } else if (next.empty() || !is_silent()) {
                return false;
            }
        }
    }

    /// Whether nothing has come for so long that a line of a live source should not wait for others.
    bool is_silent() {
        constexpr std::chrono::milliseconds longest_wait{200};
        const auto now = std::chrono::steady_clock::now();
        if (!silent_since_) silent_since_ = now;
        return now - *silent_since_ >= longest_wait;
    }

    bool depends_on_later(std::string_view line) {
        return !line.empty() && line[0] != '#' && format_.depends_on_later(line);
    }

    Lines lines_;
    Format format_;
    std::size_t foreseen_ = 0;  // unread bytes that a format which is not settled has been shown
    std::optional<std::chrono::steady_clock::time_point> silent_since_;  // while a line waits for others
    std::uint64_t foreign_frames_ = 0;
};

}  // namespace vistel
