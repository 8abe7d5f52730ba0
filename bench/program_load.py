"""Runs the program on a simulated receiver and tells what that costs, in a display of its own:
tools/display --manager python3 -B bench/program_load.py FOLDER [SECONDS [RATE]]

FOLDER is a build. The receiver is a u-blox on USB under a sky of 40 satellites with 66 signals; the tab of its spectrum
shows. Processor time comes from /proc: of the thread that owns the window, and of the whole program. Memory is what the
system says is resident, with all libraries (VmRSS), and the program's share of it (Pss).
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import time

PLACE = "10,120"
SETTLING = 20


def lines_of(path):
    return pathlib.Path(path).read_text(encoding="ascii").splitlines()


def kib(path, name):
    return next(int(line.split()[1]) for line in lines_of(path) if line.startswith(name + ":"))


def processor_seconds(path):
    fields = pathlib.Path(path).read_text(encoding="ascii").rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def sample(pid):
    return {"time": time.monotonic(),
            "interface": processor_seconds(f"/proc/{pid}/task/{pid}/stat"),
            "whole": processor_seconds(f"/proc/{pid}/stat"),
            "rss": kib(f"/proc/{pid}/status", "VmRSS"),
            "pss": kib(f"/proc/{pid}/smaps_rollup", "Pss"),
            "descriptors": len(os.listdir(f"/proc/{pid}/fd")),
            "threads": len(os.listdir(f"/proc/{pid}/task"))}


def told(first, last):
    seconds = last["time"] - first["time"]
    return (f"{seconds:7.0f} s: interface thread {(last['interface'] - first['interface']) / seconds * 100:5.2f} % of a core, "
            f"program {(last['whole'] - first['whole']) / seconds * 100:5.2f} %, "
            f"resident {last['rss'] / 1024:.1f} MiB, its share {last['pss'] / 1024:.1f} MiB, "
            f"{last['descriptors']} descriptors, {last['threads']} threads")


def xdotool(*words):
    return subprocess.run(["xdotool", *map(str, words)], check=True, capture_output=True, text=True).stdout


def show_spectrum():
    """Clicks the second tab, which stands right of the first one at the top of the third column."""
    window = xdotool("search", "--onlyvisible", "--name", "^Skyreckoning").split()[0]
    xdotool("mousemove", "--window", window, 585, 88)
    xdotool("click", 1)


def main():
    folder = pathlib.Path(sys.argv[1]).resolve()
    seconds = int(sys.argv[2]) if len(sys.argv) > 2 else 60
    rate = sys.argv[3] if len(sys.argv) > 3 else "10"
    with tempfile.TemporaryDirectory() as home:
        settings = pathlib.Path(home) / "skyreckoning/registry"
        settings.parent.mkdir(mode=0o700)
        settings.write_text('[Software\\Vintermark\\Skyreckoning]\n"Connection" = text "Serial port"\n"Serial port" = text "ttyLOAD"\n',
                            encoding="ascii")
        settings.chmod(0o600)
        environment = {**os.environ, "XDG_RUNTIME_DIR": home, "XDG_CONFIG_HOME": home}
        with subprocess.Popen([folder / "tools/skysim", "--model", "zed-f9r", "--port", "usb", "--rate", rate, "--position", PLACE,
                               "--pty", "ttyLOAD"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                              env=environment) as simulator:
            print(simulator.stdout.readline().strip())
            program = subprocess.Popen([folder / "forms/skyreckoning"], env=environment)
            time.sleep(SETTLING)
            show_spectrum()
            time.sleep(2)
            if len(sys.argv) > 4:
                subprocess.run(["import", "-window", "root", sys.argv[4]], check=True)
            first = last = sample(program.pid)
            end = first["time"] + seconds
            step = max(seconds / 12, 1)
            while last["time"] < end and program.poll() is None:
                time.sleep(min(step, max(end - time.monotonic(), 0.1)))
                former, last = last, sample(program.pid)
                print(told(former, last), flush=True)
            print("whole " + told(first, last))
            wall = last["time"] - first["time"]
            for part, name in (("interface", "interface thread"), ("whole", "program")):
                print(f"{name} at {rate} solutions a second: {(last[part] - first[part]) / wall:.3g} x a processor")
            if len(sys.argv) > 4:
                subprocess.run(["import", "-window", "root", sys.argv[4]], check=True)
            alive = program.poll() is None
            program.terminate()
            program.wait()
            simulator.terminate()
            return 0 if alive else 1


if __name__ == "__main__":
    sys.exit(main())
