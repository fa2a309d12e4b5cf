#!/usr/bin/env python3
"""Draws time against size from the JSON of scripts/bench. usage: plot.py FIGURES.json PICTURE.svg"""

import json
import math
import sys

WIDTH, HEIGHT, LEFT, TOP, BOTTOM = 720, 380, 60, 40, 50
RIGHT = WIDTH - 190
CURVES = [("Load", "load (ours)", "#c2410c"), ("PugixmlWalk", "pugixml and walk", "#1d4ed8"),
          ("Libxml2DOM", "libxml2's DOM", "#6b7280"), ("BareReader", "libxml2, no handler", "#15803d")]
SIZES = (1, 10, 100)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as figures:
        report = json.load(figures)
    # Relative to the bare reader at 1 MB, so that the picture shows no absolute time.
    unit = report["medians_ms"]["BareReader/1"]
    curves = [(label, colour, [report["medians_ms"][f"{name}/{size}"] / unit for size in SIZES])
              for name, label, colour in CURVES]
    low = min(min(values) for _, _, values in curves)
    top = max(max(values) for _, _, values in curves)

    def x(size):
        return LEFT + (RIGHT - LEFT) * math.log10(size / SIZES[0]) / math.log10(SIZES[-1] / SIZES[0])

    def y(value):
        return HEIGHT - BOTTOM - (HEIGHT - BOTTOM - TOP) * math.log(value / low) / math.log(top / low)

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
           'font-family="sans-serif" font-size="13">',
           f'<rect width="{WIDTH}" height="{HEIGHT}" fill="#fff"/>',
           f'<text x="{LEFT}" y="22">Time to load a story, as a multiple of what libxml2 alone takes '
           'for 1 MB</text>']
    for size in SIZES:
        out.append(f'<line x1="{x(size):.1f}" x2="{x(size):.1f}" y1="{TOP}" y2="{HEIGHT - BOTTOM}" '
                   'stroke="#e5e7eb"/>'
                   f'<text x="{x(size):.1f}" y="{HEIGHT - BOTTOM + 20}" text-anchor="middle">{size} MB</text>')
    for power in range(int(math.log10(top)) + 1):
        out.append(f'<line x1="{LEFT}" x2="{RIGHT}" y1="{y(10**power):.1f}" y2="{y(10**power):.1f}" '
                   f'stroke="#e5e7eb"/><text x="{LEFT - 8}" y="{y(10**power) + 4:.1f}" '
                   f'text-anchor="end">{10**power}</text>')
    last = HEIGHT
    for label, colour, values in sorted(curves, key=lambda curve: curve[2][-1]):
        points = " ".join(f"{x(size):.1f},{y(value):.1f}" for size, value in zip(SIZES, values))
        last = min(y(values[-1]) + 4, last - 16)
        out.append(f'<polyline points="{points}" fill="none" stroke="{colour}" stroke-width="2"/>'
                   f'<text x="{RIGHT + 8}" y="{last:.1f}" fill="{colour}">{label}: {values[-1]:.0f}</text>')
    out.append(f'<text x="{LEFT}" y="{HEIGHT - 8}" fill="#6b7280" font-size="11">'
               f'{report["machine"]}, {report["date"]}</text></svg>\n')
    with open(sys.argv[2], "w", encoding="utf-8") as picture:
        picture.write("\n".join(out))


if __name__ == "__main__":
    main()
