#!/usr/bin/env python3
"""Puts what a program prints between the marks of a table in a document.

    put_table.py DOCUMENT NAME PROGRAM [ARGUMENT ...]

The marks are the lines "<!-- table: NAME -->" and "<!-- end -->". The document is left as it was
when the program fails or the marks are missing.
"""

import pathlib
import subprocess
import sys


def main():
    document = pathlib.Path(sys.argv[1])
    start, end = f"<!-- table: {sys.argv[2]} -->\n", "<!-- end -->\n"
    text = document.read_text(encoding="utf-8")
    before, found, rest = text.partition(start)
    _, closed, after = rest.partition(end)
    if not found or not closed:
        sys.exit(f"no marks for {sys.argv[2]} in {document}")
    table = subprocess.run(sys.argv[3:], check=True, stdout=subprocess.PIPE, text=True).stdout
    document.write_text(before + start + "\n" + table + "\n" + end + after, encoding="utf-8")


if __name__ == "__main__":
    main()
