#include "encode/raw_scale.h"

#include <algorithm>
#include <cmath>

namespace vistel {

namespace {

/// The last number of `first` .. `last` for which `holds`, which is true for `first` and changes once.
template <class Predicate>
std::uint64_t last_that(std::uint64_t first, std::uint64_t last, Predicate holds) {
    while (first < last) {
        const std::uint64_t middle = last - (last - first) / 2;
        if (holds(middle))
            first = middle;
        else
            last = middle - 1;
    }
    return first;
}

/// The number of `first` .. `last` with the most zeros at its end.
std::uint64_t roundest(std::uint64_t first, std::uint64_t last) {
    std::uint64_t best = first;
    for (std::uint64_t power = 1; power <= last && last / power * power >= first; power *= 10) {
        best = last / power * power;
        if (power > last / 10) break;
    }
    return best;
}

}  // namespace

RawScale::RawScale(Conversion value_of, int bits)
    : value_of_([of = std::move(value_of)](std::uint64_t raw) {
          const std::optional<double> value = of(raw);
          return value && std::isfinite(*value) ? value : std::nullopt;
      }) {
    const std::uint64_t sign = std::uint64_t{1} << (std::max(bits, 1) - 1);
    find_runs(0, sign - 1);
    find_runs(sign, sign + (sign - 1));
}

void RawScale::find_runs(std::uint64_t first, std::uint64_t last) {
    constexpr int most = 3;  // an offset may wrap around once
    for (int i = 0; i < most; ++i) {
        const std::optional<double> from = value_of_(first);
        if (!from) return;
        const auto end_of = [&](bool rising) {
            return last_that(first, last, [&](std::uint64_t raw) {
                const std::optional<double> value = value_of_(raw);
                return value && (rising ? *value >= *from : *value <= *from);
            });
        };
        const std::uint64_t end = std::max(end_of(true), end_of(false));
        runs_.push_back({first, end, *from, *value_of_(end)});
        if (end == last) return;
        first = end + 1;
    }
}

double RawScale::lowest() const {
    double result = runs_.front().from;
    for (const Run& run : runs_) result = std::min({result, run.from, run.to});
    return result;
}

double RawScale::highest() const {
    double result = runs_.front().from;
    for (const Run& run : runs_) result = std::max({result, run.from, run.to});
    return result;
}

std::uint64_t RawScale::nearest_in(const Run& run, double value) const {
    const bool rising = run.rising();
    const auto before = [&](std::uint64_t raw) {
        const double v = *value_of_(raw);
        return rising ? v < value : v > value;
    };
    if (!before(run.first)) return run.first;
    const std::uint64_t below = last_that(run.first, run.last, before);
    if (below == run.last) return below;
    const double under = std::fabs(*value_of_(below) - value);
    const double over = std::fabs(*value_of_(below + 1) - value);
    const std::uint64_t best = under < over ? below : below + 1;

    // Single precision gives neighbouring numbers one value: the roundest of them is what somebody meant who
    // typed few digits. Steps that the unit itself has, such as Beaufort's, are much longer and keep their
    // lower end.
    const double v = *value_of_(best);
    const auto beyond = [&](std::uint64_t raw) {
        const double at = *value_of_(raw);
        return rising ? at < v : at > v;
    };
    std::uint64_t start = run.first;
    if (beyond(start)) start = last_that(run.first, best, beyond) + 1;
    const std::uint64_t end =
        last_that(best, run.last, [&](std::uint64_t raw) { return *value_of_(raw) == v; });
    constexpr std::uint64_t rounding = std::uint64_t{1} << 20;  // of the whole run
    if (end - start > (run.last - run.first) / rounding) return start;
    if (run.first == 0 || v >= 0) return roundest(start, end);
    const std::uint64_t zero = 2 * run.first;  // negative numbers count down from there
    return zero - roundest(zero - end, zero - start);
}

std::uint64_t RawScale::nearest(double value, std::optional<std::uint64_t> hint) const {
    std::uint64_t best = runs_.front().first;
    double distance = HUGE_VAL;
    for (const Run& run : runs_) {
        const std::uint64_t raw = nearest_in(run, value);
        const double d = std::fabs(*value_of_(raw) - value);
        if (d < distance) {
            best = raw;
            distance = d;
        }
    }
    if (hint) {
        const std::optional<double> v = value_of_(*hint);
        if (v && std::fabs(*v - value) <= distance) best = *hint;
    }
    return best;
}

bool RawScale::meets(std::uint64_t raw, double value, double rounding) const {
    const std::optional<double> reached = value_of_(raw);
    if (!reached) return false;
    double slack = 0;
    for (const Run& run : runs_) {
        if (value >= std::min(run.from, run.to) && value <= std::max(run.from, run.to)) return true;
        if (raw < run.first || raw > run.last || run.first == run.last) continue;
        const double step = std::fabs(run.to - run.from) / static_cast<double>(run.last - run.first);
        slack = std::max(step / 2, std::fabs(*reached) * rounding) * (1 + 1e-9);
    }
    return std::fabs(*reached - value) <= slack;
}

}  // namespace vistel
