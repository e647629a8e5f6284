#include "commands/encode.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>

#include "can/identifier.h"
#include "commands/decode.h"
#include "encode/choices.h"
#include "encode/message_builder.h"
#include "encode/message_lines.h"
#include "encode/number_entry.h"
#include "encode/suggestions.h"
#include "output/unit_names.h"
#include "readers/timestamp.h"
#include "text/characters.h"
#include "text/hex.h"
#include "text/quotes.h"
#include "text/utf8.h"
#include "text/words.h"

using namespace pgn_vistel;

namespace vistel {

namespace {

int fail(const std::string& text) {
    std::fprintf(stderr, "vistel: %s\n", text.c_str());
    return EXIT_FAILED;
}

int print(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0)
        return EXIT_CLEAN;
    return errno == EPIPE ? EXIT_CLEAN : fail(std::string("cannot write: ") + std::strerror(errno));
}

std::string name_of(const PgnDef& row) {
    return utf8_of(pgn_def_name(&row));
}

/// A PGN by number or name; without a row where the catalogue does not have it.
struct Chosen {
    std::uint32_t number = 0;
    const PgnDef* row = nullptr;
};

Result<Chosen> choose_pgn(const std::string& text) {
    std::uint32_t number = 0;
    const char* const last = text.data() + text.size();
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const auto [end, error] =
        std::from_chars(text.data() + (hexadecimal ? 2 : 0), last, number, hexadecimal ? 16 : 10);
    if (end == last && error == std::errc{} && number <= max_pgn) return Chosen{number, find_pgn_def(number)};
    if (!text.empty() && std::ranges::all_of(text, is_digit))
        return failure("PGN ", in_quotes(text), " is above ", max_pgn);
    std::vector<std::string> names;
    for (const PgnDef& row : all_pgns()) {
        const std::string name = name_of(row);
        if (simplified(name) == simplified(text)) return Chosen{row.pgn, find_pgn_def(row.pgn)};
        if (std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    return failure("no PGN ", in_quotes(text), "; ",
                   suggestion(text, names, "'vistel catalogue pgns' shows numbers and names"));
}

// ---- the list of fields ----

std::string size_text(const FieldCell& cell) {
    const PayloadPosition from = cell.start(), to = cell.next();
    const int bits = (to.byte - from.byte) * 8 + to.bit - from.bit;
    if (cell.dd().format->df == short_text || cell.dd().format->df == medium_text)
        return "text of any length";
    const std::string what = cell.dd().format->df == hex_dump ? "bytes as 01 02 FF"
                             : cell.holds_text()              ? "text"
                                                              : "";
    if (bits == 0) return served_units(cell).empty() ? "as the field before it says" : "8 bytes at the end";
    const bool whole = bits % 8 == 0;
    const int count = whole ? bits / 8 : bits;
    return std::to_string(count) + (whole ? " byte" : " bit") + (count == 1 ? "" : "s") +
           (what.empty() ? "" : " of " + what);
}

std::string values_text(FieldCell& cell) {
    constexpr std::uint64_t some_day = 20706;
    ConvValue value;
    const FieldReading reading = cell.read(value);
    const bool is_date = reading.quantity == quantity::date;
    cell.put(is_date ? some_day : 0);
    cell.read(value);
    if (is_date || reading.quantity == quantity::time_of_day || value.type == CV_TIME_OF_DAY)
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
    const DDstrings* const set = find_enumeration(cell.dd().dd);
    ConvValue value;
    const bool measured = cell.read(value).quantity < quantity::no_quantity;
    const bool any_number =
        !cell.holds_text() &&
        (choices.empty() || (measured && (set->kind == ENUM_NUMBER || set->kind == ENUM_NUMBER_TOO)));
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

int list_fields(const EncodeOptions& options, const PgnDef& row) {
    std::string out =
        std::to_string(row.pgn) + ", " + name_of(row) + ", pri=" + std::to_string(row.priority) + '\n';
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
        std::string fields;
        bool repeats = false;
        visit_fields(qv_n2k_pgn_db, row, variant, [&](FieldCell& cell) {
            if (cell.repeat() > 0 && !repeats) fields += " as often as needed:\n";
            repeats = cell.repeat() > 0;
            list_field(fields, cell, options.all_choices);
        });
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
    return print(out);
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

/// Checks the header and gives its time.
Result<RecordTime> check_header(const EncodeOptions& options, std::uint32_t pgn) {
    if (!is_addressed(pgn) && options.destination != 255)
        return failure("PGN ", pgn, " goes to everyone; it has no destination");
    if (is_addressed(pgn) && (pgn & 0xFF) != 0 && options.format == "candump")
        return failure("PGN ", pgn, " is on no bus: the low byte of one with a destination is 0");
    if (options.time.empty()) return RecordTime{};
    TimestampParser parser;
    auto parsed = parser.parse(options.time);
    if (!parsed) return failure("time ", quoted(options.time), ": ", parsed.reason());
    return *parsed;
}

/// The time stamp as candump writes it: seconds since 1970 where the day is known.
std::string candump_time(const std::string& typed, const RecordTime& time) {
    if (time.origin != RecordTime::Origin::epoch) return typed;
    constexpr std::int64_t second = 1'000'000'000;
    char text[40];
    std::snprintf(text, sizeof text, "%lld.%09lld", static_cast<long long>(time.nanoseconds / second),
                  static_cast<long long>(time.nanoseconds % second));
    std::string result = text;
    if (result.ends_with("000")) result.resize(result.size() - 3);  // candump has microseconds
    return result;
}

}  // namespace

std::vector<std::string> encode_formats() {
    return {"plain", "candump"};
}

int run_encode(const EncodeOptions& options) {
    if (const Result<> selected = select_units(qv_n2k_pgn_db, options.units); !selected)
        return fail(selected.reason());
    if (!utf16_of(options.pgn)) return fail(quoted(options.pgn) + " is not UTF-8 text");
    Result<Chosen> pgn = choose_pgn(options.pgn);
    if (!pgn) return fail(pgn.reason());
    if (options.list) {
        if (!options.fields.empty()) return fail("--list takes no fields");
        if (pgn->row == nullptr) return fail("PGN " + options.pgn + " is not in the catalogue");
        return list_fields(options, *pgn->row);
    }
    Result<std::vector<TypedField>> fields = parse_fields(options);
    if (!fields) return fail(fields.reason());
    Result<RecordTime> time = check_header(options, pgn->number);
    if (!time) return fail(time.reason());

    BuiltMessage built = build_message(qv_n2k_pgn_db, pgn->number, pgn->row, *fields);
    constexpr std::size_t most_errors = 20;
    for (std::size_t i = 0; i < std::min(built.errors.size(), most_errors); ++i) fail(built.errors[i]);
    if (built.errors.size() > most_errors)
        fail("and " + std::to_string(built.errors.size() - most_errors) + " more like these");
    if (!built.errors.empty()) return EXIT_FAILED;
    N2KMsg& msg = built.msg;
    constexpr int usual_priority = 6;
    const int priority = pgn->row != nullptr ? static_cast<int>(pgn->row->priority) : usual_priority;
    msg.priority = static_cast<std::uint8_t>(options.priority >= 0 ? options.priority : priority);
    msg.source = static_cast<std::uint8_t>(options.source);
    msg.destination = static_cast<std::uint8_t>(options.destination);
    if (options.format != "candump") return print(plain_lines(msg, options.time));
    Result<std::string> lines =
        candump_lines(msg, candump_time(options.time, *time), static_cast<unsigned>(options.sequence));
    return lines ? print(*lines) : fail(lines.reason());
}

}  // namespace vistel
