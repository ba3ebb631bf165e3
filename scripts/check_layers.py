#!/usr/bin/env python3
"""Checks the #include lines of this tree against the layers of docs/layers.txt.

Every header and source belongs to one layer, and a layer may include only itself and the layers
that its line names. Complaints go to the standard error stream as FILE:LINE: TEXT, one per line.

The check fails when
  - a file includes a header of a layer that its own layer may not use,
  - a file includes a header of this tree that does not exist,
  - a header or source belongs to no layer,
  - the layers use each other in a circle,
  - the table names a class, folder or layer that does not exist, or one of them twice.

exit status: 0 nothing found, 1 something found, 2 wrong arguments
"""

import argparse
import posixpath
import re
import sys
from dataclasses import dataclass, field
from pathlib import Path, PurePosixPath

SUFFIXES = (".h", ".cpp")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"\n]+)[>"]', re.MULTILINE)
# Strings are matched so that comment marks inside them open no comment.
STRING_OR_COMMENT = re.compile(
    r'R"(?P<mark>[^ ()\\\t\n]{0,16})\(.*?\)(?P=mark)"'
    r'|"(?:\\.|[^"\\\n])*"'
    r"|'(?:\\.|[^'\\\n])+'"
    r"|//[^\n]*"
    r"|/\*.*?\*/",
    re.DOTALL,
)


@dataclass
class Layer:
    """One line of the table."""

    name: str
    line: int
    classes: list  # as written: Name, folder/ or (folder/Name) for a generated header
    uses: list  # as written: a layer, or folder/ for every layer with files there
    allowed: set = field(default_factory=set)  # layers that it may use, by name


class Complaints(list):
    """What was found, as (file, line, text)."""

    def add(self, file, line, text):
        self.append((str(file), line, text))


class Table:
    """docs/layers.txt, resolved against the files of the tree."""

    def __init__(self, root, path, complaints):
        self.root = root
        self.path = path
        self.complaints = complaints
        self.folders = []  # top folders that are looked at
        self.layers = {}  # name -> Layer
        self.files = []  # paths of headers and sources, relative to the root
        self.of_class = {}  # (folder, class) -> Layer
        self.of_folder = {}  # folder -> Layer
        self.of_generated = {}  # path of a generated header -> Layer
        self._read()
        self._find_files()
        for layer in self.layers.values():
            self._resolve_classes(layer)
        self.known = set(self.files) | set(self.of_generated)
        for layer in self.layers.values():
            self._resolve_uses(layer)
        self._look_for_circle()

    def complain(self, line, text):
        self.complaints.add(self.path, line, text)

    def _read(self):
        text = (self.root / self.path).read_text(encoding="utf-8")
        for number, line in enumerate(text.splitlines(), start=1):
            parts = [part.strip() for part in line.split("#")[0].split(":")]
            if parts == [""]:
                continue
            if parts[0] == "scan" and len(parts) == 2:
                self.folders = parts[1].split()
            elif len(parts) != 3 or not re.fullmatch(r"[A-Za-z][\w-]*", parts[0]):
                self.complain(number, 'expected "layer : classes : layers it may use"')
            elif parts[0] in self.layers:
                self.complain(number, f'layer "{parts[0]}" stands here a second time')
            else:
                self.layers[parts[0]] = Layer(parts[0], number, parts[1].split(), parts[2].split())
        if not self.folders:
            self.complain(1, 'no line "scan : folders" says what to look at')

    def _find_files(self):
        for folder in self.folders:
            for path in sorted((self.root / folder).rglob("*")):
                if path.suffix in SUFFIXES and path.is_file():
                    self.files.append(PurePosixPath(path.relative_to(self.root).as_posix()))
        if self.folders and not self.files:
            self.complain(1, "the folders to look at hold no header and no source")

    def _resolve_classes(self, layer):
        for token in layer.classes:
            if token.startswith("(") and token.endswith(")"):
                self._claim(layer, token, self.of_generated, PurePosixPath(token[1:-1] + ".h"))
            elif token.endswith("/"):
                folder = PurePosixPath(token)
                if not any(folder in file.parents for file in self.files):
                    self.complain(layer.line, f'folder "{token}" holds no header and no source')
                self._claim(layer, token, self.of_folder, folder)
            else:
                places = {file.parent for file in self.files if file.stem == token}
                if not places:
                    self.complain(layer.line, f'no header and no source is called "{token}"')
                elif len(places) > 1:
                    names = ", ".join(sorted(str(place) for place in places))
                    self.complain(layer.line, f'"{token}" exists in several folders: {names}')
                for place in places:
                    self._claim(layer, token, self.of_class, (place, token))

    def _claim(self, layer, token, table, key):
        if key in table:
            self.complain(layer.line, f'"{token}" belongs to layer "{table[key].name}" already')
        else:
            table[key] = layer

    def _resolve_uses(self, layer):
        for token in layer.uses:
            if not token.endswith("/"):
                found = {token} & set(self.layers)
                kind = "layer is called"
            else:
                found = self._layers_below(PurePosixPath(token)) - {layer.name}
                kind = "layer has files in"
            if not found:
                self.complain(layer.line, f'no {kind} "{token}"')
            layer.allowed |= found

    def _layers_below(self, folder):
        layers = (self.layer_of(file) for file in self.known if folder in file.parents)
        return {layer.name for layer in layers if layer}

    def layer_of(self, file):
        """The layer of a file, or None.

        A class is named by its header's base name; a source without a header of its own belongs to the
        class whose name its own begins with (ZrPlayerExport.cpp to ZrPlayer). Then counts the folder,
        the nearest one first.
        """
        if file in self.of_generated:
            return self.of_generated[file]
        stem = file.stem
        while stem:
            layer = self.of_class.get((file.parent, stem))
            if layer or file.suffix == ".h":
                break
            stem = stem[:-1]
        for parent in [] if layer else file.parents:
            layer = layer or self.of_folder.get(parent)
        return layer

    def _look_for_circle(self):
        done = set()

        def visit(name, road):
            if name in road:
                circle = road[road.index(name):] + [name]
                self.complain(
                    self.layers[name].line, "the layers go in a circle: " + " -> ".join(circle)
                )
                return True
            if name in done:
                return False
            for used in sorted(self.layers[name].allowed):
                if visit(used, road + [name]):
                    return True
            done.add(name)
            return False

        any(visit(name, []) for name in self.layers)


def without_comments(text):
    """The text with its comments and raw strings blanked; every line keeps its number."""

    def blank(match):
        found = match.group()
        if found.startswith(("//", "/*", "R")):
            return re.sub(r"[^\n]", " ", found)
        return found

    return STRING_OR_COMMENT.sub(blank, text)


def includes(path):
    """The included paths of a file with their line numbers."""
    text = without_comments(path.read_text(encoding="utf-8", errors="replace"))
    for match in INCLUDE.finditer(text):
        yield text.count("\n", 0, match.start(1)) + 1, match.group(1)


def resolve(table, file, included):
    """The file of this tree that an include line means, or None when it is not one of ours."""
    beside = PurePosixPath(posixpath.normpath(file.parent / included))
    if beside in table.known:
        return beside
    path = PurePosixPath(included)
    return path if path.parts[0] in table.folders else None


def check_file(table, file):
    """Complains about each include line of one file; the number of lines that name our headers."""
    layer = table.layer_of(file)
    if not layer:
        table.complaints.add(file, 1, f"belongs to no layer of {table.path}")
        return 0
    count = 0
    for line, included in includes(table.root / file):
        target = resolve(table, file, included)
        if not target:
            continue
        count += 1
        used = table.layer_of(target)
        if target not in table.known:
            table.complaints.add(file, line, f'there is no header "{included}"')
        elif used and used is not layer and used.name not in layer.allowed:
            table.complaints.add(
                file,
                line,
                f'layer "{layer.name}" may not use layer "{used.name}": "{included}"',
            )
    return count


def reduced_edges(layers):
    """The permissions as (user, used) pairs, less those that a longer road implies."""

    def reachable(name, seen):
        for used in layers[name].allowed - seen:
            seen.add(used)
            reachable(used, seen)
        return seen

    below = {name: reachable(name, set()) for name in layers}
    for name, layer in layers.items():
        for used in sorted(layer.allowed):
            if not any(used in below[other] for other in layer.allowed - {used}):
                yield name, used


def dot(table):
    """The layers as Graphviz text: one box per top folder, an arrow from a layer to what it uses."""
    rooms = {folder: [] for folder in table.folders}
    for name in table.layers:
        tops = {file.parts[0] for file in table.known if table.layer_of(file) is table.layers[name]}
        for room in sorted(tops):
            rooms[room].append(name)
    lines = ["digraph layers {", "    rankdir=TB;", "    node [shape=box];"]
    for room, names in rooms.items():
        if not names:
            continue
        lines.append(f'    subgraph "cluster_{room}" {{')
        lines.append(f'        label="{room}";')
        for name in names:
            classes = [token for token in table.layers[name].classes if not token.startswith("(")]
            lines.append(f'        "{name}" [label="{name}\\n{" ".join(classes)}"];')
        lines.append("    }")
    lines += [f'    "{user}" -> "{used}";' for user, used in reduced_edges(table.layers)]
    return "\n".join(lines + ["}"])


def arguments():
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument(
        "--root",
        type=Path,
        default=Path(__file__).resolve().parent.parent,
        help="top folder of the tree (default: the one this script belongs to)",
    )
    parser.add_argument(
        "--table", default="docs/layers.txt", help="the table, below the top folder (default: %(default)s)"
    )
    parser.add_argument(
        "--dot", action="store_true", help="print the layers as Graphviz text instead of checking files"
    )
    return parser.parse_args()


def main():
    options = arguments()
    complaints = Complaints()
    if not (options.root / options.table).is_file():
        print(f"{options.root / options.table}: no such file", file=sys.stderr)
        return 1
    table = Table(options.root, options.table, complaints)
    if options.dot and not complaints:
        print(dot(table))
        return 0
    count = sum(check_file(table, file) for file in table.files)
    for file, line, text in complaints:
        print(f"{file}:{line}: {text}", file=sys.stderr)
    if complaints:
        return 1
    print(f"{len(table.layers)} layers, {len(table.files)} files, {count} includes: in order")
    return 0


if __name__ == "__main__":
    sys.exit(main())
