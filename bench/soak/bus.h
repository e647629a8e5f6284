#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include "can/record.h"
#include "reassembly/counters.h"

namespace vistel::soak {

/// Faults of a bus that were put in, in messages.
struct Faults {
    std::uint64_t lost_frames = 0, lost_beginnings = 0, lost_singles = 0, repeated = 0, swapped = 0;
    std::uint64_t late = 0, too_late = 0, late_beginnings = 0;
    std::uint64_t stale_sequences = 0, clock_jumps = 0, address_changes = 0;
};

/// What the counters must say of it.
struct Expected {
    ReassemblyCounters counters;
    std::uint64_t missing_frames = 0;  ///< of incomplete messages
};

/// A busy bus of 250 devices, made on the fly: each sends a single frame twice a second and now and then a
/// fast packet or a session of the transport protocol, their frames mixed, with faults of which it is known
/// what they cost. A device has one fault at a time, so that none hides another.
///
/// Some faults nobody can know of: a single frame that is lost, one that is repeated (it is a message again),
/// a device that is restarted and uses a sequence twice. They cost no counter.
class Bus {
  public:
    static constexpr unsigned devices = 250;

    Bus();

    /// The frames of the next half of a second, in the order in which they are seen.
    const std::vector<Record>& next_tick();

    /// From here on nothing goes wrong; what is still under way comes with the next ticks.
    void calm_down() { calm_ = true; }
    bool has_late_frames() const { return !late_.empty(); }

    const Expected& expected() const { return expected_; }
    const Faults& faults() const { return faults_; }
    /// What device `number` calls itself, as 60928 has it, and its address.
    static std::uint64_t name_of(unsigned number) { return UINT64_C(0xC0328200'22600000) + number; }
    std::uint8_t address_of(unsigned number) const { return devices_[number].address; }

    /// Whether a payload is one that was sent, by the number in its first bytes.
    static bool is_sent(const N2KMsg& msg);

  private:
    struct Device {
        std::uint8_t address = 0;
        std::uint8_t sequence = 0;
        std::uint64_t quiet_until = 0;  // tick from which on it may have the next fault
    };
    struct Timed {
        std::int64_t at;
        Record record;
    };
    struct Pending {
        std::uint64_t tick;
        Timed frame;
    };

    unsigned any(unsigned below) { return static_cast<unsigned>((std::uint64_t{random_()} * below) >> 32); }
    bool may_fail(const Device& device) const { return !is_quiet_ && tick_ >= device.quiet_until; }
    void fill(N2KMsg& msg, unsigned length);
    void add(std::int64_t at, const Record& record) { frames_.push_back({at, record}); }
    void send_single(unsigned number);
    void send_packets(unsigned number);
    void claim(unsigned number, std::int64_t at);
    void change_address();
    void spoil(Device& device, std::vector<Timed>& frames, bool is_session);

    std::mt19937 random_{20260910};
    std::array<Device, devices> devices_;
    std::array<std::uint8_t, 2> free_addresses_{devices, devices + 1};
    std::uint64_t tick_ = 0;
    std::uint32_t number_ = 0;  // of the message
    std::int64_t jumped_ = 0;   // what the clock was set by
    bool calm_ = false, is_quiet_ = false;
    std::vector<Timed> frames_;  // of the tick
    std::vector<Pending> late_;
    std::vector<Record> records_;
    Expected expected_;
    Faults faults_;
};

}  // namespace vistel::soak
