#!/usr/bin/env python3
"""Runs every command of the tools with --json and holds what it prints, failures too, to the published schemas.

schemas_test.py tools FOLDER runs vlbackup and vltrace, schemas_test.py host VLHOST vlhost.exe under Wine.
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import jsonschema

ROOT = Path(__file__).resolve().parents[2]
SAMPLES = ROOT / "examples/samples"
seen = set()


def tlv(tag, content):
    size = len(content)
    length = size.to_bytes((size.bit_length() + 7) // 8, "big") if size > 127 else b""
    return bytes([tag, 0x80 | len(length) if length else size]) + length + content


def seq(*elements):
    return tlv(0x30, b"".join(elements))


def wide(text):
    return tlv(0x1E, (text + "\0").encode("utf-16-be"))


PAIR = seq(wide("a.vlm"), tlv(4, b"AB"))
LINK = seq(wide("l"), wide("t.exe"), wide("a.vlm"), tlv(2, b"\1"), wide("id"), tlv(2, b"\0"))
DOCUMENT = seq(tlv(4, b'{"settings":{"current":{"open_guard_desk_qa":"Alt+1"}}}\0'))
LEGACY = seq(tlv(2, b"\1"), wide("Alt+1"), tlv(4, b"x"))
LISTS = seq(PAIR, seq(wide("nul.vlm"), tlv(4, b""))), seq(LINK), seq(seq(wide("c"), wide("1")))
BACKUPS = {
    "document": seq(*LISTS, DOCUMENT),
    "legacy": seq(*LISTS, LEGACY),
    "old": seq(seq(PAIR), seq()),
    "five": seq(*LISTS, DOCUMENT, seq()),
    "odd": seq(seq(tlv(4, b"x")), tlv(4, b""), seq(seq()), seq()),
    "cut": seq(*LISTS, DOCUMENT)[:-9],
    "text": b"hello",
}
COMMANDS = [
    ["ls"], ["info"], ["cat", "a.vlm"], ["extract", "out"], ["verify"], ["diff", "old", "--restored"], ["diff", "none"],
    ["find", "a"], ["hex"], ["recover", "file"], ["redact", "file"], ["to-json", "file"],
    ["ls", "a*", "settings"], ["extract", "out", "a?vlm", "none"], ["merge", "old", "-o", "merged", "--force"], ["ls", "--wrong"],
]
# What leads to a profile in which vlhost's examples can be run, and what has other documents than they.
PROFILE = r"""
copy "{bin}\VLFPApi.dll" C:\windows\system32
reg add HKLM\SOFTWARE\Veltrano\Applications /v BinDir /d "{bin}" /f
vlhost register
vlhost setting set path_localstorage_dir C:\Logons\
mkdir C:\Logons
vlhost restore logons.vlb
vlhost restore logons.vlb --force
{examples}
vlhost setting set path_localstorage_dir C:\Logons\
vlhost backup new.vlb
vlhost restore --undo
vlhost restore --undo 99
vlhost restore --list-undo
vlhost call get-property 7 --notification 1
vlhost unregister
vlhost status
vlhost --wrong
"""


def check(what, *outputs):
    for text in outputs:
        while text := text.strip():
            try:
                document, end = json.JSONDecoder().raw_decode(text)
                seen.add(document["schema"])
                schema = json.loads((ROOT / f"docs/schemas/{document['schema']}.json").read_text(encoding="utf-8"))
                jsonschema.Draft7Validator.check_schema(schema)
                jsonschema.validate(document, schema)
            except Exception as error:
                raise AssertionError(f"{what}: {text}") from error
            text = text[end:]


def check_tools(tools):
    with tempfile.TemporaryDirectory() as folder:
        def run(*arguments, tool="vlbackup"):
            done = subprocess.run([tools / tool, *arguments, "--json"], cwd=folder, capture_output=True, check=False)
            # What goes to standard output is a backup, and the report is beside it.
            check((tool, *arguments), "" if {"recover", "merge"} & {*arguments} and arguments[-1] == "-" else
                  done.stdout.decode(), done.stderr.decode())

        for name, content in BACKUPS.items():
            Path(folder, name).write_bytes(content)
        for name in BACKUPS:
            for command, *more in COMMANDS:
                run(command, name, *more, *(["--force"] if more[:1] in (["file"], ["out"]) else []))
            run("to-json", name, "json", "--force")
            run("from-json", "json", "file", "--force")
            run("to-json", name, "-")
            run("recover", name, "-")
            for other in ("old", "legacy"):
                run("merge", name, other, "-o", "-")
                run("merge", name, other, "--dry-run")
        for name in ("restore.trc3", "damaged.trc3", "first.vlb", "none", ""):
            run("stats", SAMPLES / name, tool="vltrace")
        run("stats", SAMPLES, folder, "--wrong", tool="vltrace")


def check_host(host):
    def windows(path):
        return f"Z:{path}".replace("/", "\\")

    def run(folder, *command):
        return subprocess.run([ROOT / "scripts/in-prefix.sh", *command], cwd=folder, check=False, text=True,
                              env=os.environ | {"WINEPATH": windows(host.parent)}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE).stdout

    with tempfile.TemporaryDirectory() as folder:
        shutil.copy(SAMPLES / "first.vlb", Path(folder, "logons.vlb"))
        Path(folder, "password.txt").write_text("x")
        page = run(folder, host, "--man").replace("\\-", "-").replace("\\e", "\\")
        examples = [line for line in re.findall(r"\.nf\n(.*)\n\.fi", page) if "unregister" not in line]
        commands = PROFILE.format(bin=windows(host.parent), examples="\n".join(examples)).split("\n")[1:-1]
        lines = ["@echo off"]
        for number, command in enumerate(commands):
            lines.append(f"{command} --json >{number}.out 2>{number}.err" if "vlhost" in command else command + " >NUL")
        Path(folder, "given.cmd").write_text("\r\n".join([*lines, ""]))
        run(folder, "cmd", "/c", "given.cmd")
        for number, command in enumerate(commands):
            if "vlhost" in command:
                err = Path(folder, f"{number}.err").read_text()
                check(command, Path(folder, f"{number}.out").read_text(), err)
                assert command not in examples or '"exitStatus": 2' not in err, (command, err)


what, given = sys.argv[1], Path(sys.argv[2]).resolve()
if what == "tools":
    check_tools(given)
else:
    check_host(given)
missing = {path.stem for tool in (["vlbackup", "vltrace", "error"] if what == "tools" else ["vlhost"])
           for path in (ROOT / "docs/schemas").glob(tool + "-*.json")} - seen
if missing:
    sys.exit(f"no command printed {missing}")
