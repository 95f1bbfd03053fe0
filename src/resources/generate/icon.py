#!/usr/bin/env python3
"""Draws the product's picture, a keyhole on a shield, as an icon or a bitmap.

icon.py ico FILE        all sizes of the icon, the largest one compressed
icon.py bmp SIZE FILE   one size on transparent ground, 32 bits a pixel

The picture is described by distances, so that each size is drawn for itself and none is scaled down.
"""
import math
import struct
import sys
import zlib

ICON_SIZES = (16, 20, 24, 32, 40, 48, 64, 128, 256)
COMPRESSED_FROM = 256

# Colours, red green blue.
TOP, BOTTOM = (46, 125, 214), (17, 64, 138)
RIM = (11, 41, 92)
KEYHOLE = (255, 255, 255)


# The edges lie on sixteenths, so that the smallest size has sharp sides.
HALF_WIDTH, CORNER, WAIST, POINT = 0.4375, 0.125, 0.4375, 0.9688
CREST = 0.0625  # the middle of the top edge stands higher than the corners


def half_width(y):
    t = max(0.0, (y - WAIST) / (POINT - WAIST))
    return HALF_WIDTH * math.sqrt(max(0.0, 1.0 - t ** 2.2))


def shield_outline(steps=160):
    right = [(0.5 + half_width(y), y) for y in
             (CORNER + (POINT - CORNER) * i / steps for i in range(steps + 1))]
    left = [(1.0 - x, y) for x, y in reversed(right)]
    top = [(0.5 + s * HALF_WIDTH, CORNER - (CORNER - CREST) * math.cos(s * math.pi / 2) ** 2)
           for s in (i / 40 - 1 for i in range(81))]
    return top + right + left


OUTLINE = shield_outline()


def spans(y):
    """Left and right border of the shield on the line y, None outside."""
    crossings = []
    for (x0, y0), (x1, y1) in zip(OUTLINE, OUTLINE[1:] + OUTLINE[:1]):
        if (y0 <= y) != (y1 <= y):
            crossings.append(x0 + (x1 - x0) * (y - y0) / (y1 - y0))
    return (min(crossings), max(crossings)) if crossings else None


def in_keyhole(x, y, size):
    # A bigger head in the small sizes: else it runs together with the stem.
    if math.hypot(x - 0.5, y - 0.375) <= (0.1875 if size <= 24 else 0.14):
        return True
    return 0.375 <= y <= 0.6875 and abs(x - 0.5) <= 0.0625 + 0.05 * (y - 0.375) / 0.3125


def draw(size):
    """Rows of (red, green, blue, alpha), top row first."""
    samples = 8 if size <= 48 else 4
    rim = max(1.0 / size, 0.035)
    lines = {}

    def border(y):
        if y not in lines:
            lines[y] = spans(y)
        return lines[y]

    def colour(x, y):
        here = border(y)
        if here is None or not here[0] <= x <= here[1]:
            return None
        if in_keyhole(x, y, size):
            return KEYHOLE
        above, below = border(y - rim), border(y + rim)
        inside = (above and below and here[0] + rim <= x <= here[1] - rim
                  and above[0] <= x <= above[1] and below[0] <= x <= below[1])
        if not inside:
            return RIM
        light = 0.06 if x < 0.5 else -0.04  # the left half catches the light
        t = min(1.0, max(0.0, y - light))
        return tuple(a + (b - a) * t for a, b in zip(TOP, BOTTOM))

    rows = []
    for py in range(size):
        lines.clear()
        row = []
        for px in range(size):
            total, hits = [0.0, 0.0, 0.0], 0
            for sy in range(samples):
                y = (py + (sy + 0.5) / samples) / size
                for sx in range(samples):
                    found = colour((px + (sx + 0.5) / samples) / size, y)
                    if found:
                        hits += 1
                        total = [t + f for t, f in zip(total, found)]
            if hits:
                row.append(tuple(round(t / hits) for t in total) + (round(255 * hits / samples ** 2),))
            else:
                row.append((0, 0, 0, 0))
        rows.append(row)
    return rows


def png(rows):
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data)))
    raw = b"".join(b"\0" + bytes(v for pixel in row for v in pixel) for row in rows)
    head = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(raw, 9))
            + chunk(b"IEND", b""))


def pixels(rows, premultiplied):
    """Bottom row first, blue green red alpha."""
    out = bytearray()
    for row in reversed(rows):
        for r, g, b, a in row:
            if premultiplied:
                r, g, b = (v * a // 255 for v in (r, g, b))
            out += bytes((b, g, r, a))
    return bytes(out)


def icon_image(rows):
    size = len(rows)
    if size >= COMPRESSED_FROM:
        return png(rows)
    stride = (size + 31) // 32 * 4
    mask = bytearray()
    for row in reversed(rows):
        line = bytearray(stride)
        for x, pixel in enumerate(row):
            if pixel[3] < 128:
                line[x // 8] |= 0x80 >> x % 8
        mask += line
    data = pixels(rows, False)
    head = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, len(data) + len(mask), 0, 0, 0, 0)
    return head + data + bytes(mask)


def icon():
    images = [icon_image(draw(size)) for size in ICON_SIZES]
    out = struct.pack("<HHH", 0, 1, len(images))
    offset = 6 + 16 * len(images)
    for size, image in zip(ICON_SIZES, images):
        out += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(image), offset)
        offset += len(image)
    return out + b"".join(images)


def bitmap(size):
    data = pixels(draw(size), True)
    head = struct.pack("<IiiHHIIiiII", 40, size, size, 1, 32, 0, len(data), 2835, 2835, 0, 0)
    return struct.pack("<2sIHHI", b"BM", 54 + len(data), 0, 0, 54) + head + data


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "ico":
        content = icon()
    elif len(arguments) == 3 and arguments[0] == "bmp" and arguments[1].isdigit():
        content = bitmap(int(arguments[1]))
    else:
        sys.exit(__doc__)
    with open(arguments[-1], "wb") as file:
        file.write(content)


if __name__ == "__main__":
    main(sys.argv[1:])
