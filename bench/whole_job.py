#!/usr/bin/env python3
"""From two stacks of TIFF files to fraction maps: tarnwick-batch against NumPy, in pairs.

    whole_job.py TARNWICK_BATCH [--size N] [--energies N] [--rounds N] [--threads N]

Both read 2 x ENERGIES frames of SIZE x SIZE pixels, form mu-t of every pixel, find its edge, fit
straight lines before and after it, normalise, fit two references and write two maps as 16-bit TIFF
files. Both are measured as whole processes, with their start; tarnwick-batch with all that it does
besides (edge jumps, four result images and their pictures). NumPy takes all pixels of a tile in
matrix products, tiles spread over the threads; --without-imports leaves its start and imports out.

Prints the median time of each and their ratio, and how far the maps are apart.
Needs python3-numpy (and libopenblas0-pthread for a fair comparison).
"""

import argparse
import concurrent.futures
import os
import pathlib
import statistics
import struct
import subprocess
import sys
import tempfile
import time

os.environ.setdefault("OPENBLAS_NUM_THREADS", "1")  # the tiles bring the threads

import numpy as np

PRE = (-100.0, -10.0)  # eV from the edge
POST = (10.0, 1000.0)
TILE = 2048  # pixels


def mu_t(e, white_line):
    t = 1.0 / (1.0 + np.exp((7112.0 - e) / 2.0))
    return 0.4 - 2e-4 * (e - 7000.0) + 0.8 * (t + white_line * t * (1.0 - t))


def write_tiff(path, counts):
    height, width = counts.shape
    entries = [(256, 4, width), (257, 4, height), (258, 3, 16), (259, 3, 1), (262, 3, 1),
               (273, 4, 8), (277, 3, 1), (278, 4, height), (279, 4, 2 * width * height)]
    with open(path, "wb") as out:
        out.write(struct.pack("<2sHI", b"II", 42, 8 + 2 * width * height))
        out.write(counts.astype("<u2").tobytes())
        out.write(struct.pack("<H", len(entries)))
        for tag, kind, value in entries:
            out.write(struct.pack("<HHII", tag, kind, 1, value))
        out.write(struct.pack("<I", 0))


def read_tiff(path, counts):
    """One strip, not compressed: what write_tiff() writes, without a copy."""
    with open(path, "rb", buffering=0) as file:
        file.seek(8)
        file.readinto(memoryview(counts).cast("B"))


def make_measurement(folder, size, energies):
    random = np.random.default_rng(1)
    share = np.broadcast_to(np.arange(size) / size, (size, size))
    for name in ("i0", "i1"):
        (folder / name).mkdir()
    for e in energies:
        name = ("%.4f" % e).replace(".", "_") + "eV.tif"
        beam = 40000.0 * np.exp(-share * mu_t(e, 2.0) - (1.0 - share) * mu_t(e, 0.5))
        write_tiff(folder / "i1" / ("a-" + name), beam + random.integers(0, 200, share.shape))
        write_tiff(folder / "i0" / ("b-" + name), 40000 + random.integers(0, 200, share.shape))
    for i, white_line in enumerate((2.0, 0.5)):
        grid = np.arange(6990.0, 7310.5, 0.5)
        np.savetxt(folder / f"ref{i}.dat", np.stack([grid, mu_t(grid, white_line)], axis=1))
    lines = [
        "load_I0_files_of_pattern NEW i0 *.tif",
        "load_I1_files_of_pattern NEW i1 *.tif",
        "set_band_w 0",
        "set_band_h 0",
        "analyzer_set_LCF_std 0 1 0.0 ref0.dat 0",
        "analyzer_set_LCF_std 1 1 0.0 ref1.dat 0",
        "analyzer_exec_LCF",
        "analyzer_select_image_type 1",
        "saveDataCfg_tiff_fix_scale 1",
        "saveDataCfg_tiff_scale_min 0.0",
        "saveDataCfg_tiff_scale_max 1.0",
        "saveDataCfg_save_as_tiff",
        "analyzer_select_image 0",
        "save_data_as_tiff fraction0.tif",
        "analyzer_select_image 1",
        "save_data_as_tiff fraction1.tif",
    ]
    (folder / "job.bat").write_text("\n".join(lines) + "\n")


class NumpyJob:
    def __init__(self, folder, size, energies, threads):
        self.folder = folder
        self.size = size
        self.e = energies
        self.threads = threads
        self.inverses = {}

    def line_through(self, first, end):
        """Matrix that turns values into (intercept, slope) over the points first..end-1."""
        key = (first, end)
        if key not in self.inverses:
            matrix = np.zeros((2, len(self.e)))
            basis = np.stack([np.ones(end - first), self.e[first:end]], axis=1)
            matrix[:, first:end] = np.linalg.pinv(basis)
            self.inverses[key] = matrix
        return self.inverses[key]

    def lines(self, mu, e0, window):
        """Intercept and slope of every pixel's line over its own window."""
        first = np.searchsorted(self.e, e0 + window[0])
        end = np.searchsorted(self.e, e0 + window[1])
        key = first * 4096 + end
        keys, which = np.unique(key, return_inverse=True)
        matrices = np.concatenate([self.line_through(k // 4096, k % 4096) for k in keys])
        candidates = (matrices @ mu).reshape(len(keys), 2, -1)
        return candidates[which, :, np.arange(mu.shape[1])].T

    def tile(self, i0, i1, start):
        pixels = slice(start, start + TILE)
        mu = np.log(i0[:, pixels] / i1[:, pixels])
        low = mu.min(axis=0)
        level = low + 0.5 * (mu.max(axis=0) - low)
        below = mu < level
        i = np.argmax(below[:-1] & ~below[1:], axis=0)
        columns = np.arange(mu.shape[1])
        y0, y1 = mu[i, columns], mu[i + 1, columns]
        e0 = self.e[i] + (level - y0) * (self.e[i + 1] - self.e[i]) / (y1 - y0)
        pre = self.lines(mu, e0, PRE)
        post = self.lines(mu, e0, POST)
        post -= pre
        e = self.e[:, None]
        mu -= pre[0]
        mu -= e * pre[1]
        span = e * post[1]
        span += post[0]
        mu /= span
        self.fractions[:, pixels] = self.fit @ mu

    def run(self, out):
        size, n = self.size, len(self.e)
        stacks = {}
        with concurrent.futures.ThreadPoolExecutor(self.threads) as pool:
            def read(stack):
                names = sorted(os.scandir(self.folder / stack), key=lambda f: f.name)
                frames = np.empty((n, size, size), "<u2")
                for frame, name in zip(frames, names):
                    read_tiff(name.path, frame)
                return frames.reshape(n, -1)

            stacks["i0"], stacks["i1"] = pool.map(read, ("i0", "i1"))
            references = []
            for i in range(2):
                energy, values = np.loadtxt(self.folder / f"ref{i}.dat", unpack=True)
                references.append(np.interp(self.e, energy, normalised(energy, values)))
            self.fit = np.linalg.pinv(np.stack(references, axis=1))
            self.fractions = np.empty((2, size * size))
            list(pool.map(lambda s: self.tile(stacks["i0"], stacks["i1"], s),
                          range(0, size * size, TILE)))
        for i, fraction in enumerate(self.fractions):
            counts = (fraction * 65535.0).astype(np.int64).astype("<u2")
            write_tiff(out / f"numpy{i}.tif", counts.reshape(size, size))


def normalised(e, mu):
    level = mu.min() + 0.5 * (mu.max() - mu.min())
    i = np.argmax((mu[:-1] < level) & (mu[1:] >= level))
    e0 = e[i] + (level - mu[i]) * (e[i + 1] - e[i]) / (mu[i + 1] - mu[i])
    lines = []
    for start, end in (PRE, POST):
        inside = (e >= e0 + start) & (e < e0 + end)
        lines.append(np.polynomial.Polynomial.fit(e[inside], mu[inside], 1)(e))
    return (mu - lines[0]) / (lines[1] - lines[0])


def seconds(work):
    begin = time.perf_counter()
    work()
    return time.perf_counter() - begin


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("batch_program")
    parser.add_argument("--numpy-job", help=argparse.SUPPRESS)
    parser.add_argument("--without-imports", action="store_true")
    parser.add_argument("--size", type=int, default=512)
    parser.add_argument("--energies", type=int, default=100)
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--threads", type=int, default=os.cpu_count())
    parser.add_argument("--plain", action="store_true", help="do not pass --threads on")
    args = parser.parse_args()
    energies = np.round(7000.0 + 300.0 * np.arange(args.energies) / (args.energies - 1), 4)
    if args.numpy_job:
        folder = pathlib.Path(args.numpy_job)
        NumpyJob(folder, args.size, energies, args.threads).run(folder)
        return
    program = str(pathlib.Path(args.batch_program).resolve())
    command = [program] + ([] if args.plain else ["--threads", str(args.threads)]) + ["job.bat"]

    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_measurement(folder, args.size, energies)
        ours, numpys = [], []
        for _ in range(args.rounds + 1):  # the first warms the file cache
            ours.append(seconds(lambda: subprocess.run(
                command, cwd=folder, check=True, stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL)))
            if args.without_imports:
                job = NumpyJob(folder, args.size, energies, args.threads)
                numpys.append(seconds(lambda: job.run(folder)))
            else:
                numpys.append(seconds(lambda: subprocess.run(
                    [sys.executable] + sys.argv + ["--numpy-job", name], check=True)))
        maps = []
        for who in ("fraction", "numpy"):
            for i in range(2):
                counts = np.empty((args.size, args.size), "<u2")
                if who == "numpy":
                    read_tiff(folder / f"{who}{i}.tif", counts)
                else:
                    counts = np.frombuffer((folder / f"{who}{i}.tif").read_bytes(), "<u2", counts.size,
                                           strip_offset(folder / f"{who}{i}.tif")).reshape(counts.shape)
                maps.append(counts.astype(int))
        ours, numpys = statistics.median(ours[1:]), statistics.median(numpys[1:])
        apart = max(np.abs(maps[i] - maps[2 + i]).max() for i in range(2))
        print(f"tarnwick-batch {ours:.3f} s, numpy {numpys:.3f} s, ratio {ours / numpys:.2f}, "
              f"maps at most {apart} of 65535 apart")


def strip_offset(path):
    data = path.read_bytes()
    (directory,) = struct.unpack_from("<I", data, 4)
    (count,) = struct.unpack_from("<H", data, directory)
    for i in range(count):
        tag, kind, _, value = struct.unpack_from("<HHII", data, directory + 2 + 12 * i)
        if tag == 273:
            (count,) = struct.unpack_from("<I", data, directory + 2 + 12 * i + 4)
            return value if count == 1 else struct.unpack_from("<I", data, value)[0]
    raise ValueError("no strips in " + str(path))


if __name__ == "__main__":
    main()
