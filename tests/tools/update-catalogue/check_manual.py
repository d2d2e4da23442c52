#!/usr/bin/env python3
"""Compares the manual pages and the completion of the workbench with what its --help says.

Usage: check_manual.py --program FILE --pages DIR --completion FILE
"""

import argparse
import gzip
import re
import subprocess
import sys

problems = []


def expect(holds, problem):
    if not holds:
        problems.append(problem)


def output_of(*command):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout


def options_of(help_text):
    return re.findall(r"^ +(?:-[a-z], )?(--[a-z-]+)", help_text, re.M)


def check_page(pages, name, words):
    path = f"{pages}/{name}.1.gz"
    with gzip.open(path, "rt", encoding="utf-8") as page:
        text = page.read().replace("\\-", "-")
    expect(f"\n{name} - " in text, f"{path}: another name in its NAME section")
    for word in words:
        expect(word in text, f"{path}: does not tell of {word}")
    # What the formatter complains of, such as a macro that does not exist.
    complaints = subprocess.run(["man", "--warnings", "--local-file", path], text=True,
                                stdout=subprocess.DEVNULL, stderr=subprocess.PIPE).stderr
    expect(not complaints, f"{path}: {complaints}")


def completed(completion, program, *words):
    """What bash offers for the last of the words."""
    script = (f"source {completion}; COMP_WORDS=({program} " + " ".join(f"'{w}'" for w in words) +
              f"); COMP_CWORD={len(words)}; _update_catalogue {program}; " +
              'printf "%s\\n" "${COMPREPLY[@]}"')
    return set(output_of("bash", "-c", script).split())


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--program", required=True)
    parser.add_argument("--pages", required=True)
    parser.add_argument("--completion", required=True)
    given = parser.parse_args()

    commands = re.findall(r"^  ([a-z][a-z-]*) ", output_of(given.program, "--help"), re.M)
    expect(len(commands) >= 7, f"only the commands {commands}")
    check_page(given.pages, "update-catalogue", commands)
    offered = completed(given.completion, given.program, "")
    expect(offered == set(commands) | {"--help", "--version"}, f"for a command: {offered}")
    for command in commands:
        options = options_of(output_of(given.program, command, "--help"))
        expect("--json" in options or "--help" in options, f"{command}: no options in {options}")
        check_page(given.pages, f"update-catalogue-{command}", options)
        offered = completed(given.completion, given.program, command, "--")
        expect(offered == set(options), f"{command}: {offered}, and not {options}")
    expect(completed(given.completion, given.program, "lint", "cat") == set(),
           "file names are bash's own")
    print("\n".join(problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
