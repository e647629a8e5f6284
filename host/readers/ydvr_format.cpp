#include "readers/ydvr_format.h"

#include <algorithm>
#include <optional>

#include "can/fast_packet.h"
#include "can/identifier.h"
#include "pgn_vistel/core/catalogue.h"
#include "readers/byte_order.h"

namespace vistel {
namespace {

namespace core = pgn_vistel::core;

constexpr std::size_t head_size = 6;
constexpr std::uint32_t recorder_itself = 0xFFFFFFFF;
constexpr std::string_view recorder_name = "YDVR";

std::uint32_t identifier_at(std::string_view bytes) {
    return little_endian<std::uint32_t>(bytes.data() + 2);
}

std::uint32_t pgn_of(std::uint32_t identifier) {
    const std::uint32_t pgn = (identifier >> 8) & max_pgn;
    return is_addressed(pgn) ? pgn & ~std::uint32_t{0xFF} : pgn;
}

bool is_known(std::uint32_t pgn) {
    return is_proprietary(pgn) || core::find_pgn_def(pgn) != nullptr ||
           core::is_fast_packet(pgn, core::Definitions::corrected);
}

/// Whether what is there of the beginning of a record can be one.
bool can_be_head(std::string_view bytes) {
    constexpr std::uint16_t minute = 60'000;
    if (bytes.size() >= 2 && little_endian<std::uint16_t>(bytes.data()) >= minute) return false;
    if (bytes.size() < head_size) return true;
    const std::uint32_t identifier = identifier_at(bytes);
    return identifier == recorder_itself || (identifier <= max_identifier && is_known(pgn_of(identifier)));
}

enum class Way { usual, other };

struct Shape {
    std::size_t payload_at, size;
};

/// Where the payload of a record is by its PGN, or as if its PGN were of the other kind; nothing if it cannot
/// be so. Of a record whose length is not there yet the size is that of its head.
std::optional<Shape> shape_of(std::string_view bytes, Way way) {
    constexpr std::size_t request_size = 3, own_size = 8, message_at = head_size + 2;
    const std::uint32_t identifier = identifier_at(bytes), pgn = pgn_of(identifier);
    if (identifier == recorder_itself || pgn == core::pgn::iso_request) {
        if (way == Way::other) return std::nullopt;
        return Shape{head_size, head_size + (pgn == core::pgn::iso_request ? request_size : own_size)};
    }
    const bool is_fast =
        core::is_fast_packet(pgn, core::Definitions::corrected) || pgn == core::pgn::commanded_address;
    if (is_fast != (way == Way::usual)) return Shape{head_size, head_size + max_frame_bytes};
    if (bytes.size() < message_at) return Shape{message_at, message_at};
    const auto length = static_cast<unsigned char>(bytes[message_at - 1]);
    if (length == 0 || length > fast_packet::most_bytes) return std::nullopt;
    return Shape{message_at, message_at + length};
}

/// The shape of the record that begins `bytes`, if it can be one and so can what follows it. One of size 0
/// stands for bytes that do not reach that far.
std::optional<Shape> find_shape(std::string_view bytes, bool last) {
    if (bytes.size() < head_size && !last) return Shape{};
    if (bytes.size() < head_size || !can_be_head(bytes)) return std::nullopt;
    for (const Way way : {Way::usual, Way::other}) {
        const auto shape = shape_of(bytes, way);
        if (!shape) continue;
        if (bytes.size() < shape->size + head_size && !last) return Shape{};
        if (bytes.size() < shape->size) return std::nullopt;
        if (can_be_head(bytes.substr(shape->size))) return shape;
    }
    return std::nullopt;
}

/// Whether the bytes, which are the last ones, are the beginning of a record.
bool is_cut(std::string_view bytes) {
    if (!can_be_head(bytes) || bytes.size() < head_size) return can_be_head(bytes);
    const auto shape = shape_of(bytes, Way::usual);
    return shape && bytes.size() < shape->size;
}

enum class Following {
    records,  ///< so many that it is no chance
    others,
    open,  ///< the bytes end before that can be told
};

/// Whether records follow each other from the beginning of the bytes on.
Following what_follows(std::string_view bytes, bool last) {
    constexpr unsigned enough = 4;
    for (unsigned count = 0; count < enough; ++count) {
        if (bytes.empty())
            return !last ? Following::open : count > 0 ? Following::records : Following::others;
        const auto shape = find_shape(bytes, last);
        if (!shape) return Following::others;
        if (shape->size == 0) return Following::open;
        bytes.remove_prefix(shape->size);
    }
    return Following::records;
}

}  // namespace

bool YdvrFormat::begins(std::string_view head) {
    constexpr unsigned enough = 6, enough_behind_name = 2;
    unsigned wanted = enough;
    if (head.size() > head_size && identifier_at(head) == recorder_itself &&
        head.substr(head_size).starts_with(recorder_name))
        wanted = enough_behind_name;
    for (unsigned count = 0; count < wanted; ++count) {
        const auto shape = find_shape(head, false);
        if (!shape || shape->size == 0) return false;
        head.remove_prefix(shape->size);
    }
    return true;
}

Found YdvrFormat::take(std::string_view bytes, bool last, std::size_t& size, Record& record,
                       Problem& problem) {
    if (lost_) {
        Following following = Following::others;
        for (size = 0; size < bytes.size(); ++size)
            if ((following = what_follows(bytes.substr(size), last)) != Following::others) break;
        if (size > 0) return Found::nothing;
        if (following == Following::open) return Found::more;
    }
    const auto shape = find_shape(bytes, last);
    if (shape && shape->size == 0) return Found::more;
    if (!shape) {
        if (last && is_cut(bytes)) return Found::more;
        size = 1;
        lost_ = true;
        describe(problem, "here the records are lost, as what follows cannot be any");
        return Found::problem;
    }
    lost_ = false;
    size = shape->size;
    const std::int64_t milliseconds = clock_.unroll(little_endian<std::uint16_t>(bytes.data()));
    const std::uint32_t identifier = identifier_at(bytes);
    if (identifier == recorder_itself) return Found::foreign;
    const std::string_view payload = bytes.substr(shape->payload_at, shape->size - shape->payload_at);
    record.kind = Record::Kind::message;
    record.time = {milliseconds * 1'000'000, RecordTime::Origin::start};
    set_header(record.msg, identifier);
    record.msg.length = static_cast<std::uint16_t>(payload.size());
    std::copy(payload.begin(), payload.end(), record.msg.data);
    return Found::record;
}

}  // namespace vistel
