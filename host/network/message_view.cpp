#include "network/message_view.h"

#include <algorithm>

#include "pgn_vistel/core/layout.h"
#include "text/hex.h"
#include "text/printable.h"
#include "text/words.h"

namespace vistel {

namespace core = pgn_vistel::core;

namespace {

/// What `write` writes to a place with room for any field.
template <class Write>
std::string written(Write write) {
    std::array<char, core::piece_room> area;
    const char* const end = write(area.data());
    return printable({area.data(), static_cast<std::size_t>(end - area.data())});
}

/// Without the hexadecimal form that whole numbers have beside them, "300 (0x012C)".
std::string without_hexadecimal(std::string value) {
    const std::size_t from = value.find(" (0x");
    if (from == std::string::npos) return value;
    const std::size_t to = value.find(')', from);
    return to == std::string::npos ? value : value.erase(from, to - from + 1);
}

}  // namespace

std::string spaced_bytes(const std::uint8_t* bytes, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        if (i > 0) text += ' ';
        text += hex_digits[bytes[i] >> 4];
        text += hex_digits[bytes[i] & 15];
    }
    return text;
}

MessageView::MessageView(const N2KMsg& msg, const core::UnitSelection& units, core::Definitions definitions)
    : msg_(msg), units_(units), row_(core::find_definition(definitions, msg)), walk_(row_, msg) {}

std::string_view MessageView::name() const {
    const std::string_view name = core::pgn_name(row_);
    return name.empty() ? "Unknown PGN" : name;
}

bool MessageView::next() {
    if (!is_first_) walk_.position = reading_.next;
    is_first_ = false;
    if (!walk_.next()) return false;
    from_ = walk_.position;
    reading_ = walk_.read(units_, core::unit::selected, scratch_);
    return true;
}

std::string MessageView::label() const {
    return written([this](char* at) { return core::write_label(at, walk_.field(), walk_.repeat()); });
}

std::string MessageView::value() const {
    return written([this](char* at) { return core::write_value(at, walk_, reading_, true); });
}

std::string MessageView::value_in(core::UnitId unit) const {
    core::MessageWalk walk = walk_;
    walk.position = from_;
    const core::FieldReading reading = walk.read(units_, unit, scratch_);
    return written([&](char* at) { return core::write_value(at, walk, reading, true); });
}

bool MessageView::is_telling() const {
    if (!core::is_available(reading_.value)) return false;
    const std::string_view key = core::field_key(walk_.field());
    return key.find("reserved") == std::string_view::npos && key != "sequence_id";
}

std::string MessageView::raw() const {
    const int end = std::min(behind_bit(), std::min<int>(msg_.length, sizeof msg_.data) * 8);
    std::string text;
    for (int bit = first_bit(); bit < end; bit += 8) {
        const int count = std::min(end - bit, 8);
        unsigned two_bytes = msg_.data[bit / 8];
        if (bit / 8 + 1 < static_cast<int>(sizeof msg_.data))
            two_bytes |= unsigned{msg_.data[bit / 8 + 1]} << 8;
        const auto byte = static_cast<std::uint8_t>(two_bytes >> bit % 8 & ((1u << count) - 1));
        if (!text.empty()) text += ' ';
        text += spaced_bytes(&byte, 1);
    }
    return text;
}

std::string MessageView::undecoded() const {
    if (!walk_.has_undecoded_rest()) return {};
    const int from = walk_.undecoded_from();
    return spaced_bytes(msg_.data + from, std::min<int>(msg_.length, sizeof msg_.data) - from);
}

std::string summary_of(const N2KMsg& msg, const core::UnitSelection& units, core::Definitions definitions) {
    constexpr std::size_t enough = 400;
    std::string text;
    MessageView view(msg, units, definitions);
    while (view.next() && text.size() < enough) {
        if (!view.is_telling()) continue;
        if (!text.empty()) text += ", ";
        text += view.label();
        text += ' ';
        text += trimmed(without_hexadecimal(view.value()));
    }
    if (const std::string rest = view.undecoded(); !rest.empty()) {
        if (!text.empty()) text += ", ";
        text += "Data " + rest;
    }
    return text;
}

}  // namespace vistel
