"""skyfacts prints a whole page, whatever it finds: tests/tools/facts_test.py PROGRAM"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import results

PROGRAM = sys.argv.pop(1)


class FactsTest(unittest.TestCase):
    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.home)

    def store(self, content):
        folder = self.home / "skyreckoning"
        folder.mkdir()
        (folder / "registry").write_bytes(content)

    def run_facts(self, *arguments, **variables):
        environment = {**os.environ, "XDG_CONFIG_HOME": str(self.home), **variables}
        return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, env=environment, check=False)

    def facts(self, **variables):
        run = self.run_facts(**variables)
        self.assertEqual(run.returncode, 0, run.stderr)
        return dict(line.strip().split("  ", 1) if "  " in line.strip() else (line.strip(), "")
                    for line in run.stdout.splitlines())

    def value(self, facts, name):
        return next(value.strip() for key, value in facts.items() if key == name)

    def test_a_fresh_machine_shows_the_defaults(self):
        facts = self.facts()
        self.assertEqual(self.value(facts, "Server port"), "4003")
        self.assertEqual(self.value(facts, "Server enabled"), "no")
        self.assertEqual(self.value(facts, "Serial port"), '""')

    def test_stored_settings_are_shown(self):
        self.store(b'[Software\\Vintermark\\Skyreckoning]\n"Server port" = dword 5000\n"Server enabled" = dword 1\n'
                   b'"Serial port" = text "/dev/ttyACM0"\n')
        facts = self.facts()
        self.assertEqual(self.value(facts, "Server port"), "5000")
        self.assertEqual(self.value(facts, "Server enabled"), "yes")
        self.assertEqual(self.value(facts, "Serial port"), '"/dev/ttyACM0"')

    def test_a_damaged_store_leaves_the_defaults(self):
        self.store(bytes(range(256)) * 50)
        self.assertEqual(self.value(self.facts(), "Server port"), "4003")

    def test_it_names_where_the_settings_are_kept(self):
        self.assertEqual(self.value(self.facts(), "Kept in"), f"{self.home}/skyreckoning/registry")

    def test_looking_writes_nothing(self):
        self.facts()
        self.assertEqual(list(self.home.iterdir()), [])

    def test_the_heap_holds_nothing_after_the_settings_were_read(self):
        self.assertIn("No memory in use", self.run_facts().stdout)

    def test_wrong_use_is_one_line_and_exit_2(self):
        run = self.run_facts("--colour")
        self.assertEqual(run.returncode, 2)
        self.assertEqual(run.stdout, "")
        self.assertIn("usage", run.stderr)

    def test_help_is_no_error(self):
        run = self.run_facts("--help")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertIn("usage", run.stdout)


if __name__ == "__main__":
    results.main()
