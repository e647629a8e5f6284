#include "readers/ebl_format.h"

#include <algorithm>
#include <limits>

#include "readers/byte_order.h"

namespace vistel {
namespace {

constexpr char escape = 0x1B, tag_start = 0x01, tag_end = 0x0A;
constexpr std::string_view tag_mark = "\x1B\x01";
constexpr std::size_t most_tag = 2 * BstReader::most_bytes + 5;

enum Tag : std::uint8_t { version_tag = 1, time_tag = 3, record_tag = 7 };

}  // namespace

/// The stream without doubled escapes. Tags within it are obeyed, but for those that are records: there it
/// ends.
class EblFormat::Stream {
  public:
    Stream(EblFormat& format, std::string_view bytes) : format_(format), bytes_(bytes) {}

    int next() {
        if (!at_byte()) return -1;
        const char byte = bytes_[at_];
        at_ += byte == escape ? 2 : 1;
        return static_cast<unsigned char>(byte);
    }
    std::size_t take_plain(std::span<std::uint8_t> room) {
        std::size_t size = 0;
        for (; size < room.size() && at_byte() && bytes_[at_] != BstFrame::escape; ++size)
            room[size] = static_cast<std::uint8_t>(next());
        return size;
    }
    std::size_t taken() const { return at_; }
    /// Where the stream ended, there is something else than a byte of it.
    bool is_broken() const { return broken_; }

  private:
    bool at_byte() {
        while (at_ < bytes_.size() && bytes_[at_] == escape) {
            const std::string_view rest = bytes_.substr(at_);
            if (rest.size() == 1) return false;
            if (rest[1] == escape) return true;
            std::size_t size = 0;
            Problem problem;
            const Found found = rest[1] == tag_start ? format_.read_tag(rest, size, problem) : Found::problem;
            if (found == Found::more) return false;
            broken_ = found != Found::nothing || format_.tag_id_ == record_tag ||
                      (format_.tag_id_ == time_tag && format_.use_time(problem) != Found::nothing);
            if (broken_) return false;
            at_ += size;
        }
        return at_ < bytes_.size();
    }

    EblFormat& format_;
    std::string_view bytes_;
    std::size_t at_ = 0;
    bool broken_ = false;
};

bool EblFormat::begins(std::string_view head) {
    constexpr std::size_t id_at = 2;
    const std::size_t end = head.substr(0, most_tag).find("\x1B\x0A");
    return head.starts_with(tag_mark) && end != std::string_view::npos && end > id_at &&
           static_cast<unsigned char>(head[id_at]) < 16;
}

Found EblFormat::take(std::string_view bytes, bool last, std::size_t& size, Record& record,
                      Problem& problem) {
    if (bytes[0] == escape) {
        if (bytes.size() == 1) return Found::more;
        if (bytes[1] == tag_start) return take_tag(bytes, size, record, problem);
    }
    return take_stream(bytes, last, size, record, problem);
}

/// Reads the tag that `bytes` begins with into tag_id_ and tag_.
Found EblFormat::read_tag(std::string_view bytes, std::size_t& size, Problem& problem) {
    tag_.size = 0;
    bool has_id = false;
    for (std::size_t at = tag_mark.size();; ++at) {
        if (at >= most_tag) {
            size = at;
            describe(problem, "a tag has no end");
            return Found::problem;
        }
        if (at + 1 >= bytes.size()) return Found::more;
        const char byte = bytes[at];
        if (byte == escape) {
            if (bytes[at + 1] == tag_end) {
                size = at + 2;
                return Found::nothing;
            }
            if (bytes[at + 1] != escape) {
                size = at;
                describe(problem, "a tag is cut off");
                return Found::problem;
            }
            ++at;
        }
        if (!has_id) {
            tag_id_ = static_cast<std::uint8_t>(byte);
            has_id = true;
        } else if (tag_.size < tag_.bytes.size()) {
            tag_.bytes[tag_.size++] = static_cast<std::uint8_t>(byte);
        }
    }
}

Found EblFormat::take_tag(std::string_view bytes, std::size_t& size, Record& record, Problem& problem) {
    if (const Found found = read_tag(bytes, size, problem); found != Found::nothing) return found;
    switch (tag_id_) {
        case time_tag: return use_time(problem);
        case record_tag: return read_record(tag_, BstReader::Checksum::perhaps, record, problem);
        case version_tag: break;
        default: return Found::nothing;
    }
    constexpr std::uint32_t known_version = 1999;  // 1.999
    if (tag_.size == 4 && little_endian<std::uint32_t>(tag_.bytes.data()) <= known_version)
        return Found::nothing;
    describe(problem, "this version of EBL recordings is not known");
    return Found::hopeless;
}

Found EblFormat::use_time(Problem& problem) {
    constexpr std::uint64_t unix_epoch = 116'444'736'000'000'000, nanoseconds = 100;
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max() / nanoseconds;
    const std::uint64_t count = tag_.size == 8 ? little_endian<std::uint64_t>(tag_.bytes.data()) : 0;
    const bool is_date = count >= unix_epoch;
    const std::uint64_t since = is_date ? count - unix_epoch : count;
    if (tag_.size != 8 || since > most) {
        describe(problem, "a tag with a time that cannot be");
        return Found::problem;
    }
    time_ = {static_cast<std::int64_t>(since * nanoseconds),
             is_date ? RecordTime::Origin::epoch : RecordTime::Origin::start};
    first_frame_.reset();
    return Found::nothing;
}

Found EblFormat::read_record(const BstFrame& frame, BstReader::Checksum checksum, Record& record,
                             Problem& problem) {
    const Found found = records_.read(frame.record(), checksum, record, problem);
    if (found != Found::record || time_.origin == RecordTime::Origin::none) return found;
    RecordTime time = time_;
    if (record.kind == Record::Kind::frame) {
        if (!first_frame_) first_frame_ = record.time.nanoseconds;
        time.nanoseconds += record.time.nanoseconds - *first_frame_;
    }
    record.time = time;
    return found;
}

/// Takes what stands in the stream.
Found EblFormat::take_stream(std::string_view bytes, bool last, std::size_t& size, Record& record,
                             Problem& problem) {
    if (bytes.size() == 1 && !last) return Found::more;
    std::size_t lost = 0;  // bytes that are known to be of no use
    if (bytes.starts_with(BstFrame::start_mark)) {
        Stream stream(*this, bytes);
        const BstFrame::End end = take_frame(stream, frame_);
        if (end == BstFrame::End::open && !stream.is_broken()) return Found::more;
        size = stream.taken();
        if (end == BstFrame::End::whole)
            return read_record(frame_, BstReader::Checksum::present, record, problem);
        lost = end == BstFrame::End::cut ? size - BstFrame::start_mark.size() : size;
        describe(problem, "a record is cut off");
    } else {
        describe(problem, "bytes that belong to no record");
    }
    const std::size_t start = bytes.find(BstFrame::start_mark, lost), tag = bytes.find(tag_mark, lost);
    size = std::min({start, tag, bytes.size() - !last});
    return Found::problem;
}

}  // namespace vistel
