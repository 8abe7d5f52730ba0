"""What may not rise, and how much of a rise is noise."""

import dataclasses


@dataclasses.dataclass
class Series:
    name: str    # its column in the numbers
    title: str   # over its line
    unit: str
    limit: float  # the rise over the second half that is too much, in the unit
    reason: str


SERIES = [
    Series("resident", "memory, resident", "MiB", 0.5,
           "in half an hour a million solutions arrive: half a byte lost with each of them is as much, and so are ten bytes "
           "with each of the receiver's seconds"),
    Series("anonymous", "memory, its own", "MiB", 0.5, "as above"),
    Series("descriptors", "descriptors", "", 0.5,
           "a single one that is lost in the middle of it shows as more than one; clients that come and go swing by one"),
    Series("threads", "threads", "", 0.5, "as descriptors"),
    Series("interface", "processor, interface thread", "%", 4,
           "a list that grows makes it a multiple; neighbours on a machine cost a few points"),
    Series("program", "processor, whole program", "%", 4, "as above"),
    Series("age", "age of what is shown, median", "ms", 20,
           "a queue that grows makes it seconds; the screen is painted each 50 ms, so half of that is chance"),
    Series("late", "bytes at a client behind the receiver", "ms", 100,
           "what the program keeps back, and what the simulator is late where the machine is too slow for both"),
    Series("worst", "age of what is shown, oldest", "ms", 100, "two such paints; one late paint is no trend"),
]


def slope(points):
    """Of the straight line with the least squares through (x, y)."""
    count = len(points)
    middle = sum(x for x, _ in points) / count
    mean = sum(y for _, y in points) / count
    spread = sum((x - middle) ** 2 for x, _ in points)
    return sum((x - middle) * (y - mean) for x, y in points) / spread if spread else 0.0


def rise(samples, name):
    """What the line through the second half rises by, from the middle to the end."""
    half = samples[-1]["seconds"] / 2
    points = [(sample["seconds"], sample[name]) for sample in samples if sample["seconds"] >= half]
    return slope(points) * (points[-1][0] - points[0][0])


def too_much(samples):
    return [series for series in SERIES if rise(samples, series.name) > series.limit]
