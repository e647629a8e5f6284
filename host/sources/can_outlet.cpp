#include <algorithm>
#include <cstring>
#include <thread>

#include "sources/outlet.h"
#include "text/words.h"

namespace vistel {
namespace {

using namespace std::chrono_literals;

/// The frames of capture records: a header, which has the time, then the frame as Linux shows it.
class CanOutlet final : public Outlet {
  public:
    CanOutlet(std::unique_ptr<CanSocket> socket, const OutletOptions& options)
        : socket_(std::move(socket)), tell_(options.tell) {}

    void begin(std::string_view) override {}
    void put(std::string_view record) override;
    void run(std::chrono::milliseconds patience) override { std::this_thread::sleep_for(patience); }

  private:
    bool send(const CanFrame& frame);

    std::unique_ptr<CanSocket> socket_;
    std::function<void(const std::string&)> tell_;
    bool is_stuck_ = false;
};

void CanOutlet::put(std::string_view record) {
    constexpr std::size_t header = 16, size = 32;
    if (record.size() != size) return;
    CanFrame frame;
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(record[header + i]); };
    for (std::size_t i = 0; i < 4; ++i) frame.identifier = frame.identifier << 8 | byte(i);
    frame.length = std::min<std::uint8_t>(byte(4), sizeof frame.data);
    std::memcpy(frame.data, record.data() + header + 8, frame.length);
    if (send(frame)) {
        is_stuck_ = false;
        return;
    }
    ++counters_.lost;
    if (!is_stuck_ && tell_) tell_("the interface takes no frames; it is down, or nobody else is on the bus");
    is_stuck_ = true;
}

/// A queue that is full is empty again in milliseconds, unless the bus does not work.
bool CanOutlet::send(const CanFrame& frame) {
    for (int tries = is_stuck_ ? 1 : 100; tries > 0; --tries) {
        if (socket_->send(frame)) return true;
        if (tries > 1) std::this_thread::sleep_for(1ms);
    }
    return false;
}

}  // namespace

std::unique_ptr<Outlet> make_can_outlet(std::unique_ptr<CanSocket> socket, const OutletOptions& options) {
    return std::make_unique<CanOutlet>(std::move(socket), options);
}

}  // namespace vistel
