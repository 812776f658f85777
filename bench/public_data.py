#!/usr/bin/env python3
"""Public measurements through tarnwick-batch: what comes out of it, beside what must.

    public_data.py FOLDER [--batch PATH/TO/tarnwick-batch]

FOLDER holds two folders:

    fe-l-edge/  I0-*.tif and I1-*.tif (123 energies over the Fe L edge, 125 x 125 pixels, 16 bit, not
                compressed) and the references oxidized.dat and reduced.dat
    spectra/    au_lcf_sample_7.03h.dat, au_lcf_ref_foil.dat, au_lcf_ref_au3cl_aq.dat,
                fe_metal_rt.xdi and pf_bl12c_hg_l3_transmission.9809.dat

The iron fractions are held against a fit of this script's own, bin by bin. The other figures are
those that other programs and hand work gave for these spectra. A single spectrum gets into the
program as a stack: frames of 33 x 33 pixels whose counts add up to the transmitted beam of each
energy, seen through one bin of all pixels, which makes mu-t good to about 1e-7.

The scan of the iron stack begins 8 eV below the edge: there is no point for a pre-edge line, which
is 0, and the post-edge line runs through the second edge. The fractions add up to about 0.97 all
the same, since sample and references are treated alike.

Prints a table and ends with 1 when a figure is off. Needs python3-numpy.
"""

import argparse
import pathlib
import struct
import subprocess
import sys
import tempfile

import numpy as np

import public_files

HALF = 16
SIDE = 2 * HALF + 1
BEAM = 60000
TABLE = ["saveDataCfg_save_as_text", "saveDataCfg_text_as_ssv", "saveDataCfg_text_as_xyz",
         "saveDataCfg_tiff_as_analyzed 1"]


# Files

def read_tiff(path):
    """One strip of 16-bit counts, not compressed, little-endian."""
    data = path.read_bytes()
    start, = struct.unpack_from("<I", data, 4)
    count, = struct.unpack_from("<H", data, start)
    tags = {}
    for i in range(count):
        tag, kind, _, value = struct.unpack_from("<HHII", data, start + 2 + 12 * i)
        tags[tag] = value & 0xFFFF if kind == 3 else value
    if (tags[258], tags[259], tags[278]) != (16, 1, tags[257]):
        raise ValueError(f"{path}: not one strip of 16-bit counts")
    counts = np.frombuffer(data, "<u2", tags[256] * tags[257], tags[273])
    return counts.reshape(tags[257], tags[256])


def write_tiff(path, counts):
    height, width = counts.shape
    entries = [(256, 4, width), (257, 4, height), (258, 3, 16), (259, 3, 1), (262, 3, 1),
               (273, 4, 8), (277, 3, 1), (278, 4, height), (279, 4, 2 * width * height)]
    body = b"".join(struct.pack("<HHII", tag, kind, 1, value) for tag, kind, value in entries)
    path.write_bytes(struct.pack("<2sHI", b"II", 42, 8 + 2 * width * height) +
                     counts.astype("<u2").tobytes() + struct.pack("<H", len(entries)) + body +
                     struct.pack("<I", 0))


def read_columns(path):
    return np.array(public_files.read_columns(path)).T


def read_9809(path):
    return np.array(public_files.read_9809(path)).T


def write_columns(path, e, mu):
    np.savetxt(path, np.stack([e, mu], axis=1), fmt="%.12g")


def write_stack(folder, e, mu):
    """Frames whose sums over all pixels are the transmitted beam."""
    folder.mkdir()
    pixels = SIDE * SIDE
    totals = np.rint(BEAM * pixels * np.exp(np.min(mu) - mu)).astype(np.int64)
    for energy, total in zip(e, totals):
        counts = np.full(pixels, total // pixels)
        counts[:total % pixels] += 1
        name = ("i1-%.6f" % energy).replace(".", "_") + "eV.tif"
        write_tiff(folder / name, counts.reshape(SIDE, SIDE))
    write_tiff(folder / "i0-1eV.tif", np.full((SIDE, SIDE), BEAM))


# The independent fit

def line(e, y, first, end):
    """Least-squares line over first <= e < end, by centred sums; of one point or none a constant."""
    inside = (e >= first) & (e < end)
    if np.count_nonzero(inside) < 2:
        return np.full_like(e, y[inside].sum())
    x, v = e[inside], y[inside]
    slope = np.sum((x - x.mean()) * (v - v.mean())) / np.sum((x - x.mean()) ** 2)
    return v.mean() + slope * (e - x.mean())


def edge(e, y, fraction):
    """First rise of the spectrum through a fraction of its height."""
    level = y.min() + fraction * (y.max() - y.min())
    i = np.flatnonzero((y[:-1] < level) & (y[1:] >= level))[0]
    return e[i] + (level - y[i]) / (y[i + 1] - y[i]) * (e[i + 1] - e[i])


def normalised(e, y):
    e0 = edge(e, y, 0.5)
    pre, post = line(e, y, e0 - 100.0, e0 - 10.0), line(e, y, e0 + 10.0, e0 + 1000.0)
    return (y - pre) / (post - pre)


def fractions(e, y, references):
    """Cramer's rule on two references, over the energies that both have."""
    inside = np.ones(len(e), bool)
    for ref_e, _ in references:
        inside &= (e >= ref_e[0]) & (e <= ref_e[-1])
    a, b = (np.interp(e[inside], ref_e, normalised(ref_e, mu)) for ref_e, mu in references)
    s = normalised(e, y)[inside]
    aa, ab, bb = a @ a, a @ b, b @ b
    det = aa * bb - ab * ab
    return ((a @ s) * bb - (b @ s) * ab) / det, ((b @ s) * aa - (a @ s) * ab) / det


# The program

class Program:
    def __init__(self, batch, folder):
        self.batch = pathlib.Path(batch).resolve()
        self.folder = folder

    def run(self, lines, failing=0):
        """Runs lines of a batch in the folder, of which so many must fail."""
        (self.folder / "job.bat").write_text("\n".join(lines) + "\n")
        done = subprocess.run([self.batch, "job.bat"], cwd=self.folder, capture_output=True,
                              text=True)
        verdict = done.stdout.strip().splitlines()[-1:]
        if not verdict or f" {failing} failed" not in verdict[0]:
            sys.exit(f"tarnwick-batch: {verdict}\n{done.stderr}")

    def table(self, name):
        return np.loadtxt(self.folder / name, comments="#", ndmin=2)

    def head(self, name, label):
        for text in (self.folder / name).read_text().splitlines():
            if text.startswith(label):
                return float(text.split(":", 1)[1])
        raise ValueError(f"{name}: no {label}")


class Report:
    def __init__(self):
        self.off = 0
        print(f"{'figure':44}{'measured':>15}{'expected':>15}{'at most apart':>15}")

    def add(self, what, measured, expected, tolerance):
        good = abs(measured - expected) <= tolerance
        self.off += not good
        print(f"{what:44}{measured:15.9g}{expected:15.9g}{tolerance:15.1g}{'' if good else '  OFF'}")


def six_digits(energy):
    """How far apart an energy and its text may be: half a unit of the sixth digit, and a little."""
    return 0.5 * 10.0 ** (np.floor(np.log10(energy)) - 5) + 1e-3


def loads(stack):
    return [f"load_I0_files_of_pattern NEW {stack} i0-*.tif",
            f"load_I1_files_of_pattern NEW {stack} i1-*.tif",
            f"set_band_w {HALF}", f"set_band_h {HALF}"]


def fits(references):
    lines = [f"analyzer_set_LCF_std {i} 1 0.0 {name} 0" for i, name in enumerate(references)]
    return lines + ["analyzer_exec_LCF"] + TABLE


def saves(kind, reference, name):
    return [f"analyzer_select_image_type {kind}", f"analyzer_select_image {reference}",
            f"save_data_as_tiff {name}"]


def iron_stack(data, program, report):
    names = sorted(data.glob("I1-*.tif"))
    e = np.array([float(n.stem[3:-2].replace("_", ".")) for n in names])
    i1 = np.array([read_tiff(n) for n in names], float)
    i0 = np.array([read_tiff(data / n.name.replace("I1-", "I0-")) for n in names], float)
    references = [data / "oxidized.dat", data / "reduced.dat"]
    program.run([f"load_I1_files_of_pattern NEW {data} I1-*.tif",
                 f"load_I0_files_of_pattern NEW {data} I0-*.tif", "set_band_w 2", "set_band_h 2",
                 "select_region 30 20 100 105"] + fits(references) +
                saves(1, 0, "oxidized.txt") + saves(1, 1, "reduced.txt"))
    curves = [read_columns(path) for path in references]
    found = [program.table("oxidized.txt"), program.table("reduced.txt")]
    own = []
    for y in range(22, 105, 5):
        for x in range(32, 100, 5):
            box = np.s_[:, y - 2:y + 3, x - 2:x + 3]
            mu = np.log(i0[box].sum(axis=(1, 2)) / i1[box].sum(axis=(1, 2)))
            own.append((x, y) + fractions(e, mu, curves))
    own = np.array(own)
    report.add("Fe L: bins", len(found[0]), len(own), 0)
    for k, name in enumerate(("oxidized", "reduced")):
        by_bin = {(x, y): value for x, y, value in found[k]}
        program_s = np.array([by_bin.get((x, y), np.nan) for x, y in own[:, :2]])
        report.add(f"Fe L: mean {name} fraction", program_s.mean(), own[:, 2 + k].mean(), 1e-7)
        report.add(f"Fe L: worst difference of a bin, {name}",
                   np.max(np.abs(program_s - own[:, 2 + k])), 0.0, 1e-7)
    # Worked out once more by other means.
    report.add("Fe L: oxidized fraction at (52, 22)",
               found[0][(found[0][:, 0] == 52) & (found[0][:, 1] == 22)][0, 2], 0.391979161, 1e-7)


def weak_iron(data, program, report):
    """Single pixels by MLCF with the references as their files give them, against a fit by constant,
    slope and references: median share over the half of the pixels with most iron, by that fit; and
    the same with the references divided by their jumps."""
    names = sorted(data.glob("I1-*.tif"))
    e = np.array([float(n.stem[3:-2].replace("_", ".")) for n in names])
    i1 = np.array([read_tiff(n) for n in names], float)
    i0 = np.array([read_tiff(data / n.name.replace("I1-", "I0-")) for n in names], float)
    references = [data / "oxidized.dat", data / "reduced.dat"]
    curves = [np.interp(e, *read_columns(path)) for path in references]
    mu = np.log(i0 / i1).reshape(len(e), -1)
    own = np.linalg.lstsq(np.stack([np.ones_like(e), e - e.mean()] + curves, axis=1), mu,
                          rcond=None)[0][2:]
    much = own.sum(axis=0) > np.median(own.sum(axis=0))
    expected = np.median(own[0][much] / own.sum(axis=0)[much])
    report.add("Fe L, MLCF, scale none: own median share", expected, 0.640, 1e-3)
    for scale, share, within in (("none", expected, 1e-6), ("jump", 0.574, 1e-3)):
        program.run([f"load_I1_files_of_pattern NEW {data} I1-*.tif",
                     f"load_I0_files_of_pattern NEW {data} I0-*.tif", "set_band_w 0",
                     "set_band_h 0", f"analyzer_set_reference_scale {scale}",
                     "analyzer_set_LCF_mode 1"] + fits(references) + saves(1, 0, "weak.txt"))
        found = program.table("weak.txt")[:, 2]
        report.add(f"Fe L, MLCF, scale {scale}: median share", np.median(found[much]), share, within)


def gold(data, program, report):
    for source, name in (("au_lcf_sample_7.03h", "sample"), ("au_lcf_ref_foil", "foil"),
                         ("au_lcf_ref_au3cl_aq", "chloride")):
        e, mu = read_columns(data / f"{source}.dat")
        inside = (e >= 11800.0) & (e <= 12120.0)
        write_columns(program.folder / f"{name}.dat", e[inside], mu[inside])
    write_stack(program.folder / "gold", *read_columns(program.folder / "sample.dat"))
    program.run(loads("gold") + fits(["foil.dat", "chloride.dat"]) +
                saves(1, 0, "gold0.txt") + saves(1, 1, "gold1.txt"))
    report.add("Au L3, cropped: fraction of foil", program.table("gold0.txt")[0, 2], 0.524, 5e-4)
    report.add("Au L3, cropped: fraction of chloride", program.table("gold1.txt")[0, 2], 0.479,
               5e-4)


def single(title, path, columns, program, report, expected):
    """The energies and the edge jump of one spectrum, read by the program from the file itself."""
    half, seventy, middle, jump = expected
    e, mu = columns
    stem = path.stem.split("_")[0]
    write_stack(program.folder / stem, e, mu)
    # A straight rise: 70 % at 7070 eV.
    (program.folder / "step.dat").write_text("7000 0\n7025 0.25\n7050 0.5\n7075 0.75\n7100 1\n")
    program.run(loads(stem) + TABLE +
                ["calib_load_std step.dat", "calib_exec", "select_disp_image 2",
                 "save_data_as_tiff stack.txt", f"calib_load_std {path}", "calib_exec",
                 f"calib_save_map {stem}.emp", "save_data_as_tiff own.txt"])
    report.add(f"{title}: half height, eV", program.head(f"{stem}.emp", "Std Edge Energy"), half,
               six_digits(half))
    report.add(f"{title}: 70 %, eV", 7070.0 + program.table("stack.txt")[0, 2], seventy, 6e-4)
    report.add(f"{title}: stack against file, eV", program.table("own.txt")[0, 2], 0.0, 6e-4)
    # A standard that can not be read leaves the energy that the one before put into the field.
    program.run(loads(stem) + [f"calib_load_std {path}", "calib_load_std none.dat",
                               "calib_save_map middle.emp"], failing=1)
    report.add(f"{title}: middle of the edge, eV", program.head("middle.emp", "Std Edge Energy"),
               middle, six_digits(middle))
    other = mu + 0.2 * (mu.max() - mu.min()) * np.exp(-((e - seventy) / 8.0) ** 2)
    write_columns(program.folder / "other.dat", e, other)
    program.run(loads(stem) + fits([path, "other.dat"]) + saves(0, 0, "jump.txt") +
                saves(1, 0, "share.txt"))
    report.add(f"{title}: edge jump", program.table("jump.txt")[0, 2], jump, 6e-6)
    report.add(f"{title}: fraction of itself", program.table("share.txt")[0, 2], 1.0, 1e-6)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--batch", default="build/release/src/programs/tarnwick-batch")
    args = parser.parse_args()
    data = args.folder.resolve()
    report = Report()
    with tempfile.TemporaryDirectory() as folder:
        program = Program(args.batch, pathlib.Path(folder))
        iron_stack(data / "fe-l-edge", program, report)
        weak_iron(data / "fe-l-edge", program, report)
        gold(data / "spectra", program, report)
        foil = data / "spectra/fe_metal_rt.xdi"
        single("Fe foil", foil, read_columns(foil), program, report,
               (7119.136, 7122.251, 7118.528, 2.90115))
        mercury = data / "spectra/pf_bl12c_hg_l3_transmission.9809.dat"
        single("Hg L3, 9809", mercury, read_9809(mercury), program, report,
               (12283.038, 12288.323, 12282.540, 1.29791))
    sys.exit(1 if report.off else 0)


if __name__ == "__main__":
    main()
