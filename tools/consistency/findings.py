"""What the rules find, and the list of what is known and stays."""

from tables import read_table, text

NAME = text(1000)
KNOWN_COLUMNS = {"rule": NAME, "subjects": lambda cell: cell.split(","), "what": NAME, "reason": NAME}


class Findings:
    """Collects what the rules find. A rule, its subject and what it says about it identify a finding."""

    def __init__(self):
        self.found = []

    def add(self, place, rule, subject, what):
        self.found.append((place, (rule, subject, what)))

    def not_in(self, others):
        """The findings that others do not have."""
        there = {finding for _, finding in others.found}
        return [(place, finding) for place, finding in self.found if finding not in there]

    def messages(self, known, overlay):
        """The findings that are not known, the known ones that are not found any more, and those whose reason is not
        where the list says that it stands."""
        reasons = {(row.rule, subject, row.what): row for row in known for subject in row.subjects}
        unknown = [f"{place}: {tell(finding)}" for place, finding in self.found if finding not in reasons]
        found = {finding for _, finding in self.found}
        gone = [f"{row.place}: no longer found: {tell(finding)}"
                for finding, row in reasons.items() if finding not in found]
        missing = [f"{row.place}: {row.reason} has no reason for {finding[1]}" for finding, row in reasons.items()
                   if row.reason.endswith(".tsv") and not has_reason(overlay, row.reason, finding[1])]
        return unknown + gone + missing


def has_reason(overlay, name, subject):
    """Whether a file of the corrections says why a message or field is as it is."""
    message, _, field = subject.partition("#")
    pgn = message.partition(".")[0]
    if name == "messages.tsv":
        return any(f"{row.pgn}.{row.variant}" == message for row in overlay.messages)
    return any(pgn in row.what if row.pgn is None else str(row.pgn) == pgn and
               (not field or covers(row.field, int(field))) for row in overlay.left_out)


def covers(cell, field):
    """Whether a cell such as 2,4-6 has the field."""
    parts = [part.split("-") for part in (cell or "").split(",") if part]
    return cell is None or any(int(part[0]) <= field <= int(part[-1]) for part in parts)


def unexplained(mended, overlay):
    """Differences of the base tables that the corrected definitions do not have although nothing corrects them."""
    corrected = {str(row.pgn) for row in (*overlay.messages, *overlay.changes)}
    return [f"{place}: not in the corrected definitions: {tell(finding)}" for place, finding in mended
            if finding[1].split("#")[0].split(".")[0] not in corrected]


def tell(finding):
    return "{} {}: {}".format(*finding)


def read_known(tables, path, report):
    return read_table(tables, path.parent, path.name, KNOWN_COLUMNS, report)
