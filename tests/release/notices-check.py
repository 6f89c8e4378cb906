#!/usr/bin/python3
"""Checks that THIRD-PARTY-NOTICES.txt names every Debian package whose code is in a shipped
binary: each library archive and object file that the link maps say went into a binary, and
each given header of a header-only library, is looked up with `dpkg -S`, and its package
must have a notice with its installed version. The project's own libraries (under the build
folder) need none; anything else of unknown origin fails.

usage: notices-check.py NOTICES BUILD_DIR [--header FILE]... MAP...
"""
import argparse
import os
import re
import subprocess
import sys

# GNU ld's map names every input by its path: /usr/.../libstdc++.a(member.o), /usr/.../crt2.o;
# the project's own libraries by their path in the build folder (lib/liblumaven_core.a).
GNU_INPUT = re.compile(r"(?:^|[\s(])(/[^\s()]+\.[ao])\b")
# LLD's link.exe-style map names an archive member as LIBRARY:member.o, the library without
# its folder and its .a.
LLD_MEMBER = re.compile(r"\s([A-Za-z0-9_+.-]+):[A-Za-z0-9_+.-]+\.(?:o|obj)\s*$")
COMPILER = "x86_64-w64-mingw32-gcc-posix"


def library_path(name, build):
    """The archive LIBRARY of an LLD map: the project's own under BUILD/lib, else wherever
    the MinGW GCC finds it."""
    own = os.path.join(build, "lib", name + ".a")
    if os.path.exists(own):
        return own
    found = subprocess.run([COMPILER, "-print-file-name=%s.a" % name], capture_output=True, text=True).stdout.strip()
    return found if os.path.isabs(found) else name


def linked_inputs(map_path, build):
    inputs = set()
    with open(map_path, encoding="utf-8", errors="replace") as f:
        for line in f:
            for path in GNU_INPUT.findall(line):
                inputs.add(os.path.normpath(path))
            member = LLD_MEMBER.search(line)
            if member:
                inputs.add(member.group(1))
    return {os.path.normpath(i) if os.path.isabs(i) else os.path.normpath(library_path(i, build)) for i in inputs}


def owners(paths):
    """{path: Debian package} for the paths dpkg knows, as the path is written or with its
    links resolved. One dpkg call for all: it answers each path it knows on a line of its own
    and says nothing of the others on standard output."""
    candidates = {}
    for path in paths:
        for candidate in (path, os.path.realpath(path)):
            candidates.setdefault(candidate, path)
    if not candidates:
        return {}
    query = subprocess.run(["dpkg", "-S"] + sorted(candidates), capture_output=True, text=True)
    found = {}
    for line in query.stdout.splitlines():
        package, _, candidate = line.partition(": ")
        if candidate in candidates:
            found[candidates[candidate]] = package.split(",")[0].strip()
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("notices")
    parser.add_argument("build")
    parser.add_argument("--header", action="append", default=[])
    parser.add_argument("maps", nargs="+")
    args = parser.parse_args()
    build = os.path.realpath(args.build)
    with open(args.notices, encoding="utf-8") as f:
        notices = f.read()

    used = {}  # path -> [binaries]
    for map_path in args.maps:
        binary = os.path.splitext(os.path.basename(map_path))[0]
        for path in linked_inputs(map_path, build):
            used.setdefault(path, []).append(binary)
    for header in args.header:
        used.setdefault(os.path.normpath(header), []).append("(compiled in)")
    own = {p for p in used if os.path.realpath(p).startswith(build + os.sep)}
    packages = owners(sorted(set(used) - own))

    problems = 0
    for path in sorted(set(used) - own - set(packages)):
        print("notices check: %s (in %s) comes from no Debian package and is not the project's own" % (
            path, ", ".join(sorted(set(used[path])))))
        problems += 1
    by_package = {}
    for path, package in packages.items():
        by_package.setdefault(package, set()).update(used[path])
    for package in sorted(by_package):
        version = subprocess.run(["dpkg-query", "-W", "-f=${Version}", package], capture_output=True,
                                 text=True).stdout.strip()
        noticed = "Debian package: %s %s\n" % (package, version) in notices
        print("notices check: %-28s %-26s %-9s in %s" % (package, version, "noticed" if noticed else "NO NOTICE",
                                                         ", ".join(sorted(by_package[package]))))
        problems += 0 if noticed else 1
    print("notices check: %d link maps, %d third-party packages, %d problems" % (len(args.maps), len(by_package),
                                                                                 problems))
    return 1 if problems or not by_package else 0


if __name__ == "__main__":
    sys.exit(main())
