#include "contract/parsers/inverse.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "contract/parsers/raw_kind.h"
#include "contract/store.h"
#include "contract/values.h"
#include "core/convert.h"

namespace pgn_vistel {

namespace {

/// What a conversion makes of a raw number.
struct Probe {
    ConvValue value{CV_NOT_AVAILABLE, {}};
    int count;

    template <class Number>
    Probe(ConvFunction conversion, Number number, UnitId unit, int available) {
        // A value whose format stands before it is read from two bytes ahead.
        constexpr int ahead = 2, size = 16;
        std::uint8_t raw[ahead + size] = {};
        std::memcpy(raw + ahead, &number, sizeof number);
        count = std::min(available, size);
        conversion(&value, raw + ahead, unit, &count);
    }
    float number() const { return conv_to_float(value); }
};

float quotient(float value, float p0, float p1, double factor) {
    return static_cast<float>(factor * (double{value} - p0) / (double{p1} - p0));
}

int invert_float(void* out, float value, UnitId unit, int available, ConvFunction conversion) {
    const Probe zero(conversion, 0.0f, unit, available);
    if (zero.value.type != CV_FLOAT) return -1;
    const Probe one(conversion, 1.0f, unit, available);
    const float raw = quotient(value, zero.number(), one.number(), 1);
    const int size = std::min({available, zero.count, int{sizeof raw}});
    std::memcpy(out, &raw, static_cast<std::size_t>(size));
    return size;
}

int invert_double(void* out, float value, UnitId unit, int available, ConvFunction conversion) {
    const Probe zero(conversion, 0.0, unit, available);
    if (zero.value.type != CV_DOUBLE) return -1;  // it is one as raw bits alone
    const Probe one(conversion, 1.0, unit, available);
    // Not a double: a single, and the number of the unit in its high half; whoever calls
    // this has to take the first four bytes.
    const struct {
        float raw;
        std::int32_t unit;
    } field = {quotient(value, zero.number(), one.number(), 1), unit};
    const int size = std::min(available, int{sizeof field});
    std::memcpy(out, &field, static_cast<std::size_t>(size));
    return size;
}

int invert_linear(void* out, float value, UnitId unit, int available, ConvFunction conversion, int bits) {
    if (std::isnan(value)) return -1;
    const Probe zero(conversion, std::uint32_t{0}, unit, available);
    constexpr int most = 126;
    const int width = 8 * std::clamp(zero.count, 0, most) - 2;
    bits = std::min({bits > 0 ? bits : most, width, 30});
    const float p0 = zero.number();
    if (std::isnan(p0) || bits < 0) return -1;
    const Probe high(conversion, std::uint32_t{1} << bits, unit, available);
    const float p1 = high.number();
    if (std::isnan(p1)) return -1;

    // Twice the number, so that the lowest bit says how to round. Positive numbers go to the nearest one;
    // negative ones go down whenever the cut left them odd, so that half a count too far is possible there.
    const float twice = quotient(value, p0, p1, 2);
    std::int64_t doubled = truncate_64(static_cast<float>(std::ldexp(twice, bits)));
    if (doubled > 0) ++doubled;
    const std::int64_t raw = doubled >> 1;
    const int size = std::min({zero.count, available, int{sizeof raw}});
    std::memcpy(out, &raw, static_cast<std::size_t>(size));
    return size;
}

}  // namespace

float conv_to_float(const ConvValue& v) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    if (v.type == CV_CHAR) {
        const auto character = static_cast<std::int8_t>(bits_of(v));
        return core::is_refused(character, 8, true) ? nan : character;
    }
    if (!is_available(v) || (is_hosts_own(v) && v.type != CV_FLOAT_PLAIN)) return nan;
    return core::visit_number(value_of(v), nan, [](auto number) { return static_cast<float>(number); });
}

int value_to_raw(void* out, float value, UnitId unit, int available, ConvFunction conversion, int bits) {
    if (out == nullptr || conversion == nullptr || available <= 0) return -1;
    if (conversion == find_conversion(core::format::single_precision))
        return invert_float(out, value, unit, available, conversion);
    if (conversion == find_conversion(core::format::double_precision))
        return invert_double(out, value, unit, available, conversion);
    return invert_linear(out, value, unit, available, conversion, bits);
}

}  // namespace pgn_vistel
