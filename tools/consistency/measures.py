"""What one count of a field is worth, by its format and by a public definition."""

from collections import namedtuple

# coding: unsigned, signed, float or text; None for a number with an offset in the sign's place.
Measure = namedtuple("Measure", "resolution unit coding")

# The base unit of each rule of formats.tsv, as a multiple of a unit of the comparison.
RULE_UNITS = {
    "unit_rule_acceleration": ("m/s2", 1), "unit_rule_angle_rad": ("rad", 1),
    "unit_rule_angular_accel": ("rad/s2", 1), "unit_rule_angular_rate": ("rad/s", 1),
    "unit_rule_charge_c": ("C", 1), "unit_rule_current_a": ("A", 1), "unit_rule_duration_s": ("s", 1),
    "unit_rule_force_n": ("N", 1), "unit_rule_frequency_hz": ("Hz", 1), "unit_rule_length_cm": ("m", 0.01),
    "unit_rule_magnetic_ut": ("uT", 1), "unit_rule_mass_kg": ("kg", 1), "unit_rule_power_w": ("W", 1),
    "unit_rule_pressure_kpa": ("Pa", 1000), "unit_rule_pressure_pa": ("Pa", 1),
    "unit_rule_resistance_ohm": ("ohm", 1), "unit_rule_speed_mm_s": ("m/s", 0.001),
    "unit_rule_temperature_k": ("K", 1), "unit_rule_voltage_v": ("V", 1), "unit_rule_volume_l": ("L", 1),
}
# Conversions that know their scale themselves; all others count ones.
CONVERSION_MEASURES = {
    "convert_ac_power": Measure(1, "W", None),
    "convert_date": Measure(1, "day", "unsigned"),
    "convert_double_distance": Measure(1, "m", "float"),
    "convert_double_plain": Measure(1, "", "float"),
    "convert_float_angle": Measure(1, "rad", "float"),
    "convert_float_plain": Measure(1, "", "float"),
    "convert_latitude_32": Measure(1e-7, "deg", "signed"),
    "convert_latitude_64": Measure(1e-16, "deg", "signed"),
    "convert_longitude_32": Measure(1e-7, "deg", "signed"),
    "convert_longitude_64": Measure(1e-16, "deg", "signed"),
    "convert_period_minutes": Measure(60, "s", "unsigned"),
    "convert_peukert": Measure(0.002, "", "unsigned"),
    "convert_power_factor": Measure(2**-14, "", None),
    "convert_run_time": Measure(1, "s", "unsigned"),
    "convert_text_fixed": Measure(1, "", "text"),
    "convert_text_medium": Measure(1, "", "text"),
    "convert_text_short": Measure(1, "", "text"),
}
LISTED_UNITS = {"deg_lat": "deg", "W": "W", "rpm": "rpm", "dB": "dB"}  # the other listed units are plain numbers
OPEN_UNITS = {2468: "kWh"}  # what formats count that give their number for every unit
# Units of the sources. A rate has the rule of what flows, and every kind of AC power that of power.
SOURCE_UNITS = {
    "%": ("", 1), "ppm": ("", 1), "ppt": ("", 1), "Cos Phi": ("", 1), "Ah": ("C", 3600), "L/h": ("L", 1),
    "m3": ("L", 1000), "m3/h": ("L", 1000), "kPa": ("Pa", 1000), "Pa/h": ("Pa", 1), "Pa/hr": ("Pa", 1),
    "RPM": ("rpm", 1), "VA": ("W", 1), "VAR": ("W", 1), "VAr": ("W", 1), "var": ("W", 1), "m/m": ("", 1),
    "Pa/s": ("Pa", 3600), "d": ("day", 1),
    "degs": ("deg", 1), "min": ("s", 60), "sec": ("s", 1),
}


def measure_of_format(row):
    """None for bits that are shown as a bare number."""
    kind, detail = row.rule
    if detail == "convert_bit_field":
        return None
    if kind == "special" and detail in CONVERSION_MEASURES:
        return CONVERSION_MEASURES[detail]
    coding = {"u": "unsigned", "i": "signed"}[row.kind[0]] if row.kind else None
    scale = float(row.scale.rstrip("f"))
    if kind == "listed":
        return Measure(scale, LISTED_UNITS.get(detail[0].id, ""), coding)
    unit, factor = RULE_UNITS.get(detail, (OPEN_UNITS.get(row.df, ""), 1))
    return Measure(scale * factor, unit, coding)


def measure_of_reading(field, context):
    """The same of a field of the corrected definitions."""
    how, *details = field.reading
    if how == "df":
        return measure_of_format(context.formats[details[0]])
    if how in ("text_sent", "text_padded", "text_counted"):
        return Measure(1, "", "text")
    is_bare = field.form != "plain" or how == "whole" and details[5:] == [(), None]
    if how not in ("whole", "measured") or is_bare:
        return None
    kind, times, over = details[:3]
    unit, factor = SOURCE_UNITS.get(field.unit, (field.unit, 1))
    return Measure(times / over * factor, unit, {"u": "unsigned", "i": "signed", "f": "float"}[kind[0]])


def measure_of_source(row):
    unit, factor = SOURCE_UNITS.get(row.unit, (row.unit, 1))
    return Measure(row.resolution * factor, unit, row.coding)
