#include "reassembly/fast_packets.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "can/fast_packet.h"
#include "can/identifier.h"

namespace vistel {

using namespace fast_packet;

namespace {

/// The frames of a message, as bits.
std::uint32_t frames_of(unsigned total) {
    const unsigned later =
        total <= bytes_in_first ? 0 : (total - bytes_in_first + bytes_in_later - 1) / bytes_in_later;
    return static_cast<std::uint32_t>((std::uint64_t{2} << later) - 1);
}

constexpr std::int64_t longest_silence = 750 * milliseconds;

/// By sequence in the lowest bits, so that the keys of one kind of message are neighbours.
std::uint64_t key_of(const N2KMsg& frame) {
    return std::uint64_t{frame.pgn} << 19 | std::uint64_t{frame.source} << 11 |
           std::uint64_t{frame.destination} << 3 | sequence_of(frame.data[0]);
}

std::uint32_t pgn_of(std::uint64_t key) {
    return static_cast<std::uint32_t>(key >> 19);
}
std::uint8_t source_of(std::uint64_t key) {
    return static_cast<std::uint8_t>(key >> 11);
}

}  // namespace

/// Whether a stored frame other than 0 belongs to the announced message, with all that is due to it.
bool FastPackets::Slot::fits(unsigned number) const {
    const unsigned offset = offset_of(number);
    return offset < total && given[number] >= std::min<unsigned>(bytes_in_later, total - offset);
}

bool FastPackets::Slot::holds(unsigned number, const std::uint8_t* bytes, unsigned count) const {
    return given[number] == count && std::memcmp(data + offset_of(number), bytes, count) == 0;
}

void FastPackets::Slot::store(unsigned number, const std::uint8_t* bytes, unsigned count) {
    received |= std::uint32_t{1} << number;
    given[number] = static_cast<std::uint8_t>(count);
    std::uint8_t* const place = data + offset_of(number);
    if (count == bytes_in_later) [[likely]] {
        std::memcpy(place, bytes, bytes_in_later);  // without a call, as the number is known
    } else {
        std::memcpy(place, bytes, count);
    }
}

std::size_t FastPackets::open(std::uint64_t key, const Moment& now) {
    if (slots_.full()) abandon(slots_.oldest());
    const std::size_t i = slots_.add(key, now);
    slots_[i].received = 0;
    slots_[i].overtaken_by = 0;
    slots_[i].paused_behind = 0;
    return i;
}

void FastPackets::abandon(std::size_t i) {
    const Slot& slot = slots_[i];
    const std::uint64_t key = slots_.key(i);
    const auto received = static_cast<unsigned>(std::popcount(slot.received));
    if (slot.announced()) {
        const auto missing = static_cast<unsigned>(std::popcount(slot.all)) - received;
        losses_.incomplete_fast_packet(pgn_of(key), source_of(key), missing);
    } else {
        lose_orphans(key, received);
    }
    slots_.remove(i);
}

void FastPackets::lose_orphans(std::uint64_t key, unsigned frames) {
    losses_.orphans(pgn_of(key), source_of(key), frames);
}

bool FastPackets::repeats_completion(std::uint64_t key, const N2KMsg& frame, const Moment& now) const {
    const Completion& last = completions_[frame.source];
    return last.key == key && std::memcmp(last.data, frame.data, max_frame_bytes) == 0 &&
           last.moment.pauses == now.pauses && adjacent(last.moment, now);
}

/// Whether the message of a slot goes on with a frame, or has it already.
bool FastPackets::goes_on(std::size_t i, const N2KMsg& frame, unsigned size, const Moment& now) {
    Slot& slot = slots_[i];
    const Moment& then = slots_.last(i);
    const Following may = following(then, now, longest_silence);
    if (may != Following::next) [[likely]]
        return may == Following::any;
    const unsigned number = number_of(frame.data[0]), header = number == 0 ? 2 : 1;
    const bool again = number == slot.last_number && slot.holds(number, frame.data + header, size - header);
    if (!again && !slot.awaits(number)) return false;
    if (then.pauses == now.pauses && whole_seconds(then, now)) return true;
    slot.paused_behind = then.frame;
    return last_orphan_ <= then.frame;
}

/// A device takes its eight sequences in turn. Where half of them have been begun since, no frame of the
/// message is on its way any more, and the next one of its sequence is another message's.
void FastPackets::overtake(std::uint64_t key) {
    constexpr unsigned most = 4;
    slots_.visit_group(key, [&](std::size_t i) {
        if (slots_.key(i) != key && ++slots_[i].overtaken_by >= most) abandon(i);
    });
}

/// Takes frame 0, for the open slot of its key or none. The slot of the message that it begins, or none.
std::size_t FastPackets::put_first(std::size_t i, std::uint64_t key, const N2KMsg& frame, unsigned size,
                                   const Moment& now) {
    constexpr unsigned header = 2;
    const std::uint8_t total = frame.data[1];
    const std::uint8_t* const bytes = frame.data + header;
    const unsigned count = size - header;
    if (i != Slots::none) {
        const Slot& slot = slots_[i];
        if (slot.announced()) {
            // A frame that the bus delivers twice comes twice in a row.
            if (slot.last_number == 0 && slot.total == total && slot.holds(0, bytes, count)) {
                slots_.touch(i, now);
                losses_.repeated(frame.pgn, frame.source);
                return Slots::none;
            }
            abandon(i);
            i = Slots::none;
        } else if (!adjacent(slots_.last(i), now)) {
            abandon(i);
            i = Slots::none;
        }
    }
    if (i == Slots::none && repeats_completion(key, frame, now)) {
        losses_.repeated(frame.pgn, frame.source);
        return Slots::none;
    }
    overtake(key);
    if (total > most_bytes || count < std::min<unsigned>(total, bytes_in_first)) {
        losses_.incomplete_fast_packet(frame.pgn, frame.source, 1);
        if (i != Slots::none) abandon(i);
        return Slots::none;
    }
    if (i == Slots::none) i = open(key, now);
    Slot& slot = slots_[i];
    slot.total = total;
    slot.all = frames_of(total);
    slot.priority = frame.priority;
    for (std::uint32_t early = slot.received; early != 0; early &= early - 1) {
        const auto number = static_cast<unsigned>(std::countr_zero(early));
        if (!slot.fits(number)) {
            slot.drop(number);
            lose_orphans(key);
        }
    }
    slot.store(0, bytes, count);
    return i;
}

/// Takes a frame other than 0, for the open slot of its key or none. The slot of its message, or none.
std::size_t FastPackets::put_later(std::size_t i, std::uint64_t key, const N2KMsg& frame, unsigned size,
                                   const Moment& now) {
    constexpr unsigned header = 1;
    const unsigned number = number_of(frame.data[0]);
    const std::uint8_t* const bytes = frame.data + header;
    const unsigned count = size - header;
    if (i != Slots::none && slots_[i].has(number)) {
        Slot& slot = slots_[i];
        if (slot.holds(number, bytes, count)) {
            slots_.touch(i, now);
            slot.last_number = static_cast<std::uint8_t>(number);
            losses_.repeated(frame.pgn, frame.source);
            return Slots::none;
        }
        abandon(i);  // the next message of this sequence, whose frame 0 is late or lost
        i = Slots::none;
    }
    if (i == Slots::none) {
        if (repeats_completion(key, frame, now)) {
            losses_.repeated(frame.pgn, frame.source);
            return Slots::none;
        }
        i = open(key, now);
        last_orphan_ = now.frame;
    }
    Slot& slot = slots_[i];
    slot.store(number, bytes, count);
    if (slot.announced() && !slot.fits(number)) {
        slot.drop(number);
        lose_orphans(key);
        return Slots::none;
    }
    return i;
}

const N2KMsg* FastPackets::put(const N2KMsg& frame, const Moment& now) {
    const unsigned size = std::min<unsigned>(frame.length, max_frame_bytes);
    if (size < 2) {
        losses_.orphans(frame.pgn, frame.source);
        return nullptr;
    }
    const std::uint64_t key = key_of(frame);
    std::size_t i = slots_.find(key);
    if (i != Slots::none && !goes_on(i, frame, size, now)) {
        abandon(i);
        i = Slots::none;
    }
    const unsigned number = number_of(frame.data[0]);
    i = number == 0 ? put_first(i, key, frame, size, now) : put_later(i, key, frame, size, now);
    if (i == Slots::none) return nullptr;
    slots_.touch(i, now);
    Slot& slot = slots_[i];
    slot.last_number = static_cast<std::uint8_t>(number);
    if (!slot.complete()) return nullptr;
    if (slot.paused_behind != 0 && last_orphan_ > slot.paused_behind) {
        abandon(i);
        return nullptr;
    }
    Completion& completion = completions_[frame.source];
    completion.key = key;
    completion.moment = now;
    std::memcpy(completion.data, frame.data, max_frame_bytes);
    fill_message(slot, frame);
    slots_.remove(i);
    return &message_;
}

void FastPackets::fill_message(const Slot& slot, const N2KMsg& frame) {
    message_.pgn = frame.pgn;
    message_.priority = slot.priority;
    message_.source = frame.source;
    message_.destination = frame.destination;
    if (message_.length > slot.total) {
        std::memset(message_.data + slot.total, 0, message_.length - slot.total);
    }
    message_.length = slot.total;
    std::memcpy(message_.data, slot.data, slot.total);
}

void FastPackets::sweep(std::uint64_t frame) {
    while (slots_.size() > 0 && frame - slots_.last(slots_.oldest()).frame > longest_absence)
        abandon(slots_.oldest());
}

void FastPackets::finish() {
    while (slots_.size() > 0) abandon(slots_.oldest());
    completions_ = {};
    last_orphan_ = 0;
}

}  // namespace vistel
