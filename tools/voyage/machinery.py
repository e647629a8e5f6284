"""Engines, tanks, batteries, switches and the maker's own sensors."""

from math import sin, tau

from codec import ERROR

FUEL, WATER, WASTE, BLACK = 0, 1, 2, 5
CAPACITY = {FUEL: 780.0, WATER: 520.0, WASTE: 260.0, BLACK: 200.0}  # litres
HOUSE_AH = 440.0


def engine(net, device, side):
    me, boat, noise = net.boat.engines[side], net.boat, net.noise
    instance = {"Engine instance": side}
    net.every(device, 0.1, 127488, lambda: {
        "Engine Instance": side, "Engine Speed": me.rpm + noise(6), "Engine Boost Pressure": me.boost})
    net.every(device, 0.5, 127489, lambda: instance | {
        "Engine oil pressure": me.oil_pressure + noise(1500), "Engine oil temp.": me.oil,
        "Engine temp.": me.coolant, "Alternator potential": 27.9 + noise(0.02), "Fuel rate": me.rate,
        "Total engine hours": me.hours * 3600, "Engine coolant pressure": ERROR if side else 1.1e5,
        "Fuel Pressure": 3.1e5, "Engine Discrete Status 1": 0, "Engine Discrete Status 2": 0,
        "Percent Engine Load": 100 * me.load, "Percent Engine Torque": 100 * me.load ** 0.67})
    net.every(device, 0.5, 127493, lambda: {
        "Transmission instance": side, "Transmission Gear": 0,
        "Transmission oil pressure": 1.6e6 + 2e5 * me.load, "Transmission oil temperature": me.oil - 6,
        "Transmission Discrete Status": 0})
    net.every(device, 1.0, 127497, lambda: instance | {
        "Trip fuel used": 41 + me.used, "Fuel Rate, Average": 22.4, "Fuel Rate, Economy": 19.8,
        "Instantaneous Fuel Economy": boat.speed * 3.6 / me.rate})
    net.at(8.3 + side / 10, net.send, device, 127498, instance | {
        "Rated engine speed": 2300, "VIN": f"VX6-0041{side}", "Software ID": "4.02"})


def tanks(net, gateway):
    boat = net.boat
    contents = ((0, FUEL, lambda: boat.fuel[0]), (1, FUEL, lambda: boat.fuel[1]),
                (0, WATER, lambda: boat.water), (0, WASTE, lambda: boat.waste),
                (0, BLACK, lambda: None))  # the sender is not connected
    for instance, kind, litres in contents:
        def level(instance=instance, kind=kind, litres=litres):
            held = litres()
            return {"Fluid Instance": instance, "Fluid Type": kind, "Tank Capacity": CAPACITY[kind],
                    "Fluid Level": held if held is None else 100 * held / CAPACITY[kind]}
        net.every(gateway, 2.5, 127505, level)
    for side, motor in enumerate(boat.engines):
        net.every(gateway, 1.0, 65286, lambda side=side, motor=motor: {
            "Flow Rate Instance": side, "Fluid Type": FUEL, "Fluid Flow Rate": motor.rate})
        net.every(gateway, 5.0, 65287, lambda side=side, motor=motor: {
            "Volume Instance": side, "Fluid Type": FUEL, "Trip Volume": 41 + motor.used})
        net.every(gateway, 2.0, 130823, lambda side=side, motor=motor: {
            "Temperature Instance": side, "Temperature Source": 14, "Actual Temperature": motor.exhaust})
    net.every(gateway, 15.0, 130818, lambda: {
        "Data Instance": 0, "Data Source": FUEL, "Data Indicator": 0, "Label": "Fuel port",
        "Hardware Channel": 1})


def electrics(net, monitor, charger):
    boat, noise = net.boat, net.noise
    net.every(monitor, 1.5, 127508, lambda: {
        "Battery Instance": 0, "Battery Voltage": boat.house_voltage + noise(0.01),
        "Battery Current": boat.house_current + noise(0.4),
        "Battery Case Temperature": 295.4 + net.now / 300})
    net.every(monitor, 1.5, 127508, lambda: {
        "Battery Instance": 1, "Battery Voltage": 27.6 + noise(0.01),
        "Battery Current": 1.8 + noise(0.1)})
    net.every(monitor, 1.5, 127506, lambda: {
        "DC Instance": 0, "DC Type": 0, "State of Charge": 100 * boat.charge / HOUSE_AH,
        "State of Health": 96, "Ripple Voltage": 0.041, "Amp Hours": HOUSE_AH * 3600})
    net.every(monitor, 3.0, 130845, lambda: {
        "DC Instance": 0, "DC Energy Export": 81200 + 26.6 * boat.exported,
        "DC Energy Import": 90450 + 26.6 * boat.imported})
    net.every(monitor, 3.0, 130846, lambda: {
        "DC Instance": 0, "Battery Amp Hour Export": 3040 + boat.exported,
        "Battery Amp Hour Import": 3390 + boat.imported})
    net.at(9.1, net.send, monitor, 127513, {
        "Battery Instance": 0, "Battery Type": 2, "Supports Equalization": 0, "Nominal Voltage": 2,
        "Battery Chemistry": 0, "Battery Capacity": HOUSE_AH * 3600, "Battery Temperature Coefficient": 1,
        "Peukert Exponent": 125, "Charge Efficiency Factor": 94})
    net.every(charger, 1.5, 127507, lambda: {
        "Charger Instance": 0, "Battery Instance": 0, "Operating State": 0, "Charge Mode": 0,
        "Charger Enable/Disable": 1, "Equalization Pending": 0})
    net.every(charger, 2.0, 65030, lambda: {
        "Generator Average Line-Neutral AC RMS Voltage": 230 + noise(1),
        "Generator Average AC Frequency": 50.0, "Generator Average AC RMS Current": 4})


def switches(net, bank):
    def lit(number):  # 3: bilge pump, 5: navigation lights, 6: deck lights
        return int(number == 5 or number == 3 and 30 < net.now < 44 or number == 6 and net.now > 13)
    net.every(bank, 2.5, 127501, lambda: {
        "Binary Device Bank Instance": 0, **{f"Status {number}": lit(number) for number in range(1, 13)}})
    net.every(bank, 2.5, 130826, lambda: {
        "Indicator Bank Instance": 0, "Number of Indicators": 12,
        **{f"Indic. {number}": 64 * lit(number) for number in range(1, 13)}})
    for number, amperes in ((3, 6.2), (5, 1.4)):
        net.every(bank, 1.0, 65284, lambda number=number, amperes=amperes: {
            "Bank Instance": 0, "Indicator Number": number,
            "Breaker Current": lit(number) * amperes + abs(net.noise(0.1))})


def windlass(net, device):
    def rode():  # the last of the chain comes in while she leaves
        return max(0.0, 4.1 - 0.35 * net.now)
    net.every(device, 1.0, 130843, lambda: {
        "Windlass Instance": 1, "Power Enable Status": 1, "Mechanical Enable Status": 1,
        "Windlass Direction Status": 4 if rode() else 0, "Rode Counter Value": rode(),
        "Windlass Line Speed": 0.35 if rode() else 0.0, "Windlass Motion Status": 2 if rode() else 0,
        "Rode Type Status": 0, "Docking Control Status": 0, "Anchor Docking Status": int(not rode()),
        "Windlass Operating Events": 0})


def sensors(net, module):
    """Generic sensors: every message names the data format of its value."""
    boat, noise = net.boat, net.noise
    readings = ((105, lambda: 301.3 + net.now / 40),  # engine room, K
                (106, lambda: boat.house_voltage), (103, lambda: 101870 - net.now / 30),
                (4, lambda: boat.roll), (79, lambda: 0.62 + 0.03 * sin(net.now * tau / 5.3)),  # bilge, m
                (36, lambda: -0.12 + noise(0.02)), (60005, lambda: 0.0117 + noise(2e-5)),
                (60036, lambda: -0.0031 + noise(1e-4)), (84, lambda: None))
    for instance, (format_number, reading) in enumerate(readings):
        net.every(module, 2.0, 130840, lambda instance=instance, number=format_number, reading=reading: {
            "Data Instance": instance, "Data Format": number, "Sensor Data": reading()})
    net.every(module, 2.0, 65288, lambda: {"Data Instance": 0, "4-20 mA Data": 0.0117 + noise(2e-5)})
    net.every(module, 2.0, 65289, lambda: {"Data Instance": 1, "0-10 V Data": 3.8 + noise(0.01)})
