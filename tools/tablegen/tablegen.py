#!/usr/bin/env python3
"""Checks the tables under data/ and turns them into C++ include fragments."""

import argparse
import sys
from pathlib import Path

from checks import check_tables
from corrected import BadRow
from corrected_plans import keyed_messages
from emit import write_fragments
from overlay import check_overlay, read_overlay
from keys import base_keys, key_lines
from plans import repeating_groups, shown_label
from tables import Report, read_tables


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--data", type=Path, default=Path("data"), help="folder of the tables")
    parser.add_argument("--out", type=Path, help="folder that gets the fragments")
    parser.add_argument("--summary", action="store_true", help="print the summary of the tables")
    parser.add_argument("--check-summary", action="store_true",
                        help="fail when summary.txt does not describe the tables")
    parser.add_argument("--new-keys", action="store_true", help="print the rows that keys.tsv lacks")
    options = parser.parse_args(arguments)

    report = Report()
    tables = read_tables(options.data, report)
    overlay = read_overlay(tables, options.data, report)
    if not report.messages:
        check_tables(tables, report, not options.new_keys)
        check_overlay(tables, overlay, report)
    summary = "".join(f"{line}\n" for line in tables.summary)
    if options.check_summary and not report.messages:
        check_summary(options.data / "summary.txt", summary, report)
    for message in report.messages:
        print(message, file=sys.stderr)
    if report.messages:
        return 1
    try:
        write(tables, overlay, summary, options)
    except BadRow as error:
        print(error, file=sys.stderr)
        return 1
    return 0


def write(tables, overlay, summary, options):
    if options.new_keys:
        found, _ = base_keys(tables, repeating_groups(tables), shown_label)
        for line in key_lines([*found.missing, *keyed_messages(tables, overlay)[2].missing]):
            print(line)
    if options.summary:
        print(summary, end="")
    if options.out:
        write_fragments(tables, overlay, options.out)


def check_summary(path, summary, report):
    kept = path.read_text(encoding="utf-8") if path.exists() else ""
    if kept != summary:
        report.add(path, "stale, write it anew with --summary")


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
