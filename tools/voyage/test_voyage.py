"""Checks the committed recording as a receiver sees it: its frames, and what VISTEL, the program, decodes of them."""

import json
import os
import re
import subprocess
import unittest
from bisect import bisect
from collections import defaultdict
from math import atan2, cos, hypot, pi, radians, tau
from pathlib import Path

from voyage import record

ROOT = Path(__file__).resolve().parents[2]
LOG = ROOT / "examples" / "voyage.log"
LINE = re.compile(r"\((\d+\.\d{6})\) can0 ([0-9A-F]{8})#((?:[0-9A-F]{2}){1,8})")
WIRE_TIME = (67 + 64) / 250e3  # of a full frame, without stuffing bits


def number(data, low, size):
    return int.from_bytes(data[low:low + size], "little")


def turned(angle):
    return (angle + pi) % tau - pi


def fast_pgns():
    table = (ROOT / "data" / "pgns.tsv").read_text(encoding="utf-8")
    cells = [line.split("\t") for line in table.split("\n")]
    return {int(row[0]) for row in cells if len(row) > 7 and row[7] == "fast"} | {130950}


class VoyageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.text = LOG.read_text(encoding="ascii")
        cls.frames = []  # (time, source, PGN, data)
        for line in cls.text.splitlines():
            time, can_id, data = LINE.fullmatch(line).groups()
            pgn = int(can_id, 16) >> 8 & 0x3FFFF
            cls.frames.append((float(time), int(can_id[-2:], 16), pgn if pgn & 0xFF00 >= 0xF000 else pgn & 0x3FF00,
                               bytes.fromhex(data)))
        cls.decoded = subprocess.run([os.environ["VISTEL"], "decode", "--json", LOG], capture_output=True,
                                     encoding="utf-8", check=True)
        cls.messages = [json.loads(line) for line in cls.decoded.stdout.splitlines()]

    def readings(self, pgn, *fields):
        """(time, numbers as sent) of each message, by the fields' numbers; negative ones are signed."""
        return [(message["time"], *(int.from_bytes(bytes.fromhex(message["fields"][abs(field) - 1]["raw"]), "little",
                                                   signed=field < 0) for field in fields))
                for message in self.messages if message["pgn"] == pgn]

    def test_is_what_the_generator_writes(self):
        self.assertEqual("".join(record()[0]), self.text)

    def test_arrives_whole(self):
        self.assertEqual(self.decoded.stderr, "")
        fast, mixed, lengths, sessions = fast_pgns(), 0, defaultdict(set), []
        for (before, other, _, _), (time, source, pgn, data) in zip(self.frames, self.frames[1:]):
            self.assertGreater(time - before, WIRE_TIME * (67 + 8 * len(data)) / 131 - 2e-6)
            mixed += pgn in fast and data[0] & 31 > 0 and source != other
            if pgn in fast and data[0] & 31 == 0:
                lengths[pgn].add(data[1])
            elif pgn == 60416 and data[0] in (16, 32):
                sessions.append(number(data, 5, 3))
                lengths[sessions[-1]].add(number(data, 1, 2))
        self.assertGreater(mixed, 100, "fast packets of several devices interleave")
        self.assertEqual(sorted(sessions), [65240, 129285, 130074])
        self.assertEqual((lengths[126996], lengths[129540]), ({134}, {3 + 12 * 12}))
        self.assertGreater(max(lengths[129285]), 223)

    def test_all_senders_claim_their_address(self):
        claims = [message for message in self.messages if message["pgn"] == 60928]
        self.assertEqual({message["source"] for message in self.messages}, {claim["source"] for claim in claims})
        self.assertEqual(len({str(claim["fields"]) for claim in claims}), 17)

    def test_position_follows_course_and_speed(self):
        way = [(time, course * 1e-4, speed * 0.01) for time, course, speed in self.readings(129026, 4, 5)]
        fixes = self.readings(129025, -1, -2)
        compared = 0
        for (t0, lat0, lon0), (t1, lat1, lon1) in zip(fixes, fixes[10:]):
            north = (lat1 - lat0) * 1e-7 * 110_970
            east = (lon1 - lon0) * 1e-7 * 111_320 * cos(radians(lat0 * 1e-7))
            _, course, speed = way[min(bisect(way, ((t0 + t1) / 2,)), len(way) - 1)]
            self.assertAlmostEqual(hypot(east, north) / (t1 - t0), speed, delta=0.02 * speed + 0.1)
            if speed > 1:
                self.assertLess(abs(turned(atan2(east, north) - course)), 0.06)
                compared += 1
        self.assertGreater(compared, 400)


if __name__ == "__main__":
    unittest.main()
