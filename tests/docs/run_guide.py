#!/usr/bin/env python3
"""Follows the guide to signing from top to bottom, each line of each sh block, in one folder.

The folder is as the guide says: the catalogue of the demonstration, a file for each of its packages
in "packages", a folder "site" for what is published. Passwords that minisign asks for are given.
At the end it is made sure that the last commands would notice a changed file and a changed byte.

Usage: run_guide.py --guide FILE --example DIR --tools DIR
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile
import textwrap

BLOCK = re.compile(r"^( *)```sh\n(.*?)^\1```$", re.MULTILINE | re.DOTALL)
ROAD = re.compile(r"^## The road\n(.*?)^## ", re.MULTILINE | re.DOTALL)
COMMANDS_OF_THE_ROAD = 10
PASSWORDS = "a password\na password\n"


def commands_of(text):
    return [line for block in BLOCK.finditer(text)
            for line in textwrap.dedent(block.group(2)).splitlines() if line]


def lay_out(folder, example):
    for name in ("catalogue.xml", "field.csv"):
        shutil.copy(os.path.join(example, name), folder)
    os.mkdir(os.path.join(folder, "packages"))
    os.mkdir(os.path.join(folder, "site"))
    with open(os.path.join(folder, "catalogue.xml"), encoding="utf-8") as catalogue:
        for name in re.findall(r"<url>(.*?)</url>", catalogue.read()):
            with open(os.path.join(folder, "packages", name), "wb") as package:
                package.write(name.encode() * 1000)


class Reader:
    """Somebody who types what the guide says."""

    def __init__(self, folder, tools):
        self.folder = folder
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", TZ="UTC",
                                PATH=tools + os.pathsep + os.environ["PATH"])

    def type(self, command, expected=0):
        result = subprocess.run(["bash", "-c", command], cwd=self.folder, env=self.environment,
                                input=PASSWORDS, text=True, timeout=300, check=False,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        print(f"$ {command}\n{result.stdout.rstrip()}", flush=True)
        if result.returncode != expected:
            sys.exit(f"exit code {result.returncode}, and {expected} was expected")


def change_last_byte(path):
    with open(path, "r+b") as changed:
        changed.seek(-1, os.SEEK_END)
        changed.write(b"!")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--guide", required=True)
    parser.add_argument("--example", required=True)
    parser.add_argument("--tools", required=True)
    options = parser.parse_args()
    with open(options.guide, encoding="utf-8") as guide:
        text = guide.read()
    road = commands_of(ROAD.search(text).group(1))
    if len(road) != COMMANDS_OF_THE_ROAD:
        sys.exit(f"the road has {len(road)} commands, and {COMMANDS_OF_THE_ROAD} are promised")
    with tempfile.TemporaryDirectory() as folder:
        lay_out(folder, options.example)
        reader = Reader(folder, os.path.abspath(options.tools))
        for command in commands_of(text):
            reader.type(command)
        verify = road[-1]
        change_last_byte(os.path.join(folder, "site", "Mini-12-3.6.zip"))
        reader.type(verify, expected=1)
        reader.type(verify.replace(" --files site", ""))
        reader.type("sed -i s/5.4b1/5.5b1/ site/catalogue.xml")
        reader.type(verify.replace(" --files site", ""), expected=1)


main()
