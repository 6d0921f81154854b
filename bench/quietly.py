#!/usr/bin/env python3
"""Runs a command again until other processes used little of the machine meanwhile; prints that run's output.

bench/quietly.py [--share 0.05] [--tries 20] COMMAND...
"""
import argparse
import resource
import subprocess
import sys
import time


def machine_seconds():
    """Busy and all processor time of the machine, guests of the same host included as busy."""
    with open("/proc/stat", encoding="ascii") as stat:
        ticks = [int(word) / 100.0 for word in stat.readline().split()[1:9]]
    return sum(ticks) - ticks[3] - ticks[4], sum(ticks)


def own_seconds():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def run(command):
    """Output, exit status and the share of the machine that others had."""
    busy, total = machine_seconds()
    own = own_seconds()
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False)
    busy_now, total_now = machine_seconds()
    others = (busy_now - busy) - (own_seconds() - own)
    return done.stdout, done.returncode, max(0.0, others / max(total_now - total, 0.01))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--share", type=float, default=0.05, help="of the machine that others may have (0.05)")
    parser.add_argument("--tries", type=int, default=20)
    parser.add_argument("command", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    best = None
    for _ in range(options.tries):
        output = run(options.command)
        if best is None or output[2] < best[2]:
            best = output
        if output[1] != 0 or best[2] <= options.share:
            break
        time.sleep(1.0)
    print(best[0], end="")
    print(f"others had {100.0 * best[2]:.1f} % of the machine")
    return best[1]


if __name__ == "__main__":
    sys.exit(main())
