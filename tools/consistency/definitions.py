"""Both sets of definitions against the public ones: where fields start, their width, resolution, sign and entry."""

from collections import namedtuple

from corrected import corrected_messages
from measures import measure_of_format, measure_of_reading, measure_of_source
from overlay import base_variant
from sizes import Sizes, name_of, places, repeats_of, variants
from tables import DD, FIELD, MAX_PAYLOAD, PGN, choice, is_proprietary, number, optional, read_table, scale

RESERVED = (1, 311)  # dictionary entries: reserved bits, spare bits of AIS
RESERVED_LABEL = "NMEA Reserved"  # of those that have an entry of their own
SOURCES = ("listing", "canboat")
COLUMNS = {
    "pgn": PGN, "selector": optional(number(0, 0xFFFF)), "source": choice(*SOURCES), "field": FIELD,
    "coding": choice("unsigned", "signed", "float", "bits", "text", "reserved"),
    "bits": optional(number(1, MAX_PAYLOAD * 8)), "resolution": lambda cell: float(scale(cell).rstrip("f")),
    "unit": lambda cell: "" if cell == "-" else cell, "dd": optional(DD)}

Message = namedtuple("Message", "pgn selector name fields repeats")
# bits: None where the message tells; measure: None for what is shown as a bare number; is_corrected: data/corrections/
# has another reading than the base, with the reason.
Field = namedtuple("Field", "place number bits dd is_reserved is_corrected measure")
Difference = namedtuple("Difference", "field place rule subject what")


def read_definitions(tables, data, report):
    return read_table(tables, data, "public_definitions.tsv", COLUMNS, report)


def is_reserved(field):
    return field.dd in RESERVED or field.label == RESERVED_LABEL


def fixed_messages(tables):
    sizes = Sizes(tables)
    for rows in variants(tables).values():
        repeats = repeats_of(tables, rows)
        if repeats:  # what stands behind the group only describes its repetition
            rows = [row for row in rows if row.field <= repeats[1]]
        fields = [Field(row.place, row.field, place.bits, row.dd, is_reserved(row), False,
                        measure_of_format(sizes.format_of(row)))
                  for row, place in zip(rows, places(sizes, rows))]
        yield Message(rows[0].pgn, base_variant(rows[0]), name_of(rows[0]), fields, bool(repeats))


def corrected(tables, overlay):
    messages, context = corrected_messages(tables, overlay)
    for found in messages:
        if is_proprietary(found.pgn) or not found.fields:
            continue
        ends = [last for _, last, count in found.groups if count is None]
        fields = [Field(field.place, field.number, field.bits or None, field.dd,
                        is_reserved(field) if field.is_fill is None else field.is_fill, field.is_corrected,
                        measure_of_reading(field, context)) for field in found.fields[:min(ends, default=9999) + 1]]
        name = str(found.pgn) if found.variant == "-" else f"{found.pgn}.{found.variant}"
        selector = next((value for bit, width, value in found.match if (bit, width) == (0, 8)), None)
        yield Message(found.pgn, selector, name, fields, bool(found.groups))


def check_definitions(messages, definitions, found):
    """Variants that nothing in a source tells apart are forms of one message, of which one has to agree with it. Where
    the sources differ, a correction has to agree with one of them: why with this one stands beside it. Returns how many
    fields were compared."""
    public, forms, compared = {}, {}, 0
    for row in definitions:
        public.setdefault((row.pgn, row.source, row.selector), []).append(row)
    for message in messages:
        forms.setdefault((message.pgn, message.selector), []).append(message)
    for (pgn, selector), alike in forms.items():
        theirs = {source: public.get((pgn, source, selector)) or public.get((pgn, source, None)) for source in SOURCES}
        theirs = {source: rows for source, rows in theirs.items() if rows}
        told = [{source: compare(message, source, rows) for source, rows in theirs.items()} for message in alike]
        compared += sum(len(message.fields) for message in alike) * len(theirs)
        differences = [each for source in theirs for each in min((form[source] for form in told), key=len)]
        if len(alike) > 1:  # each form is one that a source has
            differences += [each for form in told for each in min(form.values(), key=len, default=[])]
        for each in dict.fromkeys(differences):
            others = [form[source] for form in told for source in theirs if each not in form[source] and
                      any(each in sister for sister in form.values())]
            if not any(agrees(each, other) for other in others):
                found.add(each.place, each.rule, each.subject, each.what)
    return compared


def agrees(difference, others):
    """Whether what differs is a correction that another source has, too; it is followed up to that field."""
    field = difference.field
    return field is not None and field.is_corrected and all(
        other.field is not None and (other.field.number > field.number or
                                     other.field.number < field.number and other.rule != "layout")
        for other in others)


def compare(message, source, theirs):
    """Reserved bits may be cut up differently. A difference shifts what follows, so the first one is told."""
    told = []
    there = {start: row for start, row in starts(theirs) if row.coding != "reserved"}

    def add(field, rule, what):
        subject = f"{message.name}#{field.number}"
        told.append(Difference(field, field.place, rule, subject, what))

    for start, field in starts(message.fields):
        if field.is_reserved:
            continue
        other = there.pop(start, None)
        if other is None:
            add(field, "layout", f"no field of {source} starts at {at(start)}")
            return told
        if field.bits is not None and other.bits is not None and field.bits != other.bits:
            add(field, "layout", f"{field.bits} bits, {source} has {other.bits}")
            return told
        for rule, what in compare_meaning(field, source, other):
            add(field, rule, what)
    if there and not message.repeats:
        start, other = next(iter(there.items()))
        told.append(Difference(None, message.fields[-1].place, "layout", message.name,
                               f"no field at {at(start)}, field {other.field} of {source}"))
    return told


def compare_meaning(field, source, other):
    """(rule, what) of each difference."""
    if other.dd is not None and field.dd is not None and other.dd != field.dd:
        yield "entry", f"{field.dd}, {source} has {other.dd}"
    if field.measure is None or other.coding == "bits":
        return
    here, there = field.measure, measure_of_source(other)
    if here.coding and here.coding != there.coding:
        yield "coding", f"{here.coding}, {source} has {there.coding}"
    elif here.unit != there.unit:
        yield "unit", f"'{here.unit}', {source} has '{there.unit}'"
    elif abs(here.resolution - there.resolution) > 1e-5 * here.resolution:
        yield "resolution", f"{here.resolution:g} {here.unit}, {source} has {there.resolution:g}"


def starts(fields):
    """((fields of unknown width before, bits since the last of them), field) of each field."""
    unknown = bit = 0
    for field in fields:
        yield (unknown, bit), field
        unknown, bit = (unknown + 1, 0) if field.bits is None else (unknown, bit + field.bits)


def at(start):
    unknown, bit = start
    return f"bit {bit}" + (f" behind {unknown} of unknown width" if unknown else "")
