#!/usr/bin/env python3
"""Mutation check of the service's sources (src/): one small change at a time.

Each mutant changes one token of one line: a comparison flipped, && and || swapped, + and -,
* and /, & and |, << and >> swapped, an integer constant moved by one, a boolean literal
inverted, a unary ! removed, a returned value replaced by its type's default, a counted loop's
bound lowered by one, or a call statement dropped. A mutant is judged by the unit, scenario,
fault and OS-fault suites; a suite passes only on GoogleTest's own report, so a crash, a hang
(the time limit) or an early exit kills the mutant as a failed test does, and so does a suite
whose program does not build (a compile-time check of the tests). A mutant whose service does
not build is stillborn and is not counted.

Two ways to judge, with the same verdicts (docs/mutation/agreement.csv):
- the switched build (default; scripts/mutate_schema.py): every mutant compiled into one
  private copy of the tree and switched on at run time by LUMAVEN_MUTANT; a mutant runs the
  tests that reach it (a per-test map made once), then, if it lives, the whole suites those
  tests belong to. A mutant the compiler cannot switch at run time is rebuilt on its own, as
  below.
- the rebuild (--plain): the mutant written into a private copy of the tree, rebuilt in its own
  build tree, and the suites run through CTest, cheapest first, up to the first that fails.
The worktree's own sources are never touched: an interrupted run leaves at most the private
copies changed, and the next run copies the tree afresh.

The mutants are listed in a fixed order, shuffled by the seed per folder of src/ and then taken
from the folders in turn, so that any slice of the list spreads over every folder. Each has a
key (file, a hash of its line's text, operator and change, occurrence) that stays when other
lines move, so that a table of verdicts (--results) resumes and carries over to a later
commit. Known equivalent mutants (scripts/mutate-equivalent.txt) are reported as such.
"""
import argparse
import csv
import fcntl
import hashlib
import os
import random
import re
import shutil
import subprocess
import sys
import time
from xml.etree import ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
# Cheapest first. The OS-fault suite judges too: it is the only one that fails the service's OS
# calls and allocations, so the handling of those failures is tested nowhere else.
SUITES = ["scenario_tests", "unit_tests", "fault_tests", "os_fault_tests"]
SUITE_TIMEOUT = {"scenario_tests": 90, "unit_tests": 150, "fault_tests": 300, "os_fault_tests": 300}

COMPARISONS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">"}
LOGICAL = {"&&": "||", "||": "&&"}
BOOLEANS = {"true": "false", "false": "true"}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*="}
BITWISE = {"&": "|", "|": "&", "&=": "|=", "|=": "&="}
SHIFTS = {"<<": ">>", ">>": "<<", "<<=": ">>=", ">>=": "<<="}
# A binary operator written with a space on both sides, as the tree's layout has it; template
# brackets, pointer and reference declarators (written against the type), unary operators and
# arrows never match.
OPERATOR = re.compile(r"(?<= )(<<=|>>=|==|!=|<=|>=|&&|\|\||<<|>>|\+=|-=|\*=|/=|&=|\|=|<|>|\+|-|\*|/|&|\|)(?= )")
BOOLEAN = re.compile(r"\b(true|false)\b")
INTEGER = re.compile(r"(?<![\w.])(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)(?![\w.])")
CALL_STATEMENT = re.compile(r"^(\s*)(?!return\b|delete\b|throw\b|case\b|else\b)[A-Za-z_][\w:]*(?:(?:\.|->)[A-Za-z_]\w*)*\(.*\);\s*$")
# A '!' that negates (not the one of '!='), not doubled.
NEGATION = re.compile(r"(?<![!\w)\]])!(?![=!])")
# A one-line return of a value: at the start of the line, or after an if's condition, a case
# label or an else on the same line.
RETURN = re.compile(r"(?:^\s*|\) |: |else )(return (.+);)\s*$")
# Values whose type's default is the value itself, or that the boolean operator already flips.
DEFAULT_LIKE = re.compile(r"^(?:\{\}|false|true|0|0[uUlL]+|0x0+[uUlL]*|nullptr|0\.0f?|S_OK)$")
# The condition of a counted for loop whose bound is not a literal (the constant operator
# reaches a literal bound): for (init; INDEX < BOUND; step).
LOOP = re.compile(r"\bfor \([^;]*; (\w+) (<|<=|!=) ([^;]+?)(?: && [^;]*)?; ")
PURE_SPECIFIER = re.compile(r"\)\s*(?:const\s*)?(?:noexcept\s*)?(?:override\s*)?= $")
KEYWORDS_BEFORE_OPERAND = ("return", "case", "delete", "throw", "else", "new", "sizeof", "co_return")

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


def balanced(text):
    depth = 0
    for c in text:
        depth += c in "([{"
        depth -= c in ")]}"
        if depth < 0:
            return False
    return depth == 0


def operand_before(masked, column):
    """Whether the binary operator at column has an operand on its left (not a keyword, as in 'delete[] *p')."""
    before = masked[:column].rstrip()
    if not before or not (before[-1].isalnum() or before[-1] in "_)]'\""):
        return False
    if re.search(r"\bdelete\[\]$", before):
        return False
    word = re.search(r"(\w+)$", before)
    return not (word and word.group(1) in KEYWORDS_BEFORE_OPERAND)


def last_code_line(lines, number):
    """The masked text of the last line before line number that has code."""
    for back in range(number - 2, -1, -1):
        text = mask(lines[back]).strip()
        if text and not text.startswith("#"):
            return text
    return ""


def statement_starts(previous):
    """Whether a statement starts on the line after previous (not the rest of an expression)."""
    return not previous or previous[-1] in ";{})" or previous.endswith(":") or previous.split()[-1] in ("else", "do")


def binary_kind(op):
    for kind, table in (("comparison", COMPARISONS), ("logical", LOGICAL), ("arithmetic", ARITHMETIC),
                        ("bitwise", BITWISE), ("shift", SHIFTS)):
        if op in table:
            return kind, table[op]
    raise KeyError(op)


def mutants_of_lines(path, lines):
    """Every mutant of one source file's lines: (path, line number, column, old text, new text, kind),
    in the order of line and column."""
    found = []
    in_block_comment = False
    branches = []  # the open conditionals (track_branch)
    for number, line in enumerate(lines, 1):
        if in_block_comment:
            if "*/" in line:
                in_block_comment = False
            continue
        stripped = line.strip()
        if stripped.startswith("/*"):
            in_block_comment = "*/" not in stripped
            continue
        if stripped.startswith("#"):
            track_branch(branches, stripped)
        # Preprocessor lines, compile-time checks and includes only give mutants that do not
        # build or that change nothing; the other compiler's side of a compiler test is in no
        # build here, so no suite could judge a mutant of it.
        if stripped.startswith("#") or stripped.startswith("static_assert") or not stripped \
                or "msvc" in branches:
            continue
        masked = mask(line)
        on_line = []
        previous = last_code_line(lines, number)
        for m in OPERATOR.finditer(masked):
            op = m.group(1)
            kind, new = binary_kind(op)
            if kind in ("arithmetic", "bitwise", "shift") and not operand_before(masked, m.start()):
                continue
            on_line.append((path, number, m.start(), op, new, kind))
        for m in BOOLEAN.finditer(masked):
            on_line.append((path, number, m.start(), m.group(1), BOOLEANS[m.group(1)], "boolean"))
        for m in INTEGER.finditer(masked):
            digits, suffix = m.group(1), m.group(2)
            if PURE_SPECIFIER.search(masked[:m.start()]) and masked[m.end():].lstrip().startswith(";"):
                continue  # '= 0' of a pure virtual function is syntax, not a value
            value = int(digits, 16) if digits[:2].lower() == "0x" else int(digits)
            # One direction per constant, fixed by the line's text and the constant's place in
            # it (not by the line's number, so that it stays when lines move); 0 only goes up.
            indent = len(line) - len(line.lstrip())
            up = value == 0 or (int(line_hash(line), 16) + m.start() - indent) % 2 == 0
            moved = value + 1 if up else value - 1
            text = ("0x%X" % moved if digits[:2].lower() == "0x" else str(moved)) + suffix
            on_line.append((path, number, m.start(), m.group(0), text, "constant"))
        for m in NEGATION.finditer(masked):
            if not masked[:m.start()].rstrip().endswith("operator"):
                on_line.append((path, number, m.start(), "!", "", "negation"))
        ret = RETURN.search(masked)
        if ret:
            value = ret.group(2).strip()
            start = ret.start(2) + (len(ret.group(2)) - len(ret.group(2).lstrip()))
            if balanced(value) and not DEFAULT_LIKE.match(value) and value not in zero_constants():
                on_line.append((path, number, start, line[start:start + len(value)], "{}", "return-default"))
        loop = LOOP.search(masked)
        if loop:
            bound = loop.group(3).strip()
            if balanced(bound) and not INTEGER.fullmatch(bound):
                start = loop.start(3)
                text = line[start:start + len(bound)]
                on_line.append((path, number, start, text, text + " - 1", "loop-bound"))
        call = CALL_STATEMENT.match(masked)
        if call and "=" not in masked.split("(", 1)[0] and balanced(masked) and statement_starts(previous):
            indent = call.group(1)
            on_line.append((path, number, len(indent), line[len(indent):], ";", "drop-call"))
        found.extend(sorted(on_line, key=lambda m: (m[2], KINDS.index(m[5]))))
    return found


def track_branch(branches, directive):
    """Keeps the stack of open conditionals, each "gnu" (the GCC and Clang side of a compiler
    test), "msvc" (its #else, which neither compiler here builds) or "any"."""
    words = directive[1:].split()
    if not words:
        return
    if words[0] in ("if", "ifdef", "ifndef"):
        compiler_test = re.match(r"#\s*if\s+defined\s*\(\s*__GNUC__\s*\)\s*$", directive)
        branches.append("gnu" if compiler_test else "any")
    elif words[0] in ("else", "elif") and branches:
        branches[-1] = "msvc" if branches[-1] == "gnu" else branches[-1]
    elif words[0] == "endif" and branches:
        branches.pop()


_ZERO = []


def zero_constants():
    """Named constants of the tree that are 0: returning the type's default instead of one of them
    changes nothing."""
    if not _ZERO:
        names = set()
        for folder, _, files in os.walk(os.path.join(ROOT, "src")):
            for name in files:
                if name.endswith((".cpp", ".h")):
                    with open(os.path.join(folder, name), encoding="utf-8") as f:
                        names.update(re.findall(r"\b((?:k|[A-Z])\w*) = (?:0[xX]0+|0)[uUlL]*[,;]", f.read()))
        _ZERO.append(names)
    return _ZERO[0]


KINDS = ["comparison", "logical", "arithmetic", "bitwise", "shift", "boolean", "constant", "negation",
         "return-default", "loop-bound", "drop-call"]


def mutants_of(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as f:
        return mutants_of_lines(path, f.read().split("\n"))


def line_hash(text):
    return hashlib.sha1(text.strip().encode("utf-8")).hexdigest()[:10]


def keys_of(mutants, lines_of):
    """A key per mutant that survives edits elsewhere in the file: the file, a hash of the line's
    text, the operator and change, and which of the same on that text it is (by column)."""
    keys = []
    seen = {}
    for mutant in mutants:
        path, number, column, old, new, kind = mutant
        digest = line_hash(lines_of(path)[number - 1])
        change = "%s>%s" % (old, new) if kind not in ("drop-call", "return-default", "loop-bound") else "*"
        base = "%s#%s#%s#%s" % (path, digest, kind, change)
        occurrence = seen.get(base, 0)
        seen[base] = occurrence + 1
        keys.append("%s#%d" % (base, occurrence))
    return keys


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
                # The reason, last, may itself hold " | " (an expression with a bitwise or).
                fields = [field.strip() for field in raw.rstrip("\n").split(" | ", 3)]
                if len(fields) == 4:
                    known[(fields[0], fields[1], fields[2])] = fields[3]
                else:
                    print("mutate-equivalent.txt: not 'file | line text | old -> new | why': %s" % raw.strip())
    return known


def equivalence_key(mutant, source_lines):
    path, number, column, old, new, kind = mutant
    return (path, source_lines[number - 1].strip(), ("%s -> %s" % (old.strip(), new)).strip())


def ordered_mutants(seed, pattern):
    """The list shuffled by the seed per folder of src/, then taken from the folders in turn."""
    by_folder = {}
    for mutant in all_mutants(pattern):
        by_folder.setdefault(folder_of(mutant[0]), []).append(mutant)
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


def all_mutants(pattern=""):
    """Every mutant of the tree in a fixed order (file, line, column)."""
    files = []
    for folder, _, names in os.walk(os.path.join(ROOT, "src")):
        for name in names:
            if name.endswith((".cpp", ".h")):
                rel = os.path.relpath(os.path.join(folder, name), ROOT)
                if not pattern or re.search(pattern, rel):
                    files.append(rel)
    listing = []
    for path in sorted(files):
        listing.extend(mutants_of(path))
    return listing


class SourceLines:
    """The worktree's source lines, read once per file."""

    def __init__(self):
        self.cache = {}

    def __call__(self, path):
        if path not in self.cache:
            with open(os.path.join(ROOT, path), encoding="utf-8") as f:
                self.cache[path] = f.read().split("\n")
        return self.cache[path]


TIMED_OUT = 124  # run's answer when the command outlived its time limit


def stop_wine(prefix):
    """Ends every Wine process of the prefix (a test program that outlived its time limit)."""
    subprocess.run(["wineserver", "-k"], env=dict(os.environ, WINEPREFIX=prefix), stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)


def run(command, cwd, log, timeout=None, env=None):
    with open(log, "a") as out:
        out.write("\n$ %s\n" % " ".join(command))
        out.flush()
        try:
            return subprocess.run(command, cwd=cwd, stdout=out, stderr=subprocess.STDOUT, timeout=timeout,
                                  env=env).returncode
        except subprocess.TimeoutExpired:
            return TIMED_OUT


class Lock:
    """flock on a file (the machine-wide CPU lock) for one build or one mutant's runs."""

    def __init__(self, path):
        self.path = path
        self.handle = None

    waited = 0.0  # seconds spent queueing for the lock, all holds together
    held = {}  # path -> [handle, depth, since]: a hold of this process, reentrant

    def __enter__(self):
        if self.path:
            hold = Lock.held.get(self.path)
            if hold:
                hold[1] += 1
                return self
            handle = open(self.path, "a")
            began = time.time()
            fcntl.flock(handle, fcntl.LOCK_EX)
            Lock.waited += time.time() - began
            Lock.held[self.path] = [handle, 1, time.time()]
        return self

    def __exit__(self, *exc):
        hold = Lock.held.get(self.path) if self.path else None
        if hold:
            hold[1] -= 1
            if hold[1] == 0:
                fcntl.flock(hold[0], fcntl.LOCK_UN)
                hold[0].close()
                del Lock.held[self.path]

    def share(self, seconds):
        """Within a long hold (a batch of short mutants): lets the others in once the hold has
        lasted the given seconds."""
        hold = Lock.held.get(self.path) if self.path else None
        if hold and hold[1] == 1 and time.time() - hold[2] > seconds:
            fcntl.flock(hold[0], fcntl.LOCK_UN)
            time.sleep(1)
            began = time.time()
            fcntl.flock(hold[0], fcntl.LOCK_EX)
            Lock.waited += time.time() - began
            hold[2] = time.time()


def locked(command, lock):
    return ["flock", lock] + command if lock else command


def prepare_copy(work, log, overrides=None):
    """A private copy of the tracked tree (sources only) in work/tree; overrides: {path: text}
    written instead of the tracked file. Only what differs is written, so that the copy's build
    tree stays up to date."""
    tree = os.path.join(work, "tree")
    overrides = overrides or {}
    files = subprocess.run(["git", "ls-files", "-z"], cwd=ROOT, check=True, stdout=subprocess.PIPE).stdout
    tracked = set(name for name in files.decode().split("\0") if name)
    # A file the tree no longer has goes from the copy too: left behind, an old header would
    # still be found before its successor in another folder (the copy's own build is kept).
    for folder, subfolders, names in os.walk(tree):
        if folder == tree and "build" in subfolders:
            subfolders.remove("build")
        for name in names:
            path = os.path.join(folder, name)
            if os.path.relpath(path, tree) not in tracked:
                os.remove(path)
    for name in sorted(tracked):
        source = os.path.join(ROOT, name)
        if not name or not os.path.isfile(source):
            continue
        if name in overrides:
            content = overrides[name].encode("utf-8")
        else:
            with open(source, "rb") as a:
                content = a.read()
        target = os.path.join(tree, name)
        if os.path.exists(target):
            with open(target, "rb") as b:
                if b.read() == content:
                    continue
        os.makedirs(os.path.dirname(target), exist_ok=True)
        # A fresh time stamp (not the source's), so that the build sees the file changed even
        # when the source was edited before the copy's last build.
        with open(target, "wb") as out:
            out.write(content)
        shutil.copymode(source, target)
    return tree


def failing_test(report):
    """The first failed test of a GoogleTest XML report ('Suite.Test'), or why there is none."""
    if not os.path.exists(report):
        return "(no report: the process ended early)"
    try:
        root = ElementTree.parse(report).getroot()
    except ElementTree.ParseError:
        return "(unreadable report)"
    for case in root.iter("testcase"):
        if case.find("failure") is not None or case.find("error") is not None:
            return "%s.%s" % (case.get("classname"), case.get("name"))
    return "(no failed test: exit code or count)"


# A suite stops at its first failed test: the verdict is the same, and a killed mutant costs less.
FAIL_FAST = dict(os.environ, GTEST_FAIL_FAST="1")
TARGETS = ["unit_tests", "scenario_tests", "fault_tests", "os_fault_tests"]


def build_command(build, targets=TARGETS):
    return ["cmake", "--build", build, "-j", "2", "--target"] + targets


# Why a rebuilt mutant whose service is the unmutated one, byte for byte, is equivalent.
SAME_CODE = ("the rebuilt LumavenService.dll without its debug information is byte-identical to the "
             "unmutated one: the service runs the same code")


def service_code(build):
    """A digest of the built service DLL without its debug information (which records constants
    and names even where the code does not use them). The build is reproducible (no time stamp,
    fixed paths), so equal digests mean the same code and data."""
    dll = os.path.join(build, "bin", "LumavenService.dll")
    stripped = dll + ".code"
    # objcopy stamps the PE header with the time unless told the epoch.
    subprocess.run(["x86_64-w64-mingw32-objcopy", "--strip-debug", dll, stripped], check=True,
                   env=dict(os.environ, SOURCE_DATE_EPOCH="0"))
    with open(stripped, "rb") as f:
        return hashlib.sha256(f.read()).hexdigest()


class PlainEngine:
    """The reference path: the mutant written into a private copy of the tree, rebuilt, and the
    suites run through CTest, cheapest first, up to the first that fails. A mutant that leaves
    the service's code as it was (a constant nothing uses) is equivalent without a run."""

    def __init__(self, work, lock):
        self.work = os.path.abspath(work)
        self.lock = lock
        self.ready = False

    def prepare(self):
        os.makedirs(self.work, exist_ok=True)
        self.log = os.path.join(self.work, "mutate.log")
        # The unmutated tree must build, or every verdict is meaningless.
        with Lock(self.lock):
            self.tree = prepare_copy(self.work, self.log)
            self.build = os.path.join(self.tree, "build")
            if not os.path.exists(os.path.join(self.build, "build.ninja")):
                if run(["cmake", "--preset", "mingw"], self.tree, self.log) != 0:
                    raise SystemExit("cannot configure the private copy; see %s" % self.log)
            if run(build_command(self.build), self.tree, self.log) != 0:
                raise SystemExit("the unmutated copy does not build; see %s" % self.log)
            self.unmutated = service_code(self.build)
        self.ready = True

    def judge(self, mutant):
        if not self.ready:
            self.prepare()
        source = os.path.join(self.tree, mutant[0])
        # The copy is changed only while the lock is held, so that two runs sharing it (a sweep
        # and an agreement check) never build each other's mutants.
        with Lock(self.lock):
            with open(source, encoding="utf-8") as f:
                original = f.read()
            try:
                with open(source, "w", encoding="utf-8") as f:
                    f.write(apply(original, mutant))
                return self.run_suites()
            finally:
                with open(source, "w", encoding="utf-8") as f:
                    f.write(original)

    def run_suites(self):
        # The service first: a mutant that leaves its code as it was needs no test built or run.
        if run(build_command(self.build, ["LumavenService"]), self.tree, self.log) != 0:
            return "stillborn", "", "", "rebuild"
        if service_code(self.build) == self.unmutated:
            return "equivalent", "", "", "rebuild, same code"
        # Each suite is built just before it runs: a mutant the first suite kills (most of them)
        # does not wait for the other suites' programs to compile and link. The service built, so
        # a suite whose program does not build has a test that refuses the mutant at compile
        # time (a size or value the test checks with static_assert): that suite kills it.
        for suite in SUITES:
            if run(build_command(self.build, [suite]), self.tree, self.log) != 0:
                return "killed", suite, "(does not build)", "rebuild"
            report = os.path.join(self.build, "bin", "gtest-reports", suite + ".xml")
            # CTest's own time limit ends the script that starts Wine, not the Wine process, and
            # then waits for it: a mutant that hangs is stopped here, with the prefix's Wine server.
            code = run(["ctest", "--test-dir", self.build, "-R", "^%s$" % suite, "--timeout",
                        str(SUITE_TIMEOUT[suite]), "--output-on-failure"], self.tree, self.log, env=FAIL_FAST,
                       timeout=SUITE_TIMEOUT[suite] + 30)
            if code == TIMED_OUT:
                stop_wine(os.path.join(self.build, "wineprefix"))
                return "killed", suite, "(time limit of %d s)" % SUITE_TIMEOUT[suite], "rebuild"
            if code != 0:
                return "killed", suite, failing_test(report), "rebuild"
        return "survived", "", "", "rebuild"

    def finish(self):
        """The copy rebuilt unmutated, so that its build tree matches its sources again."""
        if self.ready:
            with Lock(self.lock):
                run(build_command(self.build), self.tree, self.log)


RESULT_FIELDS = ["key", "file", "line", "operator", "change", "verdict", "suite", "test", "how", "seconds", "reason"]


def change_text(mutant):
    path, number, column, old, new, kind = mutant
    if kind == "drop-call":
        return "drop call"
    return "'%s' -> '%s'" % (old, new)


class Results:
    """The table of verdicts (CSV, one row per mutant, keyed so that it survives edits elsewhere),
    written row by row so that an interrupted sweep resumes where it stopped."""

    def __init__(self, path):
        self.path = path
        self.rows = {}
        if path and os.path.exists(path):
            with open(path, newline="", encoding="utf-8") as f:
                for row in csv.DictReader(f):
                    self.rows[row["key"]] = row

    def has(self, key, again=()):
        return key in self.rows and self.rows[key]["verdict"] in ("killed", "survived", "equivalent", "stillborn") \
            and self.rows[key]["verdict"] not in again

    def add(self, key, mutant, verdict, suite, test, how, seconds, reason=""):
        row = {"key": key, "file": mutant[0], "line": mutant[1], "operator": mutant[5], "change": change_text(mutant),
               "verdict": verdict, "suite": suite, "test": test, "how": how, "seconds": "%.0f" % seconds,
               "reason": reason}
        self.rows[key] = row
        if not self.path:
            return
        os.makedirs(os.path.dirname(os.path.abspath(self.path)), exist_ok=True)
        fresh = not os.path.exists(self.path)
        with open(self.path, "a", newline="", encoding="utf-8") as f:
            writer = csv.DictWriter(f, fieldnames=RESULT_FIELDS, lineterminator="\n")
            if fresh:
                writer.writeheader()
            writer.writerow(row)

    def reread(self):
        """The rows as the file has them now, where each key's last row is its latest verdict:
        other runs may have appended rows, or judged a mutant again, since this one read the
        table (every verdict of this run is in the file too)."""
        if self.path and os.path.exists(self.path):
            self.rows = Results(self.path).rows

    def rewrite(self, order):
        """The table as this run holds it, sorted in the listing's order (rows of mutants no
        longer listed at the end)."""
        if not self.path or not os.path.exists(self.path):
            return
        rank = {key: i for i, key in enumerate(order)}
        rows = sorted(self.rows.values(), key=lambda r: (rank.get(r["key"], len(rank)), r["key"]))
        with open(self.path, "w", newline="", encoding="utf-8") as f:
            writer = csv.DictWriter(f, fieldnames=RESULT_FIELDS, lineterminator="\n")
            writer.writeheader()
            writer.writerows(rows)


def changed_lines(rev):
    """{path: set of line numbers} of src/ that the commits REV..HEAD added or changed."""
    diff = subprocess.run(["git", "diff", "--unified=0", "--no-color", "%s..HEAD" % rev, "--", "src"], cwd=ROOT,
                          check=True, stdout=subprocess.PIPE, text=True).stdout
    changed = {}
    path = None
    for line in diff.split("\n"):
        if line.startswith("+++ "):
            path = line[6:] if line.startswith("+++ b/") else None
        elif line.startswith("@@") and path:
            m = re.match(r"@@ -\S+ \+(\d+)(?:,(\d+))? @@", line)
            first, count = int(m.group(1)), int(m.group(2) if m.group(2) is not None else 1)
            changed.setdefault(path, set()).update(range(first, first + count))
    return changed


def verdict_line(index, verdict, mutant, suite, test, how, seconds):
    killer = " [%s%s]" % (suite, ": " + test if test else "") if suite else ""
    return "#%d %-10s %s%s (%s, %.0f s)" % (index, verdict.upper(), describe(mutant), killer, how, seconds)


def main():
    parser = argparse.ArgumentParser(description="Mutation check of the service's sources.")
    parser.add_argument("--seed", type=int, default=1, help="order of the mutants (default 1)")
    parser.add_argument("--count", type=int, default=10, help="how many mutants to run (default 10)")
    parser.add_argument("--skip", type=int, default=0, help="skip the first K mutants of the order")
    parser.add_argument("--all", action="store_true", help="every mutant of the list (the whole sweep)")
    parser.add_argument("--files", default="", help="regular expression on the path, e.g. 'src/oled/'")
    parser.add_argument("--changed-since", metavar="REV",
                        help="only the mutants on lines of src/ that REV..HEAD added or changed")
    parser.add_argument("--list", action="store_true", help="only list the chosen mutants")
    parser.add_argument("--stats", action="store_true", help="only count the mutants per operator")
    parser.add_argument("--plain", action="store_true",
                        help="judge by rebuilding each mutant (the reference path) instead of the switched build")
    parser.add_argument("--no-confirm", action="store_true",
                        help="switched build: do not run the whole suites on a mutant the tests reaching it let live")
    parser.add_argument("--results", default="",
                        help="table of verdicts to append to and resume from (CSV), e.g. docs/mutation/results.csv")
    parser.add_argument("--defer-rebuilds", action="store_true",
                        help="switched build: leave the mutants that need a rebuild of their own to a later run")
    parser.add_argument("--again", default="", metavar="VERDICTS",
                        help="judge again the table's mutants with these verdicts, e.g. 'survived,stillborn' "
                             "(after the tests changed)")
    parser.add_argument("--agreement", metavar="CSV",
                        help="judge the chosen mutants both ways and write the comparison to CSV")
    parser.add_argument("--switchable", action="store_true",
                        help="only the mutants the generator switches at run time "
                             "(for a sample of the agreement check)")
    parser.add_argument("--reference", default="",
                        help="with --agreement: a table of verdicts of the rebuild path (from --plain --results) "
                             "to take instead of rebuilding the mutants it has")
    parser.add_argument("--work", default=os.path.join(ROOT, "build", "mutate"),
                        help="private copies, build trees and logs (default build/mutate)")
    parser.add_argument("--lock", default=os.environ.get("LUMAVEN_MUTATE_LOCK", ""),
                        help="a file to flock around each build and each mutant's suites")
    parser.add_argument("--shard", default="0/1", metavar="K/N",
                        help="judge every Nth chosen mutant from the Kth (K from 0): N runs with K = 0..N-1 share "
                             "the work, each in a Wine prefix of its own and under LOCK.K (K > 0), e.g. two on a "
                             "2-core machine; start the others once the first has built")
    parser.add_argument("--summary", action="store_true",
                        help="only print the figures of the results table (after applying the equivalence list to its survivors)")
    parser.add_argument("--self-test", action="store_true", help="check the generator on a small sample")
    args = parser.parse_args()
    if args.self_test:
        return self_test()
    if args.summary:
        results = Results(args.results or os.path.join(ROOT, "docs", "mutation", "results.csv"))
        listing = all_mutants()
        lines_of = SourceLines()
        apply_equivalents(results, listing, dict(zip(listing, keys_of(listing, lines_of))), lines_of)
        return summarize(results)

    lines_of = SourceLines()
    listing = all_mutants(args.files)
    keys = dict(zip(listing, keys_of(listing, lines_of)))
    everything = ordered_mutants(args.seed, args.files)
    if args.changed_since:
        changed = changed_lines(args.changed_since)
        everything = [m for m in everything if m[1] in changed.get(m[0], ())]
    if args.switchable:
        import mutate_schema
        switchable = mutate_schema.switchable(listing, mask)
        everything = [m for m in everything if m in switchable]
    if args.stats:
        counts = {}
        for mutant in everything:
            counts[mutant[5]] = counts.get(mutant[5], 0) + 1
        for kind in KINDS:
            print("%-15s %5d" % (kind, counts.get(kind, 0)))
        print("%-15s %5d" % ("total", len(everything)))
        return 0
    chosen = everything[args.skip:] if args.all or args.changed_since else everything[args.skip:args.skip + args.count]
    if args.agreement and args.reference:
        # The sample is the reference table's: the mutants it judged that are still listed.
        judged = Results(args.reference).rows
        chosen = [m for m in listing if keys[m] in judged]
    shard, shards = (int(part) for part in args.shard.split("/"))
    chosen = chosen[shard::shards]
    run_lock = args.lock if shard == 0 or not args.lock else "%s.%d" % (args.lock, shard)
    results = Results(args.results)
    again = tuple(args.again.split(",")) if args.again else ()
    pending = [m for m in chosen if not results.has(keys[m], again)]
    print("mutants: %d listed (seed %d); %d chosen from #%d, %d of them already judged in %s" %
          (len(everything), args.seed, len(chosen), args.skip + 1, len(chosen) - len(pending),
           args.results or "no table"))
    if args.list:
        for index, mutant in enumerate(chosen, args.skip + 1):
            print("#%d %s  {%s}" % (index, describe(mutant), keys[mutant]))
        return 0

    work = os.path.abspath(args.work)
    # A worker after the first rebuilds its mutants in a tree of its own, under its own lock:
    # one builds while the other runs its suites.
    plain = PlainEngine(work if shard == 0 else os.path.join(work, "plain-%d" % shard), run_lock)
    fast = None
    if not args.plain or args.agreement:
        import mutate_schema
        fast = mutate_schema.FastEngine(os.path.join(work, "fast"), args.lock, listing, keys,
                                        confirm=not args.no_confirm, worker=shard, run_lock=run_lock)
        fast.killers = results.rows  # the table's verdicts, growing as the run goes
        fast.prepare()
    equivalents = load_equivalents()
    reference = Results(args.reference)
    agreement = read_agreement(args.agreement, keys) if args.agreement else []
    compared = set(row[0] for row in agreement)
    tally = {}
    survivors = []
    started_all = time.time()
    # The switched path's mutants take seconds each: one hold of the lock serves a batch of them
    # (about two minutes, like one suite run), then the others get their turn.
    batch = Lock(run_lock if fast is not None else "")
    batch.__enter__()
    for index, mutant in enumerate(chosen, args.skip + 1):
        batch.share(120)
        key = keys[mutant]
        if mutant not in pending and not args.agreement:
            continue
        started = time.time() - Lock.waited
        if args.agreement and key in compared:
            continue  # judged both ways by an earlier run of the check
        if args.agreement:
            if reference.has(key):
                row = reference.rows[key]
                verdict, suite, test, plain_seconds = row["verdict"], row["suite"], row["test"], float(row["seconds"])
            else:
                verdict, suite, test, how = plain.judge(mutant)
                plain_seconds = time.time() - started - Lock.waited
            if not fast.is_switched(mutant):
                print("#%d not switched (rebuilt either way): %s" % (index, describe(mutant)), flush=True)
                continue
            started = time.time() - Lock.waited
            other = fast.judge(mutant, plain)
            agreement.append((key, mutant, (verdict, suite, test, plain_seconds),
                              other + (time.time() - started - Lock.waited,)))
            write_agreement(args.agreement, agreement)
            print("#%d plain %s / fast %s (%s): %s" % (index, verdict, other[0], other[3], describe(mutant)),
                  flush=True)
            continue
        if fast is not None and args.defer_rebuilds and not fast.is_switched(mutant):
            continue
        if fast is not None:
            verdict, suite, test, how = fast.judge(mutant, plain)
        else:
            verdict, suite, test, how = plain.judge(mutant)
        seconds = time.time() - started - Lock.waited  # the work, not the queueing for the lock
        reason = SAME_CODE if verdict == "equivalent" else ""
        if verdict == "survived":
            reason = equivalents.get(equivalence_key(mutant, lines_of(mutant[0]))) or ""
            if reason:
                verdict = "equivalent"
        folder = folder_of(mutant[0])
        tally.setdefault(folder, {}).setdefault(verdict, 0)
        tally[folder][verdict] += 1
        print(verdict_line(index, verdict, mutant, suite, test, how, seconds), flush=True)
        results.add(key, mutant, verdict, suite, test, how, seconds, reason)
        if verdict == "survived":
            survivors.append(describe(mutant))
    batch.__exit__()
    plain.finish()
    if args.agreement:
        same = sum(1 for _, _, a, b in agreement if same_verdict(a[0], b[0]))
        print("agreement: %d of %d verdicts identical; written to %s" % (same, len(agreement), args.agreement))
        return 0 if same == len(agreement) else 1
    if args.results:
        apply_equivalents(results, listing, keys, lines_of)
    print_figures(tally, len(pending), survivors)
    print("time: %.0f s for %d mutants" % (time.time() - started_all, len(pending)))
    return 0


def read_agreement(path, keys):
    """The rows of an earlier run of the agreement check whose mutants are still listed."""
    rows = []
    if not os.path.exists(path):
        return rows
    by_key = {key: mutant for mutant, key in keys.items()}
    with open(path, newline="", encoding="utf-8") as f:
        for row in csv.DictReader(f):
            if row["key"] in by_key:
                rows.append((row["key"], by_key[row["key"]],
                             (row["plain verdict"], row["plain suite"], row["plain test"], float(row["plain seconds"])),
                             (row["fast verdict"], row["fast suite"], row["fast test"], row["fast how"],
                              float(row["fast seconds"]))))
    return rows


def same_verdict(a, b):
    """Whether two verdicts agree; an equivalent mutant is a survivor the list explains."""
    lived = ("survived", "equivalent")
    return a == b or (a in lived and b in lived)


def write_agreement(path, rows):
    os.makedirs(os.path.dirname(os.path.abspath(path)), exist_ok=True)
    with open(path, "w", newline="", encoding="utf-8") as f:
        writer = csv.writer(f, lineterminator="\n")
        writer.writerow(["key", "file", "line", "operator", "change", "plain verdict", "plain suite", "plain test",
                         "plain seconds", "fast verdict", "fast suite", "fast test", "fast how", "fast seconds",
                         "same"])
        for key, mutant, a, b in rows:
            writer.writerow([key, mutant[0], mutant[1], mutant[5], change_text(mutant), a[0], a[1], a[2],
                             "%.0f" % a[3], b[0], b[1], b[2], b[3], "%.0f" % b[4],
                             "yes" if same_verdict(a[0], b[0]) else "NO"])


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


def apply_equivalents(results, listing, keys, lines_of):
    """Rewrites the table as the file has it now; a survivor argued equivalent after it was
    judged takes that verdict and its reason."""
    results.reread()
    equivalents = load_equivalents()
    for mutant in listing:
        row = results.rows.get(keys[mutant])
        reason = equivalents.get(equivalence_key(mutant, lines_of(mutant[0])))
        if row is not None and row["verdict"] == "survived" and reason:
            row.update(verdict="equivalent", reason=reason)
    results.rewrite([keys[m] for m in listing])


def summarize(results):
    """The figures over every mutant of the table, and how much of the current list it covers."""
    listing = all_mutants()
    keys = set(keys_of(listing, SourceLines()))
    tally = {}
    survivors = []
    covered = 0
    for key, row in sorted(results.rows.items()):
        if key not in keys:
            continue
        covered += 1
        folder = folder_of(row["file"])
        tally.setdefault(folder, {}).setdefault(row["verdict"], 0)
        tally[folder][row["verdict"]] += 1
        if row["verdict"] == "survived":
            survivors.append("%s:%s %s %s" % (row["file"], row["line"], row["operator"], row["change"]))
    print_figures(tally, covered, survivors)
    print("the table judges %d of the %d mutants listed now" % (covered, len(listing)))
    return 0


def self_test():
    """The generator on a small sample: each operator found where it should be, nowhere else."""
    sample = [
        "int f(int a, int b)",
        "{",
        "    if (!ready && a < b) {",
        "        Log(L\"a < b && !x\");  // a == b",
        "    }",
        "    for (int i = 0; i < count; ++i) {",
        "        total += a * b - (c >> 2) | d;",
        "    }",
        "#if defined(__GNUC__)",
        "    total -= 2;",
        "#else",
        "    total -= 3;",  # the other compiler's side: no mutants
        "#endif",
        "    return a + 1;",
        "}",
        "    virtual int Size() = 0;",
        "    return true;",
    ]
    found = mutants_of_lines("src/sample.cpp", sample)
    counts = {}
    for mutant in found:
        counts[mutant[5]] = counts.get(mutant[5], 0) + 1
    expected = {"comparison": 2, "logical": 1, "arithmetic": 5, "bitwise": 1, "shift": 1, "boolean": 1,
                "constant": 4, "negation": 1, "return-default": 1, "loop-bound": 1, "drop-call": 1}
    problems = []
    if counts != expected:
        problems.append("operators: found %s, expected %s" % (counts, expected))
    keys = keys_of(found, lambda path: sample)
    if len(set(keys)) != len(keys):
        problems.append("keys are not unique")
    moved = ["// a new first line"] + sample
    if keys_of(mutants_of_lines("src/sample.cpp", moved), lambda path: moved) != keys:
        problems.append("keys change when a line is added above")
    import mutate_schema
    switched_lines, switched = mutate_schema.schema_of(sample, list(enumerate(found, 1)), mask)
    if len(switched) != len(found) - 1:  # the last line is outside a function: not switched
        problems.append("switched %d of %d mutants" % (len(switched), len(found)))
    for problem in problems:
        print("self-test: FAILED: %s" % problem)
    if not problems:
        print("self-test: %d mutants of %d operators found and keyed; %d switched" %
              (len(found), len(counts), len(switched)))
    return 1 if problems else 0


if __name__ == "__main__":
    # One module under both names, so that scripts/mutate_schema.py shares its state (the time
    # queued for the lock).
    sys.modules.setdefault("mutate", sys.modules["__main__"])
    sys.exit(main())
