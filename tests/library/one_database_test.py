"""one_database_test.py PROGRAM LIBRARY: fails when a program brings functions of the database class of its own, instead
of taking the library's."""
import re
import subprocess
import sys


def database_functions(file):
    """Those of the database class that the file defines. A file without symbols, of which nothing can be told, is an
    error."""
    told = subprocess.run(["nm", "--demangle", "--defined-only", file],
                          check=True, capture_output=True, text=True).stdout
    if " T " not in told:
        sys.exit(f"{file} has no symbols")
    return re.findall(r" [TW] (QV_N2K_PGN_DB_c::.*)", told)


def main(program, library):
    if not database_functions(library):
        sys.exit(f"{library} does not have the database class under the name that is looked for")
    own = database_functions(program)
    for name in own:
        print(f"{program} has a function that it is to take from the library: {name}")
    return 1 if own else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
