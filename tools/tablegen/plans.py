"""What reading and printing need of each row and what never changes: sizes, the row that comes next, how the value is
shown, and every text in the forms in which it leaves. Printing then copies; it looks nothing up and escapes nothing.

The forms of a text lie in one pool. A form is named by its offset there, so that the tables hold no pointers."""

from types import SimpleNamespace as Row

from keys import base_keys, variant_name
from tables import CLASS_COUNT, FLAGS, NO_CLASS, UNIT_COUNT, conversion_owner

END_ROW = 0xFFFF
NO_SET = 0xFFFF
NO_ENTRY = 0xFFFF
CLOSING_PGN = 25
DYNAMIC_QUANTITIES = {"air-source-0": CLASS_COUNT + 1, "format_inside": CLASS_COUNT + 2,
                      "format_before": CLASS_COUNT + 3}
FORMED_QUANTITIES = ("time_of_day", "duration", "date", "message_id")  # these have forms of their own in lines
FORMED_FOR_PROGRAMS = ("time_of_day", "date")
# Conversions that do not say how many bytes they take.
SIZED_BY_FIELD = {f"convert_{name}" for name in (
    "bit_field", "ais_spare", "low_4_bits", "low_2_bits", "low_6_bits", "package_type", "can_frame_id",
    "can_frame_data")}
# Rules of readings of their own: the units in which they are read in line.
QUICK_RULES = {"integer": ("plain_64", "plain_65", "raw_count"),
               "latitude_32": ("deg_lat",), "longitude_32": ("deg_long",)}
TEXT_FORMATS = ("text_short", "text_medium", "text_fixed", "hex_dump")
COUNTED_SECONDS = ("convert_run_time", "convert_period_minutes")
# Bits that are taken as they are, so that no code of theirs is none by its format.
BIT_FIELDS = ("convert_bit_field", "convert_low_2_bits", "convert_low_4_bits", "convert_low_6_bits")
NONE_TEXTS = [text.split() for text in ("null", "not available", "data not available", "unavailable unknown")]
FIRST = "First"
FIRST_WORD = len("First ")
POOL_SLACK = 64  # bytes behind the last text, as texts are copied in blocks
MOST_INDEXED = 4096  # values of a set that are found by index


class Pool:
    """Texts one after the other, each of them once."""

    def __init__(self):
        self.pieces, self.offsets, self.size = [], {}, 0

    def add(self, text):
        data = text.encode("utf-8")
        if data not in self.offsets:
            self.offsets[data] = self.size
            self.pieces.append(data)
            self.size += len(data)
        return self.offsets[data]

    def lines(self):
        return [text_literal(piece) for piece in self.pieces] + [f'"{"x" * POOL_SLACK}"']


def text_literal(data):
    """A literal of these bytes; octal escapes have three digits, so no digit can join them."""
    return '"' + "".join(escaped(chr(b)) if 0x20 <= b < 0x7F else f"\\{b:03o}" for b in data) + '"'


def escaped(c):
    return "\\" + c if c in '"\\?' else c


def json_text(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def is_quoted_in_csv(text):
    return any(c in text for c in '",\r\n')


def csv_cell(text):
    if text.startswith(tuple("=+-@'")):  # a spreadsheet's formula (src/core/csv.cpp)
        text = "'" + text
    return '"' + text.replace('"', '""') + '"' if is_quoted_in_csv(text) else text


def find_by_binary_search(pgns, sought):
    """Index of the row that the search meets first, or None. Which one it is decides names and groups."""
    low, high = 0, len(pgns) - 1
    while low <= high:
        middle = (low + high) // 2
        if pgns[middle] == sought:
            return middle
        if pgns[middle] > sought:
            high = middle - 1
        else:
            low = middle + 1
    return None


def make_plans(tables):
    plans = Row(pool=Pool())
    plans.fields = sorted(tables.fields, key=lambda row: row.pgn)  # stable: order within a PGN stays
    plans.sets = sorted((s for s in tables.sets if not s.stored_order), key=lambda found: found.dd)
    plans.sets += [s for s in tables.sets if s.stored_order]
    plan_units(tables, plans)
    plan_sets(plans)
    plan_rules(tables, plans)
    plan_fields(tables, plans)
    plan_pgns(tables, plans)
    return plans


# ---- units and formats ----

def plan_units(tables, plans):
    pool = plans.pool
    plans.unit_lines = []
    for row in tables.units:
        line, json, csv = unit_forms(row.name, row.ascii)
        # The line's end stands behind the text: whoever copies blocks gets it for nothing.
        plans.unit_lines.append(f"{{{pool.add(line + chr(10))}, {pool.add(json)}, {pool.add(csv)}, "
                                f"{sizes(line, json, csv)}}},")


def unit_forms(name, ascii_name):
    json = f',"unit":{json_text(ascii_name) if ascii_name else "null"},"text":'
    return f" {name}", json, f",{csv_cell(ascii_name)},"


def sizes(*forms):
    return ", ".join(str(len(form.encode())) for form in forms)


def plan_rules(tables, plans):
    """The unit rules as rows of factors; lists of units and 'any' are rules whose factors are 1."""
    rules = {}
    for row in tables.unit_factors:
        rules.setdefault(row.rule, {})[row.unit.number] = row.factor
    rules["temperature_k"] = {}
    for rule, units in QUICK_RULES.items():
        rules[rule] = {row.unit: "1.0f" for row in tables.units if row.id in units}
    rules["any"] = {row.unit: "1.0f" for row in tables.units if row.id not in ("raw_count", "raw_bits")}
    for row in tables.formats:
        kind, detail = row.rule
        if kind == "listed":
            rules.setdefault(listed_rule(detail), {unit.number: "1.0f" for unit in detail})
    plans.rules = rules


def factor_lines(plans):
    return ["{" + ", ".join(factors.get(unit, "0") for unit in range(UNIT_COUNT)) + "},"
            for factors in plans.rules.values()]


def listed_rule(units):
    return "listed_" + "_".join(str(unit.number) for unit in units)


def format_row(row, formats):
    """How the raw bits of a format become a value."""
    row = conversion_owner(row, formats)
    kind, detail = row.rule
    width = int(row.kind[1:]) if row.kind else 0
    reading, rule = {
        "special": lambda: (detail.removeprefix("convert_"), None),
        "integer": lambda: ("integer", None),
        "any": lambda: ("scaled", "any"),
        "listed": lambda: ("scaled", listed_rule(detail)),
        "scaled": lambda: ("scaled", detail.removeprefix("unit_rule_")),
    }[kind]()
    if reading in QUICK_RULES:
        rule = reading
    signed = bool(row.kind) and row.kind[0] == "i"
    # Of the top code of the width and the two below it, the lowest; of 64 bits no comparison of signed numbers tells.
    first_reserved = (1 << (width - signed)) - 3 if 0 < width < 64 else 0
    return (f"Reading::{reading}, {width}, {int(signed)}, UnitRule::{rule or 'any'}, {row.scale}, "
            f"0x{first_reserved:X}")


def format_lines(tables):
    formats = {row.df: row for row in tables.formats}
    described = {row.df for row in tables.self_described}
    return [f"{{{row.df}, {format_row(row, formats)}, {int(row.df in described)}, 0}}," for row in tables.formats]


# ---- enumerations ----

def plan_sets(plans):
    plans.entry_lines, plans.set_lines, plans.index_lines = [], [], []
    for found in plans.sets:
        plan_set(plans, found)


def plan_set(plans, found):
    first = len(plans.entry_lines)
    plans.entry_lines += [entry_line(entry.text, plans.pool) for entry in found.entries]
    index = entry_index(found)
    plans.set_lines.append(f"{{{first}, {len(plans.index_lines)}, {len(index)}}},")
    plans.index_lines += [f"{place}," for place in index]


def entry_line(text, pool):
    forms = entry_forms(text)
    return f"{{{', '.join(str(pool.add(form)) for form in forms)}, {sizes(*forms)}}},"


def entry_forms(text):
    return text, json_text(text), csv_cell(text)


def entry_index(found):
    """Entry by value, from 0 on as far as the values are dense: what a search would find; NO_ENTRY for no text."""
    values = [entry.value for entry in found.entries]
    dense = [value for value in values if value < MOST_INDEXED]
    if found.kind == FLAGS or not dense:
        return []
    index = []
    for value in range(max(dense) + 1):
        place = next((i for i, v in enumerate(values) if v == value), NO_ENTRY)
        if place == NO_ENTRY and found.kind == 1:
            place = max((i for i, v in enumerate(values) if v < value), default=NO_ENTRY)
        index.append(place)
    return index


# ---- fields ----

def special_row(tables, pgn, field, dd, column):
    for row in tables.special_fields:
        if row.pgn in (None, pgn) and row.field in (None, field) and row.dd == dd and getattr(row, column):
            return getattr(row, column)
    return None


def plan_fields(tables, plans):
    lookup = Row(
        entries={row.dd: row for row in tables.dictionary},
        formats={row.df: row for row in tables.formats},
        format_index={row.df: i for i, row in enumerate(tables.formats)},
        classes={row.dd: getattr(row, "class") for row in tables.disp_data_types},
        rules={row.pgn: row for row in tables.pgn_rules},
        sets={found.dd: i for i, found in enumerate(plans.sets)},
        groups=repeating_groups(tables))
    lookup.keys = base_keys(tables, lookup.groups, shown_label)[1]
    plans.field_lines = [field_plan(tables, plans, lookup, i) for i in range(len(plans.fields))]


def repeating_groups(tables):
    """First and last field of the group by PGN. The search may miss one that stands out of order, which is refused."""
    pgns = [row.pgn for row in tables.repeat_sets]
    found = {pgn: find_by_binary_search(pgns, pgn) for pgn in pgns}
    rows = {pgn: tables.repeat_sets[i] for pgn, i in found.items() if i is not None}
    return {pgn: (row.first, row.last) for pgn, row in rows.items()}


def field_plan(tables, plans, lookup, i):
    rows, row = plans.fields, plans.fields[i]
    entry, rule = lookup.entries[row.dd], lookup.rules.get(row.pgn)
    first, last = lookup.groups.get(row.pgn, (0, 0))
    label = shown_label(tables, row)
    numbered = first <= row.field <= last and label == row.label and FIRST in label
    enumeration = lookup.sets.get(row.dd, NO_SET)
    bits = field_bits(row, entry, rule, lookup.formats)
    kind_of_quantity = quantity(tables, row, lookup.classes, rule)
    form = field_form(tables, plans, row, enumeration)
    quick = kind_of_quantity <= NO_CLASS and is_quick(lookup.formats[entry.df], bits)
    is_text = any(entry.df == tables.df_of[name] for name in TEXT_FORMATS)
    filtered = rule is not None and rule.walk == "proprietary"
    flags = {
        "in_group": first <= row.field <= last,
        "first_of_group": row.field == first,
        "last_of_group": row.field == last,
        "numbered": numbered,
        "quoted": numbered and is_quoted_in_csv(label[FIRST_WORD:]),
        "text": is_text,
        "whole_bytes": bits % 8 == 0,
        "quick": quick,
        "apart": is_text or is_one_of(tables, kind_of_quantity, FORMED_FOR_PROGRAMS) or
                 lookup.formats[entry.df].rule[1] in COUNTED_SECONDS,
        "all_bits_none": has_none_code(tables, plans, row, lookup.formats[entry.df], bits, enumeration),
        "plainly": is_plain(tables, quick, form, kind_of_quantity),
    }
    verdicts = tuple(verdict(tables, row, own) if filtered else 0 for own in (False, True))
    return field_plan_line(
        field_texts(plans, row.field, lookup.keys[row.pgn, variant_name(row)][row.field],
                    label[FIRST_WORD:] if numbered else label, numbered), 7 if bits % 8 == 0 else 0, next_row(rows, i, 1),
        next_row(rows, i, first - last) if row.field == last else END_ROW, bits, row.field,
        lookup.format_index[entry.df], enumeration, 0, kind_of_quantity, form, verdicts, flags)


def is_one_of(tables, number, quantities):
    return any(number == tables.class_of[name] for name in quantities)


def is_plain(tables, quick, form, number):
    """Whether a field is shown as the text of an enumeration or by its type."""
    return quick and form in ("plain", "enumeration") and not is_one_of(tables, number, FORMED_QUANTITIES)


def field_texts(plans, field, key, label, numbered):
    """Place and sizes of what a field's label is in each form."""
    forms = label_forms(field, key, label, numbered)
    return f"{plans.pool.add(''.join(forms))}, {sizes(*forms)}"


def field_plan_line(texts, misplaced, next_one, again, bits, number, form_index, enumeration, extra, kind_of_quantity,
                    form, verdicts, flags):
    return (f"{{{texts}, {misplaced}, {next_one}, {again}, {bits}, {number}, {form_index}, {enumeration}, {extra}, "
            f"{kind_of_quantity}, Form::{form}, {{{verdicts[0]}, {verdicts[1]}}}, "
            f"{' | '.join(name for name, is_set in flags.items() if is_set) or 0}}},")


def has_none_code(tables, plans, row, data_format, bits, enumeration):
    """Whether a field of bits has no value where all of them are set."""
    if data_format.rule[1] not in BIT_FIELDS or not 1 < bits <= 64:
        return False
    if enumeration == NO_SET:
        return has_all_bits_none(tables, row.dd)
    found = plans.sets[enumeration]
    texts = [entry.text for entry in found.entries if entry.value == (1 << bits) - 1]
    return found.kind != FLAGS and (not texts or says_none(texts[0]))


def has_all_bits_none(tables, dd):
    return any(row.dd == dd and row.none for row in tables.special_fields)


def says_none(text):
    words = text.lower().strip("[] ").replace(",", "").split()
    return words in NONE_TEXTS


def field_form(tables, plans, row, enumeration):
    form = special_row(tables, row.pgn, row.field, row.dd, "form")
    if form is not None:
        return form
    if enumeration == NO_SET:
        return "plain"
    return "flags" if plans.sets[enumeration].kind == FLAGS else "enumeration"


def shown_label(tables, row):
    return special_row(tables, row.pgn, row.field, row.dd, "label") or row.label


def label_forms(field, key, label, numbered):
    """In the pool they stand behind each other. A numbered label is left open: the number of the round follows."""
    line = f"    {label}" + ("" if numbered else ": ")
    json = f'{{"number":{field},"key":"{key}","label":{json_text(label)[:-1]}' + ("" if numbered else '","value":')
    cell = csv_cell(label)[:-1] if numbered and is_quoted_in_csv(label) else csv_cell(label)
    return line, json, f"{field},{key},{cell}" + ("" if numbered else ",")


def field_bits(row, entry, rule, formats):
    """The size in bits; 0 where only the value tells. A size in whole bytes counts as one in bytes. Where neither the
    field nor its entry has one, it is that of the format's number."""
    own = row.size[0] * 8 + row.size[1]
    given = rule.size if rule is not None and rule.size != (0, 0) else entry.size
    return own or given[0] * 8 + given[1] or number_bits(formats[entry.df], formats)


def number_bits(row, formats):
    """The bits that a format says it takes; 0 for those that leave it to the field, and for texts."""
    row = conversion_owner(row, formats)
    kind, name = row.rule
    return 0 if kind == "special" and name in SIZED_BY_FIELD or not row.kind else int(row.kind[1:])


def is_quick(row, bits):
    """Whether reading takes nothing but number, reserved codes, resolution and factor; the number lies in one word."""
    if not 0 < bits <= 64 or (bits > 57 and bits % 8 != 0):
        return False
    kind, name = row.rule
    if (kind, name) == ("special", "convert_bit_field"):
        return True
    if kind == "special" and name not in ("convert_latitude_32", "convert_longitude_32"):
        return False
    return bits == int(row.kind[1:]) < 64


def quantity(tables, row, classes, rule):
    dynamic = special_row(tables, row.pgn, row.field, row.dd, "quantity")
    found = classes.get(row.dd, NO_CLASS)
    if dynamic:
        return DYNAMIC_QUANTITIES[dynamic]
    if found == tables.class_of["pressure"] and rule is not None:
        return pressure_of(tables, rule) or found
    return found


def pressure_of(tables, rule):
    """The quantity of pressures by the rule of a PGN, 0 where it says nothing of them."""
    quantities = {None: 0, "air": tables.class_of["atmospheric_pressure"], **DYNAMIC_QUANTITIES}
    return quantities[rule.pressure]


def next_row(rows, i, delta):
    """Row of the field number `delta` further on, by the first guess and then in its direction. Among variants a
    step forward lands on the first variant of the next field number, whichever variant it starts from."""
    target = rows[i].field + delta
    at = i + delta
    while 0 <= at < len(rows) and rows[at].pgn == rows[i].pgn:
        if rows[at].field == target:
            return at
        at += -1 if delta < 0 else 1
    return END_ROW


def verdict(tables, row, own):
    """Of a field of a proprietary message: 0 it is shown, 1 it is passed over, 2 the walk ends here."""
    for special in tables.special_fields:
        if special.pgn == row.pgn and special.field == row.field and special.shown:
            if special.shown == "own" and not own:
                return 2
            return 0 if special.dd == row.dd else 1
    return 2


# ---- PGNs ----

def plan_pgns(tables, plans):
    names = {row.pgn: row.name for row in tables.pgn_rules if row.name}
    walks = {row.pgn: row.walk for row in tables.pgn_rules if row.walk}
    first_rows = {}
    for i, row in enumerate(plans.fields):
        first_rows.setdefault(row.pgn, i)
    plans.pgn_lines = []
    for pgn, name in [*((row.pgn, row.name) for row in tables.pgns), (CLOSING_PGN, "")]:
        plans.pgn_lines.append(pgn_plan_line(plans, pgn, names.get(pgn, name), first_rows.get(pgn, END_ROW),
                                             walks.get(pgn) or "plain", 0))


def pgn_plan_line(plans, pgn, name, first_row, walk, rows):
    line, json, csv = forms = pgn_forms(pgn, name)
    return (f"{{{plans.pool.add(f'{line}{chr(10)}{json}{csv}')}, {sizes(*forms)}, {first_row}, PgnWalk::{walk}, "
            f"{rows}}},")


def pgn_forms(pgn, name):
    json = f',"pgn":{pgn},"name":{json_text(name)},"priority":'
    return f"     {pgn:6}, {name}", json, f",{pgn},{csv_cell(name)},"


def special_lines(tables):
    """For whoever has a field without a row of the catalogue."""
    def number(cell):
        return 0 if cell is None else cell
    return [f"{{{number(row.pgn)}, {number(row.field)}, {row.dd}, {c_text(row.label)}, "
            f"Form::{row.form or 'plain'}, {DYNAMIC_QUANTITIES.get(row.quantity, 0)}}},"
            for row in tables.special_fields if row.label or row.form or row.quantity]


def rule_lines(tables):
    return [f"{{{row.pgn}, {row.size[0]}, {row.size[1]}, "
            f"{pressure_of(tables, row)}}},"
            for row in tables.pgn_rules if row.size != (0, 0) or row.pressure]


def c_text(text):
    return "nullptr" if text is None else text_literal(text.encode())


# ---- names for code ----

def id_lines(tables):
    """The public header that names what code mentions."""
    def block(name, kind, entries, count=None):
        lines = [f"namespace {name} {{", f"enum : {kind} {{"]
        lines += [f"    {entry} = {number}," for entry, number in entries]
        if count:
            lines += count
        return lines + ["};", f"}}  // namespace {name}", ""]

    def ids(kind):
        return [(row.id, row.number) for row in tables.ids if row.kind == kind]

    return [
        "#pragma once", "", "/// @file", "/// Numbers of units, quantities, PGNs, dictionary entries and formats by name.",
        "", "#include <cstdint>", "", "namespace pgn_vistel::core {", "",
        "/// Index of a unit of measure, 0 .. 140. `unit_name` gives the name that users see.",
        "using UnitId = int;", "",
        "/// Class of a physical quantity, 0 .. 64; 65 for none. Values of one class share a list of units.",
        "using DispDataType = int;", "",
        "/// Number of a data format: how the bits of a field encode its value.",
        "using DF = std::uint16_t;", "",
        "/// The units. `raw_count` is the number as sent, tested for availability but not scaled; `raw_bits` is",
        "/// neither tested nor scaled. Every numeric format understands both.",
        *block("unit", "UnitId", [("selected", -1), *((row.id, row.unit) for row in tables.units)],
               [f"    count = {UNIT_COUNT},  // ends every list of units"]),
        "/// The quantities. Those below `count` have a unit that a user can pick.",
        *block("quantity", "DispDataType", [(row.id, getattr(row, "class")) for row in tables.availability],
               [f"    no_quantity = {NO_CLASS},", f"    count = {CLASS_COUNT},"]),
        "/// Parameter groups that code mentions.",
        *block("pgn", "std::uint32_t", ids("pgn")),
        "/// Dictionary entries that code mentions.",
        *block("dd", "std::uint32_t", ids("dd")),
        "/// Data formats that code mentions.",
        *block("format", "DF", ids("df")),
        "}  // namespace pgn_vistel::core",
    ]
