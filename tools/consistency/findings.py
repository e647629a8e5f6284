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

    def messages(self, known):
        """The findings that are not known, and the known ones that are not found any more."""
        reasons = {(row.rule, subject, row.what): row for row in known for subject in row.subjects}
        unknown = [f"{place}: {tell(finding)}" for place, finding in self.found if finding not in reasons]
        found = {finding for _, finding in self.found}
        gone = [f"{row.place}: no longer found: {tell(finding)}"
                for finding, row in reasons.items() if finding not in found]
        return unknown + gone


def tell(finding):
    return "{} {}: {}".format(*finding)


def read_known(tables, path, report):
    return read_table(tables, path.parent, path.name, KNOWN_COLUMNS, report)
