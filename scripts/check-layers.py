#!/usr/bin/env python3
"""Reads the includes of our sources and fails on each that points up, sideways or to no header of ours.

A folder includes its own headers and those of the folders in its row. README.md draws the same picture.
Platform headers are angle-bracketed, and formats/ has none of them.
"""
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#include ([<"])([^">]+)[">]', re.MULTILINE)
PLATFORM = re.compile(r"windows\.h|win\w+\.h|ole\w*\.h|objbase\.h|shl\w+\.h|unistd\.h|sys/\S+|psapi\.h|aclapi\.h|sddl\.h")

FORMATS = {
    "formats/text": [],
    "formats/der": ["formats/text"],
    "formats/backup": ["formats/text", "formats/der"],
    "formats/trace": ["formats/text"],
    "formats/resource": [],
}
GROUND = ["common", "atl", "neighbours", *FORMATS]
TRACED = [*GROUND, "tracecore", "security"]
PLUGIN = [*TRACED, "agent", "storage", "resources", "quicklinks", "backup", "include"]
MAY_INCLUDE = FORMATS | {
    "runtime": [],
    "common": [],
    "atl": ["common"],
    "neighbours": ["common", "atl"],
    "tracecore": [*GROUND],
    "security": [*GROUND, "tracecore"],
    "agent": TRACED,
    "storage": TRACED,
    "resources": TRACED,
    "quicklinks": [*TRACED, "storage"],
    "backup": [*TRACED, "storage", "quicklinks"],
    "plugin": PLUGIN,
    "include": [],
    "shared": ["common", *FORMATS],
    "vlbackup": ["common", *FORMATS, "shared"],
    "vltrace": [*FORMATS, "shared"],
    "vlhost": [*PLUGIN, "shared", "vlbackup"],
    "vlsetup": ["common", *FORMATS, "shared"],
    "branding": ["resources"],
    "journal": GROUND,
    "vlagent": [*TRACED, "agent", "journal"],
    "vlfpapi": GROUND,
    "vloset": GROUND,
    "vluserconsole": [*GROUND, "resources", "journal"],
}


def folder_of(path):
    parts = path.split("/")
    if parts[0] == "include":
        return "include"
    if parts[:2] == ["src", "formats"]:
        return "/".join(parts[1:3])
    return parts[1]


def main():
    listing = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard",
                              "include", "src", "standins", "tools"],
                             cwd=ROOT, check=True, text=True, stdout=subprocess.PIPE)
    sources = [path for path in listing.stdout.split() if re.search(r"\.(h|inc|cpp|rc)$", path) and (ROOT / path).exists()]
    headers = set(sources)
    bad = 0

    def report(path, name, why):
        nonlocal bad
        bad += 1
        print(f'{path}: "{name}" {why}')

    for path in sources:
        folder = folder_of(path)
        if folder not in MAY_INCLUDE:
            report(path, folder, "has no row in scripts/check-layers.py")
            continue
        for kind, name in INCLUDE.findall((ROOT / path).read_text(encoding="utf-8")):
            if kind == "<":
                if folder in FORMATS and PLATFORM.fullmatch(name):
                    report(path, name, "is the platform's, and the formats are portable")
                continue
            beside = str(Path(path).parent / name)
            found = {place for place in (beside, *(f"{root}/{name}" for root in ("src", "include", "standins", "tools")))
                     if place in headers}
            if len(found) != 1:
                report(path, name, f"names {len(found)} of our headers")
            elif (target := folder_of(found.pop())) != folder and target not in MAY_INCLUDE[folder]:
                report(path, name, f"points from {folder} to {target}, which is not below it")
    return 1 if bad or not sources else 0


if __name__ == "__main__":
    sys.exit(main())
