"""The program when disks, settings, other copies of itself and displays fail, in the display that DISPLAY names:
tests/tools/faults_test.py FOLDER

FOLDER holds the programs as they are built.
"""

import os
import resource
import signal
import subprocess
import time

import results
from settled import settled_size
from surroundings import KEY, PROGRAM, Scene, await_result

SERVER_PORT = '"Server port" = dword 4711'
STORED = f"{KEY}\n{SERVER_PORT}\n"
BESIDE = ["registry", "registry.lock"]
KILLS = 30
KILL_STEP = 0.001  # seconds; on a fast machine the window is there after twenty of them
COPIES = 5
# In the window, while it has no page.
PORT_BOX = (25, 33)
ABOUT = (350, 10)


class Storage(Scene):
    def names(self):
        return sorted(path.name for path in self.settings.parent.iterdir())

    def assert_whole(self):
        text = self.settings.read_text(encoding="utf-8")
        self.assertTrue(text.endswith("\n"), text)
        names = [line.split(" = ")[0] for line in text.splitlines() if " = " in line]
        self.assertEqual(sorted(names), sorted(set(names)))
        self.assertIn('"Server port" = dword 4003\n', text)
        self.assertIn('"Window - Size - Horizontal" = dword', text)
        self.assertEqual(self.names(), BESIDE)


class SettingsTest(Storage):
    def test_settings_survive_a_disk_without_room(self):
        def without_room():
            # A limit on the size of files refuses a write like a full disk, and needs no disk.
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))
        self.store(SERVER_PORT)
        program = self.start(PROGRAM, preexec_fn=without_room)
        self.close()
        self.assert_ends(program)
        self.assertEqual(self.settings.read_text(encoding="utf-8"), STORED)
        self.assertEqual(self.names(), BESIDE)

    def test_settings_survive_a_full_file_system(self):
        if subprocess.run(["unshare", "-rm", "true"], check=False, capture_output=True).returncode != 0:
            self.skipTest("this machine lets nobody make a file system of his own")
        self.store(SERVER_PORT)
        room = self.home / "room"
        room.mkdir()
        script = (f'mount -t tmpfs -o size=16k none "{room}" && cp -r "{self.settings.parent}" "{room}/" && '
                  f'{{ cat /dev/zero >"{room}/rest" 2>/dev/null; XDG_CONFIG_HOME="{room}" "$0"; code=$?; '
                  f'cat "{room}/skyreckoning/registry" >"{self.home}/left"; exit $code; }}')
        program = self.start("unshare", "-rm", "sh", "-c", script, PROGRAM)
        self.close()
        self.assert_ends(program)
        self.assertEqual((self.home / "left").read_text(encoding="utf-8"), STORED)

    def test_runs_without_a_place_for_settings(self):
        # A file where the folder should be: nobody, not even root, can write below it.
        self.settings.parent.write_text("in the way", encoding="ascii")
        program = self.start(PROGRAM)
        self.close()
        self.assert_ends(program)
        self.assertEqual(self.settings.parent.read_text(encoding="ascii"), "in the way")

    def test_starts_with_settings_that_are_no_settings(self):
        for content in (b"", b"[", f'{KEY}\n"Server port" = dword 99999999999\n'.encode("ascii"), b"\0\xFF" * 1000):
            with self.subTest(content=content[:20]):
                self.store()
                self.settings.write_bytes(content)
                program = self.start(PROGRAM)
                self.close()
                self.assert_ends(program)
                self.assertIn('"Server port" = dword ', self.settings.read_bytes().decode("latin-1"))

    def test_copies_that_start_and_end_together_leave_whole_settings(self):
        for _ in range(3):
            programs = [self.start(PROGRAM) for _ in range(3)]
            self.close(len(programs))
            for program in programs:
                self.assert_ends(program)
            self.assert_whole()


class DisplayTest(Storage):
    def open_display(self):
        """A display that only this test knows."""
        ends = os.pipe()
        display = subprocess.Popen(["Xvfb", "-displayfd", str(ends[1]), "-screen", "0", "1280x1024x24", "-noreset",
                                    "-nolisten", "tcp"], pass_fds=ends[1:], stderr=subprocess.DEVNULL)
        self.addCleanup(display.wait)
        self.addCleanup(display.kill)
        os.close(ends[1])
        with os.fdopen(ends[0]) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()
        return display

    def all_windows(self):
        return self.xdotool("search", "--onlyvisible", "--name", ".*").split()

    def test_ends_in_order_when_its_display_is_gone(self):
        display = self.open_display()
        self.simulate("--model", "zed-f9r", "--port", "usb", "--rate", "5")
        program = self.open_port(SERVER_PORT)
        self.assert_page_lives()
        display.kill()
        self.assertEqual(self.assert_ends(program),
                         "Skyreckoning: The display is gone; the settings were saved where they could be.\n")
        text = self.settings.read_text(encoding="utf-8")
        self.assertIn(SERVER_PORT, text)
        # Only an end in order stores where the window stood.
        self.assertIn('"Window - Size - Horizontal" = dword', text)

    def test_ends_in_order_with_a_list_or_a_dialog_open(self):
        for name, place in (("list", PORT_BOX), ("dialog", ABOUT)):
            with self.subTest(name):
                display = self.open_display()
                program = self.start(PROGRAM)
                window = await_result(self.windows)[0]
                settled_size(window, self.environment)
                closed = len(self.all_windows())
                self.xdotool("mousemove", "--window", window, *place, "sleep", 0.2, "click", 1)
                self.assertTrue(await_result(lambda: len(self.all_windows()) > closed), "nothing opens")
                display.kill()
                self.assert_ends(program)

    def test_copies_that_end_at_the_same_moment_leave_whole_settings(self):
        for _ in range(3):
            display = self.open_display()
            programs = [self.start(PROGRAM) for _ in range(COPIES)]
            self.assertTrue(await_result(lambda: len(self.windows()) == COPIES), "a window is missing")
            display.kill()
            for program in programs:
                self.assert_ends(program)
            self.assert_whole()

    def test_outlives_a_write_that_nobody_reads(self):
        program = self.start(PROGRAM)
        self.assertIsNotNone(await_result(self.windows), "no window")
        # What the system sends with the first write to a display that is gone.
        program.send_signal(signal.SIGPIPE)
        self.close()
        self.assert_ends(program)

    def test_ends_in_order_wherever_it_stands_when_the_display_goes(self):
        for turn in range(KILLS):
            display = self.open_display()
            program = self.start(PROGRAM)
            time.sleep(turn * KILL_STEP)
            display.kill()
            display.wait()
            self.assertIn(program.wait(20), (0, 1), program.stderr.read())

    def test_says_so_without_a_display(self):
        self.environment.pop("DISPLAY", None)
        self.store(SERVER_PORT)
        told = self.assert_ends(self.start(PROGRAM), 1)
        self.assertTrue(told.endswith(
            "Skyreckoning: No window can be opened: there is no display, or it lets nobody in.\n"), told)
        self.assertIn(SERVER_PORT, self.settings.read_text(encoding="utf-8"))


if __name__ == "__main__":
    results.main()
