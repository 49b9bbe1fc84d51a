#!/usr/bin/python3
"""Measures the walk through trees of several sizes, and prints what is aimed at and what is reached. What it takes beside
others, tools/bench tells.

usage: measure-walk.py BUILD-FOLDER [--trees FOLDER] [--runs COUNT] [--cold]

Makes trees of up to a million files, 10 GB in all, and removes those that it has made; the first time takes some minutes.
With --cold, and as root, it also empties the caches of the whole machine, three times.
"""

import argparse
import os
import shutil
import statistics
import subprocess
import sys
import time
from pathlib import Path

# By name: how many files in how many folders, the tree's own among them.
SIZES = {"files-10000": (10_000, 500), "files-100000": (100_000, 5_000), "files-1000000": (1_000_000, 50_000),
         "one-1000000": (1_000_000, 1)}
MOST_THREADS = 4  # of a worker


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=Path)
    parser.add_argument("--trees", type=Path)
    parser.add_argument("--runs", type=int, default=11)
    parser.add_argument("--cold", action="store_true")
    options = parser.parse_args()
    bench = options.build.resolve() / "bench"
    root = (options.trees or bench / "trees").resolve()
    rows, load = [], os.getloadavg()

    def row(what, target, reached, met=True):
        rows.append((what, target, reached, "" if met else "MISSED"))
        print(f"... {what}: {reached}", flush=True)

    made = make_trees(bench, root)
    try:
        walk = Walk(bench / "walk", root)
        by_size(row, walk, options.runs)
        memory(row, walk)
        half_second(row, walk, options.cold)
    finally:
        for tree in made:
            shutil.rmtree(tree)

    widths = [max(len(line[column]) for line in rows) for column in range(3)]
    print()
    for line in [("measured", "target", "reached", ""), *rows]:
        print("  ".join([*(cell.ljust(width) for cell, width in zip(line, widths)), line[3]]).rstrip())
    print(f"\nMedians of {options.runs} runs beside each other. Other work on the machine makes the figures worse; its load "
          f"was {load[0]:.1f} at the beginning, {os.getloadavg()[0]:.1f} at the end, on {os.cpu_count()} processors.")
    sys.exit(1 if any(line[3] for line in rows) else 0)


def make_trees(bench, root):
    root.mkdir(parents=True, exist_ok=True)
    made = []
    for name, (files, folders) in SIZES.items():
        if (root / name).exists():
            continue
        print(f"... making {files} files in {folders} folders", flush=True)
        made.append(root / name)
        subprocess.run([bench / "walk-make-tree", root / name, str(files), str(folders)], check=True)
    return made


class Walk:
    """Runs the walk, in a process of its own, and hands on what it says about itself."""

    def __init__(self, program, root):
        self.program, self.root = program, root
        self.threads = min(MOST_THREADS, len(os.sched_getaffinity(0)))

    def command(self, tree, threads=None, seconds=None):
        more = [] if seconds is None else [str(seconds)]
        return [str(self.program), str(self.root / tree), str(threads or self.threads), *more]

    def run(self, tree, threads=None, seconds=None):
        before = os.times()
        said = subprocess.run(self.command(tree, threads, seconds), check=True, capture_output=True, text=True).stdout
        after = os.times()
        took, files, _size, complete, kibibytes = said.split()
        files = int(files)
        if seconds is None and (complete != "complete" or files != SIZES[tree][0]):
            raise SystemExit(f"the walk of {tree} found {files} files and was {complete}")
        return {"seconds": float(took), "files": files, "megabytes": int(kibibytes) / 1024,
                "kernel": after.children_system - before.children_system}


def by_size(row, walk, runs):
    names = ["files-10000", "files-100000", "files-1000000", "one-1000000"]
    for threads in sorted({1, walk.threads}):
        cost, kernel = {}, {}
        for _run in range(runs):
            for name in names:
                # The clock that counts the kernel's time is coarse: a small tree is walked several times.
                several = [walk.run(name, threads) for _again in range(max(1, 100_000 // SIZES[name][0]))]
                cost.setdefault(name, []).append(statistics.median(each["seconds"] / each["files"] for each in several))
                kernel.setdefault(name, []).append(sum(each["kernel"] for each in several) / sum(each["files"] for each in several))
        cost, kernel = ({name: statistics.median(each) * 1e6 for name, each in all.items()} for all in (cost, kernel))
        for name in names:
            files, folders = SIZES[name]
            row(f"a file of {files} in {folders} folder{'s' if folders > 1 else ''}, {threads} thread{'s' if threads > 1 else ''}",
                "", f"{cost[name]:.2f} µs (on all processors {kernel[name]:.2f} µs in the kernel)")
        many = [cost[name] for name in names[:3]]
        spread = max(many) / min(many) - 1
        row(f"the dearest of the three sizes beside the cheapest, {threads} thread{'s' if threads > 1 else ''}", "<= 30 % more",
            f"{spread * 100:.0f} % more", spread <= 0.3)


def memory(row, walk):
    for name in ("files-1000000", "one-1000000"):
        megabytes = max(walk.run(name)["megabytes"] for _run in range(3))
        files, folders = SIZES[name]
        row(f"most memory for {files} files in {folders} folder{'s' if folders > 1 else ''}", "< 16 MB", f"{megabytes:.1f} MB",
            megabytes < 16)


def half_second(row, walk, cold):
    for name in ("files-1000000", "one-1000000"):
        files, folders = SIZES[name]
        what = f"of {files} files in {folders} folder{'s' if folders > 1 else ''}, counted in half a second"
        if cold:
            counts = []
            for _run in range(3):
                os.sync()
                Path("/proc/sys/vm/drop_caches").write_text("3\n")
                counts.append(walk.run(name, seconds=0.5)["files"])
            row(f"{what}, cold", "", f"{statistics.median(counts):.0f}")
        walk.run(name)
        row(f"{what}, warm", "", f"{statistics.median(walk.run(name, seconds=0.5)['files'] for _run in range(5)):.0f}")


if __name__ == "__main__":
    main()
