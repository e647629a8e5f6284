#!/usr/bin/env python3
"""The program vistel as a user runs it. Recordings are made on the spot. VISTEL is the program, NO_ARGUMENTS what has
main called without arguments."""

import csv
import io
import json
import os
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path

VISTEL = os.environ["VISTEL"]
MONITOR = VISTEL + "-monitor"  # not built without windows
NO_ARGUMENTS = os.environ["NO_ARGUMENTS"]
# Runs a program by a name of one's choice in a folder, where there is no /proc: FOLDER PATH NAME PROGRAM ARGUMENT...
WITHOUT_PROC = ["unshare", "--user", "--map-root-user", "--mount", "bash", "-c",
                'mount -t tmpfs none /proc && cd "$0" && PATH=$1 name=$2 && shift 2 && exec -a "$name" "$@"']

HEADING = "2026-09-10T08:00:00.250Z,2,127250,7,255,8,05,10,27,ff,7f,ff,7f,fd\n"  # 1.0000 rad magnetic
CLAIM = "2026-09-10T08:00:01.500Z,6,60928,35,255,8,39,30,20,11,00,96,32,c0\n"
LABEL = "2026-09-10T08:00:02.000Z,6,130818,9,255,17,89,98,00,00,00,0b,01,50,75,6d,70,2c,20,22,62,22,01\n"  # Pump, "b"
UNKNOWN = "2026-09-10T08:00:02.500Z,7,131000,9,35,3,01,02,03\n"


def vistel(*arguments, stdin=""):
    return subprocess.run([VISTEL, *arguments], input=stdin, capture_output=True, encoding="utf-8", timeout=60)


def without_display(*command, **environment):
    kept = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
    return subprocess.run(command, env=kept | environment, capture_output=True, encoding="utf-8", timeout=60)


class ProgramTest(unittest.TestCase):
    def test_text_is_what_the_monitor_shows(self):
        result = vistel("decode", stdin="# format=FAST\n" + HEADING + UNKNOWN)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout.splitlines(), [
            "0.00           127250, Vessel Heading",
            "    Source Address: 0x07 (7)",
            "    Destination: Global, pri=2",
            "    Sequence ID: 5 (0x05) ",
            "    Heading Sensor Reading: 57.296 °M",
            "    Deviation: - °",
            "    Variation: - °",
            "    Heading Sensor Reference: Magnetic",
            "    NMEA Reserved: 63 (0x3F) ",
            "2.25           131000, Unknown",
            "    Source Address: 0x09 (9)",
            "    Destination: 0x23 (35)",
            "    Data: 01 02 03",
        ])
        plain = vistel("decode", "--plain-numbers", stdin=HEADING).stdout
        self.assertIn("    Sequence ID: 5 \n", plain)

    def test_json(self):
        result = vistel("decode", "--json", stdin="# format=FAST\n" + HEADING + CLAIM + UNKNOWN)
        first, second, third = map(json.loads, result.stdout.splitlines())
        self.assertEqual([first[key] for key in ("time", "absolute", "pgn", "name", "priority", "source", "destination")],
                         [0, "2026-09-10T08:00:00.250000Z", 127250, "Vessel Heading", 2, 7, 255])
        fields = {field["label"]: field for field in first["fields"]}
        self.assertAlmostEqual(fields["Heading Sensor Reading"]["value"], 57.29578, places=4)
        self.assertEqual(fields["Heading Sensor Reading"]["unit"], "°M")
        self.assertEqual(fields["Heading Sensor Reading"]["raw"], "1027")
        self.assertIsNone(fields["Deviation"]["value"])
        self.assertEqual((fields["Heading Sensor Reference"]["value"], fields["Heading Sensor Reference"]["text"],
                          fields["Heading Sensor Reference"]["raw"]), (1, "Magnetic", "01"))
        self.assertEqual(second["time"], 1.25)
        self.assertEqual([field["number"] for field in second["fields"]], list(range(1, 11)))
        self.assertEqual((third["name"], third["fields"], third["data"]), ("Unknown", [], "010203"))

    def test_csv_names_the_message_and_the_one_it_asks_for(self):
        request = ",6,59904,7,255,3,14,f0,01\n"
        row, = csv.DictReader(io.StringIO(vistel("decode", "--csv", stdin=request).stdout))
        self.assertEqual((row["name"], row["text"]), ("ISO Request", "Product Information"))

    def test_csv_survives_quotes_and_commas(self):
        result = vistel("decode", "--csv", stdin="# format=FAST\n" + LABEL + UNKNOWN)
        rows = list(csv.DictReader(io.StringIO(result.stdout)))
        self.assertIn('Pump, "b"', [row["value"] for row in rows])
        self.assertEqual((rows[-1]["label"], rows[-1]["raw"], rows[-1]["time"]), ("Data", "010203", "0.500000"))
        self.assertTrue(all(None not in row and None not in row.values() for row in rows))

    def test_choices(self):
        both = "# format=FAST\n" + HEADING + CLAIM
        cases = [
            (["--pgn", "60928"], ["ISO Address Claim"]),
            (["--pgn", "60928", "--pgn", "127250"], ["Vessel Heading", "ISO Address Claim"]),
            (["--source", "7"], ["Vessel Heading"]),
            (["--source", "7", "--pgn", "60928"], []),
        ]
        for arguments, names in cases:
            shown = [json.loads(line)["name"] for line in vistel("decode", "--json", *arguments, stdin=both).stdout.splitlines()]
            self.assertEqual(shown, names, arguments)
        depth = ",3,128267,7,255,8,01,10,27,00,00,ff,7f,ff\n"  # 100.00 m
        for arguments, text in [([], "328.08 ft"), (["--unit", "depth=m"], "100.00 m"),
                                (["--units", "metric"], "100.00 m"),
                                (["--units", "metric", "--unit", "Depth=ftm"], "54.681 ftm")]:
            self.assertIn("Transducer: " + text, vistel("decode", *arguments, stdin=depth).stdout)

    def test_exit_statuses_and_messages(self):
        broken = ",2,127250,7,255,8,01,02\n"
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder, "a.log")
            path.write_text(HEADING + "\n" + broken + HEADING)
            cases = [
                (["decode", str(path)], 1, f"{path}:3: "),
                (["decode", str(Path(folder, "none"))], 2, "No such file"),
                (["decode", folder], 2, "directory"),
                (["decode", "--unit", "Depth=mile", str(path)], 2, "there are: ft, m, ftm"),
                (["decode", "--unit", "Deep=m", str(path)], 2, "no quantity 'Deep'"),
                (["decode", "--units", "royal", str(path)], 2, "default, metric"),
                (["decode", "--format", "none", str(path)], 2, "candump"),
                (["decode", "--json", "--csv", str(path)], 2, ""),
                (["frobnicate"], 2, "no command 'frobnicate'"),
                ([], 2, ""),
                (["catalogue", "none"], 2, "quantities"),
            ]
            for arguments, status, message in cases:
                result = vistel(*arguments)
                self.assertEqual(result.returncode, status, arguments)
                self.assertIn(message, result.stderr, arguments)
            self.assertEqual(vistel("decode", str(path)).stdout.count("Vessel Heading"), 2)
            garbage = Path(folder, "garbage")
            garbage.write_bytes(bytes(range(256)) * 1000)
            self.assertEqual(vistel("decode", str(garbage)).returncode, 2)
        self.assertEqual(vistel("decode").returncode, 0)

    def test_encoding_is_decoded_again(self):
        heading = ["127250", "Heading Sensor Reading=123.4 °", "Heading Sensor Reference=Magnetic"]
        product = ["126996", "Manufacturer's Model ID=Pump 3"]
        ack = ["126208", "Group Function Code=Acknowledge Message", "Requested PGN=65240"]
        address = ["65240", "Unique Number (ISO Identity Number)=77"]
        many = ["126464"] + [f"PGN supported #{n}=129029" for n in range(1, 101)]
        short = ["126464", "PGN supported #1=129029"]
        cases = [
            (heading, [], ["Heading Sensor Reading: 123.40 °M", "Heading Sensor Reference: Magnetic", "Deviation: - °"]),
            (heading, ["--source", "7", "--priority", "1"], ["Source Address: 0x07 (7)", "Destination: Global, pri=1"]),
            (product, ["--sequence", "5"], ["Manufacturer's Model ID: Pump 3 "]),
            (ack, ["--destination", "35"], ["Destination: 0x23 (35)", "Requested PGN:  65240 (ISO Commanded Address)"]),
            (address, [], ["Unique Number (ISO Identity Number): 77 (0x4D) "]),
            (many, [], ["PGN supported #100: 129029 (GNSS Position Data)"]),
            (short, [], ["PGN supported #1: 129029 (GNSS Position Data)"]),
            (["128267", "Water Depth, Transducer=10"], ["--units", "metric"], ["Water Depth, Transducer: 32.808 ft"]),
            (["130306", "Wind Speed=5 Bft"], [], ["Wind Speed: 16.017 kt"]),
        ]
        for fields, options, lines in cases:
            for form in ["plain", "candump"]:
                encoded = vistel("encode", *fields, *options, "--format", form, "--time", "2026-09-10T08:00:00.5Z")
                self.assertEqual((encoded.returncode, encoded.stderr), (0, ""), fields)
                decoded = vistel("decode", "--json", stdin=encoded.stdout)
                self.assertEqual((decoded.returncode, decoded.stderr), (0, ""), fields)
                last = json.loads(decoded.stdout.splitlines()[-1])
                self.assertEqual((last["pgn"], last["absolute"]), (int(fields[0]), "2026-09-10T08:00:00.500000Z"))
                shown = [line.removeprefix("    ") for line in vistel("decode", stdin=encoded.stdout).stdout.splitlines()]
                for line in lines:
                    self.assertIn(line, shown, fields)

    def test_frames_of_encoding(self):
        cases = [
            (["126464", "--sequence", "5", "--source", "3", "--time", "08:00:00"] + ["PGN supported #3=129029"],
             ["(08:00:00) can0 19EEFF03#A00A00FFFFFFFFFF", "(08:00:00) can0 19EEFF03#A1FF05F801FFFFFF"]),
            (["65240", "--priority", "7", "New Source Address=5"],
             ["can0 1CECFF00#20090002FFD8FE00", "can0 1CEBFF00#01FFFFFFFFFFFFFF", "can0 1CEBFF00#02FF05FFFFFFFFFF"]),
            (["59904", "--destination", "35", "PGN being requested=126996"], ["can0 18EA2300#14F001"]),
            (["127250", "--time", "2026-09-10T08:00:00.5Z"], ["(1789027200.500000) can0 09F11200#FFFFFFFF7FFF7FFF"]),
        ]
        for arguments, lines in cases:
            self.assertEqual(vistel("encode", "--format", "candump", *arguments).stdout.splitlines(), lines)

    def test_lists_of_fields(self):
        heading = vistel("encode", "--list", "127250").stdout
        self.assertIn("  Deviation: 2 bytes, from -187.74681 to 187.72389 °; also Rad\n", heading)
        self.assertIn("  Heading Sensor Reference: 2 bits, one of:\n      0  True\n      1  Magnetic\n", heading)
        for name in ["vessel heading", "0x1F112"]:
            self.assertEqual(vistel("encode", name, "--list").stdout, heading)
        makers, all_makers = (vistel("encode", "--list", "60928", *more).stdout for more in [[], ["--all-choices"]])
        self.assertIn("      ... and 195 more, with --all-choices\n", makers)
        self.assertEqual(len(all_makers.splitlines()), len(makers.splitlines()) + 194)
        numbers = [row.split("\t")[0] for row in vistel("catalogue", "fields").stdout.splitlines()[1:]]
        for number in sorted(set(numbers))[::7]:
            self.assertEqual(vistel("encode", "--list", number).returncode, 0, number)

    def test_hostile_arguments_of_encoding(self):
        long = "x" * 10_000
        cases = [
            (["127250", "Deviation"], "'Deviation' is not of the form LABEL=VALUE"),
            (["127250", ""], "an argument is empty"),
            (["127250", "=1"], "'=1' has no label before the '='"),
            (["127250", long], "...' is not of the form"),
            (["127250", long + "=1"], "...' in PGN 127250; there are: Sequence ID"),
            (["127250", "Deviation=" + long], "...' does not begin with a number"),
            (["127250", "Deviation=" + "9" * 10_000], "...' is out of range: from -187.74681 to 187.72389 °"),
            (["126998", "Installation Description, Field 1=" + long], "holds 125 characters only: 'xxx"),
            (["127250", b"Deviation=\xff"], "`Deviation=\\xFF` is not UTF-8 text"),
            ([b"\xff"], "`\\xFF` is not UTF-8 text"),
            (["262144"], "PGN '262144' is above 262143"),
            (["99999999999999999999"], "is above 262143"),
            (["-1"], "no PGN '-1'"),
            (["131000"], "PGN 131000 is not in the catalogue"),
            (["Vessel Headin"], "did you mean 'Vessel Heading'?"),
            (["127250", "--destination", "5"], "PGN 127250 goes to everyone; it has no destination"),
            (["127250", "--time", "noon"], "time `noon`: "),
            (["127250", "--unit", "Heading=ft"], "no unit 'ft' for Heading; there are: °M, °T"),
            (["127250", "--units", "royal"], "there are: default, metric"),
            (["--list", "127250", "Deviation=1"], "--list takes no fields"),
            (["--list", "131000"], "PGN 131000 is not in the catalogue"),
            ([*["126464"], *[f"PGN supported #{n}=1" for n in range(600)]], "PGN supported #0"),
            (["126464", "PGN supported #99999999999999999999=1"], "no field"),
            (["126464", "PGN supported #1700=1"], "#1700 does not fit into the 1785 bytes of a message"),
            (["126996", "--format", "candump", "Data=" + "00" * 1785, "--destination", "255"], None),
            (["126208", "--format", "candump", "Data=" + "02" * 300, "--destination", "3"], "takes a dialogue"),
        ]
        for arguments, message in cases:
            result = subprocess.run([VISTEL, "encode", *arguments], capture_output=True, timeout=60)
            error = result.stderr.decode("utf-8")
            if message is None:
                self.assertEqual((result.returncode, error), (0, ""))
                continue
            self.assertEqual((result.returncode, result.stdout), (2, b""), error)
            self.assertIn(message, error)
            self.assertLess(max(map(len, error.splitlines() or [""])), 400, error)

    def test_incomplete_packets_are_told(self):
        frames = "(1.0) can0 19F01423#0086010203040506\n(1.1) can0 09F11207#05102700FF7FFF7F\n"
        result = vistel("decode", "--stats", stdin=frames)
        self.assertEqual(result.returncode, 1)
        self.assertIn("messages that stayed incomplete: 1", result.stderr)
        self.assertIn("incomplete fast packets: 1", result.stderr)

    def test_texts_off_the_wire_steer_no_terminal(self):
        forged = "# format=FAST\n,6,126998,3,255,19,13,01,1b,5b,33,31,6d,58,0a,30,2e,30,30,20,46,4f,52,47,45\n"
        text = vistel("decode", stdin=forged).stdout
        self.assertIn("\ufffd[31mX\ufffd0.00 FORGE", text)
        self.assertEqual(json.loads(vistel("decode", "--json", stdin=forged).stdout)["fields"][0]["value"],
                         "\x1b[31mX\n0.00 FORGE")

    def test_a_full_disk_is_told(self):
        for arguments in (["decode"], ["catalogue", "fields"], ["encode", "127250"]):
            with open("/dev/full", "w", encoding="utf-8") as full:
                result = subprocess.run([VISTEL, *arguments], input=HEADING, stdout=full, stderr=subprocess.PIPE,
                                        encoding="utf-8", timeout=60)
            self.assertEqual(result.returncode, 2, arguments)
            self.assertIn("cannot write", result.stderr)

    def test_a_live_source_is_shown_at_once_and_ends_quietly(self):
        with subprocess.Popen([VISTEL, "decode", "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8") as process:
            process.stdin.write(HEADING)
            process.stdin.flush()
            self.assertIn("Vessel Heading", process.stdout.readline())  # with the input still open
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(timeout=30), 0)
            self.assertEqual(process.stderr.read(), "")

    def test_a_closed_pipe_ends_it_quietly(self):
        for arguments in (["decode"], ["catalogue", "fields"], ["encode", "--list", "127250"]):
            reader, writer = os.pipe()
            os.close(reader)
            result = subprocess.run([VISTEL, *arguments], input=HEADING, stdout=writer, stderr=subprocess.PIPE,
                                    encoding="utf-8", timeout=60)
            os.close(writer)
            self.assertEqual((result.returncode, result.stderr), (0, ""), arguments)

    def test_a_pipe_that_is_closed_meanwhile_ends_it_quietly(self):
        with subprocess.Popen([VISTEL, "decode", "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8") as process:
            process.stdout.close()
            try:
                for _ in range(20000):
                    process.stdin.write(HEADING)
            except BrokenPipeError:
                pass
            try:
                process.stdin.close()
            except BrokenPipeError:
                pass
            self.assertEqual(process.wait(timeout=30), 0)
            self.assertEqual(process.stderr.read(), "")

    def test_bad_usage_is_told_by_the_program(self):
        for arguments in (["decode", "--none"], ["encode", "127250", "--source", "300"], ["none"], ["decode", ""], [],
                          ["monitor", "--none"]):
            result = vistel(*arguments)
            self.assertEqual((result.returncode, result.stdout), (2, ""), arguments)
            self.assertTrue(result.stderr.startswith("vistel: "), (arguments, result.stderr))

    def test_the_window_needs_a_display(self):
        for arguments in (["none.log"], ["--speed", "1e-310"]):
            result = without_display(VISTEL, "monitor", *arguments)
            self.assertEqual(result.returncode, 2)
            self.assertEqual(len(result.stderr.splitlines()), 1)
            self.assertIn("'vistel decode' shows the messages as text", result.stderr)

    @unittest.skipUnless(os.path.exists(MONITOR), "built without windows")
    def test_the_window_is_never_looked_for_in_the_working_directory(self):
        program = Path(VISTEL).resolve()
        with tempfile.TemporaryDirectory() as folder:
            other = Path(folder, "vistel-monitor")
            other.write_text("#!/bin/sh\necho another program\n", encoding="utf-8")
            other.chmod(0o755)
            Path(folder, "vistel").symlink_to(program)
            if without_display(*WITHOUT_PROC, folder, "", "vistel", program, "--version").returncode != 0:
                self.skipTest("/proc cannot be hidden here")
            for path, name, message in [("", str(program), "no display"),
                                        (f"/none:{program.parent}", "vistel", "no display"),
                                        (folder, "vistel", "no display"),  # a link to the program
                                        ("", "vistel", "cannot start the window"),
                                        (":/none:", "vistel", "cannot start the window"),
                                        (".", "vistel", "cannot start the window"),
                                        (folder, "", "cannot start the window")]:
                with self.subTest(path=path, name=name):
                    result = without_display(*WITHOUT_PROC, folder, path, name, program, "monitor", "none.log")
                    self.assertEqual((result.returncode, result.stdout), (2, ""))
                    self.assertRegex(result.stderr, f"^vistel: {message}.*'vistel decode' shows the messages as text$")

    def test_no_argument_at_all(self):
        for program, message in [(VISTEL, "A subcommand is required"), (MONITOR, "no display")]:
            if os.path.exists(program):
                result = without_display(program, LD_PRELOAD=NO_ARGUMENTS)
                self.assertEqual((result.returncode, result.stdout), (2, ""), result.stderr)
                self.assertIn(f"vistel: {message}", result.stderr)

    def test_catalogue(self):
        for table, column, rows in [("pgns", "pgn", 309), ("dictionary", "dd", 535), ("formats", "df", 177),
                                    ("units", "unit", 140), ("quantities", "quantity", 65), ("repeats", "pgn", 24)]:
            lines = list(csv.DictReader(io.StringIO(vistel("catalogue", table).stdout), delimiter="\t",
                                        quoting=csv.QUOTE_NONE))
            self.assertEqual(len(lines), rows, table)
            self.assertTrue(all(line[column].isdigit() for line in lines), table)
        self.assertIn("\t\u2126\n", vistel("catalogue", "units").stdout)


if __name__ == "__main__":
    unittest.main()
