"""same_output.py PROGRAM OTHER: fails unless two builds of vistel do alike, to the byte, with any payloads, the sample voyage and
recordings of every format, whole and damaged. Both are commands, of one or more words."""

import itertools
import os
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

os.environ["XDG_CONFIG_HOME"] = "/nowhere"  # nobody's own configuration
PROJECT = Path(__file__).parents[2]
sys.path.insert(0, str(PROJECT / "tools/formats"))

from formats import Report, read_formats  # noqa: E402

FORMS = [], ["--units", "metric"], ["--json"], ["--csv"]


def outcome(program, arguments):
    result = subprocess.run([*shlex.split(program), *arguments], capture_output=True, timeout=300)
    return result.stdout, result.stderr, result.returncode


def of_formats(folder):
    """Recordings of every format, and the voyage converted to those that are written: arguments."""
    for row in read_formats(PROJECT / "host/readers/formats.tsv", Report()):
        sample, cut = row.sample[0], len(row.sample[0]) * 2 // 3
        for name, contents in ("whole", sample), ("damaged", sample + sample[:cut] + b"\n\xff\0" + sample):
            path = folder / f"{row.name}.{name}"
            path.write_bytes(contents)
            yield ["decode", "--stats", "--json", str(path)]
        if row.is_written:
            yield ["convert", str(PROJECT / "examples/voyage.log"), "--to", row.name]


def main(program, other):
    with tempfile.TemporaryDirectory() as folder:
        any_payloads = Path(folder, "any.log")
        maker = Path(__file__).with_name("any_payloads.py")
        any_payloads.write_bytes(subprocess.run([sys.executable, maker], check=True, capture_output=True).stdout)
        # Nothing compares equal to nothing: every message is there, and each form shows something else.
        shown = [outcome(program, ["decode", *form, str(any_payloads)])[0] for form in FORMS]
        if not 0 < len(any_payloads.read_bytes().splitlines()) == shown[0].count(b"\n    Source Address: "):
            sys.exit(f"{program} does not show all messages")
        if any(one == another for one, another in itertools.combinations(shown, 2)):
            sys.exit(f"{program} shows the same in two forms of {FORMS}")
        runs = [["decode", *form, str(recording)]
                for recording in (any_payloads, PROJECT / "examples/voyage.log") for form in FORMS]
        runs += of_formats(Path(folder))
        different = 0
        for arguments in runs:
            expected = outcome(program, arguments)
            if not expected[0]:
                sys.exit(f"{program} {shlex.join(arguments)} shows nothing")
            if outcome(other, arguments) != expected:
                print(f"{shlex.join(arguments)}: {other} does something else than {program}", file=sys.stderr)
                different += 1
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
