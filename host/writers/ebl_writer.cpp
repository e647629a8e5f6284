#include "writers/ebl_writer.h"

#include <algorithm>

#include "writers/append_number.h"

namespace vistel {
namespace {

constexpr char escape = 0x1B;

void append_tag(std::string& out, unsigned id, std::uint64_t number, unsigned bytes) {
    out += "\x1B\x01";
    append_little_endian(out, id, 1);
    for (unsigned i = 0; i < bytes; ++i) {
        const char byte = static_cast<char>(number >> 8 * i & 0xFF);
        out.append(byte == escape ? 2 : 1, byte);
    }
    out += "\x1B\x0A";
}

/// In tenths of a microsecond since 1601, or since some start.
std::uint64_t tag_time(const RecordTime& time) {
    constexpr std::uint64_t unix_epoch = 116'444'736'000'000'000;
    const auto since = static_cast<std::uint64_t>(std::max<std::int64_t>(0, time.nanoseconds)) / 100;
    return since + (time.origin == RecordTime::Origin::epoch ? unix_epoch : 0);
}

}  // namespace

/// A tag is in force until the next one.
RecordTime::Origin EblWriter::origin_written(const RecordTime& time) const {
    using Origin = RecordTime::Origin;
    const Origin origin = time.origin == Origin::none ? time_.origin : time.origin;
    return origin == Origin::day ? Origin::start : origin;
}

const char* EblWriter::put(const Record& record, std::string& out) {
    const std::size_t before = out.size();
    constexpr unsigned version_tag = 1, time_tag = 3, version = 1002;
    const bool is_timed = record.time.origin != RecordTime::Origin::none && record.time != time_;
    if (is_timed) append_tag(out, time_tag, tag_time(record.time), 8);
    if (!begun_) append_tag(out, version_tag, version, 4);
    const char* const why = records_.put(record, escape, out);
    if (why != nullptr) {
        out.resize(before);
        return why;
    }
    if (is_timed) time_ = record.time;
    begun_ = true;
    return nullptr;
}

}  // namespace vistel
