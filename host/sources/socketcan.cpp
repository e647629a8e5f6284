#include <linux/can.h>
#include <linux/can/error.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>
#include <optional>

#include "sources/can_socket.h"
#include "sources/readiness.h"
#include "text/error_text.h"

namespace vistel {
namespace {

class KernelSocket final : public CanSocket {
  public:
    explicit KernelSocket(int descriptor) : descriptor_(descriptor) {}
    ~KernelSocket() override {
        readiness_.reset();
        ::close(descriptor_);
    }
    KernelSocket(const KernelSocket&) = delete;
    KernelSocket& operator=(const KernelSocket&) = delete;

    Received receive(CanFrame& frame, int patience) override;
    bool send(const CanFrame& frame) override;
    void wake(EventLoop& loop) override { readiness_.emplace(loop, descriptor_); }
    std::uint64_t dropped() const override { return dropped_; }

  private:
    Received nothing();
    void take_notes(msghdr& message, CanFrame& frame);

    int descriptor_;
    std::optional<Readiness> readiness_;
    std::uint32_t last_count_ = 0;
    std::uint64_t dropped_ = 0;
};

CanSocket::Received KernelSocket::nothing() {
    if (readiness_) readiness_->await();
    return Received::nothing;
}

CanSocket::Received KernelSocket::receive(CanFrame& frame, int patience) {
    can_frame raw{};
    iovec place{&raw, sizeof raw};
    alignas(cmsghdr) char notes[256];
    msghdr message{};
    message.msg_iov = &place;
    message.msg_iovlen = 1;
    message.msg_control = notes;
    message.msg_controllen = sizeof notes;
    ssize_t size = ::recvmsg(descriptor_, &message, MSG_DONTWAIT);
    if (size < 0 && (errno == EAGAIN || errno == EWOULDBLOCK) && patience != 0) {
        pollfd request{descriptor_, POLLIN, 0};
        if (::poll(&request, 1, patience) <= 0) return nothing();
        size = ::recvmsg(descriptor_, &message, MSG_DONTWAIT);
    }
    if (size < 0) {
        switch (errno) {
            case EAGAIN:
            case EINTR: return nothing();
            case ENETDOWN: return Received::down;
            default: return Received::removed;
        }
    }
    if (size == 0) return Received::removed;
    if (static_cast<std::size_t>(size) < sizeof raw) return Received::nothing;  // no classical frame
    frame.identifier = raw.can_id;
    frame.length = std::min<std::uint8_t>(raw.can_dlc, 8);
    std::memset(frame.data, 0, sizeof frame.data);
    std::memcpy(frame.data, raw.data, frame.length);
    frame.time = 0;
    take_notes(message, frame);
    if (frame.time == 0) {
        frame.time = std::chrono::duration_cast<std::chrono::nanoseconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    }
    return Received::frame;
}

bool KernelSocket::send(const CanFrame& frame) {
    can_frame raw{};
    raw.can_id = frame.identifier;
    raw.can_dlc = frame.length;
    std::memcpy(raw.data, frame.data, sizeof raw.data);
    return ::send(descriptor_, &raw, sizeof raw, MSG_DONTWAIT | MSG_NOSIGNAL) == sizeof raw;
}

/// What the kernel says beside a frame: when it came, and how many were dropped so far.
void KernelSocket::take_notes(msghdr& message, CanFrame& frame) {
    for (const cmsghdr* note = CMSG_FIRSTHDR(&message); note != nullptr;
         note = CMSG_NXTHDR(&message, const_cast<cmsghdr*>(note))) {
        if (note->cmsg_level != SOL_SOCKET) continue;
        if (note->cmsg_type == SCM_TIMESTAMPNS) {
            timespec time;
            std::memcpy(&time, CMSG_DATA(note), sizeof time);
            frame.time = std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
        } else if (note->cmsg_type == SO_RXQ_OVFL) {
            std::uint32_t count;
            std::memcpy(&count, CMSG_DATA(note), sizeof count);
            dropped_ += static_cast<std::uint32_t>(count - last_count_);
            last_count_ = count;
        }
    }
}

template <class Value>
void set(int descriptor, int level, int option, Value value) {
    (void)::setsockopt(descriptor, level, option, &value, sizeof value);
}

}  // namespace

std::unique_ptr<CanSocket> attach_can(int descriptor) {
    set(descriptor, SOL_SOCKET, SO_TIMESTAMPNS, 1);
    set(descriptor, SOL_SOCKET, SO_RXQ_OVFL, 1);
    return std::make_unique<KernelSocket>(descriptor);
}

Result<std::unique_ptr<CanSocket>> open_can(const std::string& interface) {
    const int descriptor = ::socket(PF_CAN, SOCK_RAW | SOCK_CLOEXEC, CAN_RAW);
    if (descriptor < 0) return failure("no CAN in this system: ", error_text(errno));
    auto opened = attach_can(descriptor);
    sockaddr_can address{};
    address.can_family = AF_CAN;
    address.can_ifindex = static_cast<int>(::if_nametoindex(interface.c_str()));
    if (address.can_ifindex == 0) return Failure{"there is no such interface"};
    set(descriptor, SOL_CAN_RAW, CAN_RAW_ERR_FILTER, can_err_mask_t{CAN_ERR_MASK});
    set(descriptor, SOL_SOCKET, SO_RCVBUF, 1 << 20);  // the kernel may grant less
    if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return Failure{error_text(errno)};
    return opened;
}

}  // namespace vistel
