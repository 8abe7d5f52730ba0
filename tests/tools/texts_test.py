"""The texts of the program, as they must stand on the screen and in its settings: each is written exactly so, where it belongs."""

import pathlib
import re
import unittest

import results

ROOT = pathlib.Path(__file__).resolve().parents[2]
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
COMMENT = re.compile(r"//[^\n]*")

# By the sources that say them. Signs beyond ASCII as they are written there.
TEXTS = {
    "forms/gnssComm_UI*": """
Connection|Serial port|Network|Embedded|GNSS receiver protocol:|---|NMEA|TSIP|UBX|About|Server|Port|Address|Connect|
Connecting|Disconnect|No clients|1 client| clients|Reset|Model: |Waiting for device reply...|Waiting for device reply (|)...|
Waiting for device model...|Connection failure|Cannot start the server for allowing remote control!|
Failed while trying to connect to the server|Unsupported server type!|Skyreckoning|Unknown|
Server port|Server enabled|TCP address
""",
    "forms/main/*": r"Software\\Vintermark\\Skyreckoning|Skyreckoning.chm|1.0.5.5",
    "link/pktComm.h": "Skyreckoning Server v20240612",
    "toolkit/ctrlWindowPlacement.cpp": """
Window - Position - Horizontal|Window - Position - Vertical|Window - Size - Horizontal|Window - Size - Vertical
""",
    "forms/gnssUI*": """
Date UTC|Time UTC|Latitude|Longitude|Altitude|Sea level|Speed|Track|HDOP|VDOP|PDOP|m|km/h|°|ID|Elev.|Az.|SNR|Signal| , |° 
""",
    "forms/gnssNMEA_UI*": "Mag. var.|Fix qual.|°",
    "forms/gnssTSIP_UI*": r"""
TDOP|Week no.|Week time|UTC offset|Clock bias|Bias rate|PPS error|RX Mode|Decode status|Temperature|Time flags:|
Status flags:|ns|\u03BCs|ppb|ppm|ps|s|°C
""",
    "forms/gnssUBX_UI*": """
TDOP|PPS week|PPS time|PPS error|Constellations|Protocol version |PPS|RF spectrum|PPS error history [ns]|PPS rate|duty|
Hz|%|s|ps
""",
    "forms/uiMessage*": "OK|Cancel|Abort|Retry|Ignore|Yes|No",
    "forms/uiAbout*": "About|Version |mailto:",
    "forms/help*": ".chm",
    "gnss/gnss.cpp": "Invalid fix|Unknown",
    "gnss/gnssTSIPText.cpp": """
Date UTC|Date GPS|Time UTC|Time GPS|Self-survey - |%|Self-survey inactive|Unknown
""",
    "gnss/ubxSignals.h": """
BeiDou B1C|BeiDou B1I|BeiDou B2a|BeiDou B2I|Galileo E1|Galileo E5a|Galileo E5b|GLONASS L1|GLONASS L2|GPS L1C/A|GPS L2C|
GPS L5|IMES|NavIC L5|QZSS L1C/A|QZSS L1S|QZSS L2C|QZSS L5|SBAS
""",
}


def literals(pattern):
    """What stands between quotes in some sources."""
    return {text for path in ROOT.glob(pattern) if path.suffix in (".cpp", ".h")
            for text in LITERAL.findall(COMMENT.sub("", path.read_text(encoding="utf-8")))}


class Texts(unittest.TestCase):
    def test_every_text_is_written_exactly_so(self):
        for pattern, group in TEXTS.items():
            found = literals(pattern)
            for text in group.replace("\n", "").split("|"):
                with self.subTest(sources=pattern, text=text):
                    self.assertTrue(text in found)


if __name__ == "__main__":
    results.main()
