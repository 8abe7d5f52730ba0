"""Serves a stream of 115200 baud to crowds of clients and tells what that costs:
bench/serving_load.py FOLDER [SECONDS [CLIENTS ...]]

FOLDER is a build with benchmarks. Beside the clients there is one that reads nothing, and twenty come and go each second.
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile

COMERS = 20


def resident_kib(pid):
    for line in pathlib.Path(f"/proc/{pid}/status").read_text(encoding="ascii").splitlines():
        if line.startswith("VmHWM"):
            return int(line.split()[1])
    return 0


def processor_seconds(pid):
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text(encoding="ascii").rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def measure(folder, seconds, clients):
    with tempfile.TemporaryDirectory() as home:
        environment = {**os.environ, "XDG_RUNTIME_DIR": home}
        load = subprocess.Popen([folder / "bench/servingLoad", "ttyLOAD", str(seconds), str(clients), str(COMERS)],
                                stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, env=environment)
        assert load.stdout.readline() == "ready\n"
        server = subprocess.Popen([folder / "tools/skyreckoning-console", "--port", "ttyLOAD", "--serve", "0", "--json"],
                                  stdout=subprocess.PIPE, text=True, env=environment)
        port = None
        detected = False
        while port is None or not detected:
            status = json.loads(server.stdout.readline()).get("status", "")
            detected = detected or status.startswith("Model: Generic NMEA")
            if status.startswith("Serving on port "):
                port = status.split()[-1]
        # Nobody reads the lines from here on, so they go where nobody has to.
        drain = subprocess.Popen(["cat"], stdin=server.stdout, stdout=subprocess.DEVNULL)
        before = processor_seconds(server.pid)
        load.stdin.write(port + "\n")
        load.stdin.close()
        found = json.loads(load.stdout.readline())
        found["cpu"] = (processor_seconds(server.pid) - before) / seconds
        found["resident"] = resident_kib(server.pid) / 1024
        load.wait()
        server.terminate()
        found["exit"] = server.wait()
        drain.wait()
        return found


def main():
    folder = pathlib.Path(sys.argv[1]).resolve()
    seconds = int(sys.argv[2]) if len(sys.argv) > 2 else 10
    crowds = [int(word) for word in sys.argv[3:]] or [1, 50, 500]
    good = True
    alone = None
    for clients in crowds:
        found = measure(folder, seconds, clients)
        whole = found["wrong"] == found["lost"] == found["comersWrong"] == found["comersRefused"] == found["exit"] == 0
        # What was written last may still be under way.
        whole = whole and found["last"] - found["reached"] < 50
        good = good and whole
        alone = alone or found["medianMs"]
        print(f"server of {clients} clients: {found['cpu']:.3g} x a processor, "
              f"{'every byte' if whole else 'BYTES MISSING: ' + str(found)} in {seconds} s, {found['resident']:.0f} MiB at most")
        beside = "" if clients == crowds[0] else f"{found['medianMs'] / alone:.3g} x that with {crowds[0]}, "
        print(f"latency with {clients} clients: {beside}{found['medianMs']:.1f} ms median, {found['p99Ms']:.1f} ms for 99 of 100",
              flush=True)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
