#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "pgn_vistel/n2k_msg.h"
#include "text/result.h"

namespace vistel {

class EventLoop;

/// A frame as the system gives it.
struct CanFrame {
    /// @{ flags beside the identifier
    static constexpr std::uint32_t extended = 0x80000000, remote = 0x40000000, error = 0x20000000;
    /// @}

    std::uint32_t identifier = 0;  ///< with its flags
    std::uint8_t length = 0;       ///< at most 8
    std::uint8_t data[8] = {};     ///< 0 behind the length
    std::int64_t time = 0;         ///< of its arrival, in nanoseconds since 1970-01-01 00:00 UTC
};

/// A CAN interface, or whatever gives frames like one.
class CanSocket {
  public:
    enum class [[nodiscard]] Received{
        frame,
        nothing,  ///< waited long enough, or interrupted by a signal
        down,     ///< the interface is down; it may come up again
        removed,  ///< the interface is gone, and this socket with it
    };

    virtual ~CanSocket() = default;

    /// Waits for a frame at most `patience` milliseconds.
    virtual Received receive(CanFrame& frame, int patience) = 0;

    /// False where it was not taken: the interface is down, or has no room for more.
    [[nodiscard]] virtual bool send(const CanFrame& frame) = 0;

    /// From here on the loop, which outlives the socket, does not wait when there is something to be
    /// received: each receive() that finds nothing has it wait for that.
    virtual void wake(EventLoop& loop) = 0;

    /// Frames that the system dropped because they were not taken in time.
    virtual std::uint64_t dropped() const = 0;
};

/// What is sent of a message that fits one.
CanFrame frame_of(const N2KMsg& msg);

/// Frames of an open descriptor, each a `struct can_frame`, which is closed in the end.
std::unique_ptr<CanSocket> attach_can(int descriptor);

/// Everything that an interface receives, error frames among it.
Result<std::unique_ptr<CanSocket>> open_can(const std::string& interface);

}  // namespace vistel
