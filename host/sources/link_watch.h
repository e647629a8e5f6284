#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vistel {

class EventLoop;

struct LinkOptions {
    /// How long a connection may bring nothing before that is told; 0 for ever.
    std::chrono::milliseconds silence{std::chrono::seconds{30}};
    std::chrono::milliseconds first_pause{std::chrono::seconds{1}};  ///< before a lost link is made again
    std::chrono::milliseconds longest_pause{std::chrono::seconds{30}};
    std::function<void(const std::string&)> tell = {};  ///< what the user should know, once each
    std::function<bool()> is_understood = {};  ///< whether the format of what comes is known; null: no matter
    bool sends = false;  ///< frames are going to be sent, too: an adapter must not only listen
    std::shared_ptr<EventLoop> loop = {};  ///< that it shares with others; null for one of its own
};

/// What became of a link so far.
struct LinkCounters {
    bool is_well = true;  ///< at present: neither lost nor silent for long
    std::uint64_t losses = 0;
    std::uint64_t attempts = 0;           ///< to connect, the first one among them
    std::chrono::milliseconds without{};  ///< a connection, of the losses that are over
    std::uint64_t silences = 0;
    std::uint64_t bytes = 0;         ///< of links that bring bytes
    std::uint64_t error_frames = 0;  ///< of CAN interfaces
    /// Frames of a CAN interface, or datagrams, that the system dropped because they were not taken in time.
    std::uint64_t dropped = 0;
};

/// Keeps the account of one link: tells what changes, counts, and says when to try again. Its times are those
/// that it is given.
class LinkWatch {
  public:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;

    /// `connected` is the word for a link that is there, `doubt` what may be wrong where bytes are of no
    /// format.
    LinkWatch(LinkOptions options, std::string_view connected, std::string doubt = {})
        : options_(std::move(options)), connected_(connected), doubt_(std::move(doubt)) {}

    void attempt() { ++counters_->attempts; }
    void opened(Time now);
    /// Traffic of the bus, and only that.
    void traffic(Time now);
    /// Bytes by which a format could be told.
    void came(Time now) {
        if (!came_since_) came_since_ = now;
    }
    /// A connection that was there, or an attempt to make one, came to an end.
    void lost(Time now, const std::string& reason);
    /// So many frames or datagrams, as `what` says, were dropped in all. That is told now and then.
    void dropped(Time now, std::uint64_t total, std::string_view what);
    /// To be called several times a second. `state` may say more of a link that brings nothing.
    void elapsed(Time now, std::string_view state = {});

    void tell(const std::string& text) const {
        if (options_.tell) options_.tell(text);
    }

    /// When a link that is not there should be tried.
    Time retry_at() const { return retry_at_; }
    /// For how long it has been there and brought nothing.
    Clock::duration silent(Time now) const { return is_open_ ? now - heard_ : Clock::duration{}; }
    const LinkOptions& options() const { return options_; }
    LinkCounters& counters() { return *counters_; }
    /// The same for those who look at them when the link may be gone.
    std::shared_ptr<const LinkCounters> shared_counters() const { return counters_; }

  private:
    void look_at_format(Time now);

    LinkOptions options_;
    std::string connected_;
    std::string doubt_;
    std::shared_ptr<LinkCounters> counters_ = std::make_shared<LinkCounters>();
    bool is_open_ = false;
    bool is_lost_ = false;  // and nothing has come since
    bool silence_told_ = false;
    bool absence_told_ = false;
    Time heard_;  // the last traffic, or since when there could have been
    Time silent_since_;
    std::optional<Time> came_since_;
    bool is_format_looked_at_ = false;
    Time lost_at_;
    Time retry_at_;
    std::string reason_;
    std::chrono::milliseconds pause_{};
    std::uint64_t told_dropped_ = 0;
    Time dropped_told_at_;
};

}  // namespace vistel
