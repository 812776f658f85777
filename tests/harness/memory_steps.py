#!/usr/bin/env python3
"""Runs tarnwick-batch with less and less address space, and judges how each run ends.

    memory_steps.py PROGRAM SAMPLES [--window TARNWICK] [--quick]

PROGRAM is tarnwick-batch, SAMPLES tarnwick-samples; the window beside PROGRAM is tried where it is
there. From the smallest limit at which --version runs to 1.2 GB a run is either done, with the
outputs of a run that has no limit, or it ends with exit code 1 and a message that says what was
needed. No signal, no hang, no file that is torn, none that is left over. Prints a line a limit;
exit code 1: a fault.
"""

import argparse
import os
import pathlib
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import time

import common

MIB = 1 << 20
MOST = 1200  # MiB
MESSAGE = re.compile(r"memory|thread", re.IGNORECASE)
SIZE = re.compile(r"\d+(\.\d+)? ?([KMGT]B|bytes|%)")
DATE = re.compile(rb"Record Date +: [^\n]*")

ANALYSIS = """\
load_I0_files_of_pattern NEW i0 *.tif
load_I1_files_of_pattern NEW i1 *.tif
set_band_w {band}
set_band_h {band}
calib_load_std standard/fe-foil.dat
calib_exec
calib_smooth_map
calib_save_map results/shift.emp
calib_save_map results/shift.tif
analyzer_set_LCF_std 0 1 0.1 references/metal.dat 0
analyzer_set_LCF_std 1 1 0.0 references/oxide2.dat 0
analyzer_set_LCF_std 2 1 0.0 references/oxide3.dat 0
analyzer_set_error_maps 1
analyzer_exec_LCF
analyzer_select_image 0
saveDataCfg_save_as_text
save_data_as_tiff results/fit.csv
saveDataCfg_save_as_tiff
save_data_as_tiff results/fit.tif
save_image results/fit.png
save_results results/fit.nxs
analyzer_set_ra_energy 7200.1
analyzer_exec_ra
analyzer_select_image 5
save_data_as_tiff results/ra.tif
save_image results/ra.png
save_results results/all.nxs
"""

# Name, size, energies, frames compressed, half band width, options.
BATCHES = [
    ("small", "64x64", 20, False, 0, []),
    ("one thread", "64x64", 20, False, 0, ["--threads", "1"]),
    ("8 threads", "96x64", 40, False, 1, ["--threads", "8"]),
    ("compressed", "256x192", 30, True, 2, ["--threads", "4"]),
    ("large", "2048x2048", 20, False, 12, ["--threads", "2"]),
]


def limited(mib):
    def apply():
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if mib:
            resource.setrlimit(resource.RLIMIT_AS, (mib * MIB, mib * MIB))
    return apply


def run(command, folder, mib, seconds=240, until=None):
    """Exit code, or a text for what is worse, and all that was said.

    A program that does not end by itself is told to, in order, when until() is true.
    """
    environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8",
                       HOME=str(folder), XDG_CONFIG_HOME=str(folder / "config"))
    process = subprocess.Popen(command, cwd=folder, stdout=subprocess.PIPE, env=environment,
                               stderr=subprocess.STDOUT, text=True, errors="replace",
                               preexec_fn=limited(mib))
    told = False
    end = time.monotonic() + seconds
    while until and process.poll() is None and not told:
        time.sleep(0.1)
        told = until() or time.monotonic() > end - seconds / 2
        if told:
            process.terminate()
    try:
        said, _ = process.communicate(timeout=seconds)
    except subprocess.TimeoutExpired:
        process.kill()
        said, _ = process.communicate()
        return "hangs", said
    if process.returncode < 0:
        return f"signal {-process.returncode}", said
    return 0 if told else process.returncode, said


def smallest(program, folder):
    """The least limit, in MiB, at which --version runs."""
    low, high = 1, MOST
    while low < high:
        middle = (low + high) // 2
        if run([program, "--version"], folder, middle)[0] == 0:
            high = middle
        else:
            low = middle + 1
    return low


def steps(least, quick):
    """Fine at the low end, a tenth more each time at the high one."""
    mib, fine = least, least + (12 if quick else 60)
    while mib < MOST:
        yield mib
        step = (6 if quick else 2) if mib < fine else mib * (30 if quick else 8) // 100
        mib += max(1, step)
    yield MOST


def whole(name, content):
    """Whether the end of a file is there."""
    if name.endswith(".png"):
        return content[-8:-4] == b"IEND"
    if name.endswith((".tif", ".emp")):
        return len(content) > 8
    return content.endswith(b"\n") if name.endswith(".csv") else len(content) > 0


class Batch:
    """A batch over a sample in a folder of its own, tried at limits."""

    def __init__(self, programs, folder, row):
        self.name, size, energies, compressed, band, self.options = row
        self.program = programs[0]
        self.folder = folder
        subprocess.run([programs[1], folder, "--size", size, "--energies", str(energies)],
                       check=True, stdout=subprocess.DEVNULL)
        shutil.rmtree(folder / "foil")
        if compressed:
            for frame in (folder / "i1").iterdir():
                common.compress(frame)
        self.results = folder / "results"
        (folder / "job.bat").write_text(ANALYSIS.format(band=band))
        self.before = None
        self.wanted = None
        self.seconds = 240  # much longer than any takes
        self.until = None

    def command(self):
        return [self.program] + self.options + ["job.bat"]

    def empty(self):
        shutil.rmtree(self.results, ignore_errors=True)
        self.results.mkdir()

    def written(self):
        return {file.name: DATE.sub(b"", file.read_bytes())
                for file in sorted(self.results.iterdir())}

    def prepare(self):
        """False: it does not even run without a limit."""
        self.empty()
        code, said = run(self.command(), self.folder, None, self.seconds, self.until)
        self.wanted = self.written()
        self.before = self.others()
        if code != 0 or not self.wanted:
            print(f"{self.name}: without a limit: {code}\n{said[-2000:]}")
            return False
        return True

    def others(self):
        """Names of all but the results: nothing may be left among them."""
        return {str(file.relative_to(self.folder)) for file in self.folder.rglob("*")
                if self.results not in file.parents and "config" not in file.parts}

    def judge(self, mib):
        """What is wrong at a limit, and how the run ended."""
        self.empty()
        code, said = run(self.command(), self.folder, mib, self.seconds, self.until)
        found = self.written()
        faults = []
        if code not in (0, 1):
            faults.append(str(code))
        if code == 1 and not any(MESSAGE.search(line) and SIZE.search(line)
                                 for line in said.splitlines()):
            faults.append("no message")
        if code == 0 and self.until is None and found != self.wanted:
            faults.append("another output")
        for name, content in found.items():
            if name not in self.wanted:
                faults.append(f"{name} is left")
            elif content != self.wanted[name] and (
                    not name.endswith(".nxs") and not whole(name, content)):
                faults.append(f"{name} is torn")
        if self.others() != self.before:
            faults.append("left over: " + ", ".join(sorted(self.others() - self.before)))
        return faults, code, said


class Window(Batch):
    """The same in the window, which stays open until it is told to end."""

    def __init__(self, programs, folder, row):
        super().__init__(programs, folder, row)
        self.name = "window"
        self.last = self.results / "all.nxs"
        self.until = self.last.exists

    def command(self):
        return [self.program, "-b", "job.bat", "-x", "-e"]


def try_all(batch, quick, seconds):
    """Limits that were tried, and those of them with a fault."""
    batch.seconds = seconds
    if not batch.prepare():
        return 0, 1
    batch.seconds = seconds if batch.until is None else min(seconds, 24)
    tried = faults = 0
    for mib in steps(smallest(batch.program, batch.folder), quick):
        tried += 1
        wrong, code, said = batch.judge(mib)
        last = next((line for line in reversed(said.splitlines()) if MESSAGE.search(line)), "")
        print(f"{batch.name}: {mib} MiB: " +
              (f"FAULT: {'; '.join(wrong)}" if wrong else f"exit {code}") +
              (f" ({last.strip()[:150]})" if last and code != 0 else ""), flush=True)
        if wrong and not last:
            for line in said.splitlines()[-3:]:
                print(f"    {line[:200]}", flush=True)
        faults += 1 if wrong else 0
    return tried, faults


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("samples", type=pathlib.Path)
    parser.add_argument("--window", type=pathlib.Path)
    parser.add_argument("--quick", action="store_true", help="fewer limits")
    parser.add_argument("--seconds", type=int, default=240, help="that no run may take")
    parser.add_argument("--only", help="batches whose name has this in it")
    options = parser.parse_args()
    program = str(options.program.resolve())
    samples = str(options.samples.resolve())
    window = options.window or options.program.resolve().parent / "tarnwick"
    tried = faults = 0
    for row in BATCHES + ([None] if window.exists() else []):
        name = row[0] if row else "window"
        if options.only and options.only not in name:
            continue
        with tempfile.TemporaryDirectory() as temporary:
            folder = pathlib.Path(temporary).resolve() / "sample"
            batch = (Batch((program, samples), folder, row) if row else
                     Window((str(window.resolve()), samples), folder, BATCHES[0]))
            counts = try_all(batch, options.quick, options.seconds)
            tried, faults = tried + counts[0], faults + counts[1]
    print(f"{tried} limits of address space: {faults} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
