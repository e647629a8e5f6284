"""Tests of the corrections, data/corrections/, on the tables of test_tablegen."""

import unittest

from test_tablegen import TablesTest, good_tables, lines

HEAD = "0:11=176;13:3=4"
FIELD_ROW = "pgn variant field label size coding resolution offset unit texts options"


def maker_fields(variant, *rows):
    """The fields of a message of 130816, header first."""
    header = ("Maker 11b code - - - maker -", "Reserved 2b reserved - - - - -", "Industry 3b code - - - - none=7")
    return [f"130816 {variant} {number} {row}" for number, row in enumerate((*header, *rows), 1)]


def good_corrections():
    return {
        "messages.tsv": lines(
            "pgn variant name match length packet priority groups source",
            f"130816 ping Maker:~Ping {HEAD};20:4=1 - fast 7 5..6 canboat",
            f"130816 keys Maker:~Keys {HEAD} - fast 7 9..9*8 canboat~incomplete",
            "131100 long Long - 9.. transport 6 - canboat", "131100 short Short - 4 transport 6 - canboat"),
        "fields/a.tsv": lines(
            FIELD_ROW,
            *maker_fields("ping", "Kind 1B code - - - - key", "Depth 2B i 0.01 -5 m:depth - none=0xFFFF",
                          "Bits 1B flags - - - bits -"),
            *maker_fields("keys", "Key 12b key - - - keys -", "Length 4b key_length - - - - -",
                          "Value - key_value - - - - bytes_from=5-1", "Name - text_lau - - - - ais",
                          "Count 1B u - - - maker -", "Item 4b u - - - - -")),
        "fields/b.tsv": lines(
            FIELD_ROW, "131100 long 1 Reference 1B code - - - dd~9 -",
            "131100 long 2 Course 2B u 1e-4 - rad - reference=1;relative=2..4",
            "131100 long 3 Count 2B u - - - - -", "131100 long 4 Data - bytes - - - - bits_from=3",
            "131100 short 1 Time 4B time - - - - -"),
        "texts/a.tsv": lines("set maker values", "137 Own ours", "176 Other listing",
                             "set bits flags", "0 Low canboat", "40 High canboat",
                             "set keys fieldtypes", "1 Speed u 2B 0.01 m/s - canboat",
                             "2 Maker code 11b - - maker canboat"),
        "changes.tsv": lines("pgn variant field column value reason", "126208 3 1 label Number more~of~it",
                             '126208 3 1 size 2B "', "126208 4 - name Write why", "59904 - 2 options bits_from=1 why",
                             "59904 - 2 remove - because", "59904 - 1 texts maker~by~2 because"),
        "set_changes.tsv": lines("dd value text source reason", "9 4 - listing twice", '9 5 Fifth listing "'),
        "dd_texts.tsv": lines("dd texts reason", "172 maker complete", "1 dd~9 why"),
        "left-out.tsv": lines("pgn field what reason", "126992 1,3-4 width unproven", "- - all~of~it no~reason"),
    }


# File, number of the line to put in (one above the last appends), the line, the messages about it: one at this line, or
# any with their places.
BAD_ROWS = (
    ("messages.tsv", 2, f"130816 Ping Ping {HEAD} - fast 7 - canboat", "variant 'Ping' is no name of a variant"),
    ("messages.tsv", 2, f"130816 ping Ping {HEAD};16:8 - fast 7 - canboat", "match '16:8' is not BIT:WIDTH=VALUE"),
    ("messages.tsv", 2, f"130816 ping Ping {HEAD};16:8=256 - fast 7 - canboat",
     "match '16:8=256' does not fit a payload"),
    ("messages.tsv", 2, f"130816 ping Ping {HEAD};15:8=1 - fast 7 - canboat", "match bit 15 stands behind bit 15"),
    ("messages.tsv", 2, f"130816 ping Ping {HEAD};20:6=1 - fast 7 - canboat", "no field has the 6 bits from bit 20"),
    ("messages.tsv", 2, "130816 ping Ping 16:8=1 - fast 7 - canboat",
     "match does not begin with manufacturer code and industry group"),
    ("messages.tsv", 3, "130816 keys Keys - - fast 7 9..9*8 canboat",
     "match does not begin with manufacturer code and industry group"),
    ("messages.tsv", 4, "131100 long Long - 9..10 transport 6 - canboat",
     "length '9..10' is neither - nor N nor N.. nor ..N"),
    ("messages.tsv", 4, "131100 long Long - - transport 6 - canboat",
     "messages.tsv:5: is never reached: long takes its messages"),
    ("messages.tsv", 5, "131100 short Short - 5 transport 6 - canboat", "fields have 32 bits, the message 40"),
    ("messages.tsv", 2, f"130816 ping Ping {HEAD};16:8=1 - single 7 - canboat", "pgn 130816 is always a fast packet"),
    ("messages.tsv", 2, f"130816 ping Ping {HEAD};16:8=1 - fast 7 5 canboat",
     "groups '5' is neither FIRST..LAST nor FIRST..LAST*COUNT"),
    ("messages.tsv", 2, f"130816 ping Ping {HEAD};16:8=1 - fast 7 5..7 canboat",
     "no group of fields 5 to 7 behind field 0"),
    ("messages.tsv", 2, f"130816 ping Ping {HEAD};16:8=1 - fast 7 5..5 canboat", "fields behind 5 are never reached"),
    ("messages.tsv", 2, f"130816 ping Ping {HEAD};16:8=1 - fast 7 5..6*4 canboat",
     "field 4 is no number in front of the group"),
    ("messages.tsv", 6, "131101 more More - - transport 6 - canboat", "variant more of pgn 131101 has no fields"),
    ("fields/a.tsv", 7, "130816 ping 6 Rest 1B u - - - - -", "texts/a.tsv:4: no field shows the set bits"),
    ("fields/b.tsv", 6, "131100 tiny 1 Time 4B time - - - - -",
     "fields/b.tsv:6: no variant tiny of pgn 131100 in messages.tsv",
     "messages.tsv:5: variant short of pgn 131100 has no fields"),
    ("fields/b.tsv", 7, "131100 short 3 Rest 1B u - - - - -", "field 3 where 2 is due",
     "messages.tsv:5: fields have 40 bits, the message 32"),
    ("fields/b.tsv", 7, "131100 long 5 Rest 1B u - - - - -", "variant long of pgn 131100 has rows before, too"),
    ("fields/b.tsv", 4, "131100 long 3 Count 15b u - - - - -",
     "fields/b.tsv:5: a field without a size begins 7 bits into a byte"),
    ("fields/b.tsv", 6, "131100 short 1 Time 3B time - - - - -", "time cannot have 24 bits",
     "messages.tsv:5: fields have 24 bits, the message 32"),
    ("fields/b.tsv", 6, "131100 short 1 - 4B time - - - - -", "label is missing"),
    ("fields/b.tsv", 6, "131100 short 1 Text - text - - - - -", "text needs a size"),
    ("fields/b.tsv", 6, "131100 short 1 Time 4B time 0.1 - - - -",
     "resolution, offset and unit have no effect with time"),
    ("fields/b.tsv", 6, "131100 short 1 Time 4B duration - - - - -", "duration is in s"),
    ("fields/b.tsv", 6, "131100 short 1 Far 4B u - - parsec - -", "unit 'parsec' is no unit"),
    ("fields/b.tsv", 6, "131100 short 1 Far 4B u - - m:width - -", "unknown quantity width"),
    ("fields/b.tsv", 6, "131100 short 1 Code 4B code - - - colours -", "unknown set colours"),
    ("fields/b.tsv", 6, "131100 short 1 Code 4B code - - - dd~8 -", "unknown set dd 8"),
    ("fields/b.tsv", 6, "131100 short 1 Code 4B code - - - bits -", "a set of flags has no effect with code"),
    ("fields/b.tsv", 6, "131100 short 1 Code 4B code - - - maker~by~2 -", "texts names field 2, which is none"),
    ("fields/b.tsv", 6, "131100 short 1 Code 4B u - - - - none=-;none=1", "options names an option twice"),
    ("fields/b.tsv", 6, "131100 short 1 Code 4B u - - - - none=4294967296", "none=4294967296 does not fit 32 bits"),
    ("fields/b.tsv", 6, "131100 short 1 Code 4B code - - - - true", "true has no effect with code"),
    ("fields/b.tsv", 6, "131100 short 1 Time 4B time - - - maker -", "a set of values has no effect with time"),
    ("fields/b.tsv", 6, "131100 short 1 Text 4B text - - - - ais", "ais has no effect with text"),
    ("fields/b.tsv", 3, "131100 long 2 Course 2B u 1e-4 - rad - reference=5", "reference names field 5, which is none"),
    ("fields/b.tsv", 3, "131100 long 2 Course 2B u 1e-4 - rad - relative=2..4", "relative without reference"),
    ("fields/b.tsv", 5, "131100 long 4 Data - bytes - - - - bits_from=1", "bits_from names field 1, a code"),
    ("fields/b.tsv", 5, "131100 long 4 Data 2B bytes - - - - bits_from=3", "has a size and a field that tells it"),
    ("fields/b.tsv", 5, "131100 long 4 Data - field_value - - - - -", "no field_index in front of it"),
    ("texts/a.tsv", 10, "set maker values", "texts/a.tsv:10: set maker stands twice",
     "texts/a.tsv:10: set maker has no entries"),
    ("texts/a.tsv", 3, "137 Other listing", "value 137 stands twice"),
    ("texts/a.tsv", 6, "64 High canboat", "no field has a bit 64"),
    ("texts/a.tsv", 8, "1 Speed u 2B 0.01 m/s canboat", "has 7 cells, not 8"),
    ("changes.tsv", 8, "126208 5 1 label Number why", "variant 5 of pgn 126208 has no field 1"),
    ("changes.tsv", 8, "126208 3 3 label Number why", "variant 3 of pgn 126208 has no field 3"),
    ("changes.tsv", 8, "59904 - 2 remove - again", "pgn 59904 variant - field 2 column remove stands twice"),
    ("changes.tsv", 8, "59904 - 2 size two why", "value 'two' is neither - nor bits (4b) nor bytes (2B)"),
    ("changes.tsv", 8, "59904 - 2 priority 3 why", "priority is no column of a field"),
    ("changes.tsv", 8, '59904 - 2 coding u "', "the row before is of another field, so it has no reason for this one"),
    ("changes.tsv", 5, "59904 - 2 options reference=3 why", "reference names field 3, which is none"),
    ("changes.tsv", 8, "130816 - 1 label Maker why",
     "changes.tsv:8: variant - of pgn 130816 is replaced in messages.tsv"),
    ("fields/a.tsv", 16, "130816 keys 9 Item 3b u - - - - -", "the message ends 3 bits into a byte",
     "messages.tsv:3: a repetition of fields 9 to 9 ends inside a byte"),
    ("set_changes.tsv", 2, '9 7 Seven listing "', "the row before is of another set, so it has no reason for this one"),
    ("set_changes.tsv", 2, "9 7 - listing never", "dd 9 has no entry 7 to remove"),
    ("set_changes.tsv", 4, "8 7 Seven listing new", "unknown set dd 8"),
    ("dd_texts.tsv", 3, "7 dd~9 why", "unknown dd 7"),
    ("left-out.tsv", 2, "129024 1 width unproven", "unknown pgn 129024"),
    ("notes.tsv", 1, "a b", "notes.tsv: is no table of the corrections"),
)


class OverlayTest(TablesTest):
    def messages_about(self, corrections):
        self.write(good_tables() | {f"corrections/{name}": content for name, content in corrections.items()})
        status, _, messages = self.run_tool()
        self.assertEqual(status, 1 if messages else 0)
        return messages.replace(f"{self.data}/corrections/", "").splitlines()

    def test_good_corrections_pass(self):
        self.assertEqual(self.messages_about(good_corrections()), [])
        self.assertIn("\ncorrections/changes.tsv 6 ", self.run_tool("--summary")[1])

    def test_bad_row_is_refused_at_its_place(self):
        for name, line, row, *messages in BAD_ROWS:
            with self.subTest(row):
                corrections = good_corrections()
                corrections.setdefault(name, [])[line - 1:line] = lines(row)
                expected = [text if ".tsv:" in text else f"{name}:{line}: {text}" for text in messages]
                self.assertEqual(self.messages_about(corrections), expected)
                (self.data / "corrections" / name).unlink()


if __name__ == "__main__":
    unittest.main()
