#!/usr/bin/env python3
"""includes.py TREE TARGETS: includes name existing files and headers of declared layers.

The compiler finds the headers of every layer, so it accepts faults that this gate reports:
  - a header of a layer that the file's target does not link, directly or through public dependencies.
    TARGETS is the list that cmake/TargetList.cmake writes.
  - layers with cyclic dependencies
  - a name that differs from the file's in case, which Windows accepts
  - a header of Source/ by a name that is not its path there
"""

import os
import pathlib
import re
import sys
from dataclasses import dataclass, field

FOLDERS = ("Source", "bench", "examples", "fuzz", "include", "kit", "programs", "tests")
SUFFIXES = (".c", ".cpp", ".h", ".hpp")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"(?P<quoted>[^"\n]+)"|<(?P<angled>[^>\n]+)>)',
                     re.M)
SYSTEMS = ("Posix", "Winnt")
SYSTEM = re.compile("(" + "|".join(SYSTEMS) + ")$")


@dataclass
class Target:
    name: str
    is_layer: bool
    folder: pathlib.Path = None
    sources: list = field(default_factory=list)
    links: list = field(default_factory=list)
    passes: list = field(default_factory=list)
    search: list = field(default_factory=list)


@dataclass(frozen=True)
class Include:
    """A directive. `shown` is the name with its quotes or brackets."""
    file: pathlib.Path
    line: int
    name: str
    shown: str

    @property
    def is_quoted(self):
        return self.shown.startswith('"')

    def places(self, search):
        """The paths that a compiler tries with these include folders, in its order."""
        folders = [self.file.parent, *search] if self.is_quoted else search
        if self.file.parent.name == "posix":  # siblings of the folder's files
            folders = [*folders, self.file.parent.parent]
        return [pathlib.Path(os.path.normpath(folder / self.name)) for folder in folders]

    def find(self, search):
        return next((path for path in self.places(search) if path.is_file()), None)


def source_files(root):
    """All C and C++ files of the tree."""
    for folder in FOLDERS:
        yield from (path for path in sorted((root / folder).rglob("*")) if path.suffix in SUFFIXES)


def read_targets(path):
    """The targets by name."""
    targets = {}
    for text in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        kind, _, value = text.partition(" ")
        if kind in ("target", "layer"):
            target = targets[value] = Target(value, kind == "layer")
        elif kind == "folder":
            target.folder = pathlib.Path(value)
        elif kind == "source":
            target.sources.append(pathlib.Path(value))
        elif kind == "search" and value:
            target.search.append(pathlib.Path(value))
        elif kind in ("links", "passes"):
            getattr(target, kind).append(value)
    return targets


def visible(target, targets):
    """The targets whose headers the target may include."""
    seen, waiting = {target.name}, list(target.links)
    while waiting:
        name = waiting.pop()
        if name not in seen and name in targets:
            seen.add(name)
            waiting += targets[name].passes
    return seen


def circle(layers):
    """A cycle of layers, with the first layer repeated at the end; empty if there is none."""
    done = set()

    def follow(name, way):
        if name in way:
            return [*way[way.index(name):], name]
        if name in done:
            return []
        done.add(name)
        ways = (follow(other, [*way, name]) for other in layers[name].links if other in layers)
        return next(filter(None, ways), [])

    return next(filter(None, (follow(name, []) for name in layers)), [])


class Gate:
    def __init__(self, root, targets):
        self.root = pathlib.Path(root)
        self.targets = targets
        self.layers = {name: target for name, target in targets.items() if target.is_layer}
        self.includes = {path: list(self.read_includes(path)) for path in source_files(self.root)}
        self.spellings = {str(path).lower(): path for path in self.includes}
        self.faults = []

    def read_includes(self, file):
        text = file.read_text(encoding="utf-8")
        for match in INCLUDE.finditer(text):
            name = match["quoted"] or match["angled"]
            shown = f'"{name}"' if match["quoted"] else f"<{name}>"
            yield Include(file, text.count("\n", 0, match.start()) + 1, name, shown)

    def shown(self, path):
        return path.relative_to(self.root).as_posix()

    def complain(self, include, text):
        fault = f"{self.shown(include.file)}:{include.line}: {include.shown}: {text}"
        if fault not in self.faults:
            self.faults.append(fault)

    def layer_of(self, path):
        """The name of the layer that a file belongs to, or None."""
        return next((name for name, layer in self.layers.items()
                     if path.is_relative_to(layer.folder)), None)

    def check_names(self):
        source = self.root / "Source"
        search = list(dict.fromkeys(
            folder for target in self.targets.values() for folder in target.search))
        for include in (one for includes in self.includes.values() for one in includes):
            found = include.find(search)
            if found is None:
                self.check_spelling(include, search)
            elif found.is_relative_to(source):
                name = f'"{found.relative_to(source).as_posix()}"'
                if include.shown != name:
                    self.complain(include, f"write {name}")

    def check_spelling(self, include, search):
        """Reports a name without a file. In brackets it may be a system header."""
        others = [self.spellings.get(str(path).lower()) for path in include.places(search)]
        other = next(filter(None, others), None)
        if other is not None:
            self.complain(include, f"no such file; its name is {self.shown(other)}")
        elif include.is_quoted:
            self.complain(include, "no such file")

    def check_layers(self):
        """Each file of a layer, whether or not this build compiles it."""
        for file in self.includes:
            if not file.is_relative_to(self.root / "Source"):
                continue
            name = self.layer_of(file)
            if name is None:
                self.faults.append(f"{self.shown(file)}: belongs to no layer")
            else:
                self.check_file(file, self.layers[name])

    def check_programs(self):
        """The sources of each target, and the headers that they reach without entering a layer."""
        for target in self.targets.values():
            seen, waiting = set(), [*target.sources, *self.siblings(target)]
            while waiting:
                file = waiting.pop()
                if file in self.includes and file not in seen:
                    seen.add(file)
                    waiting += [header for header in self.check_file(file, target)
                                if self.layer_of(header) is None]

    def siblings(self, target):
        """The siblings that the build for another system compiles instead."""
        for source in target.sources:
            if system := SYSTEM.search(source.stem):
                names = [source.stem[:system.start()] + other + source.suffix for other in SYSTEMS]
                folder = source.parent.parent if source.parent.name == "posix" else source.parent
                yield from (file for file in self.includes
                            if file.name in names and file.is_relative_to(folder))

    def check_file(self, file, target):
        """The files that a file includes."""
        allowed = visible(target, self.targets)
        reached = []
        for include in self.includes[file]:
            found = include.find(target.search)
            layer = found and self.layer_of(found)
            if layer and layer not in allowed:
                self.complain(include, f"{target.name} declares no dependency on {layer}")
            if found:
                reached.append(found)
        return reached

    def check(self):
        """The faults, one line each."""
        if way := circle(self.layers):
            self.faults.append(f"layers depend on each other: {' -> '.join(way)}")
        self.check_names()
        self.check_layers()
        self.check_programs()
        return self.faults


def main(root, targets_file):
    gate = Gate(root, read_targets(targets_file))
    for fault in gate.check():
        print(fault)
    count = sum(len(includes) for includes in gate.includes.values())
    print(f"{count} includes in {len(gate.includes)} files, {len(gate.layers)} layers, "
          f"{len(gate.targets)} targets")
    if not count or not gate.layers:
        print("nothing to compare")
        return 1
    return 1 if gate.faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
