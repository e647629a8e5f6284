#pragma once

#include <optional>

#include "pgn_vistel/formats.h"

namespace pgn_vistel {

/// An amount of a base unit in another unit, single precision; NaN in a unit that typed numbers cannot have.
/// The factor of a unit is its number for one base unit. A raw count has the factor 1.
using UnitFactor = float(float amount, UnitId unit);

// Fewer units than the unit rules know: typed lengths have no millimetres, pressures no Pa/s, speeds no mm/s
// and nothing in inches, feet or minutes. The factor is NaN then.
UnitFactor length_factor,  ///< of centimetres
    volume_factor,         ///< of litres
    voltage_factor,        ///< of volts
    current_factor,        ///< of amperes
    pressure_factor,       ///< of kilopascals
    speed_factor,          ///< of mm/s. Beaufort has the force of that amount, 0 for one: nobody can type it
    mass_factor;           ///< of kilograms

/// A typed number in a base unit, or nothing in a unit that is not served.
using UnitMap = std::optional<double>(float number, UnitId unit);

/// A raw count is read as Fahrenheit. Any other unit gives NaN, not nothing: the field then becomes 0.
UnitMap kelvin_of;

UnitMap seconds_of,  ///< a raw count is seconds
    minutes_of;      ///< a raw count is minutes

}  // namespace pgn_vistel
