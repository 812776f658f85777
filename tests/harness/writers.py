#!/usr/bin/env python3
"""Several runs save the same names, while a reader looks at them all the time."""

import subprocess
import sys
import time

import structure
from common import NAMES, OPTIONS, Part, comparable, every_kind

SHIFTS = ("0.1", "0.2")  # of the writers: two versions of what a fit makes
SAVES = 5  # of each kind in a run


def start(part, number):
    job = part.root / f"writer-{number}.bat"
    job.write_text(every_kind(SAVES, SHIFTS[number % 2]))
    options = [option for _, words in OPTIONS for option in words]
    return subprocess.Popen([part.program, *options, str(job)], cwd=part.place.out, text=True,
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)


def ended(part, process):
    said = process.stderr.read()
    code = process.wait()
    failed = [line for line in said.splitlines() if "warning" not in line]
    if code != 0 or failed:
        part.fault(f"a writer: exit code {code}, {len(failed)} lines: {' | '.join(failed[:3])}")


def look(part, path, allowed, counts):
    """Whether one was torn."""
    try:
        data = path.read_bytes()
    except FileNotFoundError:
        part.fault(f"{path.name} is not there")
        return
    counts["looks"] += 1
    wrong = ""
    if comparable(path.name, data) not in allowed[path.name]:
        wrong = structure.fault_of(path.name, data) or "of neither writer"
    if wrong:
        counts["torn"] += 1
        part.fault(f"{path.name} of {len(data)} bytes: {wrong}")


def version(path):
    try:
        now = path.stat()
    except FileNotFoundError:
        return None
    return now.st_ino, now.st_mtime_ns


def race(part, number, allowed, counts, looks):
    """So many looks while so many runs write: at what is new since the last look, or any."""
    paths = [path for name, path in part.place.files().items() if name in allowed]
    seen = {path: version(path) for path in paths}
    writers = [start(part, n) for n in range(number)]
    end, runs = counts["looks"] + looks, number
    until = time.monotonic() + 600
    begun = False
    while counts["looks"] < end and time.monotonic() < until:
        new = [path for path in paths if version(path) != seen[path]]
        begun = begun or bool(new)
        if begun:
            path = part.chance.choice(new or paths)
            seen[path] = version(path)
            counts["versions"] += bool(new)
            look(part, path, allowed, counts)
        time.sleep(0.0005)
        for at, process in enumerate(writers):
            if process.poll() is not None:
                ended(part, process)
                writers[at] = start(part, at)
                runs += 1
    for process in writers:
        ended(part, process)
    counts["runs"] += runs


def main():
    part = Part(__doc__, 10000)
    allowed = {}
    part.place.empty()
    for number in range(2):
        ended(part, start(part, number))
        for file, content in part.place.contents().items():
            allowed.setdefault(file, []).append(content)
    counts = {"looks": 0, "versions": 0, "torn": 0, "runs": 0}
    for number in (2, 4):
        race(part, number, allowed, counts, part.rounds // 2)
    for name in set(part.place.files()) - set(allowed):
        part.fault(f"{name} stays")
    if counts["looks"] < part.rounds // 2 * 2:
        part.fault("the looks took too long")
    return part.end(f"writers: {len(NAMES)} kinds, two and four writers, {counts['runs']} runs of "
                    f"{SAVES} saves each, {counts['looks']} looks at "
                    f"{counts['versions']} versions, {counts['torn']} torn")


if __name__ == "__main__":
    sys.exit(main())
