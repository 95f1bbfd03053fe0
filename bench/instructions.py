#!/usr/bin/env python3
"""instructions.py PROGRAM counts the instructions of each portable format per byte, under callgrind.

A count doesn't depend on what else the machine does, so a change of a few per cent can be seen. It does depend on the
compiler: the figures below are those of GCC 12, and another one's are only printed.
Prints rows as the benchmarks do. Exit status: 1 if a count is above 1.1 of its figure.
"""
import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

FIGURES = {"encode": 16.97, "decode": 93.5, "scramble": 103.9, "read": 107.3}
COMPILER = "12"


def count(program, name, folder):
    out = Path(folder) / name
    run = subprocess.run(["valgrind", "--tool=callgrind", f"--toggle-collect=count_{name}", f"--callgrind-out-file={out}",
                          program], check=True, text=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    size = int(re.search(rf"^{name} (\d+)$", run.stdout, re.MULTILINE).group(1))
    return int(re.search(r"^(?:totals|summary): (\d+)", out.read_text(), re.MULTILINE).group(1)) / size


def main(program, compiler=COMPILER):
    good = True
    with tempfile.TemporaryDirectory() as folder:
        for name, figure in FIGURES.items():
            per_byte = count(program, name, folder)
            target = 1.1 * figure if compiler.split(".")[0] == COMPILER else None
            met = target is None or per_byte <= target
            good = good and met
            print(json.dumps({"what": f"instructions per byte: {name}", "workload": "callgrind", "ratio": round(per_byte, 3),
                              "spread": [round(per_byte, 3)] * 2, "target": target and round(target, 3), "met": met}))
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
