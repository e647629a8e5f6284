#include "encode/field_cell.h"

#include <algorithm>

#include "encode/sent_text.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

constexpr int widest = 64;  // bits of a number

std::uint64_t ones(int bits) {
    return bits < widest ? (std::uint64_t{1} << bits) - 1 : ~std::uint64_t{0};
}

/// Gives the message another length for a while.
class Shortened {
  public:
    Shortened(N2KMsg& msg, int length) : msg_(msg), before_(msg.length) {
        msg_.length = static_cast<std::uint16_t>(length);
    }
    ~Shortened() { msg_.length = before_; }
    Shortened(const Shortened&) = delete;

  private:
    N2KMsg& msg_;
    const std::uint16_t before_;
};

}  // namespace

std::string label_of(const FieldDef& field, int repeat) {
    char area[piece_room];
    return {area, write_label(area, field, repeat)};
}

FieldCell::FieldCell(ReadingContext& context, N2KMsg& msg, const MessageWalk& walk)
    : context_(context), msg_(msg), row_(walk.field()), repeat_(walk.repeat()), at_(walk.position) {
    int bits;
    normalise_field_size(&row_, row_.pgn, &bytes_, &bits);
}

std::string FieldCell::shown(bool with_unit, UnitId unit) const {
    char area[piece_room];
    return {area, write_value(area, row_, read(unit), with_unit)};
}

FieldReading FieldCell::read(UnitId unit) const {
    // One format looks at bytes behind its field. They are still to come, and are none where it is the last.
    const bool ends_here = msg_.length == N2K_MAX_PAYLOAD && bytes_ > 0 && at_.bit == 0;
    const int end = at_.byte + (written_ >= 0 ? written_ : bytes_);
    const Shortened shortened(msg_, ends_here ? std::min(end, N2K_MAX_PAYLOAD) : msg_.length);
    return read_field(msg_, row_, at_, context_.units, unit, context_.scratch);
}

PayloadPosition FieldCell::next() const {
    return read(unit::raw_bits).next;
}

bool FieldCell::holds_text() const {
    const DF df = dd().df;
    return df == format::text_short || df == format::text_medium || df == format::text_fixed ||
           df == format::hex_dump;
}

int FieldCell::bits() const {
    const PayloadPosition behind = next();
    const int count = (behind.byte - at_.byte) * 8 + behind.bit - at_.bit;
    // Binary data without a size takes no place although the eight bytes that follow are shown.
    return count > 0 ? std::min(count, widest) : widest;
}

std::uint64_t FieldCell::raw() const {
    std::uint64_t value = 0;
    const int first = at_.byte * 8 + at_.bit;
    for (int i = 0, count = bits(); i < count && (first + i) / 8 < N2K_MAX_PAYLOAD; ++i)
        value |= std::uint64_t{msg_.data[(first + i) / 8] >> (first + i) % 8 & 1u} << i;
    return value;
}

void FieldCell::put(std::uint64_t raw) {
    const int first = at_.byte * 8 + at_.bit;
    for (int i = 0, count = bits(); i < count && (first + i) / 8 < N2K_MAX_PAYLOAD; ++i) {
        std::uint8_t& byte = msg_.data[(first + i) / 8];
        const auto bit = static_cast<std::uint8_t>(1u << (first + i) % 8);
        byte = static_cast<std::uint8_t>((raw >> i & 1) != 0 ? byte | bit : byte & ~bit);
    }
}

std::span<std::uint8_t> FieldCell::bytes() {
    const int start = std::min(at_.byte, N2K_MAX_PAYLOAD);
    return {msg_.data + start, static_cast<std::size_t>(N2K_MAX_PAYLOAD - start)};
}

int FieldCell::end() const {
    if (written_ >= 0) return at_.byte + written_;
    const PayloadPosition behind = next();
    const bool without_size = behind.byte == at_.byte && behind.bit == at_.bit;
    return without_size ? at_.byte + widest / 8 : behind.byte + (behind.bit > 0);
}

void FieldCell::clear() {
    switch (dd().df) {
        case format::text_short:
        case format::text_medium: {
            const std::vector<std::uint8_t> empty = sent_text(dd().df, u"");
            std::copy_n(empty.begin(), std::min(empty.size(), bytes().size()), bytes().begin());
            return;
        }
        case format::text_fixed:
        case format::hex_dump: {
            const auto count = static_cast<std::size_t>(std::max(0, next().byte - at_.byte));
            std::fill_n(bytes().data(), std::min(count, bytes().size()), std::uint8_t{0xFF});
            return;
        }
        default: break;
    }
    // All bits set, or for signed numbers all but the sign.
    const auto available = [this](std::uint64_t code) {
        put(code);
        return is_available(read(unit::raw_count).value);
    };
    const std::uint64_t all = ones(bits());
    if (available(all) && available(all >> 1)) put(all);
}

}  // namespace vistel
