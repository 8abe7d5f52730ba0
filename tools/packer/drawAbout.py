#!/usr/bin/env python3
"""Draws the picture of the about box: tools/packer/drawAbout.py resources/about.png

Night over a horizon, satellites on their arcs, and an antenna that hears them, in the colours of the theme. Each pixel is
the mean of SCALE by SCALE points. Afterwards, from the root of the tree:

    build/release/tools/skypack resources/about.png resources/aboutPicture
"""

import math
import pathlib
import sys

from drawPng import AMBER, ARC, CYAN, GROUND, SKY_LOW, SKY_TOP, WHITE, mixed, png

WIDTH, HEIGHT = 142, 104
SCALE = 4

GLOW = (0x60, 0x48, 0x00)
HILL = (0x20, 0x20, 0x34)
FACE = (0x60, 0x60, 0x80)

HORIZON = 84
CENTRE = (71, 142)  # of all arcs, below the picture
ANTENNA = (38, 65)  # the middle of the dome's foot

# Radius of the arc, where on it in degrees from the right, colour of the panels.
SATELLITES = [(84, 88, CYAN), (84, 58, AMBER), (110, 82, CYAN), (110, 119, AMBER), (126, 66, CYAN)]
HEARD = [0, 2, 3]

STARS = [(9, 12), (21, 31), (33, 8), (47, 22), (58, 5), (64, 44), (77, 12), (88, 38), (99, 7), (112, 49), (118, 14),
         (131, 35), (136, 6), (128, 62), (12, 56), (104, 66), (82, 61), (6, 38)]


class Picture:
    def __init__(self):
        self.rows = [[self.sky((y + 0.5) / SCALE)] * (WIDTH * SCALE) for y in range(HEIGHT * SCALE)]

    @staticmethod
    def sky(y):
        # In steps, as wide rows of one colour are small when packed.
        y = min(math.floor(y / 2) * 2, HORIZON)
        colour = mixed(SKY_TOP, SKY_LOW, (y / HORIZON) ** 1.4)
        return mixed(colour, GLOW, max(0.0, (y - HORIZON + 22) / 22) ** 2 * 0.7)

    def paint(self, box, colour, covers, opacity=1.0):
        """Paints the points of a box (left, top, right, bottom) that covers(x, y) is true for."""
        left, top, right, bottom = (round(edge * SCALE) for edge in box)
        for row in range(max(top, 0), min(bottom, HEIGHT * SCALE)):
            y = (row + 0.5) / SCALE
            points = self.rows[row]
            for column in range(max(left, 0), min(right, WIDTH * SCALE)):
                if covers((column + 0.5) / SCALE, y):
                    points[column] = mixed(points[column], colour, opacity)

    def rectangle(self, left, top, right, bottom, colour):
        self.paint((left, top, right, bottom), colour, lambda x, y: True)

    def line(self, start, end, width, colour, opacity=1.0, dash=None):
        dx, dy = end[0] - start[0], end[1] - start[1]
        length = math.hypot(dx, dy)

        def covers(x, y):
            along = ((x - start[0]) * dx + (y - start[1]) * dy) / length
            across = abs((x - start[0]) * dy - (y - start[1]) * dx) / length
            return 0 <= along <= length and across <= width / 2 and not (dash and along % dash > dash / 2)

        self.paint((min(start[0], end[0]) - width, min(start[1], end[1]) - width,
                    max(start[0], end[0]) + width, max(start[1], end[1]) + width), colour, covers, opacity)

    def ring(self, centre, inner, outer, colour, opacity=1.0):
        self.paint((centre[0] - outer, centre[1] - outer, centre[0] + outer, centre[1] + outer), colour,
                   lambda x, y: inner <= math.hypot(x - centre[0], y - centre[1]) <= outer, opacity)

    def row(self, top):
        """The bytes of a row of pixels."""
        line = bytearray()
        for left in range(0, WIDTH * SCALE, SCALE):
            points = [point for row in self.rows[top:top + SCALE] for point in row[left:left + SCALE]]
            line += bytes(round(sum(channel) / len(points)) for channel in zip(*points))
        return bytes(line)

    def png(self):
        return png(WIDTH, 3, [self.row(top) for top in range(0, HEIGHT * SCALE, SCALE)])


def place(radius, degrees):
    angle = math.radians(degrees)
    return CENTRE[0] + radius * math.cos(angle), CENTRE[1] - radius * math.sin(angle)


def draw_sky(picture):
    for number, (x, y) in enumerate(STARS):
        picture.rectangle(x, y, x + 1, y + 1, mixed(ARC, WHITE, number % 3 / 2))
    for radius in sorted({radius for radius, _, _ in SATELLITES}):
        picture.ring(CENTRE, radius - 0.5, radius + 0.5, ARC, 0.45)


def draw_satellite(picture, radius, degrees, colour):
    x, y = place(radius, degrees)
    # The panels lie along the arc.
    ax, ay = math.sin(math.radians(degrees)), math.cos(math.radians(degrees))
    for side in (-1, 1):
        picture.line((x + side * 3 * ax, y + side * 3 * ay), (x + side * 8 * ax, y + side * 8 * ay), 3.6, colour)
    picture.line((x - 3 * ax, y - 3 * ay), (x + 3 * ax, y + 3 * ay), 1, ARC)
    picture.line((x - 2 * ax, y - 2 * ay), (x + 2 * ax, y + 2 * ay), 4.6, WHITE)


def draw_ground(picture):
    def hill(x, y):
        return y > HORIZON - 5 * math.sin((x - 60) / 82 * math.pi) - 2

    picture.paint((60, HORIZON - 8, WIDTH, HEIGHT), HILL, hill)
    picture.paint((0, HORIZON - 6, WIDTH, HEIGHT), GROUND,
                  lambda x, y: y > HORIZON + 3 - 5 * math.cos((x - ANTENNA[0]) / 60))


def draw_antenna(picture):
    x, foot = ANTENNA
    for spread in (-11, 11):
        picture.line((x, foot + 8), (x + spread, HORIZON + 9), 1.6, FACE)
    picture.line((x, foot), (x, HORIZON + 9), 2.4, ARC)
    picture.rectangle(x - 14, foot, x + 14, foot + 2.5, FACE)
    picture.rectangle(x - 9, foot + 2.5, x + 9, foot + 4.5, ARC)
    picture.paint((x - 12, foot - 10, x + 12, foot), WHITE,
                  lambda px, py: ((px - x) / 11.5) ** 2 + ((py - foot) / 9) ** 2 <= 1)
    picture.paint((x - 12, foot - 10, x + 12, foot), ARC,
                  lambda px, py: ((px - x) / 11.5) ** 2 + ((py - foot) / 9) ** 2 <= 1 and px > x + 3, 0.5)


def draw():
    picture = Picture()
    draw_sky(picture)
    dome = (ANTENNA[0], ANTENNA[1] - 6)
    for number in HEARD:
        radius, degrees, _ = SATELLITES[number]
        picture.line(dome, place(radius, degrees), 0.9, AMBER, 0.8, dash=4)
    for satellite in SATELLITES:
        draw_satellite(picture, *satellite)
    draw_ground(picture)
    draw_antenna(picture)
    return picture


def main():
    pathlib.Path(sys.argv[1]).write_bytes(draw().png())


if __name__ == "__main__":
    main()
