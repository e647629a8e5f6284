#include "output/unit_spellings.h"

#include <algorithm>
#include <string>
#include <utility>

#include "text/words.h"

namespace vistel {

namespace {

struct Spelling {
    std::string_view text, unit;  ///< both in lower case, without blanks
};

constexpr Spelling spellings[] = {
    {"meter", "m"},
    {"metre", "m"},
    {"foot", "ft"},
    {"feet", "ft"},
    {"fathom", "ftm"},
    {"nmi", "nm"},
    {"nauticalmile", "nm"},
    {"mi", "stm"},
    {"mile", "stm"},
    {"kilometer", "km"},
    {"kilometre", "km"},
    {"mps", "m/s"},
    {"kn", "kt"},
    {"knot", "kt"},
    {"km/h", "kph"},
    {"kmh", "kph"},
    {"beaufort", "bft"},
    {"gallon", "gal"},
    {"imperialgallon", "impgal"},
    {"liter", "l"},
    {"litre", "l"},
    {"volt", "v"},
    {"millivolt", "mv"},
    {"amp", "a"},
    {"ampere", "a"},
    {"watt", "w"},
    {"ohm", "\u03A9"},
    {"kohm", "k\u03A9"},
    {"\u00B0", "\u00B0lat"},
    {"\u00B0", "\u00B0long"},
    {"radian", "rad"},
    {"celsius", "\u00B0c"},
    {"fahrenheit", "\u00B0f"},
    {"hpa", "mbar"},
    {"mb", "mbar"},
    {"pascal", "pa"},
    {"r/min", "rpm"},
    {"1/min", "rpm"},
    {"l/h", "l/hr"},
    {"gal/h", "gal/hr"},
    {"gph", "gal/hr"},
    {"h", "hr"},
    {"hour", "hr"},
    {"minute", "min"},
    {"s", "sec"},
    {"second", "sec"},
    {"d", "days"},
    {"day", "days"},
    {"percent", "%"},
    {"pct", "%"},
    {"in", "\""},
    {"inch", "\""},
    {"inches", "\""},
    {"hertz", "hz"},
};

/// Lower case without blanks, "deg" as the sign, other signs as keyboards have them.
std::string plain_spelling(std::string_view text) {
    std::string_view degrees;
    std::string result = lower_case(text);
    std::erase_if(result, [](char c) { return c == ' ' || c == '\t'; });
    for (const std::string_view word : {"degrees", "degree", "deg"})
        if (degrees.empty() && result.starts_with(word)) degrees = word;
    if (!degrees.empty()) result.replace(0, degrees.size(), "\u00B0");
    constexpr std::pair<std::string_view, std::string_view> signs[] = {
        {"\u00B2", "2"}, {"\u00B3", "3"}, {"\u00B5", "u"}, {"\u03BC", "u"}, {"\u2126", "\u03A9"}};
    for (const auto& [sign, key] : signs)
        for (std::size_t at = 0; (at = result.find(sign, at)) != result.npos; at += key.size())
            result.replace(at, sign.size(), key);
    return result;
}

}  // namespace

bool is_spelling_of(std::string_view text, std::string_view unit) {
    constexpr std::size_t longest = 32;
    if (text.size() > longest) return false;
    const std::string typed = plain_spelling(text), meant = plain_spelling(unit);
    std::string_view singular = typed;
    constexpr std::size_t shortest = 3;  // "ms" is not several "m"
    if (typed.size() >= shortest && typed.ends_with('s')) singular.remove_suffix(1);
    const auto is_one = [&](const Spelling& s) {
        return meant == s.unit && (s.text == typed || s.text == singular);
    };
    return typed == meant || singular == meant || std::ranges::any_of(spellings, is_one);
}

}  // namespace vistel
