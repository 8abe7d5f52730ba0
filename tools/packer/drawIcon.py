#!/usr/bin/env python3
"""Draws the program's icon: tools/packer/drawIcon.py resources/icon

The dome of the sky over a horizon, a satellite on its arc above it, and the receiver that hears it, in the colours of the
theme. Writes skyreckoning-SIZE.png for each size, skyreckoning.ico of those that Windows asks for, and programIcon.cpp for
where a program's file has no icon. Each size is drawn anew: lines are whole pixels wide and begin on whole pixels, so that
the smallest is as crisp as the largest.
"""

import math
import pathlib
import struct
import sys

from drawPng import AMBER, ARC, CYAN, GROUND, SKY_LOW, SKY_TOP, WHITE, mixed, png

PNG_SIZES = (16, 24, 32, 48, 64, 128, 256)
ICO_SIZES = (16, 24, 32, 48, 64, 256)
SOURCE_SIZE = 48
LARGEST_BITMAP = 64  # of the .ico; a larger one is a PNG

# Parts of the side.
CORNER = 0.19
HORIZON_TOP = 0.8125
DOME_RADIUS = 0.375  # to the middle of its line
DOME_LINE = 0.125
ORBIT_RADIUS = 0.625
LINE = 0.0625
SATELLITE_RADIUS = 0.115
SATELLITE_PLACE = 64  # degrees on its orbit, from the right
RECEIVER_RADIUS = 0.14

# Below this there is no room for a ray between the dome and the receiver.
SMALLEST_WITH_RAY = 32


def whole(pixels):
    return max(1, round(pixels))


class Picture:
    """Pixels of red, green, blue and opacity, of 0 to 1 but for the colours."""

    def __init__(self, size):
        self.size = size
        self.rows = [[((0, 0, 0), 0.0)] * size for _ in range(size)]

    def paint(self, colour_at, distance, opacity=1.0):
        """Paints where distance(x, y) to the inside of a shape is negative; an edge within a pixel covers a part of it."""
        for row, pixels in enumerate(self.rows):
            for column, (under, alpha) in enumerate(pixels):
                x, y = column + 0.5, row + 0.5
                cover = min(max(0.5 - distance(x, y), 0.0), 1.0) * opacity
                if cover > 0:
                    over = cover + alpha * (1 - cover)
                    pixels[column] = mixed(under, colour_at(x, y), cover / over), over

    def bytes(self, row):
        """A row as red, green, blue and alpha, not multiplied."""
        return b"".join(bytes(round(channel) for channel in (*colour, alpha * 255)) for colour, alpha in self.rows[row])

    def png(self):
        return png(self.size, 4, [self.bytes(row) for row in range(self.size)])

    def bitmap(self):
        """Rows from below, blue before green before red, and a mask behind them that the alpha makes needless."""
        header = struct.pack("<IiiHHIIiiII", 40, self.size, 2 * self.size, 1, 32, 0, 0, 0, 0, 0, 0)
        pixels = bytearray()
        for row in reversed(range(self.size)):
            line = bytearray(self.bytes(row))
            line[0::4], line[2::4] = line[2::4], line[0::4]
            pixels += line
        return header + bytes(pixels) + bytes((self.size + 31) // 32 * 4 * self.size)


def constant(colour):
    return lambda x, y: colour


def disc(centre, radius):
    return lambda x, y: math.hypot(x - centre[0], y - centre[1]) - radius


def ring(centre, radius, width):
    return lambda x, y: abs(math.hypot(x - centre[0], y - centre[1]) - radius) - width / 2


def segment(start, end, width):
    dx, dy = end[0] - start[0], end[1] - start[1]
    length = dx * dx + dy * dy

    def distance(x, y):
        part = min(max(((x - start[0]) * dx + (y - start[1]) * dy) / length, 0), 1)
        return math.hypot(x - start[0] - part * dx, y - start[1] - part * dy) - width / 2

    return distance


def rounded_square(size, radius):
    half = size / 2

    def distance(x, y):
        dx, dy = abs(x - half) - half + radius, abs(y - half) - half + radius
        return math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - radius

    return distance


def both(*shapes):
    return lambda x, y: max(shape(x, y) for shape in shapes)


def below(edge):
    return lambda x, y: edge - y


def above(edge):
    return lambda x, y: y - edge


def draw(size):
    picture = Picture(size)
    square = rounded_square(size, CORNER * size)
    horizon = round(HORIZON_TOP * size)
    line = whole(LINE * size)
    middle = (size / 2, float(horizon))
    radius = round(2 * DOME_RADIUS * size) / 2

    picture.paint(lambda x, y: mixed(SKY_TOP, SKY_LOW, min(y / horizon, 1)), square)
    picture.paint(constant(GROUND), both(square, below(horizon)))
    orbit = ORBIT_RADIUS * size
    angle = math.radians(SATELLITE_PLACE)
    satellite = middle[0] + orbit * math.cos(angle), middle[1] - orbit * math.sin(angle)
    picture.paint(constant(ARC), both(square, ring(middle, orbit, line), above(horizon)), 0.8)
    picture.paint(constant(AMBER), both(ring(middle, radius, whole(DOME_LINE * size)), above(horizon)))
    if size >= SMALLEST_WITH_RAY:
        picture.paint(constant(SKY_LOW), both(segment(middle, satellite, 3 * line), above(horizon)))
        picture.paint(constant(CYAN), both(segment(middle, satellite, line), above(horizon)))
    # A gap parts the satellite from the line that it stands on.
    picture.paint(constant(SKY_TOP), both(square, disc(satellite, SATELLITE_RADIUS * size + line)))
    picture.paint(constant(CYAN), disc(satellite, SATELLITE_RADIUS * size))
    picture.paint(constant(ARC), both(square, below(horizon), above(horizon + line)))
    picture.paint(constant(WHITE), both(disc(middle, RECEIVER_RADIUS * size), above(horizon)))
    return picture


def ico(pictures):
    images = [picture.bitmap() if picture.size <= LARGEST_BITMAP else picture.png() for picture in pictures]
    place = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for picture, image in zip(pictures, images):
        side = picture.size % 256  # 0 stands for 256
        directory += struct.pack("<BBBBHHII", side, side, 0, 0, 1, 32, len(image), place)
        place += len(image)
    return directory + b"".join(images)


def source(picture):
    """The picture as a table that is compiled."""
    words = []
    for row in range(picture.size):
        line = picture.bytes(row)
        words += [f"0x{a:02X}{r:02X}{g:02X}{b:02X}" for r, g, b, a in zip(*(line[at::4] for at in range(4)))]
    lines = "\n".join("    " + ",".join(words[at:at + 10]) + "," for at in range(0, len(words), 10))
    return f"""// Made by tools/packer/drawIcon.py; not to be edited.
#include "resources/icon/programIcon.h"

#include <iterator>

namespace {{

constexpr uint32_t Side = {picture.size};

// clang-format off
constexpr uint32_t Pixels[] = {{
{lines}
}};
// clang-format on

}}  // namespace

windowIconShape programIcon()
{{
    return {{Side, Side, {{std::begin(Pixels), std::end(Pixels)}}}};
}}
"""


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    pictures = {size: draw(size) for size in PNG_SIZES}
    for size, picture in pictures.items():
        (folder / f"skyreckoning-{size}.png").write_bytes(picture.png())
    (folder / "programIcon.cpp").write_text(source(pictures[SOURCE_SIZE]), encoding="ascii")
    (folder / "skyreckoning.ico").write_bytes(ico([pictures[size] for size in ICO_SIZES]))


if __name__ == "__main__":
    main()
