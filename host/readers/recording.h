#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "can/record.h"
#include "readers/byte_source.h"
#include "readers/day_clock.h"
#include "readers/formats.h"
#include "readers/problem.h"
#include "readers/record_reader.h"

namespace vistel {

struct RecordingOptions {
    std::string format = {};                          ///< name of a format; empty to tell it by the contents
    ContentKind contents = ContentKind::as_it_seems;  ///< for formats that do not tell
    int patience_ms = -1;  ///< longest wait of next() for a pipe or terminal; negative for no limit
    std::function<void()> before_wait = {};  ///< called before every such wait: time to show what there is
};

/// A recording or a live source, from which records are taken one by one:
///
///     Recording recording;
///     if (const auto opened = recording.open(path); !opened) ...  // opened.error().text
///     for (Record record;;) {
///         switch (recording.next(record)) { ... }
///     }
class Recording {
  public:
    Recording() = default;
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// Opens a file, or standard input for "-", compressed or not. Once only.
    Status open(const std::string& path, const RecordingOptions& options = {});

    /// The same for an input that is open already.
    Status attach(std::unique_ptr<ByteInput> input, const RecordingOptions& options = {});

    /// The same for a source that gives records; `name` is that of their format.
    void attach(std::unique_ptr<RecordReader> reader, std::string_view name);

    /// Takes the next record, or tells what came instead. A caller goes on after `problem` (problem() then
    /// tells it) and `nothing`, which also stands for a wait that the patience or a signal cut short.
    /// A record of a live source that has no absolute time has that of its arrival.
    /// `record` is fresh or as the last call left it: behind its length the payload must be 0, and is so
    /// again.
    ReadResult next(Record& record);

    /// The last problem met.
    const Problem& problem() const { return problem_; }

    /// Whether next() would have to wait for input.
    bool would_wait();

    /// Of what may bring more, but is read no further: whether the bytes so far are of no known format, which
    /// problem() then tells. A line that has only begun says nothing of that. True once.
    bool is_left_unknown();

    /// Name of the format; empty as long as it is not known.
    std::string_view format_name() const { return format_name_; }

    /// Of a compressed recording both count its compressed bytes.
    std::uint64_t bytes_read() const { return source_.position(); }
    std::uint64_t bytes_total() const { return source_.total(); }  ///< 0 when unknown
    /// Whether it is there from the first byte to the last, so that it can be read again.
    bool is_file() const { return source_.is_file(); }

    /// @{ What came of it, once its end is reached: a file without a single byte; places that could not be
    /// read and nothing else, neither a record nor a frame of another kind.
    bool is_empty_file() const {
        return is_file() && bytes_total() == 0 && source_.consumed() == 0 && source_.unread().empty();
    }
    bool is_none_of_its_format() const { return has_problems_ && !has_records_ && foreign_frames() == 0; }
    /// @}

    /// How the recording names an interface of its records; empty where it does not.
    std::string_view bus_name(std::uint8_t bus) const {
        return reader_ ? reader_->bus_name(bus) : std::string_view{};
    }

    /// Frames passed over because they are not NMEA 2000.
    std::uint64_t foreign_frames() const { return reader_ ? reader_->foreign_frames() : 0; }

    /// Frames that the recording itself says it lacks.
    std::uint64_t dropped_frames() const { return reader_ ? reader_->dropped_frames() : 0; }

  private:
    enum class State { ready, unknown_format, idle };

    State prepare(ByteSource::Wait wait);
    void use(const Format& format);
    void stamp(RecordTime& time);
    ReadResult explain_end();

    ByteSource source_;
    ContentKind contents_ = ContentKind::as_it_seems;
    std::size_t passed_ = 0;  // bytes of the head that speak for no format
    std::string_view format_name_;
    std::unique_ptr<RecordReader> reader_;
    DayClock day_clock_;
    Problem problem_;
    bool has_records_ = false;
    bool has_problems_ = false;  // places that could not be read
    bool end_explained_ = false;
};

}  // namespace vistel
