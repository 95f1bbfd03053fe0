#!/usr/bin/env python3
"""Runs the benchmarks and prints their rows as one table, which it also writes to build/bench.json.

Each row is a ratio of two bodies measured in turn: what, workload, ratio (the median of the rounds), spread (its
quartiles), target (or null) and met. Names of programs limit the run to these.
Exit status: 0 only if every program ran to its end and every target is met.
"""
import json
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
RELEASE = ROOT / "build" / "release" / "bin"
NATIVE = ROOT / "build" / "native-release" / "bin"
LAYOUT = "{:<72} {:<36} {:>8} {:>17} {:>7}  {}"


def programs(wanted):
    names = ["backup", "codec", "openssl", "platformcodec", "load", "call", "trace", "slope", "tools", "host"]
    for name in names:
        native, windows = NATIVE / f"{name}_bench", RELEASE / f"{name}_bench.exe"
        if wanted and name not in wanted:
            continue
        if windows.exists():
            yield name, [ROOT / "scripts" / "in-prefix.sh", windows]
        else:
            yield name, [native]
    if not wanted or "instructions" in wanted:
        yield "instructions", [sys.executable, ROOT / "bench" / "instructions.py", NATIVE / "formats_count"]


def print_row(row):
    target = "-" if row["target"] is None else f"{row['target']:g}"
    spread = "{:.3g} to {:.3g}".format(*row["spread"])
    print(LAYOUT.format(row["what"], row["workload"], f"{row['ratio']:.3g}", spread, target,
                        "" if row["met"] else "OVER"), flush=True)


def main(wanted):
    rows = []
    ended_well = True
    print(LAYOUT.format("what", "workload", "ratio", "quartiles", "target", ""))
    for name, command in programs(wanted):
        with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as process:
            for line in process.stdout:
                if line.startswith("{"):
                    rows.append(json.loads(line))
                    print_row(rows[-1])
        if process.returncode not in (0, 1):
            ended_well = False
        if process.returncode not in (0, 1) or not rows:
            print(f"bench: {name} ended with {process.returncode}", file=sys.stderr)
    (ROOT / "build" / "bench.json").write_text(json.dumps(rows, indent=1) + "\n", encoding="utf-8")
    over = sum(not row["met"] for row in rows)
    print(f"{len(rows)} rows, {over} over their target")
    return 0 if ended_well and rows and over == 0 else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
