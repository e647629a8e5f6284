#!/usr/bin/env python3
"""Makes C++ of the sets of units and the names of quantities: unit_sets.py DATA OUTPUT."""

import sys
from pathlib import Path


def rows_of(path):
    """Of a table by column, with the numbers of their lines."""
    lines = [(number, line.split("\t")) for number, line in enumerate(path.read_text("utf-8").splitlines(), 1)
             if not line.startswith("#")]
    names = lines[0][1]
    for number, cells in lines[1:]:
        if len(cells) != len(names):
            sys.exit(f"{path}:{number}: {len(cells)} columns, not {len(names)}")
    return names, [(number, dict(zip(names, cells, strict=True))) for number, cells in lines[1:]]


def main(data, output):
    quantities = {row["id"]: row["units"].split(",") for _, row in rows_of(data / "availability.tsv")[1]}
    path = data / "unit_sets.tsv"
    columns, rows = rows_of(path)
    lines = {name: [] for name in columns[1:]}
    seen = set()
    for number, row in rows:
        quantity = row["quantity"]
        if quantity not in quantities or quantity in seen:
            sys.exit(f"{path}:{number}: no quantity '{quantity}', or a second time")
        seen.add(quantity)
        for name in lines:
            if row[name] == "-":
                continue
            if row[name] not in quantities[quantity]:
                sys.exit(f"{path}:{number}: {quantity} does not offer '{row[name]}'")
            lines[name].append(f"{{quantity::{quantity}, unit::{row[name]}}},")
    made = ["constexpr std::string_view quantity_ids[] = {", *(f'"{name}",' for name in quantities), "};"]
    for name, choices in lines.items():
        made += [f"constexpr Choice {name}_units[] = {{", *choices, "};"]
    made += ["constexpr NamedSet unit_sets[] = {", *(f'{{"{name}", {name}_units}},' for name in lines), "};"]
    output.write_text("\n".join(made) + "\n", "utf-8")


main(Path(sys.argv[1]), Path(sys.argv[2]))
