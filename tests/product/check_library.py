#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fails when the plug-in library exports other names than its entries, or needs other libraries, or a
newer C library, than every machine has."""
import re
import subprocess
import sys

ENTRIES = {"VSTPluginMain", "main", "MDelayAudioEffectPluginInterface"}
LINUX = re.compile(r"lib(c|m|z|pthread)\.so\.\d|ld-linux-x86-64\.so\.2")
NEWEST_GLIBC = (2, 35)
WINDOWS = re.compile(r"(KERNEL32|USER32|GDI32|OPENGL32|ole32|SHELL32|msvcrt)\.dll", re.IGNORECASE)


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def read_linux(path):
    symbols = output_of("readelf", "--dyn-syms", "--wide", path).splitlines()
    defined = {s.split()[7].split("@")[0] for s in symbols
               if re.search(r" (GLOBAL|WEAK|UNIQUE) +DEFAULT +\d", s)}
    newer = {s.split()[7] for s in symbols if any(
        (int(a), int(b)) > NEWEST_GLIBC for a, b in re.findall(r"@GLIBC_(\d+)\.(\d+)", s))}
    needed = re.findall(r"NEEDED.*\[(.*)\]", output_of("readelf", "-d", path))
    return defined, sorted(newer) + needed, LINUX


def read_windows(path):
    table = output_of("x86_64-w64-mingw32-objdump", "-p", path)
    names = table.split("[Ordinal/Name Pointer] Table")[1].split("\n\n")[0]
    return set(re.findall(r"\] (\S+)", names)), re.findall(r"DLL Name: (\S+)", table), WINDOWS


def main():
    path = sys.argv[1]
    exported, needed, allowed = (read_windows if path.endswith(".dll") else read_linux)(path)
    faults = [f"exports {name}" for name in sorted(exported - ENTRIES)]
    faults += [f"does not export {name}" for name in sorted(ENTRIES - exported)]
    faults += [f"needs {name}" for name in needed if not allowed.fullmatch(name)]
    print("\n".join(faults) or f"{path} exports {len(exported)} names and needs {', '.join(needed)}")
    return 1 if faults or not needed else 0


if __name__ == "__main__":
    sys.exit(main())
