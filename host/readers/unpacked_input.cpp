#include "readers/unpacked_input.h"

#include <algorithm>
#include <array>

#include "readers/unpacker.h"
#include "text/words.h"

namespace vistel {
namespace {

/// How compressed data begins.
struct Beginning {
    Packing packing;
    std::string_view name;
    std::string_view bytes;
    unsigned char first_mask = 0xFF;  ///< what counts of the first byte
};

using namespace std::string_view_literals;

constexpr Beginning beginnings[] = {
    {Packing::gzip, "gzip"sv, "\x1F\x8B\x08"sv},
    {Packing::xz, "xz"sv, "\xFD\x37zXZ\0"sv},
    {Packing::zstd, "zstd"sv, "\x28\xB5\x2F\xFD"sv},
    {Packing::zstd, "zstd"sv, "\x50\x2A\x4D\x18"sv, 0xF0},  // a frame to be skipped
    {Packing::bzip2, "bzip2"sv, "BZh"sv},
};

/// Whether as much as there is of `head` fits.
bool may_begin(const Beginning& beginning, std::string_view head) {
    const std::size_t size = std::min(head.size(), beginning.bytes.size());
    return size > 0 &&
           (static_cast<unsigned char>(head[0]) & beginning.first_mask) ==
               static_cast<unsigned char>(beginning.bytes[0]) &&
           head.substr(1, size - 1) == beginning.bytes.substr(1, size - 1);
}

class UnpackedInput final : public ByteInput {
  public:
    explicit UnpackedInput(std::unique_ptr<ByteInput> input) : input_(std::move(input)) {}

    Fill read(std::span<char> room, int patience, std::size_t& size) override;
    const std::string& error() const override { return error_.empty() ? input_->error() : error_; }
    bool is_file() const override { return input_->is_file(); }
    std::int64_t arrival() const override { return input_->arrival(); }
    std::uint64_t total() const override { return input_->total(); }
    std::uint64_t position(std::uint64_t given) const override {
        if (given_ == 0) return input_->position(given);
        const double share = static_cast<double>(given) / static_cast<double>(given_);
        return static_cast<std::uint64_t>(share * static_cast<double>(input_->position(taken_)));
    }

  private:
    /// What the bytes that come next are.
    enum class Next { piece, other, unknown };

    Next look();
    Fill take(int patience);
    Fill unpack(std::span<char> room, std::size_t& size);
    Fill fail(std::string_view what) {
        error_ = concat("the ", name_, " data ", what);
        return Fill::failed;
    }

    const std::unique_ptr<ByteInput> input_;
    std::array<char, 1 << 16> buffer_;
    std::string_view packed_;  // bytes in the buffer that were not unpacked
    bool last_ = false;        // nothing follows these
    bool is_plain_ = false;
    std::string_view name_;  // of the packing; empty at the beginning
    std::unique_ptr<Unpacker> unpacker_;
    bool has_more_ = false;                // of what it took already, for which there was no room
    std::uint64_t taken_ = 0, given_ = 0;  // bytes; given_ is counted for packed ones alone
    std::string error_;
};

ByteInput::Fill UnpackedInput::read(std::span<char> room, int patience, std::size_t& size) {
    for (;;) {
        if (!error_.empty()) return Fill::failed;
        if (is_plain_ && packed_.empty()) return last_ ? Fill::end : input_->read(room, patience, size);
        if (is_plain_) {
            size = packed_.copy(room.data(), room.size());
            packed_.remove_prefix(size);
            return Fill::data;
        }
        if (unpacker_) {
            const Fill came = unpack(room, size);
            if (came != Fill::idle) return came;
            if (!unpacker_) continue;
        } else {
            switch (look()) {
                case Next::piece: continue;
                case Next::other:
                    if (!name_.empty()) return fail("is followed by something else");
                    is_plain_ = true;
                    continue;
                case Next::unknown: break;
            }
        }
        if (last_) return unpacker_ ? fail("is cut off") : Fill::end;
        const Fill came = take(patience);
        if (came == Fill::idle || came == Fill::failed) return came;
    }
}

/// Looks for the next piece, and opens it. Tapes and files of full blocks have zeros behind the last one.
UnpackedInput::Next UnpackedInput::look() {
    if (!name_.empty()) packed_.remove_prefix(std::min(packed_.find_first_not_of('\0'), packed_.size()));
    if (packed_.empty()) return Next::unknown;
    for (const Beginning& beginning : beginnings) {
        if (!may_begin(beginning, packed_)) continue;
        if (packed_.size() < beginning.bytes.size()) return last_ ? Next::other : Next::unknown;
        name_ = beginning.name;
        unpacker_ = make_unpacker(beginning.packing);
        if (!unpacker_)
            error_ = concat("it is compressed by ", name_, ", which this program was built without");
        return Next::piece;
    }
    return Next::other;
}

/// Adds bytes to those that are left.
ByteInput::Fill UnpackedInput::take(int patience) {
    std::char_traits<char>::move(buffer_.data(), packed_.data(), packed_.size());
    const std::span room = std::span(buffer_).subspan(packed_.size());
    std::size_t size = 0;
    const Fill came = input_->read(room, patience, size);
    if (came == Fill::data) taken_ += size;
    if (came == Fill::end) last_ = true;
    packed_ = {buffer_.data(), packed_.size() + size};
    return came;
}

/// `idle` when more bytes are wanted, or the piece is complete.
ByteInput::Fill UnpackedInput::unpack(std::span<char> room, std::size_t& size) {
    while (!packed_.empty() || has_more_) {
        const std::size_t left = packed_.size();
        std::span<char> rest = room;
        const Unpacker::Step step = unpacker_->unpack(packed_, rest);
        size = room.size() - rest.size();
        given_ += size;
        has_more_ = step == Unpacker::Step::more && rest.empty();
        const bool stuck = step == Unpacker::Step::more && size == 0 && left > 0 && packed_.size() == left;
        if (step == Unpacker::Step::end) unpacker_.reset();
        if (step == Unpacker::Step::damaged || stuck) (void)fail("is damaged");
        if (step == Unpacker::Step::too_large) (void)fail("takes too much memory to unpack");
        if (size > 0) return Fill::data;
        if (!error_.empty()) return Fill::failed;
        if (!unpacker_) break;
    }
    return Fill::idle;
}

}  // namespace

std::string_view packing_of(std::string_view head) {
    for (const Beginning& beginning : beginnings)
        if (head.size() >= beginning.bytes.size() && may_begin(beginning, head)) return beginning.name;
    return {};
}

std::unique_ptr<ByteInput> unpacked(std::unique_ptr<ByteInput> input) {
    return std::make_unique<UnpackedInput>(std::move(input));
}

}  // namespace vistel
