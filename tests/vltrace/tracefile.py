#!/usr/bin/env python3
"""Makes trace files with a model of what is in them, from the format: it shares no code with what it checks.

As a program it makes of each line on standard input what stands in it, and writes it to standard output:

    # trace3                         a line of the header; without any, it is trace3 and the full stop
    07/14/17 10:00:00.100 1A4 > f    a record: stamps before it, if there are any, its thread, its level, its text
    1A4 U caf\\xE9                    a text with a byte that is no character
    ! 28 01 00                       bytes as they are

With --more there is no header: the lines go on with a file."""
import random
import re
import struct
import sys
from datetime import datetime, timedelta

MASK = 0xFFFFFFFF
KEY = (0x6B7D1A35, 0xC2E94F08, 0x1F53B8D6, 0x94A0E72C)
HEADER = ("trace3\r\nMachine name: PC-7\r\nTrace Ver: 3.0.2\r\nFileVersion: 1.2.3.4\r\n"
          "07/14/2017 10:00:00.000\r\n.\r\n").encode()
TEXTS = ("plain", "Größe, \"of\" 日;\n</script><b>\u2028\t\\", "=1+1", "'`I04`'red", "x" * 300, "\U0001F511 key")
DAMAGES = (random.Random(7).randbytes(5000), bytes(3000), b"U" * 3000,
           b"\x28\1\0\0U\xC8\0\1\2\3", b"\x28\1\0\0X\1\0\t",  # half a record, an unknown level
           b"\x28\1\0\0U\x30\1\0\0>")  # two headers that raced
NAMES = ("CVLKTPages::SetStorageData", "QL::add", "a;b", "</script><script>alert(1)</script>", "prepfolderlist")


def date_and_time(ms):
    moment = datetime(2017, 7, 14) + timedelta(milliseconds=ms)
    return str(moment.date()), moment.strftime("%H:%M:%S.") + f"{ms % 1000:03}"


def signed_shift(value):
    return (value >> 5) | (0xF8000000 if value >> 31 else 0)


def scramble(text):
    out, y, z = bytearray(), 0x3C5A9D17, 0xE86B40F2
    for at in range(0, len(text), 8):
        total = 0
        for _ in range(32):
            total = (total + 0x9E3779B9) & MASK
            y = (y + ((((z << 4) + KEY[0]) & MASK) ^ ((z + total) & MASK) ^ ((signed_shift(z) + KEY[1]) & MASK))) & MASK
            z = (z + ((((y << 4) + KEY[2]) & MASK) ^ ((y + total) & MASK) ^ ((signed_shift(y) + KEY[3]) & MASK))) & MASK
        piece = bytes(a ^ b for a, b in zip(text[at:at + 8], struct.pack("<II", y, z)))
        out += piece
        if len(piece) == 8:
            y, z = struct.unpack("<II", piece)
    return bytes(out)


def record(thread, level, text=""):
    scrambled = scramble(text if isinstance(text, bytes) else text.encode())
    return struct.pack("<IcH", thread, level.encode(), len(scrambled) & 0xFFFF) + scrambled


def written(line):
    if line[:1] in ("#", "!"):
        return line[2:].encode() + b"\r\n" if line[0] == "#" else bytes.fromhex(line[1:])
    date, time, thread, level, text = re.fullmatch(r"(\d\d/\S+ )?(\d\d:\S+ )?(\w+) (\S) ?(.*)", line).groups()
    text = re.sub(rb"\\x(..)", lambda match: bytes.fromhex(match[1].decode()), text.encode())
    stamps = (record(int(thread, 16), stamp, given.strip()) for stamp, given in (("t", date), ("T", time)) if given)
    return b"".join(stamps) + record(int(thread, 16), level, text)


class Trace:
    """A random run in order: records as (offset, thread, level, text, millisecond, open functions, left, ms of it). A damaged
    one has bytes that are no record, as (offset, size) of damages, exits without an entry, and further writers."""

    def __init__(self, seed, size, begin=0, damaged=False):
        rand = random.Random(seed)
        self.bytes, self.records, self.damages = HEADER + record(0x1A4, "t", "07/14/17"), [], []
        now, stacks = 36_000_000 + begin, {0x1A4: [], 0x2B0: [], 0x3C8: []}
        self.stamp(now)
        for i in range(size):
            if damaged and i % 20 == 19:
                damage = rand.choice(DAMAGES)
                self.damages.append((len(self.bytes), len(damage)))
                self.bytes += damage
                for stack in stacks.values():
                    stack.clear()
            if rand.random() < 0.3:
                now += rand.choice((0, 1, 7, 120))
                self.stamp(now)
            thread = rand.choice(list(stacks))
            stack, kind = stacks[thread], rand.random()
            left, took = None, None
            if (not stack and not damaged) or (kind < 0.3 and len(stack) < 6):
                level, text = ">", rand.choice(NAMES)
                stack.append((text, now))
            elif kind < 0.55:
                level, text = "<", ""
                if stack:
                    left, entered = stack.pop()
                    took = now - entered
            elif damaged and kind < 0.6:
                now += 24 * 3600 * 1000
                year, date = date_and_time(now)[0].split("-", 1)
                level, text = "N", f"{date}-{year}"
                stack.clear()
            else:
                level = rand.choice("UUDE")
                text = "\u00e4" * 0x7FFF if damaged and i % 500 == 0 else rand.choice(TEXTS)
                if level == "E":
                    text = f"{rand.choice((0, -2147024891, 5))} {text}"
            self.records.append((len(self.bytes), thread, level, text, now, [name for name, _ in stack], left, took))
            self.bytes += record(thread, level, text)

    def stamp(self, now):
        self.bytes += record(0x1A4, "T", date_and_time(now)[1])


if __name__ == "__main__":
    lines = sys.stdin.read().splitlines()
    if lines[:1] and lines[0][0] != "#" and "--more" not in sys.argv:
        sys.stdout.buffer.write(b"trace3\r\n.\r\n")
    sys.stdout.buffer.write(b"".join(map(written, lines)))
