"""What users get: installed, started, used a little, closed and removed again, in the display that DISPLAY names:
tests/tools/package_test.py PACKAGE.deb
tests/tools/package_test.py ZIP tools/wine

The Debian package goes into a root of its own, so that the machine stays as it is. It wants a window manager in the
display, the Windows program none.
"""

import itertools
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile

import results
from settled import settled_size

PACKAGE, *WINE = (pathlib.Path(word).resolve() for word in sys.argv[1:])
del sys.argv[1:]

PATIENCE = 60
LARGEST_PROGRAM = 5_000_000
TITLE = "^Skyreckoning$"
CRASH_TITLE = "^Exception report written to file$"


def await_result(question):
    """Asks until there is an answer, which it gives."""
    limit = time.monotonic() + PATIENCE
    while time.monotonic() < limit:
        answer = question()
        if answer:
            return answer
        time.sleep(0.05)
    raise AssertionError("nothing came")


def xdotool(*words):
    return subprocess.run(["xdotool", *map(str, words)], check=False, capture_output=True, text=True).stdout


def window(title=TITLE):
    return await_result(lambda: xdotool("search", "--onlyvisible", "--name", title).split())[-1]


def close(program):
    """Presses until it has ended, and says so where one press was not enough: a manager may lose a key."""
    limit = time.monotonic() + PATIENCE
    for presses in itertools.count(1):
        xdotool("key", "alt+F4")
        try:
            status = program.wait(PATIENCE / 6)
        except subprocess.TimeoutExpired:
            if time.monotonic() > limit:
                raise
            continue
        if presses > 1:
            print(f"closed by press {presses}")
        return status


class DebianPackage(unittest.TestCase):
    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.home)
        self.root = self.home / "root"
        for folder in ("info", "updates", "triggers"):
            (self.root / "var/lib/dpkg" / folder).mkdir(parents=True)
        for file in ("status", "available"):
            (self.root / "var/lib/dpkg" / file).touch()

    def dpkg(self, *words):
        # The libraries that it needs are this machine's, and not known in that root.
        subprocess.run(["dpkg", f"--root={self.root}", "--force-depends", "--force-not-root", "--log=/dev/null", *words],
                       check=True, capture_output=True)

    def files(self):
        return sorted(str(path.relative_to(self.root)) for path in self.root.rglob("*")
                      if not path.is_dir() and "var/lib/dpkg" not in str(path))

    def test_installs_starts_opens_its_manual_and_goes_without_a_trace(self):
        self.dpkg("-i", PACKAGE)
        installed = self.files()
        for wanted in ("usr/bin/skyreckoning", "usr/bin/skyreckoning-console", "usr/share/man/man1/skyreckoning.1.gz",
                       "usr/share/applications/skyreckoning.desktop", "usr/share/doc/skyreckoning/help/index.html",
                       "usr/share/icons/hicolor/48x48/apps/skyreckoning.png"):
            self.assertIn(wanted, installed)
        self.start_and_use()
        subprocess.run([self.root / "usr/bin/skyreckoning-console", "--list"], check=True, capture_output=True)
        subprocess.run([self.root / "usr/bin/skysim", "--help"], check=True, capture_output=True)
        self.dpkg("-r", "skyreckoning")
        self.assertEqual(self.files(), [])

    def start_and_use(self):
        opened = self.home / "opened"
        opener = self.home / "bin/xdg-open"
        opener.parent.mkdir()
        opener.write_text(f'#!/bin/sh\nprintf %s "$1" >"{opened}.new"\nmv "{opened}.new" "{opened}"\n', encoding="ascii")
        opener.chmod(0o755)
        environment = {**os.environ, "XDG_CONFIG_HOME": str(self.home), "XDG_RUNTIME_DIR": str(self.home),
                       "PATH": f"{opener.parent}:{os.environ['PATH']}"}
        with subprocess.Popen([self.root / "usr/bin/skyreckoning"], env=environment) as program:
            try:
                shown = window()
                width, _ = settled_size(shown)
                # The button with the question mark stands at the right of the first row.
                xdotool("mousemove", "--window", shown, width - 13, 13)
                time.sleep(0.2)
                xdotool("click", 1)
                await_result(opened.exists)
                manual = pathlib.Path(opened.read_text(encoding="utf-8").removeprefix("file://"))
                self.assertEqual(manual.resolve(), (self.root / "usr/share/doc/skyreckoning/help/index.html").resolve())
                self.assertEqual(close(program), 0)
            finally:
                program.kill()
        self.assertIn('"Server port" = dword 4003', (self.home / "skyreckoning/registry").read_text(encoding="utf-8"))

    def test_a_crash_leaves_a_report_and_says_where_it_is(self):
        self.dpkg("-i", PACKAGE)
        documents = self.home / "My documents"
        documents.mkdir()
        (self.home / "user-dirs.dirs").write_text('XDG_DOCUMENTS_DIR="$HOME/My documents"\n', encoding="ascii")
        environment = {**os.environ, "HOME": str(self.home), "XDG_CONFIG_HOME": str(self.home),
                       "XDG_RUNTIME_DIR": str(self.home)}
        with subprocess.Popen([self.root / "usr/bin/skyreckoning"], env=environment, stderr=subprocess.PIPE,
                              text=True) as program:
            try:
                # The list of roles holds the mouse, and may not keep it from the message.
                shown = window()
                settled_size(shown)
                xdotool("mousemove", "--window", shown, 120, 13)
                xdotool("click", 1)
                time.sleep(0.5)
                program.send_signal(signal.SIGSEGV)
                shown = window(CRASH_TITLE)
                (report,) = documents.iterdir()
                self.assertIsNone(program.poll(), "it waits until the message is read")
                width, height = settled_size(shown)
                await_result(lambda: self.press(shown, width // 2, height - 16))
                self.assertEqual(program.wait(PATIENCE), -signal.SIGSEGV)
                self.assertIn(f"Exception report written to file: {report}\n", program.stderr.read())
            finally:
                program.kill()
        text = report.read_text(encoding="utf-8")
        self.assertRegex(report.name, r"^skyreckoning_\d{14}_000_ExceptInfo\.txt$")
        self.assertIn("Application version: ", text)
        self.assertRegex(text, r"(?s)Exception context:.*PumpOne.* main \+ .*Memory management:\r?\nReference address ")

    def press(self, shown, across, down):
        xdotool("mousemove", "--window", shown, across, down)
        xdotool("click", 1)
        time.sleep(0.2)
        return not xdotool("search", "--onlyvisible", "--name", CRASH_TITLE).split()

    def test_its_desktop_file_is_valid(self):
        self.dpkg("-i", PACKAGE)
        told = subprocess.run(["desktop-file-validate", self.root / "usr/share/applications/skyreckoning.desktop"],
                              check=False, capture_output=True, text=True)
        self.assertEqual((told.returncode, told.stdout), (0, ""))

    def test_names_the_libraries_that_it_needs(self):
        control = subprocess.run(["dpkg-deb", "-f", PACKAGE, "Depends", "Version"], check=True, capture_output=True,
                                 text=True).stdout
        for library in ("libc6", "libcairo2", "libpango-1.0-0", "libxcb1", "fonts-open-sans"):
            self.assertIn(library, control)


class WindowsZip(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        with zipfile.ZipFile(PACKAGE) as archive:
            archive.extractall(self.folder)
        self.unpacked = next(self.folder.iterdir())

    def test_holds_the_program_in_one_file_and_its_manual(self):
        names = {path.name for path in self.unpacked.iterdir()}
        self.assertTrue({"skyreckoning.exe", "Skyreckoning.chm", "skyreckoning-console.exe", "LICENSE"} <= names, names)
        self.assertFalse([name for name in names if name.lower().endswith(".dll")])
        self.assertLess((self.unpacked / "skyreckoning.exe").stat().st_size, LARGEST_PROGRAM)
        pages = subprocess.run(["chmls", "list", self.unpacked / "Skyreckoning.chm"], check=True, capture_output=True,
                               text=True).stdout
        self.assertIn("/index.html", pages)

    def test_can_name_its_functions_in_a_report(self):
        exported = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", self.unpacked / "skyreckoning.exe"], check=True,
                                  capture_output=True, text=True).stdout
        for name in ("_Z10crashBreakv", "_ZN10ctrlWindow5PaintEv"):
            self.assertRegex(exported, rf"\] {name}\n")

    def test_starts_and_closes(self):
        with subprocess.Popen([*WINE, self.unpacked / "skyreckoning.exe"]) as program:
            try:
                shown = window()
                width, height = settled_size(shown)
                self.assertGreater(width, 330)
                self.assertGreater(height, 50)
                time.sleep(1)
                xdotool("windowfocus", shown)
                self.assertEqual(close(program), 0)
            finally:
                program.kill()


# Each has its own display.
if WINE:
    del DebianPackage
else:
    del WindowsZip

if __name__ == "__main__":
    results.main()
