#!/usr/bin/env python3
"""Kills tarnwick-batch while it writes, for every kind of output, and runs it again."""

import os
import signal
import subprocess
import sys
import time

from common import Kind, NAMES, Part

SAVES = 20  # of one kind in a row, among which the kill falls
OLD = b"older content\n" * 300
DAYS = 2 * 86400


def saving_time(part, kind):
    """Seconds from the start to the first save, and to the end."""
    part.place.empty()
    begin = time.monotonic()
    process = subprocess.Popen(part.command(kind, SAVES), cwd=part.place.out, text=True,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    first = None
    for line in process.stdout:
        if first is None and line.startswith((kind.line or "analyzer_select_map").split()[0]):
            first = time.monotonic() - begin
    process.wait()
    return first, time.monotonic() - begin


def kill(part, kind, times, wanted):
    """Kills at a random moment, or when a file that is not yet in place is seen. Whether the kill
    found the program alive."""
    process = subprocess.Popen(part.command(kind, SAVES), cwd=part.place.out,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    moment = time.monotonic() + part.chance.uniform(times[0], 1.1 * times[1])
    if part.chance.random() < 0.6:
        known = set(wanted) | {"results"}
        while process.poll() is None and time.monotonic() < moment + times[1]:
            names = set(os.listdir(part.place.results)) | set(os.listdir(part.place.out))
            if not names <= known and part.chance.random() < 0.5:
                break
    elif moment > time.monotonic():
        time.sleep(moment - time.monotonic())
    alive = process.poll() is None
    process.send_signal(signal.SIGKILL)
    process.wait()
    return alive


def make_older(part, strays):
    for name, path in part.place.files().items():
        if name in strays:
            os.utime(path, (time.time() - DAYS, time.time() - DAYS))


def main():
    part = Part(__doc__, 800)
    kills = cleaned = 0
    wanted = {name: part.undisturbed(Kind(name)) for name in NAMES}
    times = {name: saving_time(part, Kind(name)) for name in NAMES}
    while kills < part.rounds:
        kind = Kind(NAMES[kills % len(NAMES)])
        contents = wanted[kind.name]
        old = part.chance.random() < 0.5
        part.place.empty()
        if old:
            part.place.put(contents, OLD)
        if not kill(part, kind, times[kind.name], contents):
            continue
        kills += 1
        allowed = {name: [content, OLD] if old else [content] for name, content in contents.items()}
        strays = part.judge(f"{kind.name}, killed", allowed, old)
        make_older(part, strays)
        code, said = part.run(part.command(kind))
        if code != 0:
            part.fault(f"{kind.name}, run again: exit code {code}: {said[-300:]}")
        left = part.judge(f"{kind.name}, run again", {n: [c] for n, c in contents.items()}, True)
        cleaned += len(strays) - len(left)
        for name in left:
            part.fault(f"{kind.name}: {name} stays for ever")
        if kills % 50 == 0:
            print(f"{kills} kills, {cleaned} temporaries cleaned: {part.faults} faults", flush=True)
    return part.end(f"kills: {len(NAMES)} kinds, {kills} kills, {cleaned} temporaries cleaned")


if __name__ == "__main__":
    sys.exit(main())
