#!/usr/bin/env python3
"""Runs all parts of reliability_check, two at a time, and prints a line for each.

    reliability.py PROGRAM SAMPLES [--rounds FACTOR] [--seed N] [--only PART ...]

PROGRAM is tarnwick-batch, built without sanitizers (they take more memory than the limits leave),
SAMPLES is tarnwick-samples. FACTOR multiplies the rounds of each part: 20 for a night. Each part is
a script of its own. Exit code 1: a part found a fault or did not end.
"""

import argparse
import concurrent.futures
import pathlib
import subprocess
import sys
import time

# A script, and the rounds of factor 1; None: it knows its own and takes none.
PARTS = {
    "kills": 800,             # with those of kill_resume 1,000
    "kill_resume": 200,
    "full_disk": 1,
    "targets": 1,
    "writers": 10000,         # looks
    "memory_steps": None,
    "changing_inputs": None,
    "signals": None,
}
LONGEST = 3600  # seconds that a part takes at factor 1, on a slow machine


def run(name, options):
    """Exit code, what the part said, seconds."""
    rounds = PARTS[name]
    script = pathlib.Path(__file__).with_name(name + ".py")
    if not script.is_file():
        return 1, f"{script.name} is missing", 0.0
    command = [sys.executable, str(script), str(options.program), str(options.samples)]
    if rounds is not None:
        command += ["--rounds", str(max(1, round(options.rounds * rounds))), "--seed",
                    str(options.seed)]
    begin = time.monotonic()
    try:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              errors="replace", timeout=LONGEST * max(1, options.rounds))
        return done.returncode, done.stdout.strip() or "said nothing", time.monotonic() - begin
    except subprocess.TimeoutExpired as late:
        return 1, f"{late.stdout or ''}\ndoes not end", time.monotonic() - begin


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("samples", type=pathlib.Path)
    parser.add_argument("--rounds", type=float, default=1)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", nargs="+", choices=PARTS, default=list(PARTS))
    options = parser.parse_args()
    failed = []
    begin = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        parts = {pool.submit(run, name, options): name for name in options.only}
        for part in concurrent.futures.as_completed(parts):
            code, said, seconds = part.result()
            if code != 0:
                failed.append(parts[part])
                print(said, flush=True)
            print(f"[{parts[part]}, {seconds:.0f} s, {'FAULTS' if code else 'ok'}] "
                  f"{said.splitlines()[-1]}", flush=True)
    print(f"reliability: {len(parts)} parts in {(time.monotonic() - begin) / 60:.1f} min, seed "
          f"{options.seed}, {len(failed)} with faults" + ": " * bool(failed) + ", ".join(failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
