#!/usr/bin/env python3
"""Prints the tables of docs/security.md: what the worst inputs cost per byte.

usage: bounds.py BUILD_DIR    with bounds.json, as make bounds leaves it there; fails where a bound is broken
"""
import json
import sys

import instructions

EMPTY = "nothing"  # inputs of one size
FIXED = 4096  # bytes that a call may allocate whatever its input
MOST_GROWTH = 1.1


def measured(folder):
    """What each entry point takes for each input."""
    with open(f"{folder}/bounds.json", encoding="ascii") as file:
        natives = json.load(file)
    counts = {}
    for name, count in instructions.measure(f"{folder}/bin/bench_bounds").items():
        key, _, size = name.rpartition("|")
        counts.setdefault(key, {})[int(size)] = count
    runs = {}
    for one in natives:
        key = one["name"].rpartition("|")[0]
        small, large = sorted(counts[key])
        one["group"], one["entry"], one["input"], _ = key.split("|")
        one["growth"] = counts[key][large] / counts[key][small] / (large / small)
        one["ns"] = min(one["ns"], runs.get(key, one)["ns"])
        runs[key] = one
    return list(runs.values())


def per_byte(one, what):
    return one[what] / one["bytes"]


def worst(runs, what):
    return max(runs, key=lambda one: per_byte(one, what))


def worst_inputs(runs):
    names = [worst(runs, what)["input"].partition(",")[0] for what in ("ns", "peak")]
    return "; ".join(dict.fromkeys(names))


def print_table(title, runs, group_of, more=()):
    """A row per group, with the most of each column; more: titles and cells of further columns."""
    titles = (title, "ns", "growth", "peak", "largest block", *(title for title, _ in more))
    print("\n| " + " | ".join(titles) + " |\n|---|---:|---:|---:|---:|" + "---|" * len(more))
    groups = {}
    for one in runs:
        groups.setdefault(group_of(one), []).append(one)
    for name, group in groups.items():
        growth = max(one["growth"] for one in group)
        cells = [name, f"{per_byte(worst(group, 'ns'), 'ns'):.2f}",
                 "none" if growth < 0.5 else f"{growth:.2f}",
                 *(f"{per_byte(worst(group, what), what):.2f}" for what in ("peak", "largest")),
                 *(cell(group) for _, cell in more)]
        print("| " + " | ".join(cells) + " |")


def main(folder):
    everything = measured(folder)
    runs = [one for one in everything if not one["input"].startswith(EMPTY)]
    decoded = [one for one in runs if one["entry"] == "DecodeLabel"]
    print_table("entry point", runs, lambda one: one["group"],
                (("promised", lambda group: f"{group[0]['most']:g}"),
                 ("slowest; hungriest input", worst_inputs)))
    print_table("input of DecodeLabel", sorted(decoded, key=lambda one: not one["taken"]),
                lambda one: one["input"] if one["taken"] else
                f"refused: {one['input'].rpartition(', ')[2]}")
    largest = worst([one for one in runs if not one["taken"]], "largest")
    print(f"\nlargest block of a refused input: {per_byte(largest, 'largest'):.4f} per byte"
          f" ({largest['entry']}, {largest['input']})")
    fixed = max(one["peak"] - one["bytes"] for one in everything if one["input"].startswith(EMPTY))
    print(f"beside that, an empty label takes {fixed} bytes")
    bad = [one["name"] for one in runs if one["growth"] > MOST_GROWTH or
           one["peak"] > one["most"] * one["bytes"] + FIXED]
    print("\n".join(f"out of bounds: {name}" for name in bad) or "all within bounds")
    return not bad


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(0 if main(sys.argv[1]) else 1)
