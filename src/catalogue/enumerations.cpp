#include <algorithm>
#include <array>
#include <iterator>

#include "pgn_vistel/catalogue.h"
#include "values/text_copy.h"
#include "values/wide_format.h"

namespace pgn_vistel {

namespace {

constexpr ValueText enum_pairs[] = {
#include "enum_pairs.inc"
};

constexpr DDstrings enum_sets[] = {
#include "enum_sets.inc"
};
static_assert(std::ranges::is_sorted(enum_sets, {}, &DDstrings::dd));

/// Set by dictionary number for one dense range of numbers: every decoded field asks.
template <std::size_t first, std::size_t size>
class SetIndex {
  public:
    consteval SetIndex() {
        sets_.fill(none);
        for (std::size_t i = 0; i < std::size(enum_sets); ++i)
            if (enum_sets[i].dd - first < size) sets_[enum_sets[i].dd - first] = static_cast<std::uint8_t>(i);
    }
    constexpr const DDstrings* find(std::uint32_t dd) const {
        return dd - first < size && sets_[dd - first] != none ? &enum_sets[sets_[dd - first]] : nullptr;
    }

  private:
    static constexpr std::uint8_t none = 255;
    static_assert(std::size(enum_sets) < none);
    std::array<std::uint8_t, size> sets_{};
};

constexpr SetIndex<0, 512> standard_sets;
constexpr SetIndex<10000, 100> maker_sets;
static_assert(std::ranges::all_of(enum_sets, [](const DDstrings& set) {
    return standard_sets.find(set.dd) == &set || maker_sets.find(set.dd) == &set;
}));

// ---- the formats that a generic sensor may name ----

constexpr std::uint32_t data_format_dd = 10058;

struct NamedFormat {
    DF df;
    const wchar_t* quantity;
};

constexpr NamedFormat named_formats[] = {
    {60005, L"4-20 mA"},
    {60006, L"0-10 V"},
    {106, L"DC Voltage"},
    {114, L"DC Current"},
    {32, L"Resistance"},
    {79, L"Distance"},
    {36, L"Velocity"},
    {1, L"Acceleration"},
    {4, L"Angle"},
    {73, L"Angular Velocity"},
    {5, L"Angular Acceleration"},
    {34, L"Rotational Rate"},
    {105, L"Temperature"},
    {103, L"Pressure"},
    {84, L"Humidity"},
    {60002, L"Flow Rate"},
    {60004, L"Strain"},
    {31, L"dB"},
    {20, L"Force"},
    {104, L"Mass"},
};

constexpr std::size_t named_format_count = std::size(named_formats);

DDstrings format_enumeration = {data_format_dd, ENUM_UNKNOWN, nullptr, 0};

}  // namespace

void build_format_enumeration() {
    static char texts[named_format_count][32];
    static ValueText pairs[named_format_count + 1];
    for (std::size_t i = 0; i < named_format_count; ++i) {
        wchar_t text[std::size(texts[0])];
        WideWriter out(text, std::size(text));
        static constexpr CompiledFormat format(L"DF%d (%ls)");
        format(out, named_formats[i].df, named_formats[i].quantity);
        out.finish();
        copy_w2n(texts[i], text, std::size(texts[i]));
        pairs[i] = {named_formats[i].df, texts[i]};
    }
    pairs[named_format_count] = {0xFFFFFFFF, nullptr};
    format_enumeration.pairs = pairs;
}

const DDstrings* find_enumeration(std::uint32_t dd) {
    if (dd == data_format_dd) return &format_enumeration;
    const DDstrings* const standard = standard_sets.find(dd);
    return standard != nullptr ? standard : maker_sets.find(dd);
}

std::span<const DDstrings> all_enumerations() {
    return enum_sets;
}

}  // namespace pgn_vistel
