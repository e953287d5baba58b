#!/usr/bin/env python3
"""Counts the instructions of each operation under callgrind and compares them.

usage: instructions.py PROGRAM            prints the counts and their ratios to the floor
       instructions.py PROGRAM --write    keeps the library's own counts as the baseline
       instructions.py PROGRAM --check    fails where one has risen more than 3 % above it
"""
import glob
import json
import os
import re
import subprocess
import sys
import tempfile

BASELINE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "instructions.json")
TOLERANCE = 0.03


def measure(program):
    """The instructions of each operation by its name: operation/label/codec."""
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(
            ["valgrind", "--quiet", "--tool=callgrind", "--instr-atstart=no",
             f"--callgrind-out-file={folder}/dump", program], check=True)
        counts = {}
        for path in glob.glob(f"{folder}/dump.*"):
            with open(path, encoding="latin-1") as dump:
                text = dump.read()
            name = re.search(r"^desc: Trigger: Client Request: (.+)$", text, re.M)
            if name:
                counts[name[1]] = int(re.search(r"^totals: (\d+)", text, re.M)[1])
    return dict(sorted(counts.items()))


def print_counts(counts):
    print(f"{'instructions':40} {'count':>12} {'x floor':>8}")
    for name, count in counts.items():
        floor = counts.get(name.rpartition("/")[0] + "/block")
        ratio = f"{count / floor:8.2f}" if floor else ""
        print(f"{name:40} {count:12,} {ratio}".rstrip())


def check(own):
    """Whether no count is above its baseline by more than the tolerance."""
    with open(BASELINE, encoding="ascii") as file:
        baseline = json.load(file)
    good = own.keys() == baseline.keys()
    if not good:
        print("the baseline is of other operations: write it anew")
    for name in own.keys() & baseline.keys():
        change = own[name] / baseline[name] - 1
        if abs(change) > TOLERANCE:
            advice = "too many" if change > 0 else "write the baseline anew"
            print(f"{name}: {own[name]:,}, {change:+.1%} against the baseline: {advice}")
            good = good and change < 0
    print("instructions: " + ("as the baseline says, or fewer" if good else "FAILED"))
    return good


def main(program, mode=None):
    counts = measure(program)
    print_counts(counts)
    own = {name: count for name, count in counts.items() if name.endswith("/tqlabel")}
    if mode == "--write":
        with open(BASELINE, "w", encoding="ascii") as file:
            json.dump(own, file, indent=2)
            file.write("\n")
    return mode != "--check" or check(own)


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3) or sys.argv[2:] not in ([], ["--write"], ["--check"]):
        sys.exit(__doc__)
    sys.exit(0 if main(*sys.argv[1:]) else 1)
