#!/usr/bin/env python3
"""Makes a saturated bus of the sample voyage: 1,900 frames a second of 40 addresses, for SECONDS.

usage: saturate.py examples/voyage.log SECONDS > saturated.log

The voyage's 18 addresses are doubled, four more are copies of its busiest ones, and time is compressed until the bus
is full.
"""

import collections
import re
import sys

FRAMES_PER_SECOND = 1900
LINE = re.compile(r"\((\d+\.\d+)\) (\w+) ([0-9A-F]{8})#([0-9A-F]*)")


def frames_of(path):
    with open(path, encoding="ascii") as log:
        for line in log:
            _, interface, identifier, data = LINE.match(line).groups()
            yield interface, int(identifier, 16), data


def main(path, seconds):
    frames = list(frames_of(path))
    count = collections.Counter(identifier & 0xFF for _, identifier, _ in frames)
    busiest = {source for source, _ in count.most_common(4)}
    number = 0
    wanted = FRAMES_PER_SECOND * seconds
    while number < wanted:
        for interface, identifier, data in frames:
            source = identifier & 0xFF
            copies = [source, (source + 100) % 252] + ([(source + 170) % 252] if source in busiest else [])
            for copy in copies:
                time = 1789027200 + number / FRAMES_PER_SECOND
                print(f"({time:.6f}) {interface} {identifier & ~0xFF | copy:08X}#{data}")
                number += 1
            if number >= wanted:
                break


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]))
