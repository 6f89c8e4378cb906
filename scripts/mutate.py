#!/usr/bin/env python3
"""Mutation check of the service's sources (src/): one small change at a time.

Each mutant changes one token of one line (a comparison flipped, && and || swapped, an integer
constant moved by one, a boolean literal inverted, or a call statement dropped) in a private
copy of the tree, rebuilds that copy in its own build tree and runs the unit, scenario and
fault suites through CTest, cheapest first, stopping at the first suite that fails. A suite
passes only on GoogleTest's own report (cmake/gtest-run.sh), so a crash, a hang (the time
limit) or an early exit kills the mutant as a failed test does. A mutant that does not build
is stillborn and is not counted. The worktree's own sources are never touched: an interrupted
run leaves at most the private copy changed, and the next run copies the tree afresh.

The mutants are listed in a fixed order, shuffled by the seed per folder of src/ and then
taken from the folders in turn, so that any slice of the list spreads over every folder.
Known equivalent mutants (scripts/mutate-equivalent.txt) are reported as such.
"""
import argparse
import os
import random
import re
import shutil
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
SUITES = ["scenario_tests", "unit_tests", "fault_tests"]  # cheapest first
SUITE_TIMEOUT = {"scenario_tests": 90, "unit_tests": 150, "fault_tests": 300}

COMPARISONS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
LOGICAL = {"&&": "||", "||": "&&"}
BOOLEANS = {"true": "false", "false": "true"}
# A binary operator written with a space on both sides, as the tree's layout has it; template
# brackets, shifts and arrows never match.
OPERATOR = re.compile(r"(?<= )(==|!=|<=|>=|<|>|&&|\|\|)(?= )")
BOOLEAN = re.compile(r"\b(true|false)\b")
INTEGER = re.compile(r"(?<![\w.])(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)(?![\w.])")
CALL_STATEMENT = re.compile(r"^(\s*)(?!return\b|delete\b|throw\b|case\b|else\b)[A-Za-z_][\w:]*(?:(?:\.|->)[A-Za-z_]\w*)*\(.*\);\s*$")


def mask(line):
    """The line with string and character literals blanked and any // comment cut off."""
    out = []
    quote = None
    i = 0
    while i < len(line):
        c = line[i]
        if quote:
            if c == "\\":
                out.append("  ")
                i += 2
                continue
            if c == quote:
                quote = None
                out.append(c)
            else:
                out.append(" ")
        elif c in "\"'":
            quote = c
            out.append(c)
        elif line.startswith("//", i):
            break
        else:
            out.append(c)
        i += 1
    return "".join(out).ljust(len(line))[: len(line)]


def mutants_of(path):
    """Every mutant of one source file: (path, line number, column, old text, new text, kind)."""
    found = []
    in_block_comment = False
    with open(os.path.join(ROOT, path), encoding="utf-8") as f:
        lines = f.read().split("\n")
    for number, line in enumerate(lines, 1):
        if in_block_comment:
            if "*/" in line:
                in_block_comment = False
            continue
        stripped = line.strip()
        if stripped.startswith("/*"):
            in_block_comment = "*/" not in stripped
            continue
        # Preprocessor lines, compile-time checks and includes only give mutants that do not
        # build or that change nothing.
        if stripped.startswith("#") or stripped.startswith("static_assert") or not stripped:
            continue
        masked = mask(line)
        for m in OPERATOR.finditer(masked):
            op = m.group(1)
            table = LOGICAL if op in LOGICAL else COMPARISONS
            found.append((path, number, m.start(), op, table[op], "logical" if op in LOGICAL else "comparison"))
        for m in BOOLEAN.finditer(masked):
            found.append((path, number, m.start(), m.group(1), BOOLEANS[m.group(1)], "boolean"))
        for m in INTEGER.finditer(masked):
            digits, suffix = m.group(1), m.group(2)
            value = int(digits, 16) if digits[:2].lower() == "0x" else int(digits)
            # One direction per constant, fixed by its place, so that the list does not depend
            # on the seed; 0 only goes up.
            up = value == 0 or (number + m.start()) % 2 == 0
            moved = value + 1 if up else value - 1
            text = ("0x%X" % moved if digits[:2].lower() == "0x" else str(moved)) + suffix
            found.append((path, number, m.start(), m.group(0), text, "constant"))
        call = CALL_STATEMENT.match(masked)
        if call and "=" not in masked.split("(", 1)[0]:
            indent = call.group(1)
            found.append((path, number, len(indent), line[len(indent):], ";", "drop-call"))
    return found


def apply(text, mutant):
    path, number, column, old, new, kind = mutant
    lines = text.split("\n")
    line = lines[number - 1]
    if line[column:column + len(old)] != old:
        raise RuntimeError("mutant %s:%d does not match its line" % (path, number))
    lines[number - 1] = line[:column] + new + line[column + len(old):]
    return "\n".join(lines)


def describe(mutant):
    path, number, column, old, new, kind = mutant
    if kind == "drop-call":
        return "%s:%d %s: drop '%s'" % (path, number, kind, old.strip())
    return "%s:%d:%d %s: '%s' -> '%s'" % (path, number, column + 1, kind, old, new)


def folder_of(path):
    parts = path.split("/")
    return parts[1] if len(parts) > 2 else "."


def load_equivalents():
    """Known equivalent mutants: lines 'file | line text | old -> new | why'."""
    known = {}
    listing = os.path.join(ROOT, "scripts", "mutate-equivalent.txt")
    if os.path.exists(listing):
        with open(listing, encoding="utf-8") as f:
            for raw in f:
                if not raw.strip() or raw.startswith("#"):
                    continue
                fields = [field.strip() for field in raw.rstrip("\n").split(" | ")]
                if len(fields) == 4:
                    known[(fields[0], fields[1], fields[2])] = fields[3]
    return known


def equivalence_key(mutant, source_lines):
    path, number, column, old, new, kind = mutant
    return (path, source_lines[number - 1].strip(), "%s -> %s" % (old.strip(), new))


def ordered_mutants(seed, pattern):
    files = []
    for folder, _, names in os.walk(os.path.join(ROOT, "src")):
        for name in names:
            if name.endswith((".cpp", ".h")):
                rel = os.path.relpath(os.path.join(folder, name), ROOT)
                if not pattern or re.search(pattern, rel):
                    files.append(rel)
    by_folder = {}
    for path in sorted(files):
        by_folder.setdefault(folder_of(path), []).extend(mutants_of(path))
    rng = random.Random(seed)
    queues = []
    for folder in sorted(by_folder):
        items = by_folder[folder]
        rng.shuffle(items)
        queues.append(items)
    ordered = []
    while any(queues):
        for queue in queues:
            if queue:
                ordered.append(queue.pop(0))
    return ordered


def run(command, cwd, log, timeout=None):
    with open(log, "a") as out:
        out.write("\n$ %s\n" % " ".join(command))
        out.flush()
        try:
            return subprocess.run(command, cwd=cwd, stdout=out, stderr=subprocess.STDOUT, timeout=timeout).returncode
        except subprocess.TimeoutExpired:
            return 124


def locked(command, lock):
    return ["flock", lock] + command if lock else command


def prepare_copy(work, log):
    """A fresh private copy of the tracked tree (sources only), configured once."""
    tree = os.path.join(work, "tree")
    files = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, stdout=subprocess.PIPE).stdout
    for name in files.decode().split("\0"):
        source = os.path.join(ROOT, name)
        if not name or not os.path.isfile(source):
            continue
        target = os.path.join(tree, name)
        # Only what differs is copied, so that the copy's build tree stays up to date.
        if os.path.exists(target):
            with open(source, "rb") as a, open(target, "rb") as b:
                if a.read() == b.read():
                    continue
        os.makedirs(os.path.dirname(target), exist_ok=True)
        # A fresh time stamp (not the source's), so that the build sees the file changed even
        # when the source was edited before the copy's last build.
        shutil.copyfile(source, target)
        shutil.copymode(source, target)
    return tree


def main():
    parser = argparse.ArgumentParser(description="Mutation check of the service's sources.")
    parser.add_argument("--seed", type=int, default=1, help="order of the mutants (default 1)")
    parser.add_argument("--count", type=int, default=10, help="how many mutants to run (default 10)")
    parser.add_argument("--skip", type=int, default=0, help="skip the first K mutants of the order")
    parser.add_argument("--files", default="", help="regular expression on the path, e.g. 'src/oled/'")
    parser.add_argument("--list", action="store_true", help="only list the chosen mutants")
    parser.add_argument("--work", default=os.path.join(ROOT, "build", "mutate"),
                        help="private copy, build tree and results (default build/mutate)")
    parser.add_argument("--lock", default=os.environ.get("LUMAVEN_MUTATE_LOCK", ""),
                        help="a file to flock around each mutant's build and suites")
    parser.add_argument("--summary", action="store_true",
                        help="only print the figures of every mutant in the results so far (each mutant once, "
                             "its latest verdict; survivors listed as equivalent count as equivalent)")
    parser.add_argument("more_work", nargs="*", metavar="WORK",
                        help="with --summary: more work folders whose results count too (runs side by side)")
    args = parser.parse_args()
    if args.summary:
        folders = [args.work] + args.more_work
        return summarize([os.path.join(os.path.abspath(folder), "results.tsv") for folder in folders])

    everything = ordered_mutants(args.seed, args.files)
    chosen = everything[args.skip:args.skip + args.count]
    print("mutants: %d in the order of seed %d; running %d from #%d" % (len(everything), args.seed, len(chosen), args.skip + 1))
    if args.list:
        for index, mutant in enumerate(chosen, args.skip + 1):
            print("#%d %s" % (index, describe(mutant)))
        return 0

    work = os.path.abspath(args.work)
    os.makedirs(work, exist_ok=True)
    log = os.path.join(work, "mutate.log")
    results_path = os.path.join(work, "results.tsv")
    tree = prepare_copy(work, log)
    build = os.path.join(tree, "build")
    env_prefix = os.path.join(build, "wineprefix")
    if not os.path.exists(os.path.join(build, "build.ninja")):
        if run(["cmake", "--preset", "mingw"], tree, log) != 0:
            print("cannot configure the private copy; see %s" % log)
            return 2
    targets = ["--target", "unit_tests", "scenario_tests", "fault_tests"]
    # The unmutated tree must build and pass, or every verdict is meaningless.
    if run(locked(["cmake", "--build", build] + targets, args.lock), tree, log) != 0:
        print("the unmutated copy does not build; see %s" % log)
        return 2

    equivalents = load_equivalents()
    tally = {}
    survivors = []
    for index, mutant in enumerate(chosen, args.skip + 1):
        path = mutant[0]
        source = os.path.join(tree, path)
        with open(source, encoding="utf-8") as f:
            original = f.read()
        key = equivalence_key(mutant, original.split("\n"))
        started = time.time()
        try:
            with open(source, "w", encoding="utf-8") as f:
                f.write(apply(original, mutant))
            verdict, suite = judge(build, tree, targets, log, args.lock, env_prefix)
        finally:
            with open(source, "w", encoding="utf-8") as f:
                f.write(original)
        if verdict == "survived" and key in equivalents:
            verdict = "equivalent"
        folder = folder_of(path)
        tally.setdefault(folder, {}).setdefault(verdict, 0)
        tally[folder][verdict] += 1
        line = "#%d %-10s %s%s (%.0f s)" % (index, verdict.upper(), describe(mutant),
                                            " [%s]" % suite if suite else "", time.time() - started)
        print(line, flush=True)
        with open(results_path, "a") as f:
            f.write("%d\t%d\t%s\t%s\t%s\t%s\n" % (args.seed, index, verdict, suite, folder, describe(mutant)))
        if verdict == "survived":
            survivors.append(describe(mutant))
    # The copy is rebuilt unmutated, so that its build tree matches its sources again.
    run(locked(["cmake", "--build", build] + targets, args.lock), tree, log)

    print_figures(tally, len(chosen), survivors)
    print("results appended to %s" % results_path)
    return 0


def print_figures(tally, count, survivors):
    """Per folder and in total: killed, survived, equivalent and stillborn mutants."""
    print("\nper folder: killed / survived / equivalent / stillborn")
    totals = {}
    for folder in sorted(tally):
        counts = tally[folder]
        for verdict, n in counts.items():
            totals[verdict] = totals.get(verdict, 0) + n
        print("  %-8s %3d / %3d / %3d / %3d" % (folder, counts.get("killed", 0), counts.get("survived", 0),
                                                counts.get("equivalent", 0), counts.get("stillborn", 0)))
    killed, survived = totals.get("killed", 0), totals.get("survived", 0)
    judged = killed + survived
    print("run %d: killed %d, survived %d, equivalent %d, stillborn %d; killed %.1f%% of the non-equivalent" %
          (count, killed, survived, totals.get("equivalent", 0), totals.get("stillborn", 0),
           100.0 * killed / judged if judged else 100.0))
    for survivor in survivors:
        print("  survivor: %s" % survivor)


def summarize(results_paths):
    """The figures over every mutant in the results files, each judged by its latest run."""
    equivalents = load_equivalents()
    latest = {}
    for results_path in results_paths:
        if not os.path.exists(results_path):
            print("no results: %s" % results_path)
            return 1
        with open(results_path, encoding="utf-8") as f:
            for raw in f:
                fields = raw.rstrip("\n").split("\t")
                if len(fields) == 6:
                    latest[fields[5]] = fields
    tally = {}
    survivors = []
    for description, (seed, index, verdict, suite, folder, _) in sorted(latest.items()):
        if verdict == "survived" and equivalence_of(description, equivalents):
            verdict = "equivalent"
        tally.setdefault(folder, {}).setdefault(verdict, 0)
        tally[folder][verdict] += 1
        if verdict == "survived":
            survivors.append(description)
    print_figures(tally, len(latest), survivors)
    return 0


def equivalence_of(description, equivalents):
    """The reason a recorded mutant is equivalent, if the list has it (matched on file, line text and change)."""
    match = re.match(r"(\S+?):(\d+)(?::\d+)? (\S+): (?:'(.*)' -> '(.*)'|drop '(.*)')$", description)
    if not match:
        return None
    path, number = match.group(1), int(match.group(2))
    source = os.path.join(ROOT, path)
    if not os.path.exists(source):
        return None
    with open(source, encoding="utf-8") as f:
        lines = f.read().split("\n")
    change = "%s -> ;" % match.group(6) if match.group(6) is not None else "%s -> %s" % (match.group(4), match.group(5))
    # The recorded line, or one near it: the source may have moved a little since the run.
    for near in sorted(range(max(1, number - 5), min(len(lines), number + 5) + 1), key=lambda n: abs(n - number)):
        reason = equivalents.get((path, lines[near - 1].strip(), change))
        if reason:
            return reason
    return None


def judge(build, tree, targets, log, lock, prefix):
    """Builds the mutated copy and runs the suites; returns (verdict, the suite that killed it)."""
    # One lock per mutant: the build and the suites, not the whole run.
    script = ["cmake --build %s %s" % (build, " ".join(targets))]
    for suite in SUITES:
        script.append("ctest --test-dir %s -R '^%s$' --timeout %d --output-on-failure >/dev/null 2>&1 || { echo KILLED %s; exit 0; }"
                      % (build, suite, SUITE_TIMEOUT[suite], suite))
    body = "%s >/dev/null 2>&1 || { echo STILLBORN; exit 0; }\n%s\necho SURVIVED\n" % (script[0], "\n".join(script[1:]))
    command = locked(["sh", "-c", body], lock)
    out = subprocess.run(command, cwd=tree, stdout=subprocess.PIPE, text=True).stdout.strip().split()
    with open(log, "a") as f:
        f.write("verdict: %s\n" % " ".join(out))
    if not out:
        return "killed", "runner"
    if out[0] == "STILLBORN":
        return "stillborn", ""
    if out[0] == "KILLED":
        return "killed", out[1]
    return "survived", ""


if __name__ == "__main__":
    sys.exit(main())
