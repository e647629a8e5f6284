"""The corrected definitions: the rows of the base and of data/corrections/ as messages of one shape.

A message has its conditions, its groups and all of its fields, one after the other; nothing is shared between the
variants of a PGN, so that the next field is the next row."""

from fractions import Fraction
from types import SimpleNamespace as Row

from keys import variant_name
from overlay import HEADER, base_variant, hides
from plans import field_bits, listed_rule, quantity, shown_label, special_row
from tables import FLAGS, NO_CLASS, NO_SELECTOR, conversion_owner, is_proprietary

SECONDS_OF_DAY = 6  # format of times of day
BIT_FIELDS = ("convert_bit_field", "convert_ais_spare")
NUMBER, BELOW, RESERVED, UNKNOWN = 0, 1, 2, 4
RESERVED_TOO, UNKNOWN_TOO = 6, 7  # with the number behind the word
MOST_OF_RANGE = 256
LAST_OF_BYTE = 255
WIDEST_CODE = 32  # bits of what an enumeration is asked for
EXACT = 1 << 53  # numbers below are the same in double precision

# unit of a correction: rule of unit_factors.tsv, the unit's id there, what a user picks a unit for
UNITS = {
    "m": ("length_cm", "m", "depth"), "m/s": ("speed_m_s", "m_s", "speed"), "km/h": ("speed_m_s", "kph", "speed"),
    "V": ("voltage_v", "V", "voltage"), "A": ("current_a", "A", "current"), "W": ("power_w", "W", "power"),
    "VA": ("power_w", "VA", "apparent_power"), "VAR": ("power_w", "VAR", "reactive_power"),
    "Hz": ("frequency_hz", "Hz", "frequency"), "Pa": ("pressure_pa", "Pa", "pressure"),
    "Pa/h": ("pressure_rate", "Pa_h", "pressure_rate"), "rad": ("angle_rad", "rad", "angle_35"),
    "deg": ("angle_rad", "deg", "angle_35"), "rad/s": ("angular_rate", "rad_s", "angular_velocity"),
    "deg/s": ("angular_rate", "deg_s", "angular_velocity"), "L": ("volume_l", "litre", "volume"),
    "L/h": ("volume_l", "litre_hr", "flow"), "Ah": ("charge_ah", "Ah", "charge"), "C": ("charge_c", "C", "charge"),
    "kWh": ("energy_wh", "kWh", "energy"), "T": ("magnetic_ut", "T", "magnetic"), "N": ("force_n", "N", "force"),
    "Nm": ("torque_nm", "Nm", "torque"), "s": ("duration_s", "seconds", "duration"), "kg": ("mass", "kg", "mass"),
    "K": ("temperature_k", None, "temperature"), "m/s2": ("acceleration", "m_s2", "acceleration"),
    # These are shown as they are.
    "%": (None, "percent", "percent"), "rpm": (None, "rpm", "rpm"), "dB": (None, "dB", "snr"),
    "ppm": (None, "ppm", "concentration"),
}
UNITLESS = ("1", "cos(phi)")
# Rules of the base: the unit that programs get, in which numbers are counted instead, and what the base unit has of it.
COUNTED_IN = {"length_cm": ("m", "0.01"), "speed_mm_s": ("m_s", "0.001"), "speed_m_s": ("m_s", "1"),
              "pressure_kpa": ("Pa", "1000"), "magnetic_ut": ("T", "0.000001"), "volume_l": ("m3", "0.001"),
              "energy_wh": ("kWh", "0.001"), "charge_ah": ("C", "3600")}
MEANT = {"energy": "kWh", "power": "W"}  # the unit of a quantity whose formats in the base serve not every unit
ROUNDED = {"kph": Fraction(5, 18)}  # in the unit that is counted; unit_factors.tsv has single precision


class BadRow(ValueError):
    """A row that the generator cannot use, told with its place."""


def new_field(**cells):
    """role: what it is to the fields behind it; is_fill: reserved or spare bits, None where its entry tells; unit: that
    it is counted in; unit_note: one that no quantity has, shown in the label."""
    return Row(**{"dd": None, "options": {}, "texts": None, "role": None, "is_fill": None, "unit": "", "unit_note": "",
                  **cells})


def corrected_messages(tables, overlay):
    """All messages, by PGN; those of a PGN in the order in which they are tried."""
    context = Row(tables=tables, overlay=overlay, formats={row.df: row for row in tables.formats},
                  entries={row.dd: row for row in tables.dictionary},
                  classes={row.dd: getattr(row, "class") for row in tables.disp_data_types},
                  shown_units={getattr(row, "class"): row.units for row in tables.availability},
                  rules={row.pgn: row for row in tables.pgn_rules}, sets=corrected_sets(tables, overlay),
                  dd_texts={row.dd: row.texts[0] for row in overlay.dd_texts},
                  factors=factors_by_rule(tables), units={row.id: row.unit for row in tables.units},
                  preferred={getattr(row, "class"): [*filter(None, [row.si]), *row.units]
                             for row in tables.availability},
                  ascii_names={row.unit: row.ascii for row in tables.units})
    changes = {}
    for row in overlay.changes:
        changes.setdefault((row.pgn, row.variant), {}).setdefault(row.field, {})[row.column] = row.value
    fields = {}
    for row in overlay.fields:
        fields.setdefault((row.pgn, row.variant), []).append(row)
    messages = [overlaid_message(row, fields[row.pgn, row.variant], context) for row in overlay.messages]
    written = {(row.pgn, row.variant) for row in overlay.messages}
    overlaid = {row.pgn for row in overlay.messages}
    for variant, rows in base_variants(tables):
        if (variant.pgn, str(variant.selector)) in written or variant.selector is None and variant.pgn in overlaid:
            continue
        found = base_message(variant, rows, changes.get((variant.pgn, variant.selector), {}), context)
        if found is None or is_proprietary(variant.pgn) and not found.match:
            continue
        if not any(row.pgn == found.pgn and hides(row, found) for row in overlay.messages):
            messages.append(found)
    for field in [each for found in messages for each in found.fields]:
        field.unit = counted_unit(field, context)
        if field.texts is not None and not context.sets[field.texts[0]].entries:
            field.texts, field.form = None, "plain"
    end_ranges(messages, context.sets)
    messages += unmatched(messages, tables)
    messages.sort(key=lambda found: (found.pgn, found.rank))
    return messages, context


def unmatched(messages, tables):
    """What a standard PGN shows when no variant fits: its name, and bytes."""
    names = {row.pgn: row.name for row in tables.pgn_rules if row.name}
    conditional = {}
    for found in messages:
        conditional.setdefault(found.pgn, []).append(found)
    return [Row(pgn=pgn, rank=(9,), variant="other", is_own=True, name=names.get(pgn, common_name(found)),
                priority=found[0].priority, packet=found[0].packet, match=[], length=None, groups=[],
                fields=[], source="ours")
            for pgn, found in conditional.items()
            if not is_proprietary(pgn) and all(each.match or each.length for each in found)]


def common_name(messages):
    name = messages[0].name
    for other in messages[1:]:
        while not other.name.startswith(name):
            name = name[:-1]
    return name.rstrip(" -:,(") or messages[0].name


# ---- messages of the base ----

def base_variants(tables):
    """(row of the catalogue with its selector, its field rows in their order) of each variant."""
    rows = {}
    for row in tables.fields:
        rows.setdefault((row.pgn, row.key1, row.key2, row.key3), []).append(row)
    variants = {(row.pgn, row.key1, row.key2, row.key3): row for row in tables.pgns}
    return [(Row(**vars(row), selector=base_variant(row)), sorted(rows.get(key, []), key=lambda field: field.field))
            for key, row in variants.items()]


def base_message(variant, rows, changes, context):
    """None where nothing tells how its messages are known."""
    fields, last = [], 0
    for row in rows:
        cells = changes.get(row.field, {})
        if row.field == last or "remove" in cells:  # a field number that stands twice is another variant's
            continue
        last = row.field
        fields.append(base_field(row, cells, context))
    found = base_match(variant, fields)
    if found is None or not fields:
        return None
    match, rank = found
    whole = changes.get(None, {})
    groups = whole.get("groups", base_groups(variant, context.tables))
    numbers = [field.number for field in fields]
    groups = [(numbers.index(first), numbers.index(last), None if count is None else numbers.index(count))
              for first, last, count in groups if first in numbers and last in numbers]
    return Row(pgn=variant.pgn, rank=(rank,), variant=variant_name(variant), is_own=False,
               name=whole.get("name", variant.name),
               priority=whole.get("priority", variant.priority),
               packet=whole.get("packet", variant.packet), match=match, length=None, groups=groups, fields=fields,
               source="base, corrected" if changes else "base")


def base_groups(variant, tables):
    for row in tables.repeat_sets:
        if row.pgn == variant.pgn and row.selector in (255, variant.selector):
            return [(row.first, row.last, None)]
    return []


def base_match(variant, fields):
    """(conditions, rank): variants of one message number go before those of any."""
    if variant.selector is None:
        return [], 1
    if not is_proprietary(variant.pgn):
        return [(0, 8, variant.selector)], 1
    group, message = variant.key2 & 0xFFFF, variant.key2 >> 16
    match = [(*HEADER[0], variant.selector)]
    if group != NO_SELECTOR:
        match.append((*HEADER[1], group))
    if variant.key3 >> 16 != NO_SELECTOR or variant.key3 & 0xFFFF != NO_SELECTOR:
        return None  # the place of a third selector is not known
    if message == NO_SELECTOR:
        return match, 3
    header_bits = 16
    if len(fields) < 4 or not fields[3].bits or message >> fields[3].bits:
        return None
    return [*match, (header_bits, fields[3].bits, message)], 2


def base_field(row, cells, context):
    """A row of the base with the cells that the corrections change."""
    tables, entry = context.tables, context.entries[row.dd]
    bits = cells["size"] if "size" in cells else field_bits(row, entry, pressure_only(context.rules.get(row.pgn)),
                                                            context.formats)
    options = cells.get("options", {})
    label = cells.get("label") or shown_label(tables, row).strip()
    field = new_field(number=row.field, label=label, bits=bits or 0, dd=row.dd,
                      options=options, texts=cells.get("texts") or base_texts(row, context), place=row.place,
                      is_corrected=bool(cells))
    form = special_row(tables, row.pgn, row.field, row.dd, "form")
    if {"coding", "resolution", "offset", "unit"} & set(cells):
        coding = cells.get("coding") or coding_of(entry.df, context)
        given = Row(place=row.place, coding=coding, size=bits or None, resolution=cells.get("resolution"),
                    offset=cells.get("offset"), unit=cells.get("unit"), options=options)
        set_reading(field, given, context)
    else:
        set_base_reading(field, row, entry.df, context)
    if form == "pgn_name":
        field.form = "pgn_title"
        field.reading = whole(field.bits, False, set_of_codes({}, field.bits, False))
    return field


def pressure_only(rule):
    """A size that goes for all fields of a PGN is what the corrections replace."""
    return None if rule is None else Row(size=(0, 0), pressure=rule.pressure)


def base_texts(row, context):
    if row.dd in context.dd_texts:
        return context.dd_texts[row.dd], None
    return (row.dd, None) if row.dd in context.sets else None


def coding_of(df, context):
    """How a base format counts, where a correction gives it a unit or a resolution."""
    kind = conversion_owner(context.formats[df], context.formats).kind
    return "i" if kind and kind[0] == "i" else "u"


def set_base_reading(field, row, df, context):
    """The reading of a base format; numbers with a resolution are counted exactly."""
    form = conversion_owner(context.formats[df], context.formats)
    kind, name = form.rule
    rule = context.rules.get(row.pgn)
    field.quantity = quantity(context.tables, row, context.classes, rule)
    field.form = "plain"
    field.reading = ("df", df)
    width = int(form.kind[1:]) if form.kind else 0
    signed = bool(form.kind) and form.kind[0] == "i"
    none = set_of_codes(field.options, field.bits, signed)
    df_of, is_time_of_day = context.tables.df_of, field.quantity == context.tables.class_of["time_of_day"]
    if df in (df_of["text_short"], df_of["text_medium"]):
        field.reading = ("text_sent", 2 if df == df_of["text_short"] else 3)
    elif df == df_of["text_fixed"]:
        field.reading = ("text_padded",)
    elif df == SECONDS_OF_DAY and is_time_of_day:
        field.reading = ("time_of_day",)
    elif df == df_of["hex_dump"]:
        field.reading, field.bits = ("bytes",), 0 if field.bits >= 8 * 256 else field.bits
    elif kind == "special" and name in BIT_FIELDS and (field.bits > 64 or field.bits == 0):
        field.reading = ("bytes",)
    elif kind == "special" and name in BIT_FIELDS:
        field.reading = whole(field.bits, False, none if "none" in field.options else ((), None))
    elif name in ("convert_latitude_32", "convert_longitude_32"):
        field.reading = measured(32, True, Fraction(1, 10**7), 0, name.removeprefix("convert_"), none)
    elif kind == "integer" and field.bits == width:
        field.reading = whole(width, signed, none)
    elif kind in ("scaled", "listed", "any") and field.bits == width and not is_time_of_day:
        rule_name, times = base_rule(kind, name, field.quantity, context)
        field.reading = measured(width, signed, Fraction(form.scale.removesuffix("f")) * times, 0, rule_name, none)
    if field.texts is not None:
        field.form = "texts"


def base_rule(kind, name, shown, context):
    """(rule, what the unit that is counted has of the base's) for a quantity by the rule of a base format."""
    if kind == "scaled":
        rule = name.removeprefix("unit_rule_")
        if rule == "mass_kg":
            return rebased("mass", "kg", context), 1
        counted, times = COUNTED_IN.get(rule, (None, "1"))
        return rebased(rule, counted, context) if counted else rule, Fraction(times)
    for quantity_id, unit in MEANT.items():
        if context.tables.class_of.get(quantity_id) == shown:
            return rebased(*UNITS[unit][:2], context), 1
    rule = "any" if kind == "any" else listed_rule(name)
    context.factors.setdefault(rule, {unit.number: Fraction(1) for unit in name or ()})
    return rule, 1


# ---- messages of the corrections ----

def overlaid_message(row, rows, context):
    fields = []
    for each in rows:
        field = new_field(number=each.field, label=each.label, bits=each.size or 0, options=each.options,
                          texts=each.texts, place=each.place, is_corrected=True)
        set_reading(field, each, context)
        fields.append(field)
    groups = [(first - 1, last - 1, None if count is None else count - 1) for first, last, count in row.groups]
    rank = 0 if row.match or row.length else 8
    return Row(pgn=row.pgn, rank=(rank,), variant=row.variant, is_own=True, name=row.name, priority=row.priority,
               packet=row.packet, match=row.match, length=row.length, groups=groups,
               fields=fields, source=row.source)


def set_reading(field, given, context):
    """How the coding of a correction reads: given has coding, size, resolution, offset, unit and options."""
    coding, bits = given.coding, given.size or 0
    field.quantity, field.form = NO_CLASS, "plain"
    if field.texts is not None:
        field.form = "coded" if coding in ("u", "i", "duration") else "texts"
    signed = coding == "i"
    none = set_of_codes(given.options, bits, signed)
    if coding in ("u", "i", "duration") and (given.unit or given.resolution or given.offset):
        rule, times, field.quantity, field.unit_note = unit_rule(given, context)
        resolution = Fraction(given.resolution or "1") * times
        field.reading = measured(bits, signed, resolution, int(given.offset or 0), rule, none)
    elif coding in ("u", "i", "duration", "field_index", "key_length"):
        field.reading = whole(bits, signed, none)
    elif coding in ("code", "flags", "key", "pgn", "name"):
        field.reading = whole(bits, False, none if "none" in given.options or coding == "name" else ((), None))
        if coding == "pgn":
            field.form, field.reading = "pgn_title", whole(bits, False, none)
    elif coding == "mmsi":
        field.reading, field.form = whole(bits, False, none), "mmsi"
    elif coding == "float":
        rule, times, field.quantity, field.unit_note = unit_rule(given, context)
        field.reading = ("measured", f"f{bits}", *ratio(Fraction(given.resolution or "1") * times), 0, rule, (), None)
    elif coding == "date":
        field.reading, field.quantity = ("df", context.tables.df_of["date"]), context.tables.class_of["date"]
    elif coding == "time":
        field.reading, field.quantity = ("time_of_day",), context.tables.class_of["time_of_day"]
    elif coding == "decimal":
        field.reading = ("decimal",)
    elif coding == "text":
        field.reading = ("text_padded",)
    elif coding == "text_lau":
        field.reading = ("text_sent", 2, "ais" in given.options)
    elif coding == "text_lz":
        field.reading = ("text_counted",)
    elif coding in ("reserved", "spare", "bytes") and 0 < bits <= 64 and (bits < 8 or coding != "bytes"):
        field.reading = whole(bits, False, ((), None))
    else:
        field.reading = ("bytes",)
    if coding in ("field_value", "key_value", "key", "field_index"):
        field.role = coding
    field.is_fill = coding in ("reserved", "spare")


def whole(bits, signed, none):
    return ("whole", f"{'i' if signed else 'u'}{bits}", 1, 1, 0, "every", *none)


def measured(bits, signed, resolution, offset, rule, none):
    return ("measured", f"{'i' if signed else 'u'}{bits}", *ratio(resolution), offset, rule, *none)


def ratio(resolution):
    """Numerator and denominator; a fraction that double precision does not hold is one number."""
    if resolution.numerator < EXACT and resolution.denominator < 10**22:
        return resolution.numerator, resolution.denominator
    return float(resolution), 1


def set_of_codes(options, bits, signed):
    """(codes that are no value, lowest of the highest codes that are none): what a number of so many bits reserves.

    Of a byte and more the three highest codes say not available, out of range and reserved; of less, the highest."""
    if options.keys() & {"none", "error"}:
        codes = tuple(sign_extended(code, bits, signed) for code in
                      (options.get("none"), options.get("error")) if code is not None)
        return codes, None
    if bits < 2 or bits > 63 and not signed:
        return ((-1,) if bits > 63 else ()), None
    top = (1 << (bits - signed)) - 1
    return (), top - 2 if bits >= 8 else top


def sign_extended(code, bits, signed):
    return code - (1 << bits) if signed and code >> (bits - 1) else code


def unit_rule(given, context):
    """(rule, factor to its unit, quantity, unit to be named in the label)."""
    if given.unit is None:
        return "every", 1, NO_CLASS, ""
    name, quantity = given.unit
    if name in UNITLESS:
        return "every", 1, NO_CLASS, ""
    if quantity in ("latitude", "longitude", "latitude_30"):
        return ("longitude_32" if quantity == "longitude" else "latitude_32"), 1, context.tables.class_of[quantity], ""
    if name not in UNITS or quantity == "no_quantity":
        return "every", 1, NO_CLASS, f" ({name})"
    rule, unit, usual = UNITS[name]
    quantity = quantity or usual
    times = 1
    if unit is None:
        found = rule
    elif rule is None:
        found = shown_as_is(unit, context)
    else:
        counted, base_has = COUNTED_IN.get(rule, (unit, "1"))
        if counted != unit:
            times = ROUNDED.get(unit) or Fraction(base_has) / context.factors[rule][context.units[unit]]
        found = rebased(rule, counted, context)
    check_served(given, found, context.tables.class_of[quantity], context)
    return found, times, context.tables.class_of[quantity], ""


def check_served(given, rule, quantity, context):
    if rule in ("temperature_k", "every"):
        return
    for unit in context.shown_units[quantity]:
        if unit.number not in context.factors[rule] and not unit.id.startswith(("clock", "bft")):
            raise BadRow(f"{given.place}: {given.unit[0]} cannot be shown in {unit}")


# ---- units ----

def factors_by_rule(tables):
    """What one base unit of a rule is in each unit."""
    ids = {row.id: row.unit for row in tables.units}
    factors = {}
    for row in tables.unit_factors:
        factors.setdefault(row.rule, {})[row.unit.number] = Fraction(row.factor.removesuffix("f"))
    # The base multiplies neither rate of pressure; an hour has 3600 seconds.
    added = {"mass": {"kg": 1}, "pressure_rate": {"Pa_h": 1, "Pa_s": Fraction(1, 3600)},
             "latitude_32": {"deg_lat": 1}, "longitude_32": {"deg_long": 1}}
    for rule, units in added.items():
        factors[rule] = {ids[unit]: Fraction(factor) for unit, factor in units.items() if unit in ids}
    factors["mass"] |= factors.get("mass_kg", {})
    factors["every"] = {row.unit: Fraction(1) for row in tables.units}
    factors["any"] = {row.unit: Fraction(1) for row in tables.units if row.id not in ("raw_count", "raw_bits")}
    return factors


def rebased(rule, unit, context):
    """The rule whose base is this unit: what is shown in it is not multiplied at all."""
    name = f"{rule}_from_{unit}"
    if name not in context.factors:
        own = context.factors[rule][context.units[unit]]
        context.factors[name] = {other: factor / own for other, factor in context.factors[rule].items()}
        context.factors[name][context.units["raw_count"]] = Fraction(1)
    return name


def shown_as_is(unit, context):
    name = f"only_{unit}"
    context.factors[name] = {context.units[unit]: Fraction(1), context.units["raw_count"]: Fraction(1)}
    return name


def counted_unit(field, context):
    """ASCII name of the unit that a number has before any factor."""
    if field.reading[0] != "measured":
        return ""
    rule = field.reading[5]
    if rule == "every":
        return field.unit_note.removeprefix(" (").removesuffix(")")
    if rule == "temperature_k":
        return "K"
    # Which kind of pressure it is the payload tells.
    quantity = field.quantity if field.quantity <= NO_CLASS else context.tables.class_of["pressure"]
    ones = [unit for unit in context.preferred.get(quantity, []) if context.factors[rule].get(unit.number) == 1]
    return context.ascii_names[ones[0].number] if ones else ""


# ---- texts ----

def corrected_sets(tables, overlay):
    """All sets by dictionary number or name, without guesses."""
    changes = {}
    for row in overlay.set_changes:
        changes.setdefault(row.dd, {})[row.value] = row
    sets = {}
    for found in tables.sets:
        if not found.stored_order:
            sets[found.dd] = corrected_set(found, changes.get(found.dd, {}))
    for found in overlay.sets:
        entries = [Row(value=entry.value, text=entry.text, source=entry.source) for entry in found.entries]
        kind = FLAGS if found.kind == "flags" else NUMBER
        sets[found.name] = Row(name=found.name, kind=kind, entries=filled(entries) if kind == FLAGS else entries,
                               rows=found.entries if found.kind == "fieldtypes" else None, has_ranges=False)
    return sets


def corrected_set(found, changes):
    if found.kind == FLAGS:
        return corrected_flags(found, changes)
    entries = {entry.value: Row(value=entry.value, text=entry.text.strip(), source="base", guess=entry.guess)
               for entry in found.entries}
    entries = {value: entry for value, entry in entries.items() if not entry.guess}
    for value, row in changes.items():
        entries.pop(value, None)
        if row.text is not None:
            entries[value] = Row(value=value, text=row.text, source=row.source, guess=False)
    if found.kind == BELOW:
        entries = with_ranges(entries)
    kind = {BELOW: RESERVED_TOO, RESERVED: RESERVED_TOO, UNKNOWN: UNKNOWN_TOO}.get(found.kind, found.kind)
    if kind == RESERVED_TOO:
        entries = {value: entry for value, entry in entries.items() if not entry.text.lower().startswith("reserved")}
    return Row(name=str(found.dd), kind=kind, entries=[entries[value] for value in sorted(entries)], rows=None,
               has_ranges=found.kind == BELOW)


def end_ranges(messages, sets):
    """Ranges of codes end with the widest field that shows them."""
    shown = [(field.texts, field.bits) for found in messages for field in found.fields]
    shown += [(key.texts, key.size) for found in sets.values() for key in found.rows or []]
    for name, found in sets.items():
        width = max((bits or WIDEST_CODE for texts, bits in shown if texts is not None and texts[0] == name), default=0)
        if found.has_ranges and width:
            found.entries = [entry for entry in found.entries if not entry.value >> width]


def corrected_flags(found, changes):
    """The values of flags are what their bits count."""
    texts = {entry.value: Row(text=None if entry.guess else entry.text.strip(), source="base")
             for entry in found.entries}
    texts |= changes
    entries = [Row(value=value.bit_length() - 1, text=row.text, source=row.source)
               for value, row in texts.items() if row.text is not None]
    return Row(name=str(found.dd), kind=FLAGS, entries=filled(entries), rows=None, has_ranges=False)


def with_ranges(entries):
    """A text stands for all codes up to the next one; the last one of codes of a byte."""
    values = sorted(entries)
    ends = [*values[1:], max(values[-1], LAST_OF_BYTE) + 1] if values else []
    return {code: Row(**{**vars(entries[value]), "value": code})
            for value, end in zip(values, ends) for code in range(value, min(end, value + MOST_OF_RANGE))}


def filled(entries):
    """A text for each bit up to the highest that has one."""
    texts = {entry.value: entry for entry in entries}
    return [texts.get(bit, Row(value=bit, text=f"Bit {bit}", source="ours"))
            for bit in range(max(texts, default=-1) + 1)]


