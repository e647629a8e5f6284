#include "sources/can_port.h"

#include <algorithm>
#include <cstring>
#include <thread>

#include "can/identifier.h"
#include "sources/event_loop.h"

namespace vistel {
namespace {

using namespace std::chrono_literals;

/// Between two looks at what is due.
constexpr auto slice = 100ms;

}  // namespace

CanFrame frame_of(const N2KMsg& msg) {
    CanFrame frame{CanFrame::extended | identifier_of(msg), static_cast<std::uint8_t>(msg.length)};
    std::memcpy(frame.data, msg.data, sizeof frame.data);
    return frame;
}

Status CanPort::open() {
    watch_.attempt();
    auto opened = open_();
    if (!opened) return opened.error();
    use(std::move(*opened));
    return done;
}

void CanPort::use(std::unique_ptr<CanSocket> socket) {
    socket_ = std::move(socket);
    if (watch_.options().loop) socket_->wake(*watch_.options().loop);
    watch_.opened(LinkWatch::Clock::now());
}

bool CanPort::receive(CanFrame& frame, int patience) {
    const auto start = LinkWatch::Clock::now();
    for (auto now = start;;) {
        const auto left = patience < 0 ? slice : std::chrono::milliseconds(patience) - (now - start);
        const int wait = static_cast<int>(std::clamp<std::int64_t>(
            std::chrono::ceil<std::chrono::milliseconds>(left).count(), 0, slice.count()));
        const auto received = socket_ ? socket_->receive(frame, wait) : CanSocket::Received::nothing;
        if (received == CanSocket::Received::frame) [[likely]] {
            count_dropped();
            if ((frame.identifier & CanFrame::error) != 0) {
                ++watch_.counters().error_frames;
            } else {
                watch_.traffic(LinkWatch::Clock::now());
            }
            return true;
        }
        now = LinkWatch::Clock::now();
        if (received == CanSocket::Received::down) watch_.lost(now, "the interface is down");
        if (received == CanSocket::Received::removed) {
            watch_.lost(now, "the interface is gone");
            earlier_dropped_ += socket_->dropped();
            socket_.reset();
        }
        if (!socket_ && now >= watch_.retry_at()) look_again();
        watch_.elapsed(now, watch_.counters().error_frames > 0 ? "there are error frames" : "");
        if (patience >= 0 && now - start >= std::chrono::milliseconds(patience)) return false;
        // A socket without an interface does not wait.
        if (wait > 0 && received != CanSocket::Received::nothing) std::this_thread::sleep_for(10ms);
        if (wait > 0 && !socket_) std::this_thread::sleep_for(std::chrono::milliseconds(wait));
    }
}

void CanPort::look_again() {
    watch_.attempt();
    const auto now = LinkWatch::Clock::now();
    auto opened = open_();
    if (!opened) return watch_.lost(now, opened.error().text);
    use(std::move(*opened));
}

void CanPort::count_dropped() {
    const std::uint64_t total = earlier_dropped_ + socket_->dropped();
    if (total != watch_.counters().dropped) watch_.dropped(LinkWatch::Clock::now(), total, "frames");
}

}  // namespace vistel
