#pragma once

#include "readers/line_format.h"
#include "readers/timestamp.h"

namespace vistel {

/// `timestamp,priority,pgn,source,destination,length,hh,hh,...`, header decimal, payload hexadecimal.
///
/// Numbers above those of PGNs, within 32 bits, are a gateway's own messages, which are foreign.
/// Lines hold whole messages or frames, which a single line does not tell. `# format=FAST` or a line with
/// more bytes than a frame has means whole messages, from then on; until then every line is a frame.
class PlainFormat {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    void comment(std::string_view line);
    bool wants_look_ahead() const { return !whole_messages_; }

  private:
    const char* read_usual_header(std::string_view line, Record& record, unsigned& length) const;
    LineResult read_header(std::string_view line, Record& record, unsigned& length, std::string_view& payload,
                           Problem& problem);

    bool whole_messages_ = false;
    TimestampParser timestamps_;
};

}  // namespace vistel
