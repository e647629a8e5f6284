#pragma once

#include "encode/message_builder.h"
#include "support/shown.h"
#include "text/hex.h"

/// What decoding shows of a message, to be typed.
namespace vistel::test {

using namespace pgn_vistel::core;

/// With the default units.
inline ReadingContext& context(Definitions set = Definitions::fixed) {
    static ReadingContext fixed{Definitions::fixed, {}, {}}, corrected{Definitions::corrected, {}, {}};
    return set == Definitions::fixed ? fixed : corrected;
}

inline std::string hex(const N2KMsg& msg) {
    std::string text;
    for (int i = 0; i < payload_length(msg); ++i) append_hex(text, msg.data[i], 2);
    return text;
}

/// Every field that a walk comes to, as `typed(cell)` has it.
template <class Typed>
std::vector<TypedField> typed_fields(MessageWalk& walk, N2KMsg& msg, Definitions set, Typed typed) {
    std::vector<TypedField> fields;
    while (walk.next()) {
        pgn_vistel::test::require(fields.size() < 30000, "the walk does not end");
        const FieldCell cell(context(set), msg, walk);
        fields.push_back(typed(cell));
        walk.position = cell.next();
    }
    return fields;
}

/// Every field of the message as decoding shows it, and the payload where it does so.
inline std::vector<TypedField> shown_fields(N2KMsg msg, Definitions set = Definitions::fixed) {
    MessageWalk walk(find_definition(set, msg), msg);
    const auto shown = [](const FieldCell& cell) { return TypedField{cell.label(), cell.shown(true)}; };
    auto fields = typed_fields(walk, msg, set, shown);
    if (walk.has_undecoded_rest()) fields.push_back({std::string(payload_label), hex(msg)});
    return fields;
}

}  // namespace vistel::test
