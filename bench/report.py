#!/usr/bin/env python3
"""Prints what the benchmarks have measured, and which of the goals are met.

usage: report.py BUILD_DIR    with times.json and memory.json, as make bench leaves them there
"""
import itertools
import json
import statistics
import sys

import instructions

GENERAL = ("openssl", "libtasn1", "asn1c")
TYPICAL = ("typical-1.1.1", "typical-1.1.2", "typical-6.0")
LOGS = ("logs-100", "logs-1000", "logs-10000", "logs-100000")


class Times:
    """Nanoseconds by operation, all repetitions of each."""

    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            runs = [one for one in json.load(file)["benchmarks"] if one["run_type"] == "iteration"]
        self.info = {one["run_name"]: one for one in runs}
        self.all = {name: [] for name in sorted(self.info)}  # they ran in random order
        for one in runs:
            self.all[one["run_name"]].append(one["cpu_time"])

    def median(self, name):
        return statistics.median(self.all[name])

    def least(self, name):
        return min(self.all[name])

    def fastest_general(self, label):
        """Of a label's operation; nothing where no general codec has run."""
        times = [self.median(f"{label}/{codec}") for codec in GENERAL
                 if f"{label}/{codec}" in self.all]
        return min(times, default=None)


def ratio(value, base):
    return f"{value / base:9.3f}" if base else f"{'-':>9}"


def print_table(times, memory):
    print(f"{'':36} {'median us':>13} {'min us':>13} {'MB/s':>7} {'allocs':>7} {'peak bytes':>11}"
          f" {'x general':>9} {'x floor':>9}")
    groups = {}
    for name in memory:
        operation, label, _ = name.split("/")
        groups.setdefault((label, operation), []).append(name)
    for (label, operation), names in groups.items():
        print()
        for name in names:
            group = f"{operation}/{label}"
            median = times.median(name)
            floor = f"{group}/block"
            print(f"{name:36} {median / 1e3:13,.3f} {times.least(name) / 1e3:13,.3f}"
                  f" {times.info[name]['bytes'] / median * 1e3:7,.0f}"
                  f" {memory[name]['allocations']:7} {memory[name]['peak']:11,}"
                  f" {ratio(median, times.fastest_general(group))}"
                  f" {ratio(median, times.median(floor) if floor in times.all else None)}")
    print()
    for name in times.all:
        if name.startswith("field/"):
            print(f"{name:36} {times.median(name) / 1e3:13,.3f} {times.least(name) / 1e3:13,.3f}")


def time_goals(times):
    limits = {"decode": {"small": 0.20, "large": 0.11, **dict.fromkeys(TYPICAL, 0.15)},
              "encode": {"small": 0.05, "large": 0.02, **dict.fromkeys(TYPICAL, 0.04)}}
    for operation, labels in limits.items():
        for label, limit in labels.items():
            group = f"{operation}/{label}"
            value = times.median(f"{group}/tqlabel") / times.fastest_general(group)
            yield f"{group}: time against the fastest general codec", value, limit


def scaling_goals(times):
    for operation in ("decode", "encode"):
        # The least of the repetitions: what else runs can cost more than the goal allows.
        ratios = [times.least(f"{operation}/{label}/tqlabel") /
                  times.least(f"{operation}/{label}/block") for label in LOGS]
        # Growing less than the floor does is no fault: its small blocks cost free() more.
        growth = max(more / fewer for fewer, more in itertools.combinations(ratios, 2)) - 1
        yield f"{operation}: growth per log from 100 to 100,000 beyond the floor's", growth, 0.15
    for name in times.all:
        if name.startswith("field/") and name.endswith("/10000"):
            few = name.removesuffix("10000") + "100"
            yield f"{name}: time against 100 entries", times.median(name) / times.median(few), 1.5


def memory_goals(times, memory):
    for label in TYPICAL:
        yield f"decode/{label}: allocations", memory[f"decode/{label}/tqlabel"]["allocations"], 57
        yield f"encode/{label}: allocations", memory[f"encode/{label}/tqlabel"]["allocations"], 3
    large = times.info["decode/large/tqlabel"]
    decode = memory["decode/large/tqlabel"]["peak"] / large["bytes"]
    encode = memory["encode/large/tqlabel"]["peak"] / large["entries"]
    yield "decode/large: peak against encoded size", decode, 4
    yield "encode/large: peak bytes per list entry", encode, 16


def instruction_goals(counts):
    for operation, limit in (("decode", 1.2), ("encode", 1.25)):
        for label in ("small", *TYPICAL):
            value = counts[f"{operation}/{label}/tqlabel"] / counts[f"{operation}/{label}/block"]
            yield f"{operation}/{label}: instructions against the floor", value, limit


def main(folder):
    times = Times(f"{folder}/times.json")
    with open(f"{folder}/memory.json", encoding="ascii") as file:
        memory = json.load(file)
    print_table(times, memory)
    counts = instructions.measure(f"{folder}/bin/bench_instructions")
    goals = [*time_goals(times), *instruction_goals(counts), *memory_goals(times, memory),
             *scaling_goals(times)]
    print(f"\n{'goal':72} {'value':>9} {'at most':>9}")
    for goal, value, limit in goals:
        print(f"{goal:72} {value:9.3f} {limit:9.2f}  {'met' if value <= limit else 'MISSED'}")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(sys.argv[1])
