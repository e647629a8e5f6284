#!/usr/bin/env python3
"""The completions that the build made, in the shells themselves. COMPLETIONS is their folder. Shells
other than bash are tried where they are installed."""

import os
import pty
import re
import select
import shutil
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

FOLDER = Path(os.environ["COMPLETIONS"])
END = "<end of words>"
# The word that is made of what is typed; a tab completes. More tabs in a row list choices, which is not looked at.
TYPED = [
    (r"dec\t", "decode"),
    (r"decode --plain\t", "--plain-numbers"),
    (r"decode --format candu\t", "candump"),
    (r"decode --definitions fi\t", "fixed"),
    (r"convert --to candu\t", "candump"),
    (r"convert -o voy\t", "voyage a.log"),
    (r"decode voy\t", "voyage a.log"),
    (r"decode --unit Boat\t", "Boat Speed="),
    (r"decode --unit 'Boat Speed=kp\t", "Boat Speed=kph"),
    (r"decode --unit Boat\\ Speed=kp\t", "Boat Speed=kph"),
    (r"decode --units=met\t", "--units=metric"),
    (r"catalogue repe\t", "repeats"),
    (r"top --lo\t", "--loop"),
]


class Shell:
    """An interactive shell in a folder with a recording, where `vistel` prints its last word."""

    def __init__(self, command, lines, folder):
        Path(folder, "voyage a.log").touch()
        process, self.terminal = pty.fork()
        if process == 0:
            os.chdir(folder)
            os.environ.update(TERM="dumb", PS1="", HOME=folder, INPUTRC="/dev/null", LC_ALL="C.UTF-8")
            os.execvp(command[0], command)
        for line in lines:
            self.write(line + "\n")

    def write(self, text):
        os.write(self.terminal, text.encode())

    def read_until(self, mark):
        text, deadline = "", time.monotonic() + 10
        while mark not in text and time.monotonic() < deadline:
            if select.select([self.terminal], [], [], 1)[0]:
                text += os.read(self.terminal, 65536).decode(errors="replace")
        return text

    def last_word(self, typed):
        self.write("vistel " + typed)
        time.sleep(0.3)  # the shell throws away what is typed while it completes
        self.write("\n")
        shown = self.read_until(END)
        found = re.search(r"<([^<>]*)>" + END, shown)
        if not found:
            self.write("\3")  # the next one begins anew
        return found[1].strip() if found else shown


PRINTS = "vistel() { printf '<%s>%s%s\\n' \"${@: -1}\" '<end' ' of words>'; }"


class CompletionTest(unittest.TestCase):
    def try_words(self, command, lines):
        with tempfile.TemporaryDirectory() as folder:
            shell = Shell(command, lines + [PRINTS], folder)
            for typed, word in TYPED:
                typed = typed.replace("\\t", "\t").replace("\\\\", "\\")
                with self.subTest(typed=typed):
                    self.assertEqual(shell.last_word(typed), word)

    def test_bash(self):
        script = str(FOLDER / "vistel.bash")
        subprocess.run(["bash", "-n", script], check=True)
        self.try_words(["bash", "--norc", "--noprofile", "-i"], [f"source '{script}'"])

    @unittest.skipUnless(shutil.which("zsh"), "no zsh")
    def test_zsh(self):
        self.try_words(["zsh", "-f", "-i"], [f"fpath=('{FOLDER}' $fpath)", "autoload -U compinit && compinit -u -D"])

    @unittest.skipUnless(shutil.which("fish"), "no fish")
    def test_fish(self):
        script = FOLDER / "vistel.fish"
        for typed, word in TYPED:
            if "Boat" in typed:  # listed by its name as a whole, quoted by fish
                typed, word = typed.replace("\\\\", "\\").replace("kp", "kph"), "Boat Speed=kph"
            line = "vistel " + typed.replace("\\t", "")
            listed = subprocess.run(["fish", "--no-config", "-c", 'touch "voyage a.log"; source $argv[1]; complete -C $argv[2]',
                                     str(script), line], capture_output=True, encoding="utf-8",
                                    cwd=self.enterContext(tempfile.TemporaryDirectory()), check=True).stdout
            with self.subTest(typed=typed):
                self.assertIn(word, [row.split("\t")[0] for row in listed.splitlines()])


if __name__ == "__main__":
    unittest.main()
