#!/usr/bin/env python3
"""Compares the binary interface of two versions of quillon/consent.h: of each, a library is made whose functions have the
declared types and do nothing, and abidiff compares their debug information. The library that is shipped has none.

usage: CompareAbi.py OLD_HEADER NEW_HEADER WORK_FOLDER
"""
import pathlib
import re
import subprocess
import sys

PROTOTYPE = re.compile(r"^([^\n;{}#][^;{}]*\bquillon_\w+\([^;{}]*\));", re.M)


def library(header, folder):
    folder.mkdir(parents=True, exist_ok=True)
    declared = subprocess.run(["gcc", "-E", "-P", header], capture_output=True, text=True, check=True).stdout
    defined, count = PROTOTYPE.subn(r"\1 { __builtin_trap(); }", declared)
    source, result = folder / "interface.c", folder / "libquillon-consent-c.so"
    source.write_text(defined, encoding="utf-8")
    subprocess.run(["gcc", "-std=c11", "-w", "-g", "-fno-eliminate-unused-debug-types", "-fPIC", "-shared", source,
                    "-o", result], check=True)
    return result, count


def main(old_header, new_header, work):
    old, _ = library(old_header, pathlib.Path(work, "old"))
    new, count = library(new_header, pathlib.Path(work, "new"))
    result = subprocess.run(["abidiff", "--non-reachable-types", "--no-added-syms", old, new],
                            capture_output=True, text=True, check=False)
    print(f"{count} functions in C")
    return result.stdout + result.stderr if result.returncode else None


sys.exit(main(*sys.argv[1:]))
