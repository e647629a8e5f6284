#!/usr/bin/env python3
"""Runs the example hosts: each ends by itself, with status 0, says nothing on standard error and shows what it is
there to show. EXAMPLES is the folder of the programs, WINDOWS is 1 where there are such with windows; these open on a
display of their own. EMULATOR, where it is not empty, runs programs for Windows, on the display that there is."""

import os
import re
import subprocess
import unittest

FOLDER = os.environ["EXAMPLES"]
TESTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
UNDER_XVFB = os.path.join(TESTS, "views", "under_xvfb.sh")
HAS_WINDOWS = os.environ["WINDOWS"] == "1"
EMULATOR = os.environ["EMULATOR"]
NATIVE = "win32" if EMULATOR else "native"


def run(*command, text=""):
    return subprocess.run(command, input=text, capture_output=True, encoding="utf-8", timeout=120)


def host(name, windows=False):
    """The command that starts it."""
    if EMULATOR:
        return [EMULATOR, os.path.join(FOLDER, name + ".exe")]
    return ([UNDER_XVFB] if windows else []) + [os.path.join(FOLDER, name)]


class Host(unittest.TestCase):
    def output(self, name, *arguments, windows=False):
        result = run(*host(name, windows), *arguments)
        self.assertEqual((result.returncode, result.stderr), (0, ""), result.stdout)
        return result.stdout

    def assertShows(self, output, *patterns):
        """The patterns in this order, each the whole of a line."""
        position = 0
        for pattern in patterns:
            found = re.compile(f"^ *{pattern}$", re.MULTILINE).search(output, position)
            self.assertTrue(found, f"no further {pattern!r} in\n{output}")
            position = found.end()


class Decoding(Host):
    def test_built_in_messages(self):
        self.assertShows(self.output("decode_host"),
                         r"0\.05 +130306, Wind Data", r"Wind Speed: 14\.948 kt",
                         r"0\.10 +128267, Water Depth", r"Water Depth, Transducer: 25\.262 ft",
                         r"Wind Speed: 7\.6900 m/s", r"Water Depth, Transducer: 7\.7000 m",
                         r"value of Wind Speed: 7\.69 m/s", r"value of Wind Reference: Apparent Wind .*",
                         r"Wind Speed: format 35, quantity 2 in kt, kph, mph, m/s",
                         r"deepest water: 8\.66 m")

    def test_input(self):
        lines = ["128267 4 255 3 01 F4 01 00 00 2C 01 FF", "128267 4 255 3 01 F4 zz", "128267 4 255", "1 2 3 4 100",
                 "126996 1 255 6" + " 00" * 1786, "99999 1 2 3"]
        result = run(*host("decode_host"), "-", text="\n".join(lines))
        self.assertEqual(re.findall(r"^line (\d+): ", result.stderr, re.MULTILINE), ["2", "3", "4", "5"])
        self.assertEqual(result.returncode, 1)
        self.assertShows(result.stdout, r"Water Depth, Transducer: 16\.404 ft", r"0\.00 +99999, Unknown")


@unittest.skipUnless(HAS_WINDOWS, "built without windows")
class Windows(Host):
    def test_toolkit(self):
        self.assertShows(self.output("toolkit_host", "2", windows=True),
                         "title: PGN Vistel, created: 1", r"[1-9]\d+ shown in 5 streams, 0 paused, 0 refused",
                         r"5 m/s are shown as 5\.0000 m/s, units applied: 0", "deleted, created: 0")

    def test_native(self):
        self.assertShows(self.output(NATIVE + "_host", "2", windows=True),
                         "title: Chart Table", r"[1-9]\d+ shown, 0 paused, 0 refused")

    def test_native_tree(self):
        self.assertShows(self.output(NATIVE + "_tree_host", "1", windows=True),
                         r"\d\.\d\d +127250, Vessel Heading", r"Source Address: 0x02 \(2\)",
                         r"\d\.\d\d +127488, Engine Parameters, Rapid Update", r"Engine Speed: .* RPM")

    @unittest.skipUnless(EMULATOR, "for Windows")
    def test_of_microsofts_compiler(self):
        stream = [r"Source Address: 0x0{0} \({0}\)", "Destination: Global, pri=2", r"Heading Sensor Reading: 156\.90 .*"]
        self.assertShows(self.output("microsoft_host", windows=True),
                         "127250 is Vessel Heading", "5 m/s are 18.000 kph", r"5 m/s are 9\.7192 kt",
                         r"1\.25 +127250, Vessel Heading", *(line.format(1) for line in stream),
                         r"1\.25 +127250, Vessel Heading", *(line.format(2) for line in stream))


if __name__ == "__main__":
    unittest.main()
