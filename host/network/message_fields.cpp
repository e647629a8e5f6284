#include "network/message_fields.h"

#include <array>

#include "pgn_vistel/core/layout.h"
#include "pgn_vistel/core/render.h"
#include "text/printable.h"
#include "text/words.h"

namespace vistel {

namespace {

namespace core = pgn_vistel::core;

const core::UnitSelection& si_units() {
    static const core::UnitSelection units = core::UnitSelection::si();
    return units;
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
