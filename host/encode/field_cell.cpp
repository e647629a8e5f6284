#include "encode/field_cell.h"

#include <algorithm>

#include "output/wide_label.h"
#include "text/utf8.h"

using namespace pgn_vistel;

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

/// One format looks at bytes behind its field. They are still to come, and are none where it is the last.
int FieldCell::length_for_reading() const {
    if (msg_.length < N2K_MAX_PAYLOAD || field_.bytes == 0 || at_.bit != 0) return msg_.length;
    return std::min(at_.byte + field_.bytes, N2K_MAX_PAYLOAD);
}

std::string FieldCell::label() const {
    wchar_t area[160];
    const int length =
        QV_N2K_PGN_DB_c::print_field_name(area, static_cast<int>(std::size(area)), static_cast<int>(dd().dd),
                                          WideLabel(field_.row->name).text, field_.repeat, 0, 0);
    constexpr int colon = 2;  // with its blank
    return utf8_of({area, static_cast<std::size_t>(std::max(0, length - colon))});
}

std::string FieldCell::shown(bool with_unit) const {
    wchar_t label[1024], value[1024];
    PayloadPosition at = at_;
    const Shortened shortened(msg_, length_for_reading());
    db_.get_field_str(label, value, &msg_, static_cast<int>(row().field), const_cast<DDDef*>(&dd()), L"",
                      field_.bytes, field_.bits, &at.byte, &at.bit, nullptr, field_.repeat, with_unit, 0,
                      nullptr, unit::selected);
    return utf8_of(value);
}

FieldReading FieldCell::read(ConvValue& value, UnitId unit) const {
    value = {CV_NOT_AVAILABLE, {}};
    value.value.u64 = 0x7FFFFFFF;  // what the decoder presets
    const Shortened shortened(msg_, length_for_reading());
    return read_field(db_, msg_, dd(), field_.bytes, field_.bits, at_, unit, &value);
}

PayloadPosition FieldCell::next() const {
    ConvValue value;
    return read(value, unit::raw_bits).next;
}

bool FieldCell::holds_text() const {
    const std::uint32_t df = dd().format->df;
    return df == short_text || df == medium_text || df == fixed_text || df == hex_dump;
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
    switch (dd().format->df) {
        case short_text: {
            constexpr std::uint8_t empty[] = {2, 1};  // length of all, ASCII
            std::copy_n(empty, std::min(std::size(empty), bytes().size()), bytes().data());
            return;
        }
        case medium_text: {
            constexpr std::uint8_t empty[] = {3, 0, 1};
            std::copy_n(empty, std::min(std::size(empty), bytes().size()), bytes().data());
            return;
        }
        case fixed_text:
        case hex_dump: {
            const auto count = static_cast<std::size_t>(std::max(0, next().byte - at_.byte));
            std::fill_n(bytes().data(), std::min(count, bytes().size()), std::uint8_t{0xFF});
            return;
        }
        default: break;
    }
    // All bits set, or for signed numbers all but the sign.
    const auto available = [this](std::uint64_t code) {
        put(code);
        ConvValue value;
        read(value, unit::raw_count);
        return is_available(value);
    };
    const std::uint64_t all = ones(bits());
    if (available(all) && available(all >> 1)) put(all);
}

}  // namespace vistel
