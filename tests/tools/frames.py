"""What goes over lines and connections, with its checksums: sentences, frames and packets of receivers, messages of servers."""

import functools
import operator
import struct

HANDSHAKE = struct.pack("<I", 0xFFFF0001)
GREETING = b"Skyreckoning Server v20240612"


def nmea(text):
    checksum = functools.reduce(operator.xor, text.encode())
    return f"${text}*{checksum:02X}\r\n".encode()


def ubx(message_class, message, payload=b""):
    body = struct.pack("<BBH", message_class, message, len(payload)) + payload
    first = second = 0
    for byte in body:
        first = first + byte & 0xFF
        second = second + first & 0xFF
    return b"\xB5\x62" + body + bytes((first, second))


def tsip(*packet):
    return b"\x10" + b"".join(packet).replace(b"\x10", b"\x10\x10") + b"\x10\x03"


def message(key, body):
    """Of a server or its client; the key is four bytes."""
    return key + struct.pack("<I", len(body)) + body


def stream(payload):
    """A message with a receiver's bytes."""
    return message(b"GNSS", b"STRM" + payload)
