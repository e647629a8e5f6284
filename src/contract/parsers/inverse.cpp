#include "contract/parsers/inverse.h"

#include <cmath>
#include <limits>

#include "contract/parsers/raw_kind.h"
#include "contract/values.h"
#include "core/convert.h"

namespace pgn_vistel {

std::optional<std::uint32_t> probed_raw(DF df, float value, UnitId unit) {
    constexpr int bits = 30;
    const auto probe = [&](std::uint32_t number) {
        constexpr float nan = std::numeric_limits<float>::quiet_NaN();
        core::Value out;
        core::convert(*core::find_format_plan(df), {number, 0, 4}, unit, shared_scratch(), out);
        return core::is_available(out)
                   ? core::visit_number(out, nan, [](auto shown) { return static_cast<float>(shown); })
                   : nan;
    };
    const float p0 = probe(0), p1 = probe(std::uint32_t{1} << bits);
    if (std::isnan(value) || std::isnan(p0) || std::isnan(p1)) return std::nullopt;

    // Twice the number, so that the lowest bit says how to round. Positive numbers go to the nearest one;
    // negative ones go down whenever the cut left them odd, so that half a count too far is possible there.
    const auto twice = static_cast<float>(2.0 * (double{value} - p0) / (double{p1} - p0));
    std::int64_t doubled = truncate_64(static_cast<float>(std::ldexp(twice, bits)));
    if (doubled > 0) ++doubled;
    return static_cast<std::uint32_t>(doubled >> 1);
}

}  // namespace pgn_vistel
