#pragma once

/// @file
/// A message as the monitor's lines.

#include "pgn_vistel/decode.h"

namespace pgn_vistel {

/// Characters that one line of the monitor has at the most, terminator included.
constexpr int line_size = 1024;

/// The line of a message's stream: time stamp in seconds, PGN and the PGN's name. Returns the characters
/// written.
int print_stream_line(wchar_t* buf, int size, const N2KMsg& msg, const PgnDef* pgn);

/// The lines under a stream's line, one after the other: source, destination, the fields, and the whole
/// payload where the fields do not cover it.
class StreamLines {
  public:
    /// `pgn` is the message's catalogue row, or null. `flags` as in `QV_N2K_PGN_DB_c::get_field_str`. The
    /// database and the message must outlive the object.
    StreamLines(QV_N2K_PGN_DB_c& db, const PgnDef* pgn, const N2KMsg& msg, unsigned long flags);

    /// Prints the next line; -1 after the last, else the characters written.
    int next(wchar_t* buf, int size);

  private:
    enum class Stage { source, destination, fields, over };

    QV_N2K_PGN_DB_c& db_;
    const N2KMsg& msg_;
    const unsigned long flags_;
    MessageWalk walk_;
    Stage stage_ = Stage::source;
};

}  // namespace pgn_vistel
