"""The ships, marks and aircraft that the AIS receiver hears, each on a way of its own."""

from dataclasses import dataclass
from math import cos, sin, tau

from boat import position

OWN_MMSI = 999412065  # 999...: numbers that no country has


@dataclass
class Target:
    mmsi: int
    name: str
    east: float  # metres from the berth when the log begins
    north: float
    course: float  # rad
    speed: float  # m/s
    turn: float = 0.0  # rad/s
    call: str = ""
    size: tuple = (12, 4)  # metres
    kind: int = 37  # pleasure craft

    def at(self, time):
        """Latitude, longitude and course; a ship that turns does so on a circle."""
        course = self.course + self.turn * time
        if self.turn:
            radius = self.speed / self.turn
            east, north = radius * (cos(self.course) - cos(course)), radius * (sin(course) - sin(self.course))
        else:
            east, north = self.speed * time * sin(course), self.speed * time * cos(course)
        return *position(self.east + east, self.north + north), course % tau


FREIGHTER = Target(999201118, "ORLANDE TRADER", -3100, 5200, 1.81, 6.9, 0.0, "ZZOT4", (142, 22), 70)
FERRY = Target(999310027, "HALVENSUND", 900, 2600, 3.42, 9.8, 0.006, "ZZHS1", (86, 18), 60)
ANCHORED = Target(999277340, "BRINE PETREL", -640, 1150, 4.36, 0.0, 0.0, "ZZBP7", (61, 11), 52)
SLOOP = Target(999188402, "TWO FATHOMS", 420, 760, 4.97, 2.7, 0.0, "ZZ4402", (11, 3), 36)
LAUNCH = Target(999188911, "KITTIWAKE", 150, 300, 3.66, 5.5, -0.035, "ZZ8911", (7, 2))
HELICOPTER = Target(111999007, "RESCUE", -5200, 9100, 2.44, 61.0)
BEACON = Target(999990031, "SKAR BEACON", -390, 1290, 0.0, 0.0)


def listen(net, ais):
    boat = net.boat

    def head(target, message):
        return {"Message ID": message, "Repeat Indicator": 0, "User ID": target.mmsi,
                "AIS Transceiver Information": 2 if target.mmsi == OWN_MMSI else target.mmsi % 2}

    def report(target, message):
        lat, lon, course = target.at(0 if target.mmsi == OWN_MMSI else net.now)
        return head(target, message) | {
            "Longitude": lon, "Latitude": lat, "Position Accuracy": 1, "RAIM-flag": 0,
            "Time Stamp": int(net.clock) % 60, "COG": course if target.speed else None, "SOG": target.speed,
            "Communication State": 81940 + target.mmsi % 997}

    def class_a(target, status):
        return report(target, 1 if target.speed else 3) | {
            "True Heading": target.at(net.now)[2], "Rate of Turn": target.turn, "Navigational Status": status,
            "Special Maneuver Indicator": 0}

    def class_b(target):
        return report(target, 18) | {
            "Class B unit flag": 1, "Class B Display Flag": 0, "Class B DSC Flag": 1, "Class B Band Flag": 1,
            "Class B Msg 22 Flag": 1, "Mode Flag": 0, "Communication State Selector Flag": 1}

    def own_ship():
        own = Target(OWN_MMSI, "TESSARIN", boat.east, boat.north, boat.course, boat.speed)
        return class_b(own) | {"True Heading": boat.heading}

    def helicopter():
        values = report(HELICOPTER, 9)
        values["RAIM-Flag"] = values.pop("RAIM-flag")  # 129798 writes it with a capital
        return values | {"Altitude": 152 + net.now, "Data Terminal Equipment (DTE)": 1}

    def beacon():
        values = report(BEACON, 21)
        for label in ("COG", "SOG", "Communication State"):
            del values[label]
        values["ID"], values["RAIM Flag"] = values.pop("User ID"), values.pop("RAIM-flag")
        return values | {
            "AtoN Structure Length/Diameter": 4, "AtoN Structure Beam/Diameter": 4,
            "Aid to Navigation (AtoN) Type": 14, "Off Position Indicator": 0, "Virtual AtoN Flag": 0,
            "Assigned Mode Flag": 0, "Electronic Fixing Position Fixing Device Type": 7,
            "Aid to Navigation (AtoN) Name": BEACON.name}

    def extent(target):
        length, beam = target.size
        return {"Call Sign": target.call, "Ship Length": length, "Ship Beam": beam}

    def voyage(target):
        return head(target, 5) | extent(target) | {
            "IMO": 9700000 + target.mmsi % 100000, "Name": target.name, "Ship/Cargo Type": target.kind,
            "Position Reference Point from Starboard": target.size[1] / 2,
            "Position Reference Point aft of Ship's Bow": target.size[0] - 15,
            "Estimated Date of Arrival": net.date + 1, "Estimated Time of Arrival": 6.5 * 3600,
            "Draft": 4.6 if target.speed else None, "Destination": "ORVENHAVN", "AIS Version": 1,
            "Type of Electronic Positioning Device": 1, "Data Terminal Equipment (DTE)": 0}

    for target, period, status in ((FREIGHTER, 6.0, 0), (FERRY, 3.3, 0), (ANCHORED, 30.0, 1)):
        net.every(ais, period, 129038, lambda target=target, status=status: class_a(target, status))
        net.every(ais, 31.0 + period, 129794, lambda target=target: voyage(target))
    for target, period in ((SLOOP, 10.0), (LAUNCH, 5.0)):
        net.every(ais, period, 129039, lambda target=target: class_b(target))
        net.every(ais, 30.0 + period, 129809, lambda target=target: head(target, 24) | {"Name": target.name})
        net.every(ais, 30.0 + period, 129810, lambda target=target: head(target, 24) | extent(target) | {
            "Type of Ship and Cargo": target.kind, "Vendor ID": "ZQM"})
    net.every(ais, 15.0, 129039, own_ship)
    net.every(ais, 10.0, 129798, helicopter)
    net.every(ais, 25.0, 129041, beacon)
    net.at(40.2, net.send, ais, 129802, {
        "Message ID": 14, "Repeat Indicator": 0, "Source ID": FERRY.mmsi, "AIS Transceiver Information": 0,
        "Safety Related Text": "DRIFTING NET NORTH OF ORVEN MOLE"})
