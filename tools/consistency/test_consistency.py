#!/usr/bin/env python3
"""Tests of the consistency rules: a small good catalogue, and one bad row for each rule."""

import sys
import unittest
from pathlib import Path

from consistency import main

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tablegen"))
from test_tablegen import TablesTest, good_tables, lines, quantity_id  # noqa: E402


def tables():
    """File -> lines. Blanks part the cells, tildes stand for blanks; line 1 is the header."""
    good = good_tables()
    named = {"101\tunit_101\t-\t-": "101\tm_s\t-\tm/s", "102\tunit_102\t-\t-": "102\trad\t-\trad"}
    units = [named.get(row[:-2], row[:-2]) + row[-2:] for row in good["units.tsv"]]
    return good | {
        "units.tsv": units,
        "unit_factors.tsv": lines("rule unit factor", "speed_mm_s m_s 0.001", "speed_m_s m_s 1", "angle_rad rad 1"),
        "disp_data_types.tsv": lines("dd class", "3 1", "6 2"),
        "availability.tsv": lines("class id units si quantity", "0 depth - celsius -", "1 speed m_s m_s -",
                                  "2 angle rad rad -",
                                  *(f"{number} {quantity_id(number)} - celsius -" for number in range(3, 65))),
        "pgns.tsv": lines("pgn name key1 key2 key3 priority frames packet listed",
                          "127000 One~frame - - - 6 single single yes", "127001 Group - - - 6 multi fast yes",
                          "127002 Long - - - 6 multi fast yes", "130817 Own 137 4:* - 6 multi fast no"),
        "dictionary.tsv": lines("dd name df size", "1 Reserved~field 52 -", "2 State 52 4b", "3 Speed 35 -",
                                "4 Name 50 -", "5 Count 53 -", "6 Angle 4 2B", "7 Bits 52 -", "8 Nine 52 9b",
                                "9 Power 2452 -"),
        "repeat_sets.tsv": lines("pgn selector first last", "127001 255 2 4"),
        "formats.tsv": lines("df kind scale rule catalogued", "4 i16 0.0001 unit_rule_angle_rad yes",
                             "35 u16 10 unit_rule_speed_mm_s yes", "50 - - convert_text_short yes",
                             "52 - - convert_bit_field yes", "53 u8 - unit_rule_integer yes",
                             "2452 u32 - convert_ac_power yes"),
        "enums/a.tsv": lines("set 2 1 State", "0 Off", "1 On", "2 Reserved", "15 None"),
        "enums/b.tsv": lines("set 8 3 Nine", "1 Low", "2 High"),
        "fields/a.tsv": lines("pgn field label size dd key1 key2 key3",
                              "127000 1 State - 2 - - -", "127000 2 Reserved 4b 1 - - -",
                              "127000 3 Speed - 3 - - -", "127000 4 Reserved 5B 1 - - -",
                              "127001 1 Count - 5 - - -", "127001 2 First~count - 5 - - -",
                              "127001 3 First~name - 4 - - -", "127001 4 Angle - 6 - - -",
                              "127001 5 Field~2~repeated 4b 1 - - -"),
        "fields/b.tsv": lines("pgn field label size dd key1 key2 key3",
                              "127002 1 Angle - 6 - - -", "127002 2 Power - 9 - - -",
                              "127002 3 Reserved 6B 1 - - -", "130817 1 Maker 11b 1 137 4:* -",
                              "130817 2 Nine 9b 8 137 4:* -"),
        "public_definitions.tsv": lines(
            "pgn selector source field coding bits resolution unit dd",
            "127000 - listing 1 bits 4 - - 2", "127000 - listing 2 reserved 3 - - 1",
            "127000 - listing 3 reserved 1 - - 1", "127000 - listing 4 unsigned 16 0.01 m/s 3",
            "127000 - canboat 1 bits 4 - - -", "127000 - canboat 2 reserved 4 - - -",
            "127000 - canboat 3 unsigned 16 0.01 m/s -",
            "127001 - canboat 1 unsigned 8 - - -", "127001 - canboat 2 unsigned 8 - - -",
            "127001 - canboat 3 text - - - -", "127001 - canboat 4 signed 16 0.0001 rad -",
            "127002 - canboat 1 signed 16 1e-4 rad -", "127002 - canboat 2 signed 32 - VAR -"),
        "known.tsv": lines("rule subjects what reason",
                           "length 130817.137 ends~at~bit~4~of~a~byte Own~choice."),
    }


# File, number of the line to replace, the row, the messages: one at this line, or any with their places.
BAD_ROWS = (
    ("dictionary.tsv", 11, "10 Idle 4 3B", "width entry 10: 24 bits, the format reads 16"),
    ("fields/a.tsv", 5, "127000 4 Reserved 4B 1 - - -", "length 127000: 56 bits in one frame"),
    ("fields/a.tsv", 6, "127001 1 Count 16b 5 - - -", "width 127001#1: 16 bits, the format reads 8",
     "layout 127001#1: 16 bits, canboat has 8"),
    ("fields/a.tsv", 6, "127001 1 Count - 7 - - -", "width 127001#1: neither field nor entry nor format has one",
     "fields/a.tsv:7: layout 127001#2: 8 bits, canboat has 16"),
    ("fields/a.tsv", 6, "127001 1 Name - 4 - - -", "coding 127001#1: text, canboat has unsigned",
     "fields/a.tsv:7: layout 127001#2: 8 bits, canboat has 16"),
    ("fields/a.tsv", 8, "127001 3 The~First~name - 4 - - -",
     "label 127001#3: 'The First name' would lose its first six characters"),
    ("fields/b.tsv", 4, "127002 3 Reserved 2B 1 - - -", "length 127002: several frames for 64 bits"),
    ("fields/b.tsv", 4, "127002 3 Reserved 218B 1 - - -", "width 127002#3: 1744 bits, the format reads 64",
     "length 127002: 1792 bits in a fast packet"),
    ("fields/b.tsv", 4, "127002 3 Reserved 55b 1 - - -", "length 127002: ends at bit 7 of a byte"),
    ("fields/b.tsv", 5, "130817 1 Maker 12b 1 137 4:* -", "fields/b.tsv:6: length 130817.137: ends at bit 5 of a byte",
     "known"),
    ("fields/b.tsv", 6, "130817 2 Nine 8b 8 137 4:* -", "width 130817.137#2: 8 bits, entry 8 has 9",
     "start 130817.137#2: bit 3 of a byte", "length 130817.137: ends at bit 3 of a byte", "known"),
    ("fields/b.tsv", 2, "127002 1 Angle - 3 - - -", "coding 127002#1: unsigned, canboat has signed"),
    ("public_definitions.tsv", 2, "127000 - listing 1 bits 4 - - 9",
     "fields/a.tsv:2: entry 127000#1: 2, listing has 9"),
    ("public_definitions.tsv", 5, "127000 - listing 4 unsigned 16 0.1 m/s 3",
     "fields/a.tsv:4: resolution 127000#3: 0.01 m/s, listing has 0.1"),
    ("public_definitions.tsv", 5, "127000 - listing 4 unsigned 16 0.01 K 3",
     "fields/a.tsv:4: unit 127000#3: 'm/s', listing has 'K'"),
    ("public_definitions.tsv", 7, "127000 - canboat 2 bits 4 - - -",
     "fields/a.tsv:5: layout 127000: no field at bit 4, field 2 of canboat"),
    ("enums/a.tsv", 3, "2 On", "enums/a.tsv:2: gap set 2: 'Off' for 0 to 1"),
    ("enums/a.tsv", 5, "16 None", "value set 2: 16 does not fit 4 bits"),
    ("enums/b.tsv", 1, "set 7 0 Bits", "unused set 7: no field"),
    ("enums/b.tsv", 1, "set 10 3 -", "unused set 10: no dictionary entry"),
    ("public_definitions.tsv", 2, "127000 - hearsay 1 bits 4 - - 2", "source 'hearsay' is not one of listing, canboat"),
)


class ConsistencyTest(TablesTest):
    main = staticmethod(main)

    def run_tool(self, content, *options):
        self.write(content)
        status, printed, messages = super().run_tool("--known", str(self.data / "known.tsv"), *options)
        return status, printed, messages.replace(f"{self.data}/", "").splitlines()

    def test_good_tables(self):
        self.assertEqual(self.run_tool(tables()), (0, "", []))

    def test_bad_row_is_told(self):
        gone = "known.tsv:2: no longer found: length 130817.137: ends at bit 4 of a byte"
        for name, line, row, *messages in BAD_ROWS:
            with self.subTest(messages[0]):
                content = tables()
                content[name][line - 1:line] = lines(row)
                messages = [gone if message == "known" else message for message in messages]
                expected = [text if ".tsv:" in text else f"{name}:{line}: {text}" for text in messages]
                self.assertEqual(self.run_tool(content), (1, "", expected))

    def test_group_begins_on_a_byte(self):
        content = tables()
        content["repeat_sets.tsv"][1:1] = lines("127000 255 2 4")
        self.assertEqual(self.run_tool(content)[2],
                         ["fields/a.tsv:5: length 127000: repeats from bit 4 of a byte"])

    def test_corrections(self):
        """A correction agrees with one source where two differ; what it mends is known to nobody."""
        def corrected(resolution):
            cells = {"coding": "u", "size": "16b", "unit": "m/s", "resolution": resolution}
            return lines("pgn variant field column value reason",
                         *(f"127000 - 3 {column} {value} measured" for column, value in cells.items()))

        def told(resolution, *sources):
            return [f"fields/a.tsv:4: resolution 127000#3: {resolution} m/s, {source} has {theirs}"
                    for source, theirs in sources]

        content = tables()
        content["public_definitions.tsv"][7] = "\t".join("127000 - canboat 3 unsigned 16 0.1 m/s -".split())
        self.assertEqual(self.run_tool(content)[2], told("0.01", ("canboat", "0.1")))
        content["corrections/changes.tsv"] = corrected("0.1")
        self.assertEqual(self.run_tool(content, "--count"),
                         (0, "15 fields compared, 1 findings known, 1 differences mended\n", []))
        content["corrections/changes.tsv"] = corrected("0.5")
        self.assertEqual(self.run_tool(content)[2], told("0.5", ("listing", "0.01"), ("canboat", "0.1")))
        # Where the reason of an open difference stands is looked at.
        content["known.tsv"] += lines("resolution 127000#3 0.5~m/s,~listing~has~0.01 left-out.tsv",
                                      "resolution 127000#3 0.5~m/s,~canboat~has~0.1 left-out.tsv")
        content["corrections/left-out.tsv"] = lines("pgn field what reason", "127000 2-3 speed unclear")
        self.assertEqual(self.run_tool(content), (0, "", []))
        content["corrections/left-out.tsv"] = lines("pgn field what reason", "127000 1,4 speed unclear")
        self.assertEqual(self.run_tool(content)[2],
                         [f"known.tsv:{line}: left-out.tsv has no reason for 127000#3" for line in (3, 4)])

    def test_labels_of_groups(self):
        self.assertEqual(self.run_tool(tables(), "--labels")[1].splitlines(), lines(
            "127001#2 numbered First~count", "127001#3 numbered First~name", "127001#4 as~it~is Angle"))


if __name__ == "__main__":
    unittest.main()
