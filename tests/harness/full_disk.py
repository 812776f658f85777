#!/usr/bin/env python3
"""Every kind of output on a disk that is full in the middle of it or at its last block.

Where root, on a small file system of its own; and everywhere within a limit of the size of files,
with and without the signal that it sends.
"""

import os
import resource
import signal
import subprocess
import sys

from common import Kind, NAMES, Part

OLD = b"older content\n"  # no more than a block: replacing it makes no room
BLOCK = 1024


class NoDisk(Exception):
    """This user or this machine may not mount one."""


class SmallDisk:
    """A file system of 4 MB where the program writes, while it is entered."""

    def __init__(self, part):
        self.image, self.folder = part.root / "disk", part.place.out
        self.filler = part.place.out / "filler"

    def __enter__(self):
        with open(self.image, "wb") as image:
            image.truncate(4096 * BLOCK)
        self.folder.mkdir(exist_ok=True)
        for command in (["mkfs.ext4", "-q", "-F", "-b", str(BLOCK), "-m", "0", "-O",
                         "^has_journal", self.image],
                        ["mount", "-o", "loop", self.image, self.folder]):
            try:
                subprocess.run(command, check=True, capture_output=True,
                               env={**os.environ, "PATH": os.environ["PATH"] + ":/usr/sbin:/sbin"})
            except (OSError, subprocess.CalledProcessError) as error:
                raise NoDisk(error) from error
        return self

    def __exit__(self, *_):
        subprocess.run(["umount", self.folder], check=True)

    def leave(self, blocks):
        """Fills the disk but for so many blocks."""
        with open(self.filler, "wb") as filler:
            free = os.statvfs(self.folder).f_bavail
            while free > blocks:
                filler.write(bytes((free - blocks) * BLOCK))
                filler.flush()
                os.fsync(filler.fileno())
                now = os.statvfs(self.folder).f_bavail
                if now >= free:
                    break
                free = now
        size = self.filler.stat().st_size
        while os.statvfs(self.folder).f_bavail < blocks and size > 0:
            size -= BLOCK
            os.truncate(self.filler, size)
            os.sync()


def judge(part, what, kind, wanted, code, said):
    """Failed, and said so; each file the old or the new one, at least one the old."""
    if code != 1:
        part.fault(f"{what}: exit code {code}")
    word = kind.line.split()[0] if kind.line else kind.name
    if f": {word}" not in said and word not in said.splitlines()[-1]:
        part.fault(f"{what}: nothing is said of it: {said[-200:]}")
    for name in part.judge(what, {name: [new, OLD] for name, new in wanted.items()}, True):
        if name != "filler":
            part.fault(f"{what}: {name} stays")
    if OLD not in part.place.contents().values():
        part.fault(f"{what}: all is written, the disk was not full")


def largest_of(part):
    """Bytes of the largest file, less what the time of a run makes of it."""
    sizes = {path.stat().st_size: name for name, path in part.place.files().items()}
    varies = sizes[max(sizes)] in ("report.json", "summary.csv")
    return max(sizes) - (100 if varies else 0)


def small_disk(part, kind, wanted, largest):
    """In the middle of the largest file, and at its last block."""
    blocks = -(-largest // BLOCK)
    for what, free in (("middle", blocks // 2), ("last block", blocks - 1)):
        part.place.empty()
        part.place.put(wanted, OLD)
        disk = SmallDisk(part)
        disk.leave(free)
        code, said = part.run(part.command(kind))
        judge(part, f"{kind.name}, disk full ({what})", kind, wanted, code, said)
        disk.filler.unlink()


def limited(part, kind, wanted, largest):
    for what, size in (("middle", largest // 2), ("last byte", largest - 1)):
        for how in (signal.SIG_IGN, signal.SIG_DFL):
            def limit():
                signal.signal(signal.SIGXFSZ, how)
                resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))
            part.place.empty()
            part.place.put(wanted, OLD)
            code, said = part.run(part.command(kind), preexec_fn=limit, restore_signals=False)
            judge(part, f"{kind.name}, limit of the size ({what}, {how.name})", kind, wanted, code,
                  said)


def main():
    part = Part(__doc__, 1)
    wanted, largest = {}, {}
    for name in NAMES:
        wanted[name] = part.undisturbed(Kind(name))
        largest[name] = largest_of(part)
    for _ in range(part.rounds):
        for name in NAMES:
            limited(part, Kind(name), wanted[name], largest[name])
    disks = 0
    part.place.empty()
    try:
        with SmallDisk(part):
            for _ in range(part.rounds):
                for name in NAMES:
                    small_disk(part, Kind(name), wanted[name], largest[name])
                    disks += 2
    except NoDisk as reason:
        print(f"full disk: only by limits of the size of files, no file system: {reason}")
    return part.end(f"full disk: {len(NAMES)} kinds, {4 * part.rounds * len(NAMES)} limits, "
                    f"{disks} full file systems")


if __name__ == "__main__":
    sys.exit(main())
