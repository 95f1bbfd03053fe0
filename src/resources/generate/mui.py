#!/usr/bin/env python3
"""Makes the resource of type "MUI": the resource configuration data of a DLL or of one of its language files.

mui.py main NAME VERSION IDS FILE                for the DLL
mui.py language NAME VERSION IDS LANGUAGE FILE   for its language file, such as de-DE

NAME     file name of the DLL
VERSION  version of both
IDS      the header that numbers the strings (IDS_...)

A language file is the DLL's when one of the two checksums is equal in both. The service checksum stands for the
release; the other one for what the DLL expects to find, so that a release with the same strings takes the language
files of another.
"""
import hashlib
import re
import struct
import sys

MAGIC = 0xFECDFECD
FORMAT = 0x10000
MAIN, LANGUAGE = 0x11, 0x12
FALLBACK = "en-US"
EXTERNAL = 2  # the fallback language is a language file too

# Resource types by number: bitmap 2, icon 3, menu 4, dialog 5, string table 6, icon group 14, version 16, HTML 23.
MAIN_TYPES = (2, 3, 14, 16, 23)
LANGUAGE_TYPES = (4, 5, 6, 16, 23)
NAMED_TYPES = ("MUI",)  # in both

HEADER = struct.Struct("<7I16s16s2I16I")


def checksum(*parts):
    return hashlib.sha256("\n".join(parts).encode("utf-8")).digest()[:16]


def string_ids(header):
    with open(header, encoding="utf-8") as file:
        ids = sorted(int(number) for number in
                     re.findall(r"^#define\s+IDS_\w+\s+(\d+)\b", file.read(), re.MULTILINE))
    if not ids:
        sys.exit(f"{header}: no string ids")
    return ids


def numbers(values):
    return struct.pack(f"<{len(values)}I", *values)


def names(values):
    """Each name ends with a zero, the list with another."""
    return "".join(value + "\0" for value in values + ("",)).encode("utf-16-le")


def configuration(file_type, name, version, ids, language):
    service = checksum("release", name, version)
    content = checksum("content", name, *map(str, ids), *map(str, LANGUAGE_TYPES))
    main = file_type == MAIN
    parts = (
        b"",  # no path of its own for language files: they lie in the language's folder
        b"",
        names(NAMED_TYPES),
        numbers(MAIN_TYPES),
        names(NAMED_TYPES),
        numbers(LANGUAGE_TYPES),
        b"" if main else (language + "\0").encode("utf-16-le"),
        (FALLBACK + "\0").encode("utf-16-le") if main else b"",
    )
    body = bytearray(HEADER.size)
    places = []
    for part in parts:
        body += bytes(-len(body) % 8)
        places += (len(body), len(part)) if part else (0, 0)
        body += part
    body += bytes(-len(body) % 8)
    HEADER.pack_into(body, 0, MAGIC, len(body), FORMAT, 0, file_type, 0, EXTERNAL if main else 0,
                     service, content, 0, 0, *places)
    return bytes(body)


def main(arguments):
    if len(arguments) == 5 and arguments[0] == "main":
        kind, language = MAIN, None
    elif len(arguments) == 6 and arguments[0] == "language":
        kind, language = LANGUAGE, arguments[4]
    else:
        sys.exit(__doc__)
    data = configuration(kind, arguments[1], arguments[2], string_ids(arguments[3]), language)
    with open(arguments[-1], "wb") as file:
        file.write(data)


if __name__ == "__main__":
    main(sys.argv[1:])
