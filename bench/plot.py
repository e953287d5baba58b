#!/usr/bin/python3
"""Draws the time per log entry against the number of logs; needs matplotlib.

usage: plot.py TIMES_JSON SVG
"""
import sys

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams["svg.hashsalt"] = "tqlabel"  # the same names in every run

import matplotlib.pyplot as plt  # noqa: E402: after the backend is chosen

from report import LOGS, Times  # noqa: E402

STYLES = {"tqlabel": {"marker": "o", "label": "tqlabel"},
          "block": {"marker": "s", "linestyle": "--", "label": "floor"}}


def main(source, target):
    times = Times(source)
    counts = [int(label.removeprefix("logs-")) for label in LOGS]
    figure, axes = plt.subplots(figsize=(7, 4), layout="constrained")
    for color, operation in (("C0", "decode"), ("C1", "encode")):
        for codec, style in STYLES.items():
            values = [times.least(f"{operation}/{label}/{codec}") / count
                      for label, count in zip(LOGS, counts)]
            axes.plot(counts, values, color=color, **{**style, "label": f"{operation}, {style['label']}"})
    axes.set(xscale="log", xlabel="logs in the label", ylabel="time per log in ns")
    axes.set_ylim(bottom=0)
    axes.grid(alpha=0.3)
    axes.legend()
    figure.savefig(target, metadata={"Date": None})


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
