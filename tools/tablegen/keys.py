"""Keys of fields: the names that programs know them by.

A key is formed of the label once and then kept in keys.tsv, which decides: a label may be corrected, its key stays."""

import re

from tables import NO_KEY, NO_SELECTOR

MOST = 60  # characters of what a label gives


def variant_name(row):
    """Base rows are told apart by what their keys are: - for none, else the key cells, such as 137 or 137/4:252."""
    cells = [key1_cell(row.key1), pair_cell(row.key2), pair_cell(row.key3)]
    while cells and cells[-1] == "-":
        cells.pop()
    return "/".join(cells) or "-"


def key1_cell(key):
    return "-" if key == NO_KEY else str(key & 0xFFFF)


def pair_cell(key):
    def half(number):
        return "*" if number == NO_SELECTOR else str(number)
    return "-" if key == NO_KEY else f"{half(key & 0xFFFF)}:{half(key >> 16)}"


def key_of_label(label, in_group):
    """Snake case. In a repeating group a number at the label's end is that of the round, as is "first"."""
    if in_group:
        label = re.sub(r'\bfirst ', "", label, flags=re.IGNORECASE)
        label = re.sub(r'\s*"(\d+|n)"$|\s+#?\d+$', "", label)
    label = re.sub(r"(?<=[a-z])(?=[A-Z][a-z])", " ", label.replace("'", ""))  # nItems is two words
    words = re.findall(r"[a-z0-9]+", label.lower()) or ["field"]
    while len(words) > 1 and len("_".join(words)) > MOST:
        words.pop()
    return "_".join(words)


def make_keys(rows, frozen):
    """Keys of all fields of one message, by field number. `rows` are (field, label, whether in a repeating group) of
    all its fields, `frozen` the keys that some of them have. A name that several want gets their field numbers."""
    wanted = {}
    for field, label, in_group in rows:
        wanted.setdefault(field, key_of_label(label, in_group))
    names = list(wanted.values())
    keys = {field: frozen[field] for field in wanted if field in frozen}
    taken = set(frozen.values())
    for field, name in wanted.items():
        if field in keys:
            continue
        key = f"{name}_{field}" if names.count(name) > 1 else name
        while key in taken:
            key += f"_{field}"
        keys[field] = key
        taken.add(key)
    return keys


class Keys:
    """The frozen keys, and those that the rows without one would get."""

    def __init__(self, tables):
        self.frozen, self.missing = {}, []
        for row in tables.keys:
            self.frozen.setdefault((row.pgn, row.variant), {})[row.field] = row.key

    def of(self, pgn, variant, rows):
        """What `make_keys` gives; fields without a frozen key are remembered as missing."""
        frozen = self.frozen.get((pgn, variant), {})
        keys = make_keys(rows, frozen)
        self.missing += [(pgn, variant, field, key) for field, key in keys.items() if field not in frozen]
        return keys


def base_keys(tables, groups, shown_label):
    """(keys, key of each base row by PGN, variant and field)."""
    messages = {}
    for row in tables.fields:
        first, last = groups.get(row.pgn, (0, 0))
        label = shown_label(tables, row)
        messages.setdefault((row.pgn, variant_name(row)), []).append((row.field, label, first <= row.field <= last))
    keys = Keys(tables)
    return keys, {(pgn, variant): keys.of(pgn, variant, rows) for (pgn, variant), rows in messages.items()}


def key_lines(missing):
    return ["\t".join(map(str, row)) for row in missing]


def check_keys(tables, missing, report):
    """Every field has a frozen key; none is frozen twice, and none stands for two fields of a message."""
    for pgn, variant, field, key in missing:
        report.add(tables.keys[-1].place, f"no key for field {field} of pgn {pgn}, variant {variant}: append '{key}' "
                   "(tablegen.py --new-keys prints all such rows)")
    fields, keys = set(), set()
    for row in tables.keys:
        if (row.pgn, row.variant, row.field) in fields:
            report.add(row.place, f"field {row.field} of pgn {row.pgn}, variant {row.variant} stands twice")
        if (row.pgn, row.variant, row.key) in keys:
            report.add(row.place, f"key {row.key} of pgn {row.pgn}, variant {row.variant} stands twice")
        fields.add((row.pgn, row.variant, row.field))
        keys.add((row.pgn, row.variant, row.key))
