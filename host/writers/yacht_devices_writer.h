#pragma once

#include "writers/record_writer.h"

namespace vistel {

/// What YachtDevicesFormat reads, all of it as received from the bus.
class YachtDevicesWriter final : public FrameWriter {
  public:
    RecordTime::Origin origin_written(const RecordTime&) const override { return RecordTime::Origin::day; }

  private:
    void put_frame(std::uint32_t identifier, const Record& record, std::string& out) override;
};

}  // namespace vistel
