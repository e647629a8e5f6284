#include "writers/converter.h"

#include <algorithm>
#include <utility>

#include "can/frames.h"

namespace vistel {
namespace {

std::size_t stream_of(const N2KMsg& msg) {
    constexpr std::uint32_t multiplier = 0x9E3779B9;  // 2 to the 32nd by the golden ratio
    constexpr unsigned bits = 14;
    return ((msg.pgn << 8 | msg.source) * multiplier & 0xFFFFFFFF) >> (32 - bits);
}

bool same_message(const N2KMsg& a, const N2KMsg& b) {
    return a.pgn == b.pgn && a.source == b.source && a.destination == b.destination &&
           std::equal(a.data, a.data + a.length, b.data, b.data + b.length);
}

}  // namespace

Converter::Converter(RecordWriter& writer, std::string& out, Refused refused,
                     pgn_vistel::core::Definitions definitions)
    : writer_(writer),
      out_(out),
      refused_(std::move(refused)),
      definitions_(definitions),
      reassembler_(
          [this](const N2KMsg& msg, const RecordTime& time) {
              joined_.msg = msg;
              joined_.time = time;
              joined_.bus = bus_;
              write(joined_);
          },
          definitions) {}

void Converter::put(const Record& record) {
    if (!kind_) {
        kind_ = record.kind;
        if (!writer_.takes(record.kind))
            kind_ = record.kind == Record::Kind::frame ? Record::Kind::message : Record::Kind::frame;
        writer_.begin(*kind_, out_);
    }
    if (record.kind == *kind_) {
        write(record);
    } else if (record.kind == Record::Kind::message) {
        write_frames(record);
    } else {
        bus_ = record.bus;
        reassembler_.put(record);
    }
}

/// A record by itself.
void Converter::write(const Record& record) {
    std::uint64_t& count = count_of(record.time);
    if (append(record)) ++count;
}

/// Of those whose time is like this one, which is written next.
std::uint64_t& Converter::count_of(const RecordTime& time) {
    using Origin = RecordTime::Origin;
    Origin written = writer_.origin_written(time);
    if (time.origin == Origin::none && written != Origin::none) written = writer_.origin_written(last_time_);
    return times_[static_cast<std::size_t>(time.origin)][static_cast<std::size_t>(written)];
}

bool Converter::append(const Record& record) {
    using Origin = RecordTime::Origin;
    const char* why = nullptr;
    if (record.time.origin != Origin::none) [[likely]] {
        last_time_ = record.time;
        why = writer_.put(record, out_);
    } else if (writer_.origin_written(record.time) == Origin::none) {
        why = writer_.put(record, out_);
    } else {
        Record timed = record;
        timed.time = last_time_;
        why = writer_.put(timed, out_);
    }
    if (why != nullptr)
        refused_(record.msg, why);
    else
        ++written_;
    return why == nullptr;
}

void Converter::write_frames(const Record& message) {
    const N2KMsg& msg = message.msg;
    if (is_said(msg)) return;
    if (const char* const why = why_unframed(msg); why != nullptr) {
        refused_(msg, why);
        return;
    }
    std::uint8_t& sequence = sequences_[stream_of(msg)];
    joined_ = {Record::Kind::frame, message.bus, {}, message.time};
    ++count_of(message.time);
    cut(msg, sequence % fast_packet::sequences, definitions_,
        [this](std::uint32_t identifier, FrameBytes bytes) {
            set_frame(joined_, identifier, bytes);
            append(joined_);
        });
    if (carriage_of(msg, definitions_) == Carriage::fast_packet) ++sequence;
}

/// Whether the frames that hold the message have been written.
bool Converter::is_said(const N2KMsg& msg) {
    const bool is_piece =
        msg.pgn == transport_protocol::control_pgn || msg.pgn == transport_protocol::data_pgn;
    if (is_piece && msg.length <= max_frame_bytes) {
        const Moment now{.spoken = 0, .frame = ++frames_, .pauses = 0};
        if (const N2KMsg* const complete = transports_.put(msg, now, now)) said_ = *complete;
        return false;
    }
    return said_.length > 0 && same_message(msg, std::exchange(said_, {}));
}

}  // namespace vistel
