#!/usr/bin/env python3
"""Compares what the installed libraries export with a list, class by class.

Usage: check_exports.py --libraries DIR --list FILE [--print]

A line of the list is a library and one of its classes, functions or constants: "libVxIO.so
vx::FileUtils". Weak symbols of others, as every library has them of Qt's headers, do not count.
"""

import argparse
import glob
import os
import re
import subprocess
import sys

OF_A_CLASS = re.compile(r"^(?:vtable for|typeinfo for|typeinfo name for|VTT for|guard variable for|"
                        r"non-virtual thunk to|virtual thunk to) ")
# Of functions that are made from a template, the name tells what they return, too.
RETURN_TYPE = re.compile(r"^[\w:]+[&*]* (?=[\w:~]+<)")
# What the linker and the sanitizers add.
NOT_OURS = re.compile(r"^(_init|_fini|_edata|_end|__bss_start|__asan.*|__odr_asan.*|___asan.*|"
                      r"__lsan.*|__ubsan.*|__sancov.*|__gcov.*|__start_.*|__stop_.*|_?.?__llvm.*)$")
# In the namespace of Qt for all applications, since hosts name them without one.
WITHOUT_NAMESPACE = ("HttpClient", "RequestData", "QHttpHeader")


def exported_name(symbol):
    """The class, or the function or constant of a namespace, to which the symbol belongs."""
    name = RETURN_TYPE.sub("", OF_A_CLASS.sub("", symbol))
    name = re.sub(r"\[abi:\w+\]", "", name)
    scopes = re.match(r"^[\w:~]+", name)
    parts = scopes.group(0).split("::") if scopes else [name]
    return "::".join(parts[:2]) if parts[0] == "vx" else parts[0]


def is_ours(kind, name):
    if name.startswith("vx::") or name in WITHOUT_NAMESPACE:
        return True
    return kind not in "WVuw" and not NOT_OURS.match(name)


def exports_of(library):
    listing = subprocess.run(["nm", "-DC", "--defined-only", library], check=True, text=True,
                             stdout=subprocess.PIPE).stdout
    found = set()
    for line in listing.splitlines():
        _, kind, symbol = line.split(" ", 2)
        name = exported_name(symbol)
        if is_ours(kind, name):
            found.add(name)
    return found


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--libraries", required=True)
    parser.add_argument("--list", required=True)
    parser.add_argument("--print", action="store_true")
    options = parser.parse_args()

    exported = set()
    for library in glob.glob(os.path.join(options.libraries, "lib*.so")):
        # The libraries of a build with Qt 6 have it in their name, and export the same.
        file_name = os.path.basename(library).replace("-qt6.so", ".so")
        exported |= {f"{file_name} {name}" for name in exports_of(library)}
    if options.print:
        print("\n".join(sorted(exported)))
    with open(options.list, encoding="utf-8") as listing:
        expected = set(listing.read().splitlines())
    for line in sorted(exported - expected):
        print(f"exported, but not in the list: {line}")
    for line in sorted(expected - exported):
        print(f"in the list, but not exported: {line}")
    return 0 if exported == expected else 1


if __name__ == "__main__":
    sys.exit(main())
