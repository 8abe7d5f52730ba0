"""What bench/day.py makes of what it saw: which lines rise, what a stream says, what digits say, how it is drawn."""

import pathlib
import random
import struct
import sys
import tempfile
import unittest
import xml.etree.ElementTree as tree

import results

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "bench"))

from soak import clients, drawing, screen, verdict  # noqa: E402


def samples(count=300, **lines):
    """Of all series, flat where no line is given: a function of the part of the time that has passed."""
    flat = {series.name: 10.0 for series in verdict.SERIES}
    return [{"seconds": at * 2.0, **flat, **{name: line(at / count) for name, line in lines.items()}} for at in range(count)]


def rising(**lines):
    return [series.name for series in verdict.too_much(samples(**lines))]


class VerdictTest(unittest.TestCase):
    def test_what_is_flat_does_not_rise(self):
        noise = random.Random(1)
        self.assertEqual(rising(), [])
        self.assertEqual(rising(resident=lambda part: 20 + noise.uniform(-0.2, 0.2), age=lambda part: noise.uniform(20, 90)), [])

    def test_half_a_byte_lost_with_each_solution_is_seen(self):
        lost = 0.5 * 600 * 3600 / (1 << 20)
        self.assertEqual(rising(anonymous=lambda part: 6 + 1.2 * lost * part), ["anonymous"])

    def test_one_descriptor_lost_in_the_second_half_is_seen(self):
        self.assertEqual(rising(descriptors=lambda part: 18 + (part > 0.75)), ["descriptors"])

    def test_what_rises_at_the_start_alone_is_no_leak(self):
        self.assertEqual(rising(resident=lambda part: min(20, 10 + 30 * part)), [])

    def test_what_falls_does_not_rise(self):
        self.assertEqual(rising(interface=lambda part: 90 - 80 * part), [])

    def test_a_screen_that_falls_behind_is_seen(self):
        self.assertEqual(rising(age=lambda part: 50 + 60 * part), ["age"])


def solution(time_of_week):
    return b"\xb5\x62\x01\x21" + struct.pack("<HI", 20, time_of_week) + bytes(18)


class StreamTest(unittest.TestCase):
    def test_times_are_found_in_any_cuts(self):
        stream = b"".join(b"\x00\xb5" + solution(1000 * number) for number in range(50))
        for length in (1, 3, 7, 40, 1000):
            times = clients.Times(speed=24)
            for at in range(0, len(stream), length):
                times.take(stream[at:at + length])
            self.assertEqual((times.solutions, times.newest), (50, 49), length)

    def test_spectra_are_counted_in_any_cuts(self):
        spectrum = b"\xb5\x62\x0a\x31" + struct.pack("<H", 548) + bytes(550)
        stream = b"".join(spectrum + solution(1000 * number) for number in range(50))
        for length in (1, 3, 7, 40, 1000):
            times = clients.Times(speed=24)
            for at in range(0, len(stream), length):
                times.take(stream[at:at + length])
            self.assertEqual((times.spectra, times.solutions), (50, 50), length)


class DigitsTest(unittest.TestCase):
    def clock(self):
        noise = random.Random(2)
        shapes = {digit: [bytes(noise.randrange(256) for _ in range(screen.TIME_BOX[3])) for _ in range(screen.DIGIT_WIDTH)]
                  for digit in "0123456789"}
        clock = screen.Clock.__new__(screen.Clock)
        clock.shapes, clock.seen = {}, set()

        def show(seconds):
            columns = [bytes(screen.TIME_BOX[3])] * (screen.TIME_BOX[2] + screen.DIGIT_WIDTH)
            for place, digit in enumerate(screen.spoken(seconds)):
                at = screen.DIGITS_AT[place]
                if (place, digit) == (0, "0"):
                    continue
                columns[at:at + screen.DIGIT_WIDTH] = shapes[digit]
            clock.picture = lambda: columns

        clock.show = show
        return clock

    def learned(self, begin=35_400, end=36_600):
        """One that has seen these seconds of the day: ten minutes before and after ten o'clock."""
        clock = self.clock()
        for tenths in range(begin * 10, end * 10, 61):
            clock.show(tenths / 10)
            clock.learn(tenths / 10)
        return clock

    def test_a_time_that_was_never_shown_before_is_read(self):
        clock = self.learned()
        self.assertTrue(clock.knows_all())
        clock.show(23 * 3600 + 45 * 60 + 6.789)
        self.assertTrue(clock.reads(23 * 3600 + 45 * 60 + 6.789))
        self.assertFalse(clock.reads(23 * 3600 + 45 * 60 + 6.788))

    def test_a_time_before_ten_o_clock_has_one_digit_less(self):
        clock = self.learned()
        clock.show(9 * 3600 + 45 * 60 + 6.789)
        self.assertTrue(clock.reads(9 * 3600 + 45 * 60 + 6.789))

    def test_hours_of_one_digit_or_of_two_alone_teach_too_little(self):
        self.assertFalse(self.learned(end=36_000).knows_all())
        self.assertFalse(self.learned(begin=36_000).knows_all())

    def test_what_is_no_digit_is_not_read(self):
        clock = self.learned()
        clock.picture = lambda: [bytes([128]) * screen.TIME_BOX[3]] * 200
        with self.assertRaises(screen.Unreadable):
            clock.read()


class DrawingTest(unittest.TestCase):
    def test_every_line_is_drawn_within_the_picture(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "lines.svg"
            drawing.draw(path, [("One", "ms", [("a", [(0, 1.0), (24, 900.0)])]),
                                ("Two", "", [("b", [(0, 20.5), (24, 20.5)]), ("c", [(0, -3.0), (24, 0.0)])])], 24)
            picture = tree.parse(path).getroot()
        height = float(picture.get("height"))
        lines = picture.findall("{http://www.w3.org/2000/svg}polyline")
        self.assertEqual(len(lines), 3)
        for line in lines:
            for point in line.get("points").split():
                x, y = map(float, point.split(","))
                self.assertTrue(0 <= x <= drawing.WIDTH and 0 <= y <= height, point)


if __name__ == "__main__":
    results.main()
