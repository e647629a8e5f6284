#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/core/units.h"
#include "pgn_vistel/n2k_msg.h"

namespace vistel {

/// Nanoseconds of the time in which messages are played: that of the recording, or the host's for a live
/// source.
using PlayTime = std::int64_t;
constexpr PlayTime one_second = 1'000'000'000;

/// A PGN of a source, with the fields that tell its instances apart: its latest message, and how they came.
class Stream {
  public:
    const N2KMsg& msg() const { return msg_; }
    std::uint8_t bus() const { return bus_; }
    std::uint64_t count() const { return count_; }
    /// Which stream it was to appear, from 0.
    std::uint64_t order() const { return order_; }
    PlayTime seen() const { return seen_; }
    /// When the payload was last another one than before.
    PlayTime changed() const { return changed_; }

    /// Messages in a second, over the last seconds; of streams slower than these over all of their time.
    double rate(PlayTime now) const;

    /// Whether it has not come for several times its interval.
    bool is_silent(PlayTime now) const;

  private:
    friend class Streams;

    void take(const N2KMsg& msg, PlayTime now);
    double mean_interval() const;

    static constexpr std::int64_t rate_seconds = 8;
    /// Times may lie before the zero of their clock.
    static constexpr std::size_t slot_of(std::int64_t second) {
        return static_cast<std::size_t>((second % rate_seconds + rate_seconds) % rate_seconds);
    }

    N2KMsg msg_{};
    std::uint8_t bus_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t order_ = 0;
    PlayTime first_ = 0, seen_ = 0, changed_ = 0;
    std::int64_t second_ = 0;  // of the latest message
    std::array<std::uint32_t, rate_seconds> in_second_{};
};

/// What of the streams is shown. Empty lists and texts leave nothing out.
struct StreamFilter {
    std::vector<std::uint32_t> pgns;
    std::vector<std::uint8_t> sources;
    std::string text;  ///< in the number, the name or a field as shown; any case
    std::optional<std::uint8_t> bus = {};

    bool is_empty() const { return pgns.empty() && sources.empty() && text.empty() && !bus; }
    bool admits(const Stream& stream, const pgn_vistel::core::UnitSelection& units,
                pgn_vistel::core::Definitions definitions) const;
};

enum class StreamOrder : std::uint8_t { appearance, pgn, source, rate, latest };

/// The streams of a network. Memory is bounded: what comes when there are too many streams is refused and
/// counted.
class Streams {
  public:
    /// False for a message of a stream that there is no room for. Times may go back.
    bool put(const N2KMsg& msg, std::uint8_t bus, PlayTime now);

    std::size_t size() const { return streams_.size(); }
    std::uint64_t messages() const { return messages_; }
    std::uint64_t refused() const { return refused_; }
    void clear();

    /// Those that a filter admits, in an order; equal ones as they appeared. They hold until clear().
    std::vector<const Stream*> select(const StreamFilter& filter, StreamOrder order, PlayTime now,
                                      const pgn_vistel::core::UnitSelection& units,
                                      pgn_vistel::core::Definitions definitions) const;

    static constexpr std::size_t most = 4096;

  private:
    struct Key {
        std::uint32_t pgn;
        std::uint8_t bus, source;
        pgn_vistel::core::StreamKeys keys;
        auto operator<=>(const Key&) const = default;
    };

    std::map<Key, Stream> streams_;
    std::uint64_t messages_ = 0;
    std::uint64_t refused_ = 0;
};

}  // namespace vistel
