#pragma once

#include <memory>

#include "readers/record_reader.h"
#include "readers/recording.h"
#include "sources/can_port.h"

namespace vistel {

/// The frames of a CAN interface as records. Never ends.
class CanReader final : public RecordReader {
  public:
    CanReader(std::shared_ptr<CanPort> port, const RecordingOptions& options)
        : port_(std::move(port)), patience_(options.patience_ms), before_wait_(options.before_wait) {}

    ReadResult next(Record& record, Problem& problem) override;
    bool would_wait() override;
    std::uint64_t foreign_frames() const override { return foreign_frames_; }
    std::string_view bus_name(std::uint8_t) const override { return {}; }

  private:
    std::shared_ptr<CanPort> port_;
    int patience_;
    std::function<void()> before_wait_;
    CanFrame frame_;
    bool has_frame_ = false;  // received, not yet given
    std::uint64_t foreign_frames_ = 0;
};

}  // namespace vistel
