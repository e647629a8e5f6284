"""What the instruments and the plotter tell about the boat's way: motion, position, route, water and air."""

from math import cos, hypot, radians, sin, tau

from boat import CURRENT, VARIATION, bearing, position

# Name and place, metres east and north of the berth. One name needs more than one byte a character.
ROUTE = (("Orvenhavn Quay", (0, 0)), ("Orven Mole", (-4, 38)), ("Skär Beacon", (-390, 1290)),
         ("Tellin Narrows", (2950, 8840)))
PASSAGE = ROUTE + tuple((f"Merrow Bank {number}", (2950 + 640 * number, 8840 + 1730 * number))
                        for number in range(1, 10))
ARRIVAL = 12  # metres
SATELLITES = (  # PRN, elevation, azimuth
    (2, 61, 48), (5, 17, 301), (7, 34, 122), (9, 72, 250), (13, 44, 15), (16, 9, 171), (20, 28, 337),
    (29, 53, 203), (30, 12, 66), (70, 39, 280), (78, 23, 98), (86, 57, 350))


class Leg:
    """The active leg of the route. The next begins when the boat reaches or passes the end of this one."""

    def __init__(self):
        self.index = 1

    def follow(self, boat):
        here = boat.east, boat.north
        while True:
            origin, target = ROUTE[self.index - 1][1], ROUTE[self.index][1]
            self.course, self.bearing = bearing(origin, target), bearing(here, target)
            self.distance = hypot(target[0] - here[0], target[1] - here[1])
            if self.distance > ARRIVAL and cos(self.bearing - self.course) > 0:
                break
            self.index += 1
        self.closing = boat.speed * cos(boat.course - self.bearing)
        self.error = self.distance * sin(self.course - self.bearing)  # positive: steer to port
        return self


def motion(net, compass, pilot):
    boat, noise = net.boat, net.noise
    net.every(compass, 0.1, 127250, lambda: {
        "Heading Sensor Reading": (boat.heading - VARIATION + noise(0.0008)) % tau,
        "Heading Sensor Reference": 1, "Deviation": 0.0071 if net.now > 30 else None})
    net.every(compass, 0.1, 127251, lambda: {"Rate of Turn": boat.rate + noise(0.0004)})
    net.every(compass, 0.1, 127257, lambda: {
        "Pitch": boat.pitch + noise(0.001), "Roll": boat.roll + noise(0.001)})
    net.every(pilot, 0.1, 127245, lambda: {
        "Rudder Instance": 0, "Direction Order": 0, "Position": boat.rudder})
    net.every(pilot, 0.5, 127237, lambda: {
        "Rudder Limit Exceeded": 0, "Override": 0, "Steering Mode": 0, "Heading Reference": 0,
        "Rudder Limit": radians(30), "Vessel Heading": boat.heading})
    net.every(pilot, 1.0, 130576, lambda: {
        "Port trim tab": 38 * boat.open, "Starboard trim tab": 34 * boat.open})


def satellites(net, gnss):
    boat = net.boat

    def place():
        return dict(zip(("Latitude", "Longitude"), position(boat.east, boat.north)))
    net.every(gnss, 0.1, 129025, place)
    net.every(gnss, 0.25, 129026, lambda: {
        "COG Reference": 0, "Course Over Ground": boat.course, "Speed Over Ground": boat.speed})
    net.every(gnss, 1.0, 129029, lambda: place() | {
        "Position date": net.date, "Position time": net.clock, "Altitude": 4.2 + net.noise(0.6),
        "Type of System": 3, "Method, GNSS": 2, "Integrity": 1, "Number of SVs": len(SATELLITES),
        "HDOP": 0.82, "PDOP": 1.47, "Geoidal Separation": 11.3, "Number of Reference Stations": 1},
        lambda: [{'Reference Station Type"1"': 0, 'Reference Station ID"1"': 129,
                  'Age of DGNSS Corrections "1"': 4.0 + net.now % 3}])
    net.every(gnss, 1.0, 129539, lambda: {"Set Mode": 3, "Op Mode": 2, "HDOP": 0.82, "VDOP": 1.22})
    net.every(gnss, 1.0, 129540, lambda: {"Mode": 0, "Number of SVs": len(SATELLITES)}, lambda: [
        {'PRN "1"': prn, 'Elevation "1"': radians(height + net.now / 150),
         'Azimuth "1"': radians(azimuth + net.now / 120), 'SNR "1"': 33 + height / 6 + net.noise(1),
         'PRN Status "1"': 5 if height > 10 else 1} for prn, height, azimuth in SATELLITES])
    net.every(gnss, 1.0, 126992, lambda: {"Source": 0, "Date": net.date, "Time": net.clock})
    net.every(gnss, 1.0, 127258, lambda: {
        "Variation Source": 8, "Age of Service (Date)": 18262, "Variation": VARIATION})
    net.every(gnss, 10.0, 129033, lambda: {
        "Date": net.date, "Time": net.clock, "Local Offset, Minutes": -120 * 60})


def route_message(route):
    """Values and groups of 129285."""
    return ({"Start RPS#": 0, "nItems": len(route), "Database ID": 1, "Route ID": 4,
             "Navigation direction in route": 0, "Supplementary Route/WP data available": 0,
             "Route Name": "Merrow"}, waypoints(route))


def waypoints(route):
    places = ((label, position(*where)) for label, where in route)
    return [{"WPID": number, "WP Name": label, "WP Latitude": lat, "WP Longitude": lon}
            for number, (label, (lat, lon)) in enumerate(places)]


def steering(net, plotter):
    boat, leg = net.boat, Leg()

    def destination():
        now = leg.follow(boat)
        lat, lon = position(*ROUTE[now.index][1])
        return {"Distance to Destination Waypoint": now.distance, "Course/Bearing Ref.": 0,
                "Perpendicular Crossed": 0, "Arrival Circle Entered": int(now.distance < 2 * ARRIVAL),
                "Calculation Type": 1, "ETA Date": net.date,
                "ETA Time": net.clock + now.distance / now.closing if now.closing > 0.5 else None,
                "Bearing, Origin To Destination Waypoint": now.course,
                "Bearing, Position To Destination Waypoint": now.bearing,
                "Origin Waypoint Number": now.index - 1, "Destination Waypoint Number": now.index,
                "Destination Wpt Latitude": lat, "Destination Wpt Longitude": lon,
                "Waypoint Closing Velocity": now.closing}
    net.every(plotter, 1.0, 129284, destination)
    net.every(plotter, 1.0, 129283, lambda: {
        "XTE Mode": 0, "Navigation Terminated": 0, "XTE": leg.follow(boat).error})
    whole, legs = route_message(ROUTE)
    net.every(plotter, 5.0, 129285, lambda: whole, lambda: legs)
    net.every(plotter, 1.0, 129291, lambda: {
        "Set Reference": 0, "Set": CURRENT[1], "Drift": CURRENT[0] * boat.open})


def water_and_air(net, log, weather):
    boat, noise = net.boat, net.noise

    def depth():  # foam under the hull blinds the transducer for some seconds
        return None if 46 < net.now < 49.5 else boat.depth - 0.9 + noise(0.03)

    def temperature(kelvin, source):
        return {"Temperature Instance": 0, "Temperature Source": source, "Actual Temperature": kelvin}
    net.every(log, 1.0, 128259, lambda: {
        "Speed Water Referenced": boat.ahead, "Speed Water Referenced Type": 0})
    net.every(log, 1.0, 128267, lambda: {
        "Water Depth, Transducer": depth(), "Offset": 0.9, "Maximum Depth Range": 120})
    net.every(log, 1.0, 128275, lambda: {
        "Measurement Date": net.date, "Measurement Time": net.clock,
        "Total Cumulative Distance": 7419e3 + boat.logged, "Distance Since Last Reset": 2210 + boat.logged})
    net.every(log, 2.0, 130312, lambda: temperature(287.9 - 0.4 * boat.open, 0))
    net.every(weather, 0.5, 130306, lambda: {
        "Wind Speed": boat.apparent_wind[0] + noise(0.1), "Wind Reference": 2,
        "Wind Direction": (boat.apparent_wind[1] + noise(0.02)) % tau})
    net.every(weather, 1.0, 130306, lambda: {
        "Wind Speed": boat.true_wind[0], "Wind Direction": boat.true_wind[1] % tau, "Wind Reference": 0})
    net.every(weather, 2.0, 130316, lambda: temperature(289.6 + noise(0.02), 1))
    net.every(weather, 2.0, 130313, lambda: {
        "Humidity Instance": 0, "Humidity Source": 1, "Actual Humidity": 71.3 + noise(0.1)})
    net.every(weather, 2.0, 130314, lambda: {
        "Pressure Instance": 0, "Pressure Source": 0, "Pressure": 101870 - net.now / 30})
