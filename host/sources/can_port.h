#pragma once

#include <functional>
#include <memory>
#include <string>

#include "sources/can_socket.h"
#include "sources/link_watch.h"

namespace vistel {

/// The frames of a CAN interface, which may go down and come up, or be pulled out and put in again.
class CanPort {
  public:
    using Open = std::function<Result<std::unique_ptr<CanSocket>>()>;

    CanPort(Open open, LinkOptions options)
        : open_(std::move(open)), watch_(std::move(options), "the interface is up") {}

    /// Opens it for the first time, which is not tried again.
    Status open();

    /// Waits for a frame at most `patience` milliseconds, negative for no limit. False where none came.
    [[nodiscard]] bool receive(CanFrame& frame, int patience);

    /// False where the interface does not take it at present.
    [[nodiscard]] bool send(const CanFrame& frame) { return socket_ && socket_->send(frame); }

    std::shared_ptr<const LinkCounters> counters() const { return watch_.shared_counters(); }

  private:
    void use(std::unique_ptr<CanSocket> socket);
    void look_again();
    void count_dropped();

    Open open_;
    LinkWatch watch_;
    std::unique_ptr<CanSocket> socket_;
    std::uint64_t earlier_dropped_ = 0;  // by sockets that are gone
};

}  // namespace vistel
