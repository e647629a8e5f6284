#include "pgn_vistel/core/layout.h"

#include "core/plan.h"
#include "core/walk.h"

namespace pgn_vistel::core {

namespace {

/// The field that a link of fields[from] leads to. A link that is none leads nowhere.
const FieldDef* field_at_link(std::span<const FieldDef> fields, std::size_t from, Link link) {
    if (link.bits == 0) return nullptr;
    const auto bits_of = [&fields](std::size_t i) { return static_cast<int>(plan_of(fields[i]).bits); };
    int at = 0;
    if (link.is_absolute != 0) {
        for (std::size_t i = 0; i < fields.size() && at <= link.offset; at += bits_of(i++))
            if (at == link.offset) return &fields[i];
        return nullptr;
    }
    while (at > link.offset && from > 0) at -= bits_of(--from);
    while (at < link.offset && from + 1 < fields.size()) at += bits_of(from++);
    return at == link.offset ? &fields[from] : nullptr;
}

/// Size of the field that a walk has come to, whatever another one says: of the value of a key, what the key
/// has.
int own_bits(const MessageWalk& walk, const FieldPlan& planned) {
    const FieldExtra& extra = field_extras[planned.extra];
    const Stepping::State& state = Stepping::state(walk);
    const int position = walk.position.byte * 8 + walk.position.bit;
    const int at = extra.key.is_absolute != 0 ? extra.key.offset : position + extra.key.offset;
    if (extra.key.bits == 0 || at < 0 || at + extra.key.bits > state.end) return planned.bits;
    const auto key = static_cast<std::uint32_t>(gather_bits(state.data, at, extra.key.bits));
    const std::uint16_t entry = find_entry(extra.key_set, key);
    return entry != no_entry ? field_plans[extra.key_rows + entry].bits : planned.bits;
}

TextLayout layout_of(Reading reading) {
    switch (reading) {
        case Reading::text_sent: return TextLayout::sent;
        case Reading::text_counted: return TextLayout::counted;
        case Reading::text_padded: return TextLayout::padded;
        case Reading::bytes: return TextLayout::bytes;
        case Reading::decimal: return TextLayout::decimals;
        default: return TextLayout::none;
    }
}

}  // namespace

std::span<const FieldDef> fields_of(const PgnDef& definition) {
    const PgnPlan& plan = plan_of(definition);
    if (plan.rows == 0) return {};
    return {&field_row(plan.first_row), plan.rows};
}

FieldLinks links_of(const PgnDef& definition, const FieldDef& field) {
    const std::span<const FieldDef> fields = fields_of(definition);
    const auto place = static_cast<std::size_t>(&field - fields.data());
    FieldLinks links{};
    const auto flags_of = [&fields](std::size_t i) { return plan_of(fields[i]).flags; };
    if ((flags_of(place) & in_group) != 0) {
        std::size_t first = place, last = place;
        while ((flags_of(first) & first_of_group) == 0) --first;
        while ((flags_of(last) & last_of_group) == 0) ++last;
        links.first = &fields[first];
        links.last = &fields[last];
        links.count = field_at_link(fields, first, field_extras[plan_of(fields[first]).extra].count);
    }
    const FieldExtra& extra = field_extras[plan_of(field).extra];
    links.size = field_at_link(fields, place, extra.size);
    links.size_unit = extra.size_unit;
    links.size_extra = extra.less;
    return links;
}

FieldCoding coding_of(const MessageWalk& walk) {
    const Stepping::State& state = Stepping::state(walk);
    const FieldPlan& plan = Stepping::plan(state);
    const FormatPlan& format = format_plans[plan.format];
    FieldCoding coding{};
    const FieldPlan& planned = field_plans[state.planned];
    coding.row = &field_row(state.planned);
    if (plan.enumeration != no_set) coding.texts = &enum_sets[plan.enumeration];
    coding.high = state.is_resolved ? state.high : 0;
    coding.is_number = plan.form == Form::coded;
    coding.is_last = planned.next == end_row && (planned.flags & in_group) == 0;
    coding.names_pgn = plan.form == Form::pgn_title;
    coding.text = layout_of(format.reading);
    coding.header = coding.text == TextLayout::sent ? format.width : std::uint8_t{0};
    const Measure& measure = measures[format.measure];
    coding.has_none = measure.none[0] != INT64_MIN;
    coding.none = measure.none[0];
    coding.own_bits = state.row == state.planned || state.size >= 0 ? own_bits(walk, planned) : plan.bits;
    coding.bits = state.is_resolved && state.size >= 0 ? state.size : plan.bits;
    return coding;
}

}  // namespace pgn_vistel::core
