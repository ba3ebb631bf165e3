#!/usr/bin/env python3
"""Writes the colour maps of the kit, ZrKit/resources/colourmaps/*.cmap.json.

Five are closed formulas: jet, copper, cool, green, hot. The others are the perceptually uniform tables of
data/colourmaps, rounded to bytes. All have 256 entries.

  make_colour_maps.py          writes the files
  make_colour_maps.py --check  exits with 1 when a file is not what would be written
"""

import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FROM = ROOT / "data" / "colourmaps"
TO = ROOT / "ZrKit" / "resources" / "colourmaps"
ENTRIES = 256


def unit(value):
    return min(max(value, 0.0), 1.0)


def jet(x):
    return [unit(1.5 - abs(4 * x - centre)) for centre in (3, 2, 1)]


def copper(x):
    return [unit(1.25 * x), 0.7812 * x, 0.4975 * x]


def cool(x):
    return [x, 1 - x, 1.0]


def green(x):
    """Black to green, then to a pale green: monotonic in lightness."""
    return [unit(2 * x - 1) * 0.8, unit(1.5 * x), unit(2 * x - 1) * 0.7]


def hot(x):
    return [unit(8 * x / 3), unit(8 * x / 3 - 1), unit(4 * x - 3)]


FORMULAS = {"jet": jet, "copper": copper, "cool": cool, "green": green, "hot": hot}


def table(path):
    rows = [[float(word) for word in line.split()] for line in path.read_text().splitlines()]
    if len(rows) != ENTRIES or any(len(row) != 3 for row in rows):
        raise SystemExit(f"{path}: not {ENTRIES} rows of three fractions")
    return rows


def text(rows):
    """One colour on each line with spaces around the separators, as the reader of colour maps wants it."""
    lines = []
    for i, row in enumerate(rows):
        r, g, b = (int(unit(value) * 255 + 0.5) for value in row)
        lines.append(f'{{ "r" : {r} , "g" : {g} , "b" : {b} , "i" : {i} }}')
    return "[\n" + ",\n".join(lines) + "\n]\n"


def main():
    maps = {name: text([formula(i / (ENTRIES - 1)) for i in range(ENTRIES)])
            for name, formula in FORMULAS.items()}
    for path in sorted(FROM.glob("*-rgb.txt")):
        maps[path.name[:-len("-rgb.txt")]] = text(table(path))
    stale = []
    for name, content in maps.items():
        path = TO / f"{name}.cmap.json"
        if sys.argv[1:] == ["--check"]:
            if not path.is_file() or path.read_text() != content:
                stale.append(path.name)
        else:
            path.write_text(content)
    known = {f"{name}.cmap.json" for name in maps}
    stale += [path.name for path in TO.glob("*") if path.name not in known]
    if stale:
        raise SystemExit("not as this script would write them: " + ", ".join(sorted(stale)))


if __name__ == "__main__":
    main()
