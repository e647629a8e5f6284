#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

#include "readers/bst_record.h"

namespace vistel {

/// How BST records stand in a stream: between 10 02 and 10 03, with every 10 doubled.
struct BstFrame {
    static constexpr std::uint8_t escape = 0x10, start = 0x02, end = 0x03;
    static constexpr std::string_view start_mark = "\x10\x02";

    /// What ends a frame.
    enum class End {
        whole,
        open,  ///< the bytes do not reach its end
        cut,   ///< another start, an escape that means nothing, or too many bytes
    };

    std::span<const std::uint8_t> record() const { return {bytes.data(), size}; }

    std::array<std::uint8_t, BstReader::most_bytes> bytes;
    std::size_t size = 0;
};

/// Takes the frame with whose start mark a stream begins. `Stream` has `next()`, a byte or negative when
/// there is none, and `take_plain(room)`, which writes bytes up to the next escape and returns how many. Of a
/// frame that is cut the stream stands behind the escape that tells it.
template <class Stream>
BstFrame::End take_frame(Stream& stream, BstFrame& frame) {
    (void)stream.next();
    (void)stream.next();
    frame.size = 0;
    for (;;) {
        frame.size += stream.take_plain(std::span(frame.bytes).subspan(frame.size));
        const int byte = stream.next();
        if (byte < 0) return BstFrame::End::open;
        if (byte != BstFrame::escape) return BstFrame::End::cut;
        const int next = stream.next();
        if (next < 0) return BstFrame::End::open;
        if (next == BstFrame::end) return BstFrame::End::whole;
        if (next != BstFrame::escape || frame.size == frame.bytes.size()) return BstFrame::End::cut;
        frame.bytes[frame.size++] = BstFrame::escape;
    }
}

/// Bytes that hold nothing but frames.
class PlainStream {
  public:
    explicit PlainStream(std::string_view bytes) : bytes_(bytes) {}

    int next() { return at_ < bytes_.size() ? static_cast<unsigned char>(bytes_[at_++]) : -1; }
    std::size_t take_plain(std::span<std::uint8_t> room) {
        const std::string_view rest = bytes_.substr(at_, room.size());
        const void* const escape = std::memchr(rest.data(), BstFrame::escape, rest.size());
        const std::size_t size =
            escape == nullptr ? rest.size()
                              : static_cast<std::size_t>(static_cast<const char*>(escape) - rest.data());
        std::memcpy(room.data(), rest.data(), size);
        at_ += size;
        return size;
    }
    std::size_t taken() const { return at_; }

  private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

}  // namespace vistel
