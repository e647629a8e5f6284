#!/usr/bin/env python3
"""Checks that the tables under data/ agree with each other, and both sets of definitions with the public ones."""

import argparse
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tablegen"))

from definitions import check_definitions, corrected, fixed_messages, read_definitions  # noqa: E402
from findings import Findings, read_known, unexplained  # noqa: E402
from overlay import read_overlay  # noqa: E402
from sizes import check_sizes  # noqa: E402
from tables import Report, read_tables  # noqa: E402
from texts import check_labels, check_sets, labels_of_groups  # noqa: E402


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--data", type=Path, default=Path("data"), help="folder of the tables")
    parser.add_argument("--known", type=Path, default=Path(__file__).resolve().parent / "known.tsv",
                        help="what the rules may find, with the reason")
    parser.add_argument("--labels", action="store_true",
                        help="print the labels in repeating groups, numbered or not")
    parser.add_argument("--count", action="store_true",
                        help="print how much was compared, and what is known or mended by the corrections")
    options = parser.parse_args(arguments)

    report = Report()
    tables = read_tables(options.data, report)
    overlay = read_overlay(tables, options.data, report)
    definitions = read_definitions(tables, options.data, report)
    known = read_known(tables, options.known, report)
    messages = report.messages
    if not messages:
        found, fixed = Findings(), Findings()
        check_sizes(tables, found)
        check_definitions(fixed_messages(tables), definitions, fixed)
        compared = check_definitions(corrected(tables, overlay), definitions, found)
        mended = fixed.not_in(found)
        check_labels(tables, found)
        check_sets(tables, found)
        messages = found.messages(known, overlay) + unexplained(mended, overlay)
    for message in messages:
        print(message, file=sys.stderr)
    if messages:
        return 1
    if options.count:
        print(f"{compared} fields compared, {len(found.found)} findings known, {len(mended)} differences mended")
    if options.labels:
        for line in labels_of_groups(tables):
            print(line)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
