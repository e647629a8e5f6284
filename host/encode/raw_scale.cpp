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

/// Whether a number is these digits with zeros behind them.
bool consists_of(std::uint64_t number, std::uint64_t digits) {
    while (number != 0 && number % 10 == 0) number /= 10;
    return number == digits;
}

/// The number of `first` .. `last` that consists of these digits, or else has the most zeros at its end.
std::uint64_t roundest(std::uint64_t first, std::uint64_t last, std::uint64_t digits) {
    for (std::uint64_t number = digits; number > 0 && number <= last; number *= 10) {
        if (number >= first) return number;
        if (number > last / 10) break;
    }
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
    all_bits_ = sign | (sign - 1);
    find_runs(0, sign - 1);
    find_runs(sign, all_bits_);
}

void RawScale::find_runs(std::uint64_t first, std::uint64_t last) {
    constexpr int most = 3;  // an offset may wrap around once
    for (int i = 0; i < most; ++i) {
        std::optional<double> from = value_of_(first);
        if (!from && first < last) from = value_of_(++first);  // the first code may be none
        if (!from) return;
        const auto end_of = [&](bool rising) {
            return last_that(first, last, [&](std::uint64_t raw) {
                const std::optional<double> value = value_of_(raw);
                return value && (rising ? *value >= *from : *value <= *from);
            });
        };
        const std::uint64_t end = std::max(end_of(true), end_of(false));
        runs_.push_back({first, end, *from, value_at(end)});
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
        const double v = value_at(raw);
        return rising ? v < value : v > value;
    };
    if (!before(run.first)) return run.first;
    const std::uint64_t below = last_that(run.first, run.last, before);
    return below < run.last && distance(below + 1, value) < distance(below, value) ? below + 1 : below;
}

std::pair<const RawScale::Run*, std::uint64_t> RawScale::nearest_run(double value) const {
    std::pair<const Run*, std::uint64_t> best = {&runs_.front(), nearest_in(runs_.front(), value)};
    for (const Run& run : runs_)
        if (const std::uint64_t raw = nearest_in(run, value);
            distance(raw, value) < distance(best.second, value))
            best = {&run, raw};
    return best;
}

std::pair<std::uint64_t, std::uint64_t> RawScale::equals_of(const Run& run, std::uint64_t raw) const {
    const double v = value_at(raw);
    const auto before = [&](std::uint64_t other) {
        const double at = value_at(other);
        return run.rising() ? at < v : at > v;
    };
    const auto equal = [&](std::uint64_t other) { return value_at(other) == v; };
    return {before(run.first) ? last_that(run.first, raw, before) + 1 : run.first,
            last_that(raw, run.last, equal)};
}

std::uint64_t RawScale::nearest(double value, std::uint64_t digits) const {
    // Digits are counted from zero, which some formats have in the middle.
    const std::uint64_t zero = nearest_run(0).second;
    const auto from_zero = [&](std::uint64_t raw) {
        return (value_at(raw) < 0 ? zero - raw : raw - zero) & all_bits_;
    };
    auto [run, best] = nearest_run(value);
    if (best < run->last && distance(best + 1, value) == distance(best, value)) {  // half a step
        const bool typed = consists_of(from_zero(best), digits);
        const bool nearer_zero = distance(best + 1, 0) < distance(best, 0);
        if (consists_of(from_zero(best + 1), digits) || (nearer_zero && !typed)) ++best;
    }
    // Single precision gives neighbouring numbers one value. Steps that the unit itself has, such as
    // Beaufort's, are much longer and keep their lower end.
    const auto [start, end] = equals_of(*run, best);
    constexpr std::uint64_t rounding = std::uint64_t{1} << 20;  // of the whole run
    if (end - start > (run->last - run->first) / rounding) return start;
    if (value_at(best) < 0) return (zero - roundest(from_zero(end), from_zero(start), digits)) & all_bits_;
    return (zero + roundest(from_zero(start), from_zero(end), digits)) & all_bits_;
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
