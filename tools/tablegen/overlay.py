"""Reading of data/corrections/: rows that add to, replace and remove rows of the base tables. All of it may be missing.

read_overlay() turns cells into typed values, check_overlay() holds the rows against each other and against the base."""

import re
from types import SimpleNamespace as Row

from checks import MAX_FLAGS, MAX_FORM, check_ascending, check_packets, file_of
from keys import key_of_label
from plans import label_forms, pgn_forms
from tables import (COLUMNS, DD, DECIMAL, FIELD, FLAGS, MAX_ENTRY, MAX_LABEL, MAX_NAME, MAX_PAYLOAD, MAX_U32, NO_KEY,
                    PGN, ascii_text, choice, field_key, int_of, is_proprietary, number, optional, read_lines, read_row,
                    read_table, size, summarise)

FOLDER = "corrections"
HEADER = (0, 11), (13, 3)  # start and width of manufacturer code and industry group
WITHOUT_HEADER = (65350,)  # one maker's message, known by what it has at its end
MAX_REASON = 500
MOST_BITS = 64  # of a field that is read as one number
UNITS = frozenset(("% 1 1/s A Ah C Hz K L L/h N Nm Pa Pa/h T V VA VAR W cos(phi) d dB deg deg/s kWh kg km/h m m/m m/s"
                   " m/s2 ohm ppm ppt rad rad/s rpm s s/s semi-circle semi-circle/s sqrt(m) t").split())
NO_QUANTITY = "no_quantity"  # behind a unit: shown in this unit, no other is offered

NUMBERS = ("u", "i", "float", "duration")  # these have arithmetic
SIZES = {"float": (32, 64), "date": (16,), "time": (32,), "mmsi": (32,), "name": (64,)}
ONE_NUMBER = ("u", "i", "code", "flags", "duration", "pgn", "field_index", "key", "key_length")
BY_MESSAGE = ("text_lau", "field_value", "key_value")  # the message tells the size, never the table
OPEN = (*BY_MESSAGE, "text_lz", "bytes", "reserved", "spare")  # these may go without a size
CODINGS = (*ONE_NUMBER, *SIZES, *OPEN, "text", "decimal")
KEY_CODINGS = tuple(coding for coding in CODINGS if not coding.startswith(("key", "field_")))
SET_KINDS = {"values": ("code", "u", "i", "duration"), "flags": ("flags",), "fieldtypes": ("key",)}  # what shows a set
OPTION_CODINGS = {
    **dict.fromkeys(("none", "error"), ("u", "i", "code", "duration", "date", "time", "mmsi", "decimal", "pgn", "key",
                                        "field_index")),
    **dict.fromkeys(("reference", "true", "relative"), ("u", "i", "float")),
    "ais": ("text_lau",), "bits_from": ("bytes",), "bytes_from": ("bytes", "text", "key_value", "field_value"),
    "key": CODINGS}


# Cell parsers, as in tables.py.

def pattern(expression, what):
    def parse(cell):
        if not re.fullmatch(expression, cell):
            raise ValueError(f"'{cell}' is no {what}")
        return cell
    return parse


def words(limit):
    """A text that says something: a dash does not stand for itself here."""
    parse_text = ascii_text(limit)

    def parse(cell):
        if cell == "-":
            raise ValueError("is missing")
        return parse_text(cell)
    return parse


def listed(parse):
    """The items of a cell that parts them by semicolons; none for a dash."""
    return lambda cell: [] if cell == "-" else [parse(item) for item in cell.split(";")]


def condition(cell):
    """(first bit, width, value)."""
    parts = re.fullmatch(r"([0-9]+):([0-9]+)=(0x[0-9A-Fa-f]+|[0-9]+)", cell)
    if not parts:
        raise ValueError(f"'{cell}' is not BIT:WIDTH=VALUE")
    bit, width, value = int(parts[1]), int(parts[2]), int_of(parts[3])
    if not 0 < width <= MOST_BITS or bit + width > MAX_PAYLOAD * 8 or value >= 1 << width:
        raise ValueError(f"'{cell}' does not fit a payload")
    return bit, width, value


def conditions(cell):
    found = listed(condition)(cell)
    for before, after in zip(found, found[1:]):
        if after[0] < before[0] + before[1]:
            raise ValueError(f"bit {after[0]} stands behind bit {before[0] + before[1] - 1}")
    return found


def length(cell):
    """(least, most) bytes."""
    parts = re.fullmatch(r"([0-9]*)(\.\.)?([0-9]*)", cell)
    if not parts or bool(parts[1]) == bool(parts[3]):
        raise ValueError(f"'{cell}' is neither - nor N nor N.. nor ..N")
    least, most = int(parts[1] or 0), int(parts[3] or (MAX_PAYLOAD if parts[2] else parts[1]))
    if not least <= most <= MAX_PAYLOAD:
        raise ValueError(f"'{cell}' is longer than a message")
    return least, most


def group(cell):
    """(first, last, field that counts the repetitions or None)."""
    parts = re.fullmatch(r"([0-9]+)\.\.([0-9]+)(?:\*([0-9]+))?", cell)
    if not parts:
        raise ValueError(f"'{cell}' is neither FIRST..LAST nor FIRST..LAST*COUNT")
    return FIELD(parts[1]), FIELD(parts[2]), FIELD(parts[3]) if parts[3] else None


def bits(cell):
    """None where the message tells."""
    whole, part = size(cell)
    return whole * 8 + part or None


def unit(cell):
    """(unit, quantity)."""
    name, colon, quantity = cell.partition(":")
    if name not in UNITS:
        raise ValueError(f"'{name}' is no unit")
    if colon and not quantity:
        raise ValueError("has no quantity behind the colon")
    return name, quantity or None


def texts(cell):
    """(dictionary number or name of a set, field that the set depends on)."""
    parts = re.fullmatch(r"(?:dd ([0-9]+)|([a-z][a-z0-9_]*))(?: by ([1-9][0-9]*))?", cell)
    if not parts:
        raise ValueError(f"'{cell}' is neither - nor dd NUMBER nor SET, with or without 'by FIELD'")
    return DD(parts[1]) if parts[1] else parts[2], int(parts[3]) if parts[3] else None


def option(cell):
    name, equals, value = cell.partition("=")
    parsers = {"none": optional(number(0, (1 << MOST_BITS) - 1)), "error": number(0, (1 << MOST_BITS) - 1),
               "reference": FIELD, "relative": code_range, "bits_from": FIELD, "bytes_from": source_of_bytes}
    if name in parsers and equals:
        return name, parsers[name](value)
    if cell in ("true", "ais", "key"):
        return cell, True
    raise ValueError(f"'{cell}' is no option")


def options(cell):
    found = listed(option)(cell)
    if len(dict(found)) < len(found):
        raise ValueError("names an option twice")
    return dict(found)


def code_range(cell):
    first, _, last = cell.partition("..")
    return number(0, 255)(first), number(int_of(first), 255)(last)


def source_of_bytes(cell):
    """(field, bytes that it counts beside the value)."""
    field, minus, less = cell.partition("-")
    return FIELD(field), number(1, 255)(less) if minus else 0


VARIANT = pattern(r"[a-z0-9][a-z0-9_]*", "name of a variant")
SET_NAME = pattern(r"[a-z][a-z0-9_]*", "name of a set")
FIELD_NUMBERS = pattern(r"[0-9]+(?:-[0-9]+)?(?:,[0-9]+(?:-[0-9]+)?)*", "number of a field or of several")
SOURCE = pattern(r"[a-z][ -~]*", "source")
REASON = words(MAX_REASON)
LABEL = words(MAX_LABEL)
ENTRY = words(MAX_ENTRY)
READING_COLUMNS = {"size": bits, "coding": choice(*CODINGS), "resolution": optional(pattern(DECIMAL, "number")),
                   "offset": optional(pattern("-?[0-9]+", "whole number")), "unit": optional(unit),
                   "texts": optional(texts), "options": options}
FIELD_COLUMNS = {"pgn": PGN, "variant": VARIANT, "field": FIELD, "label": LABEL, **READING_COLUMNS}
MESSAGE_CELLS = {"name": words(MAX_NAME), "packet": COLUMNS["pgns"]["packet"],
                 "priority": COLUMNS["pgns"]["priority"], "groups": listed(group)}
OVERLAY_COLUMNS = {
    "messages": {"pgn": PGN, "variant": VARIANT, "name": MESSAGE_CELLS["name"], "match": conditions,
                 "length": optional(length), "packet": MESSAGE_CELLS["packet"], "priority": MESSAGE_CELLS["priority"],
                 "groups": MESSAGE_CELLS["groups"], "source": SOURCE},
    "changes": {"pgn": PGN, "variant": optional(number(0, 0xFFFF)), "field": optional(FIELD),
                "column": choice(*MESSAGE_CELLS, "label", *READING_COLUMNS, "remove"), "value": str, "reason": REASON},
    "set_changes": {"dd": DD, "value": number(0, MAX_U32), "text": optional(ENTRY), "source": SOURCE,
                    "reason": REASON},
    "dd_texts": {"dd": DD, "texts": texts, "reason": REASON},
    "left_out": {"pgn": optional(PGN), "field": optional(FIELD_NUMBERS), "what": REASON, "reason": REASON},
    "analyzer_names": {"pgn": optional(PGN), "variant": str, "name": ascii_text(MAX_LABEL), "key": optional(field_key)},
    "analyzer_texts": {"set": str, "value": number(0, MAX_U32), "text": ENTRY},
}
FILE_NAMES = {name: f"{name}.tsv" for name in OVERLAY_COLUMNS} | {
    name: f"{name.replace('_', '-')}.tsv" for name in ("left_out", "analyzer_names", "analyzer_texts")}
SET_COLUMNS = {"set": str, "name": SET_NAME, "kind": choice(*SET_KINDS)}
ENTRY_COLUMNS = {"value": number(0, MAX_U32), "text": ENTRY, "source": SOURCE}
KEY_COLUMNS = {"value": number(0, MAX_U32), "text": ENTRY, "coding": choice(*KEY_CODINGS),
               **{name: READING_COLUMNS[name] for name in ("size", "resolution", "unit", "texts")}, "source": SOURCE}


def read_overlay(tables, data, report):
    """All rows of the corrections; they add their lines to the summary of the tables."""
    overlay = Row()
    for name, columns in OVERLAY_COLUMNS.items():
        path = f"{FOLDER}/{FILE_NAMES[name]}"
        present = (data / path).exists()
        setattr(overlay, name, read_table(tables, data, path, columns, report) if present else [])
    overlay.fields = [row for path in sorted((data / FOLDER / "fields").glob("*.tsv"))
                      for row in read_table(tables, data, f"{FOLDER}/fields/{path.name}", FIELD_COLUMNS, report)]
    overlay.sets = [found for path in sorted((data / FOLDER / "texts").glob("*.tsv"))
                    for found in read_named_sets(tables, data, f"{FOLDER}/texts/{path.name}", report)]
    for path in sorted((data / FOLDER).glob("*.tsv")):
        if path.name not in FILE_NAMES.values():
            report.add(path, "is no table of the corrections")
    for row in overlay.changes:
        read_changed_cell(row, report)
    return overlay


def read_named_sets(tables, data, name, report):
    """Sets of texts: a line `set NAME KIND`, then an entry a line."""
    sets = []
    lines = read_lines(data, name, report)
    for place, cells in lines:
        if cells[0] == "set":
            sets.append(read_row(SET_COLUMNS, cells, place, report))
            sets[-1].entries = []
        elif not sets:
            report.add(place, "entry before the first set")
        else:
            columns = KEY_COLUMNS if getattr(sets[-1], "kind", None) == "fieldtypes" else ENTRY_COLUMNS
            sets[-1].entries.append(read_row(columns, cells, place, report))
    summarise(tables, name, sum(len(found.entries) for found in sets), lines)
    return sets


def read_changed_cell(row, report):
    """The value of a change is a cell of the column that it changes."""
    if not hasattr(row, "column") or not hasattr(row, "value"):
        return
    parsers = {**MESSAGE_CELLS, "label": LABEL, **READING_COLUMNS, "remove": choice("-")}
    try:
        row.value = parsers[row.column](row.value)
    except ValueError as error:
        report.add(row.place, f"value {error}")


def check_overlay(tables, overlay, report):
    known = Row(sets={found.name: found for found in overlay.sets}, enums={found.dd: found for found in tables.sets},
                quantities={row.id for row in tables.availability} | {NO_QUANTITY})
    check_named_sets(overlay, known, report)
    check_messages(overlay, report)
    check_variants(overlay, known, report)
    check_changes(tables, overlay, known, report)
    check_set_changes(tables, overlay, known, report)
    check_use_of_sets(overlay, report)
    pgns = {row.pgn for row in (*tables.pgns, *overlay.messages)}
    for row in overlay.left_out:
        if row.pgn is not None and row.pgn not in pgns:
            report.add(row.place, f"unknown pgn {row.pgn}")


# ---- messages and their fields ----

def check_messages(overlay, report):
    check_ascending(overlay.messages, "pgn", report, strict=False)
    check_packets(overlay.messages, report)
    variants = {}
    for row in overlay.messages:
        before = variants.setdefault(row.pgn, [])
        check_form(row, "name", pgn_forms(row.pgn, row.name), report)
        if row.variant in (other.variant for other in before):
            report.add(row.place, f"variant {row.variant} of pgn {row.pgn} stands twice")
        if is_proprietary(row.pgn) and row.pgn not in WITHOUT_HEADER and tuple(part[:2] for part in row.match[:2]) != HEADER:
            report.add(row.place, "match does not begin with manufacturer code and industry group")
        hiding = next((other for other in before if hides(other, row)), None)
        if hiding:
            report.add(row.place, f"is never reached: {hiding.variant} takes its messages")
        before.append(row)


def hides(before, row):
    """Every message of the row is one of the row before."""
    least, most = before.length or (0, MAX_PAYLOAD)
    own_least, own_most = row.length or (0, MAX_PAYLOAD)
    return set(before.match) <= set(row.match) and least <= own_least and own_most <= most


def check_form(row, column, forms, report):
    longest = max(len(form.encode()) for form in forms)
    if longest > MAX_FORM:
        report.add(row.place, f"{column} has a form of {longest} bytes, {MAX_FORM} fit")


def check_variants(overlay, known, report):
    fields = {}
    for before, row in zip([None, *overlay.fields], overlay.fields):
        key = row.pgn, row.variant
        follows = before and (before.pgn, before.variant, file_of(before)) == (*key, file_of(row))
        if key in fields and not follows:
            report.add(row.place, f"variant {row.variant} of pgn {row.pgn} has rows before, too")
        rows = fields.setdefault(key, [])
        if row.field != len(rows) + 1:
            report.add(row.place, f"field {row.field} where {len(rows) + 1} is due")
        rows.append(row)
        check_form(row, "label", label_forms(row.field, key_of_label(row.label, False), row.label, False), report)
    messages = {(row.pgn, row.variant): row for row in overlay.messages}
    for key, rows in fields.items():
        if key not in messages:
            report.add(rows[0].place, f"no variant {key[1]} of pgn {key[0]} in messages.tsv")
        for row in rows:
            check_reading(row, known, report)
            check_links(row, rows, report)
    for key, message in messages.items():
        if key not in fields:
            report.add(message.place, f"variant {key[1]} of pgn {key[0]} has no fields")
        else:
            check_layout(message, fields[key], report)


def check_layout(message, rows, report):
    """Fields follow each other without a gap, so that sizes alone say where each of them starts."""
    starts, start = [], 0  # None behind a field whose size the message tells
    odd = 0  # bits beyond a whole byte
    for row in rows:
        if start is not None:
            starts.append((start, row.size))
        if row.size is None and odd:
            report.add(row.place, f"a field without a size begins {odd} bits into a byte")
        odd = 0 if row.size is None else (odd + row.size) % 8
        start = None if start is None or row.size is None else start + row.size
    if odd and not shares_bytes(rows, message.groups):
        report.add(rows[-1].place, f"the message ends {odd} bits into a byte")
    for bit, width, _ in message.match:
        if not any(first <= bit and bit + width <= first + (size or 0) for first, size in starts):
            report.add(message.place, f"no field has the {width} bits from bit {bit}")
    least, most = message.length or (0, MAX_PAYLOAD)
    if least == most and start is not None and not message.groups and start != least * 8:
        report.add(message.place, f"fields have {start} bits, the message {least * 8}")
    check_groups(message, rows, report)


def check_groups(message, rows, report):
    behind = 0
    for first, last, count in message.groups:
        if not behind < first <= last <= len(rows):
            report.add(message.place, f"no group of fields {first} to {last} behind field {behind}")
            return
        behind = last
        counter = rows[count - 1] if count and count < first else None
        if count and (counter is None or counter.coding != "u"):
            report.add(message.place, f"field {count} is no number in front of the group")
        if count is None and last != len(rows):
            report.add(message.place, f"fields behind {last} are never reached")
        if sum(row.size or 0 for row in rows[first - 1:last]) % 8 and not shares_bytes(rows, message.groups):
            report.add(message.place, f"a repetition of fields {first} to {last} ends inside a byte")


def shares_bytes(rows, groups):
    """A single field at the end whose repetitions fill bytes together: what is left of the last byte is padding."""
    return bool(groups) and groups[-1][:2] == (len(rows), len(rows)) and 8 % (rows[-1].size or 8) == 0


def check_reading(row, known, report):
    """One field, or the value of one key, by itself."""
    coding, width = row.coding, row.size
    if width is None and coding not in OPEN:
        report.add(row.place, f"{coding} needs a size")
    elif width is not None and coding in BY_MESSAGE:
        report.add(row.place, f"{coding} has no size of its own")
    elif width and (width not in SIZES.get(coding, (width,)) or coding in ONE_NUMBER and width > MOST_BITS
                    or coding in ("text", "text_lz", "decimal") and width % 8):
        report.add(row.place, f"{coding} cannot have {width} bits")
    if coding not in NUMBERS and (row.resolution or getattr(row, "offset", None) or row.unit):
        report.add(row.place, f"resolution, offset and unit have no effect with {coding}")
    if coding == "duration" and (row.unit is None or row.unit[0] != "s"):
        report.add(row.place, "duration is in s")
    if coding in ("flags", "key") and row.texts is None:
        report.add(row.place, f"{coding} without texts")
    check_unit(row.place, row.unit, known, report)
    check_texts(row.place, row.texts, coding, known, report)
    check_options(row, getattr(row, "options", {}), report)


def check_options(row, given, report):
    for name, value in given.items():
        if row.coding not in OPTION_CODINGS[name]:
            report.add(row.place, f"{name} has no effect with {row.coding}")
        elif name in ("none", "error") and value is not None and row.size and value >> row.size:
            report.add(row.place, f"{name}={value} does not fit {row.size} bits")
    if "relative" in given and "reference" not in given:
        report.add(row.place, "relative without reference")
    if "true" in given and "reference" in given:
        report.add(row.place, "true and reference exclude each other")
    if row.size is not None and ("bits_from" in given or "bytes_from" in given):
        report.add(row.place, "has a size and a field that tells it")


def check_unit(place, found, known, report):
    if found and found[1] and found[1] not in known.quantities:
        report.add(place, f"unknown quantity {found[1]}")


def check_texts(place, found, coding, known, report):
    """coding None: what shows the set is not known here."""
    if found is None:
        return
    name = found[0]
    chosen = (known.enums if isinstance(name, int) else known.sets).get(name)
    if chosen is None:
        report.add(place, f"unknown set {'dd ' if isinstance(name, int) else ''}{name}")
    elif coding is not None:
        kind = chosen.kind if isinstance(name, str) else "flags" if chosen.kind == FLAGS else "values"
        if coding not in SET_KINDS[kind]:
            report.add(place, f"a set of {kind} has no effect with {coding}")


def links(found_texts, found_options):
    """(what, field) of each field that a field names."""
    named = [("texts", found_texts[1])] if found_texts and found_texts[1] else []
    named += [(name, found_options[name]) for name in ("reference", "bits_from") if name in found_options]
    return named + ([("bytes_from", found_options["bytes_from"][0])] if "bytes_from" in found_options else [])


def check_links(row, rows, report):
    for what, field in links(row.texts, row.options):
        sizing = what in ("bits_from", "bytes_from")
        linked = rows[field - 1] if field <= len(rows) and field != row.field else None
        if linked is None or sizing and field > row.field:
            report.add(row.place, f"{what} names field {field}, which is none{' in front of it' if sizing else ''}")
        elif linked.coding not in (("u", "key_length") if sizing else ("u", "code")):
            report.add(row.place, f"{what} names field {field}, a {linked.coding}")
    before = {other.coding for other in rows[:row.field - 1]}
    for coding, needed in (("field_value", "field_index"), ("key_value", "key")):
        if row.coding == coding and needed not in before:
            report.add(row.place, f"no {needed} in front of it")
    if row.coding == "key_length" and "key_value" not in (other.coding for other in rows[row.field:]):
        report.add(row.place, "no key_value behind it")


# ---- sets ----

def check_named_sets(overlay, known, report):
    seen = set()
    for found in overlay.sets:
        if found.name in seen:
            report.add(found.place, f"set {found.name} stands twice")
        seen.add(found.name)
        if not found.entries:
            report.add(found.place, f"set {found.name} has no entries")
        check_ascending(found.entries, "value", report, strict=True)
        for entry in found.entries:
            if found.kind == "fieldtypes":
                check_reading(entry, known, report)
            elif found.kind == "flags" and entry.value >= MOST_BITS:
                report.add(entry.place, f"no field has a bit {entry.value}")
        if found.kind == "flags" and sum(len(entry.text) + 2 for entry in found.entries) > MAX_FLAGS:
            report.add(found.place, f"the texts of all bits have more than {MAX_FLAGS} characters")


def check_use_of_sets(overlay, report):
    cells = [row.texts for row in (*overlay.fields, *overlay.dd_texts)]
    cells += [row.value for row in overlay.changes if row.column == "texts"]
    cells += [entry.texts for found in overlay.sets if found.kind == "fieldtypes" for entry in found.entries]
    used = {cell[0] for cell in cells if cell}
    for found in overlay.sets:
        if found.name not in used:
            report.add(found.place, f"no field shows the set {found.name}")


def check_set_changes(tables, overlay, known, report):
    check_keys(overlay.set_changes, ("dd", "value"), report)
    check_reasons(overlay.set_changes, ("dd",), "set", report)
    check_keys(overlay.dd_texts, ("dd",), report)
    for row in overlay.set_changes:
        found = known.enums.get(row.dd)
        if found is None:
            report.add(row.place, f"unknown set dd {row.dd}")
        elif row.text is None and row.value not in (entry.value for entry in found.entries):
            report.add(row.place, f"dd {row.dd} has no entry {row.value} to remove")
    dictionary = {row.dd for row in tables.dictionary}
    for row in overlay.dd_texts:
        if row.dd not in dictionary:
            report.add(row.place, f"unknown dd {row.dd}")
        if row.texts[1]:
            report.add(row.place, "a set by another field needs a message")
        check_texts(row.place, row.texts, None, known, report)


def check_keys(rows, columns, report):
    seen = set()
    for row in rows:
        key = tuple(getattr(row, column) for column in columns)
        if key in seen:
            names = " ".join(f"{column} {'-' if part is None else part}" for column, part in zip(columns, key))
            report.add(row.place, f"{names} stands twice")
        seen.add(key)


# ---- changes of base rows ----

def check_changes(tables, overlay, known, report):
    check_keys(overlay.changes, ("pgn", "variant", "field", "column"), report)
    check_reasons(overlay.changes, ("pgn", "variant", "field"), "field", report)
    fields = {}
    for row in tables.fields:
        fields.setdefault((row.pgn, base_variant(row)), set()).add(row.field)
    variants = {(row.pgn, base_variant(row)) for row in tables.pgns} | set(fields)
    # Of a PGN with messages of its own, the base keeps what it has keys for, unless a message has the name of the key.
    replaced = {(row.pgn, row.variant) for row in overlay.messages} | {(row.pgn, "None") for row in overlay.messages}
    for row in overlay.changes:
        key = row.pgn, row.variant
        name = f"variant {'-' if row.variant is None else row.variant} of pgn {row.pgn}"
        if (row.pgn, str(row.variant)) in replaced:
            report.add(row.place, f"{name} is replaced in messages.tsv")
        elif row.field is None and key not in variants:
            report.add(row.place, f"no {name}")
        elif row.field is not None and row.field not in fields.get(key, set()):
            report.add(row.place, f"{name} has no field {row.field}")
        elif (row.column in MESSAGE_CELLS) != (row.field is None):
            report.add(row.place, f"{row.column} is no column of a {'message' if row.field is None else 'field'}")
        else:
            check_changed_value(row, fields.get(key, set()), known, report)


def base_variant(row):
    return None if row.key1 == NO_KEY else row.key1 & 0xFFFF


def check_reasons(rows, columns, what, report):
    for before, row in zip([None, *rows], rows):
        same = before and all(getattr(before, column) == getattr(row, column) for column in columns)
        if row.reason == '"' and not same:
            report.add(row.place, f"the row before is of another {what}, so it has no reason for this one")


def check_changed_value(row, fields, known, report):
    named = []
    if row.column == "groups":
        named = [("groups", field) for group_fields in row.value for field in group_fields if field is not None]
    elif row.column == "unit":
        check_unit(row.place, row.value, known, report)
    elif row.column == "texts":
        check_texts(row.place, row.value, None, known, report)
        named = links(row.value, {})
    elif row.column == "options":
        named = links(None, row.value)
    for what, field in named:
        if field not in fields:
            report.add(row.place, f"{what} names field {field}, which is none")
