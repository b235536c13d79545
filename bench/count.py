#!/usr/bin/env python3
"""count.py BENCH: counts the instructions of one operation in the native build, with callgrind.

Unlike times, the counts are repeatable. Runs each side of a row with N and with 3 N operations; the
difference is the count of 2 N operations. Prints a line of JSON for each row.
"""
import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

ROWS = [
    ("load/1000", 2, ["library", "QSettings", "floor: lock, read, ordered map"]),
    ("reload/1000", 4, ["library", "floor: lock, read, ordered map"]),
    *((f"{access}/{kind}", 20000, ["library", other, "floor: lookup and copy"])
      for access, other in (("get", "QSettings value()"), ("set", "QSettings setValue()"))
      for kind in ("bool", "i32", "string", "multistring")),
    ("commit/1/1000", 4, ["library", "QSettings"]),
    ("instances/1000", 4, ["library", "QJsonDocument", "RapidJSON"]),
    ("apps/1000", 4, ["library", "QJsonDocument", "RapidJSON"]),
    ("log/written", 20000, ["library", "spdlog"]),
    ("log/off", 200000, ["library", "spdlog"]),
]


def instructions(bench, row, side, times):
    command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", bench, "--repeat",
               row, side, str(times)]
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    found = re.search(r"Collected : (\d+)", done.stderr)
    if done.returncode != 0 or not found:
        sys.exit(f"{' '.join(command)}:\n{done.stderr}")
    return int(found.group(1))


def main():
    with tempfile.TemporaryDirectory() as folder:
        # callgrind cannot read the debug data of this compiler
        bench = str(Path(folder) / "bench")
        subprocess.run(["objcopy", "--strip-debug", sys.argv[1], bench], check=True)
        for row, times, sides in ROWS:
            counts = {}
            for side in sides:
                few = instructions(bench, row, side, times)
                counts[side] = (instructions(bench, row, side, 3 * times) - few) / (2 * times)
            print(json.dumps({"row": row, "instructions": counts}), flush=True)


if __name__ == "__main__":
    main()
