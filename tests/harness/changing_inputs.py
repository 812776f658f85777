#!/usr/bin/env python3
"""Changes, cuts, replaces and removes inputs at random moments while tarnwick-batch reads them.

    changing_inputs.py PROGRAM SAMPLES [--rounds N] [--seed N]

PROGRAM is tarnwick-batch, SAMPLES tarnwick-samples; the window beside PROGRAM is tried, too, where
it was built. Each kind of change is made to each kind of input N times. Exit code 1: the program
crashed or hung, a line failed without naming the file, an output is none of those that the file
gives as it was, as it is then, or left out, or an output is missing though every line was done.
"""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import threading
import time

import common
import structure

JOB = """\
load_I0_files_of_pattern NEW i0 *.tif
load_I1_files_of_pattern NEW foil *.tif
load_dark_files_of_pattern dark *.tif
set_band_w 1
set_band_h 1
calib_load_std standard/fe-foil.dat
calib_exec
save_all_maps results/shifts.tif
calib_load_map {map}
load_I1_files_of_pattern NEW i1 *.tif
analyzer_set_LCF_std 0 1 0.1 references/metal.dat 0
analyzer_set_LCF_std 1 1 0.0 references/oxide2.dat 0
analyzer_set_LCF_std 2 1 0.0 references/oxide3.dat 0
analyzer_exec_LCF
analyzer_select_map fraction 0
fit_spectrum references/oxide3.dat results/spectrum.dat
save_results results/all.nxs
save_table results/table.csv
saveDataCfg_save_as_float
save_data_as_tiff results/map.tif
save_image results/map.png
:echo "all is done"
"""

# What is changed, and the energy map of the job.
INPUTS = {
    "plain frame": ("i1/*.tif", "map.emp"),
    "compressed frame": ("foil/*.tif", "map.emp"),
    "I0 frame": ("i0/*.tif", "map.emp"),
    "dark frame": ("dark/*.tif", "map.emp"),
    "standard": ("standard/*.dat", "map.emp"),
    "reference": ("references/oxide2.dat", "map.emp"),
    "energy map": ("map.emp", "map.emp"),
    "energy map, TIFF": ("map.tif", "map.tif"),
    "batch": ("job.bat", "map.emp"),
}


def replace(path, content):
    beside = path.with_name(path.name + ".new")
    beside.write_bytes(content)
    beside.rename(path)


def overwrite(path, content):
    """In place, in one go."""
    file = os.open(path, os.O_WRONLY)
    os.pwrite(file, content, 0)
    os.close(file)


def pixels_of(png):
    at, pixels = 8, b""
    while at + 8 <= len(png):
        size = int.from_bytes(png[at:at + 4], "big")
        pixels += png[at + 8:at + 8 + size] if png[at + 4:at + 8] == b"IDAT" else b""
        at += 12 + size
    return pixels


def values_of(name, data):
    """What is told of the inputs aside: their record goes by what lies there when it is written."""
    if name.endswith((".csv", ".dat")):
        return b"\n".join(line for line in data.split(b"\n") if not line.startswith(b"#"))
    if name.endswith(".tif"):
        return data[8:int.from_bytes(data[4:8], "little")]
    if name.endswith(".png"):
        return pixels_of(data)
    return b""


def pipe(path):
    path.unlink()
    os.mkfifo(path)


def append(path):
    with path.open("ab") as file:
        file.write(b"7300 1.0\n" * 100)


# Each gets the path, its content, and that of another file of the kind.
CHANGES = {
    "cut": lambda path, own, other: os.truncate(path, len(own) * 2 // 3),
    "emptied": lambda path, own, other: os.truncate(path, 0),
    "rewritten": lambda path, own, other: overwrite(path, other[:len(own)].ljust(len(own), b"\n")),
    "made rubbish": lambda path, own, other: overwrite(path, b"\xff\0*7" * (len(own) // 4)),
    "longer": lambda path, own, other: append(path),
    "another": lambda path, own, other: replace(path, other),
    "removed": lambda path, own, other: path.unlink(),
    "a pipe": lambda path, own, other: pipe(path),
    "a folder": lambda path, own, other: (path.unlink(), path.mkdir()),
}
if os.geteuid() != 0:
    CHANGES["forbidden"] = lambda path, own, other: path.chmod(0)


class Check(common.Part):
    def __init__(self):
        super().__init__(__doc__, 3)
        self.source = self.root / "source"
        subprocess.run([sys.argv[2], self.source, "--size", "96x96", "--energies", "24"], check=True,
                       stdout=subprocess.DEVNULL)
        dark = self.source / "dark"
        dark.mkdir()
        for i, frame in enumerate(sorted(self.source.glob("i0/*.tif"))[:4]):
            raw = frame.read_bytes()
            end = int.from_bytes(raw[4:8], "little")
            counts = bytes(i if at % 2 == 0 else 0 for at in range(end - 8))
            (dark / f"dark-{i}.tif").write_bytes(raw[:8] + counts + raw[end:])
        for frame in self.source.glob("foil/*.tif"):
            common.compress(frame)
        (self.source / "make.bat").write_text(
            "\n".join(JOB.splitlines()[:7]) + "\ncalib_save_map map.emp\ncalib_save_map map.tif\n")
        subprocess.run([self.program, "make.bat"], cwd=self.source, check=True,
                       stdout=subprocess.DEVNULL)
        self.folder = self.place.out
        self.counts = {"failed": 0, "whole": 0, "window": 0}
        self.kept = {}  # what is written when an input is as it was, and when it is left out

    def lay_out(self, energy_map):
        """All inputs as they were."""
        shutil.rmtree(self.folder, ignore_errors=True)
        shutil.copytree(self.source, self.folder)
        self.place.results.mkdir(exist_ok=True)
        (self.folder / "job.bat").write_text(JOB.format(map=energy_map))

    def outputs(self):
        return {path.name: path.read_bytes() for path in sorted(self.place.results.iterdir()) if path.is_file()}

    def changed_before(self, energy_map, act):
        """What is written when the change was there from the start."""
        self.lay_out(energy_map)
        act()
        code, said = self.run([self.program, "job.bat"])
        if code not in (0, 1, 2):
            self.fault(f"a run ends with {code}: {said[-300:]}")
        return self.outputs()

    def of_frame(self, windowed, said):
        """Whether a line failed without which there is no map."""
        return windowed or re.search(r": (analyzer|load|calib)_", said)

    def judge(self, what, code, said, name, variants, windowed=False):
        if code not in (0, 1, 2) or (code == 2) != ("cannot open" in said):
            self.fault(f"{what}: ends with {code}: {said[-300:]}")
            return
        if code == 1 and name not in said:
            self.fault(f"{what}: fails without naming {name}: {said[-600:]}")
        found = self.outputs()
        common_to_all = set(range(len(variants)))
        for file in set(variants[0]) - set(found) if code == 0 and not windowed else ():
            # A batch that was another one from the start may not have these lines.
            if all(file in variant for variant in variants):
                self.fault(f"{what}: done, and {file} is missing")
        for file, content in found.items():
            wrong = structure.fault_of(file, content) if "." in file else "unknown"
            if wrong:
                self.fault(f"{what}: {file}: {wrong}")
            of = {i for i, variant in enumerate(variants)
                  if values_of(file, variant.get(file, b"")) == values_of(file, content)}
            common_to_all &= of
            # Without a map the picture is that of a frame.
            if not of and not (self.of_frame(windowed, said) and file == "map.png"):
                self.fault(f"{what}: {file} is none of those that it can be")
        if code == 0 and not common_to_all:
            self.fault(f"{what}: done, with outputs of more than one state")
        self.counts["window" if windowed else "whole" if code == 0 else "failed"] += 1

    def disturbed(self, command, act, seconds, early=0.0):
        moment = self.chance.uniform(early, max(early, seconds))
        timer = threading.Timer(moment, act)
        timer.start()
        result = self.run(command)
        timer.join()
        return result

    def change(self, kind, way):
        pattern, energy_map = INPUTS[kind]
        files = sorted(self.source.glob(pattern)) or [self.folder / pattern]
        own = files[len(files) // 2]
        path = self.folder / own.relative_to(self.source if own.is_relative_to(self.source)
                                             else self.folder)
        self.lay_out(energy_map)
        content = path.read_bytes()
        other = files[0].read_bytes() if len(files) > 1 else self.sibling(path, content)

        def act():
            CHANGES[way](path, content, other)

        begin = time.monotonic()
        if kind not in self.kept:
            before = self.changed_before(energy_map, lambda: None)
            seconds = time.monotonic() - begin
            if "all.nxs" not in before or "map.tif" not in before:
                sys.exit(f"{kind}: a run that nobody disturbs writes {sorted(before)}")
            left_out = [self.changed_before(energy_map, path.unlink)] if kind != "batch" else []
            self.kept[kind] = ([before, *left_out], seconds)
        variants, seconds = list(self.kept[kind][0]), self.kept[kind][1]
        if not self.waits(kind, way):
            variants.append(self.changed_before(energy_map, act))
        if way == "another" and not any(
                values_of(file, data) != values_of(file, variants[0].get(file, b""))
                for file, data in variants[-1].items()):
            sys.exit(f"{kind}: another one gives the same outputs, so that nothing is judged")
        for _ in range(self.rounds):
            self.lay_out(energy_map)
            # A batch may be a pipe: before it was read, it would be waited for.
            early = 0.2 if self.waits(kind, way) else 0.0
            code, said = self.disturbed([self.program, "job.bat"], act, seconds, early)
            # Of a batch the lines are named.
            name = "line " if kind == "batch" and "line " in said else path.name
            self.judge(f"{kind}, {way}", code, said, name, variants)
        if not self.waits(kind, way):
            self.in_window(kind, way, act, seconds, variants)

    def waits(self, kind, way):
        return kind == "batch" and way == "a pipe"

    def sibling(self, path, content):
        if path.suffix == ".bat":
            return content.replace(b"set_band_w 1", b"set_band_w 0")
        if path.suffix == ".dat":
            return (self.source / "references" / "metal.dat").read_bytes()
        if path.suffix == ".emp":
            return content.replace(b" 0.003", b" 0.005")
        return (self.source / "dark" / "dark-1.tif").read_bytes()

    def in_window(self, kind, way, act, seconds, variants):
        """Nothing falls over; what it says of lines is in no stream."""
        what, energy_map = f"{kind}, {way}, in the window", INPUTS[kind][1]
        window = pathlib.Path(self.program).with_name("tarnwick")
        if not window.is_file():
            return
        self.lay_out(energy_map)
        timer = threading.Timer(self.chance.uniform(0.2, 0.4 + seconds), act)
        timer.start()
        process = subprocess.Popen([window, "-b", "job.bat", "-x", "-e"], cwd=self.folder,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                   errors="replace", env={**os.environ, "QT_QPA_PLATFORM": "offscreen"})
        watch = threading.Timer(common.END, process.kill)
        watch.start()
        # A batch that is another one does not say when it is done.
        told = threading.Timer(10 + 3 * seconds if kind == "batch" else 2 * common.END,
                               process.terminate)
        told.start()
        said = ""
        for line in process.stdout:
            said += line
            if line.startswith("echo all is done"):
                break
        if process.poll() is None:
            process.send_signal(signal.SIGTERM)
        process.stdout.read()
        code = process.wait()
        watch.cancel()
        told.cancel()
        timer.join()
        self.judge(what, 1 if code == 0 else code, said, "", variants, True)

    def flicker(self, kind):
        """The file is written, cut and replaced all the time, also by another one."""
        pattern, energy_map = INPUTS[kind]
        self.lay_out(energy_map)
        files = sorted(self.folder.glob(pattern))
        path = files[len(files) // 2]  # the one that change() left out
        content = path.read_bytes()
        other = files[0].read_bytes() if len(files) > 1 else content
        variants = [*self.kept[kind][0],
                    self.changed_before(energy_map, lambda: replace(path, other))]
        self.lay_out(energy_map)
        over = threading.Event()
        pause = self.chance.choice((0.004, 0.04, 0.2))  # seconds at most

        def change():
            while not over.wait(self.chance.uniform(0.0, pause)):
                if self.chance.random() < 0.5:
                    replace(path, self.chance.choice((content, other)))
                elif self.chance.random() < 0.5:
                    os.truncate(path, self.chance.randrange(len(content)))
                else:
                    overwrite(path, content)

        thread = threading.Thread(target=change)
        thread.start()
        code, said = self.run([self.program, "job.bat"])
        over.set()
        thread.join()
        if path.suffix == ".tif":
            # A TIFF that is cut is refused, so that it counts whole or not at all.
            self.judge(f"{kind}, flickering", code, said, path.name, variants)
            return
        # Text may be cut at the end of a line, and is another text then.
        if code not in (0, 1) or (code == 1 and path.name not in said):
            self.fault(f"{kind}, flickering: ends with {code}: {said[-300:]}")
        for file, data in self.outputs().items():
            wrong = structure.fault_of(file, data)
            if wrong:
                self.fault(f"{kind}, flickering: {file}: {wrong}")

    def told(self):
        """Saved results that change while they are asked for their origin."""
        self.lay_out("map.emp")
        self.run([self.program, "job.bat"])
        for path in sorted(self.place.results.glob("[am]*.*")):
            for option in ("--origin", "--record"):
                for way in CHANGES:
                    self.tell(path, option, way)

    def tell(self, path, option, way):
        """What is told is told of the file as it was or as it is, or it is refused by name."""
        content = path.read_bytes()
        command = [self.program, option, str(path)]
        before = self.run(command)
        if before[0] != 0:
            self.fault(f"{option} of {path.name}: {before}")

        def act():
            CHANGES[way](path, content, content[::-1])

        code, said = self.disturbed(command, act, 0.05)
        what = f"{option} of {path.name}, {way}"
        if code not in (0, 1):
            self.fault(f"{what}: {code}: {said[-300:]}")
        elif code == 1 and path.name not in said:
            self.fault(f"{what}: is refused without its name: {said[-300:]}")
        elif code == 0 and (code, said) not in (before, self.run(command)):
            self.fault(f"{what}: tells of neither state: {said[-300:]}")
        if path.is_dir():
            path.rmdir()
        else:
            path.unlink(missing_ok=True)
        path.write_bytes(content)


def main():
    check = Check()
    runs = 0
    for kind in INPUTS:
        faults = check.faults
        for way in CHANGES:
            check.change(kind, way)
            runs += check.rounds
        if kind != "batch":
            for _ in range(3 * check.rounds):
                check.flicker(kind)
        print(f"{kind}: {check.faults - faults} faults", flush=True)
    check.told()
    return check.end(f"{runs} inputs changed while they were read, {check.counts['whole']} runs "
                     f"whole, {check.counts['failed']} failed by name, {check.counts['window']} "
                     "in the window")


if __name__ == "__main__":
    sys.exit(main())
