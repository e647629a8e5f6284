#pragma once

#include <cstdint>
#include <string_view>

#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/core/units.h"

namespace pgn_vistel::core {

// What reading and printing need beside the rows of the catalogue: computed by the generator, constant,
// without a pointer. Texts are named by their offset in one pool; those who copy them may read `pool_slack`
// bytes too far.

/// How the raw bits of a format become a value.
enum class Reading : std::uint8_t {
    scaled,   ///< number, reserved codes, resolution, unit rule
    integer,  ///< identifiers and counters
    // numbers with a rule of their own
    undefined,
    never_available,
    float_angle,
    float_plain,
    double_distance,
    double_plain,  ///< of no dictionary entry: none here
    latitude_32,
    longitude_32,
    latitude_64,
    longitude_64,
    percent_absolute,
    peukert,
    salinity,
    format_number,
    device_address,
    ac_power,
    power_factor,
    offset_angle,
    date,
    run_time,
    period_minutes,
    // bits and codes
    bit_field,
    ais_spare,
    two_bit_state,
    low_4_bits,
    low_2_bits,
    low_6_bits,
    package_type,
    can_frame_id,
    can_frame_data,
    // values that name their own format: in the field, or in the two bytes before it
    self_described,
    self_described_before,
    // texts
    text_short,
    text_medium,
    text_fixed,
    hex_dump,
    // numbers of the corrected definitions, with codes of their own that are none; scaled exactly
    whole,
    measured,
    measured_float,
    time_of_day,  ///< of the corrected definitions, with the parts of a second
    // texts of the corrected definitions: nothing but what the field itself has
    text_sent,     ///< length and encoding in front: `width` bytes
    text_counted,  ///< length in front, a zero behind
    text_padded,   ///< of a fixed size, padded
    bytes,         ///< shown in hexadecimal, all of them
    decimal,       ///< two digits a byte
};

constexpr bool is_text(Reading reading) {
    return reading >= Reading::text_sent || (reading >= Reading::text_short && reading <= Reading::hex_dump);
}

/// Rows of the factors, and the rules that have code of their own.
enum class UnitRule : std::uint8_t {
#include "unit_rule_names.inc"
    count
};

struct FormatPlan {
    DF df;
    Reading reading;
    std::uint8_t width;      ///< bits of the number, 0 where the reading knows
    std::uint8_t is_signed;  ///< 0 or 1
    UnitRule rule;
    float scale;                  ///< to the rule's base unit; single precision
    std::int64_t first_reserved;  ///< the lowest of the highest codes that are no values; of widths below 64
    std::uint8_t described;       ///< 1 where a value may name the format itself
    std::uint16_t measure;        ///< index of what `whole` and `measured` go by
};

/// Whether a format is one of the corrected definitions, which have no numbers.
inline bool is_of_corrected(const FormatPlan& format) {
    return format.df == 0xFFFF;
}

/// (number + offset) * times / over: a decimal resolution as two whole numbers, so that one rounding is all.
struct Measure {
    double times, over;
    double step;  ///< the quotient: good enough for results in single precision
    std::int64_t offset;
    std::int64_t none[2];              ///< codes that are no values, or INT64_MIN
    std::uint16_t multiple, decimals;  ///< the step is multiple / 10^decimals; 0 where it is no such number
};

/// How a value is shown, as far as the dictionary entry and the place of the field decide.
enum class Form : std::uint8_t {
    plain,     ///< by quantity and type
    pgn_name,  ///< the name of the PGN that the value is
    database_version,
    enumeration,  ///< a text of the entry's set, else plain
    flags,        ///< the texts of the bits that are set
    pgn_title,    ///< the same by the corrected definitions
    mmsi,         ///< nine digits
    coded,        ///< a number some of whose codes have a text
};

// Quantities that only the payload tells.
constexpr std::uint8_t air_pressure_if_source_0 = quantity::no_quantity + 1,
                       quantity_of_format_inside = quantity::no_quantity + 2,
                       quantity_of_format_before = quantity::no_quantity + 3;

constexpr std::uint16_t end_row = 0xFFFF;
constexpr std::uint16_t no_set = 0xFFFF;

enum FieldFlag : std::uint16_t {
    in_group = 1,
    first_of_group = 2,
    last_of_group = 4,
    numbered = 8,      ///< the label is followed by the number of the round
    quoted = 16,       ///< a numbered label that CSV quotes
    text = 32,         ///< shows what is there where the message cuts it off
    whole_bytes = 64,  ///< sized in bytes, or without a size
    quick = 128,       ///< a whole number, as wide as its format says, whose quantity is known
    plainly = 256,     ///< shown as the text of an enumeration or by its type
    linked = 512,      ///< depends on other fields: see `FieldExtra`
    apart = 1024,      ///< a text, a date, a time or a count of seconds, to which JSON and CSV have a form of
                       ///< their own
    all_bits_none = 2048,  ///< has no value for programs where all of its bits are set
};

/// Where a field stands that another depends on.
struct Link {
    std::int16_t offset;       ///< in bits
    std::uint8_t bits;         ///< 0: there is none
    std::uint8_t is_absolute;  ///< 1: from the start of the payload, 0: from the field that depends on it
};

enum class Direction : std::uint8_t { none, true_north, magnetic, relative, by_reference };

/// What a field of the corrected definitions depends on.
struct FieldExtra {
    Link count{};                    ///< of the first field of a group: how often the group comes
    Link high{};                     ///< the enumeration is asked for 256 times this field and the own value
    Link reference{};                ///< whether the direction is true or magnetic
    Link size{};                     ///< size of the field
    Link key{};                      ///< which row of the set's rows the field is read by
    Link index{}, about{}, maker{};  ///< the field of another message: number, PGN and manufacturer
    std::uint16_t behind = 0;        ///< row behind the group
    std::uint16_t key_set = 0, key_rows = 0;
    Direction direction = Direction::none;
    std::uint8_t relative_first = 1, relative_last = 0;  ///< references of a plain angle
    std::uint8_t size_unit = 0;                          ///< bits that the size counts in
    std::uint8_t less = 0;                               ///< bytes that the size counts beside the field
};

struct FieldPlan {
    std::uint32_t texts;  ///< in the pool: label of a line, of JSON, of CSV, behind each other
    std::uint8_t line_size, json_size, csv_size;
    std::uint8_t misplaced;  ///< bits of a position that a quick field does not start at: 7 of whole bytes
    std::uint16_t next;      ///< row of the next field number
    std::uint16_t again;     ///< of the last field of a repeating group: row of the first
    std::uint16_t bits;      ///< size, be it the format's; 0 where only the value tells
    std::uint16_t number;
    std::uint16_t format;       ///< index of the plan
    std::uint16_t enumeration;  ///< index of the set, or `no_set`
    std::uint16_t extra;        ///< index of the `FieldExtra`, 0 for none
    std::uint8_t quantity;      ///< or how the payload tells it
    Form form;
    std::uint8_t verdicts[2];  ///< in a proprietary message of others, and of our own: see `Verdict`
    std::uint16_t flags;
};

/// What becomes of a row in the walk of a proprietary message.
enum Verdict : std::uint8_t { shown, passed_over, walk_ends };

/// `covering`: of the corrected definitions, whose fields and the bytes behind them show all of a payload.
enum class PgnWalk : std::uint8_t { plain, group_function, proprietary, covering };

struct PgnPlan {
    std::uint32_t texts;  ///< in the pool: line, its end, JSON, CSV
    std::uint8_t line_size, json_size, csv_size;
    std::uint16_t first_row;
    PgnWalk walk;
    std::uint16_t rows;  ///< fields of a corrected definition

    static constexpr int name_at = 13;  ///< in the line: behind blanks, number and comma
};

/// Forms of a unit: " kt" with a line end behind it, `,"unit":"kt","text":`, and `,kt,`.
struct UnitTexts {
    std::uint32_t line, json, csv;
    std::uint8_t line_size, json_size, csv_size;
};

/// Forms of an enumeration text.
struct EntryTexts {
    std::uint32_t plain, json, csv;
    std::uint8_t plain_size, json_size, csv_size;
};

/// How the entry of a value is found: by index up to `index_size`, by search beyond.
struct SetPlan {
    std::uint16_t first_entry;
    std::uint16_t index;
    std::uint16_t index_size;
};
constexpr std::uint16_t no_entry = 0xFFFF;

constexpr std::size_t pool_slack = 64;

extern const char text_pool[];
extern const FormatPlan format_plans[];
extern const Measure measures[];
extern const FieldPlan field_plans[];
extern const FieldExtra field_extras[];
extern const PgnPlan pgn_plans[];
extern const UnitTexts unit_texts[];
extern const EntryTexts entry_texts[];
extern const SetPlan set_plans[];
extern const std::uint16_t entry_index[];
extern const DDstrings enum_sets[];
extern const float unit_factors[static_cast<std::size_t>(UnitRule::count)][unit::count];

/// The plan of a format, or null.
const FormatPlan* find_format_plan(DF df);

/// The row of a PGN by index rather than by search: what `find_pgn_def` returns, or `end_row`.
std::uint16_t find_pgn_row(std::uint32_t pgn);
const PgnPlan& plan_of(const PgnDef& row);

/// The first of a PGN's corrected definitions that some bits of the message's first 64 do not exclude; of a
/// proprietary PGN the header alone while the manufacturer is not among them. Null where there is none.
const PgnPlan* find_plan_about(std::uint32_t pgn, std::uint64_t known_mask, std::uint64_t known);
bool is_proprietary(std::uint32_t pgn);

/// A row that has the name of a PGN by the corrected definitions, whatever the variant; null where it has
/// none.
const PgnDef* find_title(std::uint32_t pgn);
const FieldPlan& plan_of(const FieldDef& row);
std::uint16_t first_row_keyed(std::uint32_t pgn, std::uint16_t selector);
const FieldDef& field_row(std::uint16_t row);
const PgnDef& pgn_row(std::uint16_t row);

/// The set of a dictionary entry as an index, or `no_set`.
std::uint16_t find_set(std::uint32_t dd);

/// Entry that a set has for a value beyond its index, or `no_entry`.
std::uint16_t search_entry(std::uint16_t index, std::uint32_t value);

/// Entry that a set has for a value, or `no_entry`. Not for flags.
inline std::uint16_t find_entry(std::uint16_t set, std::uint32_t value) {
    const SetPlan& plan = set_plans[set];
    return value < plan.index_size ? entry_index[plan.index + value] : search_entry(set, value);
}

/// What an enumeration says of a value without an entry, terminated; null where the number itself is to be
/// shown.
inline std::string_view word_of(const DDstrings& set) {
    switch (set.kind) {
        case ENUM_RESERVED:
        case ENUM_RESERVED_TOO: return "Reserved";
        case ENUM_UNKNOWN:
        case ENUM_UNKNOWN_TOO: return "Unknown";
        default: return {};
    }
}

inline const EntryTexts& texts_of_entry(std::uint16_t set, std::uint16_t entry) {
    return entry_texts[set_plans[set].first_entry + entry];
}

/// What goes for a field beside its dictionary entry, where it has no plan.
struct SpecialField {
    std::uint32_t pgn;    ///< 0: any
    std::uint32_t field;  ///< 0: any
    std::uint32_t dd;
    const char* label;  ///< or null
    Form form;
    std::uint8_t quantity;  ///< 0: the entry's
};
const SpecialField* find_special_field(std::uint32_t dd, std::uint32_t pgn, std::uint32_t field);

/// The quantity of a pressure in a PGN: 0 where the PGN says nothing of it.
std::uint8_t pressure_quantity(std::uint32_t pgn);

}  // namespace pgn_vistel::core
