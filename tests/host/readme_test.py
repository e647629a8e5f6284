#!/usr/bin/env python3
"""What README.md shows is what the programs do: its sessions are run and print what stands there, its commands work, its
sample is what decoding prints. VISTEL is the program.

Commands are not run where they need what is not there: a bus or another computer (can0, an address with ://, serial:),
or somebody who looks on (monitor, top). Of those that build or install, the script has to be there."""

import gzip
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
VOYAGE = SOURCE / "examples" / "voyage.log"
BLOCKS = re.findall(r"^```(\w*)\n(.*?)^```$", (SOURCE / "README.md").read_text(encoding="utf-8"), re.DOTALL | re.MULTILINE)
NEEDS_MORE = re.compile(r"\bcan0\b|://|\bserial:|^vistel (monitor|top)\b")


def shell(command, folder):
    path = os.path.dirname(os.environ["VISTEL"]) + os.pathsep + os.environ["PATH"]
    return subprocess.run(["bash", "-c", command], cwd=folder, env=os.environ | {"PATH": path}, text=True, timeout=60,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)


class ReadmeTest(unittest.TestCase):
    def test_sessions(self):
        commands = []
        for text in (text for language, text in BLOCKS if not language and text.startswith("$ ")):
            for part in re.split(r"^\$ ", text, flags=re.MULTILINE)[1:]:
                command, _, printed = part.partition("\n")
                self.assertEqual(shell(command, SOURCE).stdout, printed, command)
                commands.append(command)
        self.assertTrue(commands)

    def test_samples(self):
        output = shell("vistel decode examples/voyage.log", SOURCE).stdout
        samples = [text for language, text in BLOCKS if not language and not text.startswith("$ ")]
        self.assertTrue(samples)
        for text in samples:
            shown = text.removesuffix("    ...\n")
            kind = shown.split(" ", 1)[1].partition("\n")[0]  # the first message of its kind
            start = re.search("^.* " + re.escape(kind.strip()) + "$", output, re.MULTILINE)
            self.assertTrue(start, kind)
            self.assertEqual(output[start.start():start.start() + len(shown)], shown)

    def test_commands(self):
        lines = [re.sub(r"\s+# .*", "", line) for language, text in BLOCKS if language == "sh"
                 for line in text.splitlines() if line]
        with tempfile.TemporaryDirectory() as folder:
            shutil.copy(VOYAGE, folder)
            for name in ("day1.log.gz", "day2.log.gz"):
                Path(folder, name).write_bytes(gzip.compress(VOYAGE.read_bytes()))
            ran = 0
            for line in lines:
                if line.startswith("script/"):
                    self.assertTrue(os.access(SOURCE / line.split()[0], os.X_OK), line)
                elif line.startswith("vistel ") and not NEEDS_MORE.search(line):
                    result = shell(line, folder)
                    self.assertEqual(result.returncode, 0, line + "\n" + result.stdout[-400:])
                    ran += 1
        self.assertTrue(ran)


if __name__ == "__main__":
    unittest.main()
