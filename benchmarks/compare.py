#!/usr/bin/env python3
"""compare.py BEFORE AFTER: the cost of filters by two builds of the program filter_cost, as a table.

BEFORE and AFTER are commands. They run in turn, eleven times each; a number is the median of its eleven."""
import shlex
import statistics
import subprocess
import sys

RUNS = 11


def run(command):
    """The lines of one run: (way, conditions, batch, place) to (nanoseconds, allocations, bytes)."""
    lines = subprocess.run(shlex.split(command), capture_output=True, text=True, check=True).stdout.split("\n")
    rows = [line.split() for line in lines if line.strip()]
    return {tuple(row[:4]): tuple(map(float, row[4:])) for row in rows}


def whole(costs):
    """The same with the sums over the places."""
    sums = dict(costs)
    for key, cost in costs.items():
        all_places = (*key[:3], "in all")
        sums[all_places] = tuple(map(sum, zip(sums.get(all_places, (0, 0, 0)), cost)))
    return sums


runs = [[], []]
for _ in range(RUNS):
    for collected, command in zip(runs, sys.argv[1:3]):
        collected.append(whole(run(command)))


def medians(collected, key):
    return [statistics.median(costs[key][part] for costs in collected) for part in range(3)]


print("| Built by | Conditions | Batch | Place | Time | before | | Allocations | before | Bytes | before |")
print("|---|---:|---:|---|---:|---:|---:|---:|---:|---:|---:|")
for key in sorted(runs[0][0], key=lambda key: (key[0], int(key[1]), int(key[2]))):
    before, after = medians(runs[0], key), medians(runs[1], key)
    way, conditions, batch, place = key
    print(
        f"| {way} | {conditions} | {batch} | {place} | {after[0]:.0f} ns | {before[0]:.0f} ns | "
        f"{after[0] / before[0]:.2f} | {after[1]:.2f} | {before[1]:.2f} | {after[2]:.0f} | {before[2]:.0f} |"
    )
