"""Files that programs make: written anew on demand, and held to that otherwise."""

import sys


def settle(path, text):
    """Writes the text if --write is given; else fails where the file has another one."""
    if "--write" in sys.argv:
        path.write_text(text, "utf-8")
    elif text != path.read_text("utf-8"):
        sys.exit(f"{path.name} is not as it should be: write it anew with --write")
