#pragma once

#include "writers/record_writer.h"

namespace vistel {

/// What PcapFormat reads: packets with frames as Linux has them, times in nanoseconds.
class PcapWriter final : public FrameWriter {
  public:
    void begin(Record::Kind kind, std::string& out) override;
    RecordTime::Origin origin_written(const RecordTime& time) const override {
        return origin_of_written_seconds(time);
    }

  private:
    void put_frame(std::uint32_t identifier, const Record& record, std::string& out) override;
};

}  // namespace vistel
