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
    : context_(context), msg_(msg), walk_(walk), coding_(coding_of(walk)) {
    int bits;
    if (is_corrected()) {
        bytes_ = coding_.bits % 8 == 0 ? coding_.bits / 8 : 0;
        const bool is_under_construction = msg_.length == N2K_MAX_PAYLOAD;
        if (coding_.text == TextLayout::bytes && coding_.bits == 0 && is_under_construction) written_ = 0;
    } else {
        normalise_field_size(&row(), row().pgn, &bytes_, &bits);
        coding_.texts = find_enumeration(dd().dd);
        coding_.names_pgn = dd().dd == dd::pgn_number;
    }
}

std::string FieldCell::shown(bool with_unit, UnitId unit) const {
    char area[piece_room];
    if (is_corrected()) return {area, write_value(area, walk_, read(unit), with_unit)};
    return {area, write_value(area, row(), read(unit), with_unit)};
}

FieldReading FieldCell::read(UnitId unit) const {
    if (is_corrected()) {
        FieldReading reading = walk_.read(context_.units, unit, context_.scratch);
        // Bytes up to the end, which is still to come.
        if (written_ >= 0) reading.value.text.count = std::max(3 * written_ - 1, 0);
        return reading;
    }
    // One format looks at bytes behind its field. They are still to come, and are none where it is the last.
    const bool ends_here = msg_.length == N2K_MAX_PAYLOAD && bytes_ > 0 && start().bit == 0;
    const int end = start().byte + (written_ >= 0 ? written_ : bytes_);
    const Shortened shortened(msg_, ends_here ? std::min(end, N2K_MAX_PAYLOAD) : int{msg_.length});
    return read_field(msg_, row(), start(), context_.units, unit, context_.scratch);
}

bool FieldCell::is_value(const Value& value) const {
    return is_available(value) || (is_corrected() && is_integer(value.type));
}

PayloadPosition FieldCell::next() const {
    if (is_corrected() && written_ >= 0) return {start().byte + written_, start().bit};
    return read(unit::raw_bits).next;
}

bool FieldCell::holds_text() const {
    if (is_corrected()) return coding_.text != TextLayout::none;
    const DF df = dd().df;
    return df == format::text_short || df == format::text_medium || df == format::text_fixed ||
           df == format::hex_dump;
}

bool FieldCell::holds_bytes() const {
    return is_corrected() ? coding_.text == TextLayout::bytes : dd().df == format::hex_dump;
}

bool FieldCell::may_end_message() const {
    return !is_corrected() || coding_.bits == 0 ||
           (coding_.is_last && is_fast_packet(msg_.pgn, context_.definitions));
}

bool FieldCell::holds_sized_text() const {
    if (!is_corrected()) return dd().df == format::text_short || dd().df == format::text_medium;
    return coding_.text == TextLayout::sent || (coding_.text == TextLayout::counted && bytes_ == 0);
}

int FieldCell::bits() const {
    if (is_corrected() && coding_.bits > 0) return std::min(coding_.bits, widest);
    const PayloadPosition behind = next();
    const int count = (behind.byte - start().byte) * 8 + behind.bit - start().bit;
    // Binary data without a size takes no place although the eight bytes that follow are shown.
    return count > 0 ? std::min(count, widest) : widest;
}

std::uint64_t FieldCell::raw() const {
    std::uint64_t value = 0;
    const int first = start().byte * 8 + start().bit;
    for (int i = 0, count = bits(); i < count && (first + i) / 8 < N2K_MAX_PAYLOAD; ++i)
        value |= std::uint64_t{msg_.data[(first + i) / 8] >> (first + i) % 8 & 1u} << i;
    return value;
}

void FieldCell::put(std::uint64_t raw) {
    put_bits(msg_, start().byte * 8 + start().bit, bits(), raw);
}

void put_bits(N2KMsg& msg, int first, int count, std::uint64_t raw) {
    for (int i = 0, some = 0; i < count && (first + i) / 8 < N2K_MAX_PAYLOAD; i += some) {
        const int at = (first + i) % 8;
        some = std::min(8 - at, count - i);  // of this byte
        const auto mask = ((1u << some) - 1) << at;
        std::uint8_t& byte = msg.data[(first + i) / 8];
        byte = static_cast<std::uint8_t>((byte & ~mask) | (static_cast<unsigned>(raw >> i << at) & mask));
    }
}

std::size_t FieldCell::room() const {
    const auto most = static_cast<std::size_t>(std::max(0, N2K_MAX_PAYLOAD - start().byte));
    if (holds_sized_text() || written_ >= 0) return most;
    const PayloadPosition behind = next();
    const int bits = (behind.byte - start().byte) * 8 + behind.bit - start().bit;
    return std::min(static_cast<std::size_t>(std::max(0, bits) + 7) / 8, most);
}

void FieldCell::write(std::span<const std::uint8_t> bytes) {
    const int first = start().byte * 8 + start().bit;
    int left = is_corrected() && coding_.bits > 0 ? coding_.bits : N2K_MAX_PAYLOAD * 8;
    for (std::size_t i = 0; i < std::min(bytes.size(), room()) && left > 0; ++i, left -= 8)
        put_bits(msg_, first + static_cast<int>(8 * i), std::min(left, 8), bytes[i]);
}

int FieldCell::end() const {
    if (written_ >= 0) return start().byte + written_;
    const PayloadPosition behind = next();
    const bool without_size = behind.byte == start().byte && behind.bit == start().bit;
    return without_size ? start().byte + widest / 8 : behind.byte + (behind.bit > 0);
}

void FieldCell::clear() {
    if (holds_sized_text()) return write(sent_text(text_form_of(*this), u""));
    if (written_ >= 0) return;
    if (holds_text()) {
        std::vector<std::uint8_t> empty(room(), 0xFF);
        if (coding_.text == TextLayout::counted && !empty.empty()) empty[0] = 0;
        return write(empty);
    }
    if (is_corrected() && coding_.has_none) return put(static_cast<std::uint64_t>(coding_.none));
    // All bits set, or for signed numbers all but the sign.
    const auto available = [this](std::uint64_t code) {
        put(code);
        return is_value(read(unit::raw_count).value);
    };
    const std::uint64_t all = ones(bits());
    if (available(all) && available(all >> 1)) put(all);
}

}  // namespace vistel
