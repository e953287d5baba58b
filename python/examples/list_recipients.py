#!/usr/bin/env python3
"""Prints who may open a file, and its log, from the label in a file."""

import sys

from tqlabel import Label, LabelError


def main() -> int:
    if len(sys.argv) != 2:
        print(f"usage: {sys.argv[0]} LABEL", file=sys.stderr)
        return 2
    with open(sys.argv[1], "rb") as file:
        data = file.read()
    try:
        with Label.decode_encrypted(data)[0] as head:
            if head.is_encrypted:
                print("the body is encrypted")
                return 0
    except LabelError:
        pass  # the body is in the clear
    try:
        with Label.decode(data) as label:
            show(label)
    except LabelError as error:
        print(f"{sys.argv[1]}: {error}", file=sys.stderr)
        return 1
    return 0


def show(label: Label) -> None:
    recipients = list(label.recipients())
    print(f"recipients: {len(recipients)}")
    for envelope in recipients:
        to = envelope.recipient
        issuer = ", ".join(f"{part.type}={part.value!a}" for part in to.issuer)
        print(f"  serial {to.serial.hex()} of {issuer}: {envelope.privileges.rights!r}")
    logs = list(label.logs())
    print(f"log entries: {len(logs)}")
    for log in logs:
        time = log.time.isoformat() if log.time else "no time"
        print(f"  {time} {log.text1!a}")


if __name__ == "__main__":
    sys.exit(main())
