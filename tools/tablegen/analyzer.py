"""What canboat's analyzer calls fields and codes, for reading what it has printed."""

import re

from corrected import BadRow
from plans import text_literal

ANY = "-"


def compared(name):
    """Names in any spelling, as in Wind Speed and windSpeed; host/packing/analyzer_names.cpp does the same."""
    return re.sub("[^a-z0-9]", "", name.lower())


def analyzer_fragments(overlay, corrected):
    """File name -> lines, in the order in which they are searched."""
    messages = {(found.pgn, found.variant): {field.key for field in found.fields} for found in corrected.listed
                if hasattr(found, "pgn")}
    names, texts = {}, {}
    for row in overlay.analyzer_names:
        check_key(row, messages)
        put(names, (row.pgn or 0, row.variant, compared(row.name)), row.key or "", row)
    sets = {str(name) for name in corrected.sets}
    for row in overlay.analyzer_texts:
        if row.set not in sets:
            raise BadRow(f"{row.place}: unknown set {row.set}")
        put(texts, (row.set, row.text.lower()), row.value, row)
    return {
        "analyzer_names.inc": [f"{{{pgn}, {quoted(variant)}, {quoted(name)}, {quoted(key)}}},"
                               for (pgn, variant, name), key in sorted(names.items())],
        "analyzer_texts.inc": [f"{{{quoted(found)}, {quoted(text)}, {value}u}},"
                               for (found, text), value in sorted(texts.items())]}


def check_key(row, messages):
    if row.pgn is None:
        known = set().union(*messages.values())
    elif (row.pgn, row.variant) in messages:
        known = messages[row.pgn, row.variant]
    else:
        raise BadRow(f"{row.place}: pgn {row.pgn} has no variant {row.variant}")
    if row.key not in known and (row.key or row.pgn is None):
        raise BadRow(f"{row.place}: no field has the key {row.key or ANY}")


def put(found, place, value, row):
    if place in found:
        raise BadRow(f"{row.place}: stands twice")
    found[place] = value


def quoted(text):
    return text_literal(text.encode("ascii"))
