"""What `vistel catalogue` tells of the corrected definitions beside the rows that decode: their variants, conditions
and groups, how each field counts, and where each text comes from."""

from fractions import Fraction

from tables import FLAGS, MAX_PAYLOAD

BASE, GUESS = "base", "guess"  # sources of what the tables of the base have
CODINGS = {"text_padded": "text", "text_counted": "text_lz", "bytes": "bytes", "decimal": "decimal", "time_of_day": "time"}
FORMAT_CODINGS = {41: "date", 6: "time"}
TEXT_HEADERS = {2: "text_lau", 3: "text_lau16"}


class Texts:
    """Texts that end with a zero, by their offset."""

    def __init__(self):
        self.offsets, self.size = {}, 0

    def add(self, text):
        if text not in self.offsets:
            self.offsets[text] = self.size
            self.size += len(text) + 1
        return self.offsets[text]

    def lines(self):
        return ['"' + text.replace("\\", "\\\\").replace('"', '\\"') + '\\0"' for text in self.offsets]


class Numbered:
    """Lines of a table, each of them once."""

    def __init__(self):
        self.places = {}

    def add(self, line):
        return self.places.setdefault(line, len(self.places))


def listing_fragments(corrected, plans):
    """File name -> lines."""
    texts, notes = Texts(), Numbered()
    names = {place: str(name) for name, place in corrected.sets.items()}
    messages, conditions, groups = [], [], []
    for found in corrected.listed:
        shortest, longest = found.length or (0, MAX_PAYLOAD)
        messages.append(f"{{{found.row}, {texts.add(found.variant)}, {texts.add(found.source)}, "
                        f"{texts.add(found.packet)}, {len(conditions)}, {len(found.match)}, {shortest}, {longest}, "
                        f"{len(groups)}, {len(found.groups)}, {found.first}, {len(found.fields)}}},")
        conditions += [f"{{{bit}, {width}, {value}u}}," for bit, width, value in found.match]
        fields = found.fields
        groups += [f"{{{fields[first].number}, {fields[last].number}, {0 if count is None else fields[count].number}}},"
                   for first, last, count in found.groups]
    note_of_row = [notes.add(note_line(field, is_none, corrected, texts)) for field, is_none in corrected.listed_fields]
    sources = Numbered()
    entry_sources = [sources.add(source_of(entry)) for found in plans.sets for entry in found.entries]
    if len(sources.places) > 0xFF:
        raise ValueError("a byte does not tell the sources of texts apart")
    return {
        "listed_messages.inc": messages, "listed_conditions.inc": conditions, "listed_groups.inc": groups,
        "field_notes.inc": list(notes.places), "field_note_index.inc": [f"{place}," for place in note_of_row],
        "enum_names.inc": [f"{texts.add(names[place])}," for place in sorted(names)],
        "text_sources.inc": [f"{texts.add(source)}," for source in sources.places],
        "entry_sources.inc": [f"{place}," for place in entry_sources],
        "listing_texts.inc": texts.lines()}


def source_of(entry):
    if getattr(entry, "guess", False):
        return GUESS
    return getattr(entry, "source", BASE)


def note_line(field, is_all_bits_none, corrected, texts):
    resolution = offset = none = ""
    reading = field.reading
    if reading[0] == "measured":
        times, over, count = reading[2:5]
        resolution, offset = decimal(times, over), str(count) if count else ""
    if reading[0] in ("whole", "measured"):
        none = codes_of_none(field.bits, *reading[6:])
    if is_all_bits_none:
        none = str((1 << field.bits) - 1)
    shown = ""
    if field.texts is not None:
        name, by = field.texts
        shown = f"{name} by {by}" if by else str(name)
    cells = [coding(field, corrected), resolution, offset, field.unit, none, shown]
    return "{" + ", ".join(str(texts.add(cell)) for cell in cells) + f", {field.quantity}}},"


def coding(field, corrected):
    """As in the column of the corrections; formats that only the base has by their names."""
    how = field.reading[0]
    if field.role is not None:
        return field.role
    if field.is_fill:
        return "reserved"
    if how == "df":
        return FORMAT_CODINGS.get(field.reading[1], f"DF{field.reading[1]:02}")
    if how == "text_sent":
        return TEXT_HEADERS[field.reading[1]]
    if how not in ("whole", "measured"):
        return CODINGS[how]
    if field.form == "texts":
        return "flags" if corrected.context.sets[field.texts[0]].kind == FLAGS else "code"
    named = {"pgn_title": "pgn", "mmsi": "mmsi"}
    return named.get(field.form) or {"u": "u", "i": "i", "f": "float"}[field.reading[1][0]]


def codes_of_none(bits, codes, first_reserved):
    if first_reserved is None:
        return ", ".join(str(code if code >= 0 or bits < 64 else code + (1 << 64)) for code in codes)
    signed_top = first_reserved | 3 if bits >= 8 else first_reserved
    return f"{first_reserved}..{signed_top}" if signed_top > first_reserved else str(first_reserved)


def decimal(times, over):
    """The number with all of its digits, as far as they end."""
    value = Fraction(times) / over
    digits = value.denominator
    places = 0
    while digits % 10 == 0 or digits % 2 == 0 or digits % 5 == 0:
        digits //= 10 if digits % 10 == 0 else 2 if digits % 2 == 0 else 5
        places += 1
    if digits != 1 or places > 20:
        return repr(float(value))
    text = f"{value.numerator * 10**places // value.denominator:0{places + 1}}"
    return text[:len(text) - places] + ("." + text[len(text) - places:] if places else "")
