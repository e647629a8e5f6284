#pragma once

#include <memory>
#include <string_view>

#include "output/sink.h"
#include "pgn_vistel/core/render.h"

namespace vistel {

/// A message on its way to an output.
struct TimedMessage {
    const N2KMsg& msg;
    const pgn_vistel::core::PgnDef* pgn;  ///< null when it is not catalogued
    pgn_vistel::core::MessageTime time;
    std::string_view bus = {};  ///< that it came on; empty where that is not to be told
};

/// One form of output. Nothing is allocated for a message.
class MessageWriter {
  public:
    virtual ~MessageWriter() = default;
    virtual void begin(Sink&) {}
    virtual void write(Sink& out, const TimedMessage& message) = 0;
};

/// The lines of the monitor: a message's own, which ends in the bus, then its fields indented by four blanks.
/// `plain_numbers`: without their hexadecimal form.
std::unique_ptr<MessageWriter> make_text_writer(const pgn_vistel::core::UnitSelection& units,
                                                bool plain_numbers);

/// One JSON object a line; the bus is its first member.
std::unique_ptr<MessageWriter> make_json_writer(const pgn_vistel::core::UnitSelection& units);

/// One row a field, with a header. `bus`: all messages tell theirs, in the last column.
std::unique_ptr<MessageWriter> make_csv_writer(const pgn_vistel::core::UnitSelection& units,
                                               bool bus = false);

}  // namespace vistel
