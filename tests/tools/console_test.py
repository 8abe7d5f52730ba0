"""skyreckoning-console with simulated receivers behind it, over virtual serial ports and over TCP:
tests/tools/console_test.py FOLDER [all]

FOLDER holds the programs. With "all" every model is tried at every line setting, and the times are printed as a table.
"""

import concurrent.futures
import json
import os
import pathlib
import pty
import re
import resource
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import frames
import results

FOLDER = pathlib.Path(sys.argv.pop(1)).resolve()
EVERYTHING = "all" in sys.argv
if EVERYTHING:
    sys.argv.remove("all")
CONSOLE = FOLDER / "skyreckoning-console"
SIMULATOR = FOLDER / "skysim"
VERSION = re.search(r"project\(Skyreckoning VERSION ([0-9.]+)",
                    pathlib.Path(__file__).resolve().parents[2].joinpath("CMakeLists.txt").read_text(encoding="utf-8"))[1]

LINES = {
    "4800N1": "4800N1 8 bits",
    "9600O1": "9600O1 8 bits",
    "9600N1": "9600N1 8 bits",
    "19200N1": "19200N1 8 bits",
    "38400N1": "38400N1 8 bits",
    "115200N1": "115200N1 8 bits",
}

# Model of the simulator: its name on the screen, its protocol, and a line setting at which such a receiver stands.
MODELS = {
    "ublox7": ("u-blox 7", "ubx", "9600N1"),
    "m8": ("u-blox 8/M8", "ubx", "9600N1"),
    "m9": ("u-blox 9/M9", "ubx", "38400N1"),
    "neo-m9n": ("u-blox Neo-M9N", "ubx", "38400N1"),
    "zed-f9r": ("u-blox Zed-F9R", "ubx", "38400N1"),
    "m10": ("u-blox 10/M10", "ubx", "9600N1"),
    "max-m10s": ("u-blox Max-M10S", "ubx", "115200N1"),
    "neo-f10n": ("u-blox Neo-F10N", "ubx", "115200N1"),
    "acutime": ("Trimble® Acutime™ Gold", "tsip", "9600O1"),
    "lassen": ("Trimble® Lassen-SK8™", "tsip", "9600O1"),
    "resolution": ("Trimble® Resolution T®", "tsip", "9600O1"),
    "nmea": ("Generic NMEA", "nmea", "4800N1"),
    "nvs": ("NVS NV08C-CSM v5.1", "nmea", "115200N1"),
}

# From the moment at which the walk reaches the setting of the receiver; a network has no walk.
SECONDS_ON_A_LINE = 2.0
SECONDS_ON_A_NETWORK = 3.0
SECONDS_AT_MOST = 60


def environment(home):
    return {**os.environ, "XDG_RUNTIME_DIR": str(home), "TERM": "dumb"}


class Program:
    """A program whose lines are kept with the time at which they came."""

    def __init__(self, home, *command, **options):
        self.process = subprocess.Popen([str(word) for word in command], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                        stdin=subprocess.PIPE, text=True, encoding="utf-8", env=environment(home),
                                        **options)
        self.lines = []
        self.changed = threading.Condition()
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            with self.changed:
                self.lines.append((time.monotonic(), line.rstrip("\n")))
                self.changed.notify_all()

    def await_line(self, wanted, seconds=SECONDS_AT_MOST, start=0):
        """The first line from `start` on that `wanted` accepts, with its time and its place; None if none comes."""
        limit = time.monotonic() + seconds
        with self.changed:
            while True:
                for place in range(start, len(self.lines)):
                    if wanted(self.lines[place][1]):
                        return (*self.lines[place], place)
                start = len(self.lines)
                left = limit - time.monotonic()
                if left <= 0:
                    return None
                self.changed.wait(left)

    def say(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def stop(self, sign=signal.SIGTERM):
        """Ends it; its exit code and how long that took."""
        began = time.monotonic()
        if self.process.poll() is None:
            self.process.send_signal(sign)
        code = self.process.wait(SECONDS_AT_MOST)
        took = time.monotonic() - began
        errors = self.process.stderr.read()
        self.close()
        return code, took, errors

    def close(self):
        """Ends it if it still runs, and lets go of what it said."""
        self.process.kill()
        self.process.wait()
        self.reader.join(SECONDS_AT_MOST)
        for stream in (self.process.stdin, self.process.stdout, self.process.stderr):
            stream.close()


def status_of(line):
    return json.loads(line).get("status", "")


def data_of(line):
    return json.loads(line).get("receiver")


class Scene(unittest.TestCase):
    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)

    def start(self, *command, **options):
        program = Program(self.home, *command, **options)
        self.addCleanup(program.close)
        return program

    def simulate(self, *arguments):
        simulator = self.start(SIMULATOR, *arguments)
        ready = simulator.await_line(lambda line: line.startswith("ready"), 20)
        self.assertIsNotNone(ready, "the simulator does not start")
        return simulator, ready[1]

    def console(self, *arguments):
        return self.start(CONSOLE, *arguments, "--json")

    def end(self, *programs):
        for program in programs:
            code, took, errors = program.stop()
            self.assertEqual((code, errors), (0, ""))
            yield took


def recognise(scene, model, line, *options):
    """Seconds from the walk reaching the line setting to the model, and what the receiver then says."""
    port = "tty" + model.replace("-", "") + line
    simulator, _ = scene.simulate("--model", model, "--pty", port, "--line", line, *options)
    console = scene.console("--port", port)
    reached = console.await_line(lambda text: status_of(text) == f"Waiting for device reply ({LINES[line]})...")
    name, protocol, _ = MODELS[model]
    found = console.await_line(lambda text: status_of(text) == f"Model: {name}")
    data = found and console.await_line(
        lambda text: json.loads(text).get("protocol") == protocol and data_of(text)["ValidPosition"], start=found[2])
    statuses = [status_of(text) for _, text in console.lines if status_of(text)]
    list(scene.end(console, simulator))
    return (found[0] - reached[0] if found and reached else None), (json.loads(data[1]) if data else None), statuses


class RecognitionTest(Scene):
    def recognise_all(self, cases):
        # One after the other the walks would take minutes; all at once they would wait for each other.
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            return dict(zip(cases, pool.map(lambda case: recognise(self, *case), cases)))

    def check(self, cases):
        table = self.recognise_all(cases)
        for (model, line), (seconds, data, statuses) in table.items():
            with self.subTest(model=model, line=line):
                self.assertIsNotNone(seconds, statuses)
                self.assertLess(seconds, SECONDS_ON_A_LINE)
                self.assertIsNotNone(data, "no position came")
                self.assertAlmostEqual(data["receiver"]["Latitude"], 47.3769, places=3)
                self.assertAlmostEqual(data["receiver"]["Longitude"], 8.5417, places=3)
        return table

    def test_every_model_is_recognised_and_shows_its_position(self):
        self.check([(model, line) for model, (_, _, line) in MODELS.items()])

    @unittest.skipUnless(EVERYTHING, "minutes long: only with the word all")
    def test_every_model_is_recognised_at_every_line_setting(self):
        table = self.check([(model, line) for model in MODELS for line in LINES])
        print("\n" + "model".ljust(12) + "".join(line.rjust(10) for line in LINES))
        for model in MODELS:
            print(model.ljust(12) + "".join(f"{table[model, line][0] or -1:10.2f}" for line in LINES))

    def test_a_ublox_receiver_that_talks_nmea_is_caught_and_found_again(self):
        _, data, statuses = recognise(self, "m9", "9600N1", "--nmea")
        self.assertIsNotNone(data, statuses)
        # Whether NMEA or the answer to the version poll is heard first is chance; the end is the same.
        self.assertEqual(statuses[-1], "Model: u-blox 9/M9")


class NetworkTest(Scene):
    def serve(self, model, *options):
        simulator, ready = self.simulate("--model", model, "--serve", "0", *options)
        return simulator, int(ready.split()[-1])

    def test_every_model_is_recognised_over_the_network(self):
        for model, (name, _, _) in MODELS.items():
            with self.subTest(model=model):
                simulator, port = self.serve(model)
                console = self.console("--host", f"127.0.0.1:{port}")
                connected = console.await_line(lambda text: status_of(text) == "Waiting for device reply...")
                found = console.await_line(lambda text, name=name: status_of(text) == f"Model: {name}", 20)
                self.assertIsNotNone(found)
                self.assertLess(found[0] - connected[0], SECONDS_ON_A_NETWORK)
                list(self.end(console, simulator))

    def test_a_server_that_returns_is_found_again_within_two_and_a_half_seconds(self):
        simulator, port = self.serve("m9")
        console = self.console("--host", f"127.0.0.1:{port}")
        self.assertIsNotNone(console.await_line(lambda text: status_of(text).startswith("Model")))
        list(self.end(simulator))
        lost = console.await_line(lambda text: status_of(text) == "Connecting", start=1)
        self.assertIsNotNone(lost)
        simulator, _ = self.simulate("--model", "m9", "--serve", port)
        back = time.monotonic()
        found = console.await_line(lambda text: status_of(text) == "Waiting for device reply...", start=lost[2])
        self.assertIsNotNone(found)
        self.assertLess(found[0] - back, 3.9)
        list(self.end(console, simulator))

    def test_a_receiver_that_turns_out_to_be_a_ublox_is_sought_anew_with_its_own_decoder(self):
        answer = frames.ubx(0x0A, 0x04,
                            b"EXT".ljust(30, b"\0") + b"00080000\0\0" + b"PROTVER=18.00".ljust(30, b"\0"))
        sentence = frames.nmea("GPGLL,4723.0,N,00832.0,E,120000,A,A")
        with socket.create_server(("127.0.0.1", 0)) as server:
            console = self.console("--host", f"127.0.0.1:{server.getsockname()[1]}")
            peer, _ = server.accept()
            peer.sendall(frames.message(frames.HANDSHAKE, frames.GREETING))
            self.assertIsNotNone(console.await_line(lambda text: status_of(text) == "Waiting for device reply..."))
            limit = time.monotonic() + SECONDS_AT_MOST
            found = None
            while found is None and time.monotonic() < limit:
                peer.sendall(frames.stream(sentence))
                found = console.await_line(lambda text: status_of(text) == "Model: Generic NMEA", 0.2)
            self.assertIsNotNone(found)
            # The answer comes when the decoder that asked for it has gone; one may be lost on the way there. The
            # receiver goes on with its sentences, or nothing would be new.
            again = None
            while again is None and time.monotonic() < limit:
                peer.sendall(frames.stream(answer) + frames.stream(sentence))
                again = console.await_line(lambda text: status_of(text) == "Waiting for device reply...", 1, found[2])
            self.assertIsNotNone(again)
            model = None
            while model is None and time.monotonic() < limit:
                peer.sendall(frames.stream(answer))
                model = console.await_line(lambda text: status_of(text) == "Model: u-blox 8/M8", 0.3, again[2])
            self.assertIsNotNone(model)
            peer.close()
        list(self.end(console))

    def test_a_server_of_another_kind_is_refused(self):
        with socket.create_server(("127.0.0.1", 0)) as server:
            console = self.console("--host", f"127.0.0.1:{server.getsockname()[1]}")
            peer, _ = server.accept()
            peer.sendall(frames.message(frames.HANDSHAKE, b"Somebody Else v1"))
            self.assertEqual(console.process.wait(20), 1)
            self.assertIn("Unsupported server type!", console.stop()[2])
            peer.close()


class ServingTest(Scene):
    def test_two_clients_get_every_byte_and_both_reach_the_receiver(self):
        simulator, _ = self.simulate("--model", "m8", "--pty", "ttyA", "--line", "115200N1")
        server = self.console("--port", "ttyA", "--serve", "0")
        serving = server.await_line(lambda text: status_of(text).startswith("Serving on port "))
        port = int(status_of(serving[1]).split()[-1])
        self.assertIsNotNone(server.await_line(lambda text: status_of(text) == "Model: u-blox 8/M8"))
        clients = [self.console("--host", f"127.0.0.1:{port}") for _ in range(2)]
        for client in clients:
            # The version is asked by each client of its own: the answer proves that its command reached the receiver.
            self.assertIsNotNone(client.await_line(lambda text: status_of(text) == "Model: u-blox 8/M8", 20))
            self.assertIsNotNone(client.await_line(lambda text: data_of(text) and data_of(text)["Sats"], 20))
        for took in self.end(*clients, server, simulator):
            self.assertLess(took, 2)

    def test_a_server_that_can_accept_nobody_any_more_ends_with_a_word(self):
        self.simulate("--model", "nmea", "--pty", "ttyB", "--line", "4800N1")
        console = self.console("--port", "ttyB", "--serve", "0")
        serving = console.await_line(lambda text: status_of(text).startswith("Serving on port "))
        port = int(status_of(serving[1]).split()[-1])
        pid = console.process.pid
        used = max(map(int, os.listdir(f"/proc/{pid}/fd"))) + 1
        resource.prlimit(pid, resource.RLIMIT_NOFILE, (used, used))
        held = [socket.create_connection(("127.0.0.1", port)) for _ in range(4)]
        self.assertEqual(console.process.wait(20), 1)
        self.assertIn("The server for allowing remote control has ended!", console.stop()[2])
        for one in held:
            one.close()

    def test_a_port_that_is_taken_is_told(self):
        self.simulate("--model", "nmea", "--pty", "ttyB", "--line", "4800N1")
        with socket.create_server(("127.0.0.1", 0)) as other:
            console = self.console("--port", "ttyB", "--serve", str(other.getsockname()[1]))
            self.assertEqual(console.process.wait(20), 1)
            self.assertIn("Cannot start the server for allowing remote control!", console.stop()[2])


class MonitorTest(Scene):
    def test_a_receiver_that_is_unplugged_and_plugged_in_again_is_found_again(self):
        simulator, _ = self.simulate("--model", "nmea", "--pty", "ttyC", "--line", "4800N1")
        console = self.console("--port", "ttyC")
        first = console.await_line(lambda text: status_of(text) == "Model: Generic NMEA")
        self.assertIsNotNone(first)
        list(self.end(simulator))
        simulator, _ = self.simulate("--model", "nmea", "--pty", "ttyC", "--line", "4800N1")
        again = console.await_line(lambda text: status_of(text) == "Model: Generic NMEA", start=first[2] + 1)
        self.assertIsNotNone(again)
        list(self.end(console, simulator))

    def test_it_stops_at_once_in_every_state(self):
        simulator, _ = self.simulate("--model", "m9", "--pty", "ttyD", "--line", "4800N1")
        for wait in (0.05, 0.3, 1.0, 2.5, 4.0):
            console = self.console("--port", "ttyD")
            time.sleep(wait)
            code, took, errors = console.stop(signal.SIGINT)
            self.assertEqual((code, errors), (0, ""), wait)
            self.assertLess(took, 1.9, wait)
        list(self.end(simulator))

    def test_it_stops_at_once_while_a_host_does_not_answer(self):
        with socket.socket() as server:
            server.bind(("127.0.0.1", 0))
            server.listen(0)
            # Whoever comes when the queue is full gets no answer at all.
            waiting = [socket.socket() for _ in range(3)]
            for each in waiting:
                each.setblocking(False)
                each.connect_ex(server.getsockname())
            console = self.console("--host", f"127.0.0.1:{server.getsockname()[1]}")
            console.await_line(lambda text: status_of(text) == "Connecting", 5)
            time.sleep(0.3)
            code, took, _ = console.stop()
            self.assertEqual(code, 0)
            self.assertLess(took, 1.9)
            for each in waiting:
                each.close()

    def test_lines_of_text_are_for_people(self):
        self.simulate("--model", "m9", "--pty", "ttyE", "--line", "4800N1", "--time", "2026-03-04T05:06:07Z")
        console = self.start(CONSOLE, "--port", "ttyE")
        line = console.await_line(lambda text: text.startswith("2026-03-04 05:06:"))
        self.assertIsNotNone(line)
        self.assertRegex(line[1], r"^2026-03-04 05:06:\d\d\.\d\d   47\.37\d+ N    8\.54\d+ E +\d+\.\d\d m  HDOP \d\.\d\d  "
                                  r"\d+ of \d+ satellites$")
        list(self.end(console))

    def test_a_terminal_shows_a_table(self):
        self.simulate("--model", "m9", "--pty", "ttyF", "--line", "4800N1")
        master, slave = pty.openpty()
        environ = {**environment(self.home), "TERM": "xterm"}
        process = subprocess.Popen([CONSOLE, "--port", "ttyF"], stdout=slave, stdin=slave, stderr=slave, env=environ)
        os.close(slave)
        seen = b""
        limit = time.monotonic() + SECONDS_AT_MOST
        while b"GPS" not in seen and b"Elevation" not in seen and time.monotonic() < limit:
            seen += os.read(master, 65536)
        process.terminate()
        while True:
            try:
                more = os.read(master, 65536)
            except OSError:
                break
            seen += more
        os.close(master)
        self.assertEqual(process.wait(20), 0)
        for piece in (b"\x1b[?25l", b"Model: u-blox 9/M9", b"Position", b"Elevation", b"\x1b[?25h"):
            self.assertIn(piece, seen)
        self.assertTrue(seen.endswith(b"\x1b[?25h"), "the cursor is given back")

    def test_nobody_reading_ends_it(self):
        self.simulate("--model", "nmea", "--pty", "ttyG", "--line", "4800N1")
        console = subprocess.Popen([CONSOLE, "--port", "ttyG"], stdout=subprocess.PIPE, env=environment(self.home))
        console.stdout.readline()
        console.stdout.close()
        self.assertIsNotNone(console.wait(20))


class ArgumentsTest(Scene):
    def run_console(self, *arguments, **options):
        return subprocess.run([CONSOLE, *arguments], capture_output=True, text=True, timeout=30, check=False, **options)

    def test_what_makes_no_sense_is_one_line_and_exit_2(self):
        for arguments in ((), ("--port",), ("--port", ""), ("--host", ""), ("--host", "a:b"), ("--host", "a:0"),
                          ("--host", ":4003"), ("--host", "a:65536"), ("--port", "x", "--host", "y"),
                          ("--host", "a", "--serve", "1"), ("--port", "x", "--serve", "65536"),
                          ("--port", "x", "--serve", "-1"), ("--port", "x", "--serve"), ("--colour",), ("ttyUSB0",)):
            with self.subTest(arguments=arguments):
                run = self.run_console(*arguments)
                self.assertEqual((run.returncode, run.stdout), (2, ""))
                self.assertEqual(run.stderr.count("\n"), 1)

    def test_a_port_that_is_missing_is_named(self):
        run = self.run_console("--port", "ttyNone")
        self.assertEqual(run.returncode, 1)
        self.assertIn('"ttyNone" cannot be opened', run.stderr)

    def test_a_host_that_has_no_address_is_named(self):
        run = self.run_console("--host", "no-such-host.invalid")
        self.assertEqual(run.returncode, 1)
        self.assertIn('there is no host "no-such-host.invalid"', run.stderr)

    def test_help_and_version_are_no_errors(self):
        for argument, text in (("--help", "usage"), ("--version", f"skyreckoning-console {VERSION}\n")):
            run = self.run_console(argument)
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            self.assertIn(text, run.stdout)

    def test_virtual_ports_are_listed(self):
        self.simulate("--model", "nmea", "--pty", "ttyH", "--line", "4800N1")
        run = self.run_console("--list", env=environment(self.home))
        self.assertEqual(run.returncode, 0)
        self.assertIn("ttyH\t", run.stdout)


if __name__ == "__main__":
    results.main()
