"""Lets the program live through a day of its receiver, and tells whether anything rises:
tools/display --manager python3 -B bench/day.py FOLDER [--minutes 60] [--docs docs]

FOLDER is a build. A simulated u-blox on USB has 25 solutions in each of its seconds, and 24 of its seconds pass in one: in an
hour the program takes in a whole day. Its own clock goes as fast, in all threads but the one that paints. Ten clients are at
its server all the time, two more come and go.

What it costs comes from /proc. How late the screen is comes from the screen: the time that it shows is read off its pixels
and compared with what a client has. All of it goes to day.csv, day.svg and day.md in the folder given by --docs. The exit
status is 1 when something rises, when clients did not get the same bytes, or when the program did not last.
"""

import argparse
import datetime
import os
import pathlib
import random
import signal
import socket
import statistics
import subprocess
import sys
import tempfile
import time

import program_load
from soak import clients, page, screen, verdict

LIMIT = 60          # seconds, for anything that should happen soon
LEAP = 18           # GPS time less UTC
LOOKS = 5           # at the screen, in each sample
LOOK_PAUSE = 0.037  # no part of the pace at which the screen is painted
SAMPLES = 360       # in the whole time, if it is long enough
SETTLING = 10       # before the first sample: the tab has opened, all clients are there
LESSONS = 400       # at most, until all digits are known
EXAMS = 5           # pauses on end in which what is read must be what stands there


def until(what, limit=LIMIT):
    end = time.monotonic() + limit
    while not (result := what()):
        if time.monotonic() > end:
            raise RuntimeError(f"it did not happen in {limit} s")
        time.sleep(0.1)
    return result


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as taken:
        return taken.getsockname()[1]


def write_settings(home, port):
    settings = pathlib.Path(home) / "skyreckoning/registry"
    settings.parent.mkdir(mode=0o700)
    settings.write_text('[Software\\Vintermark\\Skyreckoning]\n"Connection" = text "Serial port"\n'
                        '"Serial port" = text "ttyDAY"\n"Server enabled" = dword 1\n'
                        f'"Server port" = dword {port}\n', encoding="ascii")
    settings.chmod(0o600)


def clock_of_program(folder, arguments):
    if arguments.own_clock == "none":
        return {}
    spared = {"SKY_CLOCK_SPARES_MAIN": "1"} if arguments.own_clock == "threads" else {}
    return {"LD_PRELOAD": str(folder / "bench/fastClock.so"), "SKY_CLOCK_SPEED": str(arguments.speed), **spared}


def window_shown():
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Skyreckoning"], capture_output=True, text=True,
                           check=False)
    return int(found.stdout.split()[0]) if found.stdout.split() else None


class Receiver:
    """The simulator."""

    def __init__(self, folder, environment, arguments):
        self.process = subprocess.Popen(
            [folder / "tools/skysim", "--model", "zed-f9r", "--port", "usb", "--rate", str(arguments.rate), "--speed",
             str(arguments.speed), "--position", program_load.PLACE, "--time",
             f"{datetime.date.today().isoformat()}T{screen.LESSONS_BEGIN}", "--pty", "ttyDAY"],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, env=environment)
        self.process.stdout.readline()

    def silence(self, word):
        self.process.stdin.write(f"silence {word}\n")
        self.process.stdin.flush()


class Watch:
    """Everything that is looked at, from outside."""

    def __init__(self, program, receiver, port, arguments):
        self.program = program
        self.receiver = receiver
        self.speed = arguments.speed
        self.promised = arguments.speed * arguments.rate  # solutions a second
        self.clock = screen.Clock(until(window_shown))
        self.first = until(lambda: self.connect(port))
        self.times = clients.Times(arguments.speed)
        self.first.heard.append(self.times.take)
        # All come in a pause, so that they hear the same.
        self.crowd = self.learn(lambda: clients.Crowd(port, self.first, arguments.clients, arguments.comers,
                                                      arguments.period))
        self.crowd.start()
        self.looked = self.unread = 0
        self.former = None

    @staticmethod
    def connect(port):
        try:
            return clients.Client(port)
        except OSError:
            return None

    def hear(self, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.first.take()
            time.sleep(0.001)

    def pause(self):
        """Silences the receiver until all that it said is on the screen; gives the time that stands there."""
        self.receiver.silence("on")
        former = None
        while former != (former := (self.times.newest, self.clock.picture())):
            self.hear(0.25)
        return self.times.newest - LEAP

    def learn(self, in_last_pause):
        until(lambda: self.hear(1) or self.times.newest)
        passed = 0
        for _ in range(LESSONS):
            stands = self.pause()
            passed = passed + 1 if self.clock.knows_all() and self.clock.reads(stands) else 0
            self.clock.learn(stands)
            crowd = in_last_pause() if passed == EXAMS else None
            if crowd:
                until(crowd.all_greeted)
            self.receiver.silence("off")
            if crowd:
                # Counted from here on, with those who came now.
                self.first.bytes = self.first.checksum = self.times.solutions = 0
                return crowd
            self.hear(random.uniform(0.1, 0.3))
        raise screen.Unreadable("the digits cannot be told apart")

    def look(self):
        """How far the screen is behind what a client has, and a client behind the receiver, in ms."""
        shown, (newest, moment) = self.clock.read(lambda: (self.times.newest, time.monotonic()))
        behind = (newest - LEAP - shown + screen.DAY / 2) % screen.DAY - screen.DAY / 2
        return [seconds / self.speed * 1000 for seconds in (behind, self.times.now(moment) - newest)]

    def looks(self):
        found = []
        for _ in range(LOOKS):
            self.looked += 1
            try:
                found.append(self.look())
            except screen.Unreadable:
                self.unread += 1
            time.sleep(LOOK_PAUSE)
        return found

    def sample(self):
        """Since the former one, where it is a rate."""
        now = program_load.sample(self.program.pid)
        now["solutions"], now["spectra"] = self.times.solutions, self.times.spectra
        before, self.former = self.former, now
        looks = self.looks()
        if before is None or not looks:
            return None
        ages, late = zip(*looks)
        seconds = now["time"] - before["time"]
        return {"seconds": 0, "resident": now["rss"] / 1024, "share": now["pss"] / 1024,
                "anonymous": program_load.kib(f"/proc/{self.program.pid}/status", "RssAnon") / 1024,
                "descriptors": now["descriptors"], "threads": now["threads"],
                "interface": (now["interface"] - before["interface"]) / seconds * 100,
                "program": (now["whole"] - before["whole"]) / seconds * 100,
                "age": statistics.median(ages), "worst": max(ages), "late": statistics.median(late),
                "solutions": (now["solutions"] - before["solutions"]) / seconds,
                "spectra": (now["spectra"] - before["spectra"]) / seconds}


def watch_for(watch, seconds):
    time.sleep(SETTLING)
    begun = time.monotonic()
    step = max(seconds / SAMPLES, 2)
    samples, number = [], 0
    watch.sample()
    while time.monotonic() - begun < seconds and watch.program.poll() is None:
        number += 1
        time.sleep(max(begun + number * step - time.monotonic(), 0))
        if (found := watch.sample()) is None:
            continue
        found["seconds"] = time.monotonic() - begun
        samples.append({name: round(value, 3) for name, value in found.items()})
        print(" ".join(f"{name} {value:g}" for name, value in samples[-1].items()), flush=True)
    return samples


def run(folder, arguments):
    with tempfile.TemporaryDirectory() as home:
        port = free_port()
        write_settings(home, port)
        environment = {**os.environ, "XDG_RUNTIME_DIR": home, "XDG_CONFIG_HOME": home}
        receiver = Receiver(folder, environment, arguments)
        program = subprocess.Popen([folder / "forms/skyreckoning"],
                                   env={**environment, **clock_of_program(folder, arguments)})
        try:
            watch = Watch(program, receiver, port, arguments)
            program_load.show_spectrum()
            samples = watch_for(watch, arguments.minutes * 60)
            lasted = program.poll() is None
            receiver.silence("on")
            watch.crowd.settle()
            watch.crowd.stop()
            return watch, samples, lasted
        finally:
            for process in (program, receiver.process):
                process.terminate()
                process.wait()


def main():
    # The display ends this with a signal, and what was started here must end as well.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--minutes", type=float, default=60)
    parser.add_argument("--docs", type=pathlib.Path, help="a folder for the numbers, the lines and the page")
    parser.add_argument("--note", default="", help="a sentence for the page, as on what machine this is")
    parser.add_argument("--speed", type=float, default=24, help="the receiver's seconds in one")
    parser.add_argument("--own-clock", choices=("threads", "all", "none"), default="threads",
                        help="whose clock goes as fast as the receiver's: that of all threads but the one that paints")
    # With these every digit of the time has its turn.
    parser.add_argument("--rate", type=int, choices=(10, 20, 25), default=25,
                        help="solutions in each of the receiver's seconds")
    parser.add_argument("--clients", type=int, default=10, help="that stay")
    parser.add_argument("--comers", type=int, default=2, help="that come and go")
    parser.add_argument("--period", type=float, default=3, help="seconds between a coming and a going")
    arguments = parser.parse_args()
    watch, samples, lasted = run(arguments.folder.resolve(), arguments)
    found = page.outcome(watch, samples, lasted)
    print("\n".join(found.lines))
    if arguments.docs:
        page.write(arguments.docs, arguments, samples, found)
    return 0 if found.good else 1


if __name__ == "__main__":
    sys.exit(main())
