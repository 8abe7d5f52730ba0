"""The gallery driven by a real mouse and keyboard, in the display that DISPLAY names:
tests/tools/gallery_test.py COMMAND...

COMMAND starts the gallery; with tools/wine in it, it is the Windows program. The positions of sheets and tiles are those
of tools/gallery, their frames' buttons those of the window managers that tools/display starts.
"""

import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import results

COMMAND = sys.argv[1:]
del sys.argv[1:]
ON_WINDOWS = any(pathlib.Path(word).name == "wine" for word in COMMAND)

FORM = (60, 60)
SIZE = "1000x500"
# Tiles and sheets in the form: a point inside of each.
INPUT = (200, 420)
POPUP = (565, 393)
MODAL = (685, 393)
CENTRE = (805, 393)
CAPTION = (925, 393)
CLOSE = (565, 429)
# Buttons of the frame, on the screen.
MINIMISE, MAXIMISE, FRAME_CLOSE = (1017, 50), (1034, 50), (1050, 50)
# Where the frame's bottom right corner is dragged, from that of the form.
CORNER = (1, 1) if ON_WINDOWS else (-10, 2)

PATIENCE = 20


def clipboard():
    """What another program finds there. Wine on a busy machine offers it late or loses a question, and is asked again."""
    attempts = 4 if ON_WINDOWS else 1
    for attempt in range(1, attempts + 1):
        try:
            return subprocess.run(["xclip", "-selection", "clipboard", "-o", "-t", "UTF8_STRING"], check=True,
                                  capture_output=True, timeout=PATIENCE / attempts).stdout.decode()
        except (subprocess.TimeoutExpired, subprocess.CalledProcessError):
            if attempt == attempts:
                raise
            time.sleep(1)


class Gallery:
    """The running program, with the lines that it has told."""

    def __init__(self, *arguments):
        environment = {**os.environ, "SKY_GALLERY_STILL": "1"}
        self.process = subprocess.Popen([*COMMAND, *arguments], stdout=subprocess.PIPE, env=environment, text=True,
                                        encoding="utf-8", errors="replace")
        self.lines = []
        self.taken = 0
        self.changed = threading.Condition()
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            with self.changed:
                self.lines.append(line.rstrip("\r\n"))
                self.changed.notify_all()

    def expect(self, beginning):
        """Waits for a line behind the last one expected, and gives it."""
        limit = time.monotonic() + PATIENCE
        with self.changed:
            while True:
                for at in range(self.taken, len(self.lines)):
                    if self.lines[at].startswith(beginning):
                        self.taken = at + 1
                        return self.lines[at]
                left = limit - time.monotonic()
                if left <= 0:
                    raise AssertionError(f"{beginning!r} did not come; since then: {self.lines[self.taken:]}")
                self.changed.wait(left)

    def forget(self):
        with self.changed:
            self.taken = len(self.lines)

    def since(self):
        with self.changed:
            return self.lines[self.taken:]

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.reader.join()
        self.process.stdout.close()


def xdotool(*words):
    subprocess.run(["xdotool", *map(str, words)], check=True)


def move(point):
    xdotool("mousemove", FORM[0] + point[0], FORM[1] + point[1])


def click(point, button=1, times=1):
    move(point)
    settle()
    xdotool("click", "--repeat", times, "--delay", 60, button)


def press_frame(point):
    xdotool("mousemove", *point)
    settle()
    xdotool("click", 1)


def settle():
    """Lets the window manager hear of the mouse before its button."""
    time.sleep(0.15)


def screenshot():
    with tempfile.NamedTemporaryFile(suffix=".rgb") as file:
        subprocess.run(["import", "-window", "root", "-depth", "8", f"rgb:{file.name}"], check=True)
        return pathlib.Path(file.name).read_bytes()


def pixel(picture, x, y):
    at = 3 * (y * 1280 + x)
    return tuple(picture[at:at + 3])


def await_picture(wanted):
    """Waits for a picture of the screen that is as wanted; False when none came."""
    limit = time.monotonic() + PATIENCE
    while time.monotonic() < limit:
        if wanted(screenshot()):
            return True
        time.sleep(0.1)
    return False


class GalleryTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # Has the letters that the tests type; a key that is found only while typing would change the whole keyboard.
        subprocess.run(["setxkbmap", "de"], check=True)

    def setUp(self):
        self.gallery = self.start()

    def start(self, *arguments):
        gallery = Gallery(*arguments)
        self.addCleanup(gallery.end)
        gallery.expect(f"form: {SIZE} visible")
        gallery.expect("form: active")
        xdotool("mousemove", 1200, 1000)
        settle()
        gallery.forget()
        return gallery

    def test_mouse_positions_and_buttons_arrive(self):
        click(INPUT)
        self.gallery.expect("input: focus")
        self.gallery.expect("input: left down 190 70 keys 1")
        self.gallery.expect("input: left up 190 70 keys 0")
        click((201, 421), 3)
        self.gallery.expect("input: right down 191 71 keys 2")
        self.gallery.expect("input: right up 191 71 keys 0")
        click((202, 422), 2)
        self.gallery.expect("input: middle down 192 72 keys 16")
        self.gallery.expect("input: middle up 192 72 keys 0")

    def test_two_quick_presses_are_a_double_click(self):
        click(INPUT, times=2)
        self.gallery.expect("input: left down")
        self.gallery.expect("input: left double 190 70 keys 1")
        self.gallery.expect("input: left up")

    def test_a_turn_of_the_wheel_is_120(self):
        move(INPUT)
        settle()
        xdotool("click", 4)
        self.gallery.expect("input: wheel 190 70 keys 0 delta 120")
        xdotool("click", 5)
        self.gallery.expect("input: wheel 190 70 keys 0 delta -120")

    def test_a_drag_goes_on_outside_of_the_window(self):
        move(INPUT)
        settle()
        xdotool("mousedown", 1)
        self.gallery.expect("input: left down 190 70 keys 1")
        xdotool("mousemove", 1210, 900)
        self.gallery.expect("input: move 1140 490 keys 1")
        xdotool("mousemove", 20, 20)
        self.gallery.expect("input: move -50 -390 keys 1")
        xdotool("mouseup", 1)
        self.gallery.expect("input: left up -50 -390 keys 0")

    def test_keys_and_characters_arrive(self):
        click(INPUT)
        self.gallery.expect("input: left up")
        xdotool("key", "a")
        self.gallery.expect("input: key down 65")
        self.gallery.expect("input: char 97")
        self.gallery.expect("input: key up 65")
        xdotool("key", "shift+a")
        self.gallery.expect("input: key down 16")
        self.gallery.expect("input: char 65")
        for key, number in (("Left", 37), ("F1", 112), ("Delete", 46), ("Home", 36), ("Prior", 33), ("Escape", 27)):
            xdotool("key", key)
            self.gallery.expect(f"input: key down {number}")
        xdotool("key", "Return")
        self.gallery.expect("input: char 13")

    @unittest.skipIf(ON_WINDOWS, "Wine guesses which letters a display's keyboard has")
    def test_characters_beyond_ascii_arrive(self):
        click(INPUT)
        self.gallery.expect("input: left up")
        for key, character in (("odiaeresis", "ö"), ("degree", "°"), ("section", "§"), ("mu", "µ")):
            xdotool("key", key)
            self.gallery.expect(f"input: char {ord(character)}")

    def test_copies_to_and_pastes_from_other_programs(self):
        click(INPUT)
        self.gallery.expect("input: left up")
        xdotool("key", "ctrl+c")
        self.gallery.expect("input: copied")
        self.assertIn("key down 17", clipboard())
        with subprocess.Popen(["xclip", "-selection", "clipboard", "-i", "-quiet"], stdin=subprocess.PIPE,
                              stderr=subprocess.DEVNULL) as owner:
            owner.stdin.write("48° µ".encode())
            owner.stdin.close()
            settle()
            xdotool("key", "ctrl+v")
            self.gallery.expect("input: pasted 7 48° µ")
            owner.terminate()

    def test_a_popup_sees_presses_outside_of_it(self):
        click(POPUP)
        self.gallery.expect("popup open")
        # The popup stands at (510, 410) in the form.
        click((530, 480))
        self.gallery.expect("popup pressed")
        click(INPUT)
        self.gallery.expect("popup closed by a press outside")
        self.gallery.forget()
        click(INPUT)
        self.gallery.expect("input: left down")

    def test_a_modal_form_keeps_the_others_out(self):
        click(MODAL)
        self.await_modal(0)
        self.gallery.forget()
        click((INPUT[0] - 150, INPUT[1] + 50))
        xdotool("key", "b")
        settle()
        self.assertEqual([line for line in self.gallery.since() if line.startswith("input")], [])
        # Tab went to "Done" when it opened.
        xdotool("key", "space")
        self.gallery.expect("modal 0 ended 1")
        click(INPUT)
        self.gallery.expect("input: left down")

    def test_modal_forms_nest_and_close_by_their_frame(self):
        click(MODAL)
        self.await_modal(0)
        xdotool("key", "Tab")
        self.gallery.expect("Deeper: focus")
        xdotool("key", "space")
        self.await_modal(1)
        xdotool("key", "alt+F4")
        self.gallery.expect("modal 1 ended -1")
        time.sleep(1.5 if ON_WINDOWS else 0.2)
        xdotool("key", "alt+F4")
        self.gallery.expect("modal 0 ended -1")
        click(INPUT)
        self.gallery.expect("input: left down")

    def await_modal(self, depth):
        self.gallery.expect(f"modal {depth} open")
        self.gallery.expect("Done: focus")
        # The window's own focus may come to the display later than the program hears of it.
        time.sleep(1.5 if ON_WINDOWS else 0.2)

    def test_minimises_restores_and_maximises(self):
        press_frame(MAXIMISE)
        line = self.gallery.expect("form: 12")
        self.assertIn("maximised visible", line)
        xdotool("key", "alt+space")
        xdotool("key", "Escape")
        self.gallery.forget()
        # The button of a maximised frame is in the corner of the screen.
        press_frame((1258, 8))
        self.gallery.expect(f"form: {SIZE} visible")
        settle()
        press_frame(MINIMISE)
        self.gallery.expect(f"form: {SIZE} minimised")
        self.restore()
        self.gallery.expect(f"form: {SIZE} visible")

    def restore(self):
        if ON_WINDOWS:
            settle()
            xdotool("mousemove", 20, 1010)
            xdotool("click", "--repeat", 2, "--delay", 60, 1)
        else:
            found = subprocess.run(["xdotool", "search", "--name", "^Gallery$"], check=True, capture_output=True,
                                   text=True)
            xdotool("windowactivate", found.stdout.split()[0])

    def place_at_rest(self):
        """Where the window stands when it moves no more: Wine on a busy machine may move it once again."""
        told = None
        while told != (told := list(self.gallery.lines)):
            time.sleep(0.6)
        places = [line for line in told if line.startswith("form: at ")]
        return map(int, places[-1].split()[2:])

    def test_a_drag_of_the_frame_moves_it_and_a_drag_of_its_edge_resizes(self):
        xdotool("mousemove", 400, 50)
        settle()
        xdotool("mousedown", 1)
        xdotool("mousemove", 420, 70)
        settle()
        xdotool("mousemove", 450, 90)
        settle()
        xdotool("mouseup", 1)
        self.gallery.expect("form: at 110 100")
        left, top = self.place_at_rest()
        edge = (left + 1000 + CORNER[0], top + 500 + CORNER[1])
        xdotool("mousemove", *edge)
        settle()
        xdotool("mousedown", 1)
        for step in (20, 40, 60):
            xdotool("mousemove", edge[0] + step, edge[1] + step)
            settle()
        xdotool("mouseup", 1)
        self.gallery.expect("form: 10")

    def test_stays_above_its_least_size(self):
        edge = (60 + 1000 + CORNER[0], 60 + 500 + CORNER[1])
        xdotool("mousemove", *edge)
        settle()
        xdotool("mousedown", 1)
        for x, y in ((800, 400), (300, 200), (120, 100)):
            xdotool("mousemove", x, y)
            settle()
        xdotool("mouseup", 1)
        self.gallery.expect("form: 400x200 visible")

    @unittest.skipIf(ON_WINDOWS, "the virtual desktop has no key for it")
    def test_the_keyboard_switches_between_programs(self):
        other = self.start("empty")
        self.gallery.expect("form: inactive")
        xdotool("key", "alt+Tab")
        self.gallery.expect("form: active")
        other.expect("form: inactive")

    def test_closes_by_its_frame(self):
        press_frame(FRAME_CLOSE)
        self.gallery.expect("form: gone")
        self.assertEqual(self.gallery.process.wait(PATIENCE), 0)

    def test_closes_by_the_keyboard(self):
        xdotool("key", "alt+F4")
        self.gallery.expect("form: gone")
        self.assertEqual(self.gallery.process.wait(PATIENCE), 0)

    def test_closes_from_inside(self):
        click(CLOSE)
        self.gallery.expect("form: gone")
        self.assertEqual(self.gallery.process.wait(PATIENCE), 0)

    def test_centres_itself(self):
        click(CENTRE)
        self.gallery.expect("form: at 140 2")

    def test_is_drawn_where_it_stands(self):
        background = (0x40, 0x40, 0x60)
        self.assertTrue(await_picture(lambda picture: pixel(picture, FORM[0] + 999, FORM[1] + 499) == background))
        picture = screenshot()
        self.assertEqual(pixel(picture, FORM[0], FORM[1]), background)
        # The innermost of the nested tiles, cut at its parent's edge.
        self.assertEqual(pixel(picture, 60 + 670 + 56, 60 + 180 + 80), (0xC0, 0, 0))
        # The half-transparent red over black and over green.
        self.assertEqual(pixel(picture, 60 + 670 + 126 + 60, 60 + 180 + 26 + 70)[1:], (0, 0))
        self.assertAlmostEqual(pixel(picture, 60 + 670 + 126 + 60, 60 + 180 + 26 + 70)[0], 128, delta=2)
        self.assertAlmostEqual(pixel(picture, 60 + 670 + 126 + 36, 60 + 180 + 26 + 36)[1], 80, delta=2)

    def test_comes_back_whole_when_it_was_covered(self):
        area = [(60 + x, 60 + y) for x in range(0, 1000, 7) for y in range(0, 500, 7)]
        self.assertTrue(await_picture(lambda picture: pixel(picture, 60, 60) == (0x40, 0x40, 0x60)))
        before = screenshot()
        other = self.start("empty")
        self.assertTrue(await_picture(lambda picture: pixel(picture, 200, 200) == (0x40, 0x40, 0x60)))
        other.end()
        self.assertTrue(await_picture(
            lambda after: all(pixel(before, *point) == pixel(after, *point) for point in area)))


class PictureTest(unittest.TestCase):
    def run_gallery(self, *arguments):
        return subprocess.run([*COMMAND, *arguments], capture_output=True, text=True, errors="replace", check=False,
                              timeout=4 * PATIENCE, env={**os.environ, "SKY_GALLERY_STILL": "1"})

    def test_draws_each_page_into_a_file(self):
        with tempfile.TemporaryDirectory() as folder:
            for page, width, height in (("controls", 1000, 562), ("edits", 1000, 384), ("graphs", 990, 500)):
                with self.subTest(page):
                    path = pathlib.Path(folder, f"{page}.bmp")
                    self.assertEqual(self.run_gallery(page, "--picture", str(path)).returncode, 0)
                    content = path.read_bytes()
                    self.assertEqual(content[:2], b"BM")
                    self.assertEqual(struct.unpack_from("<II", content, 18), (width, height))
                    stride = (3 * width + 3) // 4 * 4
                    self.assertEqual(len(content), 54 + stride * height)
                    shades = {content[at:at + 3] for row in range(height)
                              for at in range(54 + row * stride, 54 + row * stride + 3 * width, 3)}
                    self.assertGreater(len(shades), 30)

    def test_says_what_it_cannot_do(self):
        self.assertEqual(self.run_gallery("nothing").returncode, 2)
        self.assertEqual(self.run_gallery("edits", "--picture").returncode, 2)
        failed = self.run_gallery("edits", "--picture", "/no/such/folder/x.bmp")
        self.assertEqual(failed.returncode, 1)
        self.assertIn("no picture could be written to /no/such/folder/x.bmp", failed.stderr)


if __name__ == "__main__":
    results.main()
