#include "reassembly/reassembler.h"

#include <cassert>

namespace vistel {

void Reassembler::emit(const N2KMsg& msg, const RecordTime& time) {
    ++counters_.messages;
    emitting_ = true;
    sink_(msg, time);
    emitting_ = false;
}

void Reassembler::put(const Record& record) {
    assert(!emitting_);
    if (record.kind == Record::Kind::message) {
        emit(record.msg, record.time);
        return;
    }
    constexpr std::uint64_t frames_between_sweeps = 256;
    const Moment now{record.time, ++counters_.frames};
    if (now.frame % frames_between_sweeps == 0) {
        fast_packets_.sweep(now);
        transports_.sweep(now);
    }

    const std::uint32_t pgn = record.msg.pgn;
    const N2KMsg* reassembled = nullptr;
    if (pgn_vistel::core::is_fast_packet(pgn, definitions_)) {
        reassembled = fast_packets_.put(record.msg, now);
    } else {
        emit(record.msg, record.time);
        if (pgn == transport_protocol::control_pgn || pgn == transport_protocol::data_pgn) {
            reassembled = transports_.put(record.msg, now);
        }
    }
    if (reassembled != nullptr) emit(*reassembled, record.time);
}

void Reassembler::finish() {
    fast_packets_.finish();
    transports_.finish();
}

}  // namespace vistel
