"""Reads the time that the program shows, off the display's pixels.

What digits look like is learnt from the program itself: while the receiver pauses, the screen shows a time that is known.
"""

import ctypes
import itertools
import time

TIME_BOX = (120, 90, 106, 14)  # x, y, width, height in the window, within the frame of the field
# Where the nine digits of 12:34:56.789 stand in it, up to the pixel to which the system rounds.
DIGITS_AT = (40, 46, 55, 61, 71, 77, 86, 92, 99)
DIGIT_WIDTH = 6
GAP = 1  # of these, where the next digit may begin
SHIFTS = (0, -1, 1)
ALL_PLANES = 0xFFFFFFFF
Z_PIXMAP = 2
# Of a digit that counts as read: the sum of what its pixels differ by, and its part of the same for the next best.
MOST_UNLIKE = 1500
MOST_DOUBT = 0.6
# A digit looks different where it begins within a pixel, by quarters. Minutes, seconds and tenths begin in three of them, and
# in three others while the hour has one digit.
TEACHERS = (3, 5, 6)
LESSONS_BEGIN = "09:30:00"  # of the receiver's day: half an hour, and more than a minute of ours, before there are two
DAY = 86400


class Cookie(ctypes.Structure):
    _fields_ = [("sequence", ctypes.c_uint)]


class Unreadable(Exception):
    pass


class Display:
    """Pictures of parts of a window, without a program between."""

    def __init__(self):
        self.xcb = ctypes.CDLL("libxcb.so.1")
        self.free = ctypes.CDLL(None).free
        self.free.argtypes = [ctypes.c_void_p]
        self.xcb.xcb_connect.restype = ctypes.c_void_p
        self.xcb.xcb_get_image.restype = Cookie
        self.xcb.xcb_get_image.argtypes = [ctypes.c_void_p, ctypes.c_uint8, ctypes.c_uint32, ctypes.c_int16, ctypes.c_int16,
                                           ctypes.c_uint16, ctypes.c_uint16, ctypes.c_uint32]
        self.xcb.xcb_get_image_reply.restype = ctypes.c_void_p
        self.xcb.xcb_get_image_reply.argtypes = [ctypes.c_void_p, Cookie, ctypes.c_void_p]
        self.xcb.xcb_get_image_data.restype = ctypes.c_void_p
        self.xcb.xcb_get_image_data.argtypes = [ctypes.c_void_p]
        self.connection = self.xcb.xcb_connect(None, None)

    def reds(self, window, box):
        """The red of each pixel, column by column."""
        x, y, width, height = box
        asked = self.xcb.xcb_get_image(self.connection, Z_PIXMAP, window, x, y, width, height, ALL_PLANES)
        reply = self.xcb.xcb_get_image_reply(self.connection, asked, None)
        if not reply:
            raise Unreadable("the window gives no picture")
        pixels = ctypes.string_at(self.xcb.xcb_get_image_data(reply), width * height * 4)
        self.free(reply)
        red = pixels[2::4]
        return [red[column::width] for column in range(width)]


def cell(columns, place, shift=0):
    at = DIGITS_AT[place] + shift
    return columns[at:at + DIGIT_WIDTH]


def is_empty(columns):
    return len({value for column in columns for value in column}) == 1


def has_tens(columns):
    """Whether the hour has two digits."""
    return not is_empty(cell(columns, 0)[:-GAP])


def difference(one, other):
    return sum(abs(a - b) for left, right in zip(one, other) for a, b in zip(left, right))


def spoken(seconds):
    """The digits of a time of day."""
    milliseconds = round(seconds * 1000) % (DAY * 1000)
    whole, fraction = divmod(milliseconds, 1000)
    return f"{whole // 3600:02}{whole // 60 % 60:02}{whole % 60:02}{fraction:03}"


class Clock:
    """The field of the time."""

    def __init__(self, window):
        self.display = Display()
        self.window = window
        self.shapes = {}  # of each digit, all that were seen
        self.seen = set()  # (whether the hour has two digits, place, digit)

    def picture(self):
        return self.display.reds(self.window, TIME_BOX)

    def learn(self, seconds):
        """The field stands at this time of day."""
        picture = self.picture()
        for place, digit in enumerate(spoken(seconds)):
            if place == 0 and not has_tens(picture):
                continue
            shape = cell(picture, place)
            self.seen.add((has_tens(picture), place, digit))
            known = self.shapes.setdefault(digit, [])
            if shape not in known:
                known.append(shape)

    def knows_all(self):
        return self.seen >= set(itertools.product((False, True), TEACHERS, "0123456789"))

    def digit(self, picture, place):
        if place == 0 and not has_tens(picture):
            return "0"

        def unlikeness(one):
            return min(difference(cell(picture, place, shift), known) for known in self.shapes[one] for shift in SHIFTS)

        (best, found), (next_best, _) = sorted((unlikeness(one), one) for one in self.shapes)[:2]
        if best > min(MOST_UNLIKE, MOST_DOUBT * next_best):
            raise Unreadable("something else than a digit")
        return found

    def reads(self, seconds):
        """Whether this time, which stands there, is what is read."""
        try:
            return spoken(self.read()[0]) == spoken(seconds)
        except Unreadable:
            return False

    def read(self, note=time.monotonic):
        """The time of day in seconds that is shown, and what is to be noted at the moment of the look."""
        picture = self.picture()
        noted = note()
        text = "".join(self.digit(picture, place) for place in range(len(DIGITS_AT)))
        return int(text[0:2]) * 3600 + int(text[2:4]) * 60 + int(text[4:]) / 1000, noted
