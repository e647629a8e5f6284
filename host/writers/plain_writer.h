#pragma once

#include "writers/record_writer.h"

namespace vistel {

/// What PlainFormat reads. Frames stay frames; in front of messages stands that they are whole.
class PlainWriter final : public RecordWriter {
  public:
    bool takes(Record::Kind) const override { return true; }
    void begin(Record::Kind kind, std::string& out) override;
    RecordTime::Origin origin_written(const RecordTime& time) const override {
        return time.origin == RecordTime::Origin::start ? RecordTime::Origin::day : time.origin;
    }
    const char* put(const Record& record, std::string& out) override;
};

}  // namespace vistel
