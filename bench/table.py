"""Runs the benchmarks several times and prints what they tell as one table: bench/table.py [NAME ...]

All programs print lines of one shape, "what: 0.40 x its reference (1.20 x another), and more"; other lines are for people.
The table has the median of the runs, and the least and the largest.
"""

import re
import statistics
import subprocess
import sys

RUNS = 5
GROUP = re.compile(r"^-- (\w+)$")
LINE = re.compile(r"^(?P<what>[^:]+): (?P<ratio>[0-9.e+-]+) x (?P<reference>[^,(]+)")


def ratios_of(text):
    """The ratios of one run by group, what was measured, and reference."""
    group = ""
    for line in text.splitlines():
        if begun := GROUP.match(line):
            group = begun[1]
        elif told := LINE.match(line):
            yield (group, told["what"].strip(), told["reference"].strip()), float(told["ratio"])


def shown(ratio):
    return f"{ratio:.2f}" if ratio >= 0.1 else f"{ratio:.2g}"


def table(found):
    lines = ["| what | reference | ratio | least to most | repeat |", "| --- | --- | ---: | --- | --- |"]
    for (group, what, reference), ratios in found.items():
        lines.append(f"| {what} | {reference} | {shown(statistics.median(ratios))} "
                     f"| {shown(min(ratios))} to {shown(max(ratios))} | `bench/run {group}` |")
    return "\n".join(lines)


def main():
    found = {}
    for run in range(RUNS):
        print(f"run {run + 1} of {RUNS}", file=sys.stderr, flush=True)
        done = subprocess.run(["bench/run", *sys.argv[1:]], check=True, stdout=subprocess.PIPE, text=True)
        for row, ratio in ratios_of(done.stdout):
            found.setdefault(row, []).append(ratio)
    print(table(found))


if __name__ == "__main__":
    main()
