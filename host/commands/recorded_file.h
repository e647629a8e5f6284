#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "output/sink.h"
#include "text/result.h"

namespace vistel {

/// When the next file is begun: at a size or after a time, never if both are 0.
struct Rotation {
    std::uint64_t bytes = 0;
    std::chrono::seconds time{0};

    bool is_wanted() const { return bytes > 0 || time.count() > 0; }
};

/// `100M` (k, M, G: powers of 1000) or `1h` (s, m, h, d).
Result<Rotation> parse_rotation(std::string_view text);

/// A file that is written, or one after the other of them, each of which begins with `head` and is whole by
/// itself. With a rotation the time of its beginning (UTC) is put into the name of each, in front of the
/// last dot: names that sort by time. None is written over; without a rotation it is a failure if the file is
/// there and holds something.
class RecordedFile {
  public:
    RecordedFile(std::string name, const Rotation& rotation, std::string head)
        : name_(std::move(name)), rotation_(rotation), head_(std::move(head)) {}
    ~RecordedFile() { close(); }
    RecordedFile(const RecordedFile&) = delete;
    RecordedFile& operator=(const RecordedFile&) = delete;

    /// Begins the first one, or the next.
    Status open();

    /// Writes a piece, before which a new file is begun if it is time and the piece before ended a record.
    /// Where none does so for long, it is begun all the same.
    Status put(std::string_view piece, bool ends_record);
    void flush() { out_->flush(); }

    const Sink& out() const { return *out_; }
    /// The file that is written at present.
    const std::string& current() const { return current_; }

  private:
    using Clock = std::chrono::steady_clock;

    bool is_due() const;
    void close();

    const std::string name_;
    const Rotation rotation_;
    const std::string head_;
    std::string current_;
    std::unique_ptr<Sink> out_;
    int descriptor_ = -1;
    std::uint64_t written_ = 0;
    Clock::time_point since_;
    std::int64_t last_name_ = 0;  // the second that the last one has in its name
    bool is_whole_ = true;        // the last piece ended a record
    unsigned late_ = 0;           // pieces that have been waited for one that does
};

}  // namespace vistel
