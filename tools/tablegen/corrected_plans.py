"""The corrected definitions as rows of the generated tables. They stand behind those of the base: field rows behind its
closing row, formats behind its formats, sets of texts behind its sets."""

from fractions import Fraction
from types import SimpleNamespace as Row

from corrected import BadRow, corrected_messages, counted_unit, new_field, set_reading, whole
from keys import Keys, variant_name
from plans import (COUNTED_SECONDS, END_ROW, FORMED_FOR_PROGRAMS, NO_SET, field_plan_line, field_texts,
                   has_all_bits_none, is_one_of, is_plain, is_quoted_in_csv, pgn_plan_line, plan_set, says_none,
                   text_literal)
from tables import FLAGS, MAX_PAYLOAD, NO_CLASS, NO_KEY, PROPRIETARY, is_addressed

KEYS = ", ".join([f"0x{NO_KEY:08X}u"] * 3)
NO_CODES = "INT64_MIN"
UNKNOWN_MAKER, ANY_MAKER = -1, -2
MAKERS, INDUSTRIES = "manufacturer_code", "industry_group"
MOST_MULTIPLE = 1000  # of a step: digits times it do not overflow
QUICK_BITS = 57  # a number of fewer bits lies in eight bytes, wherever it starts
NO_MEASURE = "{1.0, 1.0, 1.0, 0, {INT64_MIN, INT64_MIN}, 1, 0},"
NUMBERS = ("whole", "measured")  # readings of numbers


def plan_corrected(tables, overlay, plans):
    messages, context = keyed_messages(tables, overlay)[:2]
    out = Row(context=context, plans=plans, tables=tables, measures=[NO_MEASURE], formats={}, extras=["{},"], sets={},
              field_lines=[], field_rows=[], pgn_lines=[], pgn_rows=[], makers=[],
              listed=[], listed_fields=[], first_row=len(plans.fields) + 1, key_rows={},
              dictionary={row.dd: i for i, row in enumerate(tables.dictionary)},
              format_index={row.df: i for i, row in enumerate(tables.formats)})
    plans.format_lines = []
    for name in sorted({str(each) for each in sets_of(messages)}):
        add_set(out, int(name) if name.isdigit() else name)
    for name, found in context.sets.items():
        if found.rows is not None and name in out.sets:
            add_key_rows(out, name, found)
    for found in messages:
        add_message(out, found)
    for found in out.context.factors:
        if found not in plans.rules:
            plans.rules[found] = {unit: literal(factor) for unit, factor in out.context.factors[found].items()}
    list_variants(out, messages)
    return out


def keyed_messages(tables, overlay):
    """All messages, those of makers included, the fields with their keys; and what the sets of keys need."""
    messages, context = corrected_messages(tables, overlay)
    messages += makers_messages(context)
    keys = Keys(tables)
    base = {(row.pgn, variant_name(row)) for row in tables.fields}
    for found in messages:
        if found.pgn == 0 and found.maker != ANY_MAKER:
            continue  # the fields of one stand for all
        groups = [range(first, last + 1) for first, last, _ in found.groups]
        rows = [(field.number, field.label, any(i in group for group in groups))
                for i, field in enumerate(found.fields)]
        # A definition that takes the place of one of the base counts its fields in its own way.
        replaces = found.is_own and (found.pgn, found.variant) in base
        names = keys.of(found.pgn, f"corrected {found.variant}" if replaces else found.variant, rows)
        for field in found.fields:
            field.key = names[field.number]
    context.key_names = {
        name: keys.of(0, f"key {name}", [(entry.value, entry.text, False) for entry in found.rows])
        for name, found in context.sets.items() if found.rows is not None}
    return messages, context, keys


def literal(factor):
    text = repr(float(factor))
    return text + ("f" if "." in text or "e" in text else ".0f")


def sets_of(messages):
    return [field.texts[0] for found in messages for field in found.fields if field.texts is not None]


def makers_messages(context):
    """For each maker what is shown of a message that no definition is known of, and one for makers unknown."""
    entries = context.sets[MAKERS].entries if MAKERS in context.sets else []
    names = [(entry.value, f"{entry.text}, proprietary") for entry in entries]
    names += [(UNKNOWN_MAKER, "Unknown maker, proprietary"), (ANY_MAKER, "Proprietary")]
    fields = header_fields(context)
    return [Row(pgn=0, rank=(), variant="maker", maker=code, is_own=True, name=name, priority=7, packet="fast",
                match=[], length=None, groups=[], fields=fields, source="ours") for code, name in names]


def header_fields(context):
    def field(number, label, bits, name=None):
        texts = (name, None) if name in context.sets else None
        return new_field(number=number, label=label, bits=bits, texts=texts, place="", quantity=NO_CLASS,
                         form="texts" if texts else "plain", reading=whole(bits, False, ((), None)))
    return [field(1, "Manufacturer Code", 11, MAKERS), field(2, "Reserved", 2),
            field(3, "Industry Code", 3, INDUSTRIES)]


# ---- sets ----

def add_set(out, name):
    found = out.context.sets[name]
    out.sets[name] = len(out.plans.sets)
    found.dd = name if isinstance(name, int) else 0
    found.stored_order = False
    out.plans.sets.append(found)
    plan_set(out.plans, found)
    if found.rows is not None:
        for entry in found.rows:
            if entry.texts is not None and entry.texts[0] not in out.sets:
                add_set(out, entry.texts[0])


# ---- messages ----

def add_message(out, found):
    first = out.first_row + len(out.field_lines)
    makers_own = found.pgn == 0
    shared = makers_own and bool(out.makers)
    if not shared:
        for i in range(len(found.fields)):
            add_field(out, found, i, first)
    else:
        first = out.makers[0][1]
    row = len(out.tables.pgns) + 1 + len(out.pgn_rows)  # behind the closing row
    if makers_own:
        out.makers.append((found.maker, first, row))
    name = text_literal(found.name.encode())
    out.pgn_rows.append(f"{{{found.pgn}, {KEYS}, {name}, {int(is_addressed(found.pgn))}, 0, "
                        f"{found.priority}, {int(found.packet == 'single')}}},")
    out.pgn_lines.append(pgn_plan_line(out.plans, found.pgn, found.name, first if found.fields else END_ROW,
                                       "covering", len(found.fields)))
    found.row, found.first = row, first
    if not shared:
        out.listed.append(found)


def add_field(out, message, i, first):
    field = message.fields[i]
    number = out.first_row + len(out.field_lines)
    group = next(((a, b, count) for a, b, count in message.groups if a <= i <= b), None)
    extra = extra_of(out, message, i, group, first)
    flags = {
        "in_group": group is not None,
        "first_of_group": group is not None and i == group[0],
        "last_of_group": group is not None and i == group[1],
        "numbered": group is not None,
        "linked": extra != 0,
    }
    again = first + group[0] if flags["last_of_group"] else END_ROW
    add_row(out, message.pgn, field, number + 1 if i + 1 < len(message.fields) else END_ROW, again,
            extra, flags)


def add_row(out, pgn, field, next_row, again, extra, flags):
    label = field.label.removeprefix("First ") + field.unit_note
    enumeration = out.sets[field.texts[0]] if field.texts is not None else NO_SET
    form = form_of(out, field)
    is_text, quick, is_all_bits_none = is_text_reading(out, field.reading), is_quick(field), has_none_code(out, field)
    out.listed_fields.append((field, is_all_bits_none))
    flags = flags | {
        "quoted": flags.get("numbered", False) and is_quoted_in_csv(label),
        "text": is_text,
        "apart": is_text or is_one_of(out.tables, field.quantity, FORMED_FOR_PROGRAMS) or is_counted(out, field),
        "all_bits_none": is_all_bits_none,
        "whole_bytes": field.bits % 8 == 0,
        "quick": quick,
        "plainly": is_plain(out.tables, quick, form, field.quantity),
    }
    texts = field_texts(out.plans, field.number, field.key, label, flags.get("numbered", False))
    out.field_lines.append(field_plan_line(
        texts, 7 if field.bits > QUICK_BITS else 0, next_row, again, field.bits, field.number, format_index(out, field),
        enumeration, extra, field.quantity, form, (0, 0), flags))
    size = f"{field.bits // 8}, 0" if field.bits % 8 == 0 else f"0, {field.bits}"
    entry = f"&dictionary[{out.dictionary[field.dd]}]" if field.dd is not None else "&no_entry_of_dictionary"
    out.field_rows.append(f"{{{pgn}, {field.number}, {text_literal(label.encode())}, {size}, {entry}, {KEYS}, 0}},")


def form_of(out, field):
    if field.form != "texts":
        return field.form
    return "flags" if out.context.sets[field.texts[0]].kind == FLAGS else "enumeration"


def is_counted(out, field):
    df = field.reading[1] if field.reading[0] == "df" else None
    return any(row.df == df and row.rule[1] in COUNTED_SECONDS for row in out.tables.formats)


def has_none_code(out, field):
    """Whether there is no value where all bits are set: that code has no text or one that says so, or bits that mean
    nothing. Not where the definition itself says which codes are none."""
    is_signed = field.reading[0] == "whole" and field.reading[1][0] == "i"
    if is_signed or not 1 < field.bits <= 64 or "none" in field.options:
        return False
    if field.texts is None:
        return (field.is_fill or field.form == "pgn_title"
                or has_all_bits_none(out.tables, field.dd))
    if form_of(out, field) != "enumeration" or field.texts[1] is not None:
        return False
    texts = [entry.text for entry in out.context.sets[field.texts[0]].entries if entry.value == (1 << field.bits) - 1]
    return not texts or says_none(texts[0])


def is_text_reading(out, reading):
    hex_dump = ("df", out.tables.df_of["hex_dump"])
    return reading[0] in ("text_sent", "text_padded", "text_counted", "bytes", "decimal") or reading == hex_dump


def is_quick(field):
    if field.reading[0] not in NUMBERS or field.reading[1][0] == "f" or field.quantity > NO_CLASS:
        return False
    return 0 < field.bits <= 64 and (field.bits <= QUICK_BITS or field.bits % 8 == 0)


def format_index(out, field):
    reading = field.reading
    if reading[0] == "df":
        return out.format_index[reading[1]]
    if reading not in out.formats:
        out.formats[reading] = len(out.tables.formats) + len(out.formats)
        out.plans.format_lines.append(format_line(out, reading))
    return out.formats[reading]


def format_line(out, reading):
    """A format of the corrections has no number: 65535 ends the lists."""
    if reading[0] in NUMBERS:
        name, kind, times, over, offset, rule, codes, first_reserved = reading
        width, signed = int(kind[1:]), kind[0] == "i"
        codes = [*codes, *(codes[-1:] or [NO_CODES]) * 2][:2]
        measure = (f"{{{exact(times)}, {exact(over)}, {exact(times / over)}, {offset}, "
                   f"{{{', '.join(map(str, codes))}}}, {', '.join(map(str, decimal_step(times, over)))}}},")
        if measure not in out.measures:
            out.measures.append(measure)
        read_as = "measured_float" if kind[0] == "f" else name
        limit = first_reserved if first_reserved is not None else "INT64_MAX"
        return (f"{{65535, Reading::{read_as}, {width}, {int(signed)}, UnitRule::{rule}, 0.0f, {limit}, 0, "
                f"{out.measures.index(measure)}}},")
    if reading[0] == "time_of_day":
        return "{65535, Reading::time_of_day, 32, 0, UnitRule::duration_s, 0.0001f, 0xFFFFFFFD, 0, 0},"
    header, ends_at_sign = (*reading[1:], 0, 0)[:2]
    return f"{{65535, Reading::{reading[0]}, {header}, {int(ends_at_sign)}, UnitRule::any, 0.0f, 0, 0, 0}},"


def decimal_step(times, over):
    """times / over as a small whole number and how often it is divided by ten; 0 where it is not such a number."""
    step = Fraction(times) / Fraction(over)
    for decimals in range(10):
        multiple = step * 10**decimals
        if multiple.denominator == 1 and multiple <= MOST_MULTIPLE:
            return int(multiple), decimals
    return 0, 0


def exact(number):
    text = repr(float(number))
    return text if "." in text or "e" in text else f"{text}.0"


# ---- what a field depends on ----

def extra_of(out, message, i, group, first):
    """Index of what is known of a field beside its plan; 0 for nothing."""
    field, parts = message.fields[i], {}
    if group is not None and i == group[0] and group[2] is not None:
        parts["count"] = link(message, i, group[2])
        parts["behind"] = str(first + group[1] + 1 if group[1] + 1 < len(message.fields) else END_ROW)
    if field.texts is not None and field.texts[1] is not None:
        parts["high"] = link(message, i, index_of(message, field.texts[1]))
    parts |= direction_parts(out, message, i) | size_parts(message, i)
    if field.role == "key_value":
        parts |= key_parts(out, message, i)
    if field.role == "field_value":
        parts |= value_parts(message, i)
    return add_extra(out, parts) if parts else 0


def direction_parts(out, message, i):
    """A direction is true or magnetic by another field or by itself, magnetic unless it says so."""
    field = message.fields[i]
    if "reference" in field.options:
        parts = {"reference": link(message, i, index_of(message, field.options["reference"])),
                 "direction": "Direction::by_reference"}
        if "relative" in field.options:
            parts["relative_first"], parts["relative_last"] = map(str, field.options["relative"])
        return parts
    if field.quantity != out.tables.class_of.get("direction"):
        return {}
    return {"direction": f"Direction::{'true_north' if 'true' in field.options else 'magnetic'}"}


def size_parts(message, i):
    options = message.fields[i].options
    if "bits_from" in options:
        return {"size": link(message, i, index_of(message, options["bits_from"])), "size_unit": "1"}
    if "bytes_from" in options:
        source, less = options["bytes_from"]
        return {"size": link(message, i, index_of(message, source)), "size_unit": "8", "less": str(less)}
    return {}


def key_parts(out, message, i):
    key = max(j for j in range(i) if message.fields[j].role == "key")
    name = message.fields[key].texts[0]
    return {"key": link(message, i, key), "key_set": str(out.sets[name]), "key_rows": str(out.key_rows[name])}


def value_parts(message, i):
    """Of a group function: which field of which PGN, and of whose, the value is one of."""
    index = max(j for j in range(i) if message.fields[j].role == "field_index")
    about = next(j for j in range(i) if message.fields[j].form == "pgn_title")
    parts = {"index": link(message, i, index), "about": link(message, i, about)}
    maker = next((j for j in range(i) if message.fields[j].texts == (MAKERS, None)), None)
    return parts if maker is None else parts | {"maker": link(message, i, maker)}


EXTRA_MEMBERS = ("count", "high", "reference", "size", "key", "index", "about", "maker", "behind", "key_set",
                 "key_rows", "direction", "relative_first", "relative_last", "size_unit", "less")


def add_extra(out, parts):
    line = "{" + ", ".join(f".{name} = {parts[name]}" for name in EXTRA_MEMBERS if name in parts) + "},"
    if line not in out.extras:
        out.extras.append(line)
    return out.extras.index(line)


def index_of(message, number):
    return next(i for i, field in enumerate(message.fields) if field.number == number)


def link(message, i, target):
    """Where the field stands that field i depends on: from the start of the payload, or from field i."""
    start = start_of(message, target)
    bits = message.fields[target].bits
    if start is not None:
        return f"{{{start}, {bits}, 1}}"
    low, high = sorted((i, target))
    between = message.fields[low:high]
    group = [next((g for g in message.groups if g[0] <= j <= g[1]), None) for j in (low, high)]
    if group[0] != group[1] and not (group[0] is None and high == group[1][0]) or not all(f.bits for f in between):
        raise BadRow(f"{message.fields[i].place}: nothing tells where field {message.fields[target].number} stands")
    distance = sum(field.bits for field in between)
    return f"{{{-distance if target < i else distance}, {bits}, 0}}"


def start_of(message, target):
    """In bits; None where the message tells."""
    before = message.fields[:target]
    first_group = min((a for a, _, _ in message.groups), default=len(message.fields))
    return sum(field.bits for field in before) if target < first_group and all(f.bits for f in before) else None


def add_key_rows(out, name, found):
    """A row for each entry of a set of keys: its value is read by it."""
    out.key_rows[name] = out.first_row + len(out.field_lines)
    out.listed.append(Row(row=END_ROW, first=out.key_rows[name], variant=f"key {name}", source="", packet="", match=[],
                          length=None, groups=[], fields=found.rows))
    for entry in found.rows:
        field = new_field(number=entry.value & 0xFFFF, key=out.context.key_names[name][entry.value], label=entry.text,
                          bits=entry.size or 0, texts=entry.texts, place=entry.place, is_corrected=True)
        set_reading(field, Row(**vars(entry), offset=None, options={}), out.context)
        field.unit = counted_unit(field, out.context)
        extra = extra_of(out, Row(fields=[field], groups=[]), 0, None, END_ROW)
        add_row(out, 0, field, END_ROW, END_ROW, extra, {})


# ---- finding the message ----

def list_variants(out, messages):
    parts, lists = [], {}
    for found in messages:
        if found.pgn:
            lists.setdefault(found.pgn, []).append(found)
    out.variant_lines, out.list_lines = [], []
    for pgn, variants in sorted(lists.items()):
        out.list_lines.append(f"{{{pgn}, {len(out.variant_lines)}, {len(variants)}, {variants[-1].row}}},")
        for found in variants:
            mask = value = 0
            first_part = len(parts)
            for bit, width, wanted in found.match:
                if bit + width <= 64:
                    mask |= ((1 << width) - 1) << bit
                    value |= wanted << bit
                else:
                    parts.append(f"{{{bit}, {width}, {wanted}u}},")
            least, most = found.length or (0, MAX_PAYLOAD)
            least = max([least] + [(bit + width + 7) // 8 for bit, width, _ in found.match])
            out.variant_lines.append(f"{{0x{mask:X}u, 0x{value:X}u, {least}, {most}, {first_part}, "
                                     f"{len(parts) - first_part}, {found.row}}},")
    out.part_lines = parts or ["{0, 1, 2},"]
    rows = {maker: row for maker, _, row in out.makers}
    out.unknown_maker, out.any_maker = rows.pop(UNKNOWN_MAKER), rows.pop(ANY_MAKER)
    out.maker_lines = [f"{{{maker}, {row}}}," for maker, row in rows.items()]
    out.ranges = [f"{{{first}, {last}}}," for first, last in PROPRIETARY]
