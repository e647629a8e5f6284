#include "network/message_fields.h"

#include <array>

#include "pgn_vistel/core/layout.h"
#include "pgn_vistel/core/render.h"
#include "text/words.h"

namespace vistel {

namespace {

namespace core = pgn_vistel::core;

const core::UnitSelection& si_units() {
    static const core::UnitSelection units = core::UnitSelection::si();
    return units;
}

/// Without control characters, which UTF-8 has in one byte or behind 0xC2, nor blanks around.
std::string printable(std::string_view text) {
    constexpr std::string_view replacement = "\xEF\xBF\xBD";
    const auto is_control = [](char c, unsigned first, unsigned end) {
        return static_cast<unsigned char>(c) >= first && static_cast<unsigned char>(c) < end;
    };
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (is_control(text[i], 0, 0x20) || text[i] == 0x7F) {
            result += replacement;
        } else if (text[i] == '\xC2' && i + 1 < text.size() && is_control(text[i + 1], 0x80, 0xA0)) {
            result += replacement;
            ++i;
        } else {
            result += text[i];
        }
    }
    return std::string(trimmed(result));
}

}  // namespace

MessageFields::MessageFields(const N2KMsg& msg)
    : walk_(core::find_definition(core::Definitions::corrected, msg), msg) {}

bool MessageFields::next() {
    if (!is_first_) walk_.position = reading_.next;
    is_first_ = false;
    if (!walk_.next()) return false;
    reading_ = walk_.read(si_units(), core::unit::selected, scratch_);
    return true;
}

std::string_view MessageFields::key() const {
    return core::field_key(walk_.field());
}

std::optional<double> MessageFields::number() const {
    if (!core::is_available(reading_.value)) return {};
    return core::visit_number(reading_.value, std::optional<double>(),
                              [](auto number) { return std::optional(static_cast<double>(number)); });
}

std::string MessageFields::text() const {
    const core::FieldCoding coding = core::coding_of(walk_);
    if (reading_.value.type == core::ValueType::text) {
        std::array<char, core::piece_room> area;
        const char* const end = core::write_value(area.data(), walk_, reading_, false);
        return printable({area.data(), static_cast<std::size_t>(end - area.data())});
    }
    if (coding.texts == nullptr || !number()) return {};
    const char* const text =
        core::enumeration_text(*coding.texts, core::enumeration_value(reading_.value) + coding.high);
    return text != nullptr ? printable(text) : std::string();
}

bool MessageFields::names_pgn() const {
    return core::coding_of(walk_).names_pgn;
}

}  // namespace vistel
