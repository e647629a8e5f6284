#pragma once

#include "writers/bst_record_writer.h"

namespace vistel {

/// What ActisenseFormat reads, as received from the bus.
class ActisenseWriter final : public WholeMessageWriter {
  public:
    RecordTime::Origin origin_written(RecordTime::Origin origin) const override {
        return origin == RecordTime::Origin::none ? origin : RecordTime::Origin::start;
    }
    const char* put(const Record& record, std::string& out) override { return records_.put(record, 0, out); }

  private:
    BstRecordWriter records_;
};

}  // namespace vistel
