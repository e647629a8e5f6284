#pragma once

#include "writers/record_writer.h"

namespace vistel {

/// What CandumpFormat reads, as candump logs it. Interfaces are numbered from can0 on.
class CandumpWriter final : public FrameWriter {
  private:
    void put_frame(std::uint32_t identifier, const Record& record, std::string& out) override;
};

}  // namespace vistel
