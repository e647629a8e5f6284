#!/usr/bin/env python3
"""Tests of the generator: a small good table, and one bad row for each rule."""

import contextlib
import io
import tempfile
import unittest
from pathlib import Path

from formats import DOCUMENT_MARK, main

HEADER = "name also class header holds times about written_by sample"
TEXT = r'one-2 uno OneFormat one_format.h frames day,none Says~"one"~\~so a~gateway~of~somebody a\nb\xFF'
BYTES = "two - TwoFormat one_format.h either epoch Others b hex~0A0B~00*40"


def table(*rows):
    """Blanks part the cells, tildes stand for blanks."""
    return "".join(row.replace(" ", "\t").replace("~", " ") + "\n" for row in (HEADER, *rows))


class FormatsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name, "readers")
        for name in ["readers/one_format.h", "writers/one_2_writer.h"]:
            path = Path(folder.name, name)
            path.parent.mkdir()
            path.touch()

    def run_main(self, rows, *arguments):
        (self.folder / "formats.tsv").write_text(table(*rows), encoding="utf-8")
        told = io.StringIO()
        with contextlib.redirect_stderr(told):
            status = main([str(self.folder / "formats.tsv"), "--out", str(self.folder / "out"), *arguments])
        return status, told.getvalue().replace(str(self.folder) + "/", "")

    def made(self, name):
        return (self.folder / "out" / name).read_text(encoding="utf-8")

    def test_fragments(self):
        self.assertEqual(self.run_main([TEXT, BYTES]), (0, ""))
        self.assertEqual(self.made("format_headers.inc"), '#include "readers/one_format.h"\n')
        self.assertEqual(self.made("format_rows.inc").splitlines(),
                         [r'format<OneFormat>("one-2", "uno", "Says \"one\" \\ so"),', 'format<TwoFormat>("two", "", "Others"),'])
        self.assertEqual(self.made("format_samples.inc").splitlines(),
                         ['{"one-2", "frames", "day,none", {97, 10, 98, 255, 10}},',
                          '{"two", "either", "epoch", {10, 11' + ", 0" * 40 + "}},"])
        self.assertEqual(self.made("writer_rows.inc"), '{"one-2", make<One2Writer>},\n')
        self.assertEqual(self.made("writer_headers.inc"), '#include "writers/one_2_writer.h"\n')
        self.assertIn("\n.B one\\-2\nSays \"one\" \\e so.\nHolds frames; times: time of day, or none.",
                      self.made("formats.man"))

    def test_document(self):
        document = self.folder / "formats.md"
        document.write_text("By hand.\n" + DOCUMENT_MARK + "stale\n", encoding="utf-8")
        path = str(document)
        self.assertEqual(self.run_main([TEXT], "--check-document", path),
                         (1, "formats.md: stale, write it anew with --document\n"))
        self.assertEqual(self.run_main([TEXT, BYTES], "--document", path), (0, ""))
        self.assertEqual(self.run_main([TEXT, BYTES], "--check-document", path), (0, ""))
        written = document.read_text(encoding="utf-8")
        self.assertTrue(written.startswith("By hand.\n") and "stale" not in written)
        self.assertIn("\n    a\n    b\\xFF\n", written)
        self.assertIn("\n    0A 0B" + " 00" * 14 + "\n    00" + " 00" * 15 + " ...\n", written)

    def test_bad_rows(self):
        for old, new, message in [
                ("one-2", "One", "name 'One' is no name in lower case"), ("one-2", "o" * 25, "has more than 24"),
                ("OneFormat", "one", "class 'one' is no class"), ("one_format.h", "a/b.h", "no header of this folder"),
                ("one_format.h", "other.h", "there is no other.h"), (" frames", " both", "holds 'both' is not one of"),
                ("day,none", "day,day", "times 'day,day' names one twice"), ("day,none", "noon", "'noon' is not one of"),
                ("a~gateway~of~somebody", "", "written_by has 0 characters"), ("one-2", "two", "name two stands twice"), ("uno", "two", "name two stands twice"),
                (r"a\nb\xFF", r"a\tb", r"begins neither \n nor \xHH"), (r"a\nb\xFF", "hex~0", "'0' is neither"),
                (r"a\nb\xFF", "", "sample has 0 characters"), (" frames", "", "has 8 cells, not 9")]:
            with self.subTest(message):
                status, told = self.run_main([BYTES, TEXT.replace(old, new)])
                self.assertEqual((status, told.count("\n")), (1, 1))
                self.assertIn("formats.tsv:3: ", told)
                self.assertIn(message, told)


if __name__ == "__main__":
    unittest.main()
