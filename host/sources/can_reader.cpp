#include "sources/can_reader.h"

#include <cstring>

#include "can/identifier.h"

namespace vistel {

ReadResult CanReader::next(Record& record, Problem&) {
    if (!has_frame_ && !port_->receive(frame_, 0)) {
        if (patience_ == 0) return ReadResult::nothing;
        if (before_wait_) before_wait_();
        if (!port_->receive(frame_, patience_)) return ReadResult::nothing;
    }
    has_frame_ = false;
    constexpr std::uint32_t flags = CanFrame::extended | CanFrame::remote | CanFrame::error;
    if ((frame_.identifier & flags) != CanFrame::extended) {
        ++foreign_frames_;
        return ReadResult::nothing;
    }
    record.kind = Record::Kind::frame;
    record.bus = 0;
    record.time = {frame_.time, RecordTime::Origin::epoch};
    set_header(record.msg, frame_.identifier & max_identifier);
    record.msg.length = frame_.length;
    std::memcpy(record.msg.data, frame_.data, sizeof frame_.data);
    return ReadResult::record;
}

bool CanReader::would_wait() {
    if (!has_frame_) has_frame_ = port_->receive(frame_, 0);
    return !has_frame_;
}

}  // namespace vistel
