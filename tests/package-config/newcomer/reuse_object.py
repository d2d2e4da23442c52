#!/usr/bin/env python3
"""Stands before the compiler: takes an object that another build, which has to be up to date, has
made of the same source by the same command, and compiles only what there is none for.

Usage: REUSE_BUILD=DIR REUSE_SOURCE=DIR REUSE_OWN_BUILD=DIR REUSE_OWN_SOURCE=DIR
       reuse_object.py COMPILER ARGUMENT...
"""

import json
import os
import shlex
import shutil
import sys

WITH_A_VALUE = ("-o", "-c", "-MT", "-MF")
WITHOUT_EFFECT_ON_THE_OBJECT = ("-MD", "-Werror")


def essence(command, build, source):
    """What of the command decides about the object, wherever the folders lie."""
    kept, words = [], iter(command)
    for word in words:
        if word in WITH_A_VALUE:
            value = next(words)
            if word == "-c":
                kept += [word, value]
        elif word not in WITHOUT_EFFECT_ON_THE_OBJECT:
            kept.append(word)
    return [word.replace(build, "BUILD").replace(source, "SOURCE") for word in kept]


def without_launcher(command):
    """Another build may have a launcher of its own."""
    first = next(i for i, word in enumerate(command) if word.startswith("-"))
    return command[first:]


def entries_of(database, name):
    """What a database of commands says of the sources of a name; to parse all of it takes long."""
    for entry in database.strip("[]\n").split("},"):
        if f'{name}"' in entry:
            yield json.loads(entry.rstrip("}\n") + "}")


def made_object(command):
    build, source = os.environ["REUSE_BUILD"], os.environ["REUSE_SOURCE"]
    wanted = essence(without_launcher(command), os.environ["REUSE_OWN_BUILD"],
                     os.environ["REUSE_OWN_SOURCE"])
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as database:
        entries = entries_of(database.read(), os.path.basename(wanted[-1]))
    for entry in entries:
        words = shlex.split(entry["command"])
        if essence(without_launcher(words), build, source) == wanted:
            return os.path.join(entry["directory"], words[words.index("-o") + 1])
    return None


def main():
    command = sys.argv[1:]
    if "-c" in command:
        found = made_object(command)
        if found and os.path.exists(found):
            shutil.copyfile(found, command[command.index("-o") + 1])
            # Ninja reads what the source depends on, which has nothing to add to a single build.
            with open(command[command.index("-MF") + 1], "w", encoding="utf-8") as dependencies:
                dependencies.write(command[command.index("-o") + 1] + ":\n")
            return
    os.execvp(command[0], command)


main()
