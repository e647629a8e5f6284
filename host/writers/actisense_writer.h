#pragma once

#include "writers/bst_record_writer.h"

namespace vistel {

/// What ActisenseFormat reads, as received from the bus.
class ActisenseWriter final : public WholeMessageWriter {
  public:
    RecordTime::Origin origin_written(const RecordTime& time) const override {
        return time.origin == RecordTime::Origin::none ? time.origin : RecordTime::Origin::start;
    }
    const char* put(const Record& record, std::string& out) override { return records_.put(record, 0, out); }

  private:
    BstRecordWriter records_;
};

}  // namespace vistel
