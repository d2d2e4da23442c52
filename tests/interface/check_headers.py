#!/usr/bin/env python3
"""Holds the list of the headers that hosts may include, and compiles each of them.

Each must include what it needs. That does not depend on the compiler: the first one given compiles
each with nothing before it but headers that it includes anyway, the others compile all of them in
one source, for what they warn of.

Usage: check_headers.py --include DIR --list FILE --compilers CXX... --flags "..." [--also FILE...]

  --include  folder that an installation has filled, the only one in which headers are looked for
  --list     the headers that must lie there, one in a line
  --also     sources that must compile, too, with nothing but these headers
"""

import argparse
import concurrent.futures
import os
import re
import shlex
import subprocess
import sys

MOST_HEADERS = 50
OWN_INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def headers_below(folder):
    found = []
    for path, _, names in os.walk(folder):
        found += [os.path.relpath(os.path.join(path, name), folder) for name in names]
    return set(found)


def differences(installed, listed):
    for name in sorted(installed - listed):
        yield f"{name}: is installed, but not in the list"
    for name in sorted(listed - installed):
        yield f"{name}: is in the list, but not installed"
    if len(installed) > MOST_HEADERS:
        yield f"{len(installed)} headers are installed, more than {MOST_HEADERS}"


def missing_includes(folder, installed):
    for name in sorted(installed):
        with open(os.path.join(folder, name), encoding="utf-8") as header:
            for included in OWN_INCLUDE.findall(header.read()):
                if included not in installed:
                    yield f'{name}: includes "{included}", which is not installed'


def included_by(folder, installed):
    """What of our own each header includes, by whatever road."""
    direct = {}
    for name in installed:
        with open(os.path.join(folder, name), encoding="utf-8") as header:
            direct[name] = set(OWN_INCLUDE.findall(header.read())) & installed

    def closure(name):
        return direct[name].union(*map(closure, direct[name]))
    return {name: closure(name) for name in installed}


def chains(included):
    """All headers in as few sources as will do, each behind none but headers that it includes: to
    parse those takes longest, and they add nothing that a header would not find without them."""
    left = sorted(included, key=lambda name: (-len(included[name]), name))
    while left:
        chain = [left.pop(0)]
        while candidates := [name for name in left if name in included[chain[0]]]:
            left.remove(candidates[0])
            chain.insert(0, candidates[0])
        yield chain


def compile_source(compiler, flags, source, path):
    command = [compiler, "-std=c++17", "-fsyntax-only", "-fPIC", "-Wall", "-Wextra", "-Wpedantic",
               "-Werror", *flags, "-x", "c++", path if path else "-"]
    result = subprocess.run(command, input=source, text=True, timeout=300, check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return result.stdout if result.returncode else None


def including(names):
    return "".join(f'#include "{name}"\n' for name in names)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--include", required=True)
    parser.add_argument("--list", required=True)
    parser.add_argument("--compilers", required=True, nargs="+")
    parser.add_argument("--flags", default="")
    parser.add_argument("--also", nargs="*", default=[])
    options = parser.parse_args()

    installed = headers_below(options.include)
    with open(options.list, encoding="utf-8") as listing:
        listed = set(listing.read().split())
    failures = list(differences(installed, listed))
    failures += missing_includes(options.include, installed)

    flags = ["-I" + options.include, *shlex.split(options.flags)]
    first, *others = options.compilers
    tasks = [(first, flags, including(chain), None)
             for chain in chains(included_by(options.include, installed))]
    tasks += [(compiler, flags, including(sorted(installed)), None) for compiler in others]
    tasks += [(compiler, flags, None, path)
              for compiler in options.compilers for path in options.also]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for task, output in zip(tasks, pool.map(lambda task: compile_source(*task), tasks)):
            if output is not None:
                failures.append(f"{task[0]}: {task[2] or task[3]}: {output}")

    print("\n".join(failures) or f"{len(installed)} headers, {len(tasks)} compilations")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
