#pragma once

#include <optional>
#include <string>

#include "writers/record_writer.h"

namespace vistel {

/// Gives a record its checksum and appends it, framed. `escape` is doubled, too, unless it is 0.
void append_bst(std::string& record, char escape, std::string& out);

/// Makes of messages what BstReader reads, and frames it for a stream.
class BstRecordWriter {
  public:
    /// Appends the message, framed. `escape` is doubled, too, unless it is 0.
    const char* put(const Record& record, char escape, std::string& out);

  private:
    std::uint32_t milliseconds_of(const RecordTime& time);

    /// Gateways count from their start: times that do not, from the first message on.
    std::optional<std::int64_t> start_;
    std::string bytes_;
};

}  // namespace vistel
