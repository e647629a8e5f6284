"""The CAN bus: splits messages into frames, lets these compete for the wire and logs them as candump does."""

import heapq
from itertools import count

GLOBAL = 255
BIT_RATE = 250_000
FRAME_GAP = 0.0007  # a device hands over the next frame of a fast packet after this time
MAX_FAST = 223
PAUSES = {"broadcast": 0.05, "answer": 0.008, "data": 0.0025}  # of a transport session, seconds
WINDOW = 8  # packets that a receiver lets come at once


def identifier(priority, pgn, source, destination):
    if (pgn >> 8 & 0xFF) < 240:  # PDU1: the low byte of the number is the destination
        pgn |= destination
    return priority << 26 | pgn << 8 | source


class Bus:
    def __init__(self, catalogue):
        self._catalogue = catalogue
        self._frames = []  # (time it is ready, identifier, order, data)
        self._order = count()
        self._fast = {}  # (source, PGN) -> sequence counter of the next fast packet, when the last is out
        self.messages = {}  # PGN -> number of messages

    def send(self, time, source, pgn, payload, destination=GLOBAL):
        """Puts a message on the wire in the way its number and length ask for."""
        priority, packet = self._catalogue.pgns.get(pgn, (6, "fast" if pgn >= 130816 else "single"))
        self.messages[pgn] = self.messages.get(pgn, 0) + 1
        if packet == "single":
            payload = payload if pgn == 59904 else payload.ljust(8, b"\xff")
            self._frame(time, priority, pgn, source, destination, payload)
        elif len(payload) > MAX_FAST or packet == "transport":
            self._transport(time, source, pgn, payload, destination)
        else:
            self._fast_packet(time, priority, pgn, source, destination, payload)

    def _frame(self, time, priority, pgn, source, destination, data):
        if len(data) > 8:
            raise ValueError(f"{pgn} has {len(data)} bytes in one frame")
        can_id = identifier(priority, pgn, source, destination)
        heapq.heappush(self._frames, (time, can_id, next(self._order), data))

    def _fast_packet(self, time, priority, pgn, source, destination, payload):
        sequence, free = self._fast.get((source, pgn), (0, 0.0))
        time = max(time, free)  # one message after the other, or their frames would mix
        chunks = [bytes([len(payload)]) + payload[:6]]
        chunks += [payload[at:at + 7] for at in range(6, len(payload), 7)]
        self._fast[source, pgn] = (sequence + 1) & 7, time + len(chunks) * FRAME_GAP
        for index, chunk in enumerate(chunks):
            data = bytes([sequence << 5 | index]) + chunk.ljust(7, b"\xff")
            self._frame(time + index * FRAME_GAP, priority, pgn, source, destination, data)

    def _transport(self, time, source, pgn, payload, destination):
        packets = [bytes([1 + at // 7]) + payload[at:at + 7].ljust(7, b"\xff")
                   for at in range(0, len(payload), 7)]
        size = {"Total message size, bytes": len(payload), "PGN of multi-packet message": pgn}

        def manage(when, control, values, sender, receiver):
            data = self._catalogue.encode(60416, values, keys=(control,))
            self.send(when, sender, 60416, data, receiver)

        total = {"Total number of frames to be transmitted": len(packets)}
        broadcast = destination == GLOBAL
        manage(time, "32" if broadcast else "16", {**size, **total}, source, destination)
        for index, packet in enumerate(packets):
            if broadcast:
                time += PAUSES["broadcast"]
            elif index % WINDOW == 0:
                time += PAUSES["answer"]
                manage(time, "17", {"Number of frames that can be sent": min(WINDOW, len(packets) - index),
                                    "Number of next frame to be transmitted": index + 1,
                                    "PGN of multi-packet message": pgn}, destination, source)
                time += PAUSES["answer"]
            else:
                time += PAUSES["data"]
            self.send(time, source, 60160, packet, destination)
        if not broadcast:
            manage(time + PAUSES["answer"], "19",
                   {**size, "Total number of frames received": len(packets)}, destination, source)

    def log(self, start):
        """The frames as the wire carried them: when it is free, the lowest identifier wins."""
        coming, waiting, free = self._frames, [], 0.0
        while coming or waiting:
            if not waiting:
                free = max(free, coming[0][0])
            while coming and coming[0][0] <= free:
                heapq.heappush(waiting, heapq.heappop(coming)[1:])
            can_id, _, data = heapq.heappop(waiting)
            free += (67 + 8 * len(data)) * 1.1 / BIT_RATE  # a tenth of stuffing bits; logged when complete
            yield f"({start + int(free)}.{int(free % 1 * 1e6):06d}) can0 {can_id:08X}#{data.hex().upper()}\n"
