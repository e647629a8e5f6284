#pragma once

namespace pgn_vistel {

constexpr int fixed_point_capacity = 48;

/// Decimal digits of a finite, non-negative number with `precision` digits after the point, exactly rounded
/// (ties to even) as "%.*f" would be. They stand at the end of `out`, from `*first` on. Returns their count,
/// or 0 for numbers that the quick way cannot hold (18 significant digits), which then go through the general
/// one.
int fixed_point(char (&out)[fixed_point_capacity], const char** first, double magnitude, int precision);

}  // namespace pgn_vistel
