#!/usr/bin/python3
"""Checks every PE file under the given folders the way a Windows binary analyzer checks a
DLL before it is loaded into a privileged service host, prints one row per file with one
column per rule, and fails when any rule fails.

usage: binary-check.py [--cfg] [--forbid PATH]... [--expect-fail RULE,...] FOLDER_OR_FILE...

  --cfg          Control Flow Guard is on in this build: its flags must be there.
  --forbid PATH  a folder of the build machine that no file may name (the source and build
                 folders); given more than once for more folders.
  --expect-fail  the files are deliberately unhardened probes: passes only when each of them
                 fails exactly these rules, which proves the rules can fail.

Reads the files with pefile (Debian package python3-pefile).
"""
import argparse
import os
import struct
import sys

import pefile

IMAGE_FILE_MACHINE_AMD64 = 0x8664
DLLCHARACTERISTICS_HIGH_ENTROPY_VA = 0x0020
DLLCHARACTERISTICS_DYNAMIC_BASE = 0x0040
DLLCHARACTERISTICS_NX_COMPAT = 0x0100
DLLCHARACTERISTICS_GUARD_CF = 0x4000
GUARD_CF_INSTRUMENTED = 0x00000100
GUARD_CF_FUNCTION_TABLE_PRESENT = 0x00000400
SCN_MEM_EXECUTE = 0x20000000
SCN_MEM_WRITE = 0x80000000
RT_VERSION = 16

# The failure routine of GCC's libssp, which both compilers' stack protection calls when a
# function's guard value was overwritten; it is found by the message it prints.
STACK_SMASHING_MESSAGE = b"*** stack smashing detected ***"
# A protected function loads the guard, compares it at its end and calls the failure
# routine; libssp's own __stack_chk_fail_local, which only forwards to it, is shorter.
SMALLEST_PROTECTED_FUNCTION = 32

# Debug builds of the Microsoft C and C++ runtimes, and the MinGW runtime DLLs that a
# dynamically linked build would need beside it: neither may be imported.
DEBUG_RUNTIMES = ("msvcrtd.dll", "msvcr120d.dll", "msvcp140d.dll", "vcruntime140d.dll", "ucrtbased.dll")
MINGW_RUNTIME_DLLS = ("libgcc_s_seh-1.dll", "libstdc++-6.dll", "libwinpthread-1.dll", "libssp-0.dll")

RULES = ("pe64", "dynamic-base", "high-entropy-va", "nx", "no-wx-section", "stack-protection", "cfg",
         "version-resource", "no-build-path", "debug-name-only", "no-debug-runtime", "no-timestamp")


def is_pe(path):
    try:
        with open(path, "rb") as f:
            head = f.read(0x40)
            if len(head) < 0x40 or head[:2] != b"MZ":
                return False
            f.seek(struct.unpack_from("<I", head, 0x3C)[0])
            return f.read(4) == b"PE\0\0"
    except OSError:
        return False


def pe_files(roots):
    for root in roots:
        if os.path.isfile(root):
            yield root
            continue
        for folder, _, names in sorted(os.walk(root)):
            for name in sorted(names):
                path = os.path.join(folder, name)
                if is_pe(path):
                    yield path


def rel32_targets(code, base, opcode):
    """Every rip-relative operand after `opcode` in `code` (mapped at `base`), as
    {target: [instruction addresses]}. A scan of every byte position, not a disassembly: a
    false match needs four bytes that happen to name the same target exactly."""
    targets = {}
    width = len(opcode) + 4
    start = code.find(opcode)
    while start != -1 and start + width <= len(code):
        (offset,) = struct.unpack_from("<i", code, start + len(opcode))
        targets.setdefault(base + start + width + offset, []).append(base + start)
        start = code.find(opcode, start + 1)
    return targets


def function_ranges(pe):
    """(begin, end) RVAs of every function with unwind data (.pdata), sorted."""
    entries = getattr(pe, "DIRECTORY_ENTRY_EXCEPTION", [])
    return sorted((e.struct.BeginAddress, e.struct.EndAddress) for e in entries)


def function_at(ranges, rva):
    for begin, end in ranges:
        if begin <= rva < end:
            return begin, end
    return None


def protected_functions(pe):
    """The number of functions that call the stack protector's failure routine; None when
    the routine is not in the file at all."""
    message_rva = None
    for section in pe.sections:
        at = section.get_data().find(STACK_SMASHING_MESSAGE)
        if at != -1:
            message_rva = section.VirtualAddress + at
            break
    if message_rva is None:
        return None
    ranges = function_ranges(pe)
    code_sections = [s for s in pe.sections if s.Characteristics & SCN_MEM_EXECUTE]
    # The failure routine passes the message to its printer: lea rcx, [rip + message].
    failure_routines = set()
    for section in code_sections:
        leas = rel32_targets(section.get_data(), section.VirtualAddress, b"\x48\x8d\x0d")
        for address in leas.get(message_rva, []):
            function = function_at(ranges, address)
            if function:
                failure_routines.add(function[0])
    callers = set()
    for section in code_sections:
        calls = rel32_targets(section.get_data(), section.VirtualAddress, b"\xe8")
        for routine in failure_routines:
            for address in calls.get(routine, []):
                function = function_at(ranges, address)
                if function and function[1] - function[0] >= SMALLEST_PROTECTED_FUNCTION:
                    callers.add(function)
    return len(callers)


def check_cfg(pe):
    if not pe.OPTIONAL_HEADER.DllCharacteristics & DLLCHARACTERISTICS_GUARD_CF:
        return False, "no GUARD_CF"
    config = getattr(pe, "DIRECTORY_ENTRY_LOAD_CONFIG", None)
    if config is None:
        return False, "no load config"
    flags = getattr(config.struct, "GuardFlags", 0)
    needed = GUARD_CF_INSTRUMENTED | GUARD_CF_FUNCTION_TABLE_PRESENT
    if flags & needed != needed or not getattr(config.struct, "GuardCFCheckFunctionPointer", 0):
        return False, "GuardFlags 0x%x" % flags
    return True, "%d targets" % config.struct.GuardCFFunctionCount


def version_resource(pe):
    resources = getattr(pe, "DIRECTORY_ENTRY_RESOURCE", None)
    entries = resources.entries if resources else []
    return any(entry.id == RT_VERSION for entry in entries) and hasattr(pe, "VS_FIXEDFILEINFO")


def named_paths(data, forbidden):
    found = []
    for path in forbidden:
        for encoded in (path.encode(), path.encode("utf-16-le")):
            if encoded in data:
                found.append(path)
                break
    return found


def debug_names(pe):
    """The names by which the file refers to its debug information: the CodeView record's
    PDB path and the GNU debuglink's file name."""
    names = []
    for entry in getattr(pe, "DIRECTORY_ENTRY_DEBUG", []):
        entry_data = getattr(entry, "entry", None)
        path = getattr(entry_data, "PdbFileName", None)
        if path:
            names.append(path.rstrip(b"\0").decode(errors="replace"))
    for section in pe.sections:
        if section.Name.rstrip(b"\0") == b".gnu_debuglink":
            names.append(section.get_data().split(b"\0")[0].decode(errors="replace"))
    return names


def carries_code(pe):
    """False for a file of debug information only (objcopy --only-keep-debug keeps the
    headers and sections of the binary but none of its code)."""
    return any(s.Characteristics & SCN_MEM_EXECUTE and s.SizeOfRawData for s in pe.sections)


def check(path, cfg_on, forbidden):
    """{rule: (passed, detail)} for one file. A file of debug information only is checked for
    build paths alone: the other rules are about code that runs."""
    with open(path, "rb") as f:
        data = f.read()
    pe = pefile.PE(data=data, fast_load=True)
    pe.parse_data_directories(directories=[pefile.DIRECTORY_ENTRY[name] for name in (
        "IMAGE_DIRECTORY_ENTRY_IMPORT", "IMAGE_DIRECTORY_ENTRY_RESOURCE", "IMAGE_DIRECTORY_ENTRY_DEBUG",
        "IMAGE_DIRECTORY_ENTRY_LOAD_CONFIG", "IMAGE_DIRECTORY_ENTRY_EXCEPTION")])
    named = named_paths(data, forbidden)
    if not carries_code(pe):
        results = {rule: (True, "-") for rule in RULES}
        results["no-build-path"] = (not named, " ".join(named))
        return results
    results = {}
    optional = pe.OPTIONAL_HEADER
    characteristics = optional.DllCharacteristics
    results["pe64"] = (pe.FILE_HEADER.Machine == IMAGE_FILE_MACHINE_AMD64 and
                       optional.Magic == pefile.OPTIONAL_HEADER_MAGIC_PE_PLUS, "")
    relocations = optional.DATA_DIRECTORY[pefile.DIRECTORY_ENTRY["IMAGE_DIRECTORY_ENTRY_BASERELOC"]].Size
    results["dynamic-base"] = (bool(characteristics & DLLCHARACTERISTICS_DYNAMIC_BASE) and relocations > 0,
                               "" if relocations else "no relocations")
    results["high-entropy-va"] = (bool(characteristics & DLLCHARACTERISTICS_HIGH_ENTROPY_VA), "")
    results["nx"] = (bool(characteristics & DLLCHARACTERISTICS_NX_COMPAT), "")
    both = [s.Name.rstrip(b"\0").decode(errors="replace") for s in pe.sections
            if s.Characteristics & SCN_MEM_WRITE and s.Characteristics & SCN_MEM_EXECUTE]
    results["no-wx-section"] = (not both, " ".join(both))
    protected = protected_functions(pe)
    results["stack-protection"] = (bool(protected), "no guard" if protected is None else "%d fns" % protected)
    results["cfg"] = check_cfg(pe) if cfg_on else (True, "off")
    results["version-resource"] = (version_resource(pe), "")
    results["no-build-path"] = (not named, " ".join(named))
    names = debug_names(pe)
    results["debug-name-only"] = (all("/" not in n and "\\" not in n for n in names), " ".join(names))
    imports = [e.dll.decode().lower() for e in getattr(pe, "DIRECTORY_ENTRY_IMPORT", [])]
    bad = [dll for dll in imports if dll in DEBUG_RUNTIMES or dll in MINGW_RUNTIME_DLLS]
    results["no-debug-runtime"] = (not bad, " ".join(bad))
    # A build's time in the header would make two builds of one commit differ.
    stamp = pe.FILE_HEADER.TimeDateStamp
    results["no-timestamp"] = (stamp == 0, "" if stamp == 0 else "0x%08x" % stamp)
    return results


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--cfg", action="store_true")
    parser.add_argument("--forbid", action="append", default=[])
    parser.add_argument("--expect-fail", default=None)
    parser.add_argument("roots", nargs="+")
    args = parser.parse_args()
    forbidden = [os.path.realpath(p) for p in args.forbid]
    expected_failures = set(args.expect_fail.split(",")) if args.expect_fail else None

    files = list(pe_files(args.roots))
    if not files:
        print("binary check: no PE file under %s" % " ".join(args.roots))
        return 1
    common = os.path.commonpath([os.path.dirname(f) for f in files]) if len(files) > 1 else os.path.dirname(files[0])
    width = max(len(os.path.relpath(f, common)) for f in files)
    print("%-*s  %s" % (width, "file", "  ".join(RULES)))
    problems = 0
    for path in files:
        results = check(path, args.cfg, forbidden)
        cells = []
        for rule in RULES:
            passed, detail = results[rule]
            text = detail if detail == "-" else ("ok" if passed else "FAIL") + (" " + detail if detail else "")
            cells.append(text.ljust(len(rule)))
        print("%-*s  %s" % (width, os.path.relpath(path, common), "  ".join(cells)))
        failed = {rule for rule in RULES if not results[rule][0]}
        if expected_failures is None:
            problems += len(failed)
        elif failed != expected_failures:
            print("  expected to fail exactly: %s; failed: %s" % (
                ", ".join(sorted(expected_failures)), ", ".join(sorted(failed)) or "nothing"))
            problems += 1
    if expected_failures is None:
        print("binary check: %d files, %d rules each, %d failures (debug information files: build paths only)" % (
            len(files), len(RULES), problems))
    else:
        print("binary check of the unhardened probe: %s" % ("every expected rule failed" if not problems else "WRONG"))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
