#!/usr/bin/env python3
"""Writes ZrUtil/resources/palettes.png: the palettes of the drawing engine, 256 pixels wide, 10 rows each.

From the top: grey, its inverse, and closed formulas; then the perceptually uniform tables of data/colourmaps by name.
The order is the index by which programs choose a palette: new ones go to the end.

  make_palettes.py          writes the file
  make_palettes.py --check  exits with 1 when its pixels are not what would be written
"""

import binascii
import pathlib
import struct
import sys
import zlib

from make_colour_maps import ENTRIES, FORMULAS, FROM, ROOT, table, unit

TO = ROOT / "ZrUtil" / "resources" / "palettes.png"
ROWS = 10
TABLES = ["amp", "deep", "gray", "haline", "ice", "speed", "thermal", "topo"]


def grey(x):
    return [x, x, x]


def inverse(x):
    return [1 - x, 1 - x, 1 - x]


def bronze(x):
    """Black over brown to a pale yellow, as paper recorders have it."""
    return [unit(1.5 * x), unit(1.2 * x - 0.1), unit(1.6 * x - 0.8)]


CLASSIC = [grey, inverse, bronze] + [FORMULAS[name] for name in ("copper", "hot", "jet", "cool", "green")]


def palettes():
    """Lists of 256 colours of three fractions."""
    found = sorted(path.name[:-len("-rgb.txt")] for path in FROM.glob("*-rgb.txt"))
    if found != TABLES:
        raise SystemExit(f"{FROM} has {found}: name the new ones at the end of TABLES")
    made = [[formula(i / (ENTRIES - 1)) for i in range(ENTRIES)] for formula in CLASSIC]
    return made + [table(FROM / f"{name}-rgb.txt") for name in TABLES]


def pixels():
    """The rows of RGB bytes."""
    rows = []
    for colours in palettes():
        row = bytes(int(unit(value) * 255 + 0.5) for colour in colours for value in colour)
        rows += [row] * ROWS
    return rows


def chunk(kind, content):
    body = kind + content
    return struct.pack(">I", len(content)) + body + struct.pack(">I", binascii.crc32(body))


def png(rows):
    head = struct.pack(">IIBBBBB", ENTRIES, len(rows), 8, 2, 0, 0, 0)
    # Rows without a filter.
    data = zlib.compress(b"".join(b"\0" + row for row in rows), 9)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", data) + chunk(b"IEND", b"")


def read(path):
    """The rows of a file that `png` wrote; how well it is compressed does not matter."""
    try:
        content = path.read_bytes()
        at = content.index(b"IDAT")
        size = struct.unpack(">I", content[at - 4:at])[0]
        data = zlib.decompress(content[at + 4:at + 4 + size])
    except (OSError, ValueError, struct.error, zlib.error) as error:
        raise SystemExit(f"{path}: {error}")
    step = ENTRIES * 3 + 1
    return [data[i + 1:i + step] for i in range(0, len(data), step)]


def main():
    rows = pixels()
    if sys.argv[1:] == ["--check"]:
        if read(TO) != rows:
            raise SystemExit(f"{TO} is not as this script would write it")
    else:
        TO.write_bytes(png(rows))


if __name__ == "__main__":
    main()
