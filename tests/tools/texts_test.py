"""The texts of the program, as they must stand on the screen and in its settings: each is written in the sources exactly so."""

import pathlib
import re
import unittest

import results

ROOT = pathlib.Path(__file__).resolve().parents[2]
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
COMMENT = re.compile(r"//[^\n]*")

MAIN_FORM = """
Connection|Serial port|Network|Embedded|GNSS receiver protocol:|---|NMEA|TSIP|UBX|About|Server|Port|Address|Connect|
Connecting|Disconnect|No clients|1 client| clients|Reset|Model: |Waiting for device reply...|Waiting for device reply (|)...|
Waiting for device model...|Connection failure|Cannot start the server for allowing remote control!|
Failed while trying to connect to the server|Unsupported server type!|Skyreckoning|Skyreckoning Server v20240612
"""
SETTINGS = r"""
Software\\Vintermark\\Skyreckoning|Server port|Server enabled|TCP address|
Window - Position - Horizontal|Window - Position - Vertical|Window - Size - Horizontal|Window - Size - Vertical
"""
# Signs beyond ASCII as the sources write them.
PAGES = r"""
Date UTC|Date GPS|Time UTC|Time GPS|Latitude|Longitude|Altitude|Sea level|Speed|Track|HDOP|VDOP|PDOP|TDOP|m|km/h|
ID|Elev.|Az.|SNR|Signal| , |Mag. var.|Fix qual.|Invalid fix|
Week no.|Week time|UTC offset|Clock bias|Bias rate|PPS error|RX Mode|Decode status|Temperature|Time flags:|Status flags:|
Self-survey - |Self-survey inactive|Unknown|ns|ppb|ppm|ps|s|\u03BCs|°|°C|° 
"""
UBLOX = """
PPS week|PPS time|Constellations|Protocol version |PPS|RF spectrum|PPS error history [ns]|PPS rate|duty|Hz|%|
BeiDou B1C|BeiDou B1I|BeiDou B2a|BeiDou B2I|Galileo E1|Galileo E5a|Galileo E5b|GLONASS L1|GLONASS L2|GPS L1C/A|GPS L2C|
GPS L5|IMES|NavIC L5|QZSS L1C/A|QZSS L1S|QZSS L2C|QZSS L5|SBAS
"""
BOXES = "OK|Cancel|Abort|Retry|Ignore|Yes|No|Version |1.0.5.5|mailto:|.chm|Skyreckoning.chm"


def literals():
    """What stands between quotes in the sources that ship, and the files that hold it."""
    found = {}
    for room in ("forms", "gnss", "link", "toolkit", "platform"):
        for path in sorted((ROOT / room).rglob("*")):
            if path.suffix in (".cpp", ".h"):
                for text in LITERAL.findall(COMMENT.sub("", path.read_text(encoding="utf-8"))):
                    found.setdefault(text, set()).add(path.name)
    return found


class Texts(unittest.TestCase):
    def test_every_text_is_written_exactly_so(self):
        found = literals()
        for name, group in (("main form", MAIN_FORM), ("settings", SETTINGS), ("pages", PAGES), ("u-blox", UBLOX),
                            ("boxes", BOXES)):
            for text in group.replace("\n", "").split("|"):
                with self.subTest(group=name, text=text):
                    self.assertTrue(text in found)


if __name__ == "__main__":
    results.main()
