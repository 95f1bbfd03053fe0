#!/usr/bin/env python3
"""check-docs.py [--tools FOLDER] [--host VLHOST] [--package FOLDER] checks the README and the pages of docs.

Always: every relative link leads to a file, and to a heading in it.
--tools: the folder of the native vlbackup and vltrace. Each line "$ COMMAND" in a block of code is run by a shell in a
         copy of examples/samples, and has to exit with 0. The lines after it are how its output begins; "..." stands
         for anything.
--host:  vlhost.exe of a build for Windows. Each line "> COMMAND" is run under Wine, in a profile of its own into which
         examples/samples/first.vlb was restored. It has to exit with 0, unless "> echo %ERRORLEVEL%" comes next.
--package: the pages in the folder of a package instead; their links alone.
The page of each tool that is given has to name the options that its --help knows, except those in tools.md, and no others.
Exit status: 0 only if all is so.
"""
import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
faults = []


def pages_in(root):
    return sorted([*root.glob("*.md"), *root.glob("docs/**/*.md"), *root.glob("examples/**/*.md")])


PAGES = pages_in(ROOT)


def code_lines(page):
    """Yields (line number, line) of the blocks of code, and a line None after each of them."""
    fence, inside, indent = "", False, 0
    for number, line in enumerate([*page.read_text().splitlines(), "(end)"], 1):
        marker = line.strip().startswith("```")
        if marker:
            fence = "" if fence else "```"
        if not marker and (fence or line.startswith("    ") or (inside and not line)):
            if not inside:
                inside, indent = True, len(line) - len(line.lstrip())
            yield number, line[indent:]
        elif inside:
            inside = False
            yield number, None


def commands(page, prompt):
    """Yields (line number, command, lines of output) of the commands after a prompt."""
    current = None
    for number, line in code_lines(page):
        if line is None or line.startswith(prompt):
            if current:
                yield current
            current = (number, line[len(prompt):], []) if line else None
        elif current:
            current[2].append(line)


def check_links(page):
    def headings(target):
        titles = re.findall(r"^#+ (.*)$", target.read_text(), re.MULTILINE)
        return {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}

    for path, anchor in re.findall(r"\]\((?!\w+:)([^)#\s]*)(?:#([^)\s]*))?\)", page.read_text()):
        target = page.parent / path if path else page
        if not target.exists():
            faults.append(f"{os.path.relpath(page, ROOT)}: no file {path}")
        elif anchor and anchor not in headings(target):
            faults.append(f"{os.path.relpath(page, ROOT)}: no heading #{anchor} in {path or 'it'}")


def options_in(text):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", text))


def check_options(tool, run_all):
    """Compares the options that a tool's page names with those of the --help of the tool and all its commands."""
    known, helped = set(), [tool]
    while helped:
        asked, helped = helped, []
        for command, (_, text) in zip(asked, run_all([f"{command} --help" for command in asked])):
            about, _, listed = text.partition("Subcommands:")
            known |= options_in(about[about.find("Options:"):])
            helped += [f"{command} {name}" for name in re.findall(r"^  (\S+)", listed, re.MULTILINE)]
    page = f"docs/{tool}.md"
    named = options_in((ROOT / page).read_text())
    faults.extend(f"{page}: no command knows {option}" for option in sorted(named - known))
    shared = options_in((ROOT / "docs/tools.md").read_text())
    faults.extend(f"{page}: {option} is missing" for option in sorted(known - named - shared))


def check_commands(page, prompt, run_all):
    """Runs the commands of a page. run_all gives the exit status and the output of each."""
    given = list(commands(page, prompt))
    for at, (status, output) in enumerate(run_all([command for _, command, _ in given])):
        number, command, expected = given[at]
        # Showing the status does not change it.
        shown = next((lines[0] for _, text, lines in given[at:at + 2] if text == "echo %ERRORLEVEL%"), 0)
        pattern = ""
        for line in "\n".join(expected).rstrip("\n").splitlines():
            pattern += r"(.*\n)*?" if line == "..." else re.sub(r"(\\ )?\\\.\\\.\\\.", ".*", re.escape(line)) + "\n"
        if status != int(shown) or (prompt == "$ " and not re.match(pattern, output)):
            faults.append(f"{page.relative_to(ROOT)}:{number}: {command}: exit status {status}, output\n{output}")


def check_tools(tools):
    environment = os.environ | {"PATH": f"{tools.resolve()}:{os.environ['PATH']}", "LC_ALL": "C.UTF-8"}
    with tempfile.TemporaryDirectory() as folder:
        samples = Path(folder) / "samples"

        def run(command):
            done = subprocess.run(["bash", "-o", "pipefail", "-c", command], cwd=samples, env=environment, timeout=60,
                                  text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            return done.returncode, done.stdout

        for page in PAGES:
            shutil.rmtree(samples, ignore_errors=True)
            shutil.copytree(ROOT / "examples/samples", samples)
            check_commands(page, "$ ", lambda given: map(run, given))
        for tool in ("vlbackup", "vltrace"):
            check_options(tool, lambda given: map(run, given))


def check_host(host):
    subprocess.run([ROOT / "scripts/base-prefix.sh"], check=True)
    prefix = Path(tempfile.mkdtemp(prefix="run-", dir=ROOT / "build/wine"))
    drive = prefix / "drive_c"
    folder = f"Z:{host.resolve().parent}".replace("/", "\\")
    environment = os.environ | {"HOME": str(ROOT / "build/wine/home"), "WINEPREFIX": str(prefix), "WINEPATH": folder}

    def run_all(given):
        lines = [f"{command}\r\necho @@%ERRORLEVEL%" for command in given]
        (drive / "given.cmd").write_text("\r\n".join(["@echo off", *lines, ""]))
        done = subprocess.run([ROOT / "scripts/wine-run.sh", "cmd", "/c", "C:\\given.cmd"], cwd=drive, env=environment,
                              timeout=120, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        parts = re.split(r"@@(\d+)\n", done.stdout.decode(errors="replace").replace("\r\n", "\n"))
        if len(parts) != 2 * len(given) + 1:
            raise RuntimeError(f"{len(given)} commands, and {len(parts)} parts of output: {parts}")
        return [(int(status), output) for output, status in zip(parts[::2], parts[1::2])]

    try:
        subprocess.run([ROOT / "scripts/clone-prefix.sh", prefix], check=True)
        shutil.copy(host.parent / "VLFPApi.dll", drive / "windows/system32")
        shutil.copy(ROOT / "examples/samples/first.vlb", drive)
        (drive / "Logons").mkdir()
        profile = [
            f'reg add HKLM\\SOFTWARE\\Veltrano\\Applications /v BinDir /d "{folder}" /f',
            f'reg add HKLM\\SOFTWARE\\Veltrano\\Branding\\Common /v DLLPath /d "{folder}\\Branding.dll" /f',
            "vlhost register",
            "vlhost setting set path_localstorage_dir C:\\Logons\\",
            "vlhost setting set path_quicklink_filename C:\\Logons\\quicklinks.txt",
            "vlhost restore C:\\first.vlb --force"] # the folders outside the personal one aren't there
        for command, (status, output) in zip(profile, run_all(profile)):
            if status != 0 and command != profile[-1]:
                faults.append(f"{command}: exit status {status}, output\n{output}")
        for page in PAGES:
            if any(commands(page, "> ")):
                check_commands(page, "> ", run_all)
        check_options("vlhost", run_all)
    finally:
        subprocess.run([ROOT / "scripts/stop-prefix.sh", prefix], check=False)
        shutil.rmtree(prefix)


parser = argparse.ArgumentParser(usage=__doc__.replace("%", "%%"))
parser.add_argument("--tools", type=Path)
parser.add_argument("--host", type=Path)
parser.add_argument("--package", type=Path)
given = parser.parse_args()
for one in pages_in(given.package.resolve()) if given.package else PAGES:
    check_links(one)
if given.tools:
    check_tools(given.tools)
if given.host:
    check_host(given.host)
sys.exit("\n".join(faults) if faults else 0)
