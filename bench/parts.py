#!/usr/bin/env python3
"""Time and memory of a batch in parts, against the number of parts and of pixels:

    bench/parts.py PROGRAMS SAMPLES FOLDER [SIZE...] [--parts N...] [--energies N]

PROGRAMS is the folder of tarnwick-batch, SAMPLES the program tarnwick-samples. Square measurements of
SIZE pixels a side are made in FOLDER unless they are there; bins are of one pixel. One thread;
processor time, which other programs disturb less than the clock; the least of some runs. Prints the
table of docs/cluster.md.
"""
import argparse
import os
import re
import resource
import shutil
import subprocess
from pathlib import Path

SAMPLE = Path(__file__).resolve().parent.parent / "samples" / "calibrate-and-fit.bat"
BATCH = "one-pixel-bins.bat"


def run(arguments, folder):
    """Exit code, processor time (s), peak of resident memory (MB) of a program."""
    process = subprocess.Popen(arguments, cwd=folder, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def measure(batch_program, folder, parts, stages):
    """Of one run in parts: processor time of each stage, of its longest task, peak; closing run."""
    work = folder / "work"
    shutil.rmtree(work, ignore_errors=True)
    common = [str(batch_program), "--work", "work", "--threads", "1"]
    row = {"stages": [], "longest": [], "peak": 0.0}
    for _ in range(stages):
        tasks = [run([*common, "--part", f"{i}/{parts}", BATCH], folder)
                 for i in range(1, parts + 1)]
        if any(code != 0 for code, _, _ in tasks):
            raise SystemExit(f"a part failed: {tasks}")
        row["stages"].append(sum(seconds for _, seconds, _ in tasks))
        row["longest"].append(max(seconds for _, seconds, _ in tasks))
        row["peak"] = max(row["peak"], max(peak for _, _, peak in tasks))
    row["kept"] = sum(file.stat().st_size for file in work.rglob("*") if file.is_file()) / 1e6
    code, row["closing"], row["closing peak"] = run([*common, BATCH], folder)
    if code != 0:
        raise SystemExit("the closing run failed")
    return row


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", type=Path)
    parser.add_argument("samples", type=Path)
    parser.add_argument("folder", type=Path)
    parser.add_argument("sizes", nargs="*", type=int, default=[512, 1024, 2048])
    parser.add_argument("--parts", nargs="+", type=int, default=[1, 4, 16])
    parser.add_argument("--energies", type=int, default=100)
    parser.add_argument("--runs", type=int, default=3)
    options = parser.parse_args()
    program = (options.programs / "tarnwick-batch").resolve()
    print("| bins | parts | calibration | LCF | longest task | its memory | closing job | its memory | kept |")
    print("|---|---|---|---|---|---|---|---|---|")
    for size in options.sizes:
        folder = options.folder.resolve() / f"s{size}"
        if not (folder / "sample.txt").exists():
            subprocess.run([options.samples.resolve(), folder, "--size", f"{size}x{size}", "--energies",
                            str(options.energies)], check=True, stdout=subprocess.DEVNULL)
        text = re.sub(r"(?m)^set_band_([wh]) .*$", r"set_band_\1 0", SAMPLE.read_text())
        (folder / BATCH).write_text(text)
        for parts in options.parts:
            rows = [measure(program, folder, parts, 2) for _ in range(options.runs)]
            one, two = (min(row["stages"][i] for row in rows) for i in (0, 1))
            longest = min(max(row["longest"]) for row in rows)
            print(f"| {size * size} | {parts} | {one:.2f} s | {two:.2f} s | {longest:.2f} s "
                  f"| {max(row['peak'] for row in rows):.0f} MB "
                  f"| {min(row['closing'] for row in rows):.1f} s "
                  f"| {max(row['closing peak'] for row in rows):.0f} MB "
                  f"| {rows[0]['kept']:.0f} MB |", flush=True)


if __name__ == "__main__":
    main()
