#!/usr/bin/env python3
"""Runs every command of a vlbackup with --json and holds what it prints to the published schemas."""
import json
import subprocess
import sys
import tempfile
from pathlib import Path

import jsonschema

PROGRAM, SCHEMAS = sys.argv[1], Path(sys.argv[2])


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
    ["find", "a"], ["hex"], ["recover", "file"], ["redact", "file"], ["to-json", "file"], ["ls", "--wrong"],
]


def main():
    seen = set()
    with tempfile.TemporaryDirectory() as folder:
        def run(*arguments):
            result = subprocess.run([PROGRAM, *arguments, "--json"], cwd=folder, capture_output=True, check=False)
            for text in filter(None, (result.stdout, result.stderr)):
                document = json.loads(text)
                seen.add(document["schema"])
                schema = json.loads((SCHEMAS / f"{document['schema']}.json").read_text(encoding="utf-8"))
                jsonschema.Draft7Validator.check_schema(schema)
                jsonschema.validate(document, schema)

        for name, content in BACKUPS.items():
            Path(folder, name).write_bytes(content)
        for name in BACKUPS:
            for command, *more in COMMANDS:
                run(command, name, *more, *(["--force"] if more[:1] in (["file"], ["out"]) else []))
            run("to-json", name, "json", "--force")
            run("from-json", "json", "file", "--force")
            run("to-json", name, "-")
    missing = {path.stem for path in SCHEMAS.glob("vlbackup-*.json")} - seen
    if missing:
        sys.exit(f"no command printed {missing}")


main()
