"""The whole program on the sample voyage many times over, as whole messages in plain text and as frames of candump:
user time, start-up, peak memory; or the number of instructions for each message.

    whole_program.py --vistel PROGRAM --make-plain PROGRAM [--against OTHER | --instructions FILE | --check FILE]
"""

import argparse
import os
import re
import statistics
import subprocess
import sys
import tempfile
from pathlib import Path

VOYAGE = Path(__file__).parents[1] / "examples/voyage.log"
ROUNDS, RUNS = 65, 7  # of the voyage in one input; of each program, whose median counts
STARTS = 50  # processes of one message in a run
FORMS = {"text": [], "JSON": ["--json"], "CSV": ["--csv"]}
CANDUMP_LINE = re.compile(r"\((\d+)(\.\d+\) .*\n)")


class Inputs:
    def __init__(self, folder, make_plain):
        self.folder, self.make_plain = Path(folder), make_plain
        self.messages = len(self.plain(1).read_bytes().splitlines())
        self.one = self.folder / "one.log"
        self.one.write_text("2026-09-10T08:00:00.000Z,2,127250,7,255,8,05,10,27,ff,7f,ff,7f,fd\n", encoding="ascii")

    def plain(self, rounds):
        path = self.folder / f"plain-{rounds}.log"
        with path.open("wb") as out:
            subprocess.run([self.make_plain, VOYAGE, str(rounds)], stdout=out, check=True)
        return path

    def candump(self, rounds):
        """One voyage behind the other: time goes on, so that no packet is mixed with one of the round before."""
        lines = [CANDUMP_LINE.fullmatch(line).groups() for line in VOYAGE.read_text("ascii").splitlines(True)]
        span = int(lines[-1][0]) - int(lines[0][0]) + 1
        path = self.folder / f"candump-{rounds}.log"
        with path.open("w", encoding="ascii") as out:
            for turn in range(rounds):
                out.writelines(f"({int(seconds) + turn * span}{rest}" for seconds, rest in lines)
        return path


def usage(program, arguments):
    """The resources that a run took."""
    with subprocess.Popen([program, "decode", *arguments], stdout=subprocess.DEVNULL) as process:
        _, status, used = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{program} decode {' '.join(map(str, arguments))}: status {process.returncode}")
    return used


def user_time(program, arguments):
    return usage(program, arguments).ru_utime


def start_up(program, arguments):
    """Processor time of a process that decodes one message; most of it is the kernel's."""
    return statistics.mean(used.ru_utime + used.ru_stime
                           for used in (usage(program, arguments) for _ in range(STARTS)))


def by_turns(measure, programs, arguments):
    """The median of each program's runs. They take turns, and turns at being first, so that what else the machine does
    meets them alike."""
    figures = {program: [] for program in programs}
    for turn in range(RUNS):
        for program in programs[::-1 if turn % 2 else 1]:
            figures[program].append(measure(program, arguments))
    return [statistics.median(figures[program]) for program in programs]


def peak_memory(program, path):
    """Kilobytes. The input comes through a pipe: when the last byte is taken the process can still be looked at. (What
    wait4 tells of memory has the parent's in it.)"""
    with subprocess.Popen([program, "decode", "-"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL) as process:
        process.stdin.write(path.read_bytes())
        process.stdin.flush()
        status = Path(f"/proc/{process.pid}/status").read_text("ascii")
    return int(re.search(r"VmHWM:\s+(\d+) kB", status)[1])


def measure_times(programs, inputs):
    messages = ROUNDS * inputs.messages
    print(f"{messages} messages; user time, median of {RUNS} runs")

    def show(what, figures, form):
        ratio = f"; the other: {form(figures[1])}; ratio {figures[0] / figures[1]:.3f}" if figures[1:] else ""
        print(f"{what:15}{form(figures[0])}{ratio}", flush=True)

    for kind, path in [("plain", inputs.plain(ROUNDS)), ("candump", inputs.candump(ROUNDS))]:
        for name, options in FORMS.items():
            show(f"{kind} {name}", by_turns(user_time, programs, [*options, path]),
                 lambda t: f"{t:.3f} s ({messages / t / 1e6:.2f} million messages/s)")
        show(f"{kind} memory", [peak_memory(program, path) for program in programs], lambda kb: f"{kb} kB")
    show("start-up", by_turns(start_up, programs, [inputs.one]), lambda t: f"{t * 1e3:.2f} ms")


def count(program, arguments):
    told = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", program, "decode",
                           *arguments], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True).stderr
    return int(re.search(r"Collected : (\d+)", told)[1])


def count_instructions(program, inputs):
    """Lines with a figure each. Of a message: what two more rounds cost, so that neither start-up nor what is built once
    is in it."""
    compiler = subprocess.run(["g++", "--version"], check=True, capture_output=True, text=True).stdout.splitlines()[0]
    lines = ["# Instructions of the release build, counted by callgrind: for each message of the sample voyage, and for",
             "# a whole process with one message. `script/bench --instructions` writes this file.",
             f"# {compiler}, {os.uname().machine}"]
    for kind, make, forms in [("plain", inputs.plain, FORMS), ("candump", inputs.candump, {"text": []})]:
        for name, options in forms.items():
            one, three = (count(program, [*options, make(rounds)]) for rounds in (1, 3))
            lines.append(f"{kind} {name}\t{round((three - one) / (2 * inputs.messages))}")
    lines.append(f"start-up\t{count(program, [inputs.one])}")
    print("\n".join(lines))
    return lines


def check_instructions(lines, kept):
    """Other compilers make other code, and other processors take other ways through the C library."""
    most = 1.05
    if lines[2] != kept[2]:
        print(f"not compared with those of {kept[2][2:]}")
        return
    before = dict(line.split("\t") for line in kept[3:])
    for name, number in (line.split("\t") for line in lines[3:]):
        if int(number) > most * int(before[name]):
            sys.exit(f"{name}: {number} instructions, {before[name]} before; if that has to be, script/bench --instructions")


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--vistel", required=True, help="the program to measure")
    parser.add_argument("--make-plain", required=True, help="the program that writes the voyage as plain text")
    parser.add_argument("--against", metavar="OTHER", help="another vistel to measure by turns with it")
    parser.add_argument("--instructions", type=Path, metavar="FILE", help="count instructions into FILE instead")
    parser.add_argument("--check", type=Path, metavar="FILE", help="fail where they are far above those of FILE")
    options = parser.parse_args(arguments)
    with tempfile.TemporaryDirectory() as folder:
        inputs = Inputs(folder, options.make_plain)
        if options.instructions:
            lines = count_instructions(options.vistel, inputs)
            options.instructions.write_text("".join(f"{line}\n" for line in lines), encoding="utf-8")
        elif options.check:
            kept = options.check.read_text("utf-8").splitlines()
            check_instructions(count_instructions(options.vistel, inputs), kept)
        else:
            measure_times([options.vistel] + [options.against] * bool(options.against), inputs)


if __name__ == "__main__":
    main(sys.argv[1:])
