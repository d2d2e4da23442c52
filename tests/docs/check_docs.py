#!/usr/bin/env python3
"""Compiles or runs every code block of the documentation.

  cpp      is compiled as a file of its own, with the flags of this build
  xml      must be a catalogue that the workbench can read and that holds a package
  cmake    is configured as part of a project that finds the installed package
  sh       must be valid, and each script, tool or preset that it names must exist
  console  is a session: each line behind "$ " is run at the root, its output must be what follows
  other    languages are for reading only

Usage: check_docs.py --root DIR --compiler CXX --flags "..." --tools DIR FILE...
"""

import argparse
import difflib
import os
import re
import shlex
import subprocess
import sys
import tempfile

FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def in_any_order(text):
    """The lines of TEXT with the items of each cell sorted: sets have no order of their own, and
    what they are printed in differs from one version of Qt to the next."""
    return [[sorted(cell.strip().split(", ")) for cell in line.split(" | ")]
            for line in text.strip().splitlines()]


class Checker:
    def __init__(self, options):
        self.root = options.root
        self.compiler = options.compiler
        self.flags = shlex.split(options.flags)
        self.tools = options.tools
        self.failures = []
        self.counts = {}
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", QT_QPA_PLATFORM="offscreen",
                                PATH=options.tools + os.pathsep + os.environ["PATH"])

    def check_file(self, path):
        with open(path, encoding="utf-8") as document:
            text = document.read()
        for block in FENCE.finditer(text):
            language, code = block.group(1), block.group(2)
            line = text.count("\n", 0, block.start()) + 1
            check = getattr(self, "check_" + language, None)
            if check is None:
                continue
            self.counts[language] = self.counts.get(language, 0) + 1
            problem = check(code)
            if problem:
                self.failures.append(f"{os.path.relpath(path, self.root)}:{line}: {problem}")

    def run(self, command, **options):
        return subprocess.run(command, cwd=self.root, env=self.environment, text=True, timeout=120,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False,
                              **options)

    def check_cpp(self, code):
        command = [self.compiler, *self.flags, "-Wall", "-Wextra", "-Werror", "-fsyntax-only",
                   "-x", "c++", "-"]
        result = self.run(command, input=code)
        return result.stdout if result.returncode else None

    def check_xml(self, code):
        result = self.run(["update-catalogue", "lint", "-"], input=code)
        if result.returncode in (0, 1) and "no package" not in result.stdout:
            return None
        return result.stdout

    def check_cmake(self, code):
        known = ("project", "find_package", "add_executable", "add_library", "add_subdirectory",
                 "target_link_libraries", "target_link_options")
        project = ("cmake_minimum_required(VERSION 3.20)\nproject(Block LANGUAGES NONE)\n"
                   + "".join(f"function({name})\nendfunction()\n" for name in known) + code)
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "CMakeLists.txt"), "w", encoding="utf-8") as lists:
                lists.write(project)
            result = self.run(["cmake", "-S", folder, "-B", os.path.join(folder, "build")])
        return result.stdout if result.returncode else None

    def check_sh(self, code):
        result = self.run(["bash", "-n"], input=code)
        if result.returncode:
            return result.stdout
        for line in code.splitlines():
            words = shlex.split(line, comments=True)
            problem = self.unknown_command(words) if words else None
            if problem:
                return problem
        return None

    def unknown_command(self, words):
        if words[0].startswith("scripts/"):
            if not os.access(os.path.join(self.root, words[0]), os.X_OK):
                return f"no such script: {words[0]}"
        elif words[0] == "update-catalogue":
            result = self.run(["update-catalogue", words[1], "--help"])
            missing = [word for word in words[2:] if word.startswith("--")
                       and word.split("=")[0] not in result.stdout]
            if result.returncode or missing:
                return f"update-catalogue {words[1]} does not know {missing or words[1]}"
        elif "--preset" in words:
            preset = words[words.index("--preset") + 1]
            with open(os.path.join(self.root, "CMakePresets.json"), encoding="utf-8") as presets:
                if f'"name": "{preset}"' not in presets.read():
                    return f"no such preset: {preset}"
        return None

    def check_console(self, code):
        session = re.split(r"^\$ ", code, flags=re.MULTILINE)[1:]
        for step in session:
            command, _, expected = step.partition("\n")
            result = self.run(["bash", "-c", command])
            if in_any_order(result.stdout) != in_any_order(expected):
                return f"$ {command}\n" + "\n".join(difflib.unified_diff(
                    expected.strip().splitlines(), result.stdout.strip().splitlines(),
                    "documented", "printed", lineterm=""))
        return None


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--root", required=True)
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--flags", required=True)
    parser.add_argument("--tools", required=True)
    parser.add_argument("files", nargs="+")
    options = parser.parse_args()

    checker = Checker(options)
    for path in options.files:
        checker.check_file(path)
    for failure in checker.failures:
        print(failure)
    print("checked:", ", ".join(f"{count} {language}" for language, count
                                in sorted(checker.counts.items())))
    if not checker.counts.get("cpp"):
        print("no C++ block found: is this the right folder?")
        return 1
    return 1 if checker.failures else 0


if __name__ == "__main__":
    sys.exit(main())
