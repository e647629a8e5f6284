#include "reassembly/transports.h"

#include <algorithm>
#include <cstring>

#include "can/identifier.h"

namespace vistel {

using namespace transport_protocol;

namespace {

/// The longest pause that the protocol allows, which is the one of addressed sessions.
constexpr std::int64_t longest_silence = 1250 * milliseconds;

std::uint64_t key_of(std::uint8_t sender, std::uint8_t receiver) {
    return std::uint64_t{sender} << 8 | receiver;
}

std::uint32_t announced_pgn(const N2KMsg& control) {
    return control.data[5] | std::uint32_t{control.data[6]} << 8 | std::uint32_t{control.data[7]} << 16;
}

}  // namespace

void Transports::abandon(std::size_t i) {
    if (!slots_[i].complete()) ++counters_.incomplete_transports;
    slots_.remove(i);
}

void Transports::announce(const N2KMsg& frame, const Moment& now) {
    const unsigned length = frame.data[1] | unsigned{frame.data[2]} << 8;
    const unsigned packets = frame.data[3];
    const std::uint32_t pgn = announced_pgn(frame);
    const std::uint64_t key = key_of(frame.source, frame.destination);
    std::size_t i = slots_.find(key);
    if (i != Slots::none) {
        Slot& slot = slots_[i];
        if (slot.received == 0 && slot.packets == packets && slot.message.length == length &&
            slot.message.pgn == pgn) {
            slots_.touch(i, now);  // asked once more, as nobody answered
            ++counters_.repeated_frames;
            return;
        }
        abandon(i);
    }
    if (length == 0 || length > N2K_MAX_PAYLOAD || packets != packets_of(length) || pgn > max_pgn) {
        ++counters_.incomplete_transports;
        return;
    }
    if (slots_.full()) abandon(slots_.oldest());
    Slot& slot = slots_[slots_.add(key, now)];
    slot.packets = packets;
    slot.received = 0;
    std::ranges::fill(slot.have, 0);
    if (slot.message.length > length)  // what its last use left
        std::memset(slot.message.data + length, 0, slot.message.length - length);
    slot.message.pgn = pgn;
    slot.message.priority = frame.priority;
    slot.message.source = frame.source;
    slot.message.destination = frame.destination;
    slot.message.length = static_cast<std::uint16_t>(length);
}

void Transports::control(const N2KMsg& frame, const Moment& now) {
    if (frame.length < max_frame_bytes) return;  // says nothing; the frame itself is shown all the same
    const auto session = [&](std::uint8_t sender, std::uint8_t receiver) {
        const std::size_t i = slots_.find(key_of(sender, receiver));
        return i != Slots::none && slots_[i].message.pgn == announced_pgn(frame) ? i : Slots::none;
    };
    // Answers go the other way.
    const std::size_t answered = session(frame.destination, frame.source);
    switch (frame.data[0]) {
        case request_to_send:
        case broadcast_announce: announce(frame, now); break;
        case clear_to_send:
            if (answered != Slots::none) slots_.touch(answered, now);
            break;
        case end_of_message:
            if (answered != Slots::none) abandon(answered);
            break;
        case abort_session:
            if (const std::size_t own = session(frame.source, frame.destination); own != Slots::none) {
                abandon(own);
            } else if (answered != Slots::none) {
                abandon(answered);
            }
            break;
    }
}

const N2KMsg* Transports::data(const N2KMsg& frame, const Moment& now) {
    const std::size_t i = slots_.find(key_of(frame.source, frame.destination));
    const unsigned number = frame.data[0];
    if (i == Slots::none || number == 0 || number > slots_[i].packets) {
        ++counters_.orphan_frames;
        return nullptr;
    }
    Slot& slot = slots_[i];
    const unsigned offset = (number - 1) * bytes_in_packet;
    const unsigned count = std::min(bytes_in_packet, slot.message.length - offset);
    const std::uint8_t* const bytes = frame.data + 1;
    if (frame.length < 1 + count) {
        ++counters_.orphan_frames;
        return nullptr;
    }
    slots_.touch(i, now);
    if (slot.has(number)) {
        if (std::memcmp(slot.message.data + offset, bytes, count) == 0) {
            ++counters_.repeated_frames;
        } else {
            // The next session, whose announcement is lost, must not be mixed with this one.
            ++counters_.orphan_frames;
            abandon(i);
        }
        return nullptr;
    }
    slot.set(number);
    std::memcpy(slot.message.data + offset, bytes, count);
    ++slot.received;
    return slot.complete() ? &slot.message : nullptr;
}

const N2KMsg* Transports::put(const N2KMsg& frame, const Moment& now) {
    sweep(now);
    if (frame.pgn == data_pgn) return data(frame, now);
    control(frame, now);
    return nullptr;
}

void Transports::sweep(const Moment& now) {
    slots_.sweep(now, longest_silence, [this](std::size_t i) { abandon(i); });
}

void Transports::finish() {
    while (slots_.size() > 0) abandon(slots_.oldest());
}

}  // namespace vistel
