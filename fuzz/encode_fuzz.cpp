// Typed fields to a message. The first two bytes choose a definition, the third how it is asked for; then
// come lines of a byte that chooses the label and the text that is typed for it. What is built is read again,
// and by the fixed definitions what is shown can be typed.
#include "encode/definitions.h"
#include "host/shown_fields.h"
#include "support/fuzz.h"

namespace {

using namespace vistel;
using namespace vistel::test;
using fuzz::require;

std::vector<std::string> labels_of(Definitions set, const PgnDef& pgn) {
    std::vector<std::string> labels;
    visit_fields(context(set), pgn, {}, [&labels](const FieldCell& cell) { labels.push_back(cell.label()); });
    labels.emplace_back(payload_label);
    return labels;
}

BuiltMessage build(Definitions set, std::uint32_t number, const PgnDef& pgn, bool by_any,
                   const std::vector<TypedField>& fields) {
    if (set == Definitions::fixed) return build_message(context(set), number, &pgn, fields);
    return by_any ? build_by_any(context(set), number, definitions_of(number), fields)
                  : build_corrected(context(set), number, pgn, fields);
}

/// Whether a message shows what was typed; behind it there may be fields that the typed one was too short
/// for. Of one that is cut off, the last, a dash is shown; typed, it is the code for not available, which may
/// have a text.
bool begins_with(const std::vector<TypedField>& shown, const std::vector<TypedField>& typed) {
    const auto same = [&typed](const TypedField& a, const TypedField& b) {
        return a.label == b.label && (a.value == b.value || (&a == &typed.back() && a.value == "- "));
    };
    return shown.size() >= typed.size() && std::equal(typed.begin(), typed.end(), shown.begin(), same);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::Input input(bytes, size);
    const auto row = input.take<std::uint16_t>();
    const auto mode = input.take<std::uint8_t>();
    const Definitions set = mode % 2 == 0 ? Definitions::fixed : Definitions::corrected;
    const auto rows = set == Definitions::fixed ? all_pgns() : all_corrected_pgns();
    const PgnDef& pgn = rows[row % rows.size()];
    const std::uint32_t number = pgn.pgn == 0 ? 65280 : pgn.pgn;  // one that only the maker is known of
    const auto labels = labels_of(set, pgn);
    std::vector<TypedField> fields;
    while (!input.empty() && fields.size() < 40) {
        const auto choice = input.take<std::uint8_t>();
        fields.push_back({labels[choice % labels.size()], std::string(input.take_line())});
    }
    BuiltMessage built = build(set, number, pgn, (mode & 14) == 2, fields);
    if (!built) {
        require(!built.error().texts.empty(), "a refusal has a reason");
        for (const std::string& text : built.error().texts) require(!text.empty(), "a reason is told");
        return 0;
    }
    require(built->pgn == number && built->length <= N2K_MAX_PAYLOAD, "a message is in bounds");
    const auto shown = shown_fields(*built, set);
    if (set == Definitions::corrected) return 0;
    BuiltMessage again = build(set, number, pgn, false, shown);
    require(bool(again), "what is shown can be typed");
    require(begins_with(shown_fields(*again, set), shown), "what is typed as shown shows the same");
    return 0;
}
