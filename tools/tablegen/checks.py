"""Rules between the rows of the tables. They run on tables whose cells are all well formed."""

import re

from keys import base_keys, check_keys, variant_name
from plans import END_ROW, label_forms, next_row, pgn_forms, repeating_groups, shown_label, unit_forms
from tables import (ALWAYS_FAST, CLASS_COUNT, DD_RANGES, FAST_PGNS, FLAGS, LAST_INDEXED_FORMAT,
                    MEANT_FORMATS, MEANT_QUANTITIES, NO_KEY, PARSED_KINDS, UNIT_COUNT, conversion_owner)

PARSED_BYTES = {kind: int(kind[1:]) // 8 for kind in PARSED_KINDS}
CODED_RULES = ("temperature_k", "any")  # have no factors, or those of every unit
LAST_ID = {"unit": ("selected", "count"), "quantity": ("no_quantity", "count")}  # names that the generator adds
MAX_FORM = 255  # bytes of a text in one of its forms
MAX_FLAGS = 1000  # characters of all texts of a set of flags, so that they fit a line


def check_tables(tables, report, keys_are_due=True):
    check_catalogue(tables, report)
    check_dictionary(tables, report)
    check_formats(tables, report)
    check_parsers(tables, report)
    check_units(tables, report)
    check_ascii_names(tables.units, report)
    check_fields(tables, report)
    check_repeat_sets(tables, report)
    check_sets(tables, report)
    check_ids(tables, report)
    check_special_fields(tables, report)
    check_forms(tables, report, keys_are_due)
    if not report.messages:
        check_si_units(tables, report)


def check_ascending(rows, column, report, strict):
    for before, row in zip(rows, rows[1:]):
        old, new = getattr(before, column), getattr(row, column)
        if new < old:
            report.add(row.place, f"{column} {new} stands after {old}")
        elif strict and new == old:
            report.add(row.place, f"{column} {new} stands twice")


def check_unique(rows, column, report):
    seen = set()
    for row in rows:
        if getattr(row, column) in seen:
            report.add(row.place, f"{column} {getattr(row, column)} stands twice")
        seen.add(getattr(row, column))


def check_known(rows, column, known, what, report):
    for row in rows:
        if getattr(row, column) not in known:
            report.add(row.place, f"{what} {getattr(row, column)}")


def check_dense(rows, column, count, report):
    for expected, row in enumerate(rows):
        if getattr(row, column) != expected:
            report.add(row.place, f"{column} {getattr(row, column)} where {expected} is due")
            return
    if len(rows) != count:
        report.add(rows[-1].place, f"{len(rows)} rows, not {count}")


def check_catalogue(tables, report):
    check_ascending(tables.pgns, "pgn", report, strict=False)
    check_ascending(tables.stream_keys, "pgn", report, strict=True)
    check_packets(tables.pgns, report)


def check_packets(rows, report):
    packets = {}
    for row in rows:
        always = any(first <= row.pgn <= last for first, last in ALWAYS_FAST)
        if row.packet == "fast" and row.pgn not in FAST_PGNS:
            report.add(row.place, f"pgn {row.pgn} cannot be a fast packet")
        elif row.packet != "fast" and always:
            report.add(row.place, f"pgn {row.pgn} is always a fast packet")
        elif packets.setdefault(row.pgn, row.packet) != row.packet:
            report.add(row.place, f"pgn {row.pgn} has packet {packets[row.pgn]} in a row before")


def check_dictionary(tables, report):
    catalogued = {row.df for row in tables.formats if row.catalogued == "yes"}
    check_ascending(tables.dictionary, "dd", report, strict=True)
    check_known(tables.dictionary, "df", catalogued, "unknown df", report)
    check_ascending(tables.disp_data_types, "dd", report, strict=True)
    in_range = {dd for low, high in DD_RANGES for dd in range(low, high + 1)}
    check_known(tables.disp_data_types, "dd", in_range, "no class is kept for dd", report)


def check_formats(tables, report):
    formats = {row.df: row for row in tables.formats}
    check_ascending(tables.formats, "df", report, strict=True)
    for df in range(LAST_INDEXED_FORMAT + 1):
        if df not in formats:
            report.add(tables.formats[-1].place, f"no row for df {df}")
    generated = {f"convert_df_{row.df}" for row in tables.formats if row.rule[0] != "special"}
    listed = {row.df for row in tables.format_list}
    rules = {*CODED_RULES, *(row.rule for row in tables.unit_factors)}
    for row in tables.formats:
        check_format_rule(row, generated, rules, report)
        if row.df > LAST_INDEXED_FORMAT and row.df not in listed:
            report.add(row.place, f"df {row.df} is not in format_list.tsv")
    for rows in (tables.format_list, tables.self_described, tables.format_classes):
        check_known(rows, "df", formats, "unknown df", report)
        check_unique(rows, "df", report)


def check_format_rule(row, generated, rules, report):
    kind, name = row.rule
    if kind == "scaled" and name.removeprefix("unit_rule_") not in rules:
        report.add(row.place, f"no factors for {name}")
    if kind != "special" and row.kind in ("f32", "f64"):
        report.add(row.place, f"{row.kind} takes a conversion of its own")
    if kind in ("special", "integer") and row.scale != "1.0f":
        report.add(row.place, f"scale has no effect with {name}")
    if kind != "special" and row.kind is None:
        report.add(row.place, "kind is missing")
    if kind == "special" and name.startswith("convert_df_") and name not in generated:
        report.add(row.place, f"no generated conversion {name}")


def check_parsers(tables, report):
    catalogued = [row.df for row in tables.formats if row.catalogued == "yes"]
    parsers = {row.df: row for row in tables.parsers}
    check_ascending(tables.parsers, "df", report, strict=True)
    check_known(tables.parsers, "df", catalogued, "no catalogued df", report)
    for df in catalogued:
        if df not in parsers:
            report.add(tables.parsers[-1].place, f"no row for df {df}")
    for row in tables.parsers:
        check_parser_rule(row, report)
    check_unique(tables.unit_formats, "unit", report)
    for row in tables.unit_formats:
        parser = parsers.get(row.df)
        if parser is None or PARSED_BYTES.get(parser.kind, 0) not in (2, 3, 4):
            report.add(row.place, f"no parser of 2 to 4 bytes for df {row.df}")


def check_parser_rule(row, report):
    kind, detail = row.rule
    counted, bounds = row.range
    scaled = kind in ("any", "listed", "map", "factor")
    if (kind == "special") != (row.kind is None):
        report.add(row.place, f"kind is {'of no use' if row.kind else 'missing'}")
    if not scaled and (row.then or counted or bounds):
        report.add(row.place, "then and range have no effect with this rule")
    if kind == "factor" and bounds:
        report.add(row.place, "bounds have no effect with this rule")
    if row.offset and not bounds:
        report.add(row.place, "offset without bounds in range")
    if kind == "probe" and row.kind not in ("u32", "i32"):
        report.add(row.place, "probe makes u32 or i32")
    if kind in ("whole", "hex") and row.kind not in ("u8", "u16", "u32", "u64"):
        report.add(row.place, f"{kind} makes u8, u16, u32 or u64")
    units = [unit for unit, _ in detail] if kind == "listed" else []
    if len(set(units)) < len(units):
        report.add(row.place, "rule names a unit twice")


def check_units(tables, report):
    check_dense(tables.units, "unit", UNIT_COUNT, report)
    check_dense(tables.availability, "class", CLASS_COUNT, report)
    for kind, rows in (("unit", tables.units), ("quantity", tables.availability)):
        check_unique(rows, "id", report)
        for row in rows:
            if row.id in LAST_ID[kind]:
                report.add(row.place, f"id {row.id} has a meaning of its own")
    seen = set()
    for before, row in zip([None, *tables.unit_factors], tables.unit_factors):
        if (row.rule, row.unit) in seen:
            report.add(row.place, f"unit {row.unit} of {row.rule} stands twice")
        elif before and before.rule != row.rule and any(rule == row.rule for rule, _ in seen):
            report.add(row.place, f"rule {row.rule} goes on behind {before.rule}")
        seen.add((row.rule, row.unit))
        if row.rule in CODED_RULES or row.rule.startswith("listed_"):
            report.add(row.place, f"rule {row.rule} has a meaning of its own")


def check_ascii_names(units, report):
    """Programs tell units apart by these names; what a direction or a position is measured from is no unit."""
    bases = {}
    for row in units:
        base = re.sub(r"(?<=^deg|^rad)_(mag|true|lat|long)$", "", row.id)
        if row.ascii and bases.setdefault(row.ascii, base) != base:
            report.add(row.place, f"ascii '{row.ascii}' is that of {bases[row.ascii]}, too")
        if row.name and not row.ascii and not row.id.startswith("date_"):
            report.add(row.place, "ascii is missing")


# Units of the conversions that have code of their own; those that are not named do not look at the unit.
CODED_UNITS = {
    "unit_rule_temperature_k": {"celsius", "fahrenheit", "kelvin"},
    "convert_latitude_32": {"deg_lat"}, "convert_latitude_64": {"deg_lat"},
    "convert_longitude_32": {"deg_long"}, "convert_longitude_64": {"deg_long"},
    "convert_offset_angle": {"deg", "rad"}, "convert_salinity": {"plain_66", "ppm"},
    "convert_device_address": {"plain_64", "plain_65"}, "unit_rule_integer": {"plain_64", "plain_65"},
    "convert_date": {"date_ymd", "date_mdy", "date_dmy", "date_mon_d_y", "date_d_mon_y", "date_md"},
    "convert_never_available": set(), "convert_undefined": set()}
RULES_OF_CONVERSIONS = {"convert_ac_power": "power_w", "convert_double_distance": "length_cm",
                        "convert_float_angle": "angle_rad", "convert_run_time": "duration_s",
                        "convert_period_minutes": "duration_s"}


def check_si_units(tables, report):
    """Whatever the catalogue or a message can have of a quantity is a number in its SI unit."""
    formats = {row.df: row for row in tables.formats}
    factors = {(row.rule, row.unit.id) for row in tables.unit_factors}
    factors |= {("duration_s", "clock_12"), ("duration_s", "clock_24"), ("speed_mm_s", "bft"), ("speed_m_s", "bft")}
    quantities = {getattr(row, "class"): row for row in tables.availability}
    entries = {row.dd: row.df for row in tables.dictionary}
    classes = {row.dd: getattr(row, "class") for row in tables.disp_data_types}
    dds = {row.dd for row in tables.fields if row.dd in classes and row.dd in entries}
    described = {row.df for row in tables.self_described}
    found = {(classes[dd], entries[dd]) for dd in dds}
    found |= {(getattr(row, "class"), row.df) for row in tables.format_classes if row.df in described}
    for number, df in sorted(found):
        quantity = quantities[number]
        if quantity.si is None:
            report.add(quantity.place, "si is missing")
        elif not serves(conversion_owner(formats[df], formats), quantity, factors):
            report.add(quantity.place, f"df {df} does not serve si {quantity.si}")


def serves(row, quantity, factors):
    kind, detail = row.rule
    if kind == "any":
        return quantity.si == quantity.units[0]  # the number is the same in every unit: it has to be the one meant
    if kind == "listed":
        return quantity.si in detail
    if detail in CODED_UNITS:
        return quantity.si.id in CODED_UNITS[detail]
    rule = detail.removeprefix("unit_rule_") if kind == "scaled" else RULES_OF_CONVERSIONS.get(detail)
    return rule is None or (rule, quantity.si.id) in factors


def check_fields(tables, report):
    check_known(tables.fields, "dd", {row.dd for row in tables.dictionary}, "unknown dd", report)
    check_known(tables.fields, "pgn", {row.pgn for row in tables.pgns}, "unknown pgn", report)
    files = {}
    keyed = {row.pgn for row in tables.fields if row.key1 != NO_KEY}
    for before, row in zip([None, *tables.fields], tables.fields):
        path = file_of(row)
        if files.setdefault(row.pgn, path) != path:
            report.add(row.place, f"pgn {row.pgn} has rows in {files[row.pgn]}, too")
        elif before and file_of(before) == path:
            check_field_order(before, row, row.pgn in keyed, report)


def check_field_order(before, row, keyed, report):
    if row.pgn < before.pgn:
        report.add(row.place, f"pgn {row.pgn} stands after {before.pgn}")
    elif row.pgn == before.pgn:
        if row.field < before.field:
            report.add(row.place, f"field {row.field} stands after {before.field}")
        elif not keyed and row.field != before.field + 1:
            report.add(row.place, f"field {row.field} where {before.field + 1} is due")


def file_of(row):
    return row.place.rpartition(":")[0]


def check_repeat_sets(tables, report):
    check_ascending(tables.repeat_sets, "pgn", report, strict=False)
    check_known(tables.repeat_sets, "pgn", {row.pgn for row in tables.pgns}, "unknown pgn", report)
    with_rows = {row.pgn for row in tables.fields}
    fields = {(row.pgn, row.field) for row in tables.fields}
    rows = sorted(tables.fields, key=lambda row: row.pgn)
    groups = repeating_groups(tables)
    for i, row in enumerate(rows):
        first, last = groups.get(row.pgn, (0, 0))
        if (row.field == last and (row.pgn, first) in fields and first <= last
                and next_row(rows, i, first - last) == END_ROW):
            report.add(row.place, f"no way back from field {last} to field {first}")
    for row in tables.repeat_sets:
        if row.first > row.last:
            report.add(row.place, f"first {row.first} is above last {row.last}")
        for field in (row.first, row.last):
            if row.pgn in with_rows and (row.pgn, field) not in fields:
                report.add(row.place, f"pgn {row.pgn} has no field {field}")


def check_sets(tables, report):
    names = {row.dd: row.name for row in tables.dictionary}
    places = {}
    for before, found in zip([None, *tables.sets], tables.sets):
        if found.dd in places:
            report.add(found.place, f"dd {found.dd} has a set at {places[found.dd]}, too")
        elif before and file_of(before) == file_of(found) and found.dd < before.dd:
            report.add(found.place, f"dd {found.dd} stands after {before.dd}")
        places.setdefault(found.dd, found.place)
        if found.name != names.get(found.dd, ""):
            report.add(found.place, f"dd {found.dd} is named '{names.get(found.dd, '-')}'")
        check_entries(found, report)


def check_entries(found, report):
    if not found.entries:
        report.add(found.place, f"dd {found.dd} has no entries")
    elif found.stored_order:
        if found.kind in (1, FLAGS):
            report.add(found.place, f"kind {found.kind} has an order of its own")
        check_unique(found.entries, "value", report)
    elif found.kind == FLAGS:
        for bit, entry in enumerate(found.entries):
            if entry.value != 1 << bit:
                report.add(entry.place, f"value {entry.value} where bit {bit} is due")
        if sum(len(entry.text) + 2 for entry in found.entries) > MAX_FLAGS:
            report.add(found.place, f"the texts of all bits have more than {MAX_FLAGS} characters")
    else:
        if found.kind == 1 and found.entries[0].value != 0:
            report.add(found.entries[0].place, f"value {found.entries[0].value} where 0 is due")
        # The same value twice is legal: the search takes the first, values between take the last.
        check_ascending(found.entries, "value", report, strict=False)


def known_dds(tables):
    """Those with an entry, and those that only a quantity is known of."""
    return {row.dd for row in (*tables.dictionary, *tables.disp_data_types)}


def check_ids(tables, report):
    known = {"pgn": {row.pgn for row in tables.pgns}, "dd": known_dds(tables),
             "df": {row.df for row in tables.formats}}
    for kind, numbers in known.items():
        rows = [row for row in tables.ids if row.kind == kind]
        check_known(rows, "number", numbers, f"unknown {kind}", report)
        check_unique(rows, "number", report)
        check_unique(rows, "id", report)
    check_meant(tables.availability, tables.class_of, MEANT_QUANTITIES, report)
    check_meant(tables.ids, tables.df_of, MEANT_FORMATS, report)


def check_meant(rows, numbers, names, report):
    """The names by which the generator means quantities and formats."""
    for name in names:
        if name not in numbers:
            report.add(file_of(rows[0]), f"no row has the id {name}")


def check_special_fields(tables, report):
    pgns = {row.pgn for row in tables.pgns}
    check_ascending(tables.pgn_rules, "pgn", report, strict=True)
    check_known(tables.pgn_rules, "pgn", pgns, "unknown pgn", report)
    check_known(tables.special_fields, "dd", known_dds(tables), "unknown dd", report)
    proprietary = {row.pgn for row in tables.pgn_rules if row.walk == "proprietary"}
    fields = {(row.pgn, row.field, row.dd) for row in tables.fields}
    for row in tables.special_fields:
        if (row.pgn is None) != (row.field is None):
            report.add(row.place, "pgn and field go together")
        elif row.pgn is not None and row.pgn not in pgns:
            report.add(row.place, f"unknown pgn {row.pgn}")
        elif row.pgn is not None and (row.pgn, row.field, row.dd) not in fields:
            report.add(row.place, f"field {row.field} of pgn {row.pgn} has no dd {row.dd}")
        if row.shown and row.pgn not in proprietary:
            report.add(row.place, "shown has no effect without the walk of a proprietary message")
        if not any((row.label, row.form, row.quantity, row.none, row.shown)):
            report.add(row.place, "says nothing")


def check_forms(tables, report, keys_are_due):
    """What leaves as text, JSON and CSV is counted in one byte each. Entries of sets are short enough in any form."""
    def check(place, column, forms):
        size = max(len(form.encode()) for form in forms)
        if size > MAX_FORM:
            report.add(place, f"{column} has a form of {size} bytes, {MAX_FORM} fit")

    unfrozen, keys = base_keys(tables, repeating_groups(tables), shown_label)
    check_keys(tables, unfrozen.missing if keys_are_due and not report.messages else [], report)
    for row in tables.fields:
        check(row.place, "label", label_forms(row.field, keys[row.pgn, variant_name(row)][row.field],
                                              shown_label(tables, row), False))
    for row in (*tables.pgns, *(row for row in tables.pgn_rules if row.name)):
        check(row.place, "name", pgn_forms(row.pgn, row.name))
    for row in tables.units:
        check(row.place, "name", unit_forms(row.name, row.ascii))
