#pragma once

#include "writers/record_writer.h"

namespace vistel {

/// What ActisenseAsciiFormat reads.
class ActisenseAsciiWriter final : public WholeMessageWriter {
  public:
    RecordTime::Origin origin_written(const RecordTime&) const override { return RecordTime::Origin::day; }
    const char* put(const Record& record, std::string& out) override;
};

}  // namespace vistel
