#pragma once

#include "writers/record_writer.h"

namespace vistel {

/// What PcapFormat reads: packets with frames as Linux has them, times in nanoseconds.
class PcapWriter final : public FrameWriter {
  public:
    void begin(Record::Kind kind, std::string& out) override;
    RecordTime::Origin origin_written(RecordTime::Origin origin) const override {
        return origin == RecordTime::Origin::epoch ? origin : RecordTime::Origin::start;
    }

  private:
    void put_frame(std::uint32_t identifier, const Record& record, std::string& out) override;
};

}  // namespace vistel
