#include "readers/stream_capture.h"

#include <algorithm>
#include <array>

#include "readers/byte_order.h"

namespace vistel {
namespace {

constexpr std::size_t file_header = 24, piece_header = 16;
constexpr std::uint32_t most_piece = 262'144;
constexpr std::int64_t second = 1'000'000'000;
constexpr std::string_view header("\x4D\x3C\xB2\xA1\2\0\4\0\0\0\0\0\0\0\0\0\0\0\4\0\x93\0\0\0", file_header);

void append_word(std::string& out, std::uint64_t value) {
    for (unsigned i = 0; i < 4; ++i) out += static_cast<char>(value >> (8 * i));
}

class PlayedStream final : public ByteInput {
  public:
    explicit PlayedStream(std::unique_ptr<ByteInput> input) : input_(std::move(input)) {}

    Fill read(std::span<char> room, int patience, std::size_t& size) override;
    const std::string& error() const override { return error_.empty() ? input_->error() : error_; }
    bool is_file() const override { return input_->is_file(); }
    std::uint64_t total() const override { return input_->total(); }
    std::int64_t arrival() const override { return kind_ == Kind::stream ? time_ : input_->arrival(); }
    std::uint64_t position(std::uint64_t given) const override {
        return input_->position(kind_ == Kind::stream ? taken_ : given);
    }

  private:
    enum class Kind { unknown, stream, other };

    Fill take(int patience);
    Fill fail(const char* why) {
        error_ = why;
        return Fill::failed;
    }

    std::unique_ptr<ByteInput> input_;
    Kind kind_ = Kind::unknown;
    std::array<char, std::size_t{1} << 16> buffer_;
    std::string_view bytes_;    // of the buffer, not dealt with
    std::size_t in_piece_ = 0;  // bytes that the piece still has
    std::uint64_t taken_ = 0;
    std::int64_t time_ = 0;
    bool ended_ = false;
    std::string error_;
};

/// Some more bytes behind those that are there, which are less than a header.
ByteInput::Fill PlayedStream::take(int patience) {
    if (ended_) return Fill::end;
    const std::size_t kept = bytes_.size();
    std::char_traits<char>::move(buffer_.data(), bytes_.data(), kept);  // they may overlap
    std::size_t size = 0;
    const Fill came = input_->read(std::span(buffer_).subspan(kept), patience, size);
    if (came != Fill::data) size = 0;
    ended_ = came == Fill::end;
    bytes_ = {buffer_.data(), kept + size};
    return came;
}

ByteInput::Fill PlayedStream::read(std::span<char> room, int patience, std::size_t& size) {
    for (;;) {
        if (!error_.empty()) return Fill::failed;
        const bool is_other = kind_ == Kind::other;
        if (is_other && bytes_.empty()) return ended_ ? Fill::end : input_->read(room, patience, size);
        if (is_other || (in_piece_ > 0 && !bytes_.empty())) {
            size = bytes_.copy(room.data(), is_other ? room.size() : std::min(room.size(), in_piece_));
            bytes_.remove_prefix(size);
            if (!is_other) in_piece_ -= size, taken_ += size;
            return Fill::data;
        }
        if (kind_ == Kind::unknown && (!header.starts_with(bytes_.substr(0, file_header)) || ended_)) {
            kind_ = Kind::other;
        } else if (kind_ == Kind::unknown && bytes_.size() >= file_header) {
            kind_ = Kind::stream;
            bytes_.remove_prefix(file_header);
            taken_ = file_header;
        } else if (kind_ == Kind::stream && in_piece_ == 0 && bytes_.size() >= piece_header) {
            constexpr ByteOrder little{false};
            time_ = little.load<std::uint32_t>(bytes_.data()) * second +
                    little.load<std::uint32_t>(bytes_.data() + 4);
            in_piece_ = little.load<std::uint32_t>(bytes_.data() + 8);
            if (in_piece_ > most_piece) return fail("the recorded stream is damaged");
            bytes_.remove_prefix(piece_header);
            taken_ += piece_header;
        } else {
            const bool is_cut = in_piece_ > 0 || !bytes_.empty();
            const Fill came = take(patience);
            if (came == Fill::end && kind_ == Kind::stream)
                return is_cut ? fail("the recorded stream is cut off") : Fill::end;
            if (came == Fill::idle || came == Fill::failed) return came;
        }
    }
}

}  // namespace

void begin_stream_capture(std::string& out) {
    out += header;
}

void append_stream_piece(std::string& out, std::int64_t time, std::string_view bytes) {
    while (!bytes.empty()) {
        const std::string_view piece = bytes.substr(0, most_piece);
        append_word(out, static_cast<std::uint64_t>(time / second));
        append_word(out, static_cast<std::uint64_t>(time % second));
        append_word(out, piece.size());
        append_word(out, piece.size());
        out += piece;
        bytes.remove_prefix(piece.size());
    }
}

std::unique_ptr<ByteInput> played_stream(std::unique_ptr<ByteInput> input) {
    return std::make_unique<PlayedStream>(std::move(input));
}

}  // namespace vistel
