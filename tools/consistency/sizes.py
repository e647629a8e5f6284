"""Widths of fields, and rules about how the fields of a message follow each other."""

from collections import namedtuple

from tables import MAX_PAYLOAD, NO_KEY, NO_SELECTOR, is_proprietary

FRAME_BITS = 64  # of a message that is one CAN frame
FAST_PACKET_BITS = 223 * 8
PRODUCT_INFORMATION = 126996  # every field without a size takes 32 bytes
PRODUCT_SLOT_BITS = 256
HEX_DUMP = 10053  # dictionary entry: whatever follows, 256 bytes at the most
MAKERS_COMMANDS = 126720  # its field numbers from 33 up are command bytes, not places in the payload

Width = namedtuple("Width", "bits exact")  # not exact: up to so many bits
Place = namedtuple("Place", "row start bits")  # start: bits since the last field without a width

# What conversions read whose row in formats.tsv has no raw kind.
TOLD_BY_VALUE = ("convert_text_short", "convert_text_medium", "convert_self_described",
                 "convert_self_described_before")
CONVERSION_WIDTHS = {
    "convert_bit_field": Width(64, False),
    "convert_ais_spare": Width(64, False),
    "convert_text_fixed": Width(MAX_PAYLOAD * 8, False),
    "convert_hex_dump": Width(MAX_PAYLOAD * 8, False),
    "convert_low_2_bits": Width(2, True),
    "convert_low_4_bits": Width(4, True),
    "convert_low_6_bits": Width(6, True),
    "convert_two_bit_state": Width(2, True),
    "convert_package_type": Width(16, True),
    "convert_can_frame_id": Width(29, True),
    "convert_can_frame_data": Width(64, True),
    "convert_float_angle": Width(32, True),
    "convert_float_plain": Width(32, True),
    "convert_double_plain": Width(64, True),
    "convert_double_distance": Width(64, True),
    "convert_device_address": Width(64, True),
    "convert_never_available": Width(0, True),
}


def format_width(row):
    """What a format reads, or None where the value tells."""
    name = row.rule[1] if row.rule[0] == "special" else None
    if name in CONVERSION_WIDTHS:
        return CONVERSION_WIDTHS[name]
    return None if name in TOLD_BY_VALUE else Width(int(row.kind[1:]), True)


def in_bits(size):
    return size[0] * 8 + size[1]


class Sizes:
    """Widths of field rows under the tables."""

    def __init__(self, tables):
        self.entries = {row.dd: row for row in tables.dictionary}
        self.formats = {row.df: row for row in tables.formats}

    def format_of(self, row):
        return self.formats[self.entries[row.dd].df]

    def bits(self, row):
        """Width of a field; None where only the value tells."""
        if row.size != (0, 0):
            return in_bits(row.size)
        if row.pgn == PRODUCT_INFORMATION:
            return PRODUCT_SLOT_BITS
        if self.entries[row.dd].size != (0, 0):
            return in_bits(self.entries[row.dd].size)
        width = format_width(self.format_of(row))
        return width.bits if width and width.exact else None


def name_of(row):
    """The message that a row belongs to: PGN and, for variants, the selectors."""
    selectors = (row.key1 & 0xFFFF, row.key2 >> 16, row.key3 >> 16)
    return ".".join(map(str, [row.pgn, *(each for each in selectors if each != NO_SELECTOR)]))


def field_name(row):
    return f"{name_of(row)}#{row.field}"


def variants(tables):
    """Name -> rows of every message that has rows of its own."""
    found = {}
    for row in tables.fields:
        found.setdefault(name_of(row), []).append(row)
    return found


def repeats_of(tables, rows):
    """(first, last) of the group that repeats in a variant, or None."""
    selector = rows[0].key1 & 0xFFFF if rows[0].key1 != NO_KEY else None
    for found in tables.repeat_sets:
        if found.pgn == rows[0].pgn and found.selector in (255, selector):
            return found.first, found.last
    return None


def places(sizes, rows):
    """Where the fields of a message start; counted anew behind a field whose value tells its width."""
    start = 0
    for row in rows:
        bits = sizes.bits(row)
        yield Place(row, start, bits)
        start = 0 if bits is None else start + bits


def check_sizes(tables, found):
    sizes = Sizes(tables)
    single = {row.pgn for row in tables.pgns if row.frames == "single"}
    for entry in tables.dictionary:
        width = format_width(sizes.formats[entry.df])
        if width and entry.size != (0, 0):
            compare_widths(entry.place, f"entry {entry.dd}", in_bits(entry.size), width, found)
    for row in tables.fields:
        check_width(sizes, row, found)
    for rows in variants(tables).values():
        if rows[0].pgn == MAKERS_COMMANDS:
            continue
        check_starts(sizes, rows, found)
        check_length(sizes, rows, repeats_of(tables, rows), rows[0].pgn in single, found)


def check_width(sizes, row, found):
    entry, width, bits = sizes.entries[row.dd], format_width(sizes.format_of(row)), sizes.bits(row)
    if width is None or row.pgn == PRODUCT_INFORMATION:
        return
    if bits is None:
        found.add(row.place, "width", field_name(row), "neither field nor entry nor format has one")
    elif row.size != (0, 0):
        compare_widths(row.place, field_name(row), bits, width, found)
        if width.bits <= 64 and entry.size != (0, 0) and bits != in_bits(entry.size):
            found.add(row.place, "width", field_name(row),
                      f"{bits} bits, entry {row.dd} has {in_bits(entry.size)}")


def compare_widths(place, subject, bits, width, found):
    if bits != width.bits if width.exact else bits > width.bits:
        found.add(place, "width", subject, f"{bits} bits, the format reads {width.bits}")


def check_starts(sizes, rows, found):
    """Whole bytes that start inside a byte are read as zeros."""
    for place in places(sizes, rows):
        if place.start % 8 and (place.bits is None or place.bits % 8 == 0):
            found.add(place.row.place, "start", field_name(place.row), f"bit {place.start % 8} of a byte")


def check_length(sizes, rows, repeats, single, found):
    """What stands behind a repeating group only describes it: the walk never leaves the group."""
    shown = [place for place in places(sizes, rows) if not repeats or place.row.field <= repeats[1]]
    end = shown[-1].start + (shown[-1].bits or 0)
    whole = not repeats and all(place.bits is not None and place.row.dd != HEX_DUMP for place in shown)
    standard = not is_proprietary(rows[0].pgn)
    what = None
    if whole and single and (end != FRAME_BITS if standard else end > FRAME_BITS):
        what = f"{end} bits in one frame"
    elif end % 8:
        what = f"ends at bit {end % 8} of a byte"
    elif whole and standard and not single and end <= FRAME_BITS:
        what = f"several frames for {end} bits"
    elif whole and not single and end > FAST_PACKET_BITS:
        what = f"{end} bits in a fast packet"
    if what:
        found.add(rows[-1].place, "length", name_of(rows[0]), what)
    if repeats:
        begin = next(place.start for place in shown if place.row.field == repeats[0])
        if begin % 8:
            found.add(rows[-1].place, "length", name_of(rows[0]), f"repeats from bit {begin % 8} of a byte")
