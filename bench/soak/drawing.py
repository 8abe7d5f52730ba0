"""Draws lines over time as one SVG, in colours that can be read on white and on black."""

import math

WIDTH, PANEL, LEFT, RIGHT, TOP, GAP = 860, 110, 70, 20, 34, 46
INK, RULE, COLOURS = "#808890", "#80889060", ("#2f81f7", "#e0731d", "#1a9c5b")
TICKS = 3


def step_of(span):
    """The smallest of 1, 2, 5, 10, ... that makes no more than a few steps of the span."""
    raw = max(span, 1e-9) / TICKS
    power = 10 ** math.floor(math.log10(raw))
    return next(factor * power for factor in (1, 2, 5, 10) if factor * power >= raw)


def bounds(values):
    """A range from 0 up, in whole steps; of what is far from 0 only the part that is used."""
    low, high = min(values), max(values)
    if low > 0 and high - low > low / 2 or low >= 0 and high < 50:
        low = 0
    step = step_of(max(high - low, abs(high) / 50, 1e-6))
    return math.floor(low / step) * step, max(math.ceil(high / step), math.floor(low / step) + 1) * step, step


def text(x, y, words, anchor="start", colour=INK, size=12):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{colour}" font-size="{size}">{words}</text>'


def panel(top, title, unit, lines, hours):
    """lines: (label, [(hour, value)]) each."""
    low, high, step = bounds([value for _, points in lines for _, value in points])
    right = WIDTH - RIGHT

    def place(hour, value):
        return LEFT + hour / hours * (right - LEFT), top + PANEL - (value - low) / (high - low) * PANEL

    parts = [text(LEFT, top - 8, title + (f" [{unit}]" if unit else ""))]
    for number in range(round((high - low) / step) + 1):
        value = low + number * step
        _, y = place(0, value)
        parts.append(f'<line x1="{LEFT}" y1="{y:.1f}" x2="{right}" y2="{y:.1f}" stroke="{RULE}"/>')
        parts.append(text(LEFT - 8, y + 4, f"{value:g}", "end"))
    edge = right
    for colour, (label, points) in reversed(list(zip(COLOURS, lines))):
        places = " ".join(f"{x:.1f},{y:.1f}" for x, y in (place(*point) for point in points))
        parts.append(f'<polyline points="{places}" fill="none" stroke="{colour}" stroke-width="1.5"/>')
        parts.append(text(edge, top - 8, label, "end", colour))
        edge -= 8 * len(label) + 16
    return parts


def hours_below(top, hours):
    step = step_of(hours) / 2 if hours > 6 else step_of(hours)
    parts = []
    for number in range(int(hours / step + 1e-9) + 1):
        x = LEFT + number * step / hours * (WIDTH - RIGHT - LEFT)
        parts.append(text(x, top, f"{number * step:g} h", "middle"))
    return parts


def draw(path, panels, hours):
    """panels: (title, unit, lines) each, as for panel()."""
    parts, top = [], TOP
    for title, unit, lines in panels:
        parts += panel(top, title, unit, lines, hours)
        top += PANEL + GAP
    parts += hours_below(top - GAP + 18, hours)
    height = top - GAP + 30
    path.write_text(f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
                    f'viewBox="0 0 {WIDTH} {height}" font-family="sans-serif">\n' + "\n".join(parts) + "\n</svg>\n",
                    encoding="utf-8")
