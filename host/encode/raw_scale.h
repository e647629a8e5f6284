#pragma once

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace vistel {

/// The values that the raw numbers of a field stand for in one unit, and the way back from value to number.
///
/// Only the conversion knows how numbers become values, so it is asked: the numbers fall into few runs along
/// which the values rise (or fall, as those of negative floats do), and a binary search finds its way in a
/// run.
class RawScale {
  public:
    static constexpr double single_rounding = 0x1p-24;

    /// Value of a raw number, or nothing for a reserved code.
    using Conversion = std::function<std::optional<double>(std::uint64_t)>;

    RawScale(Conversion value_of, int bits);

    /// No number has a value: the unit is not served, or the format has none.
    bool empty() const { return runs_.empty(); }
    double lowest() const;
    double highest() const;

    /// The number whose value is nearest. Of several with one value, the one that is these digits with zeros
    /// behind them, as somebody meant who typed them, or else the roundest. Half a step goes to such a
    /// number, too, or else towards zero. `digits` has no zeros at its end.
    std::uint64_t nearest(double value, std::uint64_t digits = 0) const;
    /// Whether the value of `raw`, the nearest number, is within half a step of `value`, or within the
    /// relative error of its conversion, `rounding`.
    bool meets(std::uint64_t raw, double value, double rounding = single_rounding) const;
    [[nodiscard]] std::optional<double> value_of(std::uint64_t raw) const { return value_of_(raw); }

  private:
    struct Run {
        std::uint64_t first, last;
        double from, to;  ///< their values
        bool rising() const { return from <= to; }
    };

    void find_runs(std::uint64_t first, std::uint64_t last);
    std::uint64_t nearest_in(const Run& run, double value) const;
    /// The nearest number, of two the first, and its run.
    std::pair<const Run*, std::uint64_t> nearest_run(double value) const;
    /// The first and the last number of the run with the value of this one.
    std::pair<std::uint64_t, std::uint64_t> equals_of(const Run& run, std::uint64_t raw) const;
    /// No number where there is no value: codes within a run may have none.
    double value_at(std::uint64_t raw) const {
        return value_of_(raw).value_or(std::numeric_limits<double>::quiet_NaN());
    }
    double distance(std::uint64_t raw, double value) const { return std::fabs(value_at(raw) - value); }

    Conversion value_of_;
    std::vector<Run> runs_;
    std::uint64_t all_bits_;
};

}  // namespace vistel
