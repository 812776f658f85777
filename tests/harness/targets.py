#!/usr/bin/env python3
"""Every kind of output where it cannot be written, or something else stands in its place."""

import os
import shutil
import stat
import subprocess
import sys
import threading
import time

from common import END, Kind, NAMES, Part

OLD = b"older content\n" * 200
NOBODY = 65534


def folder_of(part, name):
    return part.place.out if name in ("flat.dat", "dark.dat") else part.place.results


def refused(part, what, code, said):
    if code not in (1, 2):
        part.fault(f"{what}: exit code {code}")
    if not said.strip():
        part.fault(f"{what}: nothing is said")


def read_only(part, kind, wanted):
    """A folder in which the user may not write."""
    part.place.put(wanted, OLD)
    how = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if os.geteuid() == 0 else {}
    folders = (part.root, part.place.out, part.place.results)
    for folder in folders:
        folder.chmod(0o555)
    try:
        code, said = part.run(part.command(kind), **how)
    finally:
        for folder in folders:
            folder.chmod(0o755)
    refused(part, f"{kind.name}, read-only folder", code, said)
    for name in part.judge(f"{kind.name}, read-only folder", {n: [OLD] for n in wanted}, True):
        part.fault(f"{kind.name}, read-only folder: {name} is new")


def no_folder(part, kind, wanted):
    if "flat.dat" not in wanted:
        shutil.rmtree(part.place.results)
        code, said = part.run(part.command(kind))
        refused(part, f"{kind.name}, no folder", code, said)


def removed(part, kind, wanted):
    """The folder goes away while the program writes into it."""
    if "flat.dat" in wanted or not kind.line:
        return
    process = subprocess.Popen(part.command(kind, 300), cwd=part.place.out, text=True,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    found = {}
    reader = threading.Thread(target=lambda: found.update(said=process.stderr.read()))
    reader.start()
    until = time.monotonic() + END
    while not os.listdir(part.place.results) and time.monotonic() < until:
        time.sleep(0.001)
    part.place.results.rename(part.root / "gone")  # in one step, however fast the other writes
    shutil.rmtree(part.root / "gone")
    try:
        refused(part, f"{kind.name}, folder removed", process.wait(END), "said")
    except subprocess.TimeoutExpired:
        part.fault(f"{kind.name}, folder removed: does not end")
        process.kill()
    reader.join()
    if kind.line.split()[0] not in found["said"]:
        part.fault(f"{kind.name}, folder removed: nothing is said of it")
    if part.place.files():
        part.fault(f"{kind.name}, folder removed: {list(part.place.files())} stay")


def something_else(part, kind, wanted):
    """No file, but a pipe, a folder or a device: stays what it is, and the line fails."""
    makers = [("pipe", os.mkfifo, stat.S_ISFIFO), ("folder", os.mkdir, stat.S_ISDIR)]
    if os.geteuid() == 0:
        null = os.stat(os.devnull).st_rdev
        makers.append(("device", lambda path: os.mknod(path, 0o666 | stat.S_IFCHR, null),
                       stat.S_ISCHR))
    for what, make, is_it in makers:
        part.place.empty()
        place = folder_of(part, next(iter(wanted))) / next(iter(wanted))
        make(place)
        code, said = part.run(part.command(kind))
        refused(part, f"{kind.name}, a {what}", code, said)
        if not is_it(os.lstat(place).st_mode):
            part.fault(f"{kind.name}: the {what} is replaced")
        for name in set(part.place.files()) - set(wanted):
            part.fault(f"{kind.name}, a {what}: {name} stays")


def links(part, kind, wanted):
    """A link stays one, its target is replaced and keeps its permissions."""
    behind = part.place.out / "behind"
    for there in (True, False):
        part.place.empty()
        behind.mkdir()
        for name in wanted:
            if there:
                (behind / name).write_bytes(OLD)
                (behind / name).chmod(0o640)
            (folder_of(part, name) / name).symlink_to(behind / name)
        code, said = part.run(part.command(kind))
        if code != 0:
            part.fault(f"{kind.name}, links: exit code {code}: {said[-200:]}")
        for name, content in wanted.items():
            if not (folder_of(part, name) / name).is_symlink():
                part.fault(f"{kind.name}: the link {name} is replaced")
            mode = stat.S_IMODE((behind / name).stat().st_mode)
            if there and mode != 0o640:
                part.fault(f"{kind.name}: permissions {mode:o} in place of 640")
        (behind).rename(part.root / "behind")
        for name in set(part.place.files()) - set(wanted):
            part.fault(f"{kind.name}, links: {name} stays")
        for name in {path.name for path in (part.root / "behind").iterdir()} - set(wanted):
            part.fault(f"{kind.name}, links: {name} stays")
        shutil.rmtree(part.root / "behind")


def main():
    part = Part(__doc__, 1)
    part.root.chmod(0o755)
    cases = [read_only, no_folder, removed, something_else, links]
    if os.geteuid() == 0 and subprocess.run(["test", "-x", part.program], user=NOBODY, group=NOBODY,
                                            extra_groups=[]).returncode != 0:
        print("targets: no read-only folder: this program is one that only root may run")
        cases.remove(read_only)
    runs = 0
    for _ in range(part.rounds):
        for name in NAMES:
            kind = Kind(name)
            wanted = part.undisturbed(kind)
            for case in cases:
                part.place.empty()
                case(part, kind, wanted)
                runs += 1
    return part.end(f"targets: {len(NAMES)} kinds, {runs} cases")


if __name__ == "__main__":
    sys.exit(main())
