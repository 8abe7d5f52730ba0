"""tools/check finds each thing that it is there to find, and lets pass what is right."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

import results

ROOT = pathlib.Path(__file__).resolve().parents[2]


class CheckTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        shutil.copy(ROOT / ".clang-format", self.folder)
        self.write("platform/clock.h", "#pragma once\n")
        self.write("platform/win32/handle.h", "#pragma once\n")
        self.write("gnss/gnss.h", "#pragma once\n")
        self.write("toolkit/ctrlWindow.h", "#pragma once\n")
        self.write("foundations/text/utfEdit.h", "#pragma once\n")

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def run_check(self, *names):
        return subprocess.run([ROOT / "tools/check", "--root", self.folder, *names], capture_output=True, text=True,
                              check=False)

    def assert_found(self, check, *parts):
        run = self.run_check(check)
        self.assertEqual(run.returncode, 1, run.stdout + run.stderr)
        for part in parts:
            self.assertIn(part, run.stdout)

    def assert_clean(self, check):
        run = self.run_check(check)
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)

    def test_a_right_tree_is_clean(self):
        self.write("gnss/gnss.cpp", '#include "gnss/gnss.h"\n\n#include "platform/clock.h"\n\n#include <vector>\n')
        for check in ("format", "layers", "words", "scripts"):
            self.assert_clean(check)

    def test_a_system_header_outside_a_backend_is_found(self):
        for header in ("windows.h", "unistd.h", "sys/mman.h", "pthread.h"):
            with self.subTest(header):
                self.write("gnss/gnss.cpp", f"#include <{header}>\n")
                self.assert_found("layers", "gnss/gnss.cpp:1", header)

    def test_a_system_header_inside_a_backend_is_right(self):
        self.write("platform/win32/clock.cpp", "#include <windows.h>\n")
        self.write("platform/linux/clock.cpp", "#include <time.h>\n")
        self.assert_clean("layers")

    def test_a_test_of_the_platform_outside_a_backend_is_found(self):
        for line in ("#ifdef _WIN32", "#if defined(__linux__)", "#elif  __MINGW32__", "#  ifndef __unix__"):
            with self.subTest(line):
                self.write("toolkit/ctrlWindow.cpp", line + "\n#endif\n")
                self.assert_found("layers", "toolkit/ctrlWindow.cpp:1", "tests the platform")

    def test_an_include_that_runs_upward_is_found(self):
        cases = (("foundations/text/utfEdit.cpp", "gnss/gnss.h"), ("gnss/gnss.cpp", "toolkit/ctrlWindow.h"),
                 ("toolkit/ctrlWindow.cpp", "gnss/gnss.h"), ("platform/thread.h", "foundations/text/utfEdit.h"))
        for source, target in cases:
            with self.subTest(source):
                self.write(source, f'#include "{target}"\n')
                self.assert_found("layers", f"{source}:1", target)
                (self.folder / source).unlink()

    def test_a_backends_own_header_is_for_it_alone(self):
        for source in ("platform/linux/file.cpp", "toolkit/ctrlWindow.cpp", "tests/toolkit/ctrlWindow_test.cpp"):
            with self.subTest(source):
                self.write(source, '#include "platform/win32/handle.h"\n')
                self.assert_found("layers", f"{source}:1")
                (self.folder / source).unlink()

    def test_the_test_framework_is_for_tests_alone(self):
        self.write("tests/gnss/gnss_test.cpp", "#include <gtest/gtest.h>\n")
        self.assert_clean("layers")
        self.write("gnss/gnss.cpp", "#include <gtest/gtest.h>\n")
        self.assert_found("layers", "gnss/gnss.cpp:1")

    def test_a_relative_include_is_found(self):
        self.write("gnss/gnss.cpp", '#include "gnss.h"\n')
        self.assert_found("layers", "no path from the root")

    def test_a_source_in_no_room_is_found(self):
        self.write("attic/old.cpp", "int Old;\n")
        self.assert_found("layers", "attic/old.cpp", "no room")

    def test_wrong_layout_is_found_and_mended(self):
        self.write("gnss/gnss.cpp", "int  Wide( int x ){return x;}\n")
        self.assert_found("format", "gnss/gnss.cpp")
        self.run_check("--fix", "format")
        self.assert_clean("format")

    def test_a_forbidden_word_is_found_in_any_file(self):
        word = "TO" + "DO"
        for name in ("gnss/gnss.h", "README.md", "tests/gnss/gnss_test.cpp", "run"):
            with self.subTest(name):
                self.write(name, f"// {word}: later\n")
                self.assert_found("words", f"{name}:1", word)
                self.write(name, "\n")

    def test_a_careless_script_is_found(self):
        self.write("run", "#!/bin/bash\nrm -rf $1/*\n")
        self.assert_found("scripts", "run:2")

    def test_wrong_names_are_refused(self):
        self.assertEqual(self.run_check("spelling").returncode, 2)


if __name__ == "__main__":
    results.main()
