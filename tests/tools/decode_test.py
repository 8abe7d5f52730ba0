"""skydecode tells what the decoders make of a stream, and what is wrong with its arguments:
tests/tools/decode_test.py PROGRAM
"""

import datetime
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

import results
from frames import nmea, tsip, ubx

PROGRAM = os.path.abspath(sys.argv.pop(1))
PROTOCOLS = ["nmea", "tsip", "ubx"]
# Far longer than any of these streams takes.
SECONDS = 60
TODAY = ("--today", "2026-11-20")
ROLLOVER = datetime.timedelta(weeks=1024)

RMC = nmea("GPRMC,123519.5,A,4807.5,N,01130,W,10,84.5,230394,3.25,W")
SENTENCES = (nmea("GPGSV,1,1,2,7,40,83,46,8,17,308,,1") + RMC + nmea("GPGSA,A,3,08,,,,,,,,,,,,2.5,0.5,1.5")
             + nmea("GPGGA,123519.5,4807.5,N,01130,W,2,08,0.5,545.5,M,46.5,M,4.5,0120"))

# NAV-POSLLH, NAV-DOP, TIM-TP, and a receiver's version.
POSITION = ubx(0x01, 0x02, struct.pack("<IiiiiII", 0, 115000000, 481250000, 592000, 545500, 1000, 2000))
DILUTION = ubx(0x01, 0x04, struct.pack("<IHHHHHHH", 0, 250, 200, 150, 125, 100, 75, 50))
PULSE = ubx(0x0D, 0x01, struct.pack("<IIiHBB", 345600000, 0, 1000, 2445, 0, 0))
VERSION = ubx(0x0A, 0x04, b"ROM SPG 5.10".ljust(30, b"\0") + b"000A0000".ljust(10, b"\0")
              + b"PROTVER=34.10".ljust(30, b"\0"))


def primary_timing(date):
    """8F-AB at 12:34:56 of a day."""
    return tsip(b"\x8F\xAB", struct.pack(">IHHBBBBBBH", 0, 0, 0, 0, 56, 34, 12, date.day, date.month, date.year))


MACHINE = tsip(b"\x4B\x61\x00\x00")


class DecodeTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def run_decode(self, *arguments, stream=b"", **options):
        options = {"stdout": subprocess.PIPE, **options}
        if "stdin" not in options:
            options["input"] = stream
        return subprocess.run([PROGRAM, *arguments], stderr=subprocess.PIPE, check=False, timeout=SECONDS, **options)

    def decode(self, *arguments, **options):
        run = self.run_decode(*arguments, **options)
        self.assertEqual((run.returncode, run.stderr), (0, b""))
        return json.loads(run.stdout)

    def assert_refused(self, run, message, code=2):
        self.assertEqual(run.returncode, code)
        self.assertFalse(run.stdout)
        self.assertEqual(run.stderr.decode(), f"skydecode: {message}\n")

    def file(self, content, name="stream"):
        path = self.folder / name
        path.write_bytes(content)
        return str(path)


class ObjectsTest(DecodeTest):
    def test_nothing_received_leaves_every_field_as_it_is_at_the_start(self):
        common = {
            **dict.fromkeys(("Model", "Latitude", "Longitude", "Altitude", "TimeOfDay", "Year", "Month", "Day", "HDOP",
                             "PDOP", "VDOP", "SeaLevel", "Speed", "Track", "OnNewData"), 0),
            "ModelName": "Unknown", "ValidTime": False, "ValidPosition": False, "Sats": [],
        }
        self.assertEqual(self.decode(), {
            "nmea": {**common, **dict.fromkeys(("DGPSAge", "DGPSStation", "MagVar", "FixQuality"), 0)},
            "tsip": {**common, **dict.fromkeys(("ClockBias", "BiasRate", "PPSError", "TDOP", "Temperature", "WeekTime",
                                                "UTCOffset", "Status", "Week", "SurveyProgress", "TimeFlags"), 0),
                     "DecodeStatus": 255, "RXMode": 8},
            "ubx": {**common, **dict.fromkeys(("PPSError", "PPSTime", "PPSWeek", "TDOP", "ProtVer", "PPSDuty",
                                               "OnPPS"), 0),
                    "PPSRate": 1, "Select": []},
        })

    def test_sentences_become_the_object_of_nmea(self):
        found = self.decode(stream=SENTENCES)
        self.assertEqual(found["nmea"], {
            "Model": 1, "ModelName": "Generic NMEA", "ValidTime": True, "ValidPosition": True,
            "Latitude": 48.125, "Longitude": -11.5, "Altitude": 545.5, "TimeOfDay": 45319.5,
            "Year": 1994, "Month": 3, "Day": 23, "HDOP": 0.5, "PDOP": 2.5, "VDOP": 1.5, "SeaLevel": 46.5,
            "Speed": struct.unpack("f", struct.pack("f", 18.52))[0], "Track": 84.5, "OnNewData": 3,
            "DGPSAge": 4.5, "DGPSStation": 120, "MagVar": -3.25, "FixQuality": 2,
            "Sats": [
                {"Source": "GPS", "SvId": 7, "Elevation": 40, "Azimuth": 83, "SNR": 46, "Signals": [31, 0, 0],
                 "Used": 0},
                {"Source": "GPS", "SvId": 8, "Elevation": 17, "Azimuth": 308, "SNR": -1, "Signals": [31, 0, 0],
                 "Used": 1},
            ],
        })
        self.assertEqual([found[name]["OnNewData"] for name in ("tsip", "ubx")], [0, 0])

    def test_frames_become_the_object_of_ubx(self):
        found = self.decode(stream=VERSION + POSITION + DILUTION + PULSE + PULSE)
        receiver = found["ubx"]
        self.assertEqual((receiver["Model"], receiver["ModelName"], receiver["ProtVer"]),
                         (12, "u-blox 10/M10", 34 * 256 + 10))
        self.assertEqual((receiver["Latitude"], receiver["Longitude"], receiver["Altitude"]), (48.125, 11.5, 545.5))
        self.assertEqual((receiver["PDOP"], receiver["TDOP"], receiver["VDOP"], receiver["HDOP"]), (2, 1.5, 1.25, 1))
        self.assertEqual((receiver["PPSTime"], receiver["PPSWeek"], receiver["PPSError"]), (345600, 2445, 1e-9))
        self.assertEqual(receiver["OnPPS"], 2)
        self.assertEqual([found[name]["OnNewData"] for name in ("nmea", "tsip")], [0, 0])

    def test_packets_become_the_object_of_tsip(self):
        found = self.decode(*TODAY, stream=MACHINE + primary_timing(datetime.date(2026, 11, 16)))
        receiver = found["tsip"]
        self.assertEqual((receiver["Model"], receiver["ModelName"]), (3, "Trimble® Acutime™ Gold"))
        self.assertEqual((receiver["Year"], receiver["Month"], receiver["Day"]), (2026, 11, 16))
        self.assertEqual((receiver["TimeOfDay"], receiver["Week"]), (45296, 2048))
        self.assertEqual([found[name]["OnNewData"] for name in ("nmea", "ubx")], [0, 0])

    def test_what_is_not_finite_is_null(self):
        rate = struct.pack(">f", float("inf"))
        bias = struct.pack(">f", float("nan"))
        stream = MACHINE + tsip(b"\x8F\xAC", bytes(15), bias, rate, bytes(40))
        receiver = self.decode("--protocol", "tsip", stream=stream)["tsip"]
        self.assertEqual((receiver["ClockBias"], receiver["BiasRate"]), (None, None))

    def test_numbers_have_the_digits_that_bring_them_back(self):
        for latitude in (1, -481173333, 899999999):
            stream = ubx(0x01, 0x02, struct.pack("<IiiiiII", 0, 0, latitude, 0, 0, 0, 0))
            self.assertEqual(self.decode(stream=stream)["ubx"]["Latitude"], latitude * 1e-7)


class StreamTest(DecodeTest):
    ALL = SENTENCES + MACHINE + primary_timing(datetime.date(2026, 11, 16)) + VERSION + POSITION + DILUTION + PULSE

    def test_a_stream_comes_from_standard_input_or_from_a_file(self):
        wanted = self.decode(*TODAY, stream=self.ALL)
        name = self.file(self.ALL)
        self.assertGreater(wanted["nmea"]["OnNewData"], 0)
        for arguments in ((name,), ("--", name)):
            self.assertEqual(self.decode(*TODAY, *arguments), wanted)
        for arguments in (("-",), ("--", "-")):
            self.assertEqual(self.decode(*TODAY, *arguments, stream=self.ALL), wanted)

    def test_how_the_stream_is_cut_changes_nothing(self):
        wanted = self.decode(*TODAY, stream=self.ALL)
        for chunk in ("1", "2", "3", "7", "64", "0064", "16777216"):
            self.assertEqual(self.decode(*TODAY, "--chunk", chunk, stream=self.ALL), wanted)

    def test_a_stream_longer_than_a_chunk_is_decoded_to_its_end(self):
        self.assertEqual(self.decode(stream=PULSE * 1000)["ubx"]["OnPPS"], 1000)
        self.assertEqual(self.decode("--chunk", str(len(PULSE)), stream=PULSE * 3)["ubx"]["OnPPS"], 3)

    def test_every_byte_is_taken_as_it_is(self):
        # A carriage return, a line feed and the end mark of a text stand in the payload.
        stream = ubx(0x01, 0x02, struct.pack("<IiiiiII", 0, 0x0D0A, 0x1A0A, 0, 0, 0, 0))
        for receiver in (self.decode(stream=stream)["ubx"], self.decode(self.file(stream))["ubx"]):
            self.assertEqual((receiver["Latitude"], receiver["Longitude"]), (0x1A0A * 1e-7, 0x0D0A * 1e-7))

    def test_one_decoder_alone_tells_what_it_tells_among_all(self):
        wanted = self.decode(*TODAY, stream=self.ALL)
        self.assertEqual(list(wanted), PROTOCOLS)
        for protocol in PROTOCOLS:
            self.assertEqual(self.decode(*TODAY, "--protocol", protocol, stream=self.ALL),
                             {protocol: wanted[protocol]})

    def test_an_option_given_twice_counts_as_it_was_given_last(self):
        self.assertEqual(list(self.decode("--protocol", "ubx", "--protocol", "nmea")), ["nmea"])

    def test_a_file_may_have_the_name_of_an_option(self):
        self.file(PULSE, "--chunk")
        self.assertEqual(self.decode("--", "--chunk", cwd=self.folder)["ubx"]["OnPPS"], 1)


class TodayTest(DecodeTest):
    def date(self, date, *arguments):
        found = self.decode("--protocol", "tsip", *arguments, stream=primary_timing(date))["tsip"]
        return datetime.date(found["Year"], found["Month"], found["Day"])

    def test_a_rolled_over_date_is_placed_by_the_date_that_is_given(self):
        rolled = datetime.date(2006, 6, 1)
        for today, wanted in (("2026-01-14", rolled), ("2026-01-15", rolled + ROLLOVER),
                              ("2045-08-31", rolled + 2 * ROLLOVER)):
            self.assertEqual(self.date(rolled, "--today", today), wanted)

    def test_without_one_it_is_placed_by_the_date_of_the_computer(self):
        while True:
            today = datetime.datetime.now(datetime.timezone.utc).date()
            oldest = today - ROLLOVER
            found = [self.date(oldest), self.date(oldest + datetime.timedelta(days=1))]
            # Midnight may have passed meanwhile.
            if datetime.datetime.now(datetime.timezone.utc).date() == today:
                break
        self.assertEqual(found, [today, oldest + datetime.timedelta(days=1)])

    def test_the_days_of_the_calendar_are_taken_and_no_others(self):
        for value in ("2024-02-29", "2026-12-31", "0001-01-01", "9999-12-31"):
            self.decode("--today", value)
        for value in ("2026-02-29", "2026-02-30", "2026-04-31", "2026-13-01", "2026-00-10", "2026-01-00", "2026-1-1",
                      "26-11-20", "2026/11/20", "2026-11-20 ", "+026-11-20", "2026-11--1", "20261120", "today", ""):
            self.assert_refused(self.run_decode("--today", value),
                                f'--today takes a date such as 2026-11-20, not "{value}"')


class ArgumentsTest(DecodeTest):
    CHUNK = "--chunk takes a number from 1 to 16777216"

    def test_help_is_no_error(self):
        for arguments in (("--help",), ("--chunk", "7", "--help", "--nonsense")):
            run = self.run_decode(*arguments)
            self.assertEqual((run.returncode, run.stderr), (0, b""))
            self.assertTrue(run.stdout.startswith(b"usage: skydecode "))

    def test_chunks_of_no_size_are_refused(self):
        for value in ("0", "-1", "+1", "1.5", "7x", " 7", "", "seven", "16777217", "99999999999999999999999"):
            self.assert_refused(self.run_decode("--chunk", value), f'{self.CHUNK}, not "{value}"')

    def test_protocols_that_nobody_decodes_are_refused(self):
        for value in ("gps", "NMEA", "nmea,ubx", ""):
            self.assert_refused(self.run_decode("--protocol", value),
                                f'--protocol takes nmea, tsip or ubx, not "{value}"')

    def test_an_option_at_the_end_misses_its_value(self):
        for option, wanted in (("--chunk", self.CHUNK), ("--protocol", "--protocol takes nmea, tsip or ubx"),
                               ("--today", "--today takes a date such as 2026-11-20")):
            self.assert_refused(self.run_decode(option), f"{wanted}, but nothing follows it")

    def test_unknown_options_are_refused(self):
        for option in ("--colour", "-h", "--chunk=7", "---"):
            self.assert_refused(self.run_decode(option), f'there is no option "{option}"; see --help')

    def test_a_second_file_is_refused(self):
        name = self.file(b"")
        for first, second in ((name, name), ("-", name), (name, "-")):
            self.assert_refused(self.run_decode(first, second),
                                f'takes one file, but "{second}" is the second; see --help')


class FaultsTest(DecodeTest):
    def test_a_file_that_is_missing_is_named(self):
        for name in (str(self.folder / "missing"), ""):
            self.assert_refused(self.run_decode(name), f'cannot read "{name}": No such file or directory')

    def test_a_name_cannot_break_the_line(self):
        self.assert_refused(self.run_decode(f'{self.folder}/a\n"b"\\\x1f'),
                            f'cannot read "{self.folder}/a\\u000a\\"b\\"\\\\\\u001f": No such file or directory')

    def test_a_folder_is_no_stream(self):
        self.assert_refused(self.run_decode(str(self.folder)), f'cannot read "{self.folder}": Is a directory')
        folder = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, folder)
        self.assert_refused(self.run_decode(stdin=folder), "cannot read standard input: Is a directory")

    def test_a_file_that_cannot_be_opened_is_named(self):
        name = self.folder / "loop"
        name.symlink_to(name)
        self.assert_refused(self.run_decode(str(name)), f'cannot read "{name}": Too many levels of symbolic links')

    def test_a_file_that_breaks_while_it_is_read_is_named(self):
        self.assert_refused(self.run_decode("/proc/self/mem"), 'cannot read "/proc/self/mem": Input/output error')

    def test_a_result_that_cannot_be_written_is_an_error(self):
        for arguments in ((), ("--help",)):
            with open("/dev/full", "wb") as full:
                self.assert_refused(self.run_decode(*arguments, stdout=full),
                                    "cannot write the result: No space left on device", code=1)


if __name__ == "__main__":
    results.main()
