#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when an include breaks the order of the folders, names one of ours without its full path, or
uses a package outside the one file that may include it."""
import re
import sys
from graphlib import TopologicalSorter
from pathlib import Path

# Who may include whom, besides itself. A folder with rooms lists each of them; it stands for all of
# them where another folder includes it.
MAY_INCLUDE = {
    "core": set(),
    "dsp": {"core", "dsp/kernels"},
    "dsp/crossover": {"core", "dsp", "dsp/fft", "dsp/kernels"},
    "dsp/delay": {"dsp", "dsp/kernels"},
    "dsp/fft": {"core", "dsp/kernels"},
    "dsp/kernels": set(),
    "dsp/modulation": {"dsp"},
    "plugin": {"core"},
    "effects": {"core", "dsp", "plugin"},
    "adapters": {"core", "dsp", "plugin"},
    "hosts": {"core", "plugin"},
    "editor": {"core", "plugin"},
    "services": {"core", "plugin"},
    "audiofiles": {"core", "dsp"},
}
OWN = {room.split("/")[0] for room in MAY_INCLUDE} | {"product", "tools", "tests", "benchmarks"}

# What measures the rest, and by whom it may be included.
MEASURE = {"tests": ["tests", "benchmarks"], "benchmarks": ["benchmarks"]}

# Each package is known to one of our files only.
PACKAGES = {
    r"pugixml": "core/MXML.cpp",
    r"zlib\.h": "core/MZLibStream.cpp",
    r"fftw3\.h": "dsp/fft/MRealFFT.cpp",
    r"nlohmann/": "tools/render/MAutomationFile.cpp",
}

INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]', re.MULTILINE)


def room_of(name: Path):
    """The innermost listed folder that the file stands in, or its outermost folder."""
    folders = [folder.as_posix() for folder in name.parents]
    return next((folder for folder in folders if folder in MAY_INCLUDE), name.parts[0])


def is_allowed(room: str, target: Path):
    other = room_of(target)
    if room not in MAY_INCLUDE or other == room or other in MAY_INCLUDE[room]:
        return True
    house = target.parts[0]
    return house != room.split("/")[0] and house in MAY_INCLUDE[room]


def faults_of(root: Path, file: Path):
    name = file.relative_to(root)
    folder = name.parts[0]
    room = room_of(name)
    for bracket, target in INCLUDE.findall(file.read_text(encoding="utf-8")):
        first = target.split("/")[0]
        if bracket == '"' and (first not in OWN or not (root / target).is_file()):
            yield f'{name}: "{target}" is no full path from the root'
        elif bracket == '"' and folder not in MEASURE.get(first, {folder}):
            yield f'{name}: includes "{target}", which only {" and ".join(MEASURE[first])} may'
        elif bracket == '"' and not is_allowed(room, Path(target)):
            yield f'{name}: {room} may not include "{target}"'
        for package, only in PACKAGES.items():
            if bracket == "<" and re.match(package, target) and str(name) != only:
                yield f"{name}: <{target}> belongs in {only} alone"


def main():
    TopologicalSorter(MAY_INCLUDE).prepare()  # throws when two of them may include each other
    root = Path(sys.argv[1])
    files = [f for d in sorted(OWN) if (root / d).is_dir() for f in sorted((root / d).rglob("*")) if f.suffix in (".h", ".cpp")]
    faults = [fault for file in files for fault in faults_of(root, file)]
    print("\n".join(faults) if faults else f"{len(files)} files follow the order")
    return 1 if faults or not files else 0


if __name__ == "__main__":
    sys.exit(main())
