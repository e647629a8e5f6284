#!/usr/bin/env python3
"""Checks the table of recording formats and makes of it what code, manual and help say of them."""

import argparse
import re
import sys
import textwrap
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tablegen"))

from tables import Report, Row, ascii_text, choice, read_table  # noqa: E402

DOCUMENT_MARK = "<!-- what follows is made of host/readers/formats.tsv by tools/formats -->\n"
TABLE_MARKS = ("<!-- from here to the next mark made of host/readers/formats.tsv by tools/formats -->\n", "<!-- end -->\n")
HOLDS = {"messages": "whole messages", "frames": "frames", "either": "whole messages or frames"}
TIMES = {"epoch": "date and time", "day": "time of day", "start": "time since some start", "none": "none"}
MAX_NAME = 24  # characters of a name, so that the help has its columns
MAX_ABOUT = 84
SHOWN_BYTES = 32  # of a binary sample


def matching(pattern, what):
    def parse(cell):
        if not re.fullmatch(pattern, cell):
            raise ValueError(f"'{cell}' is no {what}")
        return cell
    return parse


def format_name(cell):
    if len(cell) > MAX_NAME:
        raise ValueError(f"'{cell}' has more than {MAX_NAME} characters")
    return matching(r"[a-z0-9]+(-[a-z0-9.]+)*", "name in lower case")(cell)


def other_name(cell):
    return "" if cell == "-" else format_name(cell)


def origins(cell):
    found = [choice(*TIMES)(word) for word in cell.split(",")]
    if len(set(found)) < len(found):
        raise ValueError(f"'{cell}' names one twice")
    return found


def sample(cell):
    """(bytes, whether they are text)."""
    if not cell.startswith("hex "):
        parts = re.split(r"(\\n|\\x[0-9A-F]{2})", ascii_text(4000)(cell))
        if any("\\" in part for part in parts[::2]):
            raise ValueError(r"has a \ that begins neither \n nor \xHH")
        escapes = {part: b"\n" if part == r"\n" else bytes.fromhex(part[2:]) for part in parts[1::2]}
        return b"".join(escapes.get(part, part.encode()) for part in parts) + b"\n", True
    found = b""
    for word in cell.split()[1:]:
        match = re.fullmatch(r"((?:[0-9A-F]{2})+)(?:\*([1-9][0-9]{0,3}))?", word)
        if not match:
            raise ValueError(f"'{word}' is neither hexadecimal bytes nor such a byte and *COUNT")
        found += bytes.fromhex(match[1]) * int(match[2] or 1)
    return found, False


COLUMNS = {"name": format_name, "also": other_name, "class": matching(r"[A-Z][A-Za-z0-9]*", "class"),
           "header": matching(r"[a-z0-9_]+\.h", "header of this folder"), "holds": choice(*HOLDS), "times": origins,
           "about": ascii_text(MAX_ABOUT), "written_by": ascii_text(400), "sample": sample}


def read_formats(path, report):
    rows = read_table(Row(summary=[]), path.parent, path.name, COLUMNS, report)
    if report.messages:
        return []
    names = set()
    for row in rows:
        for name in filter(None, (row.name, row.also)):
            if name in names:
                report.add(row.place, f"name {name} stands twice")
            names.add(name)
        if not (path.parent / row.header).exists():
            report.add(row.place, f"there is no {row.header}")
        row.writer = f"{row.name.replace('-', '_')}_writer.h"
        row.is_written = (path.parent.parent / "writers" / row.writer).exists()
    return rows


def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def code_rows(rows):
    return [f"format<{getattr(row, 'class')}>({quoted(row.name)}, {quoted(row.also)}, {quoted(row.about)}),"
            for row in rows]


def header_rows(rows):
    return [f'#include "readers/{header}"' for header in sorted({row.header for row in rows})]


def writer_rows(rows):
    return [f'{{"{row.name}", make<{"".join(word.title() for word in row.name.split("-"))}Writer>}},'
            for row in rows if row.is_written]


def writer_headers(rows):
    return [f'#include "writers/{row.writer}"' for row in rows if row.is_written]


def facts(row):
    times = ", or ".join(TIMES[origin] for origin in row.times)
    written = " vistel convert writes it, too." if row.is_written else ""
    also = f" Its name may also be given as {row.also}." if row.also else ""
    return f"Holds {HOLDS[row.holds]}; times: {times}. Written by {row.written_by}.{written}{also}"


def sample_rows(rows):
    return [f"{{{quoted(row.name)}, {quoted(row.holds)}, {quoted(','.join(row.times))}, "
            f"{{{', '.join(str(byte) for byte in row.sample[0])}}}}}," for row in rows]


def manual(rows):
    """The list of the man page."""
    def escaped(text):
        return text.replace("\\", "\\e").replace("-", "\\-")
    return "\n".join(f".TP\n.B {escaped(row.name)}\n{escaped(row.about)}.\n{escaped(facts(row))}" for row in rows)


def document(rows):
    return "".join(document_section(row) for row in rows)


def document_section(row):
    data, is_text = row.sample
    if is_text:
        lines = data.decode("latin-1").splitlines()
    else:
        lines = textwrap.wrap(data[:SHOWN_BYTES].hex(" ").upper(), 3 * 16)
        lines[-1] += " ..." if len(data) > SHOWN_BYTES else ""
    code = "\n".join("    " + "".join(c if " " <= c <= "~" else f"\\x{ord(c):02X}" for c in line) for line in lines)
    text = textwrap.fill(facts(row), 120, break_on_hyphens=False)
    return f"\n## {row.name}\n\n{row.about}\n\n{text}\n\n{code}\n"


def overview(rows):
    """A table in Markdown."""
    lines = ["| format | | holds | also written |", "|---|---|---|---|"]
    for row in rows:
        names = ", ".join(f"`{name}`" for name in (row.name, row.also) if name)
        lines.append(f"| {names} | {row.about} | {HOLDS[row.holds]} | {'yes' if row.is_written else ''} |")
    return "".join(f"{line}\n" for line in lines)


def with_rows(path, rows):
    """The document with the sections, or the table, that the rows make."""
    text = path.read_text(encoding="utf-8")
    if DOCUMENT_MARK in text:
        return text.partition(DOCUMENT_MARK)[0] + DOCUMENT_MARK + document(rows)
    before, first, rest = text.partition(TABLE_MARKS[0])
    return before + first + overview(rows) + TABLE_MARKS[1] + rest.partition(TABLE_MARKS[1])[2]


def write_changed(path, text):
    """Leaves a file as it is that has this text, so that nothing is compiled anew."""
    if not path.exists() or path.read_text(encoding="utf-8") != text:
        path.write_text(text, encoding="utf-8")


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("table", type=Path)
    parser.add_argument("--out", type=Path, help="folder that gets the fragments for C++ and manual")
    parser.add_argument("--document", type=Path, nargs="+", default=[], help="documents whose rows are written anew")
    parser.add_argument("--check-document", type=Path, nargs="+", default=[], help="documents that must have the rows")
    options = parser.parse_args(arguments)
    report = Report()
    rows = read_formats(options.table, report)
    for path in options.check_document if not report.messages else []:
        if path.read_text(encoding="utf-8") != with_rows(path, rows):
            report.add(path, "stale, write it anew with --document")
    for message in report.messages:
        print(message, file=sys.stderr)
    if report.messages:
        return 1
    for path in options.document:
        path.write_text(with_rows(path, rows), encoding="utf-8")
    if options.out:
        options.out.mkdir(parents=True, exist_ok=True)
        for name, lines in {"format_headers.inc": header_rows(rows), "format_rows.inc": code_rows(rows),
                            "format_samples.inc": sample_rows(rows), "writer_headers.inc": writer_headers(rows),
                            "writer_rows.inc": writer_rows(rows), "formats.man": [manual(rows)]}.items():
            write_changed(options.out / name, "\n".join(lines) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
