#pragma once

/// @file
/// Messages as text: the lines of the monitor (wide for windows, UTF-8 for programs), JSON, CSV.
///
/// The UTF-8 renderers write straight into the caller's memory, nothing is formatted twice and nothing is
/// allocated. A message that is larger than the memory comes in pieces, which end between two fields:
///
///     char area[4 * piece_room];
///     JsonRenderer json(units);
///     json.start(msg, find_definition(Definitions::corrected, msg), time);
///     do {
///         const char* const end = json.write(area, area + sizeof area);
///         ...  // take area .. end, which is not terminated
///     } while (!json.is_done());

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "pgn_vistel/core/decode.h"

namespace pgn_vistel::core {

/// Characters that one line of the monitor has at the most, terminator included.
constexpr int line_size = 1024;

/// Bytes that a renderer must have room for when it goes on: a field with its texts is never more. What
/// stands behind the end that it returns is overwritten, too.
constexpr std::size_t piece_room = 16384;

/// When a message came, in nanoseconds; shown in microseconds.
struct MessageTime {
    std::int64_t since_start = 0;  ///< since the recording's first message, say; may be negative
    bool has_absolute = false;     ///< whether the absolute time is known and shown
    std::int64_t absolute = 0;     ///< since 1970, UTC
    bool is_known = true;          ///< false: there is none, which is shown as "-", null or an empty column
};

/// The line of a message's stream as a terminated text: time stamp in seconds, PGN and the PGN's name. What
/// does not fit into `size` characters (`line_size` is always enough) is dropped; a null buffer or a size of
/// 0 takes nothing. `pgn` is the message's catalogue row, or null. Returns the characters written, without
/// the terminator.
int print_stream_line(wchar_t* buf, int size, const N2KMsg& msg, const PgnDef* pgn);

/// The lines under a stream's line, one after the other, for windows: source, destination, the fields, and
/// the bytes that the walk leaves undecoded (`MessageWalk::undecoded_from`).
class StreamLines {
  public:
    /// `pgn` is the message's catalogue row, or null. `plain_numbers`: without their hexadecimal form.
    /// Message, units and scratch must outlive the object.
    StreamLines(const PgnDef* pgn, const N2KMsg& msg, const UnitSelection& units, TextScratch& scratch,
                bool plain_numbers);

    /// Prints the next line, terminated, into `size` characters; -1 after the last, else the characters
    /// written, as by `print_stream_line`. Control characters off the bus stand in it as they are.
    [[nodiscard]] int next(wchar_t* buf, int size);

  private:
    enum class Stage : std::uint8_t { source, destination, fields, over };

    const N2KMsg& msg_;
    const UnitSelection& units_;
    TextScratch& scratch_;
    const bool plain_numbers_;
    MessageWalk walk_;
    Stage stage_ = Stage::source;
};

/// The label of a field of the catalogue as the lines show it, without the colon: in a repeating group that
/// numbers its labels, with the number of the round. Writes UTF-8 to `at`, which has room for `piece_room`
/// bytes, and returns its end.
[[nodiscard]] char* write_label(char* at, const FieldDef& field, int repeat);

/// The name of a field of the catalogue for programs, in snake case, unique within its message and never
/// changed; the rounds of a repeating group share it.
[[nodiscard]] std::string_view field_key(const FieldDef& field);

/// The value of a field as the lines show it, with its unit or alone; `reading` is what `read_field` gave for
/// the field, in any unit. Control characters of a text are written as they are: this is for those who
/// compare values. Memory and result are as those of `write_label`.
[[nodiscard]] char* write_value(char* at, const FieldDef& field, const FieldReading& reading, bool with_unit);

/// The same of the field that a walk has come to, with what other fields say of it. `reading` is what
/// `MessageWalk::read` gave, and the walk's `position` still where the field begins.
[[nodiscard]] char* write_value(char* at, const MessageWalk& walk, const FieldReading& reading,
                                bool with_unit);

/// What the renderers share. One object serves any number of messages, one after the other; each thread has
/// its own. The units are copied, and a scratch is contained: about three kilobytes.
class Renderer {
  public:
    /// Whether all of the message has been written. True before the first message, too.
    [[nodiscard]] bool is_done() const { return stage_ == Stage::over; }

  protected:
    /// @cond
    enum class Stage : std::uint8_t { head, fields, rest, over };

    explicit Renderer(const UnitSelection& units) : units_(units) {}
    /// Dates and times of day come as they are counted: programs get them by ISO 8601, whatever a user
    /// picked.
    static UnitSelection for_programs(UnitSelection units);
    void start(const N2KMsg& msg, const PgnDef* pgn);
    char* write_utc(char* at, std::int64_t nanoseconds);

    const UnitSelection units_;
    TextScratch scratch_;
    const N2KMsg* msg_ = nullptr;
    const PgnDef* pgn_ = nullptr;
    MessageWalk walk_;
    Stage stage_ = Stage::over;
    /// @endcond

  private:
    std::int64_t day_ = INT64_MIN;  // whose date stands in `date_`
    std::array<char, 11> date_;     // "2026-09-10T"
};

/// The lines of the monitor: a message's own, then its fields indented by four blanks. Control characters off
/// the bus become U+FFFD.
class TextRenderer : public Renderer {
  public:
    /// `plain_numbers`: without their hexadecimal form.
    TextRenderer(const UnitSelection& units, bool plain_numbers)
        : Renderer(units), plain_numbers_(plain_numbers) {}

    /// Begins a message, which must outlive its writing. `pgn` is its catalogue row, or null. `time_stamp` is
    /// in units of 10 ms and shown instead of the message's own.
    void start(const N2KMsg& msg, const PgnDef* pgn, std::uint32_t time_stamp);
    /// The same with a time of any length, of which `since_start` is shown, cut to hundredths of a second.
    void start(const N2KMsg& msg, const PgnDef* pgn, const MessageTime& time);
    /// Writes on, at most up to `limit`, which is `piece_room` bytes behind `at` or more. Returns the end.
    /// Not before `start`.
    [[nodiscard]] char* write(char* at, char* limit);

  private:
    char* write_head(char* at) const;

    const bool plain_numbers_;
    MessageTime time_;
};

/// One JSON object a line:
///
///     {"time":0.250000,"absolute":"2026-09-10T08:00:00.250000Z","pgn":127250,"name":"Vessel Heading",
///      "priority":2,"source":3,"destination":255,"fields":[
///      {"number":2,"key":"heading_sensor_reading","label":"Heading Sensor Reading",
///      "value":2.1537,"unit":"rad","text":null,"raw":"2154"}]}
///
/// `time` is null where it is not known. `key` is the field's name for programs and never changes. `value` is
/// a number, a text without the characters that fill it up, a date or a time of day by ISO 8601, or null
/// where it is not available; `unit` is `unit_ascii`, `text` the meaning of a code, `raw` the field's bits,
/// the low byte first. A field of a repeating group says its `round` behind that, from 1. `data` has the
/// bytes that the walk leaves undecoded, where there are any (`MessageWalk::undecoded_from`).
class JsonRenderer : public Renderer {
  public:
    /// Values come in these units, `UnitSelection::si()` say.
    explicit JsonRenderer(const UnitSelection& units) : Renderer(for_programs(units)) {}

    /// Begins a message, which must outlive its writing. `pgn` is its catalogue row, or null.
    void start(const N2KMsg& msg, const PgnDef* pgn, const MessageTime& time);
    /// See `TextRenderer::write`.
    [[nodiscard]] char* write(char* at, char* limit);

  private:
    char* write_head(char* at);

    MessageTime time_;
    bool first_ = true;
};

/// One row a field, with the members of JSON as columns; a message without fields has a row for its bytes.
/// Control characters become U+FFFD. A text that begins with =, +, -, @ or an apostrophe has an apostrophe in
/// front, so that no spreadsheet takes it for a formula; numbers are as they are.
class CsvRenderer : public Renderer {
  public:
    /// Values come in these units, `UnitSelection::si()` say.
    explicit CsvRenderer(const UnitSelection& units) : Renderer(for_programs(units)) {}

    /// The header line, which comes once, in front of all messages. Needs `piece_room` bytes; returns the
    /// end.
    [[nodiscard]] static char* write_header(char* at);
    /// Begins a message, which must outlive its writing. `pgn` is its catalogue row, or null.
    void start(const N2KMsg& msg, const PgnDef* pgn, const MessageTime& time);
    /// See `TextRenderer::write`.
    [[nodiscard]] char* write(char* at, char* limit);

  private:
    std::array<char, 256> head_;  // the columns that all rows of a message share
    int head_size_ = 0;
    bool any_ = false;
};

}  // namespace pgn_vistel::core
