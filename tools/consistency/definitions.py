"""The tables against the public definitions: where fields start, their width, resolution, sign and entry."""

from measures import measure_of_format, measure_of_source
from sizes import Sizes, field_name, name_of, places, repeats_of, variants
from tables import DD, FIELD, MAX_PAYLOAD, PGN, choice, number, optional, read_table, scale

RESERVED = (1, 311)  # dictionary entries: reserved bits, spare bits of AIS
SOURCES = ("listing", "canboat")
COLUMNS = {
    "pgn": PGN, "selector": optional(number(0, 0xFFFF)), "source": choice(*SOURCES), "field": FIELD,
    "coding": choice("unsigned", "signed", "float", "bits", "text", "reserved"),
    "bits": optional(number(1, MAX_PAYLOAD * 8)), "resolution": lambda cell: float(scale(cell).rstrip("f")),
    "unit": lambda cell: "" if cell == "-" else cell, "dd": optional(DD)}


def read_definitions(tables, data, report):
    return read_table(tables, data, "public_definitions.tsv", COLUMNS, report)


def check_definitions(tables, definitions, found):
    sizes = Sizes(tables)
    public = {}
    for row in definitions:
        public.setdefault((row.pgn, row.source, row.selector), []).append(row)
    for rows in variants(tables).values():
        repeats = repeats_of(tables, rows)
        if repeats:  # what stands behind the group only describes its repetition
            rows = [row for row in rows if row.field <= repeats[1]]
        pgn, selector = rows[0].pgn, rows[0].key1 & 0xFFFF
        for source in SOURCES:
            theirs = public.get((pgn, source, selector)) or public.get((pgn, source, None))
            if theirs:
                compare(sizes, rows, source, theirs, bool(repeats), found)


def compare(sizes, rows, source, theirs, repeats, found):
    """Reserved bits may be cut up differently. A difference shifts what follows, so the first one is told."""
    there = {start: row for start, row in source_starts(theirs) if row.coding != "reserved"}
    for start, place in row_starts(places(sizes, rows)):
        row = place.row
        if row.dd in RESERVED:
            continue
        other = there.pop(start, None)
        if other is None:
            found.add(row.place, "layout", field_name(row), f"no field of {source} starts at {at(start)}")
            return
        if place.bits is not None and other.bits is not None and place.bits != other.bits:
            found.add(row.place, "layout", field_name(row),
                      f"{place.bits} bits, {source} has {other.bits}")
            return
        compare_meaning(sizes, row, source, other, found)
    if there and not repeats:
        start, other = next(iter(there.items()))
        found.add(rows[-1].place, "layout", name_of(rows[0]),
                  f"no field at {at(start)}, field {other.field} of {source}")


def compare_meaning(sizes, row, source, other, found):
    if other.dd is not None and other.dd != row.dd:
        found.add(row.place, "entry", field_name(row), f"{row.dd}, {source} has {other.dd}")
    form = sizes.format_of(row)
    if form.rule[1] == "convert_bit_field" or other.coding == "bits":
        return  # shown as a bare number
    here, there = measure_of_format(form), measure_of_source(other)
    if here.coding and here.coding != there.coding:
        found.add(row.place, "coding", field_name(row), f"{here.coding}, {source} has {there.coding}")
    elif here.unit != there.unit:
        found.add(row.place, "unit", field_name(row), f"'{here.unit}', {source} has '{there.unit}'")
    elif abs(here.resolution - there.resolution) > 1e-5 * here.resolution:
        found.add(row.place, "resolution", field_name(row),
                  f"{here.resolution:g} {here.unit}, {source} has {there.resolution:g}")


# A start is (fields of unknown width before, bits since the last of them).

def source_starts(theirs):
    unknown = bit = 0
    for row in theirs:
        yield (unknown, bit), row
        unknown, bit = (unknown + 1, 0) if row.bits is None else (unknown, bit + row.bits)


def row_starts(found):
    unknown = 0
    for place in found:
        yield (unknown, place.start), place
        unknown += place.bits is None


def at(start):
    unknown, bit = start
    return f"bit {bit}" + (f" behind {unknown} of unknown width" if unknown else "")
