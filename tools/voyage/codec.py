"""Encodes payloads by the tables of data/: values stand under the labels of their fields and state physics.

Units: m, m/s, Pa, rad, rad/s, K, s, V, A, l, l/h, W, Hz, C, degrees of latitude and longitude. Codes,
counters and percentages are plain numbers. A field that is not given is sent as not available, reserved bits
as ones.
"""

from dataclasses import dataclass

ERROR = object()  # the code below "not available": the sensor is there but its reading is invalid

# Base units of a rule in one unit as stated here; all other rules have that unit as their base.
BASE_UNITS = {"unit_rule_length_cm": 100, "unit_rule_speed_mm_s": 1000, "unit_rule_pressure_kpa": 0.001}
OWN_STEPS = {"convert_latitude_32": 1e-7, "convert_longitude_32": 1e-7, "convert_latitude_64": 1e-16,
             "convert_longitude_64": 1e-16, "convert_position_24": 1e-5, "convert_period_minutes": 60.0}
FIXED_TEXT_BITS = 32 * 8  # fixed texts without a size, which only the product information has


@dataclass(frozen=True)
class Field:
    number: int
    label: str
    bits: int  # 0: the value decides
    signed: bool
    step: float  # one count of the raw number in the units above
    rule: str


def rows(path):
    text = path.read_text(encoding="utf-8")
    lines = [line for line in text.split("\n") if line and not line.startswith("#")]
    names = lines[0].split("\t")
    return [dict(zip(names, line.split("\t"), strict=True)) for line in lines[1:]]


def bits_of(size):
    return 0 if size == "-" else int(size[:-1]) * (8 if size.endswith("B") else 1)


def short_text(text):
    """Length of the whole field, encoding (1: one byte a character, 0: UTF-16), characters."""
    coded = text.encode("ascii") if text.isascii() else text.encode("utf-16-le")
    return bytes([len(coded) + 2, text.isascii()]) + coded


def medium_text(text):
    return (len(text) + 3).to_bytes(2, "little") + b"\x01" + text.encode("ascii")


class Catalogue:
    def __init__(self, data):
        self._formats = {int(row["df"]): row for row in rows(data / "formats.tsv")}
        self._repeats = {(int(row["pgn"]), row["selector"]): range(int(row["first"]), int(row["last"]) + 1)
                         for row in rows(data / "repeat_sets.tsv")}
        self.pgns = {}  # number -> (priority, packet)
        for row in rows(data / "pgns.tsv"):
            self.pgns.setdefault(int(row["pgn"]), (int(row["priority"]), row["packet"]))
        dictionary = {row["dd"]: row for row in rows(data / "dictionary.tsv")}
        self._variants = {}  # number -> keys -> fields
        for path in sorted(data.glob("fields/*.tsv")):
            for row in rows(path):
                entry, keys = dictionary[row["dd"]], (row["key1"], row["key2"], row["key3"])
                bits = bits_of(row["size"]) or bits_of(entry["size"])
                field = self._field(int(row["field"]), row["label"], int(entry["df"]), bits)
                self._variants.setdefault(int(row["pgn"]), {}).setdefault(keys, []).append(field)

    def _field(self, number, label, df, bits=0):
        fmt = self._formats[df]
        rule, kind = fmt["rule"], fmt["kind"]
        scale = 1.0 if fmt["scale"] == "-" else float(fmt["scale"])
        step = OWN_STEPS.get(rule) or scale / BASE_UNITS.get(rule, 1)
        if rule == "convert_text_fixed":
            bits = bits or FIXED_TEXT_BITS
        elif kind != "-":
            bits = bits or int(kind[1:])
        return Field(number, label, bits, kind.startswith("i"), step, rule)

    def fields(self, pgn, keys=()):
        """The first variant whose keys begin as given."""
        return next(item for item in self._variants[pgn].items() if item[0][:len(keys)] == keys)

    def encode(self, pgn, values, groups=(), keys=()):
        """The payload. Groups are the values of the repeating fields, one dictionary for each repetition."""
        (key, industry, _), fields = self.fields(pgn, keys)
        if key != "-":  # the key is what the first field says
            values = {fields[0].label: int(key), **values}
            if industry != "-":
                values = {"Industry Group": int(industry.split(":")[0]), **values}
        repeated = self._repeats.get((pgn, key if key != "-" else "255"), ())
        plain = [field for field in fields if not repeated or field.number < repeated[0]]
        repeating = [field for field in fields if field.number in repeated]
        word, position, before = 0, 0, None
        for wanted, given in [(plain, values), *((repeating, group) for group in groups)]:
            if unknown := set(given) - {field.label for field in wanted}:
                raise ValueError(f"{pgn} has no such fields: {sorted(unknown)}")
            for field in wanted:
                value = given.get(field.label)
                if field.rule == "convert_self_described_before":
                    field = self._field(field.number, field.label, before)
                raw, bits = raw_of(field, value)
                word |= raw << position
                position, before = position + bits, value
        word |= (1 << -position % 8) - 1 << position  # an odd number of half bytes
        return word.to_bytes(position + 7 >> 3, "little")

    def parameter(self, pgn, label, value):
        """Number and bytes of a field, as group functions name it: the bytes are as many as the field has."""
        field = next(field for field in self.fields(pgn)[1] if field.label == label)
        raw, bits = raw_of(field, value)
        return field.number, raw.to_bytes(bits + 7 >> 3, "little")


def raw_of(field, value):
    """The raw number of a value and its bits."""
    if field.rule in ("convert_text_short", "convert_text_medium"):
        value = (short_text if field.rule == "convert_text_short" else medium_text)(value or "")
    elif field.rule == "convert_text_fixed" and value is not None:
        if len(value) * 8 > field.bits:
            raise ValueError(f"{field.label}: {value} is too long")
        value = value.encode("ascii").ljust(field.bits // 8, b"\xff")
    if isinstance(value, bytes):
        return int.from_bytes(value, "little"), len(value) * 8
    if field.rule == "convert_undefined":  # the closing "repeat as needed" rows
        return 0, 0
    if value is None and field.rule == "convert_ais_spare":
        value = 0
    top = (1 << field.bits - field.signed) - 1
    if value is None or value is ERROR:
        return top - (value is ERROR), field.bits
    raw = round(value) if field.step == 1 else round(value / field.step)
    codes = 0 if field.rule.startswith("convert_bit") or field.bits < 8 else 3  # kept for "no value"
    if not (-top - 1 if field.signed else 0) <= raw <= top - codes:
        raise ValueError(f"{field.label}: {value} does not fit")
    return raw & (1 << field.bits) - 1, field.bits
