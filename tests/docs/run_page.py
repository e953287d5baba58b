#!/usr/bin/env python3
"""Runs what a page of the documentation shows, in an empty folder, and compares what it prints.

usage: run_page.py PAGE.md    (the programs and libraries of the page are found by the environment)

A block ```console has commands behind "$ ", each with its output below it. "..." stands for any
text, on a line of its own for any lines. A command that fails must be followed by "$ echo $?".
A block whose first line is a comment that begins with a file name is written to that file.
A comment <!-- run, to the line that ends it, has commands that readers need not see.
"""

import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

FILE_NAME = re.compile(r"(?:/\*|//|#) (\w+\.\w+)\b")
ANY_LINES = r"(?:.*\n)*?"


def blocks(lines):
    """Yields (kind, number of the first line, lines) of each fenced block and hidden comment."""
    kind, body, start = None, [], 0
    for number, line in enumerate(lines, 1):
        if kind is None:
            if line.startswith("```") or line == "<!-- run":
                kind, body, start = line.strip("`<!- "), [], number + 1
        elif line in ("```", "-->"):
            yield kind, start, body
            kind = None
        else:
            body.append(line)
    if kind is not None:
        yield "unclosed", start, body


def commands(body):
    """Yields (offset, command, lines of output); a backslash continues a command."""
    offset = 0
    while offset < len(body):
        start, command = offset, [body[offset].removeprefix("$ ")]
        while command[-1].endswith("\\"):
            offset += 1
            command.append(body[offset])
        offset += 1
        output = []
        while offset < len(body) and not body[offset].startswith("$ "):
            output.append(body[offset])
            offset += 1
        yield start, "\n".join(command), output


def pattern(output):
    return "".join(ANY_LINES if line.strip() == "..." else
                   re.escape(line).replace(re.escape("..."), ".*") + "\n" for line in output)


class Page:
    def __init__(self, path):
        self.path, self.status, self.faults, self.done = path, 0, [], 0

    def fault(self, line, text):
        self.faults.append(f"{self.path}:{line}: {text}")

    def shell(self, command):
        done = subprocess.run(["bash", "-c", f"(exit {self.status})\n{command}"], text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False)
        self.done += 1
        self.status = done.returncode
        return done.stdout

    def console(self, start, body):
        if not body or not body[0].startswith("$ "):
            return self.fault(start, "a console block begins with a command")
        for offset, command, output in commands(body):
            if self.status != 0 and command != "echo $?":
                self.fault(start + offset, f"the command before gave {self.status}, unseen")
            printed = self.shell(command)
            if printed and not printed.endswith("\n"):
                printed += "\n"
            if not re.fullmatch(pattern(output), printed):
                self.fault(start + offset, f"{command}\nprints\n{printed}")
        if self.status != 0:
            self.fault(start, f"the last command gave {self.status}, unseen")
            self.status = 0

    def run(self):
        for kind, start, body in blocks(Path(self.path).read_text("utf-8").splitlines()):
            if kind == "console":
                self.console(start, body)
            elif kind == "run":
                printed = self.shell("set -e\n" + "\n".join(body))
                if self.status != 0:
                    self.fault(start, f"hidden commands gave {self.status}\n{printed}")
            elif kind == "unclosed":
                self.fault(start, "a block without an end")
            elif body and (named := FILE_NAME.match(body[0])):
                Path(named[1]).write_text("\n".join(body) + "\n", "utf-8")
            if self.faults:  # what follows would only repeat them
                return
        if self.done == 0:
            self.fault(1, "nothing to run")


def main():
    page = Page(Path(sys.argv[1]).resolve())
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        page.run()
        os.chdir("/")
    sys.exit("\n".join(page.faults) or 0)


if __name__ == "__main__":
    main()
