#include "commands/encode.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>
#include <optional>

#include "can/frames.h"
#include "commands/decode.h"
#include "commands/output_status.h"
#include "encode/calendar_entry.h"
#include "encode/choices.h"
#include "encode/definitions.h"
#include "encode/message_builder.h"
#include "encode/number_entry.h"
#include "encode/suggestions.h"
#include "output/unit_names.h"
#include "readers/timestamp.h"
#include "text/hex.h"
#include "text/printable.h"
#include "text/quotes.h"
#include "text/utf8.h"
#include "text/words.h"
#include "writers/written_formats.h"

using namespace pgn_vistel::core;

namespace vistel {

namespace {

int fail(const Failure& failure) {
    std::fprintf(stderr, "vistel: %s\n", harmless(failure.text).c_str());
    return EXIT_FAILED;
}

int fail(const Failures& failures) {
    constexpr std::size_t most = 20;
    const std::size_t count = failures.texts.size();
    for (std::size_t i = 0; i < std::min(count, most); ++i) fail({failures.texts[i]});
    return count > most ? fail(failure("and ", count - most, " more like these")) : EXIT_FAILED;
}

std::string name_of(const PgnDef& row) {
    return std::string(pgn_name(&row));
}

/// A PGN by number or name.
struct Chosen {
    std::uint32_t number = 0;
    const PgnDef* row = nullptr;               ///< of the fixed definitions, or null
    std::vector<const PgnDef*> definitions{};  ///< corrected ones that the message may be of
};

/// Nothing where the text is no number of a PGN.
std::optional<std::uint32_t> pgn_number_of(const std::string& text) {
    std::uint32_t number = 0;
    const char* const last = text.data() + text.size();
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const auto [end, error] =
        std::from_chars(text.data() + (hexadecimal ? 2 : 0), last, number, hexadecimal ? 16 : 10);
    if (end != last || error != std::errc{} || number > max_pgn) return {};
    return number;
}

/// What names stand for: rows of PGNs, each with its own.
std::vector<const PgnDef*> named_rows(Definitions set) {
    std::vector<const PgnDef*> rows;
    for (const PgnDef& row : set == Definitions::fixed ? all_pgns() : all_corrected_pgns())
        if (set == Definitions::fixed || row.pgn != 0) rows.push_back(&row);
    return rows;
}

Result<Chosen> choose_by_name(Definitions set, const std::string& text) {
    Chosen chosen;
    std::vector<std::string> names, numbers;
    for (const PgnDef* const row : named_rows(set)) {
        const std::string name = name_of(*row);
        if (std::ranges::find(names, name) == names.end()) names.push_back(name);
        if (comparable_name(name) != comparable_name(text)) continue;
        if (set == Definitions::fixed) return Chosen{row->pgn, find_pgn_def(row->pgn)};
        chosen.number = row->pgn;
        chosen.definitions.push_back(row);
        const std::string number = std::to_string(row->pgn);
        if (std::ranges::find(numbers, number) == numbers.end()) numbers.push_back(number);
    }
    if (numbers.size() == 1) return chosen;
    if (!numbers.empty())
        return failure("several PGNs have the name ", in_quotes(text), ": ", joined(numbers),
                       "; give a number and --variant");
    return failure("no PGN ", in_quotes(text), "; ",
                   suggestion(text, names, "'vistel catalogue pgns' shows numbers and names"));
}

Result<Chosen> choose_pgn(const EncodeOptions& options) {
    const std::string& text = options.pgn;
    if (!utf16_of(text)) return failure(quoted(text), " is not UTF-8 text");
    const std::optional<std::uint32_t> number = pgn_number_of(text);
    if (number && options.definitions == Definitions::fixed) return Chosen{*number, find_pgn_def(*number)};
    if (!number && !text.empty() && text.find_first_not_of("0123456789") == text.npos)
        return failure("PGN ", in_quotes(text), " is above ", max_pgn);
    if (!number) return choose_by_name(options.definitions, text);
    Chosen chosen{*number, nullptr, definitions_of(*number)};
    if (options.variant.empty()) return chosen;
    std::vector<std::string> names;
    for (const PgnDef* const definition : chosen.definitions) names.push_back(name_of(*definition));
    std::erase_if(chosen.definitions, [&](const PgnDef* definition) {
        return variant_of(*definition) != options.variant &&
               comparable_name(pgn_name(definition)) != comparable_name(options.variant);
    });
    if (!chosen.definitions.empty()) return chosen;
    return failure(
        "PGN ", *number, " has no variant ", quoted(options.variant), "; ",
        suggestion(options.variant, names, concat("'vistel encode --list ", *number, "' names them")));
}

// ---- the list of fields ----

std::string size_text(const FieldCell& cell) {
    const PayloadPosition from = cell.start(), to = cell.next();
    const int bits = (to.byte - from.byte) * 8 + to.bit - from.bit;
    if (cell.holds_sized_text()) return "text of any length";
    const bool is_digits = cell.is_corrected() && cell.coding().text == TextLayout::decimals;
    const std::string what = cell.holds_bytes()  ? "bytes as 01 02 FF"
                             : is_digits         ? "two digits each"
                             : cell.holds_text() ? "text"
                                                 : "";
    if (cell.is_corrected() && cell.coding().own_bits == 0)
        return what.empty() ? "as other fields say" : what;
    if (bits == 0) return served_units(cell).empty() ? "as the field before it says" : "8 bytes at the end";
    const bool whole = bits % 8 == 0;
    const int count = whole ? bits / 8 : bits;
    return std::to_string(count) + (whole ? " byte" : " bit") + (count == 1 ? "" : "s") +
           (what.empty() ? "" : " of " + what);
}

std::string values_text(FieldCell& cell) {
    const FieldReading reading = cell.read();
    const bool is_date = reading.quantity == quantity::date;
    cell.put(is_date ? example_day : 0);
    if (is_date || reading.quantity == quantity::time_of_day || cell.read().value.type == ValueType::seconds)
        return "as in " + std::string(trimmed(cell.shown(true)));
    const std::vector<UnitId> units = served_units(cell);
    if (units.empty()) return "";
    const UnitId first = std::ranges::find(units, reading.unit) != units.end() ? reading.unit : units[0];
    const RawScale scale = scale_of(cell, first);
    std::string text = scale.empty() ? "" : range_text(scale, first);
    std::vector<std::string> others;
    for (const UnitId u : units)
        if (u != first && !unit_text(u).empty()) others.push_back(unit_text(u));
    return others.empty() ? text : text + "; also " + joined(others);
}

void list_field(std::string& out, FieldCell& cell, bool all_choices) {
    constexpr std::size_t few = 20;
    out += "  " + cell.label() + ": " + size_text(cell);
    const std::vector<CodedChoice> choices = choices_of(cell);
    const DDstrings* const set = cell.texts();
    const bool measured = cell.read().quantity < quantity::no_quantity;
    const bool any_number =
        !cell.holds_text() && (choices.empty() || (cell.is_corrected() && cell.coding().is_number) ||
                               (measured && (set->kind == ENUM_NUMBER || set->kind == ENUM_NUMBER_TOO)));
    const std::string values = any_number ? values_text(cell) : "";
    if (!values.empty()) out += ", " + values;
    if (!choices.empty())
        out += holds_flags(cell) ? ", any of, with commas between them:"
               : values.empty()  ? ", one of:"
                                 : ", or one of:";
    out += '\n';
    const std::size_t shown = all_choices ? choices.size() : std::min(choices.size(), few);
    for (std::size_t i = 0; i < shown; ++i)
        out += "      " + std::to_string(choices[i].value) + "  " + choices[i].text + '\n';
    if (shown < choices.size())
        out += "      ... and " + std::to_string(choices.size() - shown) + " more, with --all-choices\n";
}

std::string head_of(std::uint32_t number, const PgnDef& row) {
    return std::to_string(number) + ", " + name_of(row) + ", pri=" + std::to_string(row.priority) + '\n';
}

/// The fields of a definition, of a repeating group those of the first round.
std::string fields_text(const EncodeOptions& options, ReadingContext& context, const PgnDef& row,
                        const std::vector<std::uint8_t>& variant) {
    std::string fields;
    bool repeats = false;
    visit_fields(context, row, variant, [&](FieldCell& cell) {
        if (cell.repeat() > 0 && !repeats) fields += " as often as needed:\n";
        if (cell.repeat() == 0 && repeats) fields += " and then:\n";
        repeats = cell.repeat() > 0;
        if (context.definitions == Definitions::corrected && is_fixed(row, cell))
            fields += "  " + cell.label() + ": always " + std::string(trimmed(cell.shown(true))) + '\n';
        else
            list_field(fields, cell, options.all_choices);
    });
    return fields;
}

/// The fields of a variant, or the names of the variants. What has the same name is told apart by its fields.
int list_corrected(const EncodeOptions& options, ReadingContext& context, const Chosen& chosen) {
    std::string out;
    const std::string name = name_of(*chosen.definitions[0]);
    const bool has_one_name = std::ranges::all_of(
        chosen.definitions, [&name](const PgnDef* definition) { return pgn_name(definition) == name; });
    for (const PgnDef* const definition : chosen.definitions) {
        out += head_of(chosen.number, *definition);
        if (chosen.definitions.size() > 1 && !variant_of(*definition).empty())
            out.insert(out.size() - 1, ", variant " + std::string(variant_of(*definition)));
        if (has_one_name) out += fields_text(options, context, *definition, {});
    }
    return print_out(out);
}

int list_fields(const EncodeOptions& options, ReadingContext& context, const PgnDef& row) {
    std::string out = head_of(row.pgn, row);
    // Variants that decoding shows alike are listed once.
    struct Listed {
        std::string beginnings, fields;
    };
    std::vector<Listed> lists;
    for (const auto& variant : variants_of(row)) {
        std::string beginning = variant.empty() ? " anything" : "";
        for (const std::uint8_t byte : variant) {
            beginning += ' ';
            append_hex(beginning, byte, 2);
        }
        const std::string fields = fields_text(options, context, row, variant);
        const auto same = std::ranges::find(lists, fields, &Listed::fields);
        if (same != lists.end())
            same->beginnings += " or" + beginning;
        else
            lists.push_back({beginning, fields});
    }
    for (const Listed& list : lists) {
        if (lists.size() > 1) out += " where the payload begins with" + list.beginnings + ":\n";
        out += list.fields;
    }
    return print_out(out);
}

// ---- the message ----

Result<std::vector<TypedField>> parse_fields(const EncodeOptions& options) {
    std::vector<TypedField> fields;
    for (const std::string& argument : options.fields) {
        if (!utf16_of(argument)) return failure(quoted(argument), " is not UTF-8 text");
        const std::size_t sign = argument.find('=');
        if (sign == argument.npos) return failure(in_quotes(argument), " is not of the form LABEL=VALUE");
        if (trimmed(argument.substr(0, sign)).empty())
            return failure(in_quotes(argument), " has no label before the '='");
        fields.push_back({argument.substr(0, sign), argument.substr(sign + 1)});
    }
    return fields;
}

/// Looks whether the message can be sent as its header says. Returns its time.
Result<RecordTime> check_header(const EncodeOptions& options, std::uint32_t pgn) {
    if (!is_addressed(pgn) && options.destination != everyone)
        return failure("PGN ", pgn, " goes to everyone; it has no destination");
    if (options.time.empty()) return RecordTime{};
    auto time = TimestampParser().parse(options.time);
    if (!time) return failure("time ", quoted(options.time), ": ", time.error());
    if (time->origin == RecordTime::Origin::none)
        return failure("time ", quoted(options.time), ": the years 1970 to 2261 can be sent");
    return *time;
}

/// The message in a format. A single frame stands for itself where the format has frames.
Result<std::string> written(const EncodeOptions& options, const N2KMsg& msg, const RecordTime& time) {
    const auto writer = make_writer(options.format);
    const Carriage carriage = carriage_of(msg, options.definitions);
    using Kind = Record::Kind;
    const bool is_frame = carriage == Carriage::single && writer->takes(Kind::frame);
    Record record{is_frame ? Kind::frame : Kind::message, 0, msg, time};
    std::string lines;
    if (writer->takes(record.kind)) {
        // Longer than a frame, it is not taken for one.
        if (!is_frame && msg.length <= max_frame_bytes) writer->begin(record.kind, lines);
        if (const char* const why = writer->put(record, lines)) return failure("PGN ", msg.pgn, ": ", why);
        return lines;
    }
    if (carriage == Carriage::transport && msg.destination != everyone)
        return failure("a message of ", msg.length, " bytes to one device takes a dialogue that ",
                       options.format, " lines alone cannot show; the plain format can");
    const auto put = [&](std::uint32_t identifier, FrameBytes bytes) {
        set_frame(record, identifier, bytes);
        (void)writer->put(record, lines);
    };
    cut(msg, static_cast<unsigned>(options.sequence), options.definitions, put);
    return lines;
}

}  // namespace

int run_encode(const EncodeOptions& options) {
    ReadingContext context{options.definitions, {}, {}};
    const bool is_corrected = options.definitions == Definitions::corrected;
    if (const Status selected = select_units(context.units, options.units); !selected)
        return fail(selected.error());
    if (!is_corrected && !options.variant.empty())
        return fail({"--variant names one of the corrected definitions"});
    Result<Chosen> pgn = choose_pgn(options);
    if (!pgn) return fail(pgn.error());
    if (options.list) {
        if (!options.fields.empty()) return fail({"--list takes no fields"});
        if (is_corrected && !pgn->definitions.empty()) return list_corrected(options, context, *pgn);
        if (pgn->row == nullptr) return fail(failure("PGN ", options.pgn, " is not in the catalogue"));
        return list_fields(options, context, *pgn->row);
    }
    Result<std::vector<TypedField>> fields = parse_fields(options);
    if (!fields) return fail(fields.error());
    Result<RecordTime> time = check_header(options, pgn->number);
    if (!time) return fail(time.error());

    BuiltMessage msg = is_corrected ? build_by_any(context, pgn->number, pgn->definitions, *fields)
                                    : build_message(context, pgn->number, pgn->row, *fields);
    if (!msg) return fail(msg.error());
    constexpr int usual_priority = 6;
    const PgnDef* const row = find_definition(options.definitions, *msg);
    const int priority = row != nullptr ? static_cast<int>(row->priority) : usual_priority;
    msg->priority = static_cast<std::uint8_t>(options.priority >= 0 ? options.priority : priority);
    msg->source = static_cast<std::uint8_t>(options.source);
    msg->destination = static_cast<std::uint8_t>(options.destination);
    Result<std::string> lines = written(options, *msg, *time);
    return lines ? print_out(*lines) : fail(lines.error());
}

}  // namespace vistel
