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
    const Slot& slot = slots_[i];
    if (!slot.complete())
        losses_.incomplete_transport(slot.message.pgn, slot.message.source, slot.packets - slot.received);
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
            losses_.repeated(pgn, frame.source);
            return;
        }
        abandon(i);
    }
    if (length == 0 || length > N2K_MAX_PAYLOAD || packets != packets_of(length) || pgn > max_pgn) {
        losses_.incomplete_transport(pgn, frame.source, 1);
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

void Transports::control(const N2KMsg& frame, const Moment& now, const Moment& at_destination) {
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
            if (answered != Slots::none) slots_.touch(answered, at_destination);
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

bool Transports::goes_on(std::size_t i, unsigned number, const Moment& now) const {
    const Following may = following(slots_.last(i), now, longest_silence);
    return may == Following::any || (may == Following::next && slots_[i].awaits(number));
}

const N2KMsg* Transports::data(const N2KMsg& frame, const Moment& now) {
    std::size_t i = slots_.find(key_of(frame.source, frame.destination));
    const unsigned number = frame.data[0];
    if (i != Slots::none && !goes_on(i, number, now)) {
        abandon(i);
        i = Slots::none;
    }
    if (i == Slots::none || number == 0 || number > slots_[i].packets) {
        losses_.orphans(i == Slots::none ? frame.pgn : slots_[i].message.pgn, frame.source);
        return nullptr;
    }
    Slot& slot = slots_[i];
    const unsigned offset = (number - 1) * bytes_in_packet;
    const unsigned count = std::min(bytes_in_packet, slot.message.length - offset);
    const std::uint8_t* const bytes = frame.data + 1;
    if (frame.length < 1 + count) {
        losses_.orphans(slot.message.pgn, frame.source);
        return nullptr;
    }
    slots_.touch(i, now);
    if (slot.has(number)) {
        if (std::memcmp(slot.message.data + offset, bytes, count) == 0) {
            losses_.repeated(slot.message.pgn, frame.source);
        } else {
            // The next session, whose announcement is lost, must not be mixed with this one.
            losses_.orphans(slot.message.pgn, frame.source);
            abandon(i);
        }
        return nullptr;
    }
    slot.set(number);
    std::memcpy(slot.message.data + offset, bytes, count);
    ++slot.received;
    return slot.complete() ? &slot.message : nullptr;
}

const N2KMsg* Transports::put(const N2KMsg& frame, const Moment& now, const Moment& at_destination) {
    if (frame.pgn == data_pgn) return data(frame, now);
    control(frame, now, at_destination);
    return nullptr;
}

void Transports::sweep(std::uint64_t frame) {
    while (slots_.size() > 0 && frame - slots_.last(slots_.oldest()).frame > longest_absence)
        abandon(slots_.oldest());
}

void Transports::finish() {
    while (slots_.size() > 0) abandon(slots_.oldest());
}

}  // namespace vistel
