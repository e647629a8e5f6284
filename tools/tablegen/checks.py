"""Rules between the rows of the tables. They run on tables whose cells are all well formed."""

from tables import (ALWAYS_FAST, CLASS_COUNT, DD_RANGES, FAST_PGNS, LAST_INDEXED_FORMAT, NO_KEY, PARSED_KINDS,
                    UNIT_COUNT)

PARSED_BYTES = {kind: int(kind[1:]) // 8 for kind in PARSED_KINDS}


def check_tables(tables, report):
    check_catalogue(tables, report)
    check_dictionary(tables, report)
    check_formats(tables, report)
    check_parsers(tables, report)
    check_units(tables, report)
    check_fields(tables, report)
    check_repeat_sets(tables, report)
    check_sets(tables, report)


def check_ascending(rows, column, report, strict):
    for before, row in zip(rows, rows[1:]):
        old, new = getattr(before, column), getattr(row, column)
        if new < old:
            report.add(row.place, f"{column} {new} stands after {old}")
        elif strict and new == old:
            report.add(row.place, f"{column} {new} stands twice")


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
    for row in tables.formats:
        check_format_rule(row, generated, report)
        if row.df > LAST_INDEXED_FORMAT and row.df not in listed:
            report.add(row.place, f"df {row.df} is not in format_list.tsv")
    for rows in (tables.format_list, tables.self_described, tables.format_classes):
        check_known(rows, "df", formats, "unknown df", report)
        seen = set()
        for row in rows:
            if row.df in seen:
                report.add(row.place, f"df {row.df} stands twice")
            seen.add(row.df)


def check_format_rule(row, generated, report):
    kind, name = row.rule
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
    check_ascending(tables.unit_formats, "unit", report, strict=True)
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
    elif found.kind == 1 and found.entries[0].value != 0:
        report.add(found.entries[0].place, f"value {found.entries[0].value} where 0 is due")
    if found.kind == 3:
        for bit, entry in enumerate(found.entries):
            if entry.value != 1 << bit:
                report.add(entry.place, f"value {entry.value} where bit {bit} is due")
    elif not found.stored_order:
        # The same value twice is legal: the search takes the first, values between take the last.
        check_ascending(found.entries, "value", report, strict=False)
