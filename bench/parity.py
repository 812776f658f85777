#!/usr/bin/env python3
"""Edge energies, edge steps and fractions of Tarnwick beside published ones.

    parity.py FOLDER [--batch PATH/TO/tarnwick-batch] [--page docs/parity.md]

FOLDER holds au_lcf_sample_7.03h.dat, au_lcf_ref_foil.dat, au_lcf_ref_au3cl_aq.dat,
fe_metal_rt.xdi and pf_bl12c_hg_l3_transmission.9809.dat, public measurements that are no part of
the project. Without them nothing is made, with a message. The tables of the
page are made anew. What the program finds is held against
known figures and against this script's own fit; the script ends with 1 when one is off. Then one
choice of the rule after the other is changed, to see which of them makes the differences.
"""

import argparse
import itertools
import math
import pathlib
import subprocess
import sys
import tempfile

from public_files import read_9809, read_columns

SAMPLE, FOIL, CHLORIDE = ("au_lcf_sample_7.03h.dat", "au_lcf_ref_foil.dat",
                          "au_lcf_ref_au3cl_aq.dat")
IRON, MERCURY = "fe_metal_rt.xdi", "pf_bl12c_hg_l3_transmission.9809.dat"
OURS = ((-100.0, -10.0), (10.0, 1000.0))  # eV from E0
PRE_RANGES = ((-100.0, -10.0), (-150.0, -30.0), (-200.0, -30.0), (-150.0, -50.0), (-200.0, -50.0))
POST_RANGES = ((10.0, 1000.0), (25.0, 1000.0), (50.0, 1000.0), (75.0, 1000.0), (100.0, 1000.0),
               (150.0, 1000.0))


def write_columns(path, points):
    path.write_text("".join(f"{e:.12g} {mu:.12g}\n" for e, mu in points))


# The rule, written once more

def solve(matrix, right):
    """Gauss-Jordan elimination with pivots."""
    n = len(right)
    rows = [list(matrix[i]) + [right[i]] for i in range(n)]
    for i in range(n):
        pivot = max(range(i, n), key=lambda r: abs(rows[r][i]))
        rows[i], rows[pivot] = rows[pivot], rows[i]
        for r in range(n):
            if r != i:
                factor = rows[r][i] / rows[i][i]
                rows[r] = [a - factor * b for a, b in zip(rows[r], rows[i])]
    return [rows[i][n] / rows[i][i] for i in range(n)]


def least_squares(columns, y):
    normal = [[math.fsum(a * b for a, b in zip(f, g)) for g in columns] for f in columns]
    return solve(normal, [math.fsum(a * b for a, b in zip(f, y)) for f in columns])


def curve(points, e0, window, degree):
    """A polynomial in (E - E0) / 100 eV through the points of a window about E0."""
    inside = [(e, mu) for e, mu in points if e0 + window[0] <= e < e0 + window[1]]
    xs = [(e - e0) / 100.0 for e, _ in inside]
    factors = least_squares([[x ** i for x in xs] for i in range(degree + 1)],
                            [mu for _, mu in inside])
    return lambda e: sum(c * ((e - e0) / 100.0) ** i for i, c in enumerate(factors))


def half_height(points):
    values = [mu for _, mu in points]
    level = 0.5 * (min(values) + max(values))
    return crossing(points, lambda e: level)


def crossing(points, level):
    """Where a spectrum first rises through a level."""
    for (e, mu), (f, nu) in zip(points, points[1:]):
        a, b = mu - level(e), nu - level(f)
        if a < 0.0 <= b:
            return e - a / (b - a) * (f - e)
    raise ValueError("no edge")


def steepest(points):
    """Where the central difference of a spectrum is largest."""
    slopes = [((c[1] - a[1]) / (c[0] - a[0]), b[0])
              for a, b, c in zip(points, points[1:], points[2:])]
    return max(slopes)[1]


def step(points, e0, pre, post, degree, at=None):
    at = e0 if at is None else at
    return curve(points, e0, post, degree)(at) - curve(points, e0, pre, 1)(at)


def normalised(points, e0, pre=OURS[0], post=OURS[1], degree=1):
    low, high = curve(points, e0, pre, 1), curve(points, e0, post, degree)
    return [(e, (mu - low(e)) / (high(e) - low(e))) for e, mu in points]


def flattened(points, e0, pre, post, degree):
    """Less the pre-edge line, by the step at E0, with the post-edge curve laid flat above E0."""
    low, high = curve(points, e0, pre, 1), curve(points, e0, post, degree)
    size = high(e0) - low(e0)
    return [(e, (mu - low(e) - (high(e) - low(e) - size if e > e0 else 0.0)) / size)
            for e, mu in points]


def value_at(points, e):
    for (a, y), (b, z) in zip(points, points[1:]):
        if a <= e <= b:
            return y + (e - a) / (b - a) * (z - y)
    raise ValueError("outside")


def shares(sample, references, window, sum_is_one=False):
    """Fractions of the references over the energies in a window that all have."""
    low = max([window[0]] + [points[0][0] for points in references])
    high = min([window[1]] + [points[-1][0] for points in references])
    inside = [(e, y) for e, y in sample if low <= e <= high]
    columns = [[value_at(points, e) for e, _ in inside] for points in references]
    y = [v for _, v in inside]
    if not sum_is_one:
        return least_squares(columns, y)
    last = columns[-1]
    free = least_squares([[a - b for a, b in zip(column, last)] for column in columns[:-1]],
                         [a - b for a, b in zip(y, last)])
    return free + [1.0 - sum(free)]


# The program

class Program:
    def __init__(self, batch, folder):
        self.batch = pathlib.Path(batch).resolve()
        self.folder = folder

    def fit(self, sample, references, *settings):
        """The head of the table that fit_spectrum writes."""
        lines = [f"analyzer_set_LCF_std {i} 1 0 {name} 0" for i, name in enumerate(references)]
        lines += [*settings, f"fit_spectrum {sample} fit.dat"]
        (self.folder / "job.bat").write_text("\n".join(lines) + "\n")
        done = subprocess.run([self.batch, "job.bat"], cwd=self.folder, capture_output=True,
                              text=True)
        if done.returncode not in (0, 1) or not (self.folder / "fit.dat").exists():
            sys.exit(f"tarnwick-batch: {done.stdout}{done.stderr}")
        head = {}
        for line in (self.folder / "fit.dat").read_text().splitlines():
            if line.startswith("# ") and " = " in line:
                key, value = line[2:].split(" = ", 1)
                head[key] = value
        (self.folder / "fit.dat").unlink()
        return head


def number(head, key):
    return float(head[key].split()[0])


class Checks:
    def __init__(self):
        self.off = 0

    def near(self, what, found, expected, tolerance):
        if abs(found - expected) > tolerance:
            self.off += 1
            print(f"OFF: {what} is {found:.9g}, not {expected:.9g}", file=sys.stderr)


# The page

def edges(title, points, head, published, tabulated):
    """Lines of the tables for one spectrum of an edge."""
    half, inflection = half_height(points), steepest(points)
    edge = [title, f"{number(head, 'sample E0'):.3f}", f"{number(head, 'sample midE'):.3f}",
            f"{inflection:.2f}", tabulated]
    jump = number(head, "sample edge jump")
    rows = [("the rule: straight lines, -100..-10 and +10..+1000 eV, at midE", jump)]
    pre, post = OURS
    changes = [("at the half height, not midE", half, pre, post, 1),
               ("E0 at the steepest rise", inflection, pre, post, 1),
               ("... and above the edge from +50 eV", inflection, pre, (50.0, 1000.0), 1),
               ("... and below it -200..-50 eV", inflection, (-200.0, -50.0), (50.0, 1000.0), 1),
               ("... and a parabola above it", inflection, (-200.0, -50.0), (50.0, 1000.0), 2)]
    rows += [(text, step(points, *rule)) for text, *rule in changes]
    steps = [[title, text, f"{size:.4f}", f"{size - published:+.4f}"] for text, size in rows]
    spreads = {}
    for degree in (1, 2):
        sizes = [step(points, e0, *windows, degree) for e0, *windows in
                 itertools.product((half, inflection), PRE_RANGES, POST_RANGES)]
        spreads[degree] = (min(sizes), max(sizes))
    return edge, steps, spreads


def gold_rows(cropped, whole, head, head_sum):
    """Fractions of the gold sample by one rule after the other."""
    names = (SAMPLE, FOIL, CHLORIDE)
    everywhere = (0.0, 1e6)

    def fit(source, make, window, sum_is_one=False):
        sample, *references = (make(source[name]) for name in names)
        return shares(sample, references, window, sum_is_one)

    def ours(points):
        return normalised(points, half_height(points))

    e0 = steepest(cropped[FOIL])
    near = (e0 - 20.0, e0 + 30.0)
    inner = (e0 - 30.0, e0 + 70.0)

    def other(points):
        return flattened(points, e0, (-150.0, -30.0), (150.0, 1000.0), 1)

    def bent(points):
        return flattened(points, e0, (-150.0, -30.0), (150.0, 1000.0), 2)

    def inside_crop(points):
        return flattened(points, e0, (-100.0, -30.0), (50.0, 1000.0), 1)

    own = fit(cropped, ours, everywhere)
    rows = [("the rule, 11800..12120 eV (the program)",
             [number(head, f"reference {i} share") for i in range(2)]),
            ("... with a sum of 1 (the program)",
             [number(head_sum, f"reference {i} share") for i in range(2)]),
            ("... compared from -20 to +30 eV only", fit(cropped, ours, near)),
            ("... and with a sum of 1", fit(cropped, ours, near, True)),
            ("... compared from -30 to +70 eV only", fit(cropped, ours, inner)),
            ("by the step at one E0, lines -100..-30 and from +50 eV, -20..+30 eV",
             fit(cropped, inside_crop, near)),
            ("whole files, lines -150..-30 and from +150 eV, -20..+30 eV", fit(whole, other, near)),
            ("... with a sum of 1", fit(whole, other, near, True)),
            ("... with a parabola above the edge", fit(whole, bent, near)),
            ("... parabola and a sum of 1", fit(whole, bent, near, True))]
    return own, rows


def page(data, program, checks):
    whole = {name: read_columns(data / name) for name in (SAMPLE, FOIL, CHLORIDE)}
    cropped = {name: [p for p in points if 11800.0 <= p[0] <= 12120.0]
               for name, points in whole.items()}
    for name, points in cropped.items():
        write_columns(program.folder / name, points)
    gold = program.fit(SAMPLE, [FOIL, CHLORIDE])
    gold_sum = program.fit(SAMPLE, [FOIL, CHLORIDE], "analyzer_set_LCF_constraints sum1")
    own, fits = gold_rows(cropped, whole, gold, gold_sum)
    checks.near("Au: foil", number(gold, "reference 0 share"), 0.5244, 5e-4)
    checks.near("Au: chloride", number(gold, "reference 1 share"), 0.4785, 5e-4)
    for i in range(2):
        checks.near(f"Au: own fit of reference {i}", number(gold, f"reference {i} share"), own[i],
                    1e-8)
    singles = []
    for title, name, reader, published, tabulated, expected in (
            ("Fe foil, Fe K", IRON, read_columns, 3.0023, "7112.0", (7119.136, 7118.528, 2.90115)),
            ("Hg, Hg L3", MERCURY, read_9809, 1.3804, "12284", (12283.038, 12282.540, 1.29791))):
        points = reader(data / name)
        (program.folder / name).write_bytes((data / name).read_bytes())
        head = program.fit(name, [name])
        for key, value, tolerance in zip(("sample E0", "sample midE", "sample edge jump"),
                                         expected, (1e-3, 1e-3, 1e-5)):
            checks.near(f"{title}: {key}", number(head, key), value, tolerance)
        singles.append((title, published, edges(title, points, head, published, tabulated)))
    foil = program.fit(FOIL, [FOIL])
    gold_edge = ["Au foil, Au L3", f"{number(foil, 'sample E0'):.3f}",
                 f"{number(foil, 'sample midE'):.3f}", f"{steepest(cropped[FOIL]):.2f}", "11919"]
    return {
        "edges": table(["spectrum", "half height (E0), eV", "midE, eV", "steepest rise, eV",
                        "tabulated, eV"], [parts[0] for _, _, parts in singles] + [gold_edge]),
        "steps": table(["spectrum", "rule", "step", "less published"],
                       [row for _, _, parts in singles for row in parts[1]]),
        "spreads": table(["spectrum", "straight line above the edge", "parabola above the edge",
                          "published"], [spread(*single) for single in singles]),
        "gold": table(["reference", "share", "error"],
                      [["foil" if i == 0 else "chloride"] +
                       [f"{number(gold, f'reference {i} {what}'):.4f}"
                        for what in ("share", "share error")] for i in range(2)]),
        "fits": table(["rule", "foil", "chloride", "sum"],
                      [[text] + [f"{value:.4f}" for value in (*found, sum(found))]
                       for text, found in fits])}


def spread(title, published, parts):
    sizes = [f"{low:.3f} .. {high:.3f}" for low, high in (parts[2][1], parts[2][2])]
    return [title, *sizes, str(published)]


def table(head, rows):
    lines = ["| " + " | ".join(cells) + " |\n" for cells in (head, *rows)]
    lines.insert(1, "|" + "---|" * len(head) + "\n")
    return "".join(lines)


def put(text, tables):
    """The page with these tables between their marks."""
    for name, lines in tables.items():
        start, end = f"<!-- {name} -->\n", f"<!-- end of {name} -->"
        before, rest = text.split(start, 1)
        text = before + start + lines + end + rest.split(end, 1)[1]
    return text


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--batch", default="build/release/src/programs/tarnwick-batch")
    parser.add_argument("--page", type=pathlib.Path, default="docs/parity.md")
    args = parser.parse_args()
    data = args.folder.resolve()
    missing = [name for name in (SAMPLE, FOIL, CHLORIDE, IRON, MERCURY)
               if not (data / name).exists()]
    if missing:
        print(f"skipped: not in {data}: {', '.join(missing)}", file=sys.stderr)
        return
    checks = Checks()
    with tempfile.TemporaryDirectory() as folder:
        tables = page(data, Program(args.batch, pathlib.Path(folder)), checks)
    args.page.write_text(put(args.page.read_text(), tables))
    sys.exit(1 if checks.off else 0)


if __name__ == "__main__":
    main()
