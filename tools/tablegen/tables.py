"""Reading of the tab-separated tables: every cell becomes a typed value or a message."""

import hashlib
import re
from pathlib import Path
from types import SimpleNamespace as Row
from typing import NamedTuple

MAX_PGN = 0x3FFFF  # 18 significant bits
MAX_U32 = 0xFFFFFFFF
FAST_PGNS = range(126208, 131072)  # below no message is a fast packet
PROPRIETARY = ((61184, 61184), (65280, 65535), (126720, 126720), (130816, 131071))
ALWAYS_FAST = tuple(found for found in PROPRIETARY if found[0] in FAST_PGNS)  # catalogued or not
MAX_PAYLOAD = 1785
MAX_LABEL = 127  # characters of a label that the views keep
MAX_NAME = 1023
MAX_KEY = 72  # characters of a field's key
MAX_ENTRY = 120  # characters of an enumeration text, so that it fits one byte with its escapes
NO_SELECTOR = 0x8000
NO_KEY = 0x80008000
DD_RANGES = ((0, 410), (2436, 2549), (10000, 10075))
LAST_INDEXED_FORMAT = 117  # formats up to here are found by index, those above in format_list.tsv
CLASS_COUNT = 65
NO_CLASS = 65
FLAGS = 3  # kind of a set whose entries stand for bits
MEANT_QUANTITIES = ("atmospheric_pressure", "pressure", "time_of_day", "duration", "date", "message_id")
MEANT_FORMATS = ("date", "text_short", "text_medium", "text_fixed", "hex_dump")
UNIT_COUNT = 141
UNITS_PER_CLASS = 7
DECIMAL = r"[0-9]+(?:\.[0-9]+)?(?:e-?[0-9]+)?"
# What a parser may be told to do with a typed number; src/contract/parsers has a function for each name.
PLAIN_PARSER_RULES = ("any", "never", "probe", "whole", "hex")
UNIT_MAPS = ("seconds", "minutes", "kelvin")
UNIT_FACTORS = ("length", "volume", "voltage", "current", "pressure", "speed")
MAX_STEPS = 3


class Report:
    """Collects the messages about broken rows."""

    def __init__(self):
        self.messages = []

    def add(self, place, text):
        self.messages.append(f"{place}: {text}")


class Unit(NamedTuple):
    """Messages name it by its id, generated tables by its number."""
    number: int
    id: str

    def __str__(self):
        return self.id


# Cell parsers: they take the text of a cell and give its value or raise ValueError. Those that read units are made by
# functions of the parser `unit`, which knows the ids of units.tsv.

def number(low, high):
    def parse(cell):
        if not re.fullmatch(r"[0-9]+|0x[0-9A-Fa-f]+", cell) or not low <= int_of(cell) <= high:
            raise ValueError(f"'{cell}' is not a number from {low} to {high}")
        return int_of(cell)
    return parse


def int_of(cell):
    return int(cell, 16 if cell.startswith("0x") else 10)


def text(limit, dash_is_empty=False):
    def parse(cell):
        if dash_is_empty and cell == "-":
            return ""
        if not all(" " <= c <= "~" or "\xa0" <= c <= "\xff" for c in cell):
            raise ValueError(f"'{cell}' has a character outside Latin-1")
        if not 0 < len(cell) <= limit:
            raise ValueError(f"has {len(cell)} characters, 1 to {limit} are allowed")
        return cell
    return parse


def unit_name(cell):
    if not all(" " <= c <= "~" or "\xa0" <= c <= "\uffff" for c in cell):
        raise ValueError(f"'{cell}' has a character that a wide text of 16 bits cannot keep")
    return "" if cell == "-" else cell


def ascii_unit(cell):
    if not re.fullmatch(r"-|%|[A-Za-z0-9_./]+", cell):
        raise ValueError(f"'{cell}' has a character other than letters, digits and _./")
    return "" if cell == "-" else cell


def identifier(cell):
    if not re.fullmatch(r"[A-Za-z][A-Za-z0-9_]*", cell):
        raise ValueError(f"'{cell}' is no name for code")
    return cell


def field_key(cell):
    if not re.fullmatch(r"[a-z0-9]+(_[a-z0-9]+)*", cell) or len(cell) > MAX_KEY:
        raise ValueError(f"'{cell}' is no key in snake case of at most {MAX_KEY} characters")
    return cell


def ascii_text(limit):
    """A text that is the same bytes in every encoding that it leaves in."""
    parse_text = text(limit)

    def parse(cell):
        if not cell.isascii():
            raise ValueError(f"'{cell}' has a character outside ASCII")
        return parse_text(cell)
    return parse


def factor(cell):
    """The C++ literal of a unit's factor."""
    if not re.fullmatch(DECIMAL, cell) or not 0 < float(cell) < 1e38:
        raise ValueError(f"'{cell}' is not a positive decimal number")
    return number_literal(cell) + "f"


def choice(*words):
    def parse(cell):
        if cell not in words:
            raise ValueError(f"'{cell}' is not one of {', '.join(words)}")
        return cell
    return parse


def optional(parse):
    return lambda cell: None if cell == "-" else parse(cell)


def key1(cell):
    return NO_KEY if cell == "-" else number(0, 0xFFFF)(cell) | NO_SELECTOR << 16


def key_pair(cell):
    if cell == "-":
        return NO_KEY
    halves = cell.split(":")
    if len(halves) != 2:
        raise ValueError(f"'{cell}' is neither - nor LOW:HIGH")
    low, high = (NO_SELECTOR if half == "*" else number(0, 0xFFFF)(half) for half in halves)
    return low | high << 16


def size(cell):
    """(bytes, bits); 4b is four bits, 2B two bytes."""
    if cell == "-":
        return 0, 0
    if not re.fullmatch(r"[0-9]+[bB]", cell):
        raise ValueError(f"'{cell}' is neither - nor bits (4b) nor bytes (2B)")
    if cell.endswith("b"):
        return 0, number(1, MAX_PAYLOAD * 8)(cell[:-1])
    return number(1, MAX_PAYLOAD)(cell[:-1]), 0


def stream_key(cell):
    """(position, shift, width); width 0 is the whole byte."""
    if cell == "-":
        return -1, 0, 0
    match = re.fullmatch(r"([0-9]+)(?:\[([0-7]):([1-8])\])?", cell)
    if not match or int(match[1]) >= MAX_PAYLOAD:
        raise ValueError(f"'{cell}' is neither - nor N nor N[SHIFT:WIDTH]")
    shift, width = int(match[2] or 0), int(match[3] or 0)
    if shift + width > 8:
        raise ValueError(f"'{cell}' reaches beyond the byte")
    return int(match[1]), shift, width


def first_stream_key(cell):
    special = {"header": (-3, 0, 0), "label": (-2, 0, 0)}
    return special[cell] if cell in special else stream_key(cell)


def scale(cell):
    """The C++ literal of a scale."""
    return "1.0f" if cell == "-" else factor(cell)


def number_literal(decimal):
    """The C++ literal of a number, in double precision."""
    return decimal if "." in decimal or "e" in decimal else f"{decimal}.0"


def known_unit(rows):
    units = {row.id: Unit(row.unit, row.id) for row in rows if hasattr(row, "unit") and hasattr(row, "id")}

    def parse(cell):
        if cell not in units:
            raise ValueError(f"'{cell}' is no unit")
        return units[cell]
    return parse


def unit_list(unit):
    return lambda cell: [unit(name) for name in cell.split(",")]


def format_rule(unit):
    """(kind of rule, its name or its units)."""
    def parse(cell):
        if cell == "any":
            return "any", None
        if cell == "unit_rule_integer":
            return "integer", cell
        match = re.fullmatch(r"(unit_rule|convert)_[a-z0-9_]+", cell)
        if match:
            return ("scaled" if match[1] == "unit_rule" else "special"), cell
        if re.fullmatch(r"{[^{}]*}", cell):
            return "listed", unit_list(unit)(cell[1:-1])
        raise ValueError(f"'{cell}' is no rule")
    return parse


def steps(most):
    """A chain of at most `most` steps such as *60/360, as (operation, number) pairs."""
    def parse(cell):
        if cell == "-":
            return []
        if not re.fullmatch(rf"([*/-]{DECIMAL})+", cell):
            raise ValueError(f"'{cell}' is no chain of steps such as *60/360")
        chain = re.findall(rf"([*/-])({DECIMAL})", cell)
        if len(chain) > most:
            raise ValueError(f"'{cell}' has {len(chain)} steps, {most} fit")
        return chain
    return parse


def parser_rule(unit):
    """(kind of rule, its details)."""
    def parse(cell):
        if cell in PLAIN_PARSER_RULES:
            return cell, None
        if cell in UNIT_MAPS:
            return "map", cell
        if re.fullmatch(r"parse_[a-z_]+", cell):
            return "special", cell
        match = re.fullmatch(rf"([a-z]+)(?:@({DECIMAL}))?(?:;raw_count=(.*))?", cell)
        if match and match[1] in UNIT_FACTORS:
            return "factor", (match[1], match[2] or "1", unit(match[3] or "raw_count"))
        groups = [re.fullmatch(r"{([^{}]*)}(.*)", group) for group in cell.split(";")]
        if all(groups):
            return "listed", [case for group in groups for case in unit_cases(unit, *group.groups())]
        raise ValueError(f"'{cell}' is no rule")
    return parse


def unit_cases(unit, names, chain):
    """(unit, steps) of each unit of a group such as {deg,deg_mag}*0.5."""
    taken = steps(MAX_STEPS)(chain or "-")
    return [(each, taken) for each in unit_list(unit)(names)]


def parser_range(cell):
    """(kind whose range counts, bounds): one of the two or neither."""
    if cell == "-" or cell in PARSED_KINDS:
        return None if cell == "-" else cell, None
    bounds = re.fullmatch(rf"(-?{DECIMAL})\.\.(-?{DECIMAL})", cell)
    if not bounds or float(bounds[1]) >= float(bounds[2]):
        raise ValueError(f"'{cell}' is neither - nor a kind nor LOW..HIGH")
    return None, bounds.groups()


def offered_units(unit):
    def parse(cell):
        units = [] if cell == "-" else unit_list(unit)(cell)
        if len(units) > UNITS_PER_CLASS:
            raise ValueError(f"names {len(units)} units, {UNITS_PER_CLASS} fit")
        return units
    return parse


PGN = number(0, MAX_PGN)
DD = number(0, 0xFFFF)
DF = number(0, 0xFFFE)  # 65535 ends the lists
FIELD = number(1, 0xFFFF)
CLASS = number(0, CLASS_COUNT - 1)
KINDS = ("u8", "i8", "u16", "i16", "u24", "i24", "u32", "i32", "u64", "i64")
KIND = choice(*KINDS, "f32", "f64")  # a field as sent
PARSED_KINDS = (*KINDS, "u48", "f32")
LABEL = ascii_text(MAX_LABEL)

KEYS = {"key1": key1, "key2": key_pair, "key3": key_pair}
FIELD_COLUMNS = {"pgn": PGN, "field": FIELD, "label": LABEL, "size": size, "dd": DD, **KEYS}
UNIT_COLUMNS = {"unit": number(0, UNIT_COUNT - 1), "id": identifier, "name": unit_name, "ascii": ascii_unit,
                "meaning": str}
COLUMNS = {
    "pgns": {"pgn": PGN, "name": ascii_text(MAX_NAME), **KEYS, "priority": number(0, 7),
             "frames": choice("single", "multi"), "packet": choice("single", "fast", "transport"),
             "listed": choice("yes", "no")},
    "keys": {"pgn": PGN, "variant": str, "field": number(0, 0xFFFF), "key": field_key},
    "stream_keys": {"pgn": PGN, "key1": first_stream_key, "key2": stream_key,
                    "key3": stream_key, "key4": stream_key},
    "dictionary": {"dd": DD, "name": text(MAX_NAME, dash_is_empty=True), "df": DF, "size": size},
    "disp_data_types": {"dd": DD, "class": CLASS},
    "repeat_sets": {"pgn": PGN, "selector": number(0, 0xFFFF), "first": FIELD, "last": FIELD},
    "format_list": {"df": DF},
    "self_described": {"df": DF},
    "format_classes": {"df": DF, "class": CLASS},
    "quantities": {"label": text(MAX_LABEL), "class": CLASS},
    "ids": {"kind": choice("pgn", "dd", "df"), "number": number(0, MAX_PGN), "id": identifier},
    "pgn_rules": {"pgn": PGN, "name": optional(ascii_text(MAX_NAME)),
                  "walk": optional(choice("group_function", "proprietary")), "size": size,
                  "pressure": optional(choice("air", "air-source-0"))},
    "special_fields": {"pgn": optional(PGN), "field": optional(FIELD), "dd": DD,
                       "label": optional(LABEL),
                       "form": optional(choice("pgn_name", "database_version")),
                       "quantity": optional(choice("format_inside", "format_before")),
                       "none": optional(choice("all_bits")),
                       "shown": optional(choice("all", "own"))},
}


def columns_with_units(unit):
    return {
        "formats": {"df": DF, "kind": optional(KIND), "scale": scale, "rule": format_rule(unit),
                    "catalogued": choice("yes", "no")},
        "parsers": {"df": DF, "kind": optional(choice(*PARSED_KINDS)), "rule": parser_rule(unit),
                    "then": steps(MAX_STEPS), "range": parser_range,
                    "offset": optional(number(1, MAX_U32))},
        "unit_formats": {"unit": unit, "df": DF},
        "unit_factors": {"rule": identifier, "unit": unit, "factor": factor},
        "availability": {"class": CLASS, "id": identifier, "units": offered_units(unit), "si": optional(unit),
                         "quantity": str},
    }


def is_addressed(pgn):
    """Whether its messages have a destination, as the flag of the catalogue says."""
    return (pgn >> 8) & 0xFF < 240 or 130816 <= pgn <= 131071


def is_proprietary(pgn):
    return any(first <= pgn <= last for first, last in PROPRIETARY)


def conversion_owner(row, formats):
    """The row of the format whose conversion the format of `row` has: another's by convert_df_N, or its own."""
    kind, name = row.rule
    shares = kind == "special" and name.startswith("convert_df_")
    return conversion_owner(formats[int(name.removeprefix("convert_df_"))], formats) if shares else row


def read_tables(data, report):
    """All tables under the folder `data`; rows carry the place they stand at."""
    tables = Row(summary=[])
    tables.units = read_table(tables, data, "units.tsv", UNIT_COLUMNS, report)
    for name, columns in (COLUMNS | columns_with_units(known_unit(tables.units))).items():
        setattr(tables, name, read_table(tables, data, f"{name}.tsv", columns, report))
    tables.fields = [
        row for path in sorted((data / "fields").glob("*.tsv"))
        for row in read_table(tables, data, f"fields/{path.name}", FIELD_COLUMNS, report)]
    tables.sets = [
        found for path in sorted((data / "enums").glob("*.tsv"))
        for found in read_sets(tables, data, f"enums/{path.name}", report)]
    tables.class_of = numbers_by_id(tables.availability, "class")
    tables.df_of = numbers_by_id([row for row in tables.ids if getattr(row, "kind", "") == "df"], "number")
    return tables


def numbers_by_id(rows, column):
    """Of the rows that could be read."""
    return {row.id: getattr(row, column) for row in rows if hasattr(row, "id") and hasattr(row, column)}


def read_table(tables, data, name, columns, report):
    lines = read_lines(data, name, report)
    if not lines:
        report.add(data / name, "no header")
        return []
    (place, header), *rest = lines
    summarise(tables, name, len(rest), lines)
    if header != list(columns):
        report.add(place, f"columns are '{' '.join(header)}', not '{' '.join(columns)}'")
        return []
    if not rest:
        report.add(place, "no rows")
    return [read_row(columns, cells, place, report) for place, cells in rest]


def read_row(columns, cells, place, report):
    row = Row(place=place)
    if len(cells) != len(columns):
        report.add(place, f"has {len(cells)} cells, not {len(columns)}")
        return row
    for (column, parse), cell in zip(columns.items(), cells):
        try:
            setattr(row, column, parse(cell))
        except ValueError as error:
            report.add(place, f"{column} {error}")
    return row


def read_sets(tables, data, name, report):
    """Sets of texts: a line `set DD KIND NAME [stored_order]`, then `VALUE TEXT [guess]` lines."""
    sets = []
    lines = read_lines(data, name, report)
    set_columns = {"set": str, "dd": DD, "kind": number(0, 5), "name": text(MAX_NAME, True)}
    entry_columns = {"value": number(0, MAX_U32), "text": ascii_text(MAX_ENTRY)}
    for place, cells in lines:
        if cells[0] == "set":
            stored_order = cells[4:] == ["stored_order"]
            sets.append(read_row(set_columns, cells[:4] if stored_order else cells, place, report))
            sets[-1].stored_order = stored_order
            sets[-1].entries = []
        elif not sets:
            report.add(place, "entry before the first set")
        else:
            guess = len(cells) == 3 and cells[2] == "guess"
            sets[-1].entries.append(read_row(entry_columns, cells[:-1] if guess else cells, place, report))
            sets[-1].entries[-1].guess = guess
    summarise(tables, name, sum(len(found.entries) for found in sets), lines)
    return sets


def read_lines(data, name, report):
    """(place, cells) of every line that is neither empty nor a comment."""
    path = Path(data) / name
    try:
        content = path.read_bytes().decode("utf-8")
    except (OSError, UnicodeDecodeError) as error:
        report.add(path, f"cannot be read: {error}")
        return []
    return [(f"{path}:{number}", line.split("\t"))
            for number, line in enumerate(content.split("\n"), 1)
            if line and not line.startswith("#")]


def summarise(tables, name, rows, lines):
    content = "\n".join("\t".join(cells) for _, cells in lines)
    digest = hashlib.sha256(content.encode("utf-8")).hexdigest()[:12]
    tables.summary.append(f"{name} {rows} {digest}")
