#!/usr/bin/env python3
"""Runs the test programs of the given presets through CTest and counts their cases.

The last line is "N passed, N failed". A program that crashes, hangs or leaves no result counts as one failure.
Exit status: 0 only if nothing failed and something passed.
"""
import os
import re
import subprocess
import sys
import xml.etree.ElementTree as ET
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def registered_tests(preset):
    listing = subprocess.run(["ctest", "--preset", preset, "-N"], cwd=ROOT, check=True, text=True,
                             stdout=subprocess.PIPE).stdout
    return re.findall(r"^\s*Test\s+#\d+: (\S+)", listing, re.MULTILINE)


def run(preset):
    build = ROOT / "build" / preset
    results = build / "results"
    results.mkdir(exist_ok=True)
    for old in results.glob("*.xml"):
        old.unlink()
    subprocess.run(["ctest", "--preset", preset, "--output-on-failure", "--output-junit", results / "ctest.junit"],
                   cwd=ROOT, check=False, env=os.environ | {"CTEST_PARALLEL_LEVEL": str(os.cpu_count())})
    outcome = {case.get("name"): case.get("status")
               for case in ET.parse(results / "ctest.junit").iter("testcase")}
    passed = failed = 0
    for name in registered_tests(preset):
        ended_well = outcome.get(name) == "run"
        report = results / f"{name}.xml"
        program_failed = 0
        if report.exists():
            for case in ET.parse(report).iter("testcase"):
                if case.get("status") == "notrun" or case.find("skipped") is not None:
                    continue
                if case.find("failure") is not None:
                    program_failed += 1
                else:
                    passed += 1
        elif ended_well:
            passed += 1  # a check that is no GoogleTest program
        if not ended_well and program_failed == 0:
            program_failed = 1
        failed += program_failed
    return passed, failed


def main(presets):
    passed = failed = 0
    for preset in presets:
        one_passed, one_failed = run(preset)
        passed += one_passed
        failed += one_failed
    print(f"{passed} passed, {failed} failed", flush=True)
    return 0 if failed == 0 and passed > 0 else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
