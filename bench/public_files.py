"""Readers of the public spectra: points (energy in eV, mu-t) in order of energy."""

import math

HC = 12398.424360387684  # eV Angstrom


def read_columns(path):
    rows = [line.split()[:2] for line in path.read_text().splitlines()
            if line.strip() and not line.startswith("#")]
    return sorted((float(e), float(mu)) for e, mu in rows)


def read_9809(path):
    """Energy and mu-t: the measured angle and the two beams behind the line of offsets."""
    spacing, points, behind = None, [], False
    for line in path.read_text(errors="replace").splitlines():
        items = line.split()
        if "D=" in items and spacing is None:
            spacing = float(items[items.index("D=") + 1])
        elif items[:1] == ["Offset"]:
            behind = True
        elif behind and len(items) >= 5:
            angle, i0, i1 = (float(items[i]) for i in (1, 3, 4))
            points.append((HC / (2.0 * spacing * math.sin(math.radians(angle))),
                           math.log(i0 / i1)))
    return sorted(points)
