#!/usr/bin/env python3
"""The program vistel as a user runs it. Recordings are made on the spot. VISTEL is the program, NO_ARGUMENTS what has
main called without arguments. EMULATOR, where there is one, runs programs for Windows."""

import csv
import gzip
import io
import json
import os
import pty
import re
import select
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest
from datetime import datetime
from pathlib import Path

VISTEL = os.environ["VISTEL"]
EMULATOR = os.environ.get("EMULATOR", "")
PROGRAM = [EMULATOR, VISTEL] if EMULATOR else [VISTEL]
os.environ["XDG_CONFIG_HOME"] = "/nowhere"  # nobody's own configuration
MONITOR = VISTEL + "-monitor"  # not built without windows
NO_ARGUMENTS = os.environ.get("NO_ARGUMENTS", "")
# A user can end a program by the keyboard alone on Windows.
TERMINATION = signal.SIGINT if EMULATOR else signal.SIGTERM
signal.signal(signal.SIGHUP, signal.SIG_DFL)  # for the programs that are started, whoever started this one
# Runs a program by a name of one's choice in a folder, where there is no /proc: FOLDER PATH NAME PROGRAM ARGUMENT...
WITHOUT_PROC = ["unshare", "--user", "--map-root-user", "--mount", "bash", "-c",
                'mount -t tmpfs none /proc && cd "$0" && PATH=$1 name=$2 && shift 2 && exec -a "$name" "$@"']

HEADING = "2026-09-10T08:00:00.250Z,2,127250,7,255,8,05,10,27,ff,7f,ff,7f,fd\n"  # 1.0000 rad magnetic
CLAIM = "2026-09-10T08:00:01.500Z,6,60928,35,255,8,39,30,20,11,00,96,32,c0\n"
# Texts of a label, in one byte a character and in UTF-16, with what forms have to quote or must not let through.
HOSTILE = ('Pump, "b"', "a\rb", "\x1b[31mX\n0.00 FORGE", "\\\x7f", "A\x85\x9bB\u6771\u2028\u2029", "=1+1", "'1")
UNKNOWN = "2026-09-10T08:00:02.500Z,7,128999,9,35,3,01,02,03\n"


def vistel(*arguments, stdin=""):
    result = subprocess.run([*PROGRAM, *arguments], input=stdin.encode(), capture_output=True, timeout=60)
    result.stdout, result.stderr = result.stdout.decode(), result.stderr.decode()  # with their line ends
    return result


class Number(str):
    """Of JSON, as it is written."""


def cell(value):
    """What CSV has of a member of JSON."""
    if isinstance(value, Number):
        return value
    return re.sub("^(?=[-=+@'])", "'", re.sub("[\0-\x1f\x7f-\x9f]", "\ufffd", value or ""))


def label(text):
    """A label message with a text."""
    narrow = all(ord(c) < 0x80 for c in text)
    sent = text.encode("latin-1" if narrow else "utf-16-le")
    payload = bytes((0x89, 0x98, 0, 0, 0, len(sent) + 2, narrow)) + sent + b"\1"
    return f",6,130818,9,255,{len(payload)},{payload.hex(',')}\n"


def without_display(*command, **environment):
    kept = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
    return subprocess.run(command, env=kept | environment, capture_output=True, encoding="utf-8", timeout=60)


def catalogue(table, definitions):
    """The rows of a table by column."""
    printed = vistel("catalogue", table, "--definitions", definitions).stdout
    return list(csv.DictReader(io.StringIO(printed), delimiter="\t", quoting=csv.QUOTE_NONE))


def json_values(arguments, key):
    """What the decoded messages have under a key."""
    return [json.loads(line)[key] for line in vistel("decode", "--json", *arguments).stdout.splitlines()]


class ProgramTest(unittest.TestCase):
    def test_text_and_json(self):
        result = vistel("decode", stdin="# format=FAST\n" + HEADING + UNKNOWN)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout.splitlines()[2:5] + result.stdout.splitlines()[-4:], [
            "    Destination: Global, pri=2", "    Sequence ID: 5 (0x05) ", "    Heading Sensor Reading: 57.296 °M",
            "2.25           128999, Unknown", "    Source Address: 0x09 (9)", "    Destination: 0x23 (35)",
            "    Data: 01 02 03"])
        result = vistel("decode", "--json", stdin="# format=FAST\n" + HEADING + CLAIM)
        first, second = map(json.loads, result.stdout.splitlines())
        self.assertEqual([first[key] for key in ("time", "absolute", "name", "priority", "source", "destination")],
                         [0, "2026-09-10T08:00:00.250000Z", "Vessel Heading", 2, 7, 255])
        self.assertEqual(first["fields"][1], {"number": 2, "key": "heading_sensor_reading", "label": "Heading Sensor Reading",
                                              "value": 1, "unit": "rad", "text": None, "raw": "1027"})
        self.assertEqual(second["time"], 1.25)

    def test_forms_agree(self):
        """Any payloads: JSON and CSV have the same, and what the text shows."""
        made = subprocess.run([sys.executable, Path(__file__).with_name("any_payloads.py")], capture_output=True,
                              encoding="utf-8", check=True).stdout.splitlines(keepends=True)
        recording = "# format=FAST\n" + "".join(made[::4]) + "".join(map(label, HOSTILE))
        text, objects, rows = (vistel("decode", "--units=default", form, stdin=recording).stdout
                               for form in ("--plain-numbers", "--json", "--csv"))
        lines = iter(text.split("\n"))
        self.assertFalse(re.search("[\0-\x09\x0b-\x1f\x7f-\x9f]", text + objects + rows), "what could steer a terminal")
        self.assertFalse(re.search("[\u2028\u2029]", objects))
        rows = csv.DictReader(io.StringIO(rows, newline=""))
        values = []
        for sent, message in zip(recording.splitlines()[1:], objects.split("\n")):
            message = json.loads(message, parse_float=Number, parse_int=Number)
            self.assertRegex(next(lines), f"^[-0-9.]+ +{message['pgn']}, {re.escape(message['name'])}$")
            self.assertEqual(next(lines), f"    Source Address: 0x{int(message['source']):02X} ({message['source']})")
            next(lines)
            for field in message["fields"]:
                row, line = next(rows), next(lines)
                row["number"] = row["field"]
                self.assertEqual({key: cell(value) for key, value in field.items()}, {key: row[key] for key in field})
                start = f"    {field['label']}: "
                self.assertTrue(line.startswith(start), (line, field))
                shown, value = line.removeprefix(start), field["value"]
                values.append(value)
                if field["text"] is not None:
                    self.assertIn(field["text"], shown)
                elif re.fullmatch(r"-?\d+\.\d+ \D*", shown) and value is not None:
                    self.assertAlmostEqual(float(shown.split()[0]), float(value), delta=1e-5 + 1e-4 * abs(float(value)))
                self.assertEqual(row["time"], message["time"] or "")
            if "data" in message or not message["fields"]:
                row = next(rows)
                self.assertEqual((row["label"], row["raw"]), ("Data", message.get("data", "")))
                self.assertTrue(sent.split(",", 6)[6].replace(",", "").strip().upper().endswith(row["raw"]))
                self.assertEqual(next(lines).replace(" ", ""), "Data:" + message.get("data", ""))
        self.assertEqual((next(lines), next(rows, None)), ("", None))
        self.assertLessEqual(set(HOSTILE), set(values))

    def test_csv_names_the_message_and_the_one_it_asks_for(self):
        request = ",6,59904,7,255,3,14,f0,01\n"
        row, = csv.DictReader(io.StringIO(vistel("decode", "--csv", stdin=request).stdout))
        self.assertEqual((row["name"], row["text"]), ("ISO Request", "Product Information"))

    def test_choices(self):
        both = "# format=FAST\n" + HEADING + CLAIM
        cases = [
            (["--pgn", "60928"], ["ISO Address Claim"]),
            (["--pgn", "60928", "--pgn", "127250"], ["Vessel Heading", "ISO Address Claim"]),
            (["--source", "7"], ["Vessel Heading"]), (["--source", "7,35"], ["Vessel Heading", "ISO Address Claim"]),
            (["--source", "7", "--pgn", "60928"], []), (["--pgn", "60928,0x1F112"], ["Vessel Heading", "ISO Address Claim"]),
            (["--pgn", "vessel  heading, position, rapid update"], ["Vessel Heading"]), (["--pgn", "address cl"], ["ISO Address Claim"]),
        ]
        for arguments, names in cases:
            shown = [json.loads(line)["name"] for line in vistel("decode", "--json", *arguments, stdin=both).stdout.splitlines()]
            self.assertEqual(shown, names, arguments)
        depth = ",3,128267,7,255,8,01,10,27,00,00,ff,7f,ff\n"  # 100.00 m
        for arguments, text in [([], "328.08 ft"), (["--unit", "depth=m"], "100.00 m"),
                                (["--units", "metric"], "100.00 m"),
                                (["--units", "metric", "--unit", "Depth=ftm"], "54.681 ftm"),
                                (["--units", "si"], "100.00 m"), (["--unit", "depth=fathom"], "54.681 ftm")]:
            self.assertIn("Transducer: " + text, vistel("decode", *arguments, stdin=depth).stdout)
        for arguments, value, unit in [([], "100", "m"), (["--units", "default"], "328.08398", "ft"),
                                       (["--unit", "Depth=ftm"], "54.680668", "fathom")]:
            rows = csv.DictReader(io.StringIO(vistel("decode", "--csv", *arguments, stdin=depth).stdout))
            self.assertIn(("water_depth_transducer", value, unit), [(row["key"], row["value"], row["unit"]) for row in rows])

    def test_awkward_messages(self):
        """No time, a time before the first, extremes, nothing available, an unknown PGN, payloads too short, hostile texts."""
        folder = Path(__file__).with_name("awkward")
        for form in ("json", "csv"):
            result = vistel("decode", f"--{form}", str(folder / "messages.log"))
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertEqual(result.stdout, (folder / f"messages.{form}").read_bytes().decode(), form)

    def test_statistics_and_status(self):
        """Every line of --stats, of a recording in which each thing went wrong that is counted."""
        recording = (
            "(1500000001.000000) can0 09F11207#051027FF7FFF7FFD\n"
            "(1500000001.100000) can0 123#00\n"
            "(1500000001.200000) can0 09F7E709#010203\n"
            "no frame\n"
            "(1500000001.300000) can0 0DF80503#A02F010203040506\n"
            "(1500000001.310000) can0 0DF80503#A108090A0B0C0D0E\n"
            "(1500000001.320000) can0 0DF80503#A108090A0B0C0D0E\n"
            "(1500000001.330000) can0 0DF80505#4308090A0B0C0D0E\n"
            "(1500000001.400000) can0 1CECFF06#20090002FFD8FE00\n"
            "(1500000001.410000) can0 1CEBFF06#01FFFFFFFFFFFFFF\n"
            "(1500000000.900000) can0 09F11207#051027FF7FFF7FFD\n"
            "DROPCOUNT: dropped 2 CAN frames on 'can0' socket (total drops 2)\n")
        counts = {"messages": 5, "shown": 3, "frames": 9, "errors": 1, "incomplete fast packets": 1,
                  "incomplete transport sessions": 1, "frames of no message": 1, "repeated frames": 1, "other than NMEA 2000": 1,
                  "time stamps earlier than the one before": 1, "frames dropped by the recorder": 2, "unknown PGNs": 1}
        lost = ["lost or repeated frames: 8", "    129029 from source   3: 5 missing, 0 of no message, 1 repeated",
                "    129029 from source   5: 0 missing, 1 of no message, 0 repeated",
                "     65240 from source   6: 1 missing, 0 of no message, 0 repeated"]
        told = ["standard input:4: `no frame` has neither [length] nor # before its data", "vistel: lines that could not be read: 1",
                "vistel: frames that the recorder dropped: 2", "vistel: messages that stayed incomplete: 2", "vistel: frames that belong to no message: 1"]
        result = vistel("decode", "--stats", "--source", "7", "--source", "9", stdin=recording)
        self.assertEqual(result.stderr.splitlines(), [
            *told, "format: candump", *(f"{what}: {count}" for what, count in counts.items()), "    128999 from source   9: 1", *lost])
        # What leads to which status, each alone.
        lines = recording.splitlines(keepends=True)
        for chosen, status in [([0, 1, 2, 10], 0), ([0, 3], 1), ([0, 4], 1), ([0, 7], 1), ([0, 8], 1), ([0, 11], 1), ([3], 2), ([], 0)]:
            for command in (["decode"], ["devices"], ["convert", "--to", "actisense-ascii"]):
                result = vistel(*command, stdin="".join(lines[i] for i in chosen))
                self.assertEqual(result.returncode, status, (command, chosen, result.stderr))
        if EMULATOR:
            return  # pipes that do not block are not known there
        # Whoever does not block loses nothing.
        text = vistel("decode", stdin=HEADING * 5000).stdout
        reader, writer = os.pipe()
        os.set_blocking(writer, False)
        with subprocess.Popen([VISTEL, "decode"], stdin=subprocess.PIPE, stdout=writer) as process:
            os.close(writer)
            threading.Thread(target=process.communicate, args=((HEADING * 5000).encode(),)).start()
            with open(reader, encoding="utf-8") as pipe:
                time.sleep(0.1)
                self.assertEqual(pipe.read(), text)
            self.assertEqual(process.wait(timeout=30), 0)

    @unittest.skipIf(EMULATOR, "the folder of configurations cannot be chosen there")
    def test_configuration(self):
        recording = ",3,128267,7,255,8,01,10,27,00,00,ff,7f,ff\n,2,127250,7,255,8,05,10,27,ff,7f,ff,7f,fd\n"
        with tempfile.TemporaryDirectory() as folder:
            file = Path(folder, "pgn-vistel", "config")
            file.parent.mkdir()
            Path(folder, "log").write_text(recording)
            def run(text, *arguments):
                file.write_text(text)
                return subprocess.run([VISTEL, *arguments], env=os.environ | {"XDG_CONFIG_HOME": folder}, cwd=folder,
                                      capture_output=True, encoding="utf-8", timeout=60)
            usual = f"# mine\r\nunits = nautical\n unit depth=ftm\nsource boat = {folder}/log\n"
            cases = [(usual, [], "54.681 ftm"), (usual, ["--no-config"], "328.08 ft"), (usual, ["--units", "si"], "100.00 m"),
                     (usual, ["--unit", "Depth=ft"], "328.08 ft"), (usual, ["--csv"], ",100,m,"), ("units=us", [], "328.08 ft"),
                     ("units = nautical", ["--unit", "direction=rad"], "1.0000 Rad")]
            for text, arguments, shown in cases:
                self.assertIn(shown, run(text, "decode", "log", *arguments).stdout, arguments)
            self.assertIn("54.681 ftm", run(usual, "decode", "boat").stdout)
            self.assertIn("vistel: none://x: ", run("source out = none://x", "replay", "log", "--to", "out").stderr)
            for text, told in [("units = royal", ":1: no set of units 'royal'"), ("\nunit Deep = m", ":2: no quantity 'Deep'"),
                               ("colour = red", ":1: 'colour' is no setting"), ("units", ":1: 'units' is not of the form")]:
                result = run(text, "decode", "log")
                self.assertEqual((result.returncode, result.stdout), (2, ""), text)
                self.assertIn(f"vistel: {file}{told}", result.stderr)
        for row in csv.DictReader(io.StringIO(vistel("catalogue", "quantities").stdout), delimiter="\t"):
            unit = row["units"].split(", ")[0]
            result = vistel("decode", "--unit", f"{row['name']}={unit}", stdin=recording)
            self.assertEqual(result.returncode, 0 if unit else 2, result.stderr)

    def test_exit_statuses_and_messages(self):
        broken = ",2,127250,7,255,8,01,02\n"
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder, "a.log")
            path.write_text(HEADING + "\n" + broken + HEADING)
            cases = [
                (["decode", str(path)], 1, f"{path}:3: "), (["decode", str(Path(folder, "none"))], 2, "No such file"),
                (["decode", folder], 2, "directory"), (["decode", "--json", "--csv", str(path)], 2, ""),
                (["decode", "--unit", "Depth=mile", str(path)], 2, "there are: ft, m, ftm"),
                (["decode", "--unit", "Deep=m", "--unit", "Depth=m", str(path)], 2, "no quantity 'Deep'"),
                (["decode", "--units", "royal", str(path)], 2, "default, metric"),
                (["decode", "--format", "none", str(path)], 2, "candump"), (["catalogue", "none"], 2, "quantities"),
                (["decode", "--pgn", "heading", str(path)], 2, "'heading' is part of the names of 6 PGNs: "),
                (["decode", "--pgn", "127250,", str(path)], 2, "no PGN ''"), (["decode", "--pgn", "262144"], 2, "is above 262143"),
                (["decode", "--pgn", "131000"], 0, "not in the catalogue"),
                (["decode", "--source", "7,x"], 2, "x not in range 0 to 255"), (["decode", "--contents", "x"], 2, "there are: messages, frames\n"),
                (["decode", "no\n\x1b[31m"], 2, "vistel: no\ufffd\ufffd[31m: "), (["encode", "127250", "--time", "1969-01-01T00:00:00Z"], 2, "1970"),
                (["none"], 2, "vistel: no command 'none'"), ([], 2, "vistel: "), (["decode", "--none"], 2, "vistel: "),
                (["decode", ""], 2, "vistel: "), (["monitor", "--none"], 2, "vistel: "),
                (["encode", "127250", "--source", "300"], 2, "vistel: "),
                (["replay", str(path), "--to", "udp://127.0.0.1:9", "--speed", "0"], 2, "neither a positive number nor max"),
            ]
            for arguments, status, message in cases:
                result = vistel(*arguments)
                self.assertEqual(result.returncode, status, arguments)
                self.assertIn(message, result.stderr, arguments)
            self.assertEqual(vistel("decode", str(path)).stdout.count("Vessel Heading"), 2)

    def test_what_is_alike_is_counted(self):
        lines = "".join(f"`line {n}`\n" for n in range(12)) + "".join(f",2,127250,7,255,{n},01\n" for n in (3, 4))
        record = "1002 9313 0212F101FF230CCDAB000800393000 00FF7FFD{} 1003"  # and its checksum
        records = bytes.fromhex(record.format("C2") + record.format("C3") * 7)
        with tempfile.TemporaryDirectory() as folder:
            Path(folder, "lines").write_text(HEADING + lines)
            Path(folder, "records").write_bytes(records)
            text, binary = str(Path(folder, "lines")), str(Path(folder, "records"))
            result = vistel("decode", text, binary)
            told = result.stderr.replace(folder + "/", "").splitlines()
            self.assertEqual([line.split(": ")[0] for line in told[:12]],
                             [f"lines:{n}" for n in (2, 3, 4, 5, 6, 14, 15)] + ["records"] * 5)
            self.assertEqual(told[12:], ["vistel: 7 more like lines:2",
                                         "vistel: 2 more like that at byte 26 of records",
                                         "vistel: lines that could not be read: 14",
                                         "vistel: records that could not be read: 7"])
            quiet = vistel("decode", "--quiet", text, binary)
            self.assertEqual(quiet.stderr.replace(folder + "/", "").splitlines(), told[-2:])
            self.assertEqual((quiet.stdout, quiet.returncode), (result.stdout, 1))
            unframed = ",6,59905,7,35,9,1,2,3,4,5,6,7,8,9\n" * 8
            result = vistel("convert", "--to", "candump", stdin="# format=FAST\n" + unframed)
            told = result.stderr.splitlines()
            self.assertEqual((len(told), told[5]), (7, "vistel: 3 more like PGN 59905 from source 7"), told)
            self.assertEqual(result.returncode, 1)
        self.assertIn("No such file", vistel("decode", "-q", "/none").stderr)

    def test_encoding_is_decoded_again(self):
        def pgns(count):
            return ["126464", "Group Function Code=0"] + [f"PGN supported #{n}=129029" for n in range(1, count + 1)]
        magnetic = ["Heading Sensor Reading=123.4 °", "Heading Sensor Reference=Magnetic"]
        cases = [
            (["127250", *magnetic], ["Heading Sensor Reading: 123.40 °M", "Deviation: - °"]),
            (["127250", "--source", "7", "--priority", "0"], ["Source Address: 0x07 (7)", "Destination: Global, pri=0"]),
            (["126996", "Manufacturer's Model ID=Pump 3", "--sequence", "5"], ["Manufacturer's Model ID: Pump 3 "]),
            (["126208", "PGN error code=1", "Requested or Commanded PGN # being acknowledged=65240", "--destination", "35"],
             ["Destination: 0x23 (35)", "Acknowledgment Group Function Code: Acknowledge Message",
              "Requested or Commanded PGN # being acknowledged:  65240 (ISO Commanded Address)"]),
            (["126208", "Command Group Function Code=1", "Commanded PGN=65280", "--destination", "35",
              "Field number of first commanded parameter #1=1", "Manufacturer Code=Furuno",
              "Field number of first commanded parameter #2=4", "Heave=1 m"],
             ["Number of Pairs of Commanded Parameters to follow: 2 (0x02) ", "Heave: 100.00 cm"]),
            (["65280", "--variant", "furuno_heave", "Heave=-1.2 m"], ["Manufacturer Code: Furuno", "Heave: -120.00 cm"]),
            (["65280", "--variant", "furuno: heave", "Manufacturer Code=Furuno", "Heave=-1.2 m"], ["Industry Code: Marine", "Heave: -120.00 cm"]),
            (["61184", "Manufacturer Code=Nautibus Electronic", "Data=010203"], ["Data: 01 02 03"]),
            (["65240", "Unique Number (ISO Identity Number)=77"], ["Unique Number (ISO Identity Number): 77 (0x0000004D) "]),
            (pgns(100), ["PGN supported #100: 129029 (GNSS Position Data)"]), (pgns(1), []),
            (["126464", "Data=0112F10114F00100"], ["PGN supported #2: 126996 (Product Information)"]),  # eight bytes
            (["128267", "Water Depth, Transducer=10", "--units", "metric"], ["Water Depth, Transducer: 32.808 ft"]),
            (["130306", "Wind Speed=5 Bft"], ["Wind Speed: 16.017 kt"]),
        ]
        for arguments, lines in cases:
            for form in ["plain", "candump"]:
                encoded = vistel("encode", *arguments, "--format", form, "--time", "2026-09-10T08:00:00.5Z")
                self.assertEqual((encoded.returncode, encoded.stderr), (0, ""), arguments)
                decoded = vistel("decode", "--json", stdin=encoded.stdout)
                self.assertEqual((decoded.returncode, decoded.stderr), (0, ""), arguments)
                last = json.loads(decoded.stdout.splitlines()[-1])
                self.assertEqual((last["pgn"], last["absolute"]), (int(arguments[0]), "2026-09-10T08:00:00.500000Z"))
                shown = vistel("decode", stdin=encoded.stdout).stdout
                for line in lines:
                    self.assertIn(f"    {line}\n", shown, arguments)

    def test_converting(self):
        with tempfile.TemporaryDirectory() as folder:
            first, second, broken = (Path(folder, name) for name in ("first.log", "second.gz", "broken.log"))
            first.write_text("# format=FAST\n" + HEADING + CLAIM)
            contents = UNKNOWN.replace(",35,", ",255,").encode()
            second.write_bytes(contents if EMULATOR else gzip.compress(contents))  # there it is left out
            broken.write_text(HEADING + "nothing\n" + ",6,59905,7,35,3,14,f0,01\n")
            names = json_values([str(first)], "pgn") + json_values([str(second)], "pgn")
            for form in re.search(r"--to TEXT:{(.*?)}", vistel("convert", "--help").stdout)[1].split(",") + ["ngt"]:
                written = str(Path(folder, form))
                Path(written).write_text("what stood there before\n" * 1000)
                result = vistel("convert", str(first), str(second), "--to", form, "-o", written, "--quiet")
                self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""), form)
                self.assertEqual(json_values([written], "pgn"), names)
                again = subprocess.run([*PROGRAM, "convert", "--to", form, written], capture_output=True, check=True)
                self.assertEqual(again.stdout, Path(written).read_bytes())
                result = vistel("convert", written, "--to", form, "-o", written)
                self.assertEqual(result.returncode, 2)
                self.assertIn("it is one of the recordings that are read", result.stderr)
                self.assertEqual(json_values([written], "pgn"), names)
            result = vistel("convert", str(broken), "--to", "candump")
            self.assertEqual((result.returncode, result.stdout), (1, "(1789027200.250000) can0 09F11207#051027FF7FFF7FFD\n"))
            self.assertIn(f"{broken}:2: ", result.stderr)
            self.assertIn("vistel: PGN 59905 from source 7 is left out: ", result.stderr)
            self.assertIn("vistel: messages that candump cannot hold: 1\n", result.stderr)
            result = vistel("convert", "--to", "yacht-devices", stdin=HEADING + HEADING[HEADING.index(","):])
            self.assertEqual((result.returncode, result.stderr.splitlines()), (0, [
                "vistel: messages without a time, which yacht-devices cannot say: 1",
                "vistel: messages whose date and time is a time of day in yacht-devices: 1"]))
            if not EMULATOR:
                second.write_bytes(gzip.compress(second.read_bytes()))
                self.assertIn("gzip data within other data", vistel("decode", str(second)).stderr)
            for arguments, told in [(["--to", "none"], "none not in"), ([], "--to is required"),
                                    ([folder + "/none", "--to", "plain"], "No such file"),
                                    ([str(first), "--to", "plain", "-o", folder], "directory")]:
                result = vistel("convert", *arguments)
                self.assertEqual(result.returncode, 2)
                self.assertIn(told, result.stderr)

    def test_frames_of_encoding(self):
        cases = [
            (["126464", "Group Function Code=0", "--sequence", "5", "--source", "3", "--time", "08:00:00"] + ["PGN supported #3=129029"],
             ["(28800.000000) can0 19EEFF03#A00A00FFFFFFFFFF", "(28800.000000) can0 19EEFF03#A1FF05F801FFFFFF"]),
            (["65240", "--priority", "7", "New Source Address=5"],
             ["can0 1CECFF00#20090002FFD8FE00", "can0 1CEBFF00#01FFFFFFFFFFFFFF", "can0 1CEBFF00#02FF05FFFFFFFFFF"]),
            (["127490", "Inverter/Motor Identifier=1"], ["can0 19F20200#000C01FFFFFFFFFF", "can0 19F20200#01FFFFFFFFFFFFFF"]),
            (["129025", "Latitude=52.5"], ["can0 09F80100#40DD4A1FFFFFFF7F"]),
            (["59904", "--destination", "35", "PGN being requested=126996"], ["can0 18EA2300#14F001"]),
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
        more = [int(number) for number in re.findall(r"      \.\.\. and (\d+) more, with --all-choices\n", makers)]
        self.assertGreater(sum(more), 190)
        self.assertEqual(len(all_makers.splitlines()), len(makers.splitlines()) + sum(more) - len(more))
        self.assertIn("65280, Honda: Engine Data, pri=7, variant honda_engine_data\n", vistel("encode", "--list", "65280").stdout)
        self.assertIn("  Manufacturer Code: always Furuno\n", vistel("encode", "--list", "Furuno: Heave").stdout)
        numbers = [row["pgn"] for row in catalogue("fields", "corrected")]
        for number in sorted({*numbers} - {"0"})[::7]:  # 0: whatever a maker sends
            self.assertEqual(vistel("encode", "--list", number).returncode, 0, number)

    def test_hostile_arguments_of_encoding(self):
        long = "x" * 10_000
        cases = [
            (["127250", ""], "an argument is empty"), (["127250", "Deviation"], "is not of the form LABEL=VALUE"),
            (["127250", "=1"], "'=1' has no label before the '='"), (["127250", long], "...' is not of the form"),
            (["127250", long + "=1"], "...' in PGN 127250; there are: Sequence ID"),
            (["127250", "Deviation=" + long], "...' does not begin with a number"),
            (["127250", "Deviation=" + "9" * 10_000], "...' is out of range: from -187.74681 to 187.72389 °"),
            (["126998", "Installation Description, Field 1=" + long], "holds 253 characters only: 'xxx"),
            (["262144"], "PGN '262144' is above 262143"), (["99999999999999999999"], "is above 262143"),
            (["-1"], "no PGN '-1'"), (["131000"], "PGN 131000 is not in the catalogue"),
            (["Vessel Headin"], "did you mean 'Vessel Heading'?"),
            (["127250", "--destination", "5"], "PGN 127250 goes to everyone; it has no destination"),
            (["127250", "--time", "noon"], "time `noon`: "), (["127250", "--units", "royal"], "default, metric"),
            (["127250", "--unit", "Heading=ft"], "no unit 'ft' for Heading; there are: °M, °T"),
            (["--list", "127250", "Deviation=1"], "--list takes no fields"),
            (["126464"], "several variants that fit: 'PGN List - Transmit PGNs group function', "),
            (["65280", "--variant", "Heave"], "no variant `Heave`; did you mean 'Furuno: Heave'?"),
            (["Furuno: Heave", "Manufacturer Code=Airmar"], "Manufacturer Code is 'Furuno' in 'Furuno: Heave'"),
            (["65280", "Manufacturer Code=Airmar", "Heave=1 m"], "variants of PGN 65280 'Furuno: Heave' comes nearest"),
            (["AIS Multi Slot Binary Message"], "several PGNs have the name"),
            (["127250", "--definitions", "fixed", "--variant", "x"], "one of the corrected definitions"),
            (["--list", "130000"], "PGN 130000 is not in the catalogue"),
            ([*["126464", "Group Function Code=0"], *[f"PGN supported #{n}=1" for n in range(600)]], "PGN supported #0"),
            (["126464", "PGN supported #99999999999999999999=1"], "no field"),
            (["126464", "Group Function Code=0", "PGN supported #1700=1"], "#1700 does not fit into the 1785 bytes of a message"),
            (["126208", "--format", "candump", "Data=" + "02" * 300, "--destination", "3"], "takes a dialogue"),
        ]
        if not EMULATOR:  # which makes text of them
            cases += [(["127250", b"Deviation=\xff"], "`Deviation=\\xFF` is not UTF-8 text"), ([b"\xff"], "is not UTF-8 text")]
        for arguments, message in cases:
            result = subprocess.run([*PROGRAM, "encode", *arguments], capture_output=True, timeout=60)
            error = result.stderr.decode("utf-8")
            self.assertEqual((result.returncode, result.stdout), (2, b""), error)
            self.assertIn(message, error)
            self.assertLess(max(map(len, error.splitlines() or [""])), 400, error)

    def test_devices(self):
        """The three forms of one table say the same."""
        product = bytes((0x34, 8, 0x15, 0x2A)) + b"".join(
            text.ljust(32, b"\xff") for text in (b'Sounder "B", new', b"1.02", b"2", b'"77"')) + b"\1\2"
        recording = ("# format=FAST\n" + HEADING + CLAIM + f"2026-09-10T08:00:02.25Z,6,126996,35,255,134,{product.hex(',')}\n")
        text, objects, rows, by_pgn = (vistel("devices", *form, stdin=recording).stdout
                                       for form in ([], ["--json"], ["--csv"], ["--csv", "--pgns"]))
        lines = text.splitlines()
        self.assertRegex(lines[1], r"^   7  - .*  0\.5 .*  unknown at 7$")
        self.assertRegex(lines[2], r'^  35  Keldor +Sounder "B", new  Bridge .* 1\.0 ')
        self.assertRegex(lines[3], r"^Devices: 2, messages a second: 1\.5, 0\.6 % of the bus$")
        objects = [json.loads(line) for line in objects.splitlines()]
        self.assertEqual([(d["address"], d["manufacturer"], d["model"], d["state"], d["last_seen_absolute"]) for d in objects],
                         [(7, None, None, "unknown", "2026-09-10T08:00:00.250000Z"),
                          (35, "Keldor", 'Sounder "B", new', "active", "2026-09-10T08:00:02.250000Z")])
        self.assertEqual(objects[1]["pgns"][1], {"pgn": 126996, "name": "Product Information", "messages": 1, "bytes": 134,
                                                 "messages_per_second": 0.5, "bytes_per_second": 67})
        rows = list(csv.DictReader(io.StringIO(rows)))
        for device, row in zip(objects, rows, strict=True):
            self.assertEqual([*device][:-1], [*row])
            self.assertEqual(["" if value is None else str(value) for value in [*device.values()][:-1]], [*row.values()])
        self.assertEqual([(row["address"], row["pgn"], row["messages"]) for row in csv.DictReader(io.StringIO(by_pgn))],
                         [("7", "127250", "1"), ("35", "60928", "1"), ("35", "126996", "1")])
        fast = "".join(f"{second},2,127250,7,255,8,05,10,27,ff,7f,ff,7f,fd\n" for second in ("00:00:00", "00:00:00.000001"))
        self.assertIn(", no rates: ", vistel("devices", "--pgns", stdin=fast).stdout)
        with subprocess.Popen([*PROGRAM, "devices", "--every", "0.1"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8") as process:
            process.stdin.write(HEADING)
            process.stdin.flush()
            self.assertIn("unknown at 7", "".join(process.stdout.readline() for _ in range(5)))  # the input is still open
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(timeout=30), 0)

    def test_several_recordings(self):
        """Times and buses of what is shown, of recordings that are given together."""
        def frame(bus, source, seconds, day=None):
            time = f"{day}{seconds:04.1f}" if day else f"{1_500_000_000 + seconds:.1f}"
            return f"({time}) {bus} 09F112{source:02X}#05102700FF7FFF7F\n"
        first, later = "0086010203040506", "0186010203040506"  # of a fast packet
        contents = {"a": frame("can0", 1, 1) + frame("can1", 2, 3), "b": frame("can1", 3, 2) + frame("can0", 4, 2.5),
                    "day": frame("vcan0", 5, 9, "08:00:"), "later": frame("vcan0", 6, 9.5, "08:00:"), "empty": "",
                    "clockless": "can0 09F11209#05102700FF7FFF7F\n", "wrong": "can0 09F11207#0\n", "bad": "can0 09F11207#0\n" + frame("can0", 7, 5), "early": frame("can0", 8, 0),
                    "head": f"can0 19F01423#{first}\n", "tail": f"can0 19F01423#{later}\n", "foreign": frame("can0", 9, 1) + "(1.0) can0 123#00\n",
                    "busless": "2017-07-14T02:40:05.000Z,2,127250,7,255,8,05,10,27,ff,7f,ff,7f,fd\n" * 3,
                    "jump": frame("vcan0", 5, 9, "08:00:") + frame("vcan0", 7, 1) + frame("vcan0", 5, 9.2, "08:00:"),
                    "asc": "date Thu Sep 10 08:00:00.000 2026\nbase hex  timestamps absolute\n0.1 1 9F11207x Rx d 8 05 10 27 FF 7F FF 7F FD\n"}
        # Source, time and bus of each message; status; what is told.
        cases = [
            (["a", "b"], "1 0, 2 2 can1, 3 1 can1, 4 1.5 can0", 0, ""),
            (["a", "early", "b"], "1 0, 2 2 can1, 8 0 can0, 3 2 can1, 4 2.5 can0", 0, ""),
            (["a", "day", "empty", "later"], "1 0, 2 2 can1, 5 0 vcan0, 6 0 vcan0", 0, "^vistel: [^\n]*/empty: is empty\n$"),
            (["early", "none", "bad"], "8 0, 7 5", 2, r"none: No such file or directory\n.*bad:1: .*\nvistel: lines .*: 1\n"),
            (["bad", "bad"], "7 0, 7 0", 1, "lines that could not be read: 2"),
            (["head", "tail"], "", 1, "incomplete: 1\n.*no message: 1\n"), (["none", "none"], "", 2, "none: No such.*\n.*No such"),
            (["--merge", "b", "empty", "a"], "1 0, 3 1 b:can1, 4 1.5 b:can0, 2 2 a:can1", 0, "/empty: is empty\n$"),
            (["--merge", "later", "day"], "5 0, 6 0.5 later:vcan0", 0, ""), (["--merge", "head"], "", 1, "incomplete: 1"),
            (["--merge", "jump", "later"], "5 0, 7 0, 5 0.2, 6 0.5 later:vcan0", 0, ""), (["--merge", "asc", "asc"], "7 0, 7 0 asc:1", 0, ""),
            (["--merge", "bad", "early"], "8 0, 7 5 bad:can0", 1, "/bad:1: "), (["--merge", "early", "nameless"], "8 0, 10 3 nameless:1", 0, ""),
            (["a", "busless"], "1 0, 2 2 can1, 7 4 0, 7 4 0, 7 4 0", 0, ""),
            (["--merge", "a", "none", "early"], "8 0, 1 1 a:can0, 2 3 a:can1", 2, "none: No such file"),
            (["--merge", "a", "day"], "", 2, "day: cannot be merged by time: it has times of day, .*a dates and times\n"),
            (["--merge", "empty", "head", "a"], "", 2, "head: cannot be merged by time: it has no times\n"),
            (["--bus", "early"], "8 0 can0", 0, ""), (["--quiet", "empty"], "", 0, ""),
            (["wrong", "early"], "8 0", 2, "vistel: [^\n]*/wrong: nothing in it can be read as candump\nvistel: lines .*: 1\n$"),
            (["--merge", "early", "wrong"], "8 0", 2, "/wrong: nothing"), (["--format=slcan", "-q", "early"], "", 2, "/early: nothing .* slcan\n"),
            (["--format=pcap", "early"], "", 2, "^[^\n]* capture [^\n]*\n$"),
        ]
        with tempfile.TemporaryDirectory() as folder:
            for name, text in contents.items():
                Path(folder, name).write_text(text, encoding="utf-8")
            # A capture with two interfaces that have no names, and a frame of the second.
            Path(folder, "nameless").write_bytes(bytes.fromhex(
                "0A0D0D0A1C0000004D3C2B1A01000000FFFFFFFFFFFFFFFF1C000000" + "0100000014000000E30000000000000014000000" * 2 +
                "0600000030000000010000003D540500C08657F7100000001000000089F1120A0800000005102700FF7FFF7F30000000"))
            for given, expected, status, told in cases:
                arguments = [each if each.startswith("-") else os.path.join(folder, each) for each in given]
                result = vistel("decode", "--json", *arguments)
                shown = [json.loads(line) for line in result.stdout.splitlines()]
                shown = [f"{m['source']} {m['time']:g} {m.get('bus', '')}".rstrip() for m in shown]
                self.assertEqual((", ".join(shown).replace(folder + "/", ""), result.returncode), (expected, status), given)
                self.assertRegex(result.stderr, f"(?s){told}" if told else "^$", given)
                if not shown and status == 2 and "=" not in given[0]:
                    self.assertEqual(vistel("decode", "--csv", *arguments).stdout, "", given)
            result = vistel("decode", "--stats", *(os.path.join(folder, name) for name in ("foreign", "a", "asc", "foreign")))
            self.assertIn("\nother than NMEA 2000: 2\n", result.stderr)
            self.assertIn("format: candump, vector-asc\n", result.stderr)
            both = [os.path.join(folder, name) for name in "ab"]
            log = contents["a"].replace(".0)", ".000000)").replace("can1", "nmea")
            kept = vistel("convert", "--to", "candump", stdin=log)
            self.assertEqual((kept.stdout, kept.stderr), (log, ""))
            told = vistel("convert", "--to", "candump", "--merge", *both).stderr
            self.assertIn(f"vistel: interface {both[0]}:can0 is can0 in what is written\n", told)
            self.assertIn("2 interfaces are one", vistel("convert", "--to", "plain", stdin=log).stderr)
            mixed = vistel("devices", "--json", os.path.join(folder, "clockless"), both[0]).stdout.splitlines()
            self.assertEqual({json.loads(line)["first_seen"] for line in mixed}, {None, 0})
            merged = csv.DictReader(io.StringIO(vistel("devices", "--csv", "--merge", *both).stdout))
            self.assertEqual([row["bus"] for row in merged], [os.path.join(folder, bus) for bus in
                                                              ("a:can0", "b:can1", "b:can0", "a:can1")])

    def test_the_bus_of_a_message(self):
        buses = "can0", 'x"y,\\z', "can0"  # with what forms have to quote
        recording = "".join(f"(1.0) {bus} 09F11207#05102700FF7FFF7F\n" for bus in buses)
        text, objects, rows = (vistel("decode", *form, stdin=recording).stdout for form in ([], ["--json"], ["--csv", "--bus"]))
        self.assertEqual(re.findall("Vessel Heading(.*)", text), ["", f" [{buses[1]}]", " [can0]"])
        self.assertEqual([json.loads(line).get("bus") for line in objects.splitlines()], [None, *buses[1:]])
        self.assertEqual([row["bus"] for row in csv.DictReader(io.StringIO(rows)) if row["field"] == "1"], [*buses])
        recording = "".join(map(label, HOSTILE))
        without, rows = (list(csv.reader(io.StringIO(vistel("decode", "--csv", *more, stdin=recording).stdout, newline="")))
                         for more in ([], ["--bus"]))
        self.assertEqual(rows, [[*row, "0" if i > 0 else "bus"] for i, row in enumerate(without)])

    def test_losses_are_told(self):
        first, later = "19F01423#0086010203040506", "19F01423#0186010203040506"
        # A message begun again, and one that the end cuts off, each on a bus of its own.
        frames = f"(1.0) can0 {first}\n(1.1) can0 {first.replace('#00', '#20')}\n(1.2) can1 {first.replace('23#', '24#')}\n"
        devices = map(json.loads, vistel("devices", "--json", stdin=frames * 2).stdout.splitlines())
        self.assertEqual([(d["bus"], d["address"], d["lost_messages"]) for d in devices],
                         [("can0", 0x23, 2), ("can1", 0x24, 1)])
        told = vistel("decode", "--stats", stdin=f"can0 {first}\n" * 3 + f"can0 {later.replace('#01', '#21')}\n" * 2).stderr
        self.assertIn("lost or repeated frames: 23\n    126996 from source  35: 19 missing, 1 of no message, 3 repeated\n", told)
        other = UNKNOWN.replace(",9,", ",10,")
        told = vistel("decode", "--stats", stdin="# format=FAST\n" + UNKNOWN * 2 + other + HEADING).stderr
        self.assertIn("unknown PGNs: 3\n    128999 from source   9: 2\n    128999 from source  10: 1\n", told)

    def test_a_full_disk_is_told(self):
        for arguments in (["decode"], ["devices"], ["catalogue", "fields"], ["encode", "127250"], ["--help"], ["--version"]):
            with open("/dev/full", "w", encoding="utf-8") as full:
                result = subprocess.run([*PROGRAM, *arguments], input=HEADING, stdout=full, stderr=subprocess.PIPE,
                                        encoding="utf-8", timeout=60)
            self.assertEqual(result.returncode, 2, arguments)
            self.assertIn("cannot write", result.stderr)

    def test_a_live_source_is_shown_at_once_and_ends_quietly(self):
        with subprocess.Popen([*PROGRAM, "decode", "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8") as process:
            process.stdin.write(HEADING)
            process.stdin.flush()
            self.assertIn("Vessel Heading", process.stdout.readline())  # with the input still open
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(timeout=30), 0)
            self.assertEqual(process.stderr.read(), "")

    def test_an_interrupt_in_the_middle_of_a_recording(self):
        """Commands stand still at the first thing that they write, into a pipe or for a client; devices, which writes
        at the end, has plenty to read."""
        with tempfile.TemporaryDirectory() as folder:
            path = str(Path(folder, "long.log"))
            Path(path).write_text((HEADING + "nonsense\n") * 200_000)
            with socket.create_server(("127.0.0.1", 0)) as server:
                target = f"tcp-listen://127.0.0.1:{server.getsockname()[1]}"
            cases = [(["decode", "--stats", path], signal.SIGTERM, "at byte ", b"\n    Source Address: ", "\nmessages: "),
                     (["convert", "--to", "candump", "-"], signal.SIGINT, "at byte ", b"\n(1789027200.250000) can0 ", ""),
                     (["devices", *[path] * 200], signal.SIGHUP, "at byte ", b"\nDevices: 1", ""),
                     (["replay", path, "--to", target], signal.SIGQUIT, "after 0 messages, ", b"", ""),
                     (["replay", "--loop", path, "--to", target], signal.SIGTERM, None, b"", "")]
            for arguments, number, place, shown, told in cases:
                number = TERMINATION if EMULATOR else number
                with open(path, "rb") as recording, open(Path(folder, "told"), "w+b") as errors, subprocess.Popen(
                        [*PROGRAM, *arguments], stdin=recording, stdout=subprocess.PIPE, stderr=errors) as process:
                    while os.fstat(errors.fileno()).st_size == 0:
                        time.sleep(0.01)
                    process.send_signal(number)
                    out = process.communicate(timeout=30)[0]
                    errors.seek(0)
                    said = errors.read().decode()
                self.assertEqual(process.returncode, 128 + number if place else 0, arguments)
                if place:
                    self.assertIn(f"\nvistel: interrupted by signal {int(number)} {place}", said)
                self.assertIn(told, said)
                self.assertIn(shown, b"\n" + out)
                self.assertTrue(out.endswith(b"\n") or not out, arguments)

    def test_a_link_that_is_lost_is_made_again(self):
        line = b"19:07:21.014 R 09F8017F 50 C3 9E 2C 4A 21 B5 01\r\n"
        with socket.create_server(("127.0.0.1", 0)) as server:
            server.settimeout(30)
            name = f"tcp://127.0.0.1:{server.getsockname()[1]}"
            with subprocess.Popen([*PROGRAM, "decode", "--json", "--timeout", "0.5", name], stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE, encoding="utf-8") as process:
                for is_silent in (False, True, False):
                    gateway, _ = server.accept()
                    with gateway:
                        gateway.sendall(line)
                        self.assertEqual(json.loads(process.stdout.readline())["pgn"], 129025)
                        if is_silent:
                            self.assertEqual(select.select([server], [], [], 0.3)[0], [], "is waited for")
                            self.assertEqual(select.select([server], [], [], 30)[0], [server])
                process.send_signal(TERMINATION)
                self.assertEqual(process.wait(timeout=30), 0)
                told = process.stderr.read()
        self.assertIn(f"vistel: {name}: connection lost: closed by the other side; trying again\n", told)
        self.assertIn("\nmessages: 3\n", told)
        self.assertNotIn("none of", told)
        with socket.create_server(("127.0.0.1", 0)) as server:
            name = f"tcp://127.0.0.1:{server.getsockname()[1]}"
            with subprocess.Popen([*PROGRAM, "decode", "--timeout", "0.2", name], stderr=subprocess.PIPE) as process:
                with server.accept()[0] as gateway:
                    gateway.sendall(b"\xf8\n" * 9)
                    self.assertIn(b": 18 bytes received that are none of the known formats", process.stderr.readline())
                    process.send_signal(TERMINATION)
                    self.assertIn(b": the format is none of plain, ", process.communicate(timeout=30)[1])
            self.assertEqual(process.returncode, 2)
        result = vistel("decode", name)  # nobody listens
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertIn(f"vistel: {name}: ", result.stderr)

    def test_devices_are_asked_where_that_is_wanted(self):
        for options, asked in (["--ask"], b"18EAFFFE 00 EE 00\r\n"), ([], b""):
            with socket.create_server(("127.0.0.1", 0)) as server:
                server.settimeout(30)
                name = f"tcp://127.0.0.1:{server.getsockname()[1]}"
                with subprocess.Popen([*PROGRAM, "devices", "--every", "0.1", *options, name], stdout=subprocess.PIPE) as process:
                    with server.accept()[0] as gateway:
                        gateway.settimeout(30)
                        gateway.sendall(b"19:07:21.014 R 09F8017F 50 C3 9E 2C 4A 21 B5 01\r\n")
                        while b" 127 " not in process.stdout.readline():
                            pass
                        process.send_signal(TERMINATION)
                        process.communicate(timeout=30)
                        self.assertEqual(gateway.recv(1000), asked)
        self.assertIn("nobody can be asked", vistel("devices", "--ask", stdin=HEADING).stderr)

    def test_a_live_source_is_recorded(self):
        line = b"19:07:21.014 R 09F8017F 50 C3 9E 2C 4A 21 B5 01\r\n"
        with socket.create_server(("127.0.0.1", 0)) as server, tempfile.TemporaryDirectory() as folder:
            server.settimeout(30)
            name = f"tcp://127.0.0.1:{server.getsockname()[1]}"
            file = Path(folder, "live.pcap")
            with subprocess.Popen([*PROGRAM, "record", name, file], stderr=subprocess.PIPE) as process:
                gateway, _ = server.accept()
                with gateway:
                    gateway.sendall(line * 3)
                    while not file.exists() or file.stat().st_size < 3 * len(line):
                        time.sleep(0.01)
                    process.send_signal(signal.SIGINT)
                    self.assertEqual(process.wait(timeout=30), 0)
            shown = [json.loads(each) for each in vistel("decode", "--json", str(file)).stdout.splitlines()]
            if os.path.exists("/dev/full"):
                with subprocess.Popen([*PROGRAM, "record", name, "/dev/full"], stderr=subprocess.PIPE) as process:
                    server.accept()[0].close()
                    self.assertIn(b"No space left", process.communicate(timeout=30)[1])
                self.assertEqual(process.returncode, 2)
            again = vistel("record", name, str(file))
            self.assertEqual((again.returncode, again.stderr),
                             (2, f"vistel: {file}: is there already, and would be written over\n"))
        self.assertEqual([each["pgn"] for each in shown], [129025] * 3)
        self.assertLess(abs(datetime.fromisoformat(shown[0]["absolute"]).timestamp() - time.time()), 60)
        self.assertEqual(vistel("record", "none.log", "-").returncode, 2)

    def test_a_recording_is_replayed_and_kept_in_several_files(self):
        line = "2026-09-10T08:00:{:02}.000Z,2,127250,7,255,8,00,39,30,00,00,ff,7f,fd\n"
        with tempfile.TemporaryDirectory() as folder:
            recording = Path(folder, "voyage.log")
            recording.write_text("".join(map(line.format, range(40))))
            with socket.create_server(("127.0.0.1", 0)) as unused:
                port = unused.getsockname()[1]
            command = [*PROGRAM, "replay", recording, "--to", f"tcp-listen://127.0.0.1:{port}", "--speed", "20"]
            with subprocess.Popen(command, stderr=subprocess.PIPE, text=True) as player:
                self.assertIn("waiting for the first client", player.stderr.readline())
                taken = [Path(folder, time.strftime("fähre-%Y-%m-%dT%H%M%SZ.pcap", time.gmtime(time.time() + later)))
                         for later in range(100)]
                for each in taken:
                    each.touch()
                keep = [*PROGRAM, "record", f"tcp://127.0.0.1:{port}", Path(folder, "fähre.pcap"), "--rotate", "1k"]
                with subprocess.Popen(keep, stderr=subprocess.DEVNULL) as recorder:
                    told = player.communicate(timeout=60)[1]
                    time.sleep(0.3)
                    recorder.send_signal(signal.SIGINT)
                    self.assertEqual((recorder.wait(timeout=30), player.returncode), (0, 0))
            self.assertIn("messages: 40, frames: 40, bytes sent: 1960, clients: 1, dropped: 0\n", told)
            files = sorted({*Path(folder).glob("fähre-20*Z.pcap")} - {*taken})
            self.assertGreater(len(files), 2)
            results = [vistel("decode", "--json", str(each)) for each in files]
            # More at one time than is kept for a client that does not take it; this one does.
            recording.write_text(line.format(0) * 60_000)
            command[-1] = "1"
            with subprocess.Popen(command, stderr=subprocess.PIPE, text=True) as player:
                player.stderr.readline()
                with socket.create_connection(("127.0.0.1", port)) as client:
                    size = sum(map(len, iter(lambda: client.recv(1 << 16), b"")))
                self.assertIn(f"frames: 60000, bytes sent: {size}, clients: 1, dropped: 0\n", player.communicate()[1])
        self.assertEqual([(each.returncode, each.stderr) for each in results], [(0, "")] * len(files))
        self.assertEqual(sum(each.stdout.count("\n") for each in results), 40)
        for arguments in (["x", "--rotate", "1"], ["x", "--rotate", "0M"], ["-", "--rotate", "1M"]):
            self.assertEqual(vistel("record", "tcp://127.0.0.1:1", *arguments).returncode, 2, arguments)
        self.assertEqual(vistel("replay", "none.log", "--to", "udp://127.0.0.1:9").returncode, 2)

    def test_datagrams_go_and_come(self):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as peer, tempfile.TemporaryDirectory() as folder:
            peer.settimeout(30)
            peer.bind(("127.0.0.1", 0))
            recording = Path(folder, "one.log")
            recording.write_text(HEADING + "nothing\n")
            to = f"udp://127.0.0.1:{peer.getsockname()[1]}"
            result = vistel("replay", str(recording), str(recording), "--speed", "max", "--to", to)
            self.assertEqual(result.returncode, 0)
            self.assertIn("problems in the recordings: 2\n", result.stderr)
            datagram = peer.recv(2000)
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as unused:
                unused.bind(("127.0.0.1", 0))
                port = unused.getsockname()[1]
            with subprocess.Popen([*PROGRAM, "decode", "--json", f"udp://:{port}"], stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL) as process:
                while not select.select([process.stdout], [], [], 0.1)[0]:
                    peer.sendto(datagram, ("127.0.0.1", port))
                self.assertEqual(json.loads(process.stdout.readline())["pgn"], 127250)
                process.send_signal(signal.SIGINT)
                self.assertEqual(process.wait(timeout=30), 0)

    def test_a_closed_pipe_ends_it_quietly(self):
        for arguments in (["decode"], ["catalogue", "fields"], ["encode", "--list", "127250"]):
            reader, writer = os.pipe()
            os.close(reader)
            result = subprocess.run([*PROGRAM, *arguments], input=HEADING * 20000, stdout=writer, stderr=subprocess.PIPE,
                                    encoding="utf-8", timeout=60)
            os.close(writer)
            self.assertEqual((result.returncode, result.stderr), (0, ""), arguments)

    @unittest.skipUnless(os.path.exists(VISTEL + "-top"), "built without a terminal")
    def test_the_terminal(self):
        def top(recording, *typed):
            """Status and what a terminal got. Keys are typed once it shows what stands before them."""
            typed = list(typed)
            with tempfile.NamedTemporaryFile("w", encoding="utf-8") as file:
                file.write(recording)
                file.flush()
                child, terminal = pty.fork()
                if child == 0:
                    os.execve(VISTEL, [VISTEL, "top", file.name], os.environ | {"TERM": "xterm", "LC_ALL": "C.UTF-8"})
                shown = b""
                try:
                    while piece := os.read(terminal, 4096):
                        shown += piece
                        if typed and typed[0][0] in shown:
                            os.write(terminal, typed.pop(0)[1])
                except OSError:
                    pass  # the program has left its terminal
                os.close(terminal)
                return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), shown

        status, shown = top(HEADING + label("A\U0001f600B"), (b"Label", b"j\r"), (b"A?B", b"q"))
        self.assertEqual(status, 0)
        self.assertIn(b"Vessel Heading", shown)
        status, shown = top(",2,127250,7,255,8,01,02\n")
        self.assertEqual(status, 2)
        self.assertIn(b"vistel: places that could not be read: 1", shown)
        self.assertEqual(top("nothing of the kind\n")[0], 2)
        for typed in b"\x1c", b"\x03":  # Ctrl-\\ and Ctrl-C, behind which the terminal is as it was
            status, shown = top(HEADING, (b"Vessel", typed))
            self.assertEqual((status, shown.rfind(b"\x1b[?1049l") > shown.rfind(b"Vessel")), (0, True))

    @unittest.skipIf(EMULATOR, "Windows has one")
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
                                        ("", "vistel", "cannot start vistel-monitor"),
                                        (":/none:", "vistel", "cannot start vistel-monitor"),
                                        (".", "vistel", "cannot start vistel-monitor"),
                                        (folder, "", "cannot start vistel-monitor")]:
                with self.subTest(path=path, name=name):
                    result = without_display(*WITHOUT_PROC, folder, path, name, program, "monitor", "none.log")
                    self.assertEqual((result.returncode, result.stdout), (2, ""))
                    self.assertRegex(result.stderr, f"^vistel: {message}.*'vistel decode' shows the messages as text$")

    @unittest.skipUnless(NO_ARGUMENTS, "the system names the program")
    def test_no_argument_at_all(self):
        for program, message in [(VISTEL, "A subcommand is required"), (MONITOR, "no display")]:
            if os.path.exists(program):
                result = without_display(program, LD_PRELOAD=NO_ARGUMENTS)
                self.assertEqual((result.returncode, result.stdout), (2, ""), result.stderr)
                self.assertIn(f"vistel: {message}", result.stderr)

    def test_catalogue(self):
        for table, column in [("pgns", "pgn"), ("dictionary", "dd"), ("formats", "df"), ("units", "unit"),
                              ("quantities", "quantity"), ("repeats", "pgn"), ("fields", "pgn")]:
            for definitions in "corrected", "fixed":
                lines = catalogue(table, definitions)
                self.assertGreater(len(lines), 20, table)
                self.assertTrue(all(line[column].isdigit() and None not in line.values() for line in lines), table)
        self.assertIn("\t\u2126\tohm\n", vistel("catalogue", "units").stdout)

    def test_catalogue_of_the_corrected_definitions(self):
        def row(table, definitions="corrected", **wanted):
            found = [each for each in catalogue(table, definitions) if wanted.items() <= each.items()]
            self.assertEqual(len(found), 1, wanted)
            return found[0]

        furuno = row("pgns", pgn="65280", variant="furuno_heave")
        self.assertEqual((furuno["match"], furuno["packet"]), ("0:11=1855;13:3=4", "single"))
        self.assertTrue(furuno["source"].startswith("canboat"), furuno)
        heading = row("fields", pgn="127250", variant="-", field="2")
        self.assertEqual([heading[name] for name in ("key", "bits", "coding", "resolution", "unit", "none")],
                         ["heading_sensor_reading", "16", "u", "0.0001", "rad", "65533..65535"])
        maker = row("fields", pgn="60928", field="2")
        self.assertEqual((maker["coding"], maker["texts"]), ("code", "manufacturer_code"))
        self.assertEqual(row("repeats", pgn="126208", variant="1"), {
            "pgn": "126208", "variant": "1", "first": "6", "last": "7", "count": "5"})
        texts = catalogue("enumerations", "corrected")
        self.assertTrue({each["set"] for each in texts} >= {"manufacturer_code", "117"})
        sources = {each["source"] for each in texts}
        self.assertTrue(sources >= {"base", "canboat", "listing", "general rule", "ours", "ais standard"}, sources)
        self.assertNotIn("guess", sources)
        self.assertEqual({each["source"] for each in catalogue("enumerations", "fixed")}, {"base", "guess"})


if __name__ == "__main__":
    unittest.main()
