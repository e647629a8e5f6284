"""Tests of the table generator on a small data folder of their own."""

import contextlib
import io
import os
import tempfile
import unittest
from pathlib import Path

from keys import make_keys
from tablegen import main
from tables import MEANT_FORMATS, MEANT_QUANTITIES


def lines(*rows):
    return [row.replace(" ", "\t").replace("~", " ") for row in rows]


def unit_id(unit):
    return {68: "raw_count", 83: "raw_bits"}.get(unit, f"unit_{unit}")


def quantity_id(number):
    named = dict(zip((11, 12, 21, 22, 23, 50), MEANT_QUANTITIES))
    return named.get(number, f"class_{number}")


def good_tables():
    """File -> lines. Blanks part the cells, tildes stand for blanks; line 1 is the header."""
    return {
        "pgns.tsv": lines("pgn name key1 key2 key3 priority frames packet listed",
                          "59904 Ask - - - 6 single single yes",
                          "126208 Read 3 - - 3 multi fast yes",
                          '126720 Own~"Big"? 137 4:0xF000 1:* 6 multi fast no',
                          "126992 Fix\\~B - - - 2 single single yes", "130816 Far - - - 6 multi fast no"),
        "stream_keys.tsv": lines("pgn key1 key2 key3 key4",
                                 "59904 0[4:4] - 2 -", "126720 header 3 - -"),
        "dictionary.tsv": lines("dd name df size", "1 Reserved~field 52 -", "9 PGN 54 24b",
                                "172 - 2436 2B", "173 Format 54 -"),
        "disp_data_types.tsv": lines("dd class", "9 28", "10001 50"),
        "repeat_sets.tsv": lines("pgn selector first last", "126208 3 1 2", "126720 137 1 1"),
        "formats.tsv": lines(
            "df kind scale rule catalogued",
            *(f"{df} u16 0.5 unit_rule_plain yes" for df in range(52)),
            "52 - - convert_bits yes", "53 u8 - unit_rule_integer yes", "54 u16 10 {unit_65,unit_66} yes",
            "55 i16 1e-7 any yes",
            *(f"{df} u16 - unit_rule_plain yes" for df in range(56, 118)),
            "2436 u16 - unit_rule_plain yes", "2444 u16 - convert_df_2436 no"),
        "parsers.tsv": lines(
            "df kind rule then range offset", "0 u8 never - - -", "1 - parse_text - - -",
            "2 u16 {unit_22,raw_count}*60/360;{unit_23} *0.1 - -", "3 i64 {unit_29} /1e-6 - -",
            "4 u32 length@0.01;raw_count=unit_3 - - -",
            "5 u16 any *16384 -1..1 16384", "6 u16 seconds - i32 -", "7 i32 probe - - -",
            "8 u64 hex - - -", *(f"{df} u16 any - - -" for df in (*range(9, 118), 2436))),
        "unit_formats.tsv": lines("unit df", "unit_3 9", "celsius 4"),
        "format_list.tsv": lines("df", "2444", "2436"),
        "self_described.tsv": lines("df", "4", "1"),
        "format_classes.tsv": lines("df class", "4 7", "1 25"),
        "keys.tsv": lines("pgn variant field key", "59904 - 1 pgn", "59904 - 2 remainder", "126208 3 1 a", "126208 4 1 b",
                          "126208 3 2 c", "126720 137/4:1 1 maker"),
        "units.tsv": lines("unit id name ascii meaning", "0 celsius \u00b0C degC -",
                           *(f"{unit} {unit_id(unit)} - - -" for unit in range(1, 141))),
        "unit_factors.tsv": lines("rule unit factor", "plain celsius 2", "plain unit_1 0.5", "other celsius 1e-3"),
        "availability.tsv": lines("class id units si quantity", "0 depth unit_1,celsius celsius depth",
                                  *(f"{number} {quantity_id(number)} - {'unit_65' if number == 28 else 'celsius'} none"
                                    for number in range(1, 65))),
        "quantities.tsv": lines("label class", "Depth 0", "Course~made 8"),
        "ids.tsv": lines("kind number id", "pgn 59904 ask", "dd 9 pgn_number", "df 2444 ask",
                         *(f"df {df} {name}" for df, name in zip((41, 50, 51, 63, 117), MEANT_FORMATS))),
        "pgn_rules.tsv": lines("pgn name walk size pressure", "126720 Proprietary proprietary - -",
                               "126992 - - 2B air"),
        "special_fields.tsv": lines("pgn field dd label form quantity none shown", "- - 9 Number pgn_name - - -",
                                    "126720 1 172 - - format_inside - all"),
        "enums/a.tsv": lines("set 9 0 PGN", "4 Second", "4 Third", "6 Last guess",
                             "set 172 3 -", "1 Low", "2 High"),
        "enums/b.tsv": lines("set 1 1 Reserved~field", "0 ~'o,", "set 173 4 Format stored_order", "5 Five", "4 Four"),
        "fields/a.tsv": lines("pgn field label size dd key1 key2 key3",
                              "59904 1 PGN 24b 9 - - -", "59904 2 First~rest 2B 1 - - -",
                              "126720 1 Maker - 172 137 4:1 -"),
        "fields/b.tsv": lines("pgn field label size dd key1 key2 key3",
                              "126208 1 A - 1 3 - -", "126208 1 B - 1 4 - -",
                              "126208 2 First~C 4b 1 3 - -"),
    }


# File, number of the line to put in (one above the last appends), the line, the message about it.
BAD_ROWS = (
    ("pgns.tsv", 1, "pgn name", "columns are 'pgn name', not 'pgn name key1 key2 key3 priority frames packet listed'"),
    ("pgns.tsv", 4, f"126720 {'x' * 243} - - - 6 multi fast no", "name has a form of 278 bytes, 255 fit"),
    ("pgns.tsv", 2, "59904 Ask - - - 6 multi fast no", "pgn 59904 cannot be a fast packet"),
    ("pgns.tsv", 7, "131071 Own - - - 6 multi single no", "pgn 131071 is always a fast packet"),
    ("pgns.tsv", 6, "126992 Fix 1 - - 2 multi fast no", "pgn 126992 has packet single in a row before"),
    ("pgns.tsv", 7, "59904 Ask - - - 6 single single yes", "pgn 59904 stands after 130816"),
    ("stream_keys.tsv", 2, "59904 0[4:5] - 2 -", "key1 '0[4:5]' reaches beyond the byte"),
    ("dictionary.tsv", 6, "174 \u2126 54 -", "name '\u2126' has a character outside Latin-1"),
    ("dictionary.tsv", 4, "172 - 2444 2B", "unknown df 2444"),
    ("disp_data_types.tsv", 2, "411 28", "no class is kept for dd 411"),
    ("repeat_sets.tsv", 2, "126208 3 1 3", "pgn 126208 has no field 3"),
    ("repeat_sets.tsv", 2, "126208 3 2 1", "first 2 is above last 1"),
    ("formats.tsv", 3, "1 f32 - any yes", "f32 takes a conversion of its own"),
    ("formats.tsv", 3, "1 u8 - unit_rule_plane yes", "no factors for unit_rule_plane"),
    ("formats.tsv", 3, "1 - - any yes", "kind is missing"),
    ("formats.tsv", 3, "1 u8 1.f any yes", "scale '1.f' is not a positive decimal number"),
    ("formats.tsv", 3, "1 u8 2 unit_rule_integer yes", "scale has no effect with unit_rule_integer"),
    ("formats.tsv", 3, "1 u8 - convert_df_52 yes", "no generated conversion convert_df_52"),
    ("formats.tsv", 122, "2500 u8 - any no", "df 2500 is not in format_list.tsv"),
    ("parsers.tsv", 4, "2 u16 {unit_22};unit_23 - - -", "rule '{unit_22};unit_23' is no rule"),
    ("parsers.tsv", 4, "2 u16 {unit_22}*x - - -", "rule '*x' is no chain of steps such as *60/360"),
    ("parsers.tsv", 4, "2 u16 {unit_22};{unit_23,unit_22}*2 - - -", "rule names a unit twice"),
    ("parsers.tsv", 4, "2 u16 any *1*2/3-4 - -", "then '*1*2/3-4' has 4 steps, 3 fit"),
    ("parsers.tsv", 4, "2 u16 any - 1..1 -", "range '1..1' is neither - nor a kind nor LOW..HIGH"),
    ("parsers.tsv", 4, "2 u16 any - - 5", "offset without bounds in range"),
    ("parsers.tsv", 4, "2 - any - - -", "kind is missing"),
    ("parsers.tsv", 4, "2 u16 parse_text - - -", "kind is of no use"),
    ("parsers.tsv", 4, "2 u16 never *2 - -", "then and range have no effect with this rule"),
    ("parsers.tsv", 4, "2 u16 probe - - -", "probe makes u32 or i32"),
    ("parsers.tsv", 4, "2 i16 whole - - -", "whole makes u8, u16, u32 or u64"),
    ("parsers.tsv", 121, "2444 u16 any - - -", "no catalogued df 2444"),
    ("unit_formats.tsv", 3, "celsius 1", "no parser of 2 to 4 bytes for df 1"),
    ("units.tsv", 6, "5 m m m -", "unit 5 where 4 is due"),
    ("units.tsv", 6, "4 celsius m m -", "id celsius stands twice"),
    ("units.tsv", 6, "4 m \U0001d504 m -", "name '\U0001d504' has a character that a wide text of 16 bits cannot keep"),
    ("units.tsv", 6, "4 m m \u00b0 -", "ascii '\u00b0' has a character other than letters, digits and _./"),
    ("units.tsv", 6, "4 m m degC -", "ascii 'degC' is that of celsius, too"),
    ("keys.tsv", 7, "126720 137/4:1 2 maker",
     "no key for field 1 of pgn 126720, variant 137/4:1: append 'maker_1' (tablegen.py --new-keys prints all such rows)"),
    ("keys.tsv", 3, "59904 - 2 Rest", "key 'Rest' is no key in snake case of at most 72 characters"),
    ("unit_factors.tsv", 5, "plain unit_2 1", "rule plain goes on behind other"),
    ("availability.tsv", 2, f"0 depth {'unit_1,' * 7}unit_1 - x", "units names 8 units, 7 fit"),
    ("availability.tsv", 27, "25 class_25 - - none", "si is missing"),
    ("availability.tsv", 9, "7 class_7 - unit_3 none", "df 4 does not serve si unit_3"),
    ("ids.tsv", 10, "dd 8 other", "unknown dd 8"), ("ids.tsv", 10, "df 118 other", "unknown df 118"),
    ("special_fields.tsv", 4, "126721 1 172 - pgn_name - - -", "unknown pgn 126721"),
    ("special_fields.tsv", 4, "126720 2 172 - pgn_name - - -", "field 2 of pgn 126720 has no dd 172"),
    ("special_fields.tsv", 4, "126720 - 172 - pgn_name - - -", "pgn and field go together"),
    ("special_fields.tsv", 4, "59904 1 9 - - - - all", "shown has no effect without the walk of a proprietary message"),
    ("special_fields.tsv", 4, "59904 1 9 - - - - -", "says nothing"),
    ("enums/a.tsv", 4, "3 Last", "value 3 stands after 4"), ("enums/a.tsv", 7, "3 High", "value 3 where bit 1 is due"),
    ("enums/a.tsv", 5, "set 8 3 -", "dd 8 stands after 9"), ("enums/a.tsv", 8, "set 174 0 -", "dd 174 has no entries"),
    ("enums/a.tsv", 6, f"1 {'x' * 121}", "text has 121 characters, 1 to 120 are allowed"),
    ("enums/b.tsv", 3, "set 173 1 Format stored_order", "kind 1 has an order of its own"),
    ("enums/b.tsv", 5, "5 Four", "value 5 stands twice"),
    ("enums/b.tsv", 1, "set 1 1 Other", "dd 1 is named 'Reserved field'"),
    ("enums/b.tsv", 1, "set 9 1 PGN", "dd 9 has a set at DATA/enums/a.tsv:1, too"),
    ("fields/b.tsv", 5, "126720 1 Split - 1 - - -", "pgn 126720 has rows in DATA/fields/a.tsv, too"),
)

class TablesTest(unittest.TestCase):
    """A data folder of its own for each test of a tool."""

    main = staticmethod(main)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.data = Path(folder.name, "data")
        self.out = Path(folder.name, "out")

    def write(self, tables):
        for name, content in tables.items():
            path = self.data / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text("".join(f"{line}\n" for line in content), encoding="utf-8")

    def run_tool(self, *options):
        """(status, what it printed, its messages) of a run on the data folder."""
        printed, messages = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(printed), contextlib.redirect_stderr(messages):
            status = self.main(["--data", str(self.data), *options])
        return status, printed.getvalue(), messages.getvalue()


class KeysTest(unittest.TestCase):
    def test_keys_are_formed_of_labels_and_told_apart(self):
        rows = [(1, "Sequence ID", False), (2, "Reserved", False), (3, "SNR \"1\"", True), (4, "First PGN supported", True),
                (5, "Reserved", False), (6, "nItems", False), (7, "Ship's Name", False), (8, "Reserved 5", False),
                (9, "\u03a9", False), (10, "word " * 20, False)]
        keys = make_keys(rows, {1: "sid", 7: "reserved_2"})
        self.assertEqual([keys[field] for field in sorted(keys)], [
            "sid", "reserved_2_2", "snr", "pgn_supported", "reserved_5", "n_items", "reserved_2", "reserved_5_8", "field",
            "_".join(["word"] * 12)])


class TablegenTest(TablesTest):
    def test_bad_row_is_refused_at_its_place(self):
        for name, line, row, message in BAD_ROWS:
            with self.subTest(message):
                tables = good_tables()
                tables[name][line - 1:line] = lines(row)
                self.write(tables)
                expected = f"{self.data}/{name}:{line}: {message}\n"
                status, _, messages = self.run_tool("--out", str(self.out))
                self.assertEqual(messages, expected.replace("DATA", str(self.data)))
                self.assertEqual(status, 1)
                self.assertFalse(self.out.exists())

    def test_every_cell_is_read(self):
        """A row that stands twice, has a cell too many, one that nothing takes or a number that nothing has."""
        repeated = ("pgns.tsv", "repeat_sets.tsv", "special_fields.tsv", "quantities.tsv", "enums/a.tsv",
                    "enums/b.tsv", "fields/b.tsv")
        any_text = ("units.tsv meaning", "units.tsv name", "dictionary.tsv name", "availability.tsv quantity",
                    "quantities.tsv label", "keys.tsv variant")
        defined = ("pgns.tsv pgn", "stream_keys.tsv pgn", "dictionary.tsv dd", "formats.tsv df",
                   "self_described.tsv df", "special_fields.tsv pgn", "keys.tsv pgn")
        for name, (header, row, *rest) in good_tables().items():
            columns = ["value", "text"] if name.startswith("enums") else header.split("\t")
            cells = row.split("\t")
            cases = [] if name in repeated else [(3, "", [row, row])]
            cases.append((2, f"has {len(cells) + 1} cells", [f"{row}\t-"]))
            for i, column in enumerate(columns):
                def changed(cell):
                    return ["\t".join([*cells[:i], cell, *cells[i + 1:]])]
                if f"{name} {column}" not in any_text:
                    cases.append((2, f"{column} ", changed("\u00d8")))
                if column in ("pgn", "dd", "df", "number") and f"{name} {column}" not in defined:
                    cases.append((2, "(unknown|no) .* 9998", changed("9998")))
            for line, message, rows in cases:
                with self.subTest(f"{name}:{line}: {message}"):
                    self.write(good_tables() | {name: [header, *rows, *rest]})
                    status, _, messages = self.run_tool()
                    self.assertRegex(messages, f"(?m)^{self.data}/{name}:{line}: {message}")
                    self.assertEqual(status, 1)

    def test_tables_that_do_not_fit_each_other(self):
        cases = (
            ({"ids.tsv": good_tables()["ids.tsv"][:-1]}, "ids.tsv: no row has the id hex_dump"),
            ({"parsers.tsv": good_tables()["parsers.tsv"][:-1]}, "parsers.tsv:119: no row for df 2436"),
            ({"enums/a.tsv": lines("set 172 3 -", *(f"{1 << bit} {'x' * 30}" for bit in range(32)))},
             "enums/a.tsv:1: the texts of all bits have more than 1000 characters"),
            ({"fields/b.tsv": lines(good_tables()["fields/b.tsv"][0], "126208 1 A - 1 3 - -", "126208 3 C - 1 3 - -"),
              "repeat_sets.tsv": lines("pgn selector first last", "126208 3 1 3")},
             "fields/b.tsv:3: no way back from field 3 to field 1"))
        for tables, message in cases:
            self.write(good_tables() | tables)
            self.assertEqual(self.run_tool()[2], f"{self.data}/{message}\n")

    def test_all_bad_rows_are_told_at_once(self):
        self.write(good_tables() | {"format_list.tsv": lines("df", "x", "2436", "y"),
                                    "enums/b.tsv": lines("0 Early"),
                                    "format_classes.tsv": lines("df class")})
        (self.data / "units.tsv").write_bytes(b"unit\tid\tname\tmeaning\n0\tc\t\xb0C\t-\n")
        (self.data / "repeat_sets.tsv").unlink()
        status, _, messages = self.run_tool()
        for place in ("format_list.tsv:2", "format_list.tsv:4", "enums/b.tsv:1",
                      "format_classes.tsv:1", "units.tsv", "repeat_sets.tsv"):
            self.assertIn(f"{self.data}/{place}: ", messages)
        self.assertEqual(status, 1)

    def test_only_changed_fragments_are_written(self):
        self.write(good_tables())
        self.assertEqual(self.run_tool("--out", str(self.out)), (0, "", ""))
        for path in self.out.iterdir():
            os.utime(path, (1, 1))
        self.write({"repeat_sets.tsv": good_tables()["repeat_sets.tsv"][:2]})
        self.run_tool("--out", str(self.out))
        changed = {path.name for path in self.out.iterdir() if path.is_file() and path.stat().st_mtime > 1}
        self.assertEqual(changed, {"repeat_set_table.inc", "field_plans.inc"})

    def test_summary_tells_changes_of_content_only(self):
        self.write(good_tables())
        summary = self.data / "summary.txt"
        self.assertEqual(self.run_tool("--check-summary")[0], 1)
        summary.write_text(self.run_tool("--summary")[1], encoding="utf-8")
        self.assertRegex(summary.read_text(encoding="utf-8"), r"(?m)^fields/b\.tsv 3 [0-9a-f]{12}$")
        with open(self.data / "units.tsv", "a", encoding="utf-8") as table:
            table.write("\n# a remark\n")
        self.assertEqual(self.run_tool("--check-summary"), (0, "", ""))
        self.write({"format_list.tsv": lines("df", "2436", "2444")})
        status, _, messages = self.run_tool("--check-summary")
        self.assertEqual((status, messages),
                         (1, f"{summary}: stale, write it anew with --summary\n"))


if __name__ == "__main__":
    unittest.main()
