#!/usr/bin/env python3
"""Goes the road of a newcomer, from the words of README and the host guide alone.

The Debian packages that the page names are laid out in a folder of this test: installing them would
change the machine. README's host is written word for word, built in one of the ways that README
names, exactly as it stands there, and started at a folder that the installed update-catalogue
serves. It must be offered the package of the page's example. Who has Qt 6 takes the names for it
from the guide's table.

Usage: newcomers_road.py --qt 5|6 --way find_package|pkg-config|add_subdirectory --source DIR
       --build DIR --packages DIR --onlooker DIR --folder DIR --compiler CXX --flags "..."
       --build-type TYPE --type-flags "..." --generator NAME --unity ON|OFF --batch NUMBER
"""

import argparse
import glob
import os
import re
import shutil
import socket
import subprocess
import sys

BLOCK = re.compile(r"^```(\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PORT_OF_THE_PAGES = "8080"
PACKAGE_OF_THE_WORKBENCH = "update-catalogue"


class Page:
    """One page of the documentation."""

    def __init__(self, path):
        with open(path, encoding="utf-8") as page:
            self.text = page.read()
            self.blocks = BLOCK.findall(self.text)

    def block(self, language, word):
        """The first block in a language that holds a word."""
        for its_language, text in self.blocks:
            if its_language == language and word in text:
                return text
        sys.exit(f"the page has no {language} block with {word}")

    def line(self, word):
        return next(line for line in self.block("sh", word).splitlines() if word in line)

    def names(self, row, column):
        """What stands in backticks in a column of the row that begins with some words."""
        line = re.search(rf"^\| {re.escape(row)}.*$", self.text, re.MULTILINE)
        return re.findall(r"`([^`]+)`", line.group().split("|")[1 + column])


def write(path, text, mode=0o644):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)
    os.chmod(path, mode)


def free_port():
    with socket.socket() as taken:
        taken.bind(("127.0.0.1", 0))
        return str(taken.getsockname()[1])


class Newcomer:
    def __init__(self, options):
        self.options = options
        self.readme = Page(os.path.join(options.source, "README.md"))
        self.guide = Page(os.path.join(options.source, "docs", "host-guide.md"))
        self.root = os.path.join(options.folder, "root")
        self.project = os.path.join(options.folder, "project")
        self.home = os.path.join(options.folder, "home")
        self.port = free_port()
        column = {"5": 1, "6": 2}[options.qt]
        self.packages = self.guide.names("Debian packages", column) + [PACKAGE_OF_THE_WORKBENCH]
        self.name_of_qt5, = self.guide.names("`find_package`", 1)
        self.name, = self.guide.names("`find_package`", column)
        self.environment = dict(
            os.environ, HOME=self.home, LC_ALL="C.UTF-8", QT_QPA_PLATFORM="offscreen",
            PATH=os.pathsep.join([os.path.join(options.folder, "bin"),
                                  os.path.join(self.root, "usr/bin"), os.environ["PATH"]]))
        for variable in ("XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "CXXFLAGS", "LDFLAGS"):
            self.environment.pop(variable, None)
        shutil.rmtree(options.folder, ignore_errors=True)

    def run(self, command, **environment):
        print("$", command, flush=True)
        subprocess.run(["bash", "-c", command], cwd=self.project, check=True,
                       env=dict(self.environment, **environment))

    def install(self):
        archives = sorted(glob.glob(os.path.join(self.options.packages, "*.deb")))
        names = [os.path.basename(archive).split("_")[0] for archive in archives]
        if names != sorted(self.packages):
            sys.exit(f"cpack made {names}")
        self.readme.line("cpack ")
        command = self.readme.line("apt install").replace("sudo apt install", "apt-get install")
        command = re.sub(r"\S+\*\.deb", " ".join(archives), command)
        os.makedirs(self.project)
        self.run(command.replace("install ", "install --simulate ", 1))
        for archive in archives:
            subprocess.run(["dpkg-deb", "--extract", archive, self.root], check=True)

    def write_host(self):
        write(os.path.join(self.project, "main.cpp"),
              self.readme.block("cpp", "vx::SoftwareUpdateClient"))

    def with_its_name(self, text, before):
        """The text with the name for this Qt behind some words, where the page has that for Qt 5."""
        if before + self.name_of_qt5 not in text:
            sys.exit(f"the page has no {before}{self.name_of_qt5}")
        return text.replace(before + self.name_of_qt5, before + self.name)

    def build_by_find_package(self):
        project = self.with_its_name(self.readme.block("cmake", "find_package"), "find_package(")
        self.build_with_cmake(project, [f"-DCMAKE_PREFIX_PATH={self.root}/usr"])

    def build_by_add_subdirectory(self):
        source = os.path.join(self.project, "SoftwareUpdateClient")
        os.symlink(self.options.source, source)
        launcher = os.path.join(os.path.dirname(os.path.abspath(__file__)), "reuse_object.py")
        self.build_with_cmake(
            self.readme.block("cmake", "add_subdirectory"),
            [f"-DSOFTWAREUPDATECLIENT_QT={self.options.qt}",
             f"-DCMAKE_UNITY_BUILD={self.options.unity}",
             f"-DCMAKE_UNITY_BUILD_BATCH_SIZE={self.options.batch}",
             f"-DCMAKE_CXX_COMPILER_LAUNCHER={sys.executable};{launcher}"],
            REUSE_BUILD=self.options.build, REUSE_SOURCE=self.options.source,
            REUSE_OWN_BUILD=f"{self.project}/build/SoftwareUpdateClient", REUSE_OWN_SOURCE=source)

    def build_with_cmake(self, project, options, **environment):
        write(os.path.join(self.project, "CMakeLists.txt"), project)
        words = " ".join(f"'{option}'" for option in options)
        self.run(f"cmake -S . -B build -G '{self.options.generator}' {words}"
                 f" -DCMAKE_CXX_COMPILER={self.options.compiler}"
                 f" -DCMAKE_CXX_FLAGS='{self.options.flags}'"
                 f" -DCMAKE_BUILD_TYPE={self.options.build_type}"
                 f" -DCMAKE_CXX_FLAGS_{self.options.build_type.upper()}='{self.options.type_flags}'",
                 **environment)
        self.run("cmake --build build --target your_application", **environment)
        os.symlink("build/your_application", os.path.join(self.project, "your_application"))

    def build_by_pkg_config(self):
        # What this build's compiler is given; the page is for libraries without sanitizers.
        write(os.path.join(self.options.folder, "bin/g++"),
              f'#!/bin/sh\nexec {self.options.compiler} {self.options.flags} "$@"\n', 0o755)
        # Where the linker of an installed system looks by itself.
        libraries = os.path.join(self.root, "usr/lib")
        self.environment["PKG_CONFIG_PATH"] = os.path.join(libraries, "pkgconfig")
        self.environment["LD_LIBRARY_PATH"] = libraries
        self.run(self.with_its_name(self.readme.line("pkg-config"), "--libs "))

    def be_offered(self):
        serve = self.guide.line("update-catalogue serve").replace(PORT_OF_THE_PAGES, self.port)
        store = self.guide.block("ini", "serverURL=").replace(PORT_OF_THE_PAGES, self.port)
        write(os.path.join(self.home, ".config/Example/CameraManager.conf"), store)
        print("$", serve, flush=True)
        with subprocess.Popen(serve.split(), cwd=self.options.source, env=self.environment,
                              stdout=subprocess.PIPE, text=True) as server:
            try:
                print(server.stdout.readline(), end="", flush=True)
                return self.start_host()
            finally:
                server.terminate()

    def start_host(self):
        environment = dict(self.environment, QT_QPA_GENERIC_PLUGINS="onlooker",
                           QT_PLUGIN_PATH=self.options.onlooker)
        result = subprocess.run(["./your_application"], cwd=self.project, env=environment,
                                stdout=subprocess.PIPE, text=True, timeout=90, check=False)
        print(result.stdout, end="")
        return result


def main():
    parser = argparse.ArgumentParser()
    for option in ("qt", "way", "source", "build", "packages", "onlooker", "folder", "compiler", "flags",
                   "build-type", "type-flags", "generator", "unity", "batch"):
        parser.add_argument("--" + option, required=True)
    newcomer = Newcomer(parser.parse_args())
    newcomer.install()
    newcomer.write_host()
    ways = {"find_package": newcomer.build_by_find_package,
            "pkg-config": newcomer.build_by_pkg_config,
            "add_subdirectory": newcomer.build_by_add_subdirectory}
    ways[newcomer.options.way]()
    result = newcomer.be_offered()
    if result.returncode != 0:
        sys.exit(f"the host ended with {result.returncode}")
    if "offered: CameraManager 5.3 | " not in result.stdout:
        sys.exit("the host is not offered the package of the demonstration")


main()
