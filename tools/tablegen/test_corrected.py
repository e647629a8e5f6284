#!/usr/bin/env python3
"""Tests of the corrected definitions: how rows of the corrections are read, and what holds for all of the data."""

import tempfile
import unittest
from pathlib import Path
from types import SimpleNamespace as Row

from analyzer import analyzer_fragments
from corrected import BadRow, corrected_messages
from corrected_plans import plan_corrected
from overlay import MOST_BITS, read_overlay
from plans import make_plans
from tables import FLAGS, MAX_PAYLOAD, NO_CLASS, Report, read_tables
from test_tablegen import lines

DATA = Path(__file__).resolve().parents[2] / "data"
MESSAGE = "pgn variant name match length packet priority groups source"
FIELD = "pgn variant field label size coding resolution offset unit texts options"

# size, coding, resolution, offset, unit, options: kind, times, over, offset, rule, codes that are none, lowest of the
# highest ones; quantity.
READINGS = (
    ("2B u 0.01 - m/s -", "u16 1 100 0 speed_m_s_from_m_s - 65533", "speed"),
    ("2B u 0.1 - km/h -", "u16 1 36 0 speed_m_s_from_m_s - 65533", "speed"),
    ("2B i 0.01 - m/s:wind_speed none=0x8000", "i16 1 100 0 speed_m_s_from_m_s -32768 -", "wind_speed"),
    ("1B i 1e-3 -5 L -", "i8 1 1000000 -5 volume_l_from_m3 - 125", "volume"),
    ("4B u 1 - L/h none=9;error=8", "u32 1 1000 0 volume_l_from_m3 9,8 -", "flow"),
    ("3B u 0.1 - Ah -", "u24 360 1 0 charge_ah_from_C - 16777213", "charge"),
    ("2B i 10 - Pa/h -", "i16 10 1 0 pressure_rate_from_Pa_h - 32765", "pressure_rate"),
    ("2B i 10 - Pa -", "i16 10 1 0 pressure_pa_from_Pa - 32765", "pressure"),
    ("4B i 1e-7 - deg:latitude -", "i32 1 10000000 0 latitude_32 - 2147483645", "latitude"),
    ("2B u 0.01 - K -", "u16 1 100 0 temperature_k - 65533", "temperature"),
    ("2B u 0.01 - K:no_quantity -", "u16 1 100 0 every - 65533", None),
    ("1B u 1 - % none=-", "u8 1 1 0 only_percent - -", "percent"),
    ("4B float 0.5 - m -", "f32 1 2 0 length_cm_from_m - -", "depth"),
    # Of less than a byte the highest code is none, of a bit none is.
    ("1b u - - - -", "u1 1 1 0 every - -", None),
    ("2b u - - - -", "u2 1 1 0 every - 3", None),
    ("7b i - - - -", "i7 1 1 0 every - 63", None),
    ("8B u - - - -", "u64 1 1 0 every -1 -", None),
    ("8B i - - - -", "i64 1 1 0 every - 9223372036854775805", None),
    # Codes have none unless they say so.
    ("4b code - - - -", "u4 1 1 0 every - -", None),
    ("4b code - - - error=14;none=15", "u4 1 1 0 every 15,14 -", None),
)


class SmallTest(unittest.TestCase):
    """A few corrections beside the tables of the project."""

    @classmethod
    def setUpClass(cls):
        cls.tables = read_tables(DATA, Report())

    def overlay(self, **files):
        with tempfile.TemporaryDirectory() as folder:
            for name, content in files.items():
                path = Path(folder, "corrections", {"fields": "fields/a", "texts": "texts/a"}.get(name, name) + ".tsv")
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text("".join(f"{line}\n" for line in content), encoding="utf-8")
            report = Report()
            found = read_overlay(Row(**{**vars(self.tables), "summary": []}), Path(folder), report)
        self.assertEqual(report.messages, [])
        return found

    def messages(self, **files):
        found, context = corrected_messages(self.tables, self.overlay(**files))
        return {(row.pgn, row.variant): row for row in found}, context

    def one_message(self, *rows, groups="-", texts=()):
        """Fragments that tell how the fields of a message of these rows depend on each other."""
        overlay = self.overlay(
            messages=lines(MESSAGE, f"131100 one One - - transport 6 {groups} ours"),
            fields=lines(FIELD, *(f"131100 one {number} {row}" for number, row in enumerate(rows, 1))),
            texts=[*lines("set manufacturer_code values", "137 Own ours"), *texts])
        plans = make_plans(self.tables)
        tables = Row(**vars(self.tables))
        out = plan_corrected(tables, overlay, plans)
        message = next(found for found in out.listed if found.variant == "one")
        first = message.first - out.first_row
        extras = [out.extras[int(line.split(", ")[11])] for line in out.field_lines[first:first + len(rows)]]
        return extras, message

    def test_readings(self):
        fields = [f"131100 one {number} X {' '.join(row.split()[:-1])} - {row.split()[-1]}"
                  for number, (row, _, _) in enumerate(READINGS, 1)]
        found, context = self.messages(messages=lines(MESSAGE, "131100 one One - - transport 6 - ours"),
                                       fields=lines(FIELD, *fields))
        for field, (row, reading, quantity) in zip(found[131100, "one"].fields, READINGS):
            with self.subTest(row):
                codes, first_reserved = field.reading[6:]
                told = [*field.reading[1:6], ",".join(map(str, codes)) or "-",
                        "-" if first_reserved is None else first_reserved]
                self.assertEqual(" ".join(map(str, told)), reading)
                self.assertEqual(field.quantity, NO_CLASS if quantity is None else context.tables.class_of[quantity])

    def test_what_cannot_be_is_told(self):
        cases = (
            (("Text - text_lau - - - - -", "Far 1B code - - - dd~117 -", "More - text_lau - - - - -",
              "Course 2B u 1e-4 - rad:direction - reference=2"), "nothing tells where field 2 stands"),
            (("Speed 2B u 1 - m/s:voltage - -",), "m/s cannot be shown in"))
        for rows, message in cases:
            with self.subTest(message), self.assertRaisesRegex(BadRow, rf"a\.tsv:\d+: .*{message}"):
                self.one_message(*rows)

    def analyzer(self, name, text):
        overlay = self.overlay(**{"analyzer-names": lines("pgn variant name key", *name),
                                  "analyzer-texts": lines("set value text", *text)})
        return analyzer_fragments(overlay, plan_corrected(self.tables, overlay, make_plans(self.tables)))

    def test_names_of_the_analyzer_that_cannot_be(self):
        good = "127250 - Heading deviation"
        for names, texts, message in (
                (["127250 - Heading speed"], [], "names.tsv:2: no field has the key speed"),
                (["- - Heading no_such"], [], "names.tsv:2: no field has the key no_such"),
                (["- - Heading -"], [], "names.tsv:2: no field has the key -"),
                (["127250 x Heading deviation"], [], "names.tsv:2: pgn 127250 has no variant x"),
                ([good, "127250 - heading variation"], [], "names.tsv:3: stands twice"),
                ([good], ["1117 1 Magnetic"], "texts.tsv:2: unknown set 1117"),
                ([good], ["117 1 A", "117 2 a"], "texts.tsv:3: stands twice")):
            with self.subTest(message), self.assertRaisesRegex(BadRow, message):
                self.analyzer(names, texts or ["117 1 A"])

    def test_variants_in_the_order_in_which_they_are_tried(self):
        """Conditions first, then the base's, by message number before any, then what has no condition."""
        header = [f"{number} {row}" for number, row in enumerate(
            ("Maker 11b code - - - manufacturer_code -", "Rest 2b reserved - - - - -", "Group 3b code - - - - -"), 1)]
        overlay = self.overlay(
            messages=lines(MESSAGE, "61184 any Any 0:11=137;13:3=4;24:8=200 - single 6 - ours",
                           "131100 long Long - 9.. transport 6 - ours", "131100 short Short - - transport 6 - ours"),
            fields=lines(FIELD, *(f"61184 any {row}" for row in header), "61184 any 4 Rest 5B bytes - - - - -",
                         "131100 long 1 A 9B bytes - - - - -", "131100 short 1 A - bytes - - - - -"),
            texts=lines("set manufacturer_code values", "137 Own ours"))
        found, _ = corrected_messages(self.tables, overlay)
        variants = {pgn: [row.variant for row in found if row.pgn == pgn] for pgn in (61184, 131100, 126208)}
        self.assertEqual(variants[131100], ["long", "short"])
        self.assertEqual(variants[61184][0], "any")
        numbers = [row.rank for row in found if row.pgn == 61184]
        self.assertEqual(numbers, sorted(numbers))
        self.assertEqual(variants[126208], ["0", "1", "2", "3", "4", "5", "6", "other"])


class DataTest(unittest.TestCase):
    """What holds for all corrected definitions of the project."""

    @classmethod
    def setUpClass(cls):
        report = Report()
        cls.tables = read_tables(DATA, report)
        cls.overlay = read_overlay(cls.tables, DATA, report)
        assert not report.messages
        cls.messages, cls.context = corrected_messages(cls.tables, cls.overlay)
        cls.fields = [(f"{found.pgn} {found.variant} field {field.number} {field.label}", found, field)
                      for found in cls.messages for field in found.fields]

    def test_every_variant_is_reached(self):
        """By a message that has its conditions and length, with one byte or another elsewhere."""
        tried = {}
        for found in self.messages:
            tried.setdefault(found.pgn, []).append(found)
        for found in self.messages:
            forms = []
            for filler in (0, 0xFF, 0x5A, 0x33, 0xC7):
                payload = int.from_bytes(bytes([filler]) * MAX_PAYLOAD, "little")
                for bit, width, value in found.match:
                    payload = payload & ~(((1 << width) - 1) << bit) | value << bit
                for length in found.length or (24, MAX_PAYLOAD):
                    forms.append(next((row.variant for row in tried[found.pgn] if takes(row, payload, length)), None))
            # The name alone, for what no variant takes.
            self.assertTrue(found.variant in forms or not found.fields, f"{found.pgn} {found.variant}: {forms}")

    def test_enumerations_fit_their_fields(self):
        for name, _, field in self.fields:
            if field.texts is None:
                continue
            (shown, by), enumeration = field.texts, self.context.sets[field.texts[0]]
            self.assertTrue(enumeration.entries, f"{name}: {shown}")
            if enumeration.kind != FLAGS and field.bits and not by:
                self.assertFalse([entry.value for entry in enumeration.entries if entry.value >> field.bits], name)

    def test_labels_and_texts_have_no_blanks_around_them(self):
        texts = [field.label for _, _, field in self.fields]
        texts += [entry.text for found in self.context.sets.values() for entry in found.entries]
        self.assertEqual([text for text in texts if text != text.strip()], [])

    def test_flags_of_the_base_are_what_bits_count(self):
        changed = [row for found in self.tables.sets for row in self.overlay.set_changes
                   if found.kind == FLAGS and row.dd == found.dd]
        for entry in [entry for found in self.tables.sets if found.kind == FLAGS for entry in found.entries] + changed:
            self.assertEqual(entry.value.bit_count(), 1, entry.place)

    def test_codes_that_are_none_are_looked_at(self):
        for name, _, field in self.fields:
            if field.options.keys() & {"none", "error"}:
                self.assertIn(field.reading[0], ("whole", "measured"), name)
                codes = {code & ((1 << field.bits) - 1) for code in field.reading[6]}
                self.assertEqual(codes, {field.options[key] for key in ("none", "error")
                                         if field.options.get(key) is not None}, name)

    def test_numbers_have_the_size_of_their_fields(self):
        for name, _, field in self.fields:
            if field.reading[0] in ("whole", "measured"):
                self.assertEqual(int(field.reading[1][1:]), field.bits, name)
                self.assertLessEqual(field.bits, MOST_BITS, name)

    def test_units_of_a_quantity_are_served(self):
        """Each unit that is offered, and no two of them alike, as if they were the same."""
        alike = ({"deg_mag", "deg_true"}, {"W", "VA", "VAR"}, {"kW", "kVA", "kVAR"})  # the same by another name
        seen = set()
        for name, _, field in self.fields:
            rule = field.reading[5] if field.reading[0] == "measured" else "every"
            own_code = rule in ("every", "temperature_k") or field.quantity >= NO_CLASS
            if own_code or (rule, field.quantity) in seen:
                continue
            seen.add((rule, field.quantity))
            factors = self.context.factors[rule]
            by_factor = {}
            for unit in {unit.number: unit for unit in self.context.preferred[field.quantity]}.values():
                if not unit.id.startswith(("bft", "mOhm", "mohm")):
                    self.assertIn(unit.number, factors, f"{name}: {unit.id} by {rule}")
                    by_factor.setdefault(factors[unit.number], set()).add(unit.id)
            for ids in by_factor.values():
                self.assertTrue(len(ids) == 1 or any(ids <= group for group in alike), f"{name}: {ids} by {rule}")
        self.assertGreater(len(seen), 30)

    def test_directions_refer_to_what_their_labels_say(self):
        for name, _, field in self.fields:
            if field.quantity == self.context.tables.class_of["direction"]:
                is_true, refers = "true" in field.options, "reference" in field.options
                self.assertTrue(refers or is_true != ("magnetic" in field.label.lower()), name)


def takes(row, payload, length):
    least, most = row.length or (0, MAX_PAYLOAD)
    return least <= length <= most and all(
        bit + width <= 8 * length and payload >> bit & ((1 << width) - 1) == value for bit, width, value in row.match)


if __name__ == "__main__":
    unittest.main()
