#include "assembly/assembler.h"

namespace vistel {

void Assembler::give(const N2KMsg& msg, const RecordTime& time) {
    ++counters_.messages;
    sink_(msg, time);
}

void Assembler::put(const Record& record) {
    if (record.kind == Record::Kind::message) {
        give(record.msg, record.time);
        return;
    }
    constexpr std::uint64_t frames_between_sweeps = 256;
    const Moment now{record.time, ++counters_.frames};
    if (now.frame % frames_between_sweeps == 0) {
        fast_packets_.sweep(now);
        transports_.sweep(now);
    }

    const std::uint32_t pgn = record.msg.pgn;
    const N2KMsg* assembled = nullptr;
    if (fast_packet_pgns_.contains(pgn)) {
        assembled = fast_packets_.put(record.msg, now);
    } else {
        give(record.msg, record.time);
        if (pgn == Transports::control_pgn || pgn == Transports::data_pgn) {
            assembled = transports_.put(record.msg, now);
        }
    }
    if (assembled != nullptr) give(*assembled, record.time);
}

void Assembler::finish() {
    fast_packets_.finish();
    transports_.finish();
}

}  // namespace vistel
