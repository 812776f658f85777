#!/usr/bin/env python3
"""Kills tarnwick-batch at random moments, goes on with --work, and compares all that is written.

    kill_resume.py PROGRAM SAMPLES [--rounds N] [--seed N]

PROGRAM is tarnwick-batch, SAMPLES tarnwick-samples. Exit code 1: a file differs from that of a run
that nobody disturbed, or is torn.
"""

import argparse
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

import common

JOB = """\
load_I0_files_of_pattern NEW i0 *.tif
load_I1_files_of_pattern NEW foil *.tif
set_band_w 1
set_band_h 0
calib_load_std standard/fe-foil.dat
calib_exec
calib_smooth_map
calib_save_map results/shift.tif
load_I1_files_of_pattern NEW i1 *.tif
set_band_w 0
set_band_h 0
analyzer_set_LCF_std 0 1 0.1 references/metal.dat 0
analyzer_set_LCF_std 1 1 0.0 references/oxide2.dat 0
analyzer_set_LCF_std 2 1 0.0 references/oxide3.dat 0
saveDataCfg_save_as_text
analyzer_exec_LCF
save_results results/each.nxs
analyzer_select_image 1
save_image results/each.png
save_data_as_tiff results/each.csv
set_E0 mean
analyzer_set_error_maps 1
analyzer_exec_LCF
save_results results/mean.nxs
analyzer_set_LCF_mode 1
select_region 20 10 180 140
analyzer_exec_LCF
save_results results/mlcf.nxs
select_region 0 0 0 0
analyzer_set_ra_energy 7200.1
analyzer_exec_ra
analyzer_select_image 3
save_data_as_tiff results/ra-jump.csv
analyzer_select_image 5
saveDataCfg_save_as_tiff
save_data_as_tiff results/ra-ratio.tif
set_band_w 1
set_band_h 2
calib_load_map results/shift.tif
analyzer_exec_difference 7100 7130
save_results results/difference.nxs
"""


MOST_KILLS = 15  # of one run: with all parts there, decoding and saving alone may outlast a moment
MEMORY = "64M"  # too little for the compressed frames: they are decoded into the work folder


class Job:
    """A batch over the sample in a folder of its own."""

    def __init__(self, batch, folder):
        self.batch = batch
        self.folder = folder
        self.results = folder / "results"
        self.results.mkdir(exist_ok=True)
        (folder / "job.bat").write_text(JOB)

    def start(self, work=None):
        arguments = [self.batch] + (
            ["--work", str(work), "--memory", MEMORY] if work else []) + ["job.bat"]
        return subprocess.Popen(arguments, cwd=self.folder, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, text=True)

    def empty(self):
        shutil.rmtree(self.results)
        self.results.mkdir()

    def written(self):
        """Contents by name."""
        return {file.name: file.read_bytes() for file in sorted(self.results.iterdir())
                if not file.name.endswith("part")}


def parts_in(work):
    return {str(file.relative_to(work)): file.read_bytes() for file in work.glob("*/*.rows")}


def run(job, work=None):
    process = job.start(work)
    log, _ = process.communicate()
    if process.returncode != 0:
        sys.exit("the batch failed:\n" + log)
    return log


class Check:
    """What is wrong, counted."""

    def __init__(self, job, work):
        job.empty()
        run(job)
        self.outputs = job.written()
        job.empty()
        begin = time.monotonic()
        run(job, work)
        self.seconds = time.monotonic() - begin
        self.parts = parts_in(work)
        self.faults = 0
        self.compare("a run with parts", job.written(), self.outputs, True)

    def compare(self, what, found, wanted, all_of_it):
        wrong = [name for name in found if found[name] != wanted.get(name)]
        if all_of_it:
            wrong += [name for name in wanted if name not in found]
        for name in wrong:
            print(f"{what}: {name} is another", flush=True)
        self.faults += len(wrong)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("samples", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    chance = random.Random(options.seed)
    with tempfile.TemporaryDirectory() as temporary:
        folder = pathlib.Path(temporary) / "sample"
        subprocess.run([options.samples.resolve(), folder], check=True, stdout=subprocess.DEVNULL)
        for frame in (folder / "i1").iterdir():
            common.compress(frame)
        job = Job(str(options.program.resolve()), folder)
        work = pathlib.Path(temporary) / "work"
        check = Check(job, work)
        kills = runs = taken = 0
        while kills < options.rounds:
            shutil.rmtree(work)
            job.empty()
            spared = kills + MOST_KILLS
            while True:
                process = job.start(work)
                moment = chance.uniform(0.0, 0.8 * check.seconds) if kills < spared else None
                try:
                    log, _ = process.communicate(timeout=moment)
                except subprocess.TimeoutExpired:
                    process.send_signal(signal.SIGKILL)
                    process.communicate()
                    kills += 1
                    check.compare("killed", job.written(), check.outputs, False)
                    if work.exists():
                        check.compare("killed", parts_in(work), check.parts, False)
                    continue
                if process.returncode != 0:
                    sys.exit("the batch failed:\n" + log)
                break
            runs += 1
            taken += sum(int(n) for n in re.findall(r"(\d+) of \d+ parts taken", log))
            check.compare("resumed", job.written(), check.outputs, True)
            check.compare("resumed", parts_in(work), check.parts, True)
            if "damaged" in log:
                print("resumed: a part was found damaged")
                check.faults += 1
            print(f"{kills} kills, {runs} runs brought to their end: {check.faults} faults", flush=True)
    print(f"work folders: {kills} kills, {runs} runs brought to their end, {taken} parts taken by "
          f"the last run of each, {len(check.outputs)} outputs, {len(check.parts)} parts: "
          f"{check.faults} faults")
    return 1 if check.faults else 0


if __name__ == "__main__":
    sys.exit(main())
