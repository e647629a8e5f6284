#pragma once

#include <memory>

#include "output/sink.h"
#include "output/timed_message.h"
#include "pgn_vistel/pgn_db.h"

namespace vistel {

/// One form of output. Nothing is allocated for a message.
class MessageWriter {
  public:
    virtual ~MessageWriter() = default;
    virtual void begin(Sink&) {}
    virtual void write(Sink& out, const TimedMessage& message) = 0;
};

/// The lines of the monitor: a message's own, then its fields indented by four blanks. `flags`: see
/// `QV_N2K_PGN_DB_c::get_field_str`.
std::unique_ptr<MessageWriter> make_text_writer(QV_N2K_PGN_DB_c& db, unsigned long flags);

/// One JSON object a line.
std::unique_ptr<MessageWriter> make_json_writer(QV_N2K_PGN_DB_c& db);

/// One row a field, with a header.
std::unique_ptr<MessageWriter> make_csv_writer(QV_N2K_PGN_DB_c& db);

}  // namespace vistel
