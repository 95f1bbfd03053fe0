#!/usr/bin/env python3
"""make_der_seeds.py FOLDER writes backups of each version as seeds for fuzz_der."""
import pathlib
import sys


def element(tag, content):
    short = len(content) < 0x80
    length = bytes([len(content)]) if short else b"\x82" + len(content).to_bytes(2, "big")
    return bytes([tag]) + length + content


def sequence(*items):
    return element(0x30, b"".join(items))


def wide(text):
    return element(0x1E, (text + "\0").encode("utf-16-be"))


def narrow(text):
    return element(0x04, (text + "\0").encode())


def integer(value):
    return element(0x02, bytes([value]))


templates = sequence(sequence(wide("a.vlm"), element(0x04, b"AB")),
                     sequence(wide("alien|C:\\x\\b.vlm"), element(0x04, bytes(200))))
new_links = sequence(sequence(wide("Mail"), wide("https://mail.test/"), wide("a.vlm"), integer(3),
                              wide("id"), integer(1)))
old_links = sequence(sequence(narrow("Mail"), narrow("https://mail.test/"), narrow("a.vlm"), integer(3),
                              narrow("id")))
categories = sequence(sequence(wide("Work"), wide("1")))
document = sequence(narrow('{"settings":{"current":{"open_guard_desk_qa":"Ctrl+Win+72"}}}'))
legacy = sequence(integer(1), wide("Ctrl+Win+72"), element(0x04, b"list"))
other_texts = sequence(*(sequence(element(tag, b"aabb"), element(0x04, b""))
                         for tag in (0x0C, 0x13, 0x16, 0x1A)))

seeds = {
    "two": sequence(templates, old_links),
    "three": sequence(templates, new_links, categories),
    "four": sequence(templates, new_links, categories, document),
    "legacy": sequence(templates, new_links, categories, legacy),
    "five": sequence(other_texts, new_links, categories, document, integer(0)) + b"tail",
}
folder = pathlib.Path(sys.argv[1])
folder.mkdir(parents=True, exist_ok=True)
for name, content in seeds.items():
    (folder / name).write_bytes(content)
