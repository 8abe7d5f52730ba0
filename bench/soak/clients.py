"""Clients of the program's server: some stay and read every byte, some come and go."""

import selectors
import socket
import struct
import threading
import time
import zlib

HEAD = struct.Struct("<II")
GREETING = 0xFFFF0001
GNSS = int.from_bytes(b"GNSS", "little")
IDENTITY = b"Skyreckoning Client v20240612"
NAV_TIMEUTC = b"\xb5\x62\x01\x21"
MON_SPAN = b"\xb5\x62\x0a\x31"
TIME_AT = 6  # of the GPS time of week in NAV-TIMEUTC, behind the head of the frame
ENOUGH = TIME_AT + 4
READ = 1 << 18
PATIENCE = 0.05  # seconds between two looks at whether to stop


class Client:
    """One connection. Counts the receiver's bytes, and adds up their checksum."""

    def __init__(self, port):
        self.socket = socket.create_connection(("127.0.0.1", port), 10)
        self.socket.sendall(HEAD.pack(GREETING, len(IDENTITY)) + IDENTITY)
        self.socket.setblocking(False)
        self.held = b""
        self.bytes = 0
        self.checksum = 0
        self.over = False
        self.greeted = False
        self.heard = []  # called with each block of the receiver's bytes

    def take(self):
        try:
            data = self.socket.recv(READ)
        except BlockingIOError:
            return
        except OSError:
            data = b""
        self.over = not data
        self.held += data
        at = 0
        while len(self.held) - at >= HEAD.size:
            key, length = HEAD.unpack_from(self.held, at)
            if len(self.held) - at - HEAD.size < length:
                break
            body = self.held[at + HEAD.size:at + HEAD.size + length]
            self.greeted = self.greeted or key == GREETING
            if key == GNSS and body[:4] == b"STRM":
                self.count(body[4:])
            at += HEAD.size + length
        self.held = self.held[at:]

    def count(self, block):
        self.bytes += len(block)
        self.checksum = zlib.crc32(block, self.checksum)
        for listener in self.heard:
            listener(block)

    def close(self, rudely=False):
        if rudely:
            self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        self.socket.close()


class Times:
    """Reads the receiver's own time off the stream: the newest one, and when it came.

    Fastest is the offset of the solution that came soonest: receiver's seconds less what the machine's clock, sped up,
    said when it was here. So the receiver's time at any moment is known, as far as a byte can be here at all.
    """

    def __init__(self, speed):
        self.speed = speed
        self.tail = b""
        self.newest = None
        self.fastest = None
        self.solutions = 0
        self.spectra = 0

    def take(self, block):
        now = time.monotonic()
        text = self.tail + block
        end = max(len(text) - ENOUGH + len(NAV_TIMEUTC), 0)
        at = text.rfind(NAV_TIMEUTC, 0, end)
        self.solutions += text.count(NAV_TIMEUTC, 0, end)
        self.spectra += text.count(MON_SPAN, 0, end)
        self.tail = text[-(ENOUGH - 1):]
        if at < 0:
            return
        self.newest = int.from_bytes(text[at + TIME_AT:at + ENOUGH], "little") / 1000
        offset = self.newest - now * self.speed
        self.fastest = offset if self.fastest is None else max(self.fastest, offset)

    def now(self, moment):
        return self.fastest + moment * self.speed


class Crowd(threading.Thread):
    """Reads for all clients, and lets one of them come or go in each period."""

    def __init__(self, port, first, steady, comers, period):
        super().__init__(daemon=True)
        self.port = port
        self.steady = [first, *(Client(port) for _ in range(steady - 1))]
        self.comers = [None] * comers
        self.period = period
        self.visits = 0
        self.silent = 0  # visits that heard nothing
        self.lost = 0    # connections that the server ended
        self.selector = selectors.DefaultSelector()
        self.stopping = threading.Event()

    def all_greeted(self):
        """Whether the server knows of all that stay."""
        for client in self.steady:
            client.take()
        return all(client.greeted for client in self.steady)

    def run(self):
        for client in self.steady:
            self.watch(client)
        turn, due = 0, time.monotonic() + self.period
        while not self.stopping.is_set():
            for key, _ in self.selector.select(PATIENCE):
                self.read(key.data)
            if self.comers and time.monotonic() >= due:
                self.change(turn % len(self.comers))
                turn, due = turn + 1, due + self.period

    def watch(self, client):
        self.selector.register(client.socket, selectors.EVENT_READ, client)

    def read(self, client):
        client.take()
        if client.over:
            self.lost += 1
            self.selector.unregister(client.socket)

    def change(self, place):
        client = self.comers[place]
        if client is None:
            client = self.comers[place] = Client(self.port)
            self.watch(client)
            self.visits += 1
            return
        self.comers[place] = None
        self.silent += client.bytes == 0
        if not client.over:
            self.selector.unregister(client.socket)
        client.close(rudely=self.visits % 2 == 0)

    def settle(self, limit=10):
        """Waits until nothing more comes."""
        end = time.monotonic() + limit
        former = None
        while time.monotonic() < end and former != (former := [client.bytes for client in self.steady]):
            time.sleep(0.5)

    def stop(self):
        self.stopping.set()
        self.join()
        for client in [*self.steady, *filter(None, self.comers)]:
            client.close()

    def are_equal(self):
        return len({(client.bytes, client.checksum) for client in self.steady}) == 1
