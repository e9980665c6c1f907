"""A plot of time and memory over the size of the store, as an SVG that is readable on light and on dark pages."""

import math
from html import escape

from table import series

MIB = 1 << 20
WIDTH, PANEL, LEFT, RIGHT, TOP = 760, 300, 64, 150, 44
LABEL_GAP = 15

# A colour each on light and on dark ground, in the order in which programs are first measured.
COLOURS = [("#2a78d6", "#3987e5"), ("#eb6834", "#d95926"), ("#1baf7a", "#199e70"), ("#eda100", "#c98500"),
           ("#e87ba4", "#d55181"), ("#4a3aa7", "#9085e9"), ("#008300", "#4fa84f"), ("#e34948", "#e66767")]
YARDSTICKS = ("cp", "cat", "floor")  # drawn in grey: what the others are measured by

STYLE = """text { font: 12px system-ui, sans-serif; fill: #52514e }
.title { font-weight: 600; font-size: 14px; fill: #0b0b0b }
.ground { fill: #fcfcfb }
.grid { stroke: #e4e3df; stroke-width: 1 }
.line { fill: none; stroke-width: 2; stroke-linejoin: round }
.yard { stroke: #8a8984; stroke-dasharray: 5 4 }
.dot.yard { fill: #8a8984; stroke: none }
"""
DARK = """text { fill: #c3c2b7 }
.title { fill: #ffffff }
.ground { fill: #1a1a19 }
.grid { stroke: #383835 }
"""


def style():
    light = "".join(f".c{i} {{ stroke: {c} }} .dot.c{i} {{ fill: {c}; stroke: none }}\n"
                    for i, (c, _) in enumerate(COLOURS))
    dark = "".join(f".c{i} {{ stroke: {c} }} .dot.c{i} {{ fill: {c} }}\n" for i, (_, c) in enumerate(COLOURS))
    return f"<style>\n{STYLE}{light}@media (prefers-color-scheme: dark) {{\n{DARK}{dark}}}\n</style>\n"


class Axis:
    """A logarithmic one, from the values that it has to show to a stretch of pixels."""

    def __init__(self, values, begin, end):
        low, high = math.log10(min(values)), math.log10(max(values))
        margin = max((high - low) * 0.05, 0.05)
        self.low, self.high, self.begin, self.end = low - margin, high + margin, begin, end

    def at(self, value):
        return self.begin + (math.log10(value) - self.low) / (self.high - self.low) * (self.end - self.begin)

    def ticks(self):
        """Powers of ten, and 2 and 5 times them where there is room."""
        steps = (1, 2, 5) if self.high - self.low < 2.2 else (1,)
        powers = range(math.floor(self.low), math.ceil(self.high) + 1)
        return [s * 10.0 ** p for p in powers for s in steps if self.low <= math.log10(s * 10.0 ** p) <= self.high]


def number(value):
    return f"{value:,.0f}" if value >= 1 else f"{value:.3f}".rstrip("0")


def spread(places):
    """Labels that would lie over one another, moved apart."""
    moved = []
    for y, text in sorted(places):
        moved.append((max(y, moved[-1][0] + LABEL_GAP) if moved else y, text))
    return moved


def panel(lines, top, title, unit, value):
    """One curve a program; `value` gives what is shown of a result."""
    points = {name: [(r["bytes"] / MIB, max(value(r), 0.001)) for r in of] for name, of in lines.items()}
    flat = [point for of in points.values() for point in of]
    x = Axis([p[0] for p in flat], LEFT, WIDTH - RIGHT)
    y = Axis([p[1] for p in flat], top + PANEL - 40, top + TOP)
    out = f'<text class="title" x="{LEFT}" y="{top + 22}">{escape(title)}</text>\n'
    for tick in x.ticks():
        out += f'<path class="grid" d="M{x.at(tick):.1f} {y.end}V{y.begin}"/>\n'
        out += f'<text x="{x.at(tick):.1f}" y="{y.begin + 18}" text-anchor="middle">{number(tick)} MiB</text>\n'
    for tick in y.ticks():
        out += f'<path class="grid" d="M{x.begin} {y.at(tick):.1f}H{x.end}"/>\n'
        out += f'<text x="{x.begin - 8}" y="{y.at(tick) + 4:.1f}" text-anchor="end">{number(tick)} {unit}</text>\n'
    ends, colour = [], 0
    for name, of in points.items():
        look = "yard"
        if name not in YARDSTICKS:
            look, colour = f"c{colour % len(COLOURS)}", colour + 1
        path = "L".join(f"{x.at(a):.1f} {y.at(b):.1f}" for a, b in of)
        out += f'<path class="line {look}" d="M{path}"/>\n'
        for a, b in of:
            tip = f"{name}: {number(a)} MiB, {b:.2f} {unit}"
            out += f'<circle class="dot {look}" cx="{x.at(a):.1f}" cy="{y.at(b):.1f}" r="3.5"><title>{escape(tip)}</title></circle>\n'
        ends.append((y.at(of[-1][1]), (name, look, x.at(of[-1][0]), y.at(of[-1][1]))))
    for at, (name, look, right, end) in spread(ends):
        out += f'<path class="line {look}" style="stroke-width:1" d="M{right:.1f} {end:.1f}L{x.end + 12} {at:.1f}"/>\n'
        out += f'<text x="{x.end + 16}" y="{at + 4:.1f}">{escape(name)}</text>\n'
    return out


def plot(results):
    """Of the first kind of store that there are several sizes of; empty where there is none."""
    found = series(results)
    if not found:
        return ""
    first = next(r["kind"] for r in results if any(kind == r["kind"] for kind, _ in found))
    names = list(dict.fromkeys(r["program"] for r in results))
    # One line for all numbers of workers: the table tells them apart.
    lines = {name: found[first, name] for name in names if (first, name) in found and "--jobs" not in name}
    height = 2 * PANEL
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" height="{height}" '
            f'role="img" aria-label="Time and peak memory over the size of the store">\n{style()}'
            f'<rect class="ground" width="{WIDTH}" height="{height}"/>\n'
            + panel(lines, 0, f"Seconds ({first})", "s", lambda r: r["seconds"])
            + panel(lines, PANEL, f"Memory at the peak ({first})", "MiB", lambda r: r["peak"] / MIB) + "</svg>\n")
