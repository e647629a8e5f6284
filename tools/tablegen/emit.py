"""The C++ include fragments. Each is text for the inside of one initialiser or macro list."""

from types import SimpleNamespace as Row

from analyzer import analyzer_fragments
from corrected_plans import plan_corrected
from listing import listing_fragments
from plans import (CLOSING_PGN, escaped, factor_lines, format_lines, id_lines, make_plans, rule_lines, special_lines,
                   text_literal)
from powers import power_lines
from tables import (ALWAYS_FAST, DD_RANGES, LAST_INDEXED_FORMAT, NO_CLASS, UNIT_COUNT, UNITS_PER_CLASS,
                    conversion_owner, is_addressed, number_literal)

FIELD_SENTINEL = '{9999999, 0, "", 0, 0, nullptr, 0, 0, 0, 0},'
# Closes the catalogue: within the searched range, but out of order, so that no search finds it.
PGN_CLOSING_ROW = f'{{{CLOSING_PGN}, 0, 0, 0, "", 0, 1, 7, 1}},'


# Beside the closing row of the fields.
CLOSING_PLAN = "{0, 0, 0, 0, 0, end_row, end_row, 0, 0, 0, no_set, 0, 0, Form::plain, {0, 0}, 0},"


def fragments(tables, overlay):
    """File name -> (source, lines) of every fragment."""
    plans = make_plans(tables)
    base = Row(sets=len(plans.sets), formats=len(tables.formats), fields=len(plans.fields), pgns=len(tables.pgns) + 1)
    corrected = plan_corrected(tables, overlay, plans)
    formats = {row.df: row for row in tables.formats}
    format_index = {row.df: i for i, row in enumerate(catalogued(tables))}
    parsers = {row.df: row for row in tables.parsers}
    dictionary_index = {row.dd: i for i, row in enumerate(tables.dictionary)}

    def conversion_list(rows):
        return [f"{{{row.df}, &{conversion(row.df, formats)}}}," for row in rows]

    result = {
        "pgn_table.inc": ("pgns.tsv", [*map(pgn_line, tables.pgns), PGN_CLOSING_ROW, *corrected.pgn_rows]),
        "pgn_plans.inc": ("pgns.tsv", [*plans.pgn_lines, *corrected.pgn_lines]),
        "pgn_rules.inc": ("pgn_rules.tsv", rule_lines(tables)),
        "special_fields.inc": ("special_fields.tsv", special_lines(tables)),
        "fast_packet_ranges.inc": ("pgns.tsv", fast_packet_ranges(tables.pgns)),
        "corrected_fast_packet_ranges.inc": ("corrections", fast_packet_ranges([*tables.pgns, *overlay.messages])),
        "stream_key_table.inc": ("stream_keys.tsv", map(stream_key_line, tables.stream_keys)),
        "format_plans.inc": ("formats.tsv", [*format_lines(tables), *plans.format_lines]),
        "measures.inc": ("corrections", corrected.measures),
        "variants.inc": ("corrections", corrected.variant_lines),
        "variant_parts.inc": ("corrections", corrected.part_lines),
        "variant_lists.inc": ("corrections", corrected.list_lines),
        "maker_rows.inc": ("corrections", corrected.maker_lines),
        "proprietary_ranges.inc": ("corrections", corrected.ranges),
        "field_extras.inc": ("corrections", corrected.extras),
        "catalogued_formats.inc": ("formats.tsv", [f"{row.df}," for row in catalogued(tables)]),
        "format_table.inc": ("formats.tsv", [format_line(row, parsers[row.df], formats)
                                             for row in catalogued(tables)]),
        "parser_units.inc": ("parsers.tsv", parser_units(tables.parsers)),
        "parser_table.inc": ("parsers.tsv", parser_lines(tables.parsers)),
        "unit_format_table.inc": ("unit_formats.tsv", [f"{{{row.unit.number}, {row.df}}},"
                                                       for row in tables.unit_formats]),
        "df_conv_table.inc": ("formats.tsv", [f"&{conversion(df, formats)},"
                                              for df in range(LAST_INDEXED_FORMAT + 1)]),
        "df_conv_list.inc": ("format_list.tsv", conversion_list(tables.format_list)),
        "format_class_table.inc": ("format_classes.tsv", [f"{{{row.df}, {getattr(row, 'class')}}},"
                                                          for row in tables.format_classes]),
        "dictionary_table.inc": ("dictionary.tsv", [
            f"{{{row.dd}, {narrow(row.name)}, {row.df}, {row.size[0]}, {row.size[1]}}}," for row in tables.dictionary]),
        "dictionary_formats.inc": ("dictionary.tsv", [
            f"{{{row.dd}, {narrow(row.name)}, &format_table[{format_index[row.df]}], {row.size[0]}, {row.size[1]}}},"
            for row in tables.dictionary]),
        "table_sizes.inc": ("", [f"constexpr std::size_t dictionary_size = {len(tables.dictionary)};",
                                 f"constexpr std::size_t format_count = {len(catalogued(tables))};",
                                 "// Rows of the base, its closing rows included; those of the corrections follow.",
                                 f"constexpr std::size_t base_pgns = {base.pgns};",
                                 f"constexpr std::size_t base_fields = {base.fields + 1};",
                                 f"constexpr std::size_t base_formats = {base.formats};",
                                 f"constexpr std::size_t base_sets = {base.sets};",
                                 f"constexpr std::uint16_t unknown_maker = {corrected.unknown_maker};",
                                 f"constexpr std::uint16_t any_maker = {corrected.any_maker};"]),
        "field_table.inc": ("fields", [*(field_line(row, dictionary_index) for row in plans.fields),
                                       FIELD_SENTINEL, *corrected.field_rows]),
        "field_plans.inc": ("fields", [*plans.field_lines, CLOSING_PLAN, *corrected.field_lines]),
        "text_pool.inc": ("", plans.pool.lines()),
        "repeat_set_table.inc": ("repeat_sets.tsv", map(repeat_set_line, tables.repeat_sets)),
        "unit_names.inc": ("units.tsv", [f"{wide(row.name)}," for row in tables.units]),
        "unit_texts.inc": ("units.tsv", plans.unit_lines),
        "unit_rule_names.inc": ("unit_factors.tsv", [f"{name}," for name in plans.rules]),
        "unit_factors.inc": ("unit_factors.tsv", factor_lines(plans)),
        "availability.inc": ("availability.tsv", [
            *(unit_row(row.units) for row in tables.availability), unit_row([])]),
        "si_units.inc": ("availability.tsv", [f"{row.si.number if row.si else UNIT_COUNT},"
                                              for row in tables.availability]),
        "quantity_rows.inc": ("quantities.tsv", [f"{{{narrow(row.label)}, {getattr(row, 'class')}}},"
                                                for row in tables.quantities]),
        "enum_pairs.inc": ("enums", pair_lines(plans.sets)),
        "enum_sets.inc": ("enums", set_lines(plans.sets)),
        "enum_texts.inc": ("enums", plans.entry_lines),
        "enum_plans.inc": ("enums", plans.set_lines),
        "enum_index.inc": ("enums", plans.index_lines),
        "pgn_vistel/core/ids.h": ("", id_lines(tables)),
        **{name: ("corrections", lines) for name, lines in listing_fragments(corrected, plans).items()},
        **{name: ("corrections", lines) for name, lines in analyzer_fragments(overlay, corrected).items()},
        **power_lines(),
    }
    classes = {row.dd: getattr(row, "class") for row in tables.disp_data_types}
    for low, high in DD_RANGES:
        numbers = [f"{classes.get(dd, NO_CLASS)}," for dd in range(low, high + 1)]
        result[f"dd_class_{low}.inc"] = ("disp_data_types.tsv", numbers)
    return result


def write_fragments(tables, overlay, out):
    """Writes the fragments that changed, so that the others cause no rebuild."""
    out.mkdir(parents=True, exist_ok=True)
    for name, (source, lines) in fragments(tables, overlay).items():
        banner = f"// Generated by tools/tablegen from data/{source}; do not edit"
        content = "\n".join([banner, *lines, ""]).encode("ascii")
        path = out / name
        path.parent.mkdir(parents=True, exist_ok=True)
        if not path.exists() or path.read_bytes() != content:
            path.write_bytes(content)


def catalogued(tables):
    return [row for row in tables.formats if row.catalogued == "yes"]


def pgn_line(row):
    return (f"{{{row.pgn}, {keys(row)}, {narrow(row.name)}, {int(is_addressed(row.pgn))}, "
            f"{int(row.listed == 'yes')}, {row.priority}, {int(row.frames == 'single')}}},")


def fast_packet_ranges(rows):
    """{first, last} of the PGNs that are fast packets, catalogued or not."""
    pgns = {row.pgn for row in rows if row.packet == "fast"}
    for first, last in ALWAYS_FAST:
        pgns.update(range(first, last + 1))
    firsts = sorted(pgn for pgn in pgns if pgn - 1 not in pgns)
    lasts = sorted(pgn for pgn in pgns if pgn + 1 not in pgns)
    return [f"{{{first}, {last}}}," for first, last in zip(firsts, lasts)]


def keys(row):
    return ", ".join(f"0x{key:08X}u" for key in (row.key1, row.key2, row.key3))


def stream_key_line(row):
    parts = (row.key1, row.key2, row.key3, row.key4)
    positions = ", ".join(str(position) for position, _, _ in parts)
    masks = ", ".join(f"{{{shift}, {width}}}" for _, shift, width in parts)
    return f"{{{row.pgn}, {{{positions}}}, {{{masks}}}}},"


def conversion(df, formats):
    """The contract's conversion. Formats that share one by name have the same function."""
    owner = conversion_owner(formats[df], formats)
    if owner.rule[0] == "special":
        owner = next(row for row in formats.values() if row.rule == owner.rule)
    return f"convert_df<{owner.df}>"


def format_line(row, parser, formats):
    kind, detail = parser.rule
    parse = detail if kind == "special" else f"parse_numeric<{row.df}>"
    return f'{{{row.df}, "DF{row.df:02}", &{conversion(row.df, formats)}, &{parse}}},'


def parser_units(parsers):
    """The units of every parser that lists them, in the order of the parsers."""
    return [f"{{{unit.number}, {step_list(chain, parser)}}}," for parser in parsers
            if parser.rule[0] == "listed" for unit, chain in parser.rule[1]]


def parser_lines(parsers):
    lines, offset = [], 0
    for row in parsers:
        kind, detail = row.rule
        if kind == "special":
            continue
        counted, bounds = row.range
        limits = ", ".join(constant(bound, row) for bound in bounds or ())
        lines.append(f"{{{row.df}, &raw_kind::{row.kind}, {parser_rule(row, offset)}, "
                     f"{step_list(row.then, row)}, &raw_kind::{counted or row.kind}, "
                     f"{f'Bounds{{{limits}}}' if bounds else '{}'}, {row.offset or 0}u}},")
        offset += len(detail) if kind == "listed" else 0
    return lines


def parser_rule(row, offset):
    kind, detail = row.rule
    if kind == "listed":
        return f"Listed{{{offset}, {len(detail)}}}"
    if kind == "map":
        return f"Mapped{{&{detail}_of}}"
    if kind == "factor":
        factor, amount, raw_count_as = detail
        return f"Divided{{&{factor}_factor, {constant(amount, row)}, {raw_count_as.number}}}"
    if kind in ("whole", "hex"):
        return f"Whole{{{16 if kind == 'hex' else 10}}}"
    return {"any": "AnyUnit{}", "never": "NeverRead{}", "probe": "Probed{}"}[kind]


def step_list(chain, row):
    names = {"*": "times", "/": "over", "-": "minus"}
    return f"steps({', '.join(f'{names[how]}({constant(by, row)})' for how, by in chain)})"


def constant(decimal, row):
    """Single precision, but for numbers of 8 bytes, which reach further."""
    return number_literal(decimal) + ("" if row.kind in ("u48", "u64", "i64") else "f")


def field_line(row, dictionary_index):
    return (f"{{{row.pgn}, {row.field}, {narrow(row.label)}, {row.size[0]}, {row.size[1]}, "
            f"&dictionary[{dictionary_index[row.dd]}], {keys(row)}, 0}},")


def repeat_set_line(row):
    return f"{{{row.pgn}, {row.selector}, {row.first}, {row.last}, 0}},"


def unit_row(units):
    padded = [*(unit.number for unit in units), *[UNIT_COUNT] * (UNITS_PER_CLASS + 1 - len(units))]
    return f"{{{', '.join(map(str, padded))}}},"


def pair_lines(sets):
    lines = []
    for found in sets:
        lines += [f"{{{entry.value}u, {narrow(entry.text)}}}," for entry in found.entries]
        if found.stored_order:
            lines.append("{0xFFFFFFFFu, nullptr},")
    return lines


def set_lines(sets):
    """Sets in stored order are ended by a null text; their count is 0."""
    lines, offset = [], 0
    for found in sets:
        count = len(found.entries)
        lines.append(f"{{{found.dd}, {found.kind}, &enum_pairs[{offset}], {0 if found.stored_order else count}}},")
        offset += count + found.stored_order
    return lines


def narrow(text):
    return text_literal(text.encode("latin-1"))


def wide(text):
    """A wide literal; a hexadecimal escape ends its piece, as it would swallow digits after it."""
    pieces, plain = [], ""
    for c in text:
        if c < "\x7f":
            plain += escaped(c)
            continue
        if plain:
            pieces.append(plain)
            plain = ""
        pieces.append(f"\\x{ord(c):04X}")
    if plain or not pieces:
        pieces.append(plain)
    return " ".join(f'L"{piece}"' for piece in pieces)
