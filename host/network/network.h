#pragma once

#include <array>
#include <functional>
#include <list>
#include <optional>
#include <vector>

#include "network/device.h"
#include "pgn_vistel/core/catalogue.h"

namespace vistel {

/// One bus: who is on it, what they say of themselves, and what they send. It learns by listening alone.
///
/// A device is known by its NAME, and the address is what it has at present: the latest claim of an address
/// counts, and who had it before has none until its own next claim. What comes from an address that nobody
/// was heard to claim belongs to an unknown device; the next claim of that address says whose it was.
///
/// All times are those of the records: nothing here looks at a clock. Memory is bounded.
class Network {
  public:
    Network() = default;
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;

    /// Takes a message, put together already.
    void put(const N2KMsg& msg, const RecordTime& time);

    /// Counts what a record took of the bus; behind the messages that it completed. The definitions say which
    /// PGNs are fast packets.
    void count_wire(const Record& record, pgn_vistel::core::Definitions definitions);

    /// Counts messages of a source that could not be put together.
    void count_lost(std::uint8_t source, std::uint64_t messages) { holder(source).lost += messages; }

    /// Begins a new period. Rates are those of the recent time: this period and the one before. Without any
    /// turn they are those of the whole time.
    void turn();

    /// By address; those without one behind them, by the last one they had. They hold until the next call
    /// that is not const.
    std::vector<const Device*> devices() const;

    /// The first device of those that can be asked (they have an address of their own) for which `is_wanted`
    /// holds, or null.
    Device* first_to_ask(const std::function<bool(const Device&)>& is_wanted);

    /// Seconds of the recent time; nothing where the records tell no time, or all the same. A step back and a
    /// pause of more than a minute are no part of it: there a clock was set, or another recording begins.
    [[nodiscard]] std::optional<double> seconds() const;

    /// Of the recent time, in a second.
    struct Rates {
        double messages = 0, bytes = 0;
    };
    [[nodiscard]] std::optional<Rates> rates(const Tally<MessageCount>& count) const;
    /// Part of what the bus could have carried in the recent time.
    [[nodiscard]] std::optional<double> share(const Tally<WireCount>& count) const;

    /// @{ of all devices
    const Tally<MessageCount>& messages() const { return messages_; }
    const Tally<WireCount>& wire() const { return wire_; }
    std::uint64_t lost() const;
    /// @}

    const std::optional<RecordTime>& first() const { return first_; }
    /// The time that the records have come to.
    [[nodiscard]] std::optional<RecordTime> now() const {
        return first_ ? std::optional(latest_) : std::nullopt;
    }

    static constexpr std::size_t most_devices = 512;  ///< one an address, and as many without

  private:
    Device& holder(std::uint8_t address);
    Device& add();
    Device* find(std::uint64_t name);
    Device* claim(const N2KMsg& msg);
    void leave_address(Device& device);
    void learn(Device& device, const N2KMsg& msg);
    void note_command(const N2KMsg& msg);
    void note_time(const RecordTime& time);

    std::list<Device> devices_;
    std::array<Device*, 256> holders_{};
    Tally<MessageCount> messages_;
    Tally<WireCount> wire_;
    std::optional<RecordTime> first_;
    RecordTime latest_;
    std::int64_t observed_ = 0;  // nanoseconds
    std::int64_t observed_at_turn_ = 0, observed_before_ = 0;
};

}  // namespace vistel
