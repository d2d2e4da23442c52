#!/usr/bin/env python3
"""Runs bench_catalogue and prints its results as Markdown tables.

Usage: benchmarks/report.py [build folder] [repetitions]

The build folder is build/release unless given. Each benchmark runs in a process of its own, as a
check for updates finds the memory of its application and not what other benchmarks left of it. Each
number is the least processor time of the repetitions, which other work on the machine disturbs
least. The growth is the exponent k of time ~ packages^k from the size before: 1 is in proportion,
2 is the square.
"""

import json
import math
import subprocess
import sys
from collections import defaultdict
from pathlib import Path


def run_one(program, name):
    """The milliseconds of one benchmark, in a process of its own."""
    output = subprocess.run(
        [program, f"--benchmark_filter=^{name}$", "--benchmark_format=json",
         "--benchmark_min_time=0.2"], check=True, stdout=subprocess.PIPE).stdout
    result = json.loads(output)["benchmarks"][0]
    if result.get("error_occurred"):
        sys.exit(f'{name}: {result["error_message"]}')
    return result["cpu_time"]


def run(program, repetitions):
    """The least milliseconds of each benchmark, by name and number of packages."""
    names = subprocess.run([program, "--benchmark_list_tests"], check=True, text=True,
                           stdout=subprocess.PIPE).stdout.split()
    times = defaultdict(dict)
    for _ in range(repetitions):
        for full_name in names:
            name, packages = full_name.rsplit("/", 1)
            best = times[name].get(int(packages), math.inf)
            times[name][int(packages)] = min(best, run_one(program, full_name))
    return times


def growth(times, packages):
    """The exponent between `packages` and the size before it, as text."""
    before = [size for size in times if size < packages]
    if not before:
        return "–"
    size = max(before)
    return f"{math.log(times[packages] / times[size]) / math.log(packages / size):.2f}"


def print_parsing(times, shape):
    floor, tree, bounded, whole = (
        times[f"{name}/{shape}"]
        for name in ("readTokens", "setContent", "parseDocument", "parseXML"))
    print(f"\n| {shape.capitalize()}: packages | tokens, ms | `setContent`, ms "
          "| `XmlUtils::parseXml`, ms | `parseXML`, ms | `parseXML` / `setContent` "
          "| growth of `parseXML` |")
    print("|---:|---:|---:|---:|---:|---:|---:|")
    for packages in sorted(whole):
        print(f"| {packages} | {floor[packages]:.2f} | {tree[packages]:.2f} "
              f"| {bounded[packages]:.2f} | {whole[packages]:.2f} "
              f"| {whole[packages] / tree[packages]:.2f} | {growth(whole, packages)} |")


def print_selection(times):
    names = {"eliminateDuplicates": "`eliminateDuplicatePackages`",
             "findCandidates": "`findPackageCandidates`, 64 cameras"}
    print("\n| Selection | packages | ms | growth |")
    print("|---|---:|---:|---:|")
    for name, title in names.items():
        for packages in sorted(times[name]):
            print(f"| {title} | {packages} | {times[name][packages]:.2f} "
                  f"| {growth(times[name], packages)} |")


def main():
    folder = Path(sys.argv[1] if len(sys.argv) > 1 else "build/release")
    repetitions = int(sys.argv[2]) if len(sys.argv) > 2 else 5
    times = run(folder / "benchmarks" / "bench_catalogue", repetitions)
    for shape in ("flat", "nested"):
        print_parsing(times, shape)
    print_selection(times)


if __name__ == "__main__":
    main()
