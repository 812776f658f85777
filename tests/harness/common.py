"""What the parts of reliability_check share: sample, kinds of output, program, judge."""

import argparse
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import zlib

import structure

# All results are there before the first line that saves.
PRELUDE = """\
load_I0_files_of_pattern NEW ../sample/i0 *.tif
load_I1_files_of_pattern NEW ../sample/foil *.tif
set_band_w 1
set_band_h 1
calib_load_std ../sample/standard/fe-foil.dat
calib_exec
calib_smooth_map
load_I1_files_of_pattern NEW ../sample/i1 *.tif
analyzer_set_LCF_std 0 1 {shift} ../sample/references/metal.dat 0
analyzer_set_LCF_std 1 1 0.0 ../sample/references/oxide2.dat 0
analyzer_set_LCF_std 2 1 0.0 ../sample/references/oxide3.dat 0
analyzer_set_error_maps 1
analyzer_exec_LCF
move_position 30 30
analyzer_select_map fraction 0
"""

FRAME, MAP = "select_disp_image 0", "select_disp_image 3"
TEXT = "saveDataCfg_save_as_text"

# Name, lines before, the line that saves.
LINES = [
    ("energy map", [], "calib_save_map results/shift.emp"),
    ("energy map, TIFF", [], "calib_save_map results/shift.tif"),
    ("spectra", [], "save_spectra results/spectrum.dat"),
    ("area spectrum", [], "save_area_spectrum results/area.dat"),
    ("plot, PDF", [], "save_plot results/plot.pdf"),
    ("plot, PNG", [], "save_plot results/plot.png"),
    ("fit of a spectrum", [],
     "fit_spectrum ../sample/references/oxide2.dat results/grain.dat results/grain.pdf"),
    ("frame, PNG", [FRAME], "save_image results/frame.png"),
    ("frame, JPEG", [FRAME], "save_image results/frame.jpg"),
    ("frame, BMP", [FRAME], "save_image results/frame.bmp"),
    ("frame, PPM", [FRAME], "save_image results/frame.ppm"),
    ("map, PNG", [MAP], "save_image results/map.png"),
    ("map with bar", [MAP], "save_image_with_bar results/bar.png"),
    ("all pictures", [], "save_all_images results/all.png"),
    ("composite", [], "save_composite results/composite.png 0 1 2"),
    ("statistics", [], "save_statistics results/statistics.csv"),
    ("table", [], "save_table results/table.csv"),
    ("results, HDF5", [], "save_results results/results.nxs"),
    ("map, 16-bit TIFF", ["saveDataCfg_save_as_tiff"], "save_data_as_tiff results/map16.tif"),
    ("map, float TIFF", ["saveDataCfg_save_as_float"], "save_data_as_tiff results/float.tif"),
    ("map, CSV", [TEXT, "saveDataCfg_text_as_csv"], "save_data_as_tiff results/map.csv"),
    ("map, x y value", [TEXT, "saveDataCfg_text_as_ssv", "saveDataCfg_text_as_xyz"],
     "save_data_as_tiff results/map.txt"),
    ("all maps", ["saveDataCfg_save_as_float"], "save_all_maps results/maps.tif"),
    ("flat and dark", [], "save_flat_dark"),
    ("record", [], "save_record results/record.bat"),
]
OPTIONS = [
    ("report", ["--report", "results/report.json"]),
    ("summary", ["--summary", "results/summary.csv"]),
]
NAMES = [kind[0] for kind in LINES + OPTIONS]

END = 120  # seconds within which every run of the small sample ends on a busy machine


class Kind:
    """One kind of output: the batch that saves it, and the options of the run."""

    def __init__(self, name, shift="0.1"):
        self.name = name
        self.before, self.line, self.options = [], "", dict(OPTIONS).get(name, [])
        for row in LINES:
            if row[0] == name:
                self.before, self.line = row[1:]
        self.prelude = PRELUDE.format(shift=shift)

    def batch(self, rounds=1):
        lines = [self.line] if self.line else []
        if rounds > 1 and self.line:
            lines = [f":for round %r 1 {rounds}", self.line, ":next round"]
        return self.prelude + "\n".join(self.before + lines) + "\n"


def every_kind(rounds, shift="0.1"):
    """A batch that saves all kinds again and again, those of OPTIONS at its end."""
    body = [line for row in LINES for line in [*row[1], row[2]]]
    loop = [f":for round %r 1 {rounds}", *body, ":next round"]
    return PRELUDE.format(shift=shift) + "\n".join(loop) + "\n"


def comparable(name, data):
    """Without what tells the time of a run."""
    if name.endswith(".emp"):
        return re.sub(rb"Record Date.*", b"", data)
    if name.endswith(".json"):
        return re.sub(rb'"seconds":[-+0-9.e]+', b"", data)
    if name == "summary.csv":
        return re.sub(rb"^((?:[^,\n]*,){3})[0-9.]+", rb"\1", data, flags=re.M)
    return data


def compress(file):
    """Deflates the counts of a frame that is one strip between the header and the directory."""
    frame = file.read_bytes()
    directory = int.from_bytes(frame[4:8], "little")
    counts = zlib.compress(frame[8:directory])
    counts += bytes(len(counts) % 2)
    entries = bytearray(frame[directory:])
    for at in range(2, len(entries) - 4, 12):
        tag = int.from_bytes(entries[at:at + 2], "little")
        value = {259: 8, 279: len(counts)}.get(tag)  # compression, bytes of the strip
        if value is not None:
            entries[at + 8:at + 12] = value.to_bytes(4, "little")
    place = (8 + len(counts)).to_bytes(4, "little")
    file.write_bytes(frame[:4] + place + counts + entries)


class Place:
    """A sample and, beside it, the folder in which the program runs and writes."""

    def __init__(self, root):
        self.sample, self.out = root / "sample", root / "out"
        self.results = self.out / "results"
        self.job = root / "job.bat"

    def empty(self):
        """Everything that was written is gone."""
        self.out.mkdir(exist_ok=True)
        for path in self.out.iterdir():
            if path.name != "lost+found":
                shutil.rmtree(path) if path.is_dir() else path.unlink()
        self.results.mkdir()

    def files(self):
        """What lies there, by name."""
        return {path.name: path for path in sorted(self.out.rglob("*"))
                if path.name not in ("results", "lost+found")}

    def contents(self):
        return {name: comparable(name, path.read_bytes())
                for name, path in self.files().items() if path.is_file()}

    def put(self, names, content):
        """Older files of these names."""
        for name in names:
            folder = self.out if name in ("flat.dat", "dark.dat") else self.results
            (folder / name).write_bytes(content)


class Part:
    """A part of the check: its arguments, its folder, what it counts."""

    def __init__(self, text, rounds):
        parser = argparse.ArgumentParser(description=text.splitlines()[0])
        parser.add_argument("program", type=pathlib.Path, help="tarnwick-batch")
        parser.add_argument("samples", type=pathlib.Path, help="tarnwick-samples")
        parser.add_argument("--rounds", type=int, default=rounds)
        parser.add_argument("--seed", type=int, default=1)
        options = parser.parse_args()
        signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # what is mounted is unmounted
        self.program = str(options.program.resolve())
        self.rounds = options.rounds
        self.chance = random.Random(options.seed)
        self.faults = 0
        self._kept = tempfile.TemporaryDirectory(prefix="tarnwick-check-")
        self.root = pathlib.Path(self._kept.name)
        self.place = Place(self.root)
        subprocess.run([options.samples.resolve(), self.place.sample, "--size", "64x64",
                        "--energies", "30"], check=True, stdout=subprocess.DEVNULL)

    def fault(self, text):
        self.faults += 1
        print("fault:", text, flush=True)

    def command(self, kind, rounds=1):
        self.place.job.write_text(kind.batch(rounds))
        return [self.program, *kind.options, str(self.place.job)]

    def run(self, command, **how):
        """The run to its end: its exit code, and what it said. Not to end is a fault."""
        try:
            done = subprocess.run(command, cwd=self.place.out, capture_output=True, text=True,
                                  errors="replace", timeout=END, **how)
        except subprocess.TimeoutExpired:
            self.fault(f"does not end: {' '.join(command[1:])}")
            return None, ""
        return done.returncode, done.stdout + done.stderr

    def undisturbed(self, kind):
        """What a run of this kind writes, by name; the program has to do it, or nothing counts."""
        self.place.empty()
        code, said = self.run(self.command(kind))
        found = self.place.contents()
        if code != 0 or not found:
            sys.exit(f"{kind.name}: a run that nobody disturbs ends with {code}:\n{said}")
        for name, path in self.place.files().items():
            wrong = structure.fault_of(name, path.read_bytes())
            if wrong:
                self.fault(f"{kind.name}: {name} of an undisturbed run: {wrong}")
        return found

    def judge(self, what, allowed, all_of_it=False):
        """Each file has one of its allowed contents, and nothing else lies there. Strays."""
        strays = []
        found = self.place.contents()
        for name, content in found.items():
            if name not in allowed:
                strays.append(name)
            elif content not in allowed[name]:
                wrong = structure.fault_of(name, content) or "another content"
                self.fault(f"{what}: {name} of {len(content)} bytes: {wrong}")
        for name in allowed:
            if all_of_it and name not in found:
                self.fault(f"{what}: {name} is missing")
        return strays

    def end(self, text):
        """The line of the part and the exit code."""
        print(f"{text}: {self.faults} faults", flush=True)
        return 1 if self.faults else 0
