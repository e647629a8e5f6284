"""same_output.py PROGRAM OTHER: fails unless two builds of vistel show any payloads and the sample voyage alike, to the
byte. Both are commands, of one or more words."""

import itertools
import os
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

os.environ["XDG_CONFIG_HOME"] = "/nowhere"  # nobody's own configuration
FORMS = [], ["--units", "metric"], ["--json"], ["--csv"]


def output(program, form, recording):
    recording = os.path.relpath(recording)  # on Windows a slash in front may begin an option
    return subprocess.run([*shlex.split(program), "decode", *form, recording], check=True, capture_output=True).stdout


def main(program, other):
    maker = Path(__file__).with_name("any_payloads.py")
    with tempfile.NamedTemporaryFile() as recording:
        subprocess.run([sys.executable, maker], check=True, stdout=recording)
        messages = len(Path(recording.name).read_bytes().splitlines())
        shown = [output(program, form, recording.name) for form in FORMS]
        # Nothing compares equal to nothing: every message is there, and each form shows something else.
        if not 0 < messages == shown[0].count(b"\n    Source Address: "):
            sys.exit(f"{program} does not show all of {messages} messages")
        if any(one == another for one, another in itertools.combinations(shown, 2)):
            sys.exit(f"{program} shows the same in two forms of {FORMS}")
        different = [form for form, text in zip(FORMS, shown) if output(other, form, recording.name) != text]
    voyage = str(Path(__file__).parents[2] / "examples/voyage.log")
    different += [[*form, voyage] for form in FORMS if output(program, form, voyage) != output(other, form, voyage)]
    for form in different:
        print(" ".join(["decode", *form]) + f": {other} shows something else than {program}", file=sys.stderr)
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
