"""What a day has shown, as lines of text and as a page with numbers and drawing beside it."""

import csv
import dataclasses
import datetime
import statistics

from soak import drawing, verdict

PANELS = [
    ("Memory", "MiB", (("resident", "resident"), ("share", "its share"), ("anonymous", "its own"))),
    ("Descriptors and threads", "", (("descriptors", "descriptors"), ("threads", "threads"))),
    ("Processor", "% of a core", (("interface", "interface thread"), ("program", "whole program"))),
    ("Age of what is shown, against what a client has", "ms", (("age", "median"), ("worst", "oldest"))),
    ("Bytes at a client, behind the receiver", "ms", (("late", "median"),)),
    ("Solutions and spectra", "a second, at a client", (("solutions", "solutions"), ("spectra", "spectra"))),
]

MOST_UNREAD = 0.01  # of all looks

PAGE = """# A day in an hour

The program lives through a day of its receiver while memory, handles, threads, processor time and the lateness of the screen
are watched from outside; none of them may rise. To repeat it, on a machine with two cores that has nothing else to do:

    cmake --preset release -DSKY_BENCH=ON
    cmake --build build/release --target skyreckoning skysim fastClock
    tools/display --manager python3 -B bench/day.py build/release --docs docs

takes an hour and writes this page, its drawing and [its numbers](day.csv) anew; `--minutes 10` is a short one. The exit status
is 1 when something rises.

## What runs

The program as it ships, in a virtual display; on its serial port a simulated u-blox under a sky of 40 satellites with 66
signals; the tab of its spectrum in front. {clients} clients are connected to its server all the time; {comers} more come and
go, one change each {period:g} s, every second time without a word of farewell.

**Which clocks are compressed.** The receiver's: `skysim --speed {speed:g}` lets {speed:g} of its seconds pass in one, so {rate}
solutions in each of them are {whole:g} in one of ours, and {minutes:g} minutes are {hours} of its hours. And the program's own,
as much, in all its threads but the one that paints: `fastClock.so`, preloaded, stands before `clock_gettime`, `nanosleep`,
`poll` and the timed waits, which are all that the program asks. So reading, decoding, serving, timers, time limits and
keep-alives go through the whole day, and the screen keeps the pace that a user sees. The other ways were tried:

- The receiver's clock alone: the program looks at an idle port each 10 ms, and a virtual port holds 4 kB, so that only about
  250 solutions a second come through; at 25 in each of the receiver's there are 600. A port that is looked at {speed:g} times as often lets all pass.
- The painting thread too (`--own-clock all`): it would owe a picture each 2 ms. It works off less than comes, so what is posted
  to it piles up; that is overload, as below.
- Tools that speed up a program's clock from outside: those at hand know no wait on the steady clock with a deadline, and
  such a wait would last longer and longer.

**Overload.** What is posted to the painting thread says only that there is something new; what is new it fetches when it gets
there. So the screen stays as fresh as the pace of its painting when more comes than it can take, and only the list of what is
posted grows, up to the 10,000 that a system takes. With `--own-clock all`, on a busy machine, the median age stayed below 80 ms in twenty seconds,
while memory grew by 70 kB each ten.

## How it is measured

- Memory, descriptors, threads and processor time are what `/proc` says: resident with all libraries (VmRSS), the program's
  share of it (Pss), and its own (RssAnon). The checked heap is in the last; its own count cannot be seen from outside.
  The share is drawn and not judged: it rises and falls with what other programs map.
- The age of what is shown is read off the screen: the time in the window, from its pixels, is compared with the newest
  solution that a client has. What the digits look like is learnt at the start, around ten o'clock of
  the receiver, while it pauses and the time that stands on the screen is known. Five looks each sample; the line shows their
  median and the oldest.
- That the spectrum lives is told by the receiver: it is asked for one each time that one was painted.
- How late the bytes are at that client is told by the receiver's clock: the solution that came soonest of all sets it.
- Each client counts its bytes and adds up their checksum; in the end all that stayed must have the same.

All times are ours: a second of them is {speed:g} of the receiver's.

## What was seen

{date}, {minutes:g} minutes, {count} samples. {note}

![Lines over time](day.svg)

{table}

{lines}

A rise is what the straight line with the least squares through the second half climbs by. The limits:

{limits}
"""


@dataclasses.dataclass
class Outcome:
    good: bool
    lines: list


def outcome(watch, samples, lasted):
    crowd = watch.crowd
    lines = []
    good = lasted and len(samples) > 2
    lines.append("The program lasted." if lasted else "THE PROGRAM ENDED.")
    each = crowd.steady[0].bytes
    equal = crowd.are_equal() and crowd.lost == 0
    lines.append(f"{len(crowd.steady)} clients have the same {each:,} bytes, {watch.times.solutions:,} solutions." if equal else
                 f"THE CLIENTS DIFFER: {crowd.lost} lost, bytes {[client.bytes for client in crowd.steady]}.")
    lines.append(f"{crowd.visits} visits of clients that come and go, {crowd.silent} without a byte.")
    arrived = statistics.fmean(sample["solutions"] for sample in samples) / watch.promised if samples else 0
    lines.append(f"{arrived:.1%} of the receiver's solutions arrived; what a port cannot hold is lost, as on a real one.")
    still = sum(sample["spectra"] == 0 for sample in samples)
    lines.append(f"THE SPECTRUM STOOD STILL in {still} samples." if still else "The spectrum lived all the time.")
    blind = watch.unread > MOST_UNREAD * watch.looked
    lines.append(f"{watch.unread} of {watch.looked} looks at the screen could not be read{', WHICH IS TOO MANY' if blind else ''}.")
    rising = verdict.too_much(samples) if len(samples) > 2 else []
    lines += [f"{series.title} RISES: {verdict.rise(samples, series.name):.2f} {series.unit} in the second half, "
              f"{series.limit:g} at most." for series in rising] or ["Nothing rises."]
    return Outcome(good and equal and not rising and not still and not blind, lines)


def table(samples):
    half = samples[-1]["seconds"] / 2
    rows = ["| | first half, median | second half, median | most | rise | limit |", "|---|---|---|---|---|---|"]
    for series in verdict.SERIES:
        first = statistics.median(sample[series.name] for sample in samples if sample["seconds"] < half)
        second = statistics.median(sample[series.name] for sample in samples if sample["seconds"] >= half)
        most = max(sample[series.name] for sample in samples)
        unit = f" {series.unit}" if series.unit else ""
        rows.append(f"| {series.title} | {first:.1f}{unit} | {second:.1f}{unit} | {most:.1f}{unit} | "
                    f"{verdict.rise(samples, series.name):+.2f}{unit} | {series.limit:g}{unit} |")
    return "\n".join(rows)


def panels(samples, speed):
    def line(name):
        return [(sample["seconds"] * speed / 3600, sample[name]) for sample in samples]

    return [(title, unit, [(label, line(name)) for name, label in lines]) for title, unit, lines in PANELS]


def write(folder, arguments, samples, found):
    folder.mkdir(parents=True, exist_ok=True)
    with (folder / "day.csv").open("w", encoding="ascii", newline="") as file:
        numbers = csv.DictWriter(file, samples[0].keys(), lineterminator="\n")
        numbers.writeheader()
        numbers.writerows(samples)
    drawing.draw(folder / "day.svg", panels(samples, arguments.speed), samples[-1]["seconds"] * arguments.speed / 3600)
    limits = [f"- {series.title}, {series.limit:g} {series.unit}".rstrip() + f": {series.reason}."
              for series in verdict.SERIES]
    (folder / "day.md").write_text(PAGE.format(
        clients=arguments.clients, comers=arguments.comers, period=arguments.period, speed=arguments.speed,
        rate=arguments.rate, whole=arguments.speed * arguments.rate, hours=f"{arguments.minutes * arguments.speed / 60:g}", minutes=arguments.minutes,
        date=datetime.date.today().isoformat(), count=len(samples), note=arguments.note, table=table(samples),
        lines="\n".join(f"- {line}" for line in found.lines), limits="\n".join(limits)), encoding="utf-8")
