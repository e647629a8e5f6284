#pragma once

#include <memory>
#include <string_view>

#include "readers/byte_source.h"
#include "readers/line_format.h"
#include "readers/record_reader.h"

namespace vistel {

/// Longest line read, line end not counted. The longest message takes 5,400 bytes as plain text.
constexpr std::size_t max_line = 16384;

/// Cuts the next line with its line end off `text`; false when there is no complete one. `line` gets it
/// without the blanks around it. The last line of all may lack its end: that is for the caller.
bool take_line(std::string_view& text, std::string_view& line);

/// `text`, which begins a recording, without the byte order mark that some editors put there.
std::string_view without_mark(std::string_view text);

/// Reads a text format line by line. Of a line that is too long no more than a buffer is ever held.
class LineReader final : public RecordReader {
  public:
    LineReader(ByteSource& source, std::unique_ptr<LineFormat> format);

    ReadResult next(Record& record, Problem& problem) override;
    bool would_wait() override;
    std::uint64_t foreign_frames() const override { return foreign_frames_; }

  private:
    enum class Found { line, too_long, idle, failed, end };

    void start();
    void look_ahead();
    Found find_line(ByteSource::Wait wait);
    ReadResult read_line(Record& record, Problem& problem);
    void skip_line(Problem& problem);
    ReadResult report_failure(Problem& problem);

    ByteSource& source_;
    std::unique_ptr<LineFormat> format_;
    bool started_ = false;
    Found found_ = Found::idle;  // what would_wait() has found already
    std::size_t line_size_ = 0;  // of the line found, without its end
    std::size_t searched_ = 0;   // unread bytes known to hold no line end
    bool skipping_ = false;      // within the rest of a line that is too long
    bool failure_reported_ = false;
    std::uint64_t line_ = 0;
    std::uint64_t foreign_frames_ = 0;
};

}  // namespace vistel
