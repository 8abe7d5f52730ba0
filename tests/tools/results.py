"""Runs the tests of a Python program and leaves their results where those of GoogleTest programs are counted.

A program ends with results.main() instead of unittest.main(). When SKY_RESULTS names a file, the results are written to
it in the JSON form of GoogleTest, one case a test, so that what was skipped is counted and seen.
"""

import json
import os
import pathlib
import unittest


class _Result(unittest.TextTestResult):
    def __init__(self, *arguments, **options):
        super().__init__(*arguments, **options)
        self.cases = {}

    def _note(self, test, outcome, failure=None):
        case = self.cases.setdefault(test.id(), {"result": outcome})
        if outcome == "SKIPPED":
            case["result"] = outcome
        if failure:
            case.setdefault("failures", []).append({"failure": failure, "type": ""})

    def addSuccess(self, test):
        super().addSuccess(test)
        self._note(test, "COMPLETED")

    def addSkip(self, test, reason):
        super().addSkip(test, reason)
        self._note(_whole(test), "SKIPPED")

    def addFailure(self, test, err):
        super().addFailure(test, err)
        self._note(test, "COMPLETED", self.failures[-1][1])

    # Also for a class or a module that could not be set up.
    def addError(self, test, err):
        super().addError(test, err)
        self._note(test, "COMPLETED", self.errors[-1][1])

    def addSubTest(self, test, subtest, err):
        super().addSubTest(test, subtest, err)
        if err is not None:
            self._note(test, "COMPLETED", f"{subtest}: {err[1]}")

    def addExpectedFailure(self, test, err):
        super().addExpectedFailure(test, err)
        self._note(test, "COMPLETED")

    def addUnexpectedSuccess(self, test):
        super().addUnexpectedSuccess(test)
        self._note(test, "COMPLETED", "succeeded unexpectedly")


def _whole(test):
    """The test that a part of a test belongs to."""
    return getattr(test, "test_case", test)


def _suites(cases):
    suites = {}
    for name, case in cases.items():
        rest, _, test = name.rpartition(".")
        suite = rest.rpartition(".")[2]
        suites.setdefault(suite, []).append({"name": test, "classname": suite, "status": "RUN", **case})
    return {"testsuites": [{"name": suite, "testsuite": tests} for suite, tests in suites.items()]}


class _Runner(unittest.TextTestRunner):
    resultclass = _Result

    def run(self, test):
        result = super().run(test)
        name = os.environ.get("SKY_RESULTS")
        if name:
            file = pathlib.Path(name)
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(json.dumps(_suites(result.cases), indent=1), encoding="utf-8")
        return result


def main():
    unittest.main(testRunner=_Runner)
