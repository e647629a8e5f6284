"""exports_test.py LIBRARY LIST: fails when what a library exports is not what the list says. Of a library for Windows
the names of Microsoft's compiler are left aside; they are second names of the others."""
import subprocess
import sys


def output(*command, **options):
    return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout.splitlines()


def exported_by(library):
    with open(library, "rb") as file:
        for_windows = file.read(2) == b"MZ"
    if not for_windows:
        # Lines of address (blank for none), kind and name.
        return {line.split(maxsplit=2)[2] for line in output("nm", "--dynamic", "--demangle", "--defined-only", library)}
    lines = output("i686-w64-mingw32-objdump", "--private-headers", library)
    start = lines.index("[Ordinal/Name Pointer] Table") + 1
    names = [line.split()[-1] for line in lines[start:lines.index("", start)]]
    return set(output("c++filt", input="\n".join(name for name in names if not name.startswith("?"))))


def main(library, list_file):
    with open(list_file, encoding="utf-8") as lines:
        expected = {line.rstrip("\n") for line in lines if not line.startswith("#")}
    exported = exported_by(library)
    for name in sorted(expected - exported):
        print(f"{library}: not exported: {name}")
    for name in sorted(exported - expected):
        print(f"{library}: exported, yet not in {list_file}: {name}")
    return 0 if exported == expected else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
