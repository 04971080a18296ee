#!/usr/bin/env python3
"""Writes how maps and lint grow with the number of filters into docs/performance.md, as a table, and into
docs/growth.svg, as a picture: scripts/growth.py MACHINE_BENCHMARK.json

The file is what machine_benchmark writes with --benchmark_out=FILE --benchmark_out_format=json."""
import json
import math
import pathlib
import re
import sys

DOCS = pathlib.Path(__file__).resolve().parent.parent / "docs"
COLOURS = {"Map": "#0b62a8", "Lint": "#b3470f", "Explain": "#3c7a2c"}
LEFT, TOP, WIDTH, HEIGHT = 70, 20, 520, 300
BEGIN, END = "<!-- growth: written by scripts/growth.py -->", "<!-- end of growth -->"


def read_series(path):
    """By work and number of filters, milliseconds and bytes."""
    series = {work: {} for work in COLOURS}
    try:
        runs = json.loads(pathlib.Path(path).read_text())["benchmarks"]
    except (OSError, ValueError, KeyError, TypeError) as error:
        sys.exit(f"{path}: expected the JSON of machine_benchmark: {error}")
    for run in runs:
        found = re.fullmatch(r"(\w+)/(\d+)", run["name"])
        if found and found[1] in series:
            series[found[1]][int(found[2])] = (run["cpu_time"], run["peak"])
    if not all(series.values()):
        sys.exit(f"{path}: expected results of {', '.join(COLOURS)}, each by the number of filters")
    return series


def time_text(milliseconds):
    return f"{milliseconds:.2g} ms" if milliseconds < 10 else f"{milliseconds:,.0f} ms"


def peak_text(size):
    return f"{size / 1024:,.0f} KiB" if size < 1024 * 1024 else f"{size / 1024 / 1024:.1f} MiB"


def table(series):
    lines = ["| Filters | Map | Peak | Lint | Peak | Explanation |", "|---:|---:|---:|---:|---:|---:|"]
    for filters in series["Map"]:
        cells = [f"{filters:,}"]
        for work in ("Map", "Lint"):
            milliseconds, peak = series[work][filters]
            cells += [time_text(milliseconds), peak_text(peak)]
        cells.append(time_text(series["Explain"][filters][0]))
        lines.append("| " + " | ".join(cells) + " |")
    return "\n".join(lines)


def picture(series):
    """Both axes are logarithmic."""
    counts = list(series["Map"])
    times = [time for points in series.values() for time, _ in points.values()]
    lowest, highest = math.floor(math.log10(min(times))), math.ceil(math.log10(max(times)))

    def x(filters):
        return LEFT + WIDTH * math.log(filters / counts[0]) / math.log(counts[-1] / counts[0])

    def y(milliseconds):
        return TOP + HEIGHT * (highest - math.log10(milliseconds)) / (highest - lowest)

    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {LEFT + WIDTH + 70} {TOP + HEIGHT + 50}" '
        'font-family="sans-serif" font-size="12">',
        "<title>Time by number of filters</title>",
        '<rect width="100%" height="100%" fill="white"/>',
    ]
    for power in range(lowest, highest + 1):
        at = y(10**power)
        parts.append(f'<path d="M{LEFT} {at:.1f}h{WIDTH}" stroke="#ddd"/>')
        parts.append(f'<text x="{LEFT - 6}" y="{at + 4:.1f}" text-anchor="end">{10.0**power:g} ms</text>')
    for filters in counts:
        parts.append(f'<path d="M{x(filters):.1f} {TOP}v{HEIGHT}" stroke="#ddd"/>')
        parts.append(f'<text x="{x(filters):.1f}" y="{TOP + HEIGHT + 18}" text-anchor="middle">{filters:,}</text>')
    parts.append(f'<text x="{LEFT + WIDTH / 2}" y="{TOP + HEIGHT + 38}" text-anchor="middle">filters</text>')
    above = -math.inf
    for work, points in sorted(series.items(), key=lambda entry: -list(entry[1].values())[-1][0]):
        line = " ".join(f"{x(filters):.1f},{y(time):.1f}" for filters, (time, _) in points.items())
        above = max(y(list(points.values())[-1][0]) + 4, above + 14)  # names do not cover each other
        parts.append(f'<polyline points="{line}" fill="none" stroke="{COLOURS[work]}" stroke-width="2"/>')
        parts.append(f'<text x="{LEFT + WIDTH + 6}" y="{above:.1f}" fill="{COLOURS[work]}">{work}</text>')
    return "\n".join(parts + ["</svg>", ""])


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    series = read_series(sys.argv[1])
    page = DOCS / "performance.md"
    before, begin, rest = page.read_text().partition(BEGIN)
    _, end, after = rest.partition(END)
    if not begin or not end:
        sys.exit(f"{page}: expected the lines {BEGIN} and {END}")
    page.write_text(f"{before}{BEGIN}\n\n{table(series)}\n\n{END}{after}")
    (DOCS / "growth.svg").write_text(picture(series))


if __name__ == "__main__":
    main()
