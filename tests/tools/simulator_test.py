"""skysim plays receivers on a virtual port and behind a server: tests/tools/simulator_test.py PROGRAM"""

import os
import pathlib
import re
import select
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

import frames
import results

PROGRAM = os.path.abspath(sys.argv.pop(1))
LIMIT = 10  # seconds, for anything that should happen soon

POLL_VERSION = frames.ubx(0x0A, 0x04)


def until(what):
    """Waits until what() is true, and gives it."""
    limit = time.monotonic() + LIMIT
    while not (result := what()):
        if time.monotonic() > limit:
            raise AssertionError("it did not happen in time")
        time.sleep(0.01)
    return result


class Simulator:
    def __init__(self, test, *arguments, stdin=subprocess.PIPE):
        self.runtime = pathlib.Path(tempfile.mkdtemp())
        test.addCleanup(shutil.rmtree, self.runtime)
        self.process = subprocess.Popen([PROGRAM, *arguments], stdin=stdin, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True,
                                        env={**os.environ, "XDG_RUNTIME_DIR": str(self.runtime)})
        test.addCleanup(self.end)

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.communicate()

    def ready(self):
        return self.process.stdout.readline().rstrip("\n")

    def say(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def stop(self, number=signal.SIGTERM):
        self.process.send_signal(number)
        return self.process.wait(LIMIT)

    def link(self, name):
        return self.runtime / "skyreckoning" / name


class Port:
    """A host's end of a virtual port, raw and with a setting of its own."""

    def __init__(self, test, path, baud, odd=False):
        self.file = os.open(path, os.O_RDWR | os.O_NOCTTY | os.O_NONBLOCK)
        test.addCleanup(self.close)
        flags = termios.CS8 | termios.CREAD | termios.CLOCAL
        if odd:
            flags |= termios.PARENB | termios.PARODD
        setting = termios.tcgetattr(self.file)
        setting[0:4] = [0, 0, flags, 0]
        setting[4] = setting[5] = baud
        termios.tcsetattr(self.file, termios.TCSANOW, setting)
        termios.tcflush(self.file, termios.TCIFLUSH)

    def close(self):
        if self.file is not None:
            os.close(self.file)
            self.file = None

    def write(self, data):
        os.write(self.file, data)

    def read(self, seconds):
        data, end = b"", time.monotonic() + seconds
        while (left := end - time.monotonic()) > 0:
            if select.select([self.file], [], [], left)[0]:
                data += os.read(self.file, 65536)
        return data

    def read_until(self, what):
        data = b""

        def look():
            nonlocal data
            data += self.read(0.05)
            return what in data

        until(look)
        return data


class Client:
    """A client of the server copy."""

    def __init__(self, test, port):
        self.socket = socket.create_connection(("127.0.0.1", port), LIMIT)
        test.addCleanup(self.socket.close)

    def receive(self, count):
        data = b""
        while len(data) < count:
            more = self.socket.recv(count - len(data))
            if not more:
                raise EOFError
            data += more
        return data

    def message(self):
        key, length = struct.unpack("<4sI", self.receive(8))
        return key, self.receive(length)

    def send(self, key, body):
        self.socket.sendall(frames.message(key, body))

    def stream(self):
        """The bytes of the next message of the receiver's stream."""
        while True:
            key, body = self.message()
            if key == b"GNSS":
                assert body[:4] == b"STRM"
                return body[4:]

    def stream_until(self, what):
        data = b""
        limit = time.monotonic() + LIMIT
        while what not in data:
            assert time.monotonic() < limit, data
            data += self.stream()
        return data


class CommandLineTest(unittest.TestCase):
    def run_with(self, *arguments, **variables):
        return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, timeout=LIMIT, check=False,
                              stdin=subprocess.DEVNULL, env={**os.environ, **variables})

    def expect_error(self, run, words):
        self.assertEqual((run.returncode, run.stdout), (2, ""))
        self.assertEqual(run.stderr.count("\n"), 1, run.stderr)
        self.assertIn(words, run.stderr)

    def test_help_tells_every_model(self):
        run = self.run_with("--help")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        for name in ("ublox7", "neo-f10n", "acutime", "lassen", "resolution", "nmea", "nvs", "replay"):
            self.assertIn(name, run.stdout)

    def test_wrong_use_is_one_line_and_exit_2(self):
        self.expect_error(self.run_with(), "--pty")
        self.expect_error(self.run_with("--model", "abacus", "--serve", "0"), "abacus")
        self.expect_error(self.run_with("replay", "/no/such/file", "--serve", "0"), "/no/such/file")

    def test_a_port_needs_a_place(self):
        self.expect_error(self.run_with("--pty", "ttySKY0", XDG_RUNTIME_DIR=""), "XDG_RUNTIME_DIR")

    def test_a_port_in_use_is_refused(self):
        with socket.create_server(("127.0.0.1", 0)) as taken:
            self.expect_error(self.run_with("--serve", str(taken.getsockname()[1])), "in use")

    def test_a_name_belongs_to_one(self):
        first = Simulator(self, "--pty", "ttySKY0")
        self.assertEqual(first.ready(), "ready ttySKY0 38400N1")
        self.expect_error(self.run_with("--pty", "ttySKY0", XDG_RUNTIME_DIR=str(first.runtime)), "ttySKY0")


class PortTest(unittest.TestCase):
    def start(self, *arguments):
        simulator = Simulator(self, "--pty", "ttySKY0", *arguments)
        self.assertRegex(simulator.ready(), r"^ready ttySKY0 \d+[NOE][12]$")
        return simulator

    def open(self, simulator, baud, odd=False):
        return Port(self, simulator.link("ttySKY0"), baud, odd)

    def test_a_receiver_answers_at_its_line(self):
        simulator = self.start("--model", "m8", "--line", "9600N1")
        port = self.open(simulator, termios.B9600)
        port.write(POLL_VERSION)
        self.assertIn(b"NEO-M8T-0", port.read_until(b"SBAS;IMES;QZSS"))

    def test_at_another_line_there_is_garbage_both_ways(self):
        simulator = self.start("--model", "nmea", "--line", "9600N1")
        port = self.open(simulator, termios.B19200)
        heard = port.read(2.5)
        self.assertGreater(len(heard), 100)
        self.assertNotIn(b"RMC", heard)
        port.close()
        simulator = self.start("--model", "m8", "--line", "9600N1")
        port = self.open(simulator, termios.B4800)
        port.write(POLL_VERSION)
        self.assertEqual(port.read(0.5), b"")
        port.close()
        port = self.open(simulator, termios.B9600)
        port.write(POLL_VERSION)
        port.read_until(b"NEO-M8T-0")

    def test_odd_parity_is_told_from_none(self):
        simulator = self.start("--model", "resolution")
        port = self.open(simulator, termios.B9600, odd=True)
        port.write(b"\x10\x1F\x10\x03")
        port.read_until(b"\x10\x45")
        port.close()
        port = self.open(simulator, termios.B9600)
        port.write(b"\x10\x1F\x10\x03" * 3)
        self.assertNotIn(b"\x10\x45", port.read(1.5))

    def test_bytes_take_their_time(self):
        simulator = self.start("--model", "m8", "--line", "4800N1")
        port = self.open(simulator, termios.B4800)
        for _ in range(10):
            port.write(POLL_VERSION)
        heard = port.read(2)
        self.assertGreater(len(heard), 480 * 2 * 0.7)
        self.assertLess(len(heard), 480 * 2 * 1.15)

    def test_usb_has_no_line(self):
        simulator = self.start("--model", "m9", "--port", "usb")
        port = self.open(simulator, termios.B4800)
        for _ in range(5):
            port.write(POLL_VERSION)
        until(lambda: port.read(0.2).count(b"ZED-F9P") == 5)

    def test_the_line_moves_when_the_receiver_is_told(self):
        simulator = self.start("--model", "m9", "--line", "9600N1")
        # CFG-UART1-BAUDRATE 230400
        command = frames.ubx(0x06, 0x8A, bytes([0, 1, 0, 0]) + struct.pack("<II", 0x40520001, 230400))
        port = self.open(simulator, termios.B9600)
        port.write(command)
        time.sleep(0.3)
        port.close()
        port = self.open(simulator, termios.B230400)
        port.write(POLL_VERSION)
        port.read_until(b"ZED-F9P")

    def test_hosts_come_and_go(self):
        simulator = self.start("--model", "m8")
        for _ in range(5):
            port = self.open(simulator, termios.B9600)
            port.write(POLL_VERSION)
            port.read_until(b"NEO-M8T-0")
            port.close()

    def test_it_is_unplugged_and_plugged_in_again(self):
        simulator = self.start("--model", "nmea")
        port = self.open(simulator, termios.B9600)
        port.read_until(b"RMC")
        simulator.say("unplug")
        until(lambda: not simulator.link("ttySKY0").is_symlink())
        with self.assertRaises(OSError):
            until(lambda: port.write(b"x"))
        port.close()
        simulator.say("plug")
        until(lambda: simulator.link("ttySKY0").exists())
        self.open(simulator, termios.B9600).read_until(b"RMC")

    def test_faults_come_by_standard_input(self):
        simulator = self.start("--model", "m8")
        port = self.open(simulator, termios.B9600)
        simulator.say("lose 1")
        simulator.say("shout on")
        self.assertIn("shout", simulator.process.stderr.readline())
        port.write(POLL_VERSION)
        self.assertEqual(port.read(0.5), b"")
        port.write(POLL_VERSION)
        port.read_until(b"NEO-M8T-0")

    def test_the_end_of_standard_input_is_no_stop(self):
        simulator = Simulator(self, "--pty", "ttySKY0", "--model", "m8", stdin=subprocess.DEVNULL)
        simulator.ready()
        port = self.open(simulator, termios.B9600)
        time.sleep(0.3)
        port.write(POLL_VERSION)
        port.read_until(b"NEO-M8T-0")

    def test_it_stops_cleanly(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            simulator = self.start()
            self.assertEqual(simulator.stop(number), 0)
            self.assertFalse(simulator.link("ttySKY0").is_symlink())

    def test_what_was_left_behind_is_replaced(self):
        simulator = self.start()
        simulator.process.kill()
        simulator.process.wait(LIMIT)
        self.assertTrue(simulator.link("ttySKY0").is_symlink())
        again = subprocess.Popen([PROGRAM, "--pty", "ttySKY0"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                 text=True, env={**os.environ, "XDG_RUNTIME_DIR": str(simulator.runtime)})
        self.addCleanup(again.communicate)
        self.addCleanup(again.kill)
        self.assertEqual(again.stdout.readline(), "ready ttySKY0 38400N1\n")


class ServerTest(unittest.TestCase):
    def start(self, *arguments):
        simulator = Simulator(self, *arguments, "--serve", "0")
        line = simulator.ready()
        self.assertRegex(line, r"^ready tcp \d+$")
        return simulator, int(line.split()[-1])

    def test_clients_are_greeted(self):
        _, port = self.start()
        self.assertEqual(Client(self, port).message(), (frames.HANDSHAKE, frames.GREETING))

    def test_the_receiver_is_heard_and_told_by_all(self):
        _, port = self.start("--model", "m9")
        clients = [Client(self, port) for _ in range(5)]
        for client in clients:
            client.message()
        clients[3].send(b"GNSS", b"STRM" + POLL_VERSION)
        for client in clients:
            self.assertIn(b"PROTVER=32.01", client.stream_until(b"ZED-F9P"))

    def test_nothing_is_echoed_but_what_says_nothing(self):
        _, port = self.start()
        client = Client(self, port)
        client.message()
        client.send(b"WHAT", b"ever")
        client.send(b"GNSS", b"ELSE")
        client.send(b"NOOP", b"")
        client.send(b"NOOP", b"hello")
        self.assertEqual(client.message(), (b"NOOP", b""))
        self.assertEqual(client.message(), (b"NOOP", b"hello"))

    def test_a_length_out_of_bounds_ends_the_connection_alone(self):
        _, port = self.start("--model", "nmea")
        other = Client(self, port)
        client = Client(self, port)
        client.message()
        client.socket.sendall(b"GNSS" + struct.pack("<I", (16 << 20) + 1))
        with self.assertRaises((EOFError, ConnectionError)):
            while True:
                client.message()
        other.message()
        other.stream_until(b"RMC")

    def test_one_that_does_not_read_is_dropped(self):
        with tempfile.NamedTemporaryFile() as recording:
            recording.write(bytes(1 << 20))
            recording.flush()
            _, port = self.start("replay", recording.name, "--loop", "--rate", "10000000")
            lazy = Client(self, port)
            busy = Client(self, port)
            busy.message()
            enough, heard = 80 << 20, 0
            while heard < enough:
                heard += len(busy.stream())
            # What the system held for it still arrives, and then the end.
            left = 0
            with self.assertRaises((EOFError, ConnectionError)):
                while left < enough:
                    left += len(lazy.receive(1))
                    left += len(lazy.socket.recv(1 << 20))
            busy.stream()

    def test_both_ways_out_go_together(self):
        simulator = Simulator(self, "--model", "m8", "--serve", "0", "--pty", "ttySKY0")
        self.assertEqual(simulator.ready(), "ready ttySKY0 9600N1")
        port = int(simulator.ready().split()[-1])
        line = Port(self, simulator.link("ttySKY0"), termios.B9600)
        client = Client(self, port)
        client.message()
        line.write(POLL_VERSION)
        line.read_until(b"NEO-M8T-0")
        client.stream_until(b"NEO-M8T-0")

    def test_the_clock_is_that_of_the_machine_or_as_told(self):
        _, port = self.start("--model", "nmea")
        client = Client(self, port)
        client.message()
        said = client.stream_until(b"ZDA,")
        self.assertIn(time.strftime(",%d,%m,%Y,", time.gmtime()).encode(), said + client.stream_until(b"\n"))
        _, port = self.start("--model", "nmea", "--time", "2020-02-29T23:59:58")
        client = Client(self, port)
        client.message()
        client.stream_until(b"RMC,235959.00,A")
        client.stream_until(b",01,03,2020,")


    def test_six_hundred_solutions_a_second_leave_whole(self):
        # On a port, too, where nobody reads: what a line would have to carry is what makes a receiver leave messages out.
        simulator = Simulator(self, "--model", "m9", "--nmea", "--port", "usb", "--rate", "25", "--speed", "24",
                              "--time", "2020-02-29T12:00:00", "--pty", "ttySKY0", "--serve", "0")
        simulator.ready()
        client = Client(self, int(simulator.ready().split()[-1]))
        client.message()
        heard = []
        limit = time.monotonic() + LIMIT
        while len(heard) < 600:
            assert time.monotonic() < limit, len(heard)
            # $GNRMC,120003.48,A,...
            heard += re.findall(rb"GNRMC,12(\d\d)(\d\d)\.(\d\d)", client.stream())
        hundredths = [(int(minute) * 60 + int(second)) * 100 + int(part) for minute, second, part in heard]
        self.assertEqual({later - earlier for earlier, later in zip(hundredths, hundredths[1:])}, {4})

    def test_its_clock_may_go_faster(self):
        _, port = self.start("--model", "nmea", "--time", "2020-02-29T23:59:00", "--speed", "24")
        client = Client(self, port)
        client.message()
        client.stream_until(b"RMC,23590")
        begun = time.monotonic()
        # At the machine's pace it would take 48 s.
        client.stream_until(b"RMC,23595")
        self.assertGreater(time.monotonic() - begun, 40 / 24)


class ReplayTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.file = self.folder / "recorded"
        self.recorded = bytes(range(256)) * 8
        self.file.write_bytes(self.recorded)

    def test_a_recording_arrives_whole_and_in_time(self):
        # It starts unplugged, so that nothing is lost before there is somebody to listen.
        simulator = Simulator(self, "replay", str(self.file), "--rate", "4096", "--serve", "0", "--unplugged")
        port = int(simulator.ready().split()[-1])
        client = Client(self, port)
        client.message()
        simulator.say("plug")
        heard = client.stream()
        begun = time.monotonic()
        while len(heard) < len(self.recorded):
            heard += client.stream()
        self.assertEqual(heard, self.recorded)
        self.assertGreater(time.monotonic() - begun, 0.35)
        self.assertEqual(simulator.ready(), "ended")

    def test_a_recording_goes_round(self):
        simulator = Simulator(self, "replay", str(self.file), "--rate", "100000", "--loop", "--serve", "0")
        client = Client(self, int(simulator.ready().split()[-1]))
        client.message()
        heard = b""
        while len(heard) < 3 * len(self.recorded):
            heard += client.stream()
        start = heard.index(self.recorded)
        self.assertEqual(heard[start:start + 2 * len(self.recorded)], 2 * self.recorded)

    def test_a_recording_plays_on_a_port_at_its_line(self):
        simulator = Simulator(self, "replay", str(self.file), "--loop", "--line", "115200N1", "--pty", "ttySKY1")
        self.assertEqual(simulator.ready(), "ready ttySKY1 115200N1")
        port = Port(self, simulator.link("ttySKY1"), termios.B115200)
        port.read_until(self.recorded)


if __name__ == "__main__":
    results.main()
