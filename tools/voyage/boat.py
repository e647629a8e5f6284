"""The motor yacht: how she moves and what her engines, tanks and batteries do meanwhile."""

from math import atan2, cos, exp, hypot, radians, sin, sqrt, tau

# Everything is reckoned in metres east and north of the berth.
LATITUDE, LONGITUDE = -36.418200, -25.207500
_E2 = 0.00669437999
_W = 1 - _E2 * sin(radians(LATITUDE)) ** 2
METRES_PER_LAT = radians(6378137 * (1 - _E2) / _W ** 1.5)
METRES_PER_LON = radians(6378137 / sqrt(_W) * cos(radians(LATITUDE)))
VARIATION = -0.3124
CURRENT = (0.38, radians(205))  # m/s, where it goes; outside the harbour
WIND = (6.5, radians(248))  # m/s, where it comes from
STEP = 0.01

# From this second on: throttle 0..1, rudder in degrees (positive to starboard).
ORDERS = ((0, 0.06, 0), (5, 0.22, 0), (10, 0.22, 13), (19, 0.22, 0), (24, 0.78, 0), (37, 0.86, -7),
          (44, 0.86, 0))


def position(east, north):
    """Degrees. A tenth of a millimetre is enough, and keeps the last bits of a sine out of the log."""
    return round(LATITUDE + north / METRES_PER_LAT, 9), round(LONGITUDE + east / METRES_PER_LON, 9)


class Engine:
    def __init__(self, hours, rpm):
        self.hours, self.rpm = hours, rpm
        self.coolant, self.oil, self.exhaust = 317.0, 312.0, 465.0  # K; started some minutes ago
        self.load = self.rate = self.used = 0.0  # 0..1, l/h, l

    def step(self, throttle):
        self.rpm += (650 + 1650 * throttle - self.rpm) * STEP / 1.4
        self.load = (self.rpm / 2300) ** 3
        self.rate = 3 + 92 * self.load
        self.used += self.rate / 3600 * STEP
        self.hours += STEP / 3600
        warming = (0.3 + 4 * self.load) / 240  # the thermostat holds 356 K
        self.coolant += (356 - self.coolant) * warming * STEP
        self.oil += (368 - self.oil) * warming / 1.6 * STEP
        self.exhaust += (460 + 330 * self.load - self.exhaust) * STEP / 5

    @property
    def oil_pressure(self):
        return 180e3 + 320e3 * self.rpm / 2300 - 900 * (self.oil - 312)

    @property
    def boost(self):
        return 230e3 * self.load ** 1.2


class Boat:
    def __init__(self):
        self.time = 0.0
        self.east = self.north = self.rate = self.rudder = self.sway = self.acceleration = 0.0
        self.heading, self.ahead = radians(337), 0.8  # just cast off
        self.logged = 0.0  # metres through the water
        self.engines = (Engine(1284.2, 655), Engine(1279.6, 648))
        self.fuel, self.water, self.waste = [612.0, 598.0], 431.0, 88.0  # litres
        self.charge, self.imported, self.exported = 331.0, 0.0, 0.0  # Ah of the house bank, Ah counted

    def advance(self, time):
        while self.time + STEP <= time:
            self._step()

    def _step(self):
        self.time += STEP
        _, throttle, rudder = max(order for order in ORDERS if order[0] <= self.time)
        for engine, share in zip(self.engines, (1.0, 0.985)):
            engine.step(throttle * share)
        drive = sum(engine.rpm for engine in self.engines) / 2
        self.acceleration = (11 * (max(drive - 500, 0) / 1800) ** 1.25 - self.ahead) / 6
        self.ahead += self.acceleration * STEP
        turn = max(-0.1, min(0.1, 5 * (radians(rudder) - self.rudder)))  # rad/s, the most the pump can do
        self.rudder += turn * STEP
        wanted = 0.3 * self.ahead * self.rudder / (1 + self.ahead / 4)
        self.rate += (wanted - self.rate) * STEP / 0.9
        self.sway = -2 * self.rate  # she skids out of the turn
        self.heading = (self.heading + self.rate * STEP) % tau
        self.logged += self.ahead * STEP
        east, north = self.over_ground
        self.east += east * STEP
        self.north += north * STEP
        self._consume()

    def _consume(self):
        for tank, engine in enumerate(self.engines):
            self.fuel[tank] -= engine.rate / 3600 * STEP
        tap = 0.07 if 12 < self.time < 34 else 0.0  # l/s
        self.water -= tap * STEP
        self.waste += tap * STEP
        self.charge += self.house_current / 3600 * STEP
        self.imported += self.alternators / 3600 * STEP
        self.exported += (self.alternators - self.house_current) / 3600 * STEP

    @property
    def over_ground(self):
        """Velocity over ground, east and north."""
        drift, towards = CURRENT[0] * self.open, CURRENT[1]
        return (self.ahead * sin(self.heading) + self.sway * cos(self.heading) + drift * sin(towards),
                self.ahead * cos(self.heading) - self.sway * sin(self.heading) + drift * cos(towards))

    @property
    def speed(self):
        return hypot(*self.over_ground)

    @property
    def course(self):
        return atan2(*self.over_ground) % tau

    @property
    def depth(self):
        away = hypot(self.east, self.north)
        return 3.9 + 0.055 * away + 0.25 * sin(away / 14)

    @property
    def open(self):
        """How much of the swell and the current the mole lets through, 0 to 1."""
        return 1 - exp(-hypot(self.east, self.north) / 90)

    @property
    def roll(self):
        return 0.55 * self.ahead * self.rate / 9.81 + 0.022 * self.open * sin(self.time * tau / 5.3)

    @property
    def pitch(self):
        return 0.05 * self.acceleration + 0.011 * self.open * sin(self.time * tau / 3.7)

    @property
    def true_wind(self):
        gust = 0.8 * sin(self.time * tau / 23) + 0.4 * sin(self.time * tau / 7.1)
        return WIND[0] + gust, WIND[1] + 0.06 * sin(self.time * tau / 31)

    @property
    def apparent_wind(self):
        """Speed and the angle from the bow that it comes from."""
        speed, origin = self.true_wind
        east, north = self.over_ground
        east, north = speed * sin(origin) + east, speed * cos(origin) + north
        return hypot(east, north), (atan2(east, north) - self.heading) % tau

    @property
    def alternators(self):
        return sum(18 + 30 * min(1.0, engine.rpm / 1600) for engine in self.engines)

    @property
    def house_current(self):
        return self.alternators - (41 + 9 * (self.time > 22))  # the chilled locker starts

    @property
    def house_voltage(self):
        return 25.4 + self.charge / 400 + 0.011 * self.house_current


def bearing(origin, target):
    return atan2(target[0] - origin[0], target[1] - origin[1]) % tau
