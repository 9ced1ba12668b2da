#!/usr/bin/env python3
"""Says which system calls of a trace the filter of a systemd unit forbids.

usage: check_system_calls.py UNIT TRACE
"""
import re
import subprocess
import sys

# Refused with an error that the program expects: it asks for more descriptors, and the unit has given them already. And
# what SQLite does for the super-user alone, who runs the tests but not the unit.
EXPECTED = {"prlimit64", "fchown"}


def members(name, seen=None):
    seen = seen if seen is not None else set()
    if not name.startswith("@"):
        return {name}
    if name in seen:
        return set()
    seen.add(name)
    text = subprocess.run(["systemd-analyze", "syscall-filter", name], capture_output=True, text=True, check=True).stdout
    calls = set()
    for line in text.splitlines()[1:]:
        word = line.strip()
        if word and not word.startswith("#"):
            calls |= members(word, seen)
    return calls


allowed = set()
for line in open(sys.argv[1]):
    found = re.match(r"SystemCallFilter=(~?)(.*)", line)
    for name in found[2].split() if found else []:
        allowed = allowed - members(name) if found[1] else allowed | members(name)
used = set(re.findall(r"^\d+ +(\w+)\(", open(sys.argv[2]).read(), re.M))
forbidden = used - allowed - EXPECTED
print(f"{len(used)} calls used of {len(allowed)} allowed: {' '.join(sorted(forbidden))}")
print(f"{len(forbidden)} forbidden")
sys.exit(1 if forbidden or not used else 0)
