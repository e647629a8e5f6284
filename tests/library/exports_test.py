"""exports_test.py LIBRARY LIST: fails when what a library exports is not what the list says."""
import subprocess
import sys


def main(library, list_file):
    with open(list_file, encoding="utf-8") as lines:
        expected = {line.rstrip("\n") for line in lines if not line.startswith("#")}
    told = subprocess.run(["nm", "--dynamic", "--demangle", "--defined-only", library],
                          check=True, capture_output=True, text=True).stdout
    # Lines of address (blank for none), kind and name.
    exported = {line.split(maxsplit=2)[2] for line in told.splitlines()}
    for name in sorted(expected - exported):
        print(f"{library}: not exported: {name}")
    for name in sorted(exported - expected):
        print(f"{library}: exported, yet not in {list_file}: {name}")
    return 0 if exported == expected else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
