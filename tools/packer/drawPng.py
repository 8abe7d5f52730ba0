"""What the drawings have in common: the sky's colours, their mixtures, and pictures in PNG files."""

import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
KINDS = {3: 2, 4: 6}  # by the channels: red, green and blue, and alpha behind them

SKY_TOP = (0x0C, 0x0C, 0x1C)
SKY_LOW = (0x40, 0x40, 0x60)
GROUND = (0x10, 0x10, 0x1A)
ARC = (0x80, 0x80, 0xC0)
WHITE = (0xFF, 0xFF, 0xFF)
AMBER = (0xFF, 0xC0, 0x00)
CYAN = (0x00, 0xFF, 0xFF)


def mixed(one, other, part):
    return tuple(a + (b - a) * part for a, b in zip(one, other))


def png(width, channels, rows):
    """A file of 8 bits a channel, not filtered; each row is the bytes of its pixels from left to right."""
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    head = struct.pack(">IIBBBBB", width, len(rows), 8, KINDS[channels], 0, 0, 0)
    lines = b"".join(b"\0" + row for row in rows)
    return SIGNATURE + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b"")
