"""Windows that rest. One is seen before its first paint has measured it and before its manager has placed it, and what
points into it until then points beside it.
"""

import subprocess
import time

PATIENCE = 60
PAUSE = 0.3
# What a window is made with says nothing.
LEAST_WIDTH = 100


def settled_size(window, environment=None):
    """Width and height of a window that has stayed in its place for a while."""
    def place():
        return subprocess.run(["xdotool", "getwindowgeometry", "--shell", window], env=environment, check=False,
                              capture_output=True, text=True).stdout

    limit = time.monotonic() + PATIENCE
    before = place()
    while time.monotonic() < limit:
        time.sleep(PAUSE)
        now = place()
        fields = dict(line.split("=") for line in now.split())
        if now == before and int(fields.get("WIDTH", 0)) > LEAST_WIDTH:
            return int(fields["WIDTH"]), int(fields["HEIGHT"])
        before = now
    raise AssertionError(f"the window does not come to rest: {before!r}")
