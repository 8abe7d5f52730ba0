"""No source, test or document says what words.txt forbids."""

import pathlib
import re

LIST = pathlib.Path(__file__).with_name("words.txt")


def load():
    for line in LIST.read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            expression, reason = re.split(r"  +", line, maxsplit=1)
            yield re.compile(expression, re.IGNORECASE), reason


def check(files, _fix):
    rules = list(load())
    for path in files.files:
        for number, line in enumerate(files.text(path).splitlines(), 1):
            for expression, reason in rules:
                found = expression.search(line)
                if found:
                    yield f'{path}:{number}: says "{found.group(0).strip()}": {reason}'
