"""Faults put into a copy of the project one at a time, to see which of them the tests catch.

    mutate.py --faults FILE --rooms FILE [--folder FOLDER] [ROOM...]

A row of faults names room, file, a text that occurs once in that file, and what replaces it. A row of rooms names what is
built and which tests run. A test that fails or takes too long has caught the fault. Faults that survive are printed, then
the figures by room. The status is 1 where one survived, 2 where the list does not fit the project: a text that does not
occur once, a fault that does not compile, a room that fails without a fault. Without a folder the list alone is checked.
"""

import argparse
import shutil
import subprocess
import sys
import time
from collections import Counter
from pathlib import Path

PROJECT = Path(__file__).parents[2]
# As quick to build as can be, and quick enough to run.
OPTIONS = ["-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_CXX_COMPILER=g++", "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG"]
TEST_SECONDS = 180  # of one test; a fault may make it wait for ever


class BadList(Exception):
    pass


def rows(path, columns):
    """The cells of each row by the names of their columns."""
    lines = [line for line in path.read_text("utf-8").splitlines() if line and not line.startswith("#")]
    if lines[0].split("\t") != columns:
        raise BadList(f"{path}: the columns are {', '.join(columns)}")
    for line in lines[1:]:
        cells = line.split("\t")
        if len(cells) != len(columns):
            raise BadList(f"{path}: {len(cells)} cells in: {line}")
        yield dict(zip(columns, cells, strict=True))


def run(command, log, **how):
    log.write(f"$ {' '.join(map(str, command))}\n")
    log.flush()
    return subprocess.run(command, stdout=log, stderr=subprocess.STDOUT, check=False, **how).returncode == 0


class Copy:
    """A copy of the project's files with a build of its own."""

    def __init__(self, folder):
        self.source, self.build = folder / "source", folder / "build"
        self.log = (folder / "log.txt").open("w", encoding="utf-8")
        listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=PROJECT,
                                stdout=subprocess.PIPE, check=True).stdout.decode().split("\0")
        kept = {self.source / name for name in listed if name}
        for path in (path for path in self.source.rglob("*") if path.is_file() and path not in kept):
            path.unlink()
        for path in kept:
            original = PROJECT / path.relative_to(self.source)
            if original.is_file() and (not path.exists() or path.read_bytes() != original.read_bytes()):
                path.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(original, path)
        if not run(["cmake", "-G", "Ninja", "-S", self.source, "-B", self.build, *OPTIONS], self.log):
            raise BadList(f"{self.log.name}: the project cannot be configured")

    def make(self, room):
        return run(["cmake", "--build", self.build, "--target", *room["targets"].split()], self.log)

    def passes(self, room):
        return run(["ctest", "--test-dir", self.build, "--stop-on-failure", "--output-on-failure", "--timeout",
                    str(TEST_SECONDS), "-R", f"^({room['tests']})"], self.log)


def text_with(fault):
    """The file's text, and the same with the fault."""
    text = (PROJECT / fault["file"]).read_text("utf-8")
    if text.count(fault["replace"]) != 1:
        raise BadList(f"{fault['file']}: occurs {text.count(fault['replace'])} times: {fault['replace']}")
    return text, text.replace(fault["replace"], fault["by"])


def survives(copy, room, fault):
    text, faulty = text_with(fault)
    path = copy.source / fault["file"]
    path.write_text(faulty, "utf-8")
    try:
        if not copy.make(room):
            raise BadList(f"{fault['file']}: does not compile: {fault['by']}")
        return copy.passes(room)
    finally:
        path.write_text(text, "utf-8")


def check(arguments):
    rooms = {row["room"]: row for row in rows(arguments.rooms, ["room", "targets", "tests"])}
    faults = [row for row in rows(arguments.faults, ["room", "file", "replace", "by"])
              if not arguments.room or row["room"] in arguments.room]
    for fault in faults:
        text_with(fault)
    unknown = {*arguments.room, *(fault["room"] for fault in faults)} - set(rooms)
    if unknown:
        raise BadList(f"{arguments.rooms}: has no room {', '.join(sorted(unknown))}")
    if not arguments.folder:
        return 0
    arguments.folder.mkdir(parents=True, exist_ok=True)
    copy = Copy(arguments.folder)
    for name in sorted({fault["room"] for fault in faults}):
        if not copy.make(rooms[name]) or not copy.passes(rooms[name]):
            raise BadList(f"{copy.log.name}: {name} fails without a fault")
    caught, total, began = Counter(), Counter(), time.monotonic()
    for fault in faults:
        total[fault["room"]] += 1
        if survives(copy, rooms[fault["room"]], fault):
            print(f"survives: {fault['file']}: {fault['replace']} -> {fault['by']}", flush=True)
        else:
            caught[fault["room"]] += 1
    for name in sorted(total):
        print(f"{name:14}{caught[name]:4} of {total[name]} caught")
    spent = (time.monotonic() - began) / max(len(faults), 1)
    print(f"{'all':14}{caught.total():4} of {total.total()} caught, {spent:.0f} s each")
    return 0 if caught == total else 1


def main():
    parser = argparse.ArgumentParser(description="Puts faults in, one at a time, and says which the tests do not catch.")
    for name in ("--faults", "--rooms", "--folder"):
        parser.add_argument(name, type=Path, required=name != "--folder")
    parser.add_argument("room", nargs="*", help="only the faults of these rooms")
    try:
        sys.exit(check(parser.parse_args()))
    except BadList as bad:
        print(bad, file=sys.stderr)
        sys.exit(2)


if __name__ == "__main__":
    main()
