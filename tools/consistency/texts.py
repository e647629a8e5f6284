"""Rules about labels that are numbered and about enumerations."""

from sizes import Sizes, field_name

# In a repeating group, a label that contains the word is shown with the round's number, and without its
# first six characters, whatever they are.
NUMBERED = "First"
DROPPED = "First "
ENTRY_BELOW = 1  # kind of a set: a code without an entry shows the text of the entry below


def group_rows(tables):
    """The rows of repeating groups, of whatever variant: the walk steps from one variant to another."""
    groups = {}
    for row in tables.repeat_sets:
        groups.setdefault(row.pgn, []).append((row.first, row.last))
    return [row for row in tables.fields
            if any(first <= row.field <= last for first, last in groups.get(row.pgn, ()))]


def check_labels(tables, found):
    for row in group_rows(tables):
        if NUMBERED in row.label and not row.label.startswith(DROPPED):
            found.add(row.place, "label", field_name(row),
                      f"'{row.label}' would lose its first six characters")


def labels_of_groups(tables):
    for row in group_rows(tables):
        yield f"{field_name(row)}\t{'numbered' if NUMBERED in row.label else 'as it is'}\t{row.label}"


def check_sets(tables, found):
    sizes = Sizes(tables)
    used = {}
    for row in tables.fields:
        used.setdefault(row.dd, []).append(row)
    for each in tables.sets:
        name = f"set {each.dd}"
        if each.dd not in sizes.entries:
            found.add(each.place, "unused", name, "no dictionary entry")
        elif each.dd not in used:
            found.add(each.place, "unused", name, "no field")
        else:
            widths = [bits for bits in map(sizes.bits, used[each.dd]) if bits is not None]
            check_values(each, min(widths), name, found)
            if each.kind == ENTRY_BELOW:
                check_gaps(each, max(widths), name, found)


def check_values(each, bits, name, found):
    for entry in each.entries:
        if entry.value >> bits:
            found.add(entry.place, "value", name, f"{entry.value} does not fit {bits} bits")


def check_gaps(each, bits, name, found):
    """Codes that have no entry should read as reserved, not as something certain."""
    ends = [entry.value for entry in each.entries[1:]] + [1 << bits]
    for entry, end in zip(each.entries, ends):
        if end - entry.value > 1 and not entry.text.startswith("Reserve"):
            found.add(entry.place, "gap", name, f"'{entry.text}' for {entry.value} to {end - 1}")
