"""Writes a minute of a motor yacht's NMEA 2000 network as a candump log.

    python3 tools/voyage/voyage.py --out examples/voyage.log
    python3 tools/voyage/voyage.py --check examples/voyage.log

Another --seed makes another voyage of the same kind, whose readings waver differently.
"""

import argparse
import random
import sys
from pathlib import Path

import conversation
import machinery
import navigation
import traffic
from boat import Boat
from bus import Bus
from codec import Catalogue
from network import KELDOR, START, Device, Network

SECONDS = 60
SEED = 137
DATA = Path(__file__).resolve().parents[2] / "data"
ENGINES, PILOTS, AUDIO, LINKS = 2001, 2003, 2006, 2010  # makers' codes that nobody has
# Address, maker, class and function, model, version, product code, place, second of switching on if not 0.
DEVICES = {
    "port": (0x00, ENGINES, (50, 160), "EG-2 Engine Gateway", "4.02", 4120, "Port engine"),
    "starboard": (0x01, ENGINES, (50, 160), "EG-2 Engine Gateway", "4.02", 4120, "Starboard engine"),
    "gnss": (0x03, KELDOR, (60, 145), "GN-7 Receiver", "2.110", 7001, "Radar arch"),
    "compass": (0x05, KELDOR, (60, 140), "HA-3 Attitude Sensor", "1.40", 7014, "Below saloon floor"),
    "pilot": (0x09, PILOTS, (40, 150), "Steersman 400", "3.1.7", 2210, "Lazarette"),
    "ais": (0x0B, LINKS, (60, 195), "TR-B Transponder", "1.9", 910, "Chart table"),
    "log": (0x10, PILOTS, (60, 135), "Trio Transducer", "2.0", 2305, "Hull, frame 4"),
    "weather": (0x12, KELDOR, (85, 130), "WX-5 Weather Station", "1.22", 7030, "Radar arch"),
    "plotter": (0x17, KELDOR, (120, 130), "MD-12 Display", "6.3.0", 7102, "Helm"),
    "tank_gateway": (0x1C, KELDOR, (75, 150), "TG-8 Tank Gateway", "2.07", 7055, "Engine room"),
    "monitor": (0x22, KELDOR, (35, 170), "BM-2 Battery Monitor", "1.31", 7060, "Engine room"),
    "charger": (0x23, LINKS, (35, 160), "Currant 3000", "5.5", 930, "Engine room"),
    "bank": (0x2A, KELDOR, (30, 130), "SB-12 Switch Bank", "2.01", 7077, "Helm console"),
    "annunciator": (0x30, KELDOR, (120, 140), "AN-1 Annunciator", "1.03", 7080, "Helm console"),
    "windlass": (0x3C, KELDOR, (100, 140), "WL-1 Windlass Control", "1.10", 7091, "Chain locker"),
    "sensor": (0x50, KELDOR, (75, 190), "GS-4 Generic Sensor", "3.00", 7098, "Engine room"),
    "player": (0x36, AUDIO, (125, 130), "Cove Player", "8.2", 55, "Saloon", 20.0),
}


def record(seed=SEED):
    """The lines of the log and the number of messages by PGN."""
    catalogue = Catalogue(DATA)
    bus = Bus(catalogue)
    net = Network(catalogue, bus, Boat(), random.Random(seed))
    on = {name: net.add(Device(*row)) for name, row in DEVICES.items()}
    navigation.motion(net, on["compass"], on["pilot"])
    navigation.satellites(net, on["gnss"])
    navigation.steering(net, on["plotter"])
    navigation.water_and_air(net, on["log"], on["weather"])
    traffic.listen(net, on["ais"])
    machinery.engine(net, on["port"], 0)
    machinery.engine(net, on["starboard"], 1)
    machinery.tanks(net, on["tank_gateway"])
    machinery.electrics(net, on["monitor"], on["charger"])
    machinery.switches(net, on["bank"])
    machinery.windlass(net, on["windlass"])
    machinery.sensors(net, on["sensor"])
    conversation.inventory(net, on["plotter"])
    conversation.newcomer(net, on["player"], on["monitor"], on["plotter"])
    conversation.questions(net, on["plotter"], on["tank_gateway"], on["pilot"], on["sensor"])
    conversation.bilge_alert(net, on["bank"], on["annunciator"], on["plotter"])
    conversation.makers_talk(net, on["plotter"], on["bank"], on["ais"])
    net.run(SECONDS)
    return list(bus.log(START)), bus.messages


def main(arguments):
    parser = argparse.ArgumentParser(description="Write or check the recording of a short voyage.")
    choice = parser.add_mutually_exclusive_group(required=True)
    choice.add_argument("--out", type=Path, metavar="FILE", help="write the recording")
    choice.add_argument("--check", type=Path, metavar="FILE", help="fail unless FILE is up to date")
    parser.add_argument("--seed", type=int, default=SEED, metavar="NUMBER", help="of what is left to chance")
    options = parser.parse_args(arguments)
    lines, messages = record(options.seed)
    if options.check:
        if options.check.read_text(encoding="ascii") != "".join(lines):
            print(f"{options.check} is not what voyage.py writes", file=sys.stderr)
            return 1
        return 0
    options.out.write_text("".join(lines), encoding="ascii", newline="\n")
    print(f"{len(lines)} frames, {sum(messages.values())} messages of {len(messages)} PGNs")
    for pgn, number in sorted(messages.items()):
        print(f"{pgn:7d} {number:5d}")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
