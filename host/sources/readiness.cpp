#include "sources/readiness.h"

#include <asio/posix/stream_descriptor.hpp>

#include "sources/event_loop_parts.h"

namespace vistel {

struct Readiness::Parts {
    asio::posix::stream_descriptor descriptor;
    bool is_awaited = false;
};

Readiness::Readiness(EventLoop& loop, int descriptor)
    : parts_(new Parts{asio::posix::stream_descriptor(loop.parts().context, descriptor)}) {}

Readiness::~Readiness() {
    parts_->descriptor.release();
}

void Readiness::await() {
    if (std::exchange(parts_->is_awaited, true)) return;
    parts_->descriptor.async_wait(asio::posix::stream_descriptor::wait_read,
                                  [parts = parts_](const asio::error_code&) { parts->is_awaited = false; });
}

}  // namespace vistel
