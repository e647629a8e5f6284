#include "contract/parsers/numeric.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <optional>
#include <span>
#include <variant>

#include "contract/parsers/inverse.h"
#include "contract/parsers/raw_kind.h"
#include "contract/parsers/scan.h"
#include "contract/parsers/unit_factors.h"
#include "contract/store.h"

namespace pgn_vistel {

namespace {

/// One operation on the typed number. All run in double precision; the result is rounded once.
struct Step {
    enum Operation : std::uint8_t { none, multiply, divide, subtract } operation = none;
    double by = 0;
};

using Steps = std::array<Step, 3>;

consteval Step times(double by) {
    return {Step::multiply, by};
}
consteval Step over(double by) {
    return {Step::divide, by};
}
consteval Step minus(double by) {
    return {Step::subtract, by};
}
consteval Steps steps(auto... chain) {
    return {chain...};
}

struct UnitCase {
    UnitId unit;
    Steps steps;
};

constexpr UnitCase unit_cases[] = {
#include "parser_units.inc"
};

// What a typed number is in its unit.

/// The text is not looked at.
struct NeverRead {};

/// Every unit: the number itself. Where the conversion has a scale, the user types the raw count all the
/// same.
struct AnyUnit {};

/// The units listed, each with steps of its own. A raw count stands beside one of them, and is read as that.
struct Listed {
    int first;
    int count;
};

/// A number in the base unit.
struct Mapped {
    UnitMap* map;
};

/// The number (with the format's steps before) divided by what `amount` of the base unit is in the unit
/// typed.
struct Divided {
    UnitFactor* factor;
    float amount;
    UnitId raw_count_as;
};

/// The way back that the format's own conversion shows when it is probed.
struct Probed {};

/// A whole number, in any unit, of which the field takes the low bits.
struct Whole {
    int base;
};

/// Numbers that are stored, both ends included; others are out of range.
struct Bounds {
    float low;
    float high;
};

struct NumericFormat {
    DF df;
    const RawKind* kind;
    std::variant<NeverRead, AnyUnit, Listed, Mapped, Divided, Probed, Whole> rule;
    Steps steps;
    const RawKind* limits;  ///< the kind whose limits count: nearly always its own
    std::optional<Bounds> bounds;
    std::uint32_t offset;
};

constexpr NumericFormat formats[] = {
#include "parser_table.inc"
};

const NumericFormat& format_of(DF df) {
    return *std::ranges::lower_bound(formats, df, {}, &NumericFormat::df);
}

double apply(const Steps& steps, double number) {
    for (const Step& step : steps) switch (step.operation) {
            case Step::none: return number;
            case Step::multiply: number *= step.by; break;
            case Step::divide: number /= step.by; break;
            case Step::subtract: number -= step.by; break;
        }
    return number;
}

/// A number in the base unit becomes the raw one.
std::int64_t raw_of(const NumericFormat& format, double number) {
    if (format.bounds) {
        const auto typed = static_cast<float>(number);
        if (!(typed >= format.bounds->low && typed <= format.bounds->high))
            return static_cast<std::int64_t>(format.kind->unparsed - 1);
        return truncate_64(apply(format.steps, typed)) + format.offset;
    }
    return format.limits->to_raw(apply(format.steps, number));
}

/// The raw number of a text; nothing where the text or its unit cannot be read.
struct RawOf {
    const NumericFormat& format;
    const char* text;
    UnitId unit;

    using Result = std::optional<std::int64_t>;

    std::optional<float> number() const {
        float number = format.kind->unscanned;
        // Only a text that starts with something else stops here. An empty one goes on with 0, so it enters
        // zero (in the unit chosen) rather than "not available"; floating formats have a NaN for it.
        if (scan_real(text, number) == Scanned::nothing) return std::nullopt;
        return number;
    }

    Result operator()(const NeverRead&) const { return std::nullopt; }

    Result operator()(const AnyUnit&) const {
        const auto typed = number();
        return typed ? Result(raw_of(format, *typed)) : std::nullopt;
    }

    Result operator()(const Listed& listed) const {
        const auto typed = number();
        const std::span cases(unit_cases + listed.first, static_cast<std::size_t>(listed.count));
        const auto found = std::ranges::find(cases, unit, &UnitCase::unit);
        return typed && found != cases.end() ? Result(raw_of(format, apply(found->steps, *typed)))
                                             : std::nullopt;
    }

    Result operator()(const Mapped& mapped) const {
        const auto typed = number();
        const auto base = typed ? mapped.map(*typed, unit) : std::nullopt;
        return base ? Result(raw_of(format, *base)) : std::nullopt;
    }

    Result operator()(const Divided& divided) const {
        const auto typed = number();
        if (!typed) return std::nullopt;
        // The factor of a unit that is not served is NaN, and a NaN ends as the raw number 0: such a field
        // reads as zero, not as "not available".
        const float factor =
            divided.factor(divided.amount, unit == unit::raw_count ? divided.raw_count_as : unit);
        return format.limits->to_raw(apply(format.steps, *typed) / double{factor});
    }

    Result operator()(const Probed&) const {
        const auto typed = number();
        std::uint32_t raw = 0;
        if (!typed || value_to_raw(&raw, *typed, unit, sizeof raw, find_conversion(format.df), 0) < 0)
            return std::nullopt;
        return format.kind->type == CV_I32 ? std::int64_t{static_cast<std::int32_t>(raw)} : std::int64_t{raw};
    }

    Result operator()(const Whole& whole) const {
        const auto scanned = [&](auto number) -> Result {
            if (scan_whole(text, number, whole.base) == Scanned::nothing) return std::nullopt;
            return static_cast<std::int64_t>(number & format.kind->unparsed);  // all ones: the field's width
        };
        return format.kind->bytes == 8 ? scanned(std::uint64_t{0}) : scanned(std::uint32_t{0});
    }
};

}  // namespace

ConvValue* parse_numeric(DF df, ConvValue* out, const char* text, UnitId unit) {
    if (out == nullptr) return out;
    const NumericFormat& format = format_of(df);
    const auto raw = std::visit(RawOf{format, text, unit}, format.rule);
    store_integer(out, format.kind->type, raw ? static_cast<std::uint64_t>(*raw) : format.kind->unparsed);
    return out;
}

int parsed_bytes(DF df) {
    return format_of(df).kind->bytes;
}

}  // namespace pgn_vistel
