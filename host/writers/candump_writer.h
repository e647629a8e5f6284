#pragma once

#include <string>
#include <vector>

#include "writers/record_writer.h"

namespace vistel {

/// What CandumpFormat reads, as candump logs it. Interfaces whose names Linux could not have, that have the
/// same or none are numbered, from can0 on.
class CandumpWriter final : public FrameWriter {
  public:
    std::string_view name_bus(std::uint8_t bus, std::string_view name) override;
    RecordTime::Origin origin_written(const RecordTime& time) const override {
        return time.origin == RecordTime::Origin::none ? time.origin : origin_of_written_seconds(time);
    }

  private:
    bool is_taken(std::string_view name) const;
    void put_frame(std::uint32_t identifier, const Record& record, std::string& out) override;

    std::vector<std::string> names_;  // by bus; empty for those that nobody has named
};

}  // namespace vistel
