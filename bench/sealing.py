#!/usr/bin/env python3
"""Sealing and opening a file against what OpenSSL's program takes to encrypt and authenticate it.

usage: sealing.py TOOL MIB

The runs take turns, and the least time of each counts. Fails where a ratio or a peak is above its bound.
"""

import os
import subprocess
import sys
import tempfile
import time

ROUNDS = 5
MOST_TIME = 1.3
MOST_MIB = 64
KEY = "00" * 32


def run(*command):
    """Seconds, and the peak of resident memory in MiB."""
    start = time.perf_counter()
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    if status != 0:
        sys.exit(f"{command[0]} {command[1]}: status {status}")
    return time.perf_counter() - start, usage.ru_maxrss / 1024


def make_certificate():
    subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", "key", "-out",
                    "cert", "-subj", "/CN=bench", "-days", "2"], check=True, capture_output=True)


def main():
    tool, mib = os.path.realpath(sys.argv[1]), int(sys.argv[2])
    openssl = [["openssl", "enc", "-aes-256-cbc", "-K", KEY, "-iv", KEY[:32]],
               ["openssl", "dgst", "-sha256", "-hmac", KEY]]
    times = {name: [] for name in ("protect", "encrypt", "open", "decrypt")}
    peak = 0.0
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        make_certificate()
        with open("plain", "wb") as file:
            for _ in range(mib):
                file.write(os.urandom(1 << 20))
        for _ in range(ROUNDS):
            seconds, memory = run(tool, "protect", "plain", "-o", "sealed", "--to", "cert", "--sign", "key,cert")
            times["protect"].append(seconds)
            peak = max(peak, memory)
            times["encrypt"].append(run(*openssl[0], "-in", "plain", "-out", "cipher")[0] +
                                    run(*openssl[1], "cipher")[0])
            seconds, memory = run(tool, "open", "sealed", "--key", "key", "--cert", "cert", "-o", "opened")
            times["open"].append(seconds)
            peak = max(peak, memory)
            times["decrypt"].append(run(*openssl[1], "cipher")[0] +
                                    run(*openssl[0], "-d", "-in", "cipher", "-out", "opened")[0])
        os.chdir("/")
    failed = peak > MOST_MIB
    for ours, theirs in ("protect", "encrypt"), ("open", "decrypt"):
        ratio = min(times[ours]) / min(times[theirs])
        failed = failed or ratio > MOST_TIME
        print(f"{ours}: {min(times[ours]):.2f} s, openssl enc and dgst: {min(times[theirs]):.2f} s, "
              f"ratio {ratio:.2f}")
    print(f"peak memory: {peak:.0f} MiB for a file of {mib} MiB")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
