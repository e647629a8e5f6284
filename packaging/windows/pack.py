"""pack.py FOLDER ZIP: packs a folder so that the same files make the same bytes: in order, all of the time that
SOURCE_DATE_EPOCH says."""
import os
import sys
import time
import zipfile
from pathlib import Path


def main(folder, target):
    moment = time.gmtime(int(os.environ["SOURCE_DATE_EPOCH"]))[:6]
    with zipfile.ZipFile(target, "w") as packed:
        for path in sorted(path for path in folder.rglob("*") if path.is_file()):
            entry = zipfile.ZipInfo(f"{folder.name}/{path.relative_to(folder).as_posix()}", moment)
            entry.external_attr = 0o644 << 16
            packed.writestr(entry, path.read_bytes(), zipfile.ZIP_DEFLATED, 9)


if __name__ == "__main__":
    main(*map(Path, sys.argv[1:]))
