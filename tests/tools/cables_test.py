"""The programs when cables, receivers, servers and networks fail, in the display that DISPLAY names:
tests/tools/cables_test.py FOLDER

FOLDER holds the programs as they are built.
"""

import os
import pathlib
import pty
import select
import signal
import socket
import struct
import subprocess
import termios
import threading
import time
import tty

import frames
import results
from surroundings import PATIENCE, STILL_SECONDS, Scene, await_result, resident_kib

FAST = ("--model", "zed-f9r", "--port", "usb", "--rate", "5")
MIB_AT_MOST = 40  # resident, of a server: six is usual
RESET_FROM_LEFT = 25
RESET_FROM_BOTTOM = 18
CONNECT_FROM_RIGHT = 30
CONNECT_FROM_TOP = 35
CUT_SECONDS = 10

# In what tcgetattr() gives.
CONTROL, IN_SPEED, OUT_SPEED = 2, 4, 5


def speed_of_line(baud):
    """CFG-PRT of the first line: 8 bits, no parity, all protocols."""
    body = struct.pack("<BBHIIHHHH", 1, 0, 0, 0x8D0, baud, 7, 3, 0, 0)
    return frames.ubx(0x06, 0x00, body)


class Cable:
    """A virtual port that stays open in the program while the receiver at its other end is exchanged. Those
    stand at 38400N1."""

    def __init__(self, home, name):
        self.ports = home / "skyreckoning"
        self.near, self.held = pty.openpty()
        tty.setraw(self.held)
        (self.ports / name).symlink_to(os.ttyname(self.held))
        self.far = None
        self.thread = None

    def plug(self, name):
        self.unplug()
        self.far = os.open(self.ports / name, os.O_RDWR | os.O_NOCTTY)
        line = termios.tcgetattr(self.far)
        line[CONTROL] = termios.CS8 | termios.CREAD | termios.CLOCAL
        line[IN_SPEED] = line[OUT_SPEED] = termios.B38400
        termios.tcsetattr(self.far, termios.TCSANOW, line)
        self.thread = threading.Thread(target=self.carry, args=(self.far,))
        self.thread.start()

    def unplug(self):
        far, self.far = self.far, None
        if self.thread:
            self.thread.join()
            os.close(far)
        self.thread = None

    def carry(self, far):
        while self.far == far:
            for source in select.select([self.near, far], [], [], 0.1)[0]:
                os.write(far if source == self.near else self.near, os.read(source, 4096))


class ReceiverTest(Scene):
    def press_reset(self):
        """The button in the page's lower left corner."""
        _, height = self.size()
        self.click(RESET_FROM_LEFT, height - RESET_FROM_BOTTOM)

    def test_a_receiver_that_was_unplugged_is_found_again_by_reset(self):
        simulator = self.simulate(*FAST)
        program = self.open_port()
        self.assert_page_lives()
        self.say(simulator, "unplug")
        self.assert_page_stands_still()
        self.say(simulator, "plug")
        self.assert_page_stands_still()
        stood = self.picture()
        self.press_reset()
        self.assertTrue(await_result(lambda: self.picture() != stood))
        self.assert_page_lives()
        self.close()
        self.assert_ends(program)

    def test_another_receiver_on_the_same_cable_is_found_by_reset(self):
        self.simulate(*FAST)
        self.simulate("--model", "acutime", "--line", "38400N1", pty="ttyB")
        cable = Cable(self.home, "ttyC")
        self.addCleanup(cable.unplug)
        cable.plug("ttyA")
        program = self.open_port(pty="ttyC")
        self.assert_page_lives()
        first = self.size()
        cable.plug("ttyB")
        self.assert_page_stands_still()
        self.press_reset()
        self.assert_no_page()
        self.assert_page_lives()
        self.assertNotEqual(self.size(), first)
        self.close()
        self.assert_ends(program)

    def test_a_receiver_that_falls_silent_goes_on_where_it_was(self):
        simulator = self.simulate(*FAST)
        program = self.open_port()
        self.assert_page_lives()
        self.say(simulator, "silence on")
        self.assert_page_stands_still()
        self.say(simulator, "silence off")
        self.say(simulator, "nak on")
        self.assert_page_lives()
        self.close()
        self.assert_ends(program)

    def test_a_receiver_that_refuses_all_is_shown_without_values(self):
        self.simulate(*FAST, "--nak")
        program = self.open_port()
        self.assert_page()
        self.assert_page_stands_still()
        self.close()
        self.assert_ends(program)

    def test_a_receiver_that_changes_its_speed_is_found_at_the_next_search(self):
        self.simulate("--model", "m8", "--line", "9600N1")
        server, port = self.serve()
        with socket.create_connection(("127.0.0.1", port)) as other:
            other.sendall(frames.stream(speed_of_line(4800)))
            lines = self.home / "served"
            # After a quarter of a minute of silence, and then as at the start.
            self.assertTrue(await_result(lambda: self.statuses(lines)[-1].startswith("Waiting for")))
            count = self.groups(lines)
            self.assertTrue(await_result(lambda: self.groups(lines) > count))
        server.terminate()
        self.assert_ends(server)


class ServerTest(Scene):
    def follow(self):
        """A server, its port, and the program that shows what it serves."""
        self.simulate(*FAST)
        server, port = self.serve()
        program = self.open_client(f"127.0.0.1:{port}")
        self.assert_page_lives()
        return server, port, program

    def stop(self, process):
        process.send_signal(signal.SIGSTOP)
        self.addCleanup(process.send_signal, signal.SIGCONT)

    def test_a_client_follows_a_server_that_is_killed_and_comes_back(self):
        server, port, program = self.follow()
        server.kill()
        server.wait()
        self.assert_no_page()
        self.serve(port)
        self.assert_page_lives()
        self.close()
        self.assert_ends(program)

    def test_a_server_that_was_stopped_goes_on_with_all_its_clients(self):
        server, port, program = self.follow()
        self.stop(server)
        with socket.create_connection(("127.0.0.1", port)) as pushing:
            pushing.setblocking(False)
            piece = frames.stream(b"\0" * 60_000)
            pushed = 0
            while pushed < 64_000_000:
                try:
                    pushed += pushing.send(piece)
                except BlockingIOError:
                    break
            self.assert_page_stands_still()
            server.send_signal(signal.SIGCONT)
            self.assert_page_lives()
        self.assertLess(resident_kib(server) / 1024, MIB_AT_MOST)
        self.close()
        self.assert_ends(program)
        server.terminate()
        self.assert_ends(server)

    def test_a_server_that_hangs_is_let_go_of(self):
        server, _, program = self.follow()
        self.stop(server)
        self.assert_page_stands_still()
        width, _ = self.size()
        self.click(width - CONNECT_FROM_RIGHT, CONNECT_FROM_TOP)
        self.assert_no_page()
        self.close()
        self.assert_ends(program)

    def test_a_client_that_says_more_than_the_line_carries_fills_no_memory(self):
        self.simulate("--model", "nmea", "--line", "4800N1")
        server, port = self.serve()
        piece = frames.stream(b"\0" * 1_000_000)
        with socket.create_connection(("127.0.0.1", port), PATIENCE) as pushing:
            for _ in range(2 * MIB_AT_MOST):
                pushing.sendall(piece)
            self.assertLess(resident_kib(server) / 1024, MIB_AT_MOST)
        server.terminate()
        self.assert_ends(server)

    @staticmethod
    def unsent(port, peer):
        """Bytes that the system holds for the peer of a server because that does not read."""
        ends = f"0100007F:{port:04X} 0100007F:{peer.getsockname()[1]:04X}"
        for line in pathlib.Path("/proc/net/tcp").read_text(encoding="ascii").splitlines():
            if ends in line:
                return int(line.split()[4].split(":")[0], 16)
        return 0

    def test_a_client_that_reads_nothing_keeps_nobody_waiting(self):
        self.simulate(*FAST, "--speed", "20")
        server, port = self.serve()
        program = self.open_client(f"127.0.0.1:{port}")
        self.assert_page_lives()
        with socket.socket() as deaf:
            deaf.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1)  # the least that there is
            deaf.connect(("127.0.0.1", port))

            def is_full():
                before = self.unsent(port, deaf)
                time.sleep(STILL_SECONDS)
                return self.unsent(port, deaf) == before != 0
            self.assertTrue(await_result(is_full), "it still takes more")
            self.assert_page_lives()
        self.close()
        self.assert_ends(program)
        server.terminate()
        self.assert_ends(server)

    def test_a_client_that_is_stopped_keeps_nobody_waiting(self):
        self.simulate(*FAST)
        server, port = self.serve()
        stopped, lines = self.console("stopped", "--host", f"127.0.0.1:{port}")
        self.assertTrue(await_result(lambda: self.groups(lines)))
        self.stop(stopped)
        program = self.open_client(f"127.0.0.1:{port}")
        self.assert_page_lives()
        count = self.groups(lines)
        stopped.send_signal(signal.SIGCONT)
        self.assertTrue(await_result(lambda: self.groups(lines) > count))
        self.assertEqual(self.statuses(lines).count("Connecting"), 1)
        self.close()
        self.assert_ends(program)
        for console in (stopped, server):
            console.terminate()
            self.assert_ends(console)


class NetworkTest(Scene):
    """Two hosts of the kernel's own, with a wire between them."""

    def setUp(self):
        super().setUp()
        made = subprocess.run(["unshare", "-rn", "ip", "link", "add", "near", "type", "veth", "peer", "name", "far"],
                              check=False, capture_output=True)
        if made.returncode != 0:
            self.skipTest("this machine lets nobody make a network of his own")
        self.hosts = []
        self.near = self.make_host("unshare", "-rn")
        self.far = self.make_host(*self.on(self.near), "unshare", "-n")
        self.assertTrue(self.inside(self.near, "ip", "link", "add", "near", "type", "veth", "peer", "name", "far", "netns",
                                    self.far.pid))
        for host, name, address in ((self.near, "near", "10.9.0.1/24"), (self.far, "far", "10.9.0.2/24")):
            self.assertTrue(self.inside(host, "ip", "address", "add", address, "dev", name))
            self.assertTrue(self.inside(host, "ip", "link", "set", name, "up"))

    def make_host(self, *command):
        def network(pid):
            return os.readlink(f"/proc/{pid}/ns/net")
        others = [network("self"), *(network(host.pid) for host in self.hosts)]
        host = self.start(*command, "sleep", "3600")
        self.assertTrue(await_result(lambda: network(host.pid) not in others))
        self.hosts.append(host)
        return host

    @staticmethod
    def on(host):
        return ["nsenter", "-t", str(host.pid), "-U", "-n", "--preserve-credentials"]

    def inside(self, host, *command):
        return subprocess.run([*self.on(host), *map(str, command)], check=False, capture_output=True).returncode == 0

    def test_a_short_cut_of_the_network_is_a_pause(self):
        self.simulate(*FAST)
        server, port = self.serve(before=self.on(self.far))
        program = self.open_client(f"10.9.0.2:{port}", *self.on(self.near))
        self.assert_page_lives()
        self.assertTrue(self.inside(self.far, "ip", "link", "set", "far", "down"))
        self.assert_page_stands_still()
        time.sleep(CUT_SECONDS - STILL_SECONDS)
        self.assertTrue(self.has_page(), "it has given up")
        self.assertTrue(self.inside(self.far, "ip", "link", "set", "far", "up"))
        self.assert_page_lives()
        self.close()
        self.assert_ends(program)
        server.terminate()
        self.assert_ends(server)


if __name__ == "__main__":
    results.main()
