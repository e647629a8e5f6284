"""The devices of the network, the clock that makes them send, and what each does to live on the bus."""

import heapq
from dataclasses import dataclass, field
from itertools import count

from bus import GLOBAL

KELDOR = 137
START = 1789027200  # seconds since 1970: 2026-09-10 08:00:00 UTC
MANAGEMENT = (59392, 59904, 60160, 60416, 60928, 65240, 126208, 126464, 126993, 126996, 126998)
# Labels of 126208: PGN, number of pairs, field number, field value.
GROUP_LABELS = (
    ("Requested PGN", "Number of Pairs of Request Parameters to follow",
     "Field number of first requested parameter", "Value of first requested parameter"),
    ("Commanded PGN", "Number of Pairs of Commanded Parameters to follow",
     "Field number of first commanded parameter", "Value of first command parameter"))


@dataclass(eq=False)
class Device:
    address: int
    maker: int
    kind: tuple  # device class and function
    model: str
    version: str
    product: int
    place: str
    start: float = 0.0  # when it is switched on
    sends: set = field(default_factory=lambda: set(MANAGEMENT))
    name: int = 0


class Network:
    def __init__(self, catalogue, bus, boat, rng):
        self.catalogue, self.bus, self.boat, self.rng = catalogue, bus, boat, rng
        self.now, self.date = 0.0, START // 86400
        self.devices = []
        self._agenda, self._order = [], count()

    def at(self, time, action, *arguments):
        heapq.heappush(self._agenda, (time, next(self._order), action, arguments))

    def run(self, seconds):
        while self._agenda and self._agenda[0][0] < seconds:
            time, _, action, arguments = heapq.heappop(self._agenda)
            self.now = time
            self.boat.advance(time)
            action(*arguments)

    def send(self, device, pgn, values, groups=(), keys=(), to=GLOBAL):
        for item in self.catalogue.fields(pgn, keys)[1]:
            if item.label in ("Sequence ID", "SID"):  # messages of one tenth of a second belong together
                values = {item.label: int(self.now * 10) % (253 if item.bits == 8 else 13), **values}
        payload = self.catalogue.encode(pgn, values, groups, keys)
        self.raw(device, pgn, payload, to)

    def raw(self, device, pgn, payload, to=GLOBAL):
        device.sends.add(pgn)
        self.bus.send(self.now, device.address, pgn, payload, to.address if isinstance(to, Device) else to)

    def every(self, device, period, pgn, values, groups=lambda: ()):
        """Sends again and again: a device sends what is due in one go, but no clock is exact."""
        device.sends.add(pgn)
        phase = device.start + (0.3 + device.address * 0.0023) % min(period, 1.0)

        def fire(turn):
            self.send(device, pgn, values(), groups())
            self.at(phase + (turn + 1) * period + self.noise(0.001), fire, turn + 1)
        self.at(phase + abs(self.noise(0.001)), fire, 0)

    def noise(self, size):
        return (2 * self.rng.random() - 1) * size

    @property
    def clock(self):
        """Seconds of the day."""
        return START % 86400 + round(self.now, 4)

    # Network management

    def add(self, device):
        self.devices.append(device)
        place = len(self.devices)
        kind, function = device.kind
        name = self.catalogue.encode(60928, {
            "Unique Number (ISO Identity Number)": device.product * 37 + place,
            "Manufacturer Code": device.maker, "Device Instance Lower (ISO ECU Instance)": 0,
            "Device Instance Upper (ISO Function Instance)": 0,
            "Device Function (ISO Function)": function, "NMEA Reserved": 0, "Device Class": kind,
            "System Instance (ISO Device Class Instance)": 0, "Industry Group": 4})
        device.name = int.from_bytes(name, "little")
        self.at(2.5 + 3.1 * place, self.heartbeat, device, 7 * place)
        return device

    def claim(self, device):
        self.raw(device, 60928, device.name.to_bytes(8, "little"))

    def heartbeat(self, device, counter):
        self.send(device, 126993, {"Update Rate": 60.0, "Heartbeat Sequence Counter": counter,
                                   "Class 1 CAN Controller State": 0, "Equipment Status": 0})

    def request(self, device, pgn, to=GLOBAL):
        self.send(device, 59904, {"PGN being requested": pgn}, to=to)

    def refuse(self, device, pgn, to):
        self.send(device, 59392, {"Control Byte": 1, "PGN of Requested Information": pgn}, to=to)

    def product_information(self, device):
        self.send(device, 126996, {
            "NMEA Network Message Database Version": 2100,
            "NMEA Manufacturer's Product Code": device.product, "Manufacturer's Model ID": device.model,
            "Manufacturer's Software Version Code": device.version, "Manufacturer's Model Version": "A",
            "Manufacturer's Model Serial Code": f"{device.product}-{device.name & 0x1FFFFF:07d}",
            "NMEA 2000 Certification Level": 0, "Load Equivalency": 1})

    def configuration(self, device):
        self.send(device, 126998, {
            "Installation Description, Field 1": device.place,
            "Manufacturer Information, Field 3": f"{device.model}, software {device.version}"})

    def pgn_lists(self, device, to):
        for group, pgns in (("0", sorted(device.sends)), ("1", MANAGEMENT[:8])):
            self.send(device, 126464, {}, [{"First PGN supported": pgn} for pgn in pgns], (group,), to)

    def ask_fields(self, device, to, function, pgn, *parameters):
        """The group functions request (0) and command (1): parameters are field labels with their values."""
        label, total, number, value = GROUP_LABELS[function]
        pairs = [self.catalogue.parameter(pgn, *parameter) for parameter in parameters]
        unchanged = {"Priority Setting": 8} if function else {}
        self.send(device, 126208, {label: pgn, total: len(pairs)} | unchanged,
                  [{number: key, value: content} for key, content in pairs], (str(function),), to)

    def acknowledge(self, device, to, pgn, error, *parameter_errors):
        self.send(device, 126208, {
            "Requested or Commanded PGN # being acknowledged": pgn, "PGN error code": error,
            "Transmission Interval / Priority error code": 0,
            "Number of Requested or Commanded Parameters": len(parameter_errors)},
            [{"First parameter error code": code} for code in parameter_errors], ("2",), to)
