"""skydecode makes of what real receivers sent what an independent program makes of it:
tests/tools/captures_test.py PROGRAM

The captures stand in the folder that SKY_CAPTURES names, or beside the repository. They are recordings of others and
no part of it, so without them every test is skipped.
"""

import functools
import json
import math
import os
import pathlib
import subprocess
import sys
import unittest

import results

PROGRAM = os.path.abspath(sys.argv.pop(1))
ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDER = pathlib.Path(os.environ.get("SKY_CAPTURES") or ROOT.parent / "shared" / "captures")

CAPTURES = (
    "mixed-ublox8-bu353w10",
    "mixed-zed-f9p-rtcm3",
    "nmea-chipnavi-ch4711-porzd",
    "nmea-furuno-gt",
    "nmea-garmin-geko201",
    "nmea-gp320fw-coldboot",
    "nmea-hp58534a-nochecksum",
    "nmea-quectel-lc79d",
    "nmea-rtk-rover",
    "nmea-skytraq-bd",
    "nmea-st-teseo-liv3f",
    "nmea-ublox-8-gn",
    "nmea-ublox-m9n",
    "nmea-ublox-proprietary-pubx",
    "nmea-zed-f9p-gq-first",
    "tsip-datum9390-noisy",
    "tsip-lassen-iq-long",
    "tsip-lassen-iq-playacar",
    "tsip-resolution-smt360-start",
    "tsip-resolution-smtx-dr",
    "tsip-thunderbolt",
    "ubx-aek4t-antaris",
    "ubx-m8t-timing",
    "ubx-neo-f9v",
    "ubx-neo-m9n-all-monspan",
    "ubx-zed-f9p-config",
)
PROTOCOLS = ("nmea", "tsip", "ubx")

# The largest chunk takes every capture whole.
WHOLE = 16777216
SECONDS = 120
CHUNKS = (WHOLE, 1, 7, 64)

# Streams in which a decoder that the name does not promise finds data: both have that protocol in them.
FOREIGN = {
    ("mixed-ublox8-bu353w10", "ubx"),
    ("mixed-zed-f9p-rtcm3", "nmea"),
}

# How far a number may be off, relative to it. What is in neither list agrees exactly.
FLOAT = 1e-6
DOUBLE = 1e-9
TOLERANCES = {
    "common": {
        **dict.fromkeys(("Latitude", "Longitude", "Altitude", "TimeOfDay"), DOUBLE),
        **dict.fromkeys(("HDOP", "PDOP", "VDOP", "SeaLevel", "Speed", "Track"), FLOAT),
    },
    "satellite": dict.fromkeys(("Elevation", "Azimuth", "SNR"), FLOAT),
    "nmea": dict.fromkeys(("DGPSAge", "MagVar"), FLOAT),
    "tsip": dict.fromkeys(("ClockBias", "BiasRate", "PPSError", "TDOP", "Temperature", "WeekTime", "UTCOffset"), FLOAT),
    "ubx": {
        **dict.fromkeys(("PPSError", "PPSTime"), DOUBLE),
        **dict.fromkeys(("TDOP", "PPSRate", "PPSDuty"), FLOAT),
    },
}


@functools.cache
def expected():
    return json.loads((FOLDER / "expected.json").read_text(encoding="utf-8"))


@functools.cache
def decode(name, chunk):
    run = subprocess.run([PROGRAM, "--today", expected()[name + ".raw"]["today"], "--chunk", str(chunk),
                          str(FOLDER / (name + ".raw"))], capture_output=True, check=False,
                         timeout=SECONDS)
    if run.returncode != 0 or run.stderr:
        raise AssertionError(f"skydecode ended with {run.returncode}: {run.stderr.decode(errors='replace')}")
    return json.loads(run.stdout)


def agrees(wanted, found, tolerance):
    # A truth is a number to Python, but not to a reader of JSON.
    if isinstance(wanted, bool) or isinstance(found, bool) or tolerance is None:
        return type(wanted) is type(found) and wanted == found
    if wanted is None or found is None:
        return wanted is found
    return math.isclose(wanted, found, rel_tol=tolerance, abs_tol=0)


def differences(wanted, found, tolerances):
    """Lines that tell where two objects differ, satellites left out."""
    if wanted.keys() != found.keys():
        yield f"keys: {sorted(wanted.keys() ^ found.keys())} are only in one"
        return
    for key in wanted.keys() - {"Sats"}:
        if not agrees(wanted[key], found[key], tolerances.get(key)):
            yield f"{key}: {found[key]!r} instead of {wanted[key]!r}"


def model_differences(protocol, wanted, found):
    yield from differences(wanted, found, TOLERANCES["common"] | TOLERANCES[protocol])
    wanted, found = wanted["Sats"], found["Sats"]
    if len(wanted) != len(found):
        yield f"{len(found)} satellites instead of {len(wanted)}"
    for place, pair in enumerate(zip(wanted, found)):
        for line in differences(*pair, TOLERANCES["satellite"]):
            yield f"satellite {place}, {line}"


class CapturesTest(unittest.TestCase):
    def setUp(self):
        if not FOLDER.is_dir():
            self.skipTest(f"there are no captures in {FOLDER}")

    def check(self, name):
        wanted = expected()[name + ".raw"]
        self.assertEqual((FOLDER / (name + ".raw")).stat().st_size, wanted["bytes"])
        for chunk in CHUNKS:
            found = decode(name, chunk)
            self.assertEqual(tuple(found), PROTOCOLS)
            for protocol in PROTOCOLS:
                with self.subTest(protocol=protocol, chunk=chunk):
                    lines = list(model_differences(protocol, wanted[protocol], found[protocol]))
                    self.assertEqual(lines, [])

    def test_every_capture_of_the_folder_is_tested(self):
        listed = sorted(name + ".raw" for name in CAPTURES)
        self.assertEqual(sorted(file.name for file in FOLDER.glob("*.raw")), listed)
        self.assertEqual(sorted(expected()), listed)

    def test_no_decoder_finds_data_where_there_is_none(self):
        for chunk in CHUNKS:
            found = {(name, protocol) for name in CAPTURES for protocol in PROTOCOLS
                     if not name.startswith(protocol + "-") and decode(name, chunk)[protocol]["OnNewData"] > 0}
            self.assertEqual(found, FOREIGN)


def capture_test(name):
    return lambda self: self.check(name)


for capture in CAPTURES:
    setattr(CapturesTest, "test_" + capture.replace("-", "_"), capture_test(capture))


if __name__ == "__main__":
    results.main()
