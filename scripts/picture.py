#!/usr/bin/env python3
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
"""usage: picture.py BENCH.json PICTURE.svg

Draws the parts of a getProfile round trip from what `./dev bench` has measured of it.
"""
import json
import sys

# The counters of the benchmark roundTrip, in the order of time, and where the time goes.
PARTS = [
    ("request", "caller", "request built, its line logged"),
    ("enqueue", "caller", "line kept, turn taken, locks"),
    ("wake_worker", "wake", "written, caller asleep, worker awake"),
    ("loop_lines", "worker", "four lines of the event loop"),
    ("drain", "worker", "two reads of the eventfd"),
    ("handling", "worker", "lock, line of the request"),
    ("answer", "worker", "profile found and copied"),
    ("wake_caller", "wake", "notified, worker asleep, caller awake"),
    ("response", "caller", "response told in a line"),
    ("return", "caller", "line kept, result returned"),
]
WIDTH, LEFT, RIGHT = 860, 80, 20
LANES = {"caller": 0, "wake": 1, "worker": 2}
LANE, GAP = 24, 6

STYLE = """
svg { --back: #ffffff; --ink: #1f2328; --faint: #8b949e; --line: #d0d7de;
      --caller: #0969da; --worker: #1a7f37; --wake: #bf8700; }
@media (prefers-color-scheme: dark) {
  svg { --back: #0d1117; --ink: #e6edf3; --faint: #8b949e; --line: #30363d;
        --caller: #58a6ff; --worker: #3fb950; --wake: #d29922; } }
text { font: 13px sans-serif; fill: var(--ink); }
.head { font-weight: bold; } .small { font-size: 11px; fill: var(--faint); }
.number { text-anchor: end; font-variant-numeric: tabular-nums; } .middle { text-anchor: middle; }
.back { fill: var(--back); } .line { stroke: var(--line); }
.caller { fill: var(--caller); } .worker { fill: var(--worker); } .wake { fill: var(--wake); }
"""


def trips(path):
    """By the number of cores: microseconds of each part, rounded as they are shown, and those of
    the whole without time stamps."""
    with open(path, encoding="utf-8") as file:
        found = [b for b in json.load(file)["benchmarks"] if b["name"].startswith("roundTrip/")]
    if not found:
        sys.exit(f"picture.py: {path} holds no benchmark roundTrip")
    return {
        int(b["name"].split("cores:")[1].split("/")[0]): (
            [round(b[name] / 1000, 2) for name, _, _ in PARTS],
            b["unstamped_ns"] / 1000,
        )
        for b in found
    }


def text(x, y, content, kind=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" class="{kind}">{content}</text>'


def timeline(top, cores, parts, unstamped):
    """One lane for each thread and one for being woken, from left to right in time."""
    total = sum(parts)
    scale = (WIDTH - LEFT - RIGHT) / total
    place = "one core" if cores == 1 else "two cores"
    out = [text(LEFT, top + 14, f"{place}: {total:.1f} µs", "head"),
           text(WIDTH - RIGHT, top + 14, f"{unstamped:.1f} µs without time stamps", "small number")]
    top += 24
    for lane, row in LANES.items():
        y = top + row * (LANE + GAP)
        out.append(text(10, y + 16, "wake-up" if lane == "wake" else lane))
        out.append(f'<line x1="{LEFT}" x2="{WIDTH - RIGHT}" y1="{y + LANE}" y2="{y + LANE}" '
                   'class="line"/>')
    x = LEFT
    for number, ((_, lane, _), part) in enumerate(zip(PARTS, parts), 1):
        y, width = top + LANES[lane] * (LANE + GAP), part * scale
        out.append(f'<rect x="{x:.1f}" y="{y}" width="{max(width - 0.5, 0.5):.1f}" '
                   f'height="{LANE}" class="{lane}"/>')
        if width > 14:
            out.append(f'<text x="{x + width / 2:.1f}" y="{y + 17}" class="middle" '
                       f'style="fill: var(--back)">{number}</text>')
        x += width
    return out, top + 3 * (LANE + GAP) + 16


def table(top, measured):
    columns = {cores: WIDTH - RIGHT - 120 * (len(measured) - 1 - i)
               for i, cores in enumerate(sorted(measured))}
    out = [text(x, top, "one core, µs" if cores == 1 else "two cores, µs", "number head")
           for cores, x in columns.items()]
    rows = [(f"{number}", lane, label, {c: measured[c][0][number - 1] for c in columns})
            for number, (_, lane, label) in enumerate(PARTS, 1)]
    rows.append(("", "", "together", {c: sum(measured[c][0]) for c in columns}))
    for number, lane, label, values in rows:
        top += 19
        if lane:
            out.append(f'<rect x="10" y="{top - 10}" width="12" height="12" class="{lane}"/>')
        out.append(text(46, top, number, "number"))
        who = {"caller": "caller: ", "worker": "worker: "}.get(lane, "")
        out.append(text(LEFT, top, who + label, "" if lane else "head"))
        out += [text(columns[c], top, f"{value:.2f}", "number") for c, value in values.items()]
    return out, top + 16


def main(source, target):
    measured = trips(source)
    shapes, top = [text(10, 22, "Where the time of one getProfile goes", "head")], 36
    for cores, (parts, unstamped) in sorted(measured.items()):
        more, top = timeline(top, cores, parts, unstamped)
        shapes += more
    more, height = table(top + 10, measured)
    with open(target, "w", encoding="utf-8") as file:
        file.write("\n".join([
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" '
            f'width="{WIDTH}" height="{height}">',
            f"<style>{STYLE}</style>",
            f'<rect width="{WIDTH}" height="{height}" class="back"/>',
            *shapes, *more, "</svg>\n"]))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
