#!/usr/bin/env python3
"""From two stacks of TIFF files to fraction maps: tarnwick-batch against NumPy, in pairs.

    whole_job.py TARNWICK_BATCH [--jobs SIZE:I1:I0:REFERENCES,...] [--rounds N] [--threads N]
                 [--without-imports]

Both read I1 + I0 frames of SIZE x SIZE pixels, form mu-t of every pixel (I0 interpolated where it has
fewer frames), find its edge, fit straight lines before and after it, normalise, fit the references and
write a map for each as a 16-bit TIFF file. tarnwick-batch is measured as a whole process, with its
start and all that it does besides (edge jumps, their images); NumPy as a whole process, too, or what it
does after its imports (--without-imports). It takes all pixels of a tile in matrix products, tiles
spread over the threads. Files are on the disk before anything is timed; the two take turns.

Prints the median time of each and their ratio, and how far the maps are apart.
Needs python3-numpy (and libopenblas0-pthread for a fair comparison).
"""

import argparse
import collections
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
REFERENCES = ((2.0, 7112.0), (0.5, 7112.0), (1.2, 7118.0))  # white line, edge (eV)


def mu_t(e, white_line, edge=7112.0):
    t = 1.0 / (1.0 + np.exp((edge - e) / 2.0))
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


def make_measurement(folder, job, energies, i0_energies):
    random = np.random.default_rng(1)
    share = np.broadcast_to(np.arange(job.size) / job.size, (job.size, job.size))
    parts = (share, 1.0 - share) if job.references < 3 else (share, 0.7 - 0.7 * share,
                                                             0.3 - 0.3 * share)

    def frame_name(stack, e):
        (folder / stack).mkdir(exist_ok=True)
        return folder / stack / ("a-" + ("%.4f" % e).replace(".", "_") + "eV.tif")

    for e in energies:
        mixed = sum(part * mu_t(e, *kind) for part, kind in zip(parts, REFERENCES))
        write_tiff(frame_name("i1", e),
                   40000.0 * np.exp(-mixed) + random.integers(0, 200, share.shape))
    for e in i0_energies:
        write_tiff(frame_name("i0", e), 40000 + random.integers(0, 200, share.shape))
    write_references(folder, job.references)
    (folder / "job.bat").write_text("\n".join(job_lines(job.references)) + "\n")
    os.sync()  # else the first runs share the disk with what is written behind them


def write_references(folder, count):
    grid = np.arange(6990.0, 7310.5, 0.5)
    for i, kind in enumerate(REFERENCES[:count]):
        np.savetxt(folder / f"ref{i}.dat", np.stack([grid, mu_t(grid, *kind)], axis=1))


def job_lines(references):
    lines = [
        "load_I0_files_of_pattern NEW i0 *.tif",
        "load_I1_files_of_pattern NEW i1 *.tif",
        "set_band_w 0",
        "set_band_h 0",
    ]
    lines += ["analyzer_add_ref"] * max(0, references - 2)
    lines += [f"analyzer_set_LCF_std {i} 1 0.0 ref{i}.dat 0" for i in range(references)]
    lines += [
        "analyzer_exec_LCF",
        "analyzer_select_image_type 1",
        "saveDataCfg_tiff_fix_scale 1",
        "saveDataCfg_tiff_scale_min 0.0",
        "saveDataCfg_tiff_scale_max 1.0",
        "saveDataCfg_save_as_tiff",
    ]
    for i in range(references):
        lines += [f"analyzer_select_image {i}", f"save_data_as_tiff fraction{i}.tif"]
    return lines


class NumpyJob:
    def __init__(self, folder, job, energies, i0_energies, threads):
        self.folder = folder
        self.job = job
        self.e = energies
        self.e0 = i0_energies
        self.threads = threads
        self.inverses = {}
        self.between = None  # I0 at the energies of I1
        if len(i0_energies) != len(energies):
            self.between = np.stack([np.interp(energies, i0_energies, row)
                                     for row in np.eye(len(i0_energies))], axis=1)

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
        beam = i0[:, pixels] if self.between is None else self.between @ i0[:, pixels]
        mu = np.log(beam / i1[:, pixels])
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
        size = self.job.size
        stacks = {}
        with concurrent.futures.ThreadPoolExecutor(self.threads) as pool:
            def read(stack):
                names = sorted(os.scandir(self.folder / stack), key=lambda f: f.name)
                frames = np.empty((len(names), size, size), "<u2")
                for frame, name in zip(frames, names):
                    read_tiff(name.path, frame)
                return frames.reshape(len(names), -1)

            stacks["i0"], stacks["i1"] = pool.map(read, ("i0", "i1"))
            references = []
            for i in range(self.job.references):
                energy, values = np.loadtxt(self.folder / f"ref{i}.dat", unpack=True)
                references.append(np.interp(self.e, energy, normalised(energy, values)))
            self.fit = np.linalg.pinv(np.stack(references, axis=1))
            self.fractions = np.empty((self.job.references, size * size))
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


Job = collections.namedtuple("Job", "size energies i0 references")


def energies_of(job):
    return [np.round(7000.0 + 300.0 * np.arange(n) / (n - 1), 4) for n in (job.energies, job.i0)]


def read_map(path, size):
    counts = np.frombuffer(path.read_bytes(), "<u2", size * size, strip_offset(path))
    return counts.reshape(size, size).astype(int)


def compare(folder, job, args):
    """Seconds of both, and how far the maps are apart."""
    program = str(pathlib.Path(args.batch_program).resolve())
    command = [program] + ([] if args.plain else ["--threads", str(args.threads)]) + ["job.bat"]
    energies = energies_of(job)
    make_measurement(folder, job, *energies)
    ours, numpys = [], []
    for _ in range(args.rounds + 1):  # the first warms the file cache
        ours.append(seconds(lambda: subprocess.run(
            command, cwd=folder, check=True, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)))
        if args.without_imports:
            script = NumpyJob(folder, job, *energies, args.threads)
            numpys.append(seconds(lambda: script.run(folder)))
        else:
            numpys.append(seconds(lambda: subprocess.run(
                [sys.executable, sys.argv[0], program, "--threads", str(args.threads), "--jobs",
                 ":".join(map(str, job)), "--numpy-job", str(folder)], check=True)))
    apart = max(np.abs(read_map(folder / f"fraction{i}.tif", job.size)
                       - read_map(folder / f"numpy{i}.tif", job.size)).max()
                for i in range(job.references))
    return statistics.median(ours[1:]), statistics.median(numpys[1:]), apart


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("batch_program")
    parser.add_argument("--numpy-job", help=argparse.SUPPRESS)
    parser.add_argument("--without-imports", action="store_true")
    parser.add_argument("--jobs", default="512:100:100:3,1024:120:60:3")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--threads", type=int, default=os.cpu_count())
    parser.add_argument("--plain", action="store_true", help="do not pass --threads on")
    args = parser.parse_args()
    for job in (Job(*map(int, text.split(":"))) for text in args.jobs.split(",")):
        if args.numpy_job:
            folder = pathlib.Path(args.numpy_job)
            NumpyJob(folder, job, *energies_of(job), args.threads).run(folder)
            return
        with tempfile.TemporaryDirectory() as name:
            ours, numpys, apart = compare(pathlib.Path(name), job, args)
        print(f"{job.size} x {job.size} x ({job.energies} + {job.i0}), {job.references} references: "
              f"tarnwick-batch {ours:.3f} s, numpy {numpys:.3f} s, ratio {ours / numpys:.2f}, "
              f"maps at most {apart} of 65535 apart", flush=True)


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
