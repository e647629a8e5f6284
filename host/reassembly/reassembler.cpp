#include "reassembly/reassembler.h"

#include <cassert>

namespace vistel {

void Reassembler::emit(const N2KMsg& msg, const RecordTime& time) {
    ++counters_.messages;
    emitting_ = true;
    sink_(msg, time);
    emitting_ = false;
}

void Reassembler::change_bus(std::uint8_t number) {
    if (!buses_[number]) buses_[number] = std::make_unique<Bus>(losses_);
    current_number_ = number;
    current_ = buses_[number].get();
}

void Reassembler::put(const Record& record) {
    assert(!emitting_);
    if (record.kind == Record::Kind::message) {
        emit(record.msg, record.time);
        return;
    }
    ++counters_.frames;
    Bus& on = bus(record.bus);
    const Moment now = on.clocks[record.msg.source].tick(record.time.nanoseconds, ++on.frames);
    constexpr std::uint64_t frames_between_sweeps = 256;
    if (on.frames % frames_between_sweeps == 0) {
        on.fast_packets.sweep(on.frames);
        on.transports.sweep(on.frames);
    }

    const std::uint32_t pgn = record.msg.pgn;
    const N2KMsg* reassembled = nullptr;
    if (pgn_vistel::core::is_fast_packet(pgn, definitions_)) {
        reassembled = on.fast_packets.put(record.msg, now);
    } else {
        emit(record.msg, record.time);
        if (pgn == transport_protocol::control_pgn || pgn == transport_protocol::data_pgn) {
            const SourceClock& other = on.clocks[record.msg.destination];
            reassembled = on.transports.put(record.msg, now, other.look(record.time.nanoseconds, on.frames));
        }
    }
    if (reassembled != nullptr) emit(*reassembled, record.time);
}

void Reassembler::finish() {
    for (std::size_t number = 0; number < buses_.size(); ++number) {
        if (!buses_[number]) continue;
        change_bus(static_cast<std::uint8_t>(number));
        current_->fast_packets.finish();
        current_->transports.finish();
        current_->clocks = {};
        current_->frames = 0;
    }
}

}  // namespace vistel
