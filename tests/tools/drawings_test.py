"""The icon and the about picture: what is stored is what is drawn, in the forms that the systems take."""

import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

import results

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDER = ROOT / "resources" / "icon"
PACKER = ROOT / "tools" / "packer"
sys.path.insert(0, str(PACKER))

import drawIcon  # noqa: E402
import drawPng  # noqa: E402

PICTURES = {size: drawIcon.draw(size) for size in drawIcon.PNG_SIZES}
WINDRES = "x86_64-w64-mingw32-windres"


def png_rows(data, channels=4):
    """Width and rows of a picture of 8 bits a channel whose lines are not filtered: how they are packed may differ."""
    width, height, depth, kind = struct.unpack(">IIBB", data[16:26])
    assert (depth, kind) == (8, drawPng.KINDS[channels])
    packed, at = b"", len(drawPng.SIGNATURE)
    while at < len(data):
        length, = struct.unpack(">I", data[at:at + 4])
        if data[at + 4:at + 8] == b"IDAT":
            packed += data[at + 8:at + 8 + length]
        at += 12 + length
    lines = zlib.decompress(packed)
    stride = channels * width + 1
    return width, [lines[row * stride + 1:(row + 1) * stride] for row in range(height)]


def drawn_rows(size):
    return [PICTURES[size].bytes(row) for row in range(size)]


def ico_images(data):
    reserved, kind, count = struct.unpack("<HHH", data[:6])
    assert (reserved, kind) == (0, 1)
    for number in range(count):
        width, height, _, _, _, bits, size, place = struct.unpack("<BBBBHHII", data[6 + 16 * number:22 + 16 * number])
        assert width == height and bits == 32
        yield width or 256, data[place:place + size], size


class Icon(unittest.TestCase):
    def test_each_picture_is_as_it_is_drawn(self):
        for size in drawIcon.PNG_SIZES:
            with self.subTest(size=size):
                data = (FOLDER / f"skyreckoning-{size}.png").read_bytes()
                self.assertTrue(png_rows(data) == (size, drawn_rows(size)))

    def test_what_is_compiled_is_as_it_is_drawn(self):
        self.assertEqual((FOLDER / "programIcon.cpp").read_text(encoding="ascii"),
                         drawIcon.source(PICTURES[drawIcon.SOURCE_SIZE]))

    def test_the_windows_file_holds_six_sizes(self):
        images = list(ico_images((FOLDER / "skyreckoning.ico").read_bytes()))
        self.assertEqual([size for size, _, _ in images], [16, 24, 32, 48, 64, 256])
        for size, image, told in images:
            with self.subTest(size=size):
                self.assertEqual(len(image), told)
                rows = drawn_rows(size)
                if size == 256:
                    self.assertTrue(png_rows(image) == (size, rows))
                    continue
                header = struct.unpack("<IiiHHIIiiII", image[:40])
                self.assertEqual(header[:5], (40, size, 2 * size, 1, 32))
                mask = (size + 31) // 32 * 4 * size
                self.assertEqual(len(image), 40 + 4 * size * size + mask)
                lowest = image[40:40 + 4 * size]
                self.assertEqual((lowest[2::4], lowest[1::4], lowest[0::4], lowest[3::4]),
                                 tuple(rows[-1][channel::4] for channel in range(4)))

    def test_corners_are_transparent_and_the_smallest_shows_every_part(self):
        for picture in PICTURES.values():
            rows = picture.rows
            for row, column in ((0, 0), (0, -1), (-1, 0), (-1, -1)):
                self.assertLess(rows[row][column][1], 0.5)
        smallest = [pixel for row in PICTURES[16].rows for pixel in row]
        for colour, least in ((drawPng.AMBER, 10), (drawPng.CYAN, 4), (drawPng.WHITE, 4), (drawPng.ARC, 14)):
            pure = sum(alpha == 1 and all(abs(a - b) < 1 for a, b in zip(colour, there)) for there, alpha in smallest)
            self.assertGreaterEqual(pure, least, colour)

    @unittest.skipUnless(shutil.which(WINDRES), "needs the resource compiler of MinGW")
    def test_windows_resources_compile(self):
        with tempfile.TemporaryDirectory() as folder:
            target = pathlib.Path(folder) / "skyreckoning.o"
            subprocess.run([WINDRES, "-I", ".", "resources/skyreckoning.rc", str(target)], cwd=ROOT, check=True)
            data = target.read_bytes()
        self.assertIn("Vintermark".encode("utf-16-le"), data)
        self.assertIn("1.0.5.5".encode("utf-16-le"), data)
        self.assertIn("MAINICON".encode("utf-16-le"), data)
        self.assertIn(b"PerMonitorV2", data)
        self.assertIn((FOLDER / "skyreckoning.ico").read_bytes()[-1000:], data)


class AboutPicture(unittest.TestCase):
    def test_the_program_that_draws_it_makes_what_is_stored(self):
        with tempfile.TemporaryDirectory() as folder:
            drawn = pathlib.Path(folder) / "about.png"
            environment = {**os.environ, "PYTHONDONTWRITEBYTECODE": "1"}
            subprocess.run([PACKER / "drawAbout.py", drawn], env=environment, check=True)
            found, stored = (png_rows(file.read_bytes(), 3) for file in (drawn, ROOT / "resources/about.png"))
        self.assertEqual((found[0], len(found[1])), (142, 104))
        self.assertTrue(found == stored, "draw it anew, and pack it")


if __name__ == "__main__":
    results.main()
