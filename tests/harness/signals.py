#!/usr/bin/env python3
"""Tells tarnwick-batch to end in each of its phases, and measures how long it takes to do so.

    signals.py PROGRAM SAMPLES [--rounds N] [--seed N]

PROGRAM is tarnwick-batch, SAMPLES tarnwick-samples. In every round each phase gets one of Ctrl-C,
terminate and hang-up at a random moment. One line a phase; exit code 1: it took too long, ended in
another way than is documented, left a temporary file behind or a file that is not whole.
"""

import fcntl
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import threading
import time

import common
import structure

QUIET = 2.2     # seconds until it has ended on a quiet machine; two where something does not answer
PATIENCE = 3.0  # times as long on a busy one
TRIES = 6       # to meet one at work
SIGNALS = [signal.SIGTERM, signal.SIGINT, signal.SIGHUP]

LOAD = """\
load_I0_files_of_pattern NEW {sample}/i0 *.tif
load_I1_files_of_pattern NEW {sample}/i1 *.tif
set_band_w {band}
set_band_h {band}
calib_load_std {sample}/standard/fe-foil.dat
analyzer_set_LCF_std 0 1 0 {sample}/references/metal.dat 0
analyzer_set_LCF_std 1 1 0 {sample}/references/oxide2.dat 0
analyzer_set_LCF_std 2 1 0 {sample}/references/oxide3.dat 0
"""
FIT = "analyzer_exec_LCF\nanalyzer_select_map fraction 0\n"
SHIFTS = "calib_exec\n"
LOOP = ":for round %r 1 1000000\n{}\n:next round\n"


def over(line):
    return LOOP.format(line)


# Name, sample (small, large or none), what comes before, what is told to end while it works.
# The large one takes seconds for each of its files.
LINES = [
    ("loop of quick lines", None, "", over("set_band_w 1")),
    ("load of thousands", None, "", over("load_I1_files_of_pattern NEW {many}/i1 *.tif")),
    ("folder with thousands", None, "", over("open_folder {many}")),
    ("dark frames", "small", LOAD, over("load_dark_files_of_pattern {many}/i1 *.tif")),
    ("decoding", "packed", "", LOAD + over("analyzer_exec_difference 7100 7130")),
    ("calibration", "large", LOAD, over("calib_exec")),
    ("smoothing", "large", LOAD + SHIFTS, over("calib_smooth_map")),
    ("fit", "large", LOAD, over("analyzer_exec_LCF")),
    ("deglitching", "large", LOAD + FIT, over("deglitch 0.1 0.2")),
    ("results, HDF5", "large", LOAD + FIT, over("save_results results/r.nxs")),
    ("table", "large", LOAD + FIT, over("save_table results/t.csv")),
    ("map, text", "large", LOAD + FIT + "saveDataCfg_save_as_text\n",
     over("save_data_as_tiff results/m.csv")),
    ("map, float TIFF", "large", LOAD + FIT + "saveDataCfg_save_as_float\n",
     over("save_all_maps results/m.tif")),
    ("energy map", "large", LOAD + SHIFTS, over("calib_save_map results/s.emp")),
    ("pictures", "large", LOAD + FIT, over("save_all_images results/a.png")),
    ("picture with letters", "large", LOAD + FIT, over("save_image_with_bar results/b.png")),
    ("a file that does not answer, loading", None, "", "load_I1_files NEW dead.tif\n"),
    ("a file that does not answer, spectrum", None, "", "calib_load_std dead.tif\n"),
]


class Reader(threading.Thread):
    """Takes all that a program says, so that it never waits for us."""

    def __init__(self, stream):
        super().__init__(daemon=True)
        self.stream, self.text = stream, b""
        self.start()

    def run(self):
        for piece in iter(lambda: self.stream.read1(1 << 16), b""):
            self.text += piece


class Check(common.Part):
    def __init__(self):
        super().__init__(__doc__, 1)
        self.samples = {"small": self.place.sample}
        self.make("large", "--size", "700x700", "--energies", "20")
        self.make("packed", "--size", "300x300", "--energies", "60")
        for frame in self.samples["packed"].glob("i[01]/*.tif"):
            common.compress(frame)
        many = self.root / "many" / "i1"
        many.mkdir(parents=True)
        frame = next(self.place.sample.glob("i1/*.tif"))
        for i in range(5000):
            os.link(frame, many / f"i1-{7000 + i / 10:.1f}eV.tif")
        self.turn = 0

    def make(self, name, *options):
        self.samples[name] = self.root / name
        subprocess.run([sys.argv[2], self.samples[name], *options], check=True,
                       stdout=subprocess.DEVNULL)

    def batch(self, sample, text, band=1):
        self.place.job.write_text(text.format(
            sample=self.samples.get(sample), many=self.root / "many", band=band))
        return str(self.place.job)

    def told(self, name, command, marker=None, spread=0.5, codes=None, said="Interrupted",
             twice=False, before=lambda: None, **how):
        """Starts it, tells it to end at some moment after the marker, and judges how it does."""
        number = SIGNALS[self.turn % len(SIGNALS)]
        self.turn += 1
        for _ in range(TRIES):
            before()
            process, reader = self.at_work(command, marker, spread, how)
            if process.poll() is None or not marker or 0 in (codes or []):
                break
            spread /= 2  # a fast machine was through with it
        else:
            self.fault(f"{name}: had always ended before: {reader.text[-300:].decode()}")
            return 0.0
        begin = time.monotonic()
        process.send_signal(number)
        if twice:  # which ends it at once, whatever it writes
            time.sleep(self.chance.uniform(0.0, 0.01))
            process.send_signal(number)
        return self.judged(name, process, reader, number, begin, codes, said)

    def at_work(self, command, marker, spread, how):
        """Some moment after it has said the marker."""
        process = subprocess.Popen(command, cwd=self.place.out, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL, **how)
        reader = Reader(process.stdout)
        limit = time.monotonic() + common.END
        while marker and marker not in reader.text and process.poll() is None:
            if time.monotonic() > limit:
                break
            time.sleep(0.002)
        time.sleep(self.chance.uniform(0.0, spread))
        return process, reader

    def judged(self, name, process, reader, number, begin, codes, said):
        """Whether it ends as it should after this signal; the seconds that it took."""
        try:
            code = process.wait(timeout=common.END)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
            self.fault(f"{name}: does not end after signal {number}")
            return common.END
        seconds = time.monotonic() - begin
        reader.join(5)
        last = reader.text.decode(errors="replace").rstrip().rpartition("\n")[2]
        names = {"killed": -number, "told": 128 + number}
        allowed = [names.get(each, each) for each in codes or ["told"]]
        if code not in allowed:
            self.fault(f"{name}: signal {number} ends it with {code}")
        if said and code == 128 + number and not last.startswith(said):
            self.fault(f"{name}: says no verdict but: {last[:200]}")
        if seconds > QUIET * PATIENCE:
            self.fault(f"{name}: {seconds:.1f} s after signal {number}")
        return seconds

    def look(self, name):
        """Whole files and no others."""
        for folder in (self.place.out, self.root / "work"):
            for path in sorted(folder.rglob("*")):
                if not path.is_file() or path.name == "dead.tif":
                    continue
                suffix = path.suffix[1:]
                if suffix in structure.KINDS:
                    wrong = structure.fault_of(path.name, path.read_bytes())
                    if wrong:
                        self.fault(f"{name}: {path.name}: {wrong}")
                elif folder == self.place.out or suffix == "part":
                    self.fault(f"{name}: leaves {path.name}")

    def phases(self):
        """Name and what to do; it gives the seconds that the end took."""
        for name, sample, before, work in LINES:
            begun = work.partition("\n")[0] if not work.startswith(":for") else work.split("\n")[1]
            word = begun.split(" ")[0].encode() + b" :"
            yield name, lambda n=name, s=sample, t=before + work, w=word: self.told(
                n, self.options_of(n) + [self.batch(s, t)], w)
            if "results/" in work:
                yield name + ", told twice", lambda n=name, s=sample, t=before + work, w=word: (
                    self.told(n, [self.program, self.batch(s, t)], w, codes=["told", "killed"],
                              twice=True))
        yield from self.other_phases()

    def options_of(self, name):
        return [self.program] + (["--memory", "64M"] if name == "decoding" else [])

    def other_phases(self):
        ending = ["killed", "told", 0]
        yield "start", lambda: self.told("start", [self.program, self.batch(None, "set_band_w 1\n")],
                                         spread=0.05, codes=ending, said=None)
        lines = "set_band_w 1\n" * 200000
        yield "reading of a long batch", lambda: self.told(
            "reading of a long batch", [self.program, self.batch(None, lines)], spread=0.3,
            codes=ending, said=None)
        loops = "".join(f":for {c} %{c} 1 1000\n" for c in "abcdef") + "set_band_w 1\n"
        loops += "".join(f":next {c}\n" for c in "fedcba")
        for option in ("--check", "--stages"):
            yield option, lambda o=option: self.told(
                o, [self.program, o, self.batch(None, loops)], codes=["killed", "told", 0, 1],
                said=None)
        for file in ("-", "/dev/stdin"):
            yield f"waiting for {file}", lambda f=file: self.from_pipe(f)
        yield "a pipe without a writer as batch", self.from_fifo
        yield "end and closing", self.closing
        yield "several folders, summary", self.folders
        yield "work folder", lambda: self.kept("work folder", [])
        yield "share of a work", lambda: self.kept("share of a work", ["--part", "1/2"])
        if pathlib.Path(self.program).with_name("tarnwick-slurm").exists():
            yield "tarnwick-slurm --local", self.cluster

    def from_pipe(self, file):
        hold, end = os.pipe()
        try:
            return self.told(f"waiting for {file}", [self.program, file], codes=["killed", "told"],
                             said=None, stdin=hold)
        finally:
            os.close(hold)
            os.close(end)

    def from_fifo(self):
        fifo = self.root / "fifo"
        if not fifo.exists():
            os.mkfifo(fifo)
        return self.told("a pipe without a writer as batch", [self.program, str(fifo)],
                         codes=["killed", "told"], said=None)

    def closing(self):
        """At a moment around its end."""
        text = LOAD + FIT + "save_results results/r.nxs\n"
        return self.told("end and closing", [
            self.program, "--report", "results/report.json", self.batch("small", text)],
            b"save_results :", spread=0.1, codes=["killed", "told", 0], said=None)

    def folders(self):
        names = [str(self.place.sample)] * 200
        text = LOAD.format(sample=self.place.sample, band=1) + FIT
        self.place.job.write_text(text)
        return self.told("several folders, summary", [
            self.program, "--summary", str(self.place.results / "summary.csv"), str(self.place.job),
            "-C", *names], b"folder 3 of", said=None)

    def without_parts(self):
        shutil.rmtree(self.root / "work", ignore_errors=True)

    def kept(self, name, options):
        return self.told(name, [self.program, "--work", str(self.root / "work"), *options,
            self.batch("large", LOAD + "analyzer_set_error_maps 1\n" + FIT, 0)],
            b"analyzer_exec_LCF :", spread=0.1, before=self.without_parts)

    def cluster(self):
        program = pathlib.Path(self.program).with_name("tarnwick-slurm")
        # It runs a group of its own, and gives 143 for a hang-up, too.
        return self.told("tarnwick-slurm --local", [
            str(program), "--local", "--work", str(self.root / "work"), "--parts", "4",
            self.batch("large", LOAD + FIT, 0)], b"at once", spread=1.0,
            codes=["told", 143, 0], said=None, before=self.without_parts)

    def dead_file(self):
        """A file that nobody gets to open: it is leased to us. None: not on this file system."""
        path = self.place.out / "dead.tif"
        path.write_bytes(b"II*\0")
        file = os.open(path, os.O_RDWR)
        try:
            fcntl.fcntl(file, fcntl.F_SETLEASE, fcntl.F_WRLCK)
        except OSError:
            os.close(file)
            return None
        return file


def main():
    signal.signal(signal.SIGIO, signal.SIG_IGN)
    for number in SIGNALS:  # not as ignored as a script in the background has them
        signal.signal(number, signal.SIG_DFL)
    check = Check()
    worst = 0.0
    count = 0
    for name, act in check.phases():
        seconds = []
        for _ in range(3 * check.rounds):
            check.place.empty()
            dead = check.dead_file() if "does not answer" in name else -1
            if dead is None:
                print(f"{name}: left out, no leases on this file system", flush=True)
                break
            try:
                seconds.append(act())
            finally:
                if dead >= 0:
                    os.close(dead)
            check.look(name)
        if seconds:
            print(f"{name}: {max(seconds):.2f} s at most of {len(seconds)}", flush=True)
            worst = max(worst, *seconds)
            count += len(seconds)
    return check.end(f"{count} signals, {worst:.2f} s to the end at most")


if __name__ == "__main__":
    sys.exit(main())
