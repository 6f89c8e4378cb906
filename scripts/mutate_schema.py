"""Mutant schemata for scripts/mutate.py: every mutant of a source file compiled into one copy of
the file, each switched on at run time by its number.

A mutated expression E with mutant M becomes `(lumaven_mutant_active(ID) ? (M) : (E))`; a dropped
call `f(x);` becomes `{ if (!lumaven_mutant_active(ID)) { f(x); } }` and a returned value
`return v;` becomes `{ if (lumaven_mutant_active(ID)) { return {}; } return v; }`. Mutants on one
line nest: the original branch of the outer one carries the inner ones switched, the mutated
branch is the plain mutant. Every line keeps its number, so the compiler's messages point at the
line of the mutant. The switch reads the variable LUMAVEN_MUTANT once per module; with
LUMAVEN_MUTANT_TRACE set to a folder, every module also writes the numbers of the switches it
reaches (one file per process and module), which gives the per-test map of what each test runs.

These copies live only in the mutation build's private tree (build/mutate-fast/); the service's
own sources never carry a switch.
"""
import functools
import hashlib
import json
import os
import re
import shutil
import subprocess
import time
from xml.etree import ElementTree

SWITCH = "lumaven_mutant_active"

# The header forced into every C++ file of the mutation build (-include). Its text does not
# depend on the mutants, so a new listing only rebuilds the files whose schemata changed.
HEADER = r"""// Written by scripts/mutate.py for the mutation build only; never part of the service.
#pragma once
#ifdef __cplusplus
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <process.h>

namespace lumaven_mutation {
inline unsigned long Active()
{
    static const unsigned long id = [] {
        const char* value = std::getenv("LUMAVEN_MUTANT");
        return value != nullptr ? std::strtoul(value, nullptr, 10) : 0ul;
    }();
    return id;
}

inline void Reached(unsigned long id)
{
    static const char* const folder = std::getenv("LUMAVEN_MUTANT_TRACE");
    if (folder == nullptr || id >= 65536) {
        return;
    }
    static std::atomic<unsigned char> seen[65536];
    if (seen[id].exchange(1) != 0) {
        return;
    }
    static std::FILE* const out = [] {
        char path[1024];
        std::snprintf(path, sizeof path, "%s/%d-%p.txt", folder, _getpid(), static_cast<void*>(seen));
        return std::fopen(path, "a");
    }();
    if (out != nullptr) {
        std::fprintf(out, "%lu\n", id);
        std::fflush(out);
    }
}
}  // namespace lumaven_mutation

inline bool lumaven_mutant_active(unsigned long id)
{
    lumaven_mutation::Reached(id);
    return lumaven_mutation::Active() == id;
}

// A switched constant inside braces: converted to whatever the element is, so that a literal
// that fits its element does not become a narrowing conversion by being switched.
template <class V>
struct lumaven_mutant_value {
    unsigned long id;
    V original;
    V mutated;
    template <class T>
    operator T() const
    {
        return static_cast<T>(lumaven_mutant_active(id) ? mutated : original);
    }
};
#endif
"""

# Binary operators as the layout writes them (a space on each side), with their precedence
# (higher binds tighter) and whether they group to the right.
BINARY = re.compile(r"(?<= )(<<=|>>=|<=>|==|!=|<=|>=|&&|\|\||<<|>>|\+=|-=|\*=|/=|%=|&=|\|=|\^=|[-+*/%<>&|^=?:])(?= |$)")
PRECEDENCE = {"*": 13, "/": 13, "%": 13, "+": 12, "-": 12, "<<": 11, ">>": 11, "<=>": 10, "<": 9, "<=": 9,
              ">": 9, ">=": 9, "==": 8, "!=": 8, "&": 7, "^": 6, "|": 5, "&&": 4, "||": 3}
LEADING_KEYWORD = re.compile(r"^(?:return|case|throw|else|co_return|co_yield)\b\s*")
SCOPE_OPENER = re.compile(r"^\s*(?:(?:template\s*<.*>\s*)?(?:namespace|struct|class|enum|union)\b|extern \")")


def precedence(op):
    return PRECEDENCE.get(op, 2)  # assignments and the conditional operator


def operators(masked):
    return [(m.start(), m.end(), m.group(1)) for m in BINARY.finditer(masked)]


def binary_span(masked, previous, column, op):
    """The columns [start, end) of the whole expression `L op R` of the operator at column, or None
    when an operand runs onto another line or cannot be told apart on this one."""
    ops = operators(masked)
    prec = precedence(op)
    right_assoc = prec == 2
    by_end = {end: (start, tok) for start, end, tok in ops}
    by_start = {start: (end, tok) for start, end, tok in ops}
    # Left operand: back to an opening bracket, a separator or an operator binding less tightly.
    depth = 0
    pos = column - 1
    start = None
    while pos >= 0:
        c = masked[pos]
        if c in ")]}":
            depth += 1
        elif c in "([{":
            if depth == 0:
                start = pos + 1
                break
            depth -= 1
        elif depth == 0:
            if c in ";,":
                start = pos + 1
                break
            hit = by_end.get(pos + 1)
            if hit and hit[0] < column:
                other = precedence(hit[1])
                if other < prec or (right_assoc and other <= prec):
                    start = pos + 1
                    break
                pos = hit[0] - 1
                continue
        pos -= 1
    if start is None:
        if depth != 0:
            return None
        # The line starts the operand: safe only when the line before ends a statement, opens a
        # bracket or a list, or ends with an operator binding less tightly.
        tail = previous.rstrip()
        if not tail or tail[-1] in "{;}(,":
            start = 0
        else:
            last = re.search(r"(\S+)$", tail).group(1)
            if last in PRECEDENCE and precedence(last) < prec or last in ("=", "?", ":", "return"):
                start = 0
            else:
                return None
    # Right operand: on to a closing bracket, a separator or an operator binding as or less tightly.
    depth = 0
    pos = column + len(op)
    end = None
    while pos < len(masked):
        c = masked[pos]
        if c in "([{":
            depth += 1
        elif c in ")]}":
            if depth == 0:
                end = pos
                break
            depth -= 1
        elif depth == 0:
            if c in ";,":
                end = pos
                break
            hit = by_start.get(pos)
            if hit and pos > column:
                other = precedence(hit[1])
                if other < prec or (not right_assoc and other <= prec):
                    end = pos
                    break
                pos = hit[0]
                continue
        pos += 1
    if end is None:
        return None
    while start < column and masked[start] == " ":
        start += 1
    keyword = LEADING_KEYWORD.match(masked[start:column])
    if keyword:
        start += keyword.end()
    while end > column and masked[end - 1] == " ":
        end -= 1
    if start >= column or end <= column + len(op):
        return None
    return start, end


def literal_value(text):
    digits = text.rstrip("uUlL")
    return int(digits, 16) if digits[:2].lower() == "0x" else int(digits)


def in_braces(masked, column):
    """Whether the nearest bracket left open before column on the line is a brace."""
    depth = 0
    for pos in range(column - 1, -1, -1):
        c = masked[pos]
        if c in ")]}":
            depth += 1
        elif c in "([{":
            if depth == 0:
                return c == "{"
            depth -= 1
    return False


def closing(masked, pos):
    """The column after the bracket that closes the one at pos."""
    depth = 0
    for i in range(pos, len(masked)):
        if masked[i] in "([{":
            depth += 1
        elif masked[i] in ")]}":
            depth -= 1
            if depth == 0:
                return i + 1
    return None


def unary_operand_end(masked, pos):
    """The column after the operand of a prefix operator whose operand starts at pos."""
    while pos < len(masked) and masked[pos] in "!*&~":
        pos += 1
    if pos >= len(masked):
        return None
    if masked[pos] == "(":
        end = closing(masked, pos)
    else:
        m = re.match(r"(?:::)?[A-Za-z_]\w*(?:::[A-Za-z_]\w*)*", masked[pos:])
        if not m:
            return None
        end = pos + m.end()
    while end is not None and end < len(masked):
        rest = masked[end:]
        if rest[0] in "([":
            end = closing(masked, end)
        elif rest.startswith("->") or rest[0] == ".":
            m = re.match(r"(?:->|\.)[A-Za-z_]\w*", rest)
            if not m:
                return None
            end += m.end()
        elif rest.startswith("::"):
            m = re.match(r"::[A-Za-z_]\w*", rest)
            if not m:
                return None
            end += m.end()
        elif rest[0] == "<" and re.match(r"<[\w:, *&]*>(?=\(|::)", rest):
            end += re.match(r"<[\w:, *&]*>", rest).end()
        else:
            break
    return end


def code_columns(masked_lines):
    """Per line, the columns from which the text is inside a function body (run-time code). A switch
    outside one (a namespace-scope or class-scope initializer, a default argument) would make a
    constant initialization dynamic or not compile."""
    stack = []
    result = []
    for masked in masked_lines:
        inside = [(0, "code" in stack)]  # (column, in code) from that column on
        for pos, c in enumerate(masked):
            if c == "{":
                before = masked[:pos].strip()
                if "code" in stack:
                    kind = "code"
                elif SCOPE_OPENER.match(masked):
                    kind = "scope"
                elif masked.strip() == "{":
                    kind = "code"  # a function's brace, on its own line in this layout
                elif re.search(r"\)\s*(?:const\s*)?(?:noexcept\s*)?(?:override\s*)?(?:final\s*)?$", before) \
                        and "=" not in before.split("(")[0]:
                    kind = "code"  # a short function defined on one line
                else:
                    kind = "init"  # an initializer or a lambda outside a function: not switched
                stack.append(kind)
                inside.append((pos + 1, "code" in stack))
            elif c == "}":
                if stack:
                    stack.pop()
                inside.append((pos, "code" in stack))
        result.append(inside)
    return result


def in_code(columns, column):
    state = False
    for start, flag in columns:
        if start <= column:
            state = flag
    return state


class Site:
    """One switched mutant: the columns it replaces on its line and how it renders."""

    def __init__(self, ident, mutant, start, end, form, declared=None):
        self.ident = ident
        self.mutant = mutant
        self.start = start
        self.end = end
        self.form = form  # "expression", "drop" or "return"
        self.declared = declared  # the name a run-time constant declares (see constant_site)
        self.children = []


# `constexpr` or `const` on a declaration's line: a constant, which a use may need at compile time.
CONSTANT = re.compile(r"\b(?:constexpr|const)\b")
# A variable outside any function initialized by one literal: `[inline] [constexpr] TYPE NAME = LITERAL;`
# (a named constant at namespace scope, or a member's default value in a class).
DECLARATION = re.compile(r"^\s*(?:inline\s+)?(?:constexpr\s+)?(?:const\s+)?(?!using\b|return\b|static\b|extern\b|enum\b)"
                         r"[A-Za-z_][\w:]*(?:<[\w:, ]*>)?\s+(?P<name>[A-Za-z_]\w*)\s*=\s*(?P<init>-?\s*\w+)\s*;\s*$")


def constant_site(ident, mutant, masked, runtime_names, constant_members=False):
    """A literal outside a function that can still be switched at run time: the initializer of a
    named constant that every use reads at run time (its `constexpr` becomes `const`, so that it
    is initialized when the module loads), or a class member's default value (evaluated by each
    constructor). A constant some use needs at compile time (a case label, an array bound, a
    static_assert, another constant's initializer) is rebuilt instead."""
    path, number, column, old, new, kind = mutant
    m = DECLARATION.match(masked)
    if not m or not m.start("init") <= column < m.end("init"):
        return None
    name = m.group("name")
    if CONSTANT.search(masked) and name not in runtime_names:
        return None  # a constant, which a use may need at compile time
    if constant_members:
        return None  # a member of a class with a constexpr constructor: its defaults must stay constant
    return Site(ident, mutant, column, column + len(old), "expression", declared=name)


CONSTEXPR_FUNCTION = re.compile(r"^\s*(?:(?:static|inline)\s+)*(?:constexpr|consteval)\s+[^=;{(]*?(\w+)\s*\([^=;{]*\)\s*"
                                r"(?:const\s*)?(?:noexcept\s*)?$")


def constexpr_function_lines(masked_lines):
    """The numbers of the lines inside the bodies of the constexpr functions that a static_assert of
    the same file calls. Such a function runs in the compiler, where a switch read at run time
    changes nothing: a mutant there is rebuilt, so that the check it breaks shows as in a build."""
    lines = set()
    asserted = " ".join(line for line in masked_lines if "static_assert" in line)
    number = 0
    while number < len(masked_lines):
        header = CONSTEXPR_FUNCTION.match(masked_lines[number])
        if header and re.search(r"\b%s\s*\(" % header.group(1), asserted):
            depth = 0
            opened = False
            for body in range(number + 1, len(masked_lines)):
                depth += masked_lines[body].count("{") - masked_lines[body].count("}")
                opened = opened or "{" in masked_lines[body]
                lines.add(body + 1)
                if opened and depth <= 0:
                    number = body
                    break
        number += 1
    return lines


CONSTEXPR_CONSTRUCTOR = re.compile(r"^\s*(?:explicit\s+)?constexpr\s+(?:explicit\s+)?([A-Za-z_]\w*)\s*\(")
# Where a constant's value is needed at compile time: a use on such a line keeps it a constant.
COMPILE_TIME = re.compile(r"\b(?:case|static_assert|constexpr|constinit|consteval|alignas|template|sizeof)\b")
# The folders whose code reads the service's headers (the simulated drivers declare their own).
READERS = ("src", "tests", "bench", "host")


@functools.lru_cache(maxsize=None)
def runtime_constants(root, mask):
    """The names of the constants declared in src/ (`[inline] constexpr` or `const`, initialized by
    one literal) that the service's code reads and that every use, in the service and in the code
    that includes its headers, reads at run time: inside a function, on a line that is no case
    label, array bound, template argument or constant expression of its own. A use the scan does
    not see as such (a constant expression running over several lines) makes the compiler refuse
    the switch, and the refusal names the constant (FastEngine.refusals). The tree is read once
    per run: every build attempt asks again."""
    texts = {}
    for folder in READERS:
        for base, _, files in os.walk(os.path.join(root, folder)):
            for name in sorted(files):
                if name.endswith((".h", ".cpp")):
                    path = os.path.join(base, name)
                    with open(path, encoding="utf-8", errors="replace") as f:
                        texts[os.path.relpath(path, root)] = f.read().split("\n")
    declared = {}
    for path, lines in texts.items():
        if not path.startswith("src" + os.sep):
            continue
        for number, line in enumerate(lines, 1):
            masked = mask(line)
            m = DECLARATION.match(masked)
            if m and CONSTANT.search(masked) and not re.search(r"\bstatic\b", masked):
                declared.setdefault(m.group("name"), set()).add((path, number))
    if not declared:
        return frozenset()
    word = re.compile(r"\b(%s)\b" % "|".join(sorted(declared, key=len, reverse=True)))
    compile_time = set()
    used = set()  # read by the service's own code: one that only tests read leaves the DLL as it was
    for path, lines in texts.items():
        masked_lines = [mask(line) for line in lines]
        columns = code_columns(masked_lines)
        for number, masked in enumerate(masked_lines, 1):
            for m in word.finditer(masked):
                name = m.group(1)
                if (path, number) in declared[name]:
                    continue
                bracketed = re.search(r"\[[^\[\]]*\b%s\b[^\[\]]*\]|<[^<>;()]*\b%s\b[^<>;()]*>" % (name, name), masked)
                if not in_code(columns[number - 1], m.start()) or COMPILE_TIME.search(masked) or bracketed:
                    compile_time.add(name)
                elif path.startswith("src" + os.sep):
                    used.add(name)
    return frozenset(name for name, places in declared.items()
                     if name in used and name not in compile_time and len(places) == 1)


def site_of(ident, mutant, line, masked, previous, columns, runtime_names=frozenset(), constant_members=False):
    """The switched form of one mutant, or None when it cannot be switched at run time."""
    path, number, column, old, new, kind = mutant
    if not in_code(columns, column):
        return constant_site(ident, mutant, masked, runtime_names, constant_members) \
            if kind in ("constant", "boolean") else None
    if re.search(r"\bconstexpr\b|\bstatic_assert\b|\btemplate\b", masked) and "if constexpr" not in masked:
        return None
    if kind in ("comparison", "logical", "arithmetic", "bitwise", "shift"):
        span = binary_span(masked, previous, column, old)
        return Site(ident, mutant, span[0], span[1], "expression") if span else None
    if kind in ("constant", "boolean"):
        label = re.match(r"^\s*case\b[^:]*:", masked)
        if label and column < label.end():
            return None
        if kind == "constant" and in_braces(masked, column):
            # Inside braces a literal that no longer fits its element does not build (narrowing),
            # while the switched one would: one that crosses a width is rebuilt instead.
            if any(literal_value(old) < limit <= literal_value(new) for limit in (0x80, 0x100, 0x8000, 0x10000,
                                                                                 0x80000000, 0x100000000)):
                return None
            return Site(ident, mutant, column, column + len(old), "value")
        return Site(ident, mutant, column, column + len(old), "expression")
    if kind == "negation":
        end = unary_operand_end(masked, column + 1)
        if not end:
            return None
        before, after = masked[:column].rstrip(), masked[end:].lstrip()
        # As a condition, the operand itself and its value as bool are the same; written so, a
        # smart pointer's '!' switches too (both branches bool).
        condition = re.search(r"(?:\b(?:if|while) \(|&&|\|\||\bif \(\()$", before) \
            and re.match(r"(?:\)|&&|\|\|)", after)
        return Site(ident, mutant, column, end, "condition" if condition else "expression")
    if kind == "loop-bound":
        return Site(ident, mutant, column, column + len(old), "expression")
    if kind == "return-default":
        start = masked.rfind("return ", 0, column)
        end = masked.find(";", column + len(old))
        if start < 0 or end < 0:
            return None
        return Site(ident, mutant, start, end + 1, "return")
    if kind == "drop-call":
        return Site(ident, mutant, column, len(masked.rstrip()), "drop")
    return None


def render(line, sites, start, end):
    """The text of line[start:end] with the sites inside it switched."""
    out = []
    pos = start
    for site in sites:
        out.append(line[pos:site.start])
        out.append(render_site(line, site))
        pos = site.end
    out.append(line[pos:end])
    return "".join(out)


def render_site(line, site):
    original = render(line, site.children, site.start, site.end)
    path, number, column, old, new, kind = site.mutant
    test = "%s(%d)" % (SWITCH, site.ident)
    if site.form == "drop":
        return "{ if (!%s) { %s } }" % (test, original)
    if site.form == "return":
        return "{ if (%s) { return {}; } %s }" % (test, original)
    if site.form == "value":
        return "lumaven_mutant_value<decltype(%s)>{%d, %s, %s}" % (old, site.ident, old, new)
    text = line[site.start:site.end]
    offset = column - site.start
    mutated = text[:offset] + new + text[offset + len(old):]
    if site.form == "condition":
        mutated = "static_cast<bool>(%s)" % mutated
    return "(%s ? (%s) : (%s))" % (test, mutated, original)


def nest(sites):
    """Sites of one line as a forest by their columns; a site that overlaps another without
    containing it or being contained is left out (returned apart)."""
    ordered = sorted(sites, key=lambda s: (s.start, -s.end, s.ident))
    roots = []
    stack = []
    dropped = []
    for site in ordered:
        while stack and stack[-1].end <= site.start:
            stack.pop()
        if stack and site.end > stack[-1].end:
            dropped.append(site)
            continue
        (stack[-1].children if stack else roots).append(site)
        stack.append(site)
    return roots, dropped


def bracket_balance(masked):
    return tuple(masked.count(o) - masked.count(c) for o, c in ("()", "[]", "{}"))


def rendered_spans(rendered, ids):
    """{id: (start, end)} of each switch in a rendered line (columns from 0)."""
    masked = rendered
    spans = {}
    for ident in ids:
        m = re.search(r"\((?=%s\(%d\) \?)|\{ if \(!?%s\(%d\)\)|lumaven_mutant_value<decltype\([^)]*\)>(?=\{%d,)"
                      % (SWITCH, ident, SWITCH, ident, ident), masked)
        if not m:
            continue
        opener = m.start() if masked[m.start()] in "({" else m.end()
        end = closing(masked, opener)
        if end:
            spans[ident] = (m.start(), end)
    return spans


def schema_of(lines, mutants_with_ids, mask, excluded=(), spans=None, runtime_names=frozenset(), names=None):
    """The file's lines with its mutants switched, and the set of mutant ids switched.

    mutants_with_ids: [(id, mutant)] of this file; excluded: ids never to switch (the ones a
    build of the schemata refused); runtime_names: the named constants only read at run time
    (runtime_constants); names, when given, gets {id: name} of each switched constant."""
    masked_lines = [mask(line) for line in lines]
    columns = code_columns(masked_lines)
    # A file that declares a constexpr constructor has objects made at compile time (constinit
    # globals), whose members' default values must stay constants.
    constant_members = any(CONSTEXPR_CONSTRUCTOR.match(line) for line in masked_lines)
    compile_time = constexpr_function_lines(masked_lines)
    by_line = {}
    for ident, mutant in mutants_with_ids:
        if ident in excluded or mutant[1] in compile_time:
            continue
        number = mutant[1]
        previous = ""  # the last code line before it: a directive between says nothing of where it starts
        for back in range(number - 2, -1, -1):
            if masked_lines[back].strip() and not masked_lines[back].lstrip().startswith("#"):
                previous = masked_lines[back]
                break
        site = site_of(ident, mutant, lines[number - 1], masked_lines[number - 1], previous, columns[number - 1],
                       runtime_names, constant_members)
        if site is not None:
            by_line.setdefault(number, []).append(site)
    switched = set()
    out = list(lines)
    for number, sites in by_line.items():
        roots, dropped = nest(sites)
        kept = set(s.ident for s in sites) - set(s.ident for s in dropped)
        line = lines[number - 1]
        rendered = render(line, roots, 0, len(line))
        if any(site.declared for site in sites):
            rendered = re.sub(r"\bconstexpr\b", "const", rendered, count=1)
        if bracket_balance(mask(rendered)) != bracket_balance(masked_lines[number - 1]):
            continue  # a switch that would break the line's brackets: its mutants are rebuilt instead
        if names is not None:
            names.update((site.ident, site.declared) for site in sites if site.declared and site.ident in kept)
        out[number - 1] = rendered
        switched |= kept
        if spans is not None:
            spans[number] = rendered_spans(mask(rendered), kept)
    return out, switched


class FastEngine:
    """The switched build: one private copy of the tree whose src/ files are their schemata, built
    once; a mutant is run by naming it in LUMAVEN_MUTANT, first with only the tests that reach it
    (from the per-test map), then, if it lives, with the whole suites that reach it. A mutant
    that cannot be switched (or that the schemata build refused) goes to the rebuild path."""

    def __init__(self, work, lock, listing, keys, confirm=True, worker=0, run_lock=None):
        import mutate as base
        self.base = base
        self.work = os.path.abspath(work)
        self.lock = lock  # the build and the map
        # Several workers share the build, each running its mutants in a Wine prefix of its own
        # (the simulated drivers keep their state there) under a lock of its own.
        self.worker = worker
        self.run_lock = run_lock if run_lock is not None else lock
        self.killers = {}  # key -> row of the results table, for first_tries
        self.listing = listing
        self.keys = keys
        self.confirm = confirm
        self.ids = {mutant: ident for ident, mutant in enumerate(listing, 1)}
        self.by_id = {ident: mutant for mutant, ident in self.ids.items()}
        self.switched = set()
        self.spans = {}
        self.names = {}  # id -> the name of a switched run-time constant

    # -- the build ------------------------------------------------------------------------
    def refused_path(self):
        return os.path.join(self.work, "refused.txt")

    def load_refused(self):
        refused = set()
        if os.path.exists(self.refused_path()):
            with open(self.refused_path(), encoding="utf-8") as f:
                refused = set(line.strip() for line in f if line.strip())
        return refused

    def schemata(self, refused):
        """{path: text} of every file with switched mutants, and the ids switched."""
        by_file = {}
        for mutant in self.listing:
            by_file.setdefault(mutant[0], []).append((self.ids[mutant], mutant))
        texts = {}
        switched = set()
        runtime_names = runtime_constants(self.base.ROOT, self.base.mask)
        self.names = {}
        for path, items in sorted(by_file.items()):
            with open(os.path.join(self.base.ROOT, path), encoding="utf-8") as f:
                lines = f.read().split("\n")
            excluded = set(ident for ident, mutant in items if self.keys[mutant] in refused)
            spans = {}
            out, ids = schema_of(lines, items, self.base.mask, excluded, spans, runtime_names, self.names)
            for number, by_id in spans.items():
                self.spans[(path, number)] = by_id
            if ids:
                texts[path] = "\n".join(out)
                switched |= ids
        return texts, switched

    def prepare(self):
        base = self.base
        os.makedirs(self.work, exist_ok=True)
        self.log = os.path.join(self.work, "mutate.log" if not self.worker else "mutate-%d.log" % self.worker)
        header = os.path.join(self.work, "lumaven_mutant.h")
        if not os.path.exists(header) or open(header).read() != HEADER:
            with open(header, "w") as f:
                f.write(HEADER)
        for attempt in range(12):
            refused = self.load_refused()
            texts, self.switched = self.schemata(refused)
            self.tree = base.prepare_copy(self.work, self.log, texts)
            self.build = os.path.join(self.tree, "build")
            if not os.path.exists(os.path.join(self.build, "build.ninja")):
                flags = "-include %s -Werror=vla" % header
                if base.run(["cmake", "--preset", "mingw", "-DCMAKE_CXX_FLAGS=%s" % flags], self.tree, self.log) != 0:
                    raise SystemExit("cannot configure the switched copy; see %s" % self.log)
            output = os.path.join(self.work, "build-output.txt")
            with base.Lock(self.lock):
                with open(output, "w") as out:
                    code = subprocess.run(base.build_command(self.build) + ["--", "-k", "0"], cwd=self.tree,
                                          stdout=out, stderr=subprocess.STDOUT).returncode
            if code == 0:
                break
            with open(output, encoding="utf-8", errors="replace") as f:
                newly = self.refusals(f.read())
            if not newly:
                raise SystemExit("the switched copy does not build, and no switch is to blame; see %s" % output)
            with open(self.refused_path(), "a", encoding="utf-8") as f:
                for key in sorted(newly):
                    f.write(key + "\n")
            print("switched build: %d more mutants refused by the compiler, built again" % len(newly), flush=True)
        else:
            raise SystemExit("the switched copy still does not build; see %s" % self.log)
        print("switched build: %d of %d mutants switched at run time, %d rebuilt one by one" %
              (len(self.switched), len(self.listing), len(self.listing) - len(self.switched)), flush=True)
        self.bin = os.path.join(self.build, "bin")
        self.prefix = os.path.join(self.build, "wineprefix" if not self.worker else "wineprefix-%d" % self.worker)
        if base.run([os.path.join(self.tree, "cmake", "make-wineprefix.sh"), self.prefix], self.tree, self.log) != 0:
            raise SystemExit("cannot make the Wine prefix %s; see %s" % (self.prefix, self.log))
        self.coverage()

    def refusals(self, output):
        """Keys of the switched mutants on the lines the compiler's errors and their notes name."""
        src = os.path.join(self.tree, "src") + os.sep
        named = set()
        files = set()
        precise = set()
        message = re.compile(r"(?m)(\S+?\.(?:cpp|h)):(\d+):(?:(\d+):)? (error|note|required from|warning)(.*)$")
        constants = {i: re.compile(r"\b%s\b" % re.escape(name)) for i, name in self.names.items() if i in self.switched}
        texts = {}
        for m in message.finditer(output):
            path = os.path.normpath(m.group(1) if os.path.isabs(m.group(1)) else os.path.join(self.build, m.group(1)))
            number = int(m.group(2))
            # A switched constant is refused wherever a message names a line that uses it, in any
            # file of the tree (a test's static_assert, another constant's initializer).
            if constants and path.startswith(self.tree + os.sep) and os.path.exists(path):
                if path not in texts:
                    with open(path, encoding="utf-8", errors="replace") as f:
                        texts[path] = f.read().split("\n")
                lines = texts[path]
                text = self.base.mask(lines[number - 1]) if 0 < number <= len(lines) else ""
                precise |= set(i for i, used in constants.items() if used.search(text))
            if not path.startswith(src):
                continue
            rel = os.path.relpath(path, self.tree)
            if m.group(4) == "error":
                files.add(rel)
            # An error inside one switch (a type that differs, a default no type has) refuses that
            # switch; a line that cannot be switched at all (a constant expression) refuses them all.
            spans = self.spans.get((rel, number), {})
            column = int(m.group(3)) - 1 if m.group(3) else -1
            inside = [(b - a, i) for i, (a, b) in spans.items() if a <= column < b]
            if m.group(4) == "error" and "constexpr" not in m.group(5) and "constant" not in m.group(5) and inside:
                precise.add(min(inside)[1])
            else:
                named.add((rel, number))
        keys = set(self.keys[self.by_id[i]] for i in self.switched
                   if (self.by_id[i][0], self.by_id[i][1]) in named or i in precise)
        if not keys:
            # Nothing switched on the lines named. A constant or member default switched in one of
            # the files named is the likely cause (a use the scan did not see); failing that,
            # every switch of the files with errors goes.
            mentioned = files | set(rel for rel, _ in named)
            keys = set(self.keys[self.by_id[i]] for i in self.switched if i in self.names and self.by_id[i][0] in mentioned)
        if not keys:
            keys = set(self.keys[self.by_id[i]] for i in self.switched if self.by_id[i][0] in files)
        return keys

    # -- running the tests ----------------------------------------------------------------
    def environment(self, mutant=0, trace=None):
        env = dict(os.environ)
        env["WINEPREFIX"] = self.prefix
        env["WINEDEBUG"] = "-all"
        env.pop("LUMAVEN_MUTANT", None)
        env.pop("LUMAVEN_MUTANT_TRACE", None)
        if mutant:
            env["LUMAVEN_MUTANT"] = str(mutant)
        if trace:
            env["LUMAVEN_MUTANT_TRACE"] = trace
        return env

    def gtest(self, suite, tests, env, timeout, fail_fast=False):
        """Runs the named tests of one suite program; (passed, the first failed test or why)."""
        report_name = "fast-%s%s.xml" % (suite, "-%d" % self.worker if self.worker else "")
        report = os.path.join(self.bin, "gtest-reports", report_name)
        os.makedirs(os.path.dirname(report), exist_ok=True)
        if os.path.exists(report):
            os.remove(report)
        command = [os.path.join(self.tree, "cmake", "wine-run.sh"), suite + ".exe",
                   "--gtest_output=xml:gtest-reports/" + report_name]
        if tests is not None:
            command.append("--gtest_filter=" + ":".join(tests))
        if fail_fast:
            command.append("--gtest_fail_fast")
        with open(self.log, "a") as out:
            try:
                code = subprocess.run(command, cwd=self.bin, env=env, stdout=out, stderr=subprocess.STDOUT,
                                      timeout=timeout).returncode
            except subprocess.TimeoutExpired:
                self.stop_wine()
                return False, "(time limit of %d s)" % timeout
        if not os.path.exists(report):
            return False, "(no report: the process ended early, exit code %d)" % code
        try:
            root = ElementTree.parse(report).getroot()
        except ElementTree.ParseError:
            return False, "(unreadable report)"
        failed = self.base.failing_test(report)
        count = int(root.get("tests", "0"))
        if int(root.get("failures", "0")) or int(root.get("errors", "0")):
            return False, failed
        if tests is not None and count != len(tests):
            return False, "(%d tests reported, %d asked)" % (count, len(tests))
        if code != 0:
            return False, "(exit code %d after the tests passed)" % code
        return True, ""

    def stop_wine(self):
        self.base.stop_wine(self.prefix)

    def list_tests(self, suite):
        out = subprocess.run([os.path.join(self.tree, "cmake", "wine-run.sh"), suite + ".exe", "--gtest_list_tests"],
                             cwd=self.bin, env=self.environment(), stdout=subprocess.PIPE, text=True).stdout
        tests = []
        group = None
        for line in out.split("\n"):
            if not line.strip():
                continue
            if not line.startswith(" "):
                group = line.split("#")[0].strip()
            else:
                tests.append(group + line.split("#")[0].strip())
        return tests

    def ctest(self, suite, mutant):
        """The whole suite, run directly in the worker's prefix. Not through CTest: its time limit
        ends the script that starts Wine but not the Wine process, so a mutant that hangs (a
        lock taken twice) would keep CTest waiting for ever; here the time limit stops the
        prefix's Wine server and the hang kills the mutant."""
        return self.gtest(suite, None, self.environment(mutant), self.base.SUITE_TIMEOUT[suite], fail_fast=True)

    def baseline(self):
        """No mutant named: every suite must pass, or the switches changed the service."""
        with self.base.Lock(self.lock):
            for suite in self.base.SUITES:
                passed, test = self.ctest(suite, 0)
                if not passed:
                    raise SystemExit("the switched copy fails %s with no mutant named (%s); see %s" %
                                     (suite, test, self.log))

    def fingerprint(self):
        digest = hashlib.sha1()
        for folder in ("src", "tests", "sim", "host", "include"):
            for root, _, files in sorted(os.walk(os.path.join(self.tree, folder))):
                for name in sorted(files):
                    with open(os.path.join(root, name), "rb") as f:
                        digest.update(name.encode() + f.read())
        digest.update(HEADER.encode())
        digest.update(" ".join(self.base.SUITES).encode())  # a suite more or less: a new map
        return digest.hexdigest()

    def coverage(self):
        """Per test, the switches it reaches: each test run alone with the trace on. Kept in
        work/coverage.json while the copy's sources stay the same."""
        path = os.path.join(self.work, "coverage.json")
        fingerprint = self.fingerprint()
        if os.path.exists(path):
            with open(path) as f:
                saved = json.load(f)
            if saved.get("fingerprint") == fingerprint:
                self.map = saved
                self.index()
                return
        self.baseline()
        started = time.time()
        tests = {}
        trace_root = os.path.join(self.work, "trace")
        for suite in self.base.SUITES:
            tests[suite] = []
            lock = self.base.Lock(self.lock)
            lock.__enter__()  # one hold per suite: a test alone is too short to queue for
            for name in self.list_tests(suite):
                trace = os.path.join(trace_root, suite, re.sub(r"[^\w.-]", "_", name))
                # A test that passes in its suite may still lose its process now and then under
                # Wine on a busy machine: it gets two more tries before the map gives up.
                for _ in range(3):
                    shutil.rmtree(trace, ignore_errors=True)
                    os.makedirs(trace)
                    began = time.time()
                    passed, failed = self.gtest(suite, [name], self.environment(trace=trace), 300)
                    seconds = time.time() - began
                    if passed:
                        break
                if not passed:
                    lock.__exit__()
                    raise SystemExit("%s %s fails alone in the switched copy (%s)" % (suite, name, failed))
                reached = set()
                for trace_file in os.listdir(trace):
                    with open(os.path.join(trace, trace_file)) as f:
                        reached.update(int(x) for x in f.read().split() if x.isdigit())
                tests[suite].append([name, round(seconds, 2), sorted(reached)])
            lock.__exit__()
            print("coverage map: %s, %d tests" % (suite, len(tests[suite])), flush=True)
        self.map = {"fingerprint": fingerprint, "seconds": round(time.time() - started), "tests": tests}
        with open(path, "w") as f:
            json.dump(self.map, f)
        self.index()

    def index(self):
        self.reaching = {}
        for suite, tests in self.map["tests"].items():
            for name, seconds, reached in tests:
                for ident in reached:
                    self.reaching.setdefault(ident, {}).setdefault(suite, []).append((name, seconds))

    def first_tries(self, mutant, reaching, near=5, most=8):
        """{suite: tests} that killed mutants within `near` lines of this one in the same file
        (from the results table given as `self.killers`), the nearest first, as far as they
        reach this mutant."""
        path, number = mutant[0], mutant[1]
        found = []
        for row in self.killers.values() if self.killers else ():
            if row["verdict"] == "killed" and row["file"] == path and not row["test"].startswith("(") \
                    and abs(int(row["line"]) - number) <= near:
                found.append((abs(int(row["line"]) - number), row["suite"], row["test"]))
        tries = {}
        for _, suite, test in sorted(found):
            names = tries.setdefault(suite, [])
            if test not in names and len(names) < most and any(test == name for name, _ in reaching.get(suite, ())):
                names.append(test)
        return [(suite, names) for suite, names in tries.items() if names]

    def is_switched(self, mutant):
        return self.ids[mutant] in self.switched

    def judge(self, mutant, plain):
        """(verdict, suite, test, how) of one mutant."""
        ident = self.ids[mutant]
        if ident not in self.switched:
            return plain.judge(mutant)
        reaching = self.reaching.get(ident, {})
        env = self.environment(ident)
        # The suites' shares in the order of their time alone, shortest first; each stops at its
        # first failed test.
        order = sorted(reaching, key=lambda suite: sum(seconds for _, seconds in reaching[suite]))
        crashed = ""
        with self.base.Lock(self.run_lock):
            # First the few reaching tests that killed this line's neighbours: most mutants of a
            # line die by the same tests, which are then found in one short run.
            for suite, names in self.first_tries(mutant, reaching):
                passed, failed = self.gtest(suite, names, env, 30 + 3 * len(names), fail_fast=True)
                if not passed and not failed.startswith("("):
                    return "killed", suite, failed, "switched, a test that killed a neighbour"
            for suite in order:
                tests = reaching[suite]
                names = [name for name, _ in tests]
                limit = min(self.base.SUITE_TIMEOUT[suite], 30 + 3 * sum(seconds for _, seconds in tests))
                if len(":".join(names)) > 20000:
                    names = None  # too long a command line: the whole suite
                passed, failed = self.gtest(suite, names, env, limit, fail_fast=True)
                if not passed and failed.startswith("("):
                    # A crash, a hang or an early exit of the tests alone: memory the mutant
                    # corrupts may go unseen when the whole suite runs (another heap layout), as in
                    # the rebuild's run, so the whole suite decides.
                    passed, failed = self.ctest(suite, ident)
                    if passed:
                        crashed = "; %s crashed with only the tests reaching it, passed whole" % suite
                        continue
                    return "killed", suite, failed, "switched, %s whole after a crash" % suite
                if not passed:
                    return "killed", suite, failed, "switched, %d reaching tests" % sum(map(len, reaching.values()))
            if not reaching:
                return "survived", "", "", "switched, reached by no test"
            if not self.confirm:
                return "survived", "", "", "switched, reaching tests only" + crashed
            # A suite none of whose tests reaches the mutant never runs it: its run is the
            # unmutated one, which passes. A suite that reaches it runs whole, since a test that
            # does not reach it may still fail on what a reaching test left behind.
            for suite in self.base.SUITES:
                if suite not in reaching:
                    continue
                passed, failed = self.ctest(suite, ident)
                if not passed:
                    return "killed", suite, failed, "switched, whole suites reaching it" + crashed
        return "survived", "", "", "switched, whole suites reaching it" + crashed


def switchable(listing, mask):
    """The mutants of the listing that the generator switches at run time (before any build)."""
    by_file = {}
    for ident, mutant in enumerate(listing, 1):
        by_file.setdefault(mutant[0], []).append((ident, mutant))
    import mutate as base
    result = set()
    runtime_names = runtime_constants(base.ROOT, mask)
    for path, items in by_file.items():
        with open(os.path.join(base.ROOT, path), encoding="utf-8") as f:
            lines = f.read().split("\n")
        _, ids = schema_of(lines, items, mask, runtime_names=runtime_names)
        result |= set(mutant for ident, mutant in items if ident in ids)
    return result
