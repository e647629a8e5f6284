"""What the devices say to each other: questions, commands, alerts, and a device that joins late."""

from navigation import PASSAGE, route_message, waypoints

ALERT = {"Alert Type": 5, "Alert Category": 1, "Alert System": 5, "Alert ID": 1203, "Data Source Instance": 0,
         "Alert Occurrence Number": 1}
OWN_ALERT = {"Alert Type": 1, "Alert Category": 1, "Alert System": 5, "Alert Subsystem": 2,
             "Alert ID / Priority": 1203, "Data Source Network ID": 42, "Data Source Instance": 0,
             "Alert Source Instance": 0}


def inventory(net, plotter):
    """At the start everyone claims an address; the plotter then asks everyone what it is."""
    net.at(0.002, net.request, plotter, 60928)
    for place, device in enumerate(device for device in net.devices if device.start == 0):
        net.at(0.01 + 0.004 * place, net.claim, device)
        net.at(1.0 + 0.45 * place, net.request, plotter, 126996, device)
        net.at(1.03 + 0.45 * place, net.product_information, device)
    for place, device in enumerate(net.devices[:4]):
        net.at(10.2 + 0.7 * place, net.request, plotter, 126464, device)
        net.at(10.24 + 0.7 * place, net.pgn_lists, device, plotter)
        net.at(10.5 + 0.7 * place, net.request, plotter, 126998, device)
        net.at(10.53 + 0.7 * place, net.configuration, device)
    net.at(15.2, net.request, plotter, 129045, net.devices[0])
    net.at(15.23, net.refuse, net.devices[0], 129045, plotter)


def newcomer(net, player, owner, plotter):
    """The player wants an address that is taken. The owner's name is the lower one: the player gives way."""
    free, player.address = player.address, owner.address
    start = player.start - 1.2

    def give_way():
        player.address = free
        net.claim(player)
    net.at(start, net.claim, player)
    net.at(start + 0.004, net.claim, owner)
    net.at(start + 0.26, give_way)
    net.at(start + 0.6, net.request, plotter, 126996, player)
    net.at(start + 0.64, net.product_information, player)
    track = {"Audio/Video Source Type": 9, "Audio/Video Source Number": 0, "File ID": 3117}
    net.every(player, 1.0, 130569, lambda: track | {
        "Zone Number": 0, "Play Status": 0, "Elapsed Track/Chapter Time": net.now - start, "Repeat Status": 0,
        "Track/Chapter Time": 247, "Shuffle Status": 1})
    net.at(start + 1.5, net.send, player, 130570, track | {
        "Library Data Type": 0, "Library Data Name": "Låt från Ω-viken", "Track/Chapter Number": 4,
        "Artist Name": "The Fairleads", "Album Name": "Slack Water"})
    volume = {"Zone Number": 0, "Zone Volume - Absolute": 35}
    net.at(start + 9, net.ask_fields, plotter, player, 1, 130582, *volume.items())
    net.at(start + 9.03, net.acknowledge, player, plotter, 130582, 0, 0, 0)
    net.at(start + 9.05, net.send, player, 130582, volume | {"Mute": 0})


def questions(net, plotter, gateway, pilot, sensor):
    net.at(16.0, net.ask_fields, plotter, gateway, 0, 127505, ("Fluid Instance", 0))
    net.at(16.03, net.acknowledge, gateway, plotter, 127505, 0, 0)
    net.at(17.0, net.ask_fields, plotter, pilot, 1, 127237, ("Heading-To-Steer (Course)", 0.4))
    net.at(17.03, net.acknowledge, pilot, plotter, 127237, 3, 4)  # access denied: the pilot is off
    net.at(23.0, net.send, plotter, 129285, *route_message(PASSAGE))  # too long for a fast packet
    net.at(33.0, net.ask_fields, pilot, plotter, 0, 130074, ("Start WPID", 0))
    net.at(33.05, net.send, plotter, 130074, {
        "Start WPID": 0, "nItems": len(PASSAGE), "Number of valid WPs in the WP-List": len(PASSAGE),
        "Database ID": 1}, waypoints(PASSAGE), (), pilot)
    net.at(35.0, net.send, plotter, 130070, {
        "Start ID": 0, "nItems": 1, "Number of WPs with Comments": 1, "Database ID": 1, "Route ID": 4},
        [{"WPID / RPS#": 2, "Comment": "Keep the beacon to starboard"}])

    def move(address):
        sensor.address = address
        net.claim(sensor)
    # A commanded address is the name, the address behind it.
    net.at(26.0, net.raw, plotter, 65240, sensor.name.to_bytes(8, "little") + b"\x51")
    net.at(26.4, move, 0x51)


def bilge_alert(net, bank, annunciator, plotter):
    acknowledged = {"Acknowledge Status": 0, "Alert State": 2}
    alert = ALERT | {"Data Source Network ID NAME": bank.name}
    condition = {"Trigger Condition": 1, "Threshold Status": 1}

    def tell():
        net.send(bank, 126983, alert | acknowledged | condition | {
            "Temporary Silence Status": 0, "Escalation Status": 0, "Temporary Silence Support": 1,
            "Acknowledge Support": 1, "Escalation Support": 0, "Alert Priority": 40})
        net.send(bank, 126985, alert | {
            "Language ID": 0, "Alert Text Description": "Bilge water high",
            "Alert Location  Text Description": "Engine room"})
        net.send(bank, 130819, OWN_ALERT | condition | {
            "Alert Unique No": 1, "Alert State": 2 + acknowledged["Acknowledge Status"],
            "Supported Actions": 14})

    def accept():
        net.send(plotter, 126984, alert | {
            "Acknowledge Source Network ID NAME": plotter.name, "Response Command": 0})
        net.send(plotter, 130820, OWN_ALERT | {
            "Alert Unique No": 1, "Alert Source Network ID": 42, "Response Command": 0})
        acknowledged.update({"Acknowledge Status": 1, "Alert State": 4})
    for time in (30.1, 33.1, 36.1, 39.1, 42.1):
        net.at(time, tell)
    net.at(37.5, accept)
    net.at(30.2, net.send, bank, 130821, OWN_ALERT | {
        "Alert Text Description": "Bilge water high", "Alert Location Text Description": "Engine room"})
    for time, volume in ((30.3, 80), (37.6, 0)):
        net.at(time, net.send, annunciator, 130824, {
            "Annunciator Instance": 0, "Annunciator Volume": volume, "Annunciator Tone": 1,
            "Alert Source Instance": 0, "Alert ID / Priority": 1203})
    net.every(annunciator, 15.0, 130832, lambda: {
        "Alert System": 5, "Alert Subsystem": 2, "Alert System Instance": 0, "Operating Mode": 2,
        "Operating Mode Status": 1})


def makers_talk(net, plotter, bank, stranger):
    """Proprietary messages of ours and of others."""
    for time, sender, receiver, number, more in (
            (5.0, plotter, bank, 0, {}), (5.03, bank, plotter, 1, {}),  # ping
            (5.5, plotter, bank, 14, {}), (5.53, bank, plotter, 15, {"Boot Program Version": 0x0201})):
        variant = "137", f"4:{number}"
        net.at(time, net.send, sender, 61184, {"Message ID": number} | more, (), variant, receiver)
    for time, sender, receiver, data in ((6.0, plotter, bank, b"\0"), (6.04, bank, plotter, b"BOOT 2.01")):
        net.at(time, net.send, sender, 126720, {
            "Product Code": bank.product, "Keldor Software Code": 201, "Keldor Command": 218,
            "Message Data": data}, (), ("137", "4:*", "-"), receiver)
    net.at(6.5, net.send, plotter, 65285, {
        "Instance": 0, "Source ID": 1, "Channel ID": 3, "Option ID": 2, "Configuration ID": 7,
        "Configuration DATA": 25})
    header = (stranger.maker | 3 << 11 | 4 << 13).to_bytes(2, "little")
    for turn in range(11):
        for pgn, body in ((126720, bytes([0x31, turn]) + b"LINK STATE OK"),
                          (65380, bytes([turn, 0x10, 0x27])),  # these two numbers are in no catalogue
                          (130950, bytes(range(turn, turn + 17)))):
            net.at(7.7 + 5 * turn, net.raw, stranger, pgn, header + body)
