#include "soak/bus.h"

#include <algorithm>
#include <cstring>

#include "can/frames.h"

namespace vistel::soak {

namespace {

constexpr std::int64_t ms = 1'000'000, tick_time = 500 * ms;
constexpr std::int64_t start = 1'789'027'200'123'456'789;
constexpr std::uint32_t single_pgns[] = {127250, 129025, 127251, 128267, 130310, 65330};
constexpr std::uint32_t fast_pgns[] = {129029, 129540, 129284, 130577, 128275};
constexpr std::uint32_t session_pgn = 65260;  // of no fast packet
constexpr std::uint32_t claim_pgn = 60928;
constexpr unsigned number_size = 4;  // in front of each payload but the smallest ones

/// Ticks between two messages in several frames of a device.
constexpr unsigned packet_period = 10;
/// Ticks behind a fault in which what is left of it is over: as many frames as nothing stays open for.
constexpr unsigned cooling = 14;
/// Ticks between two settings of the clock.
constexpr unsigned jump_period = 400;

std::uint8_t byte_of(std::uint32_t number, unsigned place) {
    std::uint32_t mixed = (number + place / 4) * 0x9E3779B1u;
    mixed ^= mixed >> 15;
    return static_cast<std::uint8_t>(mixed >> 8 * (place % 4));
}

}  // namespace

Bus::Bus() {
    for (unsigned i = 0; i < devices; ++i) devices_[i].address = static_cast<std::uint8_t>(i);
}

void Bus::fill(N2KMsg& msg, unsigned length) {
    msg.length = static_cast<std::uint16_t>(length);
    const std::uint32_t number = number_++;
    std::memcpy(msg.data, &number, number_size);
    for (unsigned i = number_size; i < length; ++i) msg.data[i] = byte_of(number, i);
}

bool Bus::is_sent(const N2KMsg& msg) {
    if (msg.pgn == claim_pgn || msg.pgn == transport_protocol::control_pgn ||
        msg.pgn == transport_protocol::data_pgn)
        return true;
    std::uint32_t number = 0;
    std::memcpy(&number, msg.data, number_size);
    for (unsigned i = number_size; i < msg.length; ++i)
        if (msg.data[i] != byte_of(number, i)) return false;
    return true;
}

void Bus::claim(unsigned number, std::int64_t at) {
    Record record;
    record.kind = Record::Kind::frame;
    N2KMsg& msg = record.msg;
    msg.pgn = claim_pgn;
    msg.priority = 6;
    msg.source = devices_[number].address;
    msg.destination = everyone;
    msg.length = 8;
    const std::uint64_t name = name_of(number);
    std::memcpy(msg.data, &name, sizeof name);
    add(at, record);
    ++expected_.counters.messages;
}

/// A device takes another address, and has said so before it sends anything else.
void Bus::change_address() {
    const unsigned number = any(devices);
    Device& device = devices_[number];
    if (!may_fail(device)) return;
    std::swap(device.address, free_addresses_[tick_ / 200 % 2]);
    device.quiet_until = tick_ + cooling;
    claim(number, 0);
    ++faults_.address_changes;
}

void Bus::send_single(unsigned number) {
    Device& device = devices_[number];
    Record record;
    record.kind = Record::Kind::frame;
    N2KMsg& msg = record.msg;
    msg.pgn = single_pgns[number % std::size(single_pgns)];
    msg.priority = 2;
    msg.source = device.address;
    msg.destination = everyone;
    fill(msg, max_frame_bytes);
    // At its own moment of each tick, so that nobody is silent for so long that it seems a pause.
    const std::int64_t at = 1 * ms + number * (tick_time - 20 * ms) / devices + any(5 * ms);
    const unsigned fault = may_fail(device) ? any(2000) : 2000;
    if (fault == 0) {
        ++faults_.lost_singles;
        device.quiet_until = tick_ + cooling;
        return;
    }
    add(at, record);
    ++expected_.counters.messages;
    if (fault == 1) {
        add(at + ms / 10, record);
        ++faults_.repeated;
        ++expected_.counters.messages;
    }
}

void Bus::send_packets(unsigned number) {
    Device& device = devices_[number];
    const bool is_session = number % 10 == 9;
    N2KMsg msg{};
    msg.pgn = is_session ? session_pgn : fast_pgns[number % std::size(fast_pgns)];
    msg.priority = 6;
    msg.source = device.address;
    msg.destination = everyone;
    fill(msg, 20 + number % 110);
    if (any(100) != 0) {
        device.sequence = static_cast<std::uint8_t>((device.sequence + 1) % fast_packet::sequences);
    } else {
        ++faults_.stale_sequences;
    }
    std::vector<Timed> frames;
    std::int64_t at = 2 * ms + any(100 * ms);
    const auto take = [&](std::uint32_t identifier, FrameBytes bytes) {
        Timed timed{at, {}};
        set_frame(timed.record, identifier, bytes);
        frames.push_back(timed);
        at += ms + any(4 * ms);
    };
    if (is_session) {
        cut_transport(msg, take);
    } else {
        cut_fast_packet(msg, device.sequence, take);
    }
    if (may_fail(device) && any(20) == 0) {
        spoil(device, frames, is_session);
        device.quiet_until = tick_ + cooling;
    } else {
        ++expected_.counters.messages;
    }
    // Those of a session are messages, too.
    if (is_session) expected_.counters.messages += frames.size();
    for (const Timed& frame : frames) add(frame.at, frame.record);
}

/// Puts one fault into a message, and counts what it costs.
void Bus::spoil(Device&, std::vector<Timed>& frames, bool is_session) {
    ReassemblyCounters& counters = expected_.counters;
    std::uint64_t& incomplete =
        is_session ? counters.incomplete_transports : counters.incomplete_fast_packets;
    const unsigned count = static_cast<unsigned>(frames.size());
    const unsigned later = 1 + any(count - 1);  // any but the first one
    const auto take_out = [&frames](unsigned number) {
        const Timed frame = frames[number];
        frames.erase(frames.begin() + number);
        return frame;
    };
    switch (any(is_session ? 3 : 7)) {
        case 0:
            take_out(later);
            ++incomplete;
            ++expected_.missing_frames;
            ++faults_.lost_frames;
            return;
        case 1:
            take_out(0);
            counters.orphan_frames += count - 1;
            ++faults_.lost_beginnings;
            return;
        case 2: {
            Timed again = frames[any(count)];
            again.at += ms / 10;
            frames.push_back(again);
            ++counters.repeated_frames;
            ++counters.messages;
            ++faults_.repeated;
            return;
        }
        case 3: {
            const unsigned first = any(count - 1);
            frames[first + 1].at = frames[first].at + ms / 5;
            std::swap(frames[first].at, frames[first + 1].at);
            ++counters.messages;
            ++faults_.swapped;
            return;
        }
        case 4:  // behind all others, but not too late
            frames[later].at = frames.back().at + 100 * ms;
            ++counters.messages;
            ++faults_.late;
            return;
        case 5: {  // when the rest was given up
            Timed frame = take_out(later);
            late_.push_back({tick_ + 2, frame});
            ++incomplete;
            ++expected_.missing_frames;
            ++counters.orphan_frames;
            ++faults_.too_late;
            return;
        }
        default: {  // the beginning, when the frames behind it are taken for orphans
            Timed frame = take_out(0);
            late_.push_back({tick_ + 1, frame});
            ++incomplete;
            expected_.missing_frames += count - 1;
            counters.orphan_frames += count - 1;
            ++faults_.late_beginnings;
            return;
        }
    }
}

const std::vector<Record>& Bus::next_tick() {
    frames_.clear();
    // Nothing is under way when the clock is set, but messages whose next frames come.
    const std::uint64_t phase = tick_ % jump_period;
    is_quiet_ = calm_ || tick_ < 2 || phase >= jump_period - cooling || phase == 0;
    std::erase_if(late_, [this](const Pending& pending) {
        if (pending.tick != tick_) return false;
        frames_.push_back(pending.frame);
        return true;
    });
    if (tick_ == 0)
        for (unsigned i = 0; i < devices; ++i) claim(i, 0);
    if (tick_ % 200 == 100) change_address();
    for (unsigned i = 0; i < devices; ++i) {
        send_single(i);
        if (tick_ > 0 && (tick_ + i) % packet_period == 0) send_packets(i);
    }
    std::ranges::stable_sort(frames_, {}, &Timed::at);

    static constexpr std::int64_t jumps[] = {3'600'000 * ms, -7'200'000 * ms, 300 * ms,
                                             -300 * ms,      86'400'000 * ms, -1000 * ms};
    const std::size_t jump_at = tick_ > 0 && phase == 0 ? frames_.size() / 2 : frames_.size();
    const std::int64_t base = start + static_cast<std::int64_t>(tick_) * tick_time;
    records_.resize(frames_.size());
    for (std::size_t i = 0; i < frames_.size(); ++i) {
        if (i == jump_at) {
            jumped_ += jumps[tick_ / jump_period % std::size(jumps)];
            ++faults_.clock_jumps;
        }
        records_[i] = frames_[i].record;
        records_[i].time = {base + frames_[i].at + jumped_, RecordTime::Origin::epoch};
    }
    expected_.counters.frames += records_.size();
    ++tick_;
    return records_;
}

}  // namespace vistel::soak
