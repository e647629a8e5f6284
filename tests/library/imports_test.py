"""imports_test.py FILE ..: fails when one of these programs or libraries for Windows needs a library that neither
Windows has nor is one of these files."""
import subprocess
import sys
from pathlib import Path

OF_WINDOWS = {name + ".dll" for name in (
    "advapi32 comctl32 comdlg32 gdi32 kernel32 msvcrt mswsock ole32 oleaut32 shell32 shlwapi user32 uxtheme version "
    "winmm ws2_32").split()}


def imported_by(file):
    lines = subprocess.run(["i686-w64-mingw32-objdump", "--private-headers", file], check=True, capture_output=True,
                           text=True).stdout.splitlines()
    return {line.split()[-1].lower() for line in lines if "DLL Name:" in line}


def main(files):
    known = OF_WINDOWS | {Path(file).name for file in files}
    missing = [(file, sorted(imported_by(file) - known)) for file in files]
    for file, names in missing:
        if names:
            print(f"{file}: needs {', '.join(names)}")
    return 1 if any(names for _, names in missing) else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
