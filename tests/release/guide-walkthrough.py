#!/usr/bin/python3
"""The integration guide's shell walkthrough, run as a host vendor runs it: the zip in an
empty folder, every `$` line of the guide's ```sh blocks (read from the guide inside the zip)
run as printed by one POSIX shell, in order, with plain `wine` and none of the project's
environment (no WINEPREFIX, WINEDLLOVERRIDES or WINEDEBUG of ours: the guide chooses a new
prefix itself). Each command's output must be the lines the guide shows after it, where a
line "..." stands for any number of lines; Wine's own messages are left out as the guide
says.

usage: guide-walkthrough.py ZIP WORK_DIR
"""
import os
import re
import shutil
import subprocess
import sys
import zipfile

# Wine's own messages, and the hint of Debian's wine script that the 32-bit wine32 is missing.
WINE_MESSAGE = re.compile(r"^(wine: |[0-9a-f]{4}:(fixme|err|warn|trace):|it looks like wine32 is missing|"
                          r"multiarch needs to be enabled|execute \"dpkg --add-architecture|apt-get install wine32|"
                          r"as root, please execute)")
# Variables that would make the run depend on the project's environment instead of the guide.
PROJECT_VARIABLES = ("WINEPREFIX", "WINEDLLOVERRIDES", "WINEDEBUG", "WINEARCH", "WINELOADER", "WINESERVER")


def examples(guide):
    """[(guide line, command, [expected lines])] of the ```sh blocks."""
    found = []
    in_block = False
    for number, line in enumerate(guide.split("\n"), 1):
        if not in_block:
            in_block = line == "```sh"
        elif line == "```":
            in_block = False
        elif line.startswith("$ "):
            found.append((number, line[2:], []))
        elif found:
            found[-1][2].append(line)
        else:
            raise SystemExit("guide line %d: output before the first command" % number)
    return found


def matches(expected, actual):
    if not expected:
        return not actual
    if expected[0] == "...":
        return any(matches(expected[1:], actual[skip:]) for skip in range(len(actual) + 1))
    return bool(actual) and expected[0] == actual[0] and matches(expected[1:], actual[1:])


def main():
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    zip_path, work = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    shutil.rmtree(work, ignore_errors=True)
    outputs = os.path.join(work, ".outputs")
    os.makedirs(outputs)
    shutil.copy(zip_path, work)
    with zipfile.ZipFile(zip_path) as archive:
        top = archive.namelist()[0].split("/")[0]
        guide = archive.read(top + "/share/lumaven/integration.md").decode("utf-8")
    steps = examples(guide)
    if len(steps) < 15:
        print("guide walkthrough: only %d shell lines found in the guide" % len(steps))
        return 1

    # One shell for every line, so that `export` and `cd` hold for the lines after them; each
    # line's output (both streams, in order) and exit code go to files of their own.
    script = ["walkthrough_outputs='%s'" % outputs]
    for index, (_, command, _) in enumerate(steps):
        script.append("{ %s\n} > \"$walkthrough_outputs/%d.out\" 2>&1; echo $? > \"$walkthrough_outputs/%d.rc\"" % (
            command, index, index))
    script.append('echo "${WINEPREFIX:-}" > "$walkthrough_outputs/prefix"')
    with open(os.path.join(outputs, "walkthrough.sh"), "w") as f:
        f.write("\n".join(script) + "\n")
    environment = {k: v for k, v in os.environ.items()
                   if k not in PROJECT_VARIABLES and not k.startswith(("LUMAVEN_", "XELTO_"))}
    subprocess.run(["sh", os.path.join(outputs, "walkthrough.sh")], cwd=work, env=environment, timeout=600)

    failures = 0
    for index, (line, command, expected) in enumerate(steps):
        with open(os.path.join(outputs, "%d.out" % index), encoding="utf-8", errors="replace") as f:
            text = f.read().replace("\r", "")
        actual = [l for l in text.split("\n") if not WINE_MESSAGE.match(l)]
        if actual and actual[-1] == "":
            actual.pop()
        if not matches(expected, actual):
            failures += 1
            print("guide line %d: $ %s\nexpected:\n%s\ngot:\n%s\n" % (line, command, "\n".join(expected),
                                                                     "\n".join(actual)))
    prefix = open(os.path.join(outputs, "prefix")).read().strip()
    if prefix:  # the prefix's wineserver ends with its last program; wait for it
        subprocess.run(["wineserver", "-w"], env=dict(environment, WINEPREFIX=prefix))
    print("guide walkthrough: %d shell lines from the unpacked zip in a new Wine prefix, %d differ" % (
        len(steps), failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
