#pragma once

/// @file
/// Messages as text: the lines of the monitor (wide for windows, UTF-8 for programs), JSON, CSV.
///
/// The UTF-8 renderers write straight into the caller's memory, nothing is formatted twice and nothing is
/// allocated:
///
///     JsonRenderer json(units);
///     json.start(msg, find_pgn_def(msg.pgn), time);
///     do {
///         char* const at = ...;   // with room for piece_room bytes or more
///         char* const end = json.write(at, limit);
///     } while (!json.is_done());

#include <array>
#include <cstddef>
#include <cstdint>

#include "pgn_vistel/core/decode.h"

namespace pgn_vistel::core {

/// Characters that one line of the monitor has at the most, terminator included.
constexpr int line_size = 1024;

/// Bytes that a renderer must have room for when it goes on: a field with its texts is never more.
constexpr std::size_t piece_room = 16384;

/// When a message came, in nanoseconds.
struct MessageTime {
    std::int64_t since_start = 0;
    bool has_absolute = false;
    std::int64_t absolute = 0;  ///< since 1970, UTC
};

/// The line of a message's stream as a terminated text: time stamp in seconds, PGN and the PGN's name.
/// Returns the characters written.
int print_stream_line(wchar_t* buf, int size, const N2KMsg& msg, const PgnDef* pgn);

/// The lines under a stream's line, one after the other, for windows: source, destination, the fields, and
/// the whole payload where the fields do not cover it.
class StreamLines {
  public:
    /// `pgn` is the message's catalogue row, or null. `plain_numbers`: without their hexadecimal form.
    /// Message, units and scratch must outlive the object.
    StreamLines(const PgnDef* pgn, const N2KMsg& msg, const UnitSelection& units, TextScratch& scratch,
                bool plain_numbers);

    /// Prints the next line, terminated, into `size` characters; -1 after the last, else the characters
    /// written.
    int next(wchar_t* buf, int size);

  private:
    enum class Stage : std::uint8_t { source, destination, fields, over };

    const N2KMsg& msg_;
    const UnitSelection& units_;
    TextScratch& scratch_;
    const bool plain_numbers_;
    MessageWalk walk_;
    Stage stage_ = Stage::source;
};

/// What the renderers share. One object serves any number of messages, one after the other; each thread has
/// its own. The units are copied.
class Renderer {
  public:
    /// Whether all of the message has been written.
    bool is_done() const { return stage_ == Stage::over; }

  protected:
    enum class Stage : std::uint8_t { head, fields, rest, over };

    explicit Renderer(const UnitSelection& units) : units_(units) {}
    void start(const N2KMsg& msg, const PgnDef* pgn);
    char* write_utc(char* at, std::int64_t nanoseconds);

    const UnitSelection units_;
    TextScratch scratch_;
    const N2KMsg* msg_ = nullptr;
    const PgnDef* pgn_ = nullptr;
    MessageWalk walk_;
    Stage stage_ = Stage::over;

  private:
    std::int64_t day_ = INT64_MIN;  // whose date stands in `date_`
    std::array<char, 11> date_;     // "2026-09-10T"
};

/// The lines of the monitor: a message's own, then its fields indented by four blanks. Control characters off
/// the bus become U+FFFD.
class TextRenderer : public Renderer {
  public:
    TextRenderer(const UnitSelection& units, bool plain_numbers)
        : Renderer(units), plain_numbers_(plain_numbers) {}

    /// Begins a message, which must outlive its writing. `time_stamp` is in units of 10 ms.
    void start(const N2KMsg& msg, const PgnDef* pgn, std::uint32_t time_stamp);
    /// Writes on, at most up to `limit`, which is `piece_room` bytes behind `at` or more. Returns the end.
    char* write(char* at, char* limit);

  private:
    char* write_head(char* at) const;

    const bool plain_numbers_;
    std::uint32_t time_stamp_ = 0;
};

/// One JSON object a line.
class JsonRenderer : public Renderer {
  public:
    explicit JsonRenderer(const UnitSelection& units) : Renderer(units) {}

    /// Begins a message, which must outlive its writing.
    void start(const N2KMsg& msg, const PgnDef* pgn, const MessageTime& time);
    /// See `TextRenderer::write`.
    char* write(char* at, char* limit);

  private:
    char* write_head(char* at);

    MessageTime time_;
    bool first_ = true;
};

/// One row a field; a message without fields has a row for its bytes.
class CsvRenderer : public Renderer {
  public:
    explicit CsvRenderer(const UnitSelection& units) : Renderer(units) {}

    /// The header line.
    static char* write_header(char* at);
    /// Begins a message, which must outlive its writing.
    void start(const N2KMsg& msg, const PgnDef* pgn, const MessageTime& time);
    /// See `TextRenderer::write`.
    char* write(char* at, char* limit);

  private:
    std::array<char, 256> head_;  // the columns that all rows of a message share
    int head_size_ = 0;
    bool any_ = false;
};

}  // namespace pgn_vistel::core
