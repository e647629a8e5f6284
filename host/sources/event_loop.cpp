#include "sources/event_loop.h"

#include <asio/executor_work_guard.hpp>

#include "sources/event_loop_parts.h"

namespace vistel {

EventLoop::EventLoop() : parts_(std::make_unique<Parts>()) {}
EventLoop::~EventLoop() = default;

void EventLoop::run_one(std::chrono::milliseconds patience) {
    // Without work the context would come back at once.
    const auto work = asio::make_work_guard(parts_->context);
    parts_->context.restart();
    if (patience.count() <= 0) {
        parts_->context.poll_one();
    } else {
        parts_->context.run_one_for(patience);
    }
}

}  // namespace vistel
