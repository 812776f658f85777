#!/usr/bin/env python3
"""Draws how the time of an LCF grows: growth_plot.py RESULT.json PICTURE.svg

RESULT.json is what `bench_rows --benchmark_filter=Growth --benchmark_format=json` prints.
"""

import json
import math
import re
import sys

WIDTH, HEIGHT, LEFT, TOP, RIGHT, BOTTOM = 380, 300, 62, 34, 14, 48


def medians(path):
    """{(side, energies): milliseconds}, the median where there are repetitions."""
    times = {}
    for run in json.load(open(path))["benchmarks"]:
        match = re.match(r"Growth/side:(\d+)/energies:(\d+)", run["name"])
        if match and run.get("aggregate_name", "median") == "median":
            times.setdefault(tuple(map(int, match.groups())), []).append(run["real_time"])
    return {key: sorted(values)[len(values) // 2] for key, values in times.items()}


def decades(low, high):
    return range(math.floor(math.log10(low)), math.ceil(math.log10(high)) + 1)


def panel(offset, title, label, points, unit="milliseconds"):
    xs, ys = zip(*points)
    xd, yd = decades(min(xs), max(xs)), decades(min(ys), max(ys))

    def x(value):
        return offset + LEFT + (math.log10(value) - xd[0]) / (xd[-1] - xd[0]) * (
            WIDTH - LEFT - RIGHT)

    def y(value):
        return HEIGHT - BOTTOM - (math.log10(value) - yd[0]) / (yd[-1] - yd[0]) * (
            HEIGHT - TOP - BOTTOM)

    def text(px, py, words, anchor="middle", size=12, extra=""):
        return (f'<text x="{px:.1f}" y="{py:.1f}" font-size="{size}" text-anchor="{anchor}"'
                f'{extra}>{words}</text>')

    def power(d):
        return "10" + str(d).translate(str.maketrans("-0123456789", "⁻⁰¹²³⁴⁵⁶⁷⁸⁹"))

    out = [text(offset + WIDTH / 2 + 20, 20, title, size=13)]
    for d in xd:
        px = x(10 ** d)
        out.append(f'<path d="M{px:.1f} {TOP}V{HEIGHT - BOTTOM}" stroke="#ddd"/>')
        out.append(text(px, HEIGHT - BOTTOM + 16, power(d)))
    for d in yd:
        py = y(10 ** d)
        out.append(f'<path d="M{offset + LEFT} {py:.1f}H{offset + WIDTH - RIGHT}" stroke="#ddd"/>')
        out.append(text(offset + LEFT - 6, py + 4, power(d), "end"))
    out.append(text(offset + WIDTH / 2 + 20, HEIGHT - 12, label))
    middle = HEIGHT / 2
    out.append(text(offset + 16, middle, unit,
                    extra=f' transform="rotate(-90 {offset + 16} {middle})"'))
    # In proportion to the largest.
    lowest = max(min(xs), xs[-1] * 10 ** yd[0] / ys[-1])
    out.append(f'<path d="M{x(lowest):.1f} {y(ys[-1] * lowest / xs[-1]):.1f}'
               f'L{x(xs[-1]):.1f} {y(ys[-1]):.1f}" stroke="#888" stroke-dasharray="5 4"/>')
    line = "L".join(f"{x(a):.1f} {y(b):.1f}" for a, b in points)
    out.append(f'<path d="M{line}" stroke="#1f5fa8" stroke-width="1.6" fill="none"/>')
    out += [f'<circle cx="{x(a):.1f}" cy="{y(b):.1f}" r="3.5" fill="#1f5fa8"/>' for a, b in points]
    return out


def write(path, panels):
    with open(path, "w") as out:
        out.write(f'<svg xmlns="http://www.w3.org/2000/svg" width="{len(panels) * WIDTH}" '
                  f'height="{HEIGHT}" font-family="sans-serif">\n'
                  f'<rect width="100%" height="100%" fill="#fff"/>\n')
        out.write("\n".join(line for lines in panels for line in lines) + "\n</svg>\n")


def main():
    times = medians(sys.argv[1])
    pixels = sorted((side * side, t) for (side, energies), t in times.items() if energies == 100)
    energies = sorted((n, t) for (side, n), t in times.items() if side == 512)
    write(sys.argv[2], [panel(0, "100 energies", "pixels, each a spectrum", pixels),
                        panel(WIDTH, "512 x 512 pixels", "energies", energies)])


if __name__ == "__main__":
    main()
