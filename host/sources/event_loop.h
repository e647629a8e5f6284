#pragma once

#include <chrono>
#include <memory>

namespace vistel {

/// What all links of a program wait in. One thread.
class EventLoop {
  public:
    /// What the loop consists of; for connection.cpp alone.
    struct Parts;

    EventLoop();
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    /// Deals with one event, which may concern any link; waits for it at most this long.
    void run_one(std::chrono::milliseconds patience);

    Parts& parts() { return *parts_; }

  private:
    std::unique_ptr<Parts> parts_;
};

}  // namespace vistel
