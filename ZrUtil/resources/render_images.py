#!/usr/bin/env python3
"""Renders images/*.svg of this folder to PNG at the size that each SVG names, with rsvg-convert (librsvg2-bin).

  render_images.py            beside the SVG files: run it after changing one, and commit both
  render_images.py --out DIR  into DIR
  render_images.py --from DIR the SVG files of DIR instead, beside them

Icons are drawn on a grid of 24 units with lines of 2 units, white on nothing: the program colours them. They are
rendered at 4 pixels a unit, about twice the size of the largest use on a screen at scale 1, so that they
are only ever scaled down. Wide images are rendered at the size they are made for, or twice that.

Markers and handles (marker_*, handle_*) are rendered upside down: the drawing surface puts the first row of an image
at the lower edge of a marker, so that these stand upright where y points up, as on maps. The SVG files are upright.
"""

import argparse
import pathlib
import re
import subprocess
import sys

IMAGES = pathlib.Path(__file__).resolve().parent / "images"

UPSIDE_DOWN = ("marker_", "handle_")


def drawing(source):
    """The text of an SVG file, its contents turned upside down where that is wanted."""
    text = source.read_text(encoding="utf-8")
    if not source.name.startswith(UPSIDE_DOWN):
        return text
    parts = re.fullmatch(r'(<svg[^>]*viewBox="0 0 \S+ (\S+)"[^>]*>)(.*)(</svg>\s*)', text, re.DOTALL)
    if not parts:
        sys.exit(f"{source}: the viewBox does not begin at 0 0, or is missing")
    head, height, contents, tail = parts.groups()
    return f'{head}<g transform="translate(0 {height}) scale(1 -1)">{contents}</g>{tail}'


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--from", dest="folder", type=pathlib.Path, default=IMAGES, metavar="DIR")
    parser.add_argument("--out", type=pathlib.Path, metavar="DIR")
    arguments = parser.parse_args()
    out = arguments.out or arguments.folder
    sources = sorted(arguments.folder.glob("*.svg"))
    if not sources:
        sys.exit(f"no SVG files in {arguments.folder}")
    for source in sources:
        target = out / (source.stem + ".png")
        try:
            subprocess.run(["rsvg-convert", "--output", str(target)], input=drawing(source).encode(), check=True)
        except FileNotFoundError:
            sys.exit("rsvg-convert is missing: install the package librsvg2-bin")
        except subprocess.CalledProcessError as error:
            sys.exit(f"{source} cannot be rendered to {target} (exit code {error.returncode})")


if __name__ == "__main__":
    main()
