#!/usr/bin/env python3
"""Makes seeds and dictionaries of the fuzz targets out of what the project has: the samples of the formats, the sample
recording, the tables."""

import bz2
import gzip
import lzma
import re
import struct
import sys
from pathlib import Path

SOURCE = Path(__file__).resolve().parent.parent
sys.path[:0] = [str(SOURCE / "tools/formats"), str(SOURCE / "tools/tablegen")]

from formats import read_formats  # noqa: E402
from tables import Report  # noqa: E402

CORRECTED = 16  # bit of a message's head
PIPE = 16  # bytes at a time


def frames():
    """(identifier, milliseconds since the one before, bytes) of the sample recording."""
    found, last = [], None
    for line in (SOURCE / "examples/voyage.log").read_text().splitlines():
        time, identifier, data = re.fullmatch(r"\((\d+\.\d+)\) \S+ (\w+)#(\w*)", line).groups()
        now = float(time)
        found.append((int(identifier, 16), round(1000 * (now - (last or now))), bytes.fromhex(data)))
        last = now
    return found


def messages(recorded):
    """(PGN, source, payload): single frames, and fast packets whose frames come in order."""
    begun = {}
    for identifier, _, data in recorded:
        pgn, source = identifier >> 8 & 0x3FFFF, identifier & 0xFF
        if pgn >> 8 & 0xFF < 240:
            pgn &= 0x3FF00
        key = identifier, data[0] >> 5 if data else 0
        yield pgn, source, data
        if len(data) == 8 and data[0] & 31 == 0 and 6 < data[1] <= 223:
            begun[key] = data[1], data[2:]
        elif len(data) == 8 and key in begun:
            size, so_far = begun[key]
            begun[key] = size, so_far + data[1:]
            if len(begun[key][1]) >= size:
                yield pgn, source, begun.pop(key)[1][:size]


def head(pgn, unit=255, length=0, extra=CORRECTED):
    return struct.pack("<HHBB", pgn & 0xFFFF, length, 1 | (pgn >> 16 & 3) << 1 | extra, unit)


def record(kind_and_more):
    """Framed as gateways of the Actisense protocol do it."""
    whole = kind_and_more + bytes([-sum(kind_and_more) & 0xFF])
    return b"\x10\x02" + whole.replace(b"\x10", b"\x10\x10") + b"\x10\x03"


def cells(name, column):
    rows = [line.split("\t") for line in (SOURCE / "data" / name).read_text(encoding="latin-1").splitlines()
            if line and not line.startswith("#")]
    return [row[column] for row in rows[1:] if len(row) > column and row[column] not in ("", "-")]


def seeds():
    """(target, name, bytes)"""
    samples = read_formats(SOURCE / "host/readers/formats.tsv", Report())
    for number, row in enumerate(samples):
        yield "readers", row.name, bytes([number, PIPE]) + row.sample[0]
        yield "recognition", row.name, bytes([PIPE]) + row.sample[0]
    for name, pack in ("gz", gzip.compress), ("xz", lzma.compress), ("bz2", bz2.compress):
        yield "recognition", name, bytes([PIPE]) + pack(samples[0].sample[0])
    recorded = frames()
    for start in range(0, len(recorded), len(recorded) // 12):
        yield "reassembly", str(start), b"".join(
            struct.pack("<IBBh", identifier, len(data), 3, min(step, 30000)) + data.ljust(8, b"\0")
            for identifier, step, data in recorded[start:start + 40])
    found = list(messages(recorded))
    longest = {}
    for pgn, _, data in found:
        longest[pgn] = max(longest.get(pgn, b""), data, key=len)
    for pgn, data in longest.items():
        for target in "decode", "contract":
            yield target, str(pgn), head(pgn) + data
    for start in range(0, len(found), len(found) // 10):
        yield "model", str(start), b"\x01" + b"".join(
            head(pgn, source & 15) + bytes([min(len(data), 255), 1]) + data
            for pgn, source, data in found[start:start + 12])
    for row in range(0, 400, 9):
        yield "encode", str(row), struct.pack("<HB", row, row % 4) + b"\x00" + b"1\n\x01-5.5\n\x02Auto\n\x03-\n\x04" + \
            b"12 \xc2\xb0\n\x05" + b"2026-09-10\n\x06" + b"08:00:00\n\x07" + b"01 02 FF\n"
    for number, text in enumerate(["12.5", "-0.01", "1e9", "Auto", "12:30:15", "2026-09-10", "01 FF", "boat"]):
        for start in range(1, 120, 17):
            yield "parsers", f"{number}-{start}", struct.pack("<HB", start, number * 7) + text.encode()
    for text in ("can0", "tcp://10.0.0.1:1457", "udp://:1457?gateway=none", "tcp-listen://[::1]:60002", "metric",
                 "serial:/dev/ttyUSB0?speed=230400&gateway=ikonvert", "Boat Speed=kph", "Depth=ft"):
        yield "parsers", re.sub(r"\W", "_", text), b"\0\0\0" + text.encode()
    said = {"ngt1": [record(b"\xA0\x0E\x11\x01\0\0\0\0\0\0\0\0\0\0\1\0"), record(b"\xA0\x0E\x11\x01\0\0\0\0\0\0\0\0\0\0\2\0"),
                     record(b"\x93\x0B\x02\x02\xF8\x01\xFF\x17\0\0\0\0\0")],
            "ikonvert": [b"$PDGY,TEXT,Digital_Yacht_iKonvert\r\n", b"$PDGY,ACK,N2NET_INIT\r\n", b"$PDGY,000000,,,,,,\r\n",
                         b"!PDGY,127250,2,7,255,1.5,/xA7/3//fwA\r\n"],
            "slcan": [b"\r", b"\a", b"\r", b"T09F1120781122334455667788\r"],
            "ydnu": [b"Welcome\r\n", b"19:07:21.014 R 09F8017F 50 C3 B8 13 47 D8 2B C6\r\n"]}
    for number, (name, texts) in enumerate(said.items(), 1):
        spoken = b"".join(bytes([10 * at, len(text)]) + text for at, text in enumerate(texts))
        yield "gateways", name, bytes([number]) + spoken
        yield "gateways", name + "-recognised", b"\0" + spoken


def words():
    """(target, words of its dictionary)"""
    formats = read_formats(SOURCE / "host/readers/formats.tsv", Report())
    of_samples = {word for row in formats for word in re.findall(rb"[A-Za-z_$!<]{3,20}|[^\w\s]{2,4}", row.sample[0])}
    units = {text.encode("latin-1") for text in cells("units.tsv", 2)}
    quantities = {text.encode("latin-1") + b"=" for text in cells("quantities.tsv", 0)}
    enums = sorted((SOURCE / "data/enums").glob("*.tsv"))
    texts = set()
    for path in enums[:3]:
        texts |= {cell.encode("latin-1") for cell in path.read_text(encoding="latin-1").split("\t")
                  if cell.isascii() and cell.isprintable() and 2 < len(cell) < 30}
    yield "readers", of_samples
    yield "recognition", of_samples
    yield "encode", units | set(sorted(texts)[:200]) | {b"Not Available", b"-", b"\n"}
    yield "parsers", units | quantities | {b"tcp://", b"udp://", b"?gateway=", b"serial:", b"can:", b"&speed="}
    yield "gateways", {b"$PDGY,", b"!PDGY,", b"ACK,", b"N2NET_INIT", b"N2NET_OFFLINE", b"TEXT,", b"000000,", b"\x10\x02",
                       b"\x10\x03", b"\r", b"\a"}


def quoted(word):
    return '"' + "".join(f"\\x{byte:02X}" if byte < 32 or byte > 126 or byte in b'"\\' else chr(byte)
                         for byte in word) + '"\n'


def main(folder):
    for target, name, data in seeds():
        place = folder / target
        place.mkdir(parents=True, exist_ok=True)
        (place / name).write_bytes(data)
    for target, found in words():
        (folder / f"{target}.dict").write_text("".join(quoted(word) for word in sorted(found) if word))


if __name__ == "__main__":
    main(Path(sys.argv[1]))
