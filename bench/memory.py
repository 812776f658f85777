#!/usr/bin/env python3
"""Peak memory and time of tarnwick-batch against the number of frames and against --memory.

    memory.py TARNWICK_BATCH [--size N] [--frames N,N,...] [--limits SIZE,SIZE,...]
              [--folder DIR] [--rounds N] [--plot PICTURE.svg]

Makes two stacks of FRAMES TIFF frames of SIZE x SIZE pixels each, fits two references in every pixel
and saves the two maps of fractions. A stack has few different frames: the others are hard links to
them, so that large stacks fit on a disk (the program reads each as a file of its own).

For every number of frames: the run with no --memory and one for each limit, in turns. Prints the peak
of resident memory (VmHWM of /proc/PID/status), the median time, its ratio to the run without a limit,
and whether the saved maps are the same in every byte. --plot draws both against the frames.
Needs python3-numpy.
"""

import argparse
import os
import pathlib
import re
import statistics
import subprocess
import tempfile
import time

import numpy as np

import growth_plot
import whole_job

DISTINCT = 12  # frames of a stack that are not links


def make_stacks(folder, size, count):
    """Frames of neighbouring energies are one file under several names."""
    energies = np.round(7000.0 + 300.0 * np.arange(count) / (count - 1), 4)
    random = np.random.default_rng(1)
    share = np.broadcast_to(np.arange(size) / size, (size, size))
    for name in ("i0", "i1"):
        (folder / name).mkdir()
    kept = {}
    for i, e in enumerate(energies):
        group = i * DISTINCT // count
        file = ("%.4f" % e).replace(".", "_") + "eV.tif"
        paths = {"i1": folder / "i1" / ("a-" + file), "i0": folder / "i0" / ("b-" + file)}
        if group not in kept:
            at = 7000.0 + 300.0 * group / (DISTINCT - 1)
            beam = 40000.0 * np.exp(-share * whole_job.mu_t(at, 2.0)
                                    - (1.0 - share) * whole_job.mu_t(at, 0.5))
            whole_job.write_tiff(paths["i1"], beam + random.integers(0, 200, share.shape))
            whole_job.write_tiff(paths["i0"], 40000 + random.integers(0, 200, share.shape))
            kept[group] = paths
        else:
            for stack, path in paths.items():
                os.link(kept[group][stack], path)
    whole_job.write_references(folder, 2)
    (folder / "job.bat").write_text("\n".join(whole_job.job_lines(2)) + "\n")
    os.sync()


def peak_of(process):
    """Bytes; looked at until the program ends, as the peak never falls."""
    peak = 0
    status = pathlib.Path(f"/proc/{process.pid}/status")
    while process.poll() is None:
        found = re.search(r"VmHWM:\s+(\d+)", status.read_text())
        peak = int(found[1]) * 1024 if found else peak
        time.sleep(0.005)
    return peak


def run(program, folder, limit):
    begin = time.perf_counter()
    process = subprocess.Popen([program] + (["--memory", limit] if limit else []) + ["job.bat"],
                               cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    peak = peak_of(process)
    seconds = time.perf_counter() - begin
    if process.returncode != 0:
        raise SystemExit(f"--memory {limit}: the program ended with {process.returncode}")
    return peak, seconds, [(folder / f"fraction{i}.tif").read_bytes() for i in range(2)]


def measure(program, folder, limits, rounds):
    """{limit: (peak, median time, same maps as without a limit)}"""
    runs = {limit: [] for limit in limits}
    for _ in range(rounds + 1):  # the first warms the file cache
        for limit in limits:
            runs[limit].append(run(program, folder, limit))
    maps = runs[limits[0]][0][2]
    return {limit: (max(r[0] for r in done), statistics.median(r[1] for r in done[1:]),
                    all(r[2] == maps for r in done)) for limit, done in runs.items()}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("batch_program")
    parser.add_argument("--size", type=int, default=1024)
    parser.add_argument("--frames", default="30,60,120,240,480")
    parser.add_argument("--limits", default="128M")
    parser.add_argument("--folder", help="where the stacks are made for the time of the run")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--plot")
    args = parser.parse_args()
    program = str(pathlib.Path(args.batch_program).resolve())
    limits = [""] + [limit for limit in args.limits.split(",") if limit]
    peaks, times = {}, {}
    for count in map(int, args.frames.split(",")):
        with tempfile.TemporaryDirectory(dir=args.folder) as name:
            folder = pathlib.Path(name)
            make_stacks(folder, args.size, count)
            found = measure(program, folder, limits, args.rounds)
        for limit, (peak, seconds, same) in found.items():
            print(f"{args.size} x {args.size} x ({count} + {count}), limit {limit or 'none':>5}: "
                  f"peak {peak / 2**20:7.1f} MB, {seconds:7.3f} s, "
                  f"ratio {seconds / found[''][1]:.2f}, maps {'same' if same else 'DIFFER'}",
                  flush=True)
        peaks[count] = found[limits[-1]][0] / 2**20
        times[count] = found[limits[-1]][1] * 1000.0
    if args.plot:
        growth_plot.write(args.plot, [
            growth_plot.panel(0, f"{args.size} x {args.size} pixels", "frames of each stack",
                              sorted(peaks.items()), "peak memory, MB"),
            growth_plot.panel(growth_plot.WIDTH, f"{args.size} x {args.size} pixels",
                              "frames of each stack", sorted(times.items()), "milliseconds")])


if __name__ == "__main__":
    main()
