"""Draws the programs' icon, a white V over waves on a blue disc.

icon.py FILE.ico     a Windows icon of several sizes
icon.py FOLDER NAME  PNGs as a theme of icons has them: FOLDER/48x48/apps/NAME.png and so on"""
import math
import struct
import sys
import zlib
from pathlib import Path

SIZES = (16, 24, 32, 48)
THEME_SIZES = (16, 24, 32, 48, 64, 128, 256)
SAMPLES = 4  # in each direction, for every pixel

DISC, LETTER, WAVE = (0x1B, 0x4F, 0x8A), (0xFF, 0xFF, 0xFF), (0x7F, 0xC4, 0xE8)


def colour_at(x, y):
    """Colour of a point, with both coordinates from 0 to 1, y downwards; None outside the disc."""
    if math.hypot(x - 0.5, y - 0.5) > 0.49:
        return None
    if any(abs(y - level - 0.03 * math.sin(6 * math.pi * x)) < 0.025 for level in (0.76, 0.87)):
        return WAVE
    if 0.17 < y < 0.66 and abs(abs(x - 0.5) - (0.66 - y) * 0.55) < 0.065:
        return LETTER
    return DISC


def pixel(column, row, size):
    """Blue, green, red and opacity."""
    steps = [(step + 0.5) / SAMPLES for step in range(SAMPLES)]
    hits = [c for dx in steps for dy in steps if (c := colour_at((column + dx) / size, (row + dy) / size))]
    if not hits:
        return bytes(4)
    red, green, blue = (round(sum(part) / len(hits)) for part in zip(*hits))
    return bytes((blue, green, red, round(255 * len(hits) / SAMPLES ** 2)))


def image(size):
    """A bitmap as icons hold it: from the lowest row up, followed by a mask, which opacity makes superfluous."""
    rows = b"".join(pixel(column, row, size) for row in reversed(range(size)) for column in range(size))
    mask = bytes((size + 31) // 32 * 4 * size)
    return struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(rows) + len(mask), 0, 0, 0, 0) + rows + mask


def png(size):
    """The same for a theme: from the uppermost row down, each behind a byte that names its filter, none."""
    rows = b""
    for row in range(size):
        rows += b"\0"
        for column in range(size):
            blue, green, red, opacity = pixel(column, row, size)
            rows += bytes((red, green, blue, opacity))
    chunks = ((b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)), (b"IDAT", zlib.compress(rows, 9)), (b"IEND", b""))
    return b"\x89PNG\r\n\x1a\n" + b"".join(
        struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data)) for kind, data in chunks)


def write_windows_icon(path):
    images = [image(size) for size in SIZES]
    entries, place = b"", 6 + 16 * len(images)
    for size, data in zip(SIZES, images):
        entries += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 32, len(data), place)
        place += len(data)
    with open(path, "wb") as file:
        file.write(struct.pack("<HHH", 0, 1, len(images)) + entries + b"".join(images))


def write_theme(folder, name):
    for size in THEME_SIZES:
        path = Path(folder, f"{size}x{size}", "apps", name + ".png")
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(png(size))


if __name__ == "__main__":
    write_windows_icon(sys.argv[1]) if len(sys.argv) == 2 else write_theme(*sys.argv[1:])
