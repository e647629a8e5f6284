"""Checks the committed recording as a receiver sees it: put together again from its bytes alone."""

import re
import unittest
from bisect import bisect
from math import atan2, cos, hypot, pi, radians, tau
from pathlib import Path

from voyage import record

ROOT = Path(__file__).resolve().parents[2]
LINE = re.compile(r"\((\d+\.\d{6})\) can0 ([0-9A-F]{8})#((?:[0-9A-F]{2}){1,8})")
WIRE_TIME = (67 + 64) / 250e3  # of a full frame, without stuffing bits


def number(data, low, size, signed=False):
    return int.from_bytes(data[low:low + size], "little", signed=signed)


def turned(angle):
    return (angle + pi) % tau - pi


def fast_pgns():
    table = (ROOT / "data" / "pgns.tsv").read_text(encoding="utf-8")
    cells = [line.split("\t") for line in table.split("\n")]
    return {int(row[0]) for row in cells if len(row) > 7 and row[7] == "fast"} | {130950}


class Recording:
    """The frames, and the messages put together from them: lists of (time, source, PGN, payload)."""

    def __init__(self, lines):
        self.fast, self.frames, self.messages = fast_pgns(), [], []
        self.sequences, self.open, self.mixed = {}, {}, 0
        self.sessions, self.long = {}, []
        for line in lines:
            time, can_id, data = LINE.fullmatch(line).groups()
            self._take(float(time), int(can_id, 16), bytes.fromhex(data))
        if self.open or self.sessions:
            raise ValueError(f"left open: {[*self.open, *self.sessions]}")

    def _take(self, time, can_id, data):
        source, pgn, to = can_id & 0xFF, can_id >> 8 & 0x3FFFF, 255
        if pgn >> 8 & 0xFF < 240:
            pgn, to = pgn & 0x3FF00, pgn & 0xFF
        self.frames.append((time, source, pgn, data))
        if pgn in self.fast:
            self._fast(time, source, pgn, data)
        elif pgn == 60416 and data[0] in (16, 32):
            self.sessions[source, to] = number(data, 1, 2), number(data, 5, 3), data[3], []
        elif pgn == 60160:
            total, of, count, parts = self.sessions[source, to]
            parts.append(data[1:])
            if data[0] != len(parts):
                raise ValueError(f"{of}: packet {data[0]} for {len(parts)}")
            if len(parts) == count:
                self.long.append(of)
                self.messages.append((time, source, of, b"".join(parts)[:total]))
                del self.sessions[source, to]
        elif pgn != 60416:
            self.messages.append((time, source, pgn, data))

    def _fast(self, time, source, pgn, data):
        sequence, index, key = data[0] >> 5, data[0] & 31, (source, pgn)
        self.mixed += any(other[0] != source for other in self.open)
        if index == 0:
            if key in self.open or self.sequences.setdefault(key, sequence) != sequence:
                raise ValueError(f"{key} begins {sequence}, {self.sequences[key]} is due")
            self.sequences[key] = sequence + 1 & 7
            self.open[key] = data[1], []
        total, parts = self.open[key]
        if (self.sequences[key] - 1 & 7, len(parts)) != (sequence, index):
            raise ValueError(f"{key}: frame {index} of {sequence} for {len(parts)}")
        parts.append(data[2:] if index == 0 else data[1:])
        content = b"".join(parts)
        if len(content) >= total:
            if content[total:].strip(b"\xff"):
                raise ValueError(f"{key} is not padded")
            self.messages.append((time, source, pgn, content[:total]))
            del self.open[key]

    def of(self, pgn):
        return [(time, data) for time, _, number_, data in self.messages if number_ == pgn]


class VoyageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.text = (ROOT / "examples" / "voyage.log").read_text(encoding="ascii")
        cls.log = Recording(cls.text.splitlines())

    def test_is_what_the_generator_writes(self):
        self.assertEqual("".join(record()[0]), self.text)

    def test_frames_fit_on_the_wire(self):
        times = [(time, len(data)) for time, _, _, data in self.log.frames]
        for (before, _), (time, size) in zip(times, times[1:]):
            self.assertGreater(time - before, WIRE_TIME * (67 + 8 * size) / 131 - 2e-6)
        self.assertGreater(self.log.mixed, 100, "fast packets of several devices interleave")

    def test_all_senders_claim_their_address(self):
        claims = [(source, data) for _, source, pgn, data in self.log.messages if pgn == 60928]
        self.assertEqual({source for _, source, _, _ in self.log.messages}, {source for source, _ in claims})
        self.assertEqual(len({name for _, name in claims}), 17)

    def test_lengths_of_long_messages(self):
        self.assertEqual({len(data) for _, data in self.log.of(126996)}, {134})
        self.assertEqual({len(data) for _, data in self.log.of(129540)}, {3 + 12 * 12})
        self.assertEqual(sorted(self.log.long), [65240, 129285, 130074])
        self.assertGreater(max(len(data) for _, data in self.log.of(129285)), 223)

    def test_position_follows_course_and_speed(self):
        way = [(time, number(data, 2, 2) * 1e-4, number(data, 4, 2) * 0.01)
               for time, data in self.log.of(129026)]
        fixes = [(time, number(data, 0, 4, True), number(data, 4, 4, True))
                 for time, data in self.log.of(129025)]
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

    def test_heading_follows_rate_of_turn(self):
        headings = [(time, number(data, 1, 2) * 1e-4) for time, data in self.log.of(127250)]
        rates = [(time, number(data, 1, 4, True) * 3.125e-8) for time, data in self.log.of(127251)]
        turn = sum(rate * (later - time) for (time, rate), (later, _) in zip(rates, rates[1:]))
        self.assertAlmostEqual(turned(headings[-1][1] - headings[0][1] - turn), 0, delta=0.01)
        self.assertGreater(max(abs(rate) for _, rate in rates), 0.08, "she does turn")


if __name__ == "__main__":
    unittest.main()
