#!/usr/bin/env python3
"""Holds the installed programs and shared libraries to how they are meant to be built, and the bill of materials to what
they say they need.

usage: CheckBinaries.py PREFIX BILL_OF_MATERIALS FOLDER...
The folders are those of the source and of the build: no binary may name them.
"""
import json
import pathlib
import re
import subprocess
import sys

PREFIX, BILL, *FOLDERS = sys.argv[1:]
LANDING = {"X86-64": (bytes.fromhex("f30f1efa"),), "AArch64": (bytes.fromhex("3f2303d5"), bytes.fromhex("5f2403d5"))}
faults = []


def read(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def exported_functions(file):
    """Name and place in the file of every exported function. Segments of code are where the linker put them."""
    segments = [[int(number, 16) for number in line.split()[1:6] if number.startswith("0x")]
                for line in read("readelf", "-lW", file).splitlines() if line.split()[:1] == ["LOAD"]]
    for line in read("nm", "-DC", "--defined-only", file).splitlines():
        address, kind, name = line.split(" ", 2)
        if kind == "T":
            place = int(address, 16)
            yield name, next(place - virtual + offset for offset, virtual, _, size, *_ in segments
                             if virtual <= place < virtual + size)


def check_hardening(file, is_program):
    headers, dynamic = read("readelf", "-hlW", file), read("readelf", "-dW", file)
    symbols = set(re.findall(r"\bU (\w+)", read("nm", "-D", file)))
    content = pathlib.Path(file).read_bytes()
    wanted = {
        "position independent": "DYN (" in headers and ("PIE" in dynamic or not is_program),
        "read-only after relocation": "GNU_RELRO" in headers and re.search(r"BIND_NOW|Flags:.* NOW", dynamic),
        "without an executable stack": re.search(r"GNU_STACK.* RW ", headers),
        "with stack protectors": "__stack_chk_fail" in symbols,
        "found beside its own libraries only": not re.search(r"R(UN)?PATH.*\[(?!\$ORIGIN\])", dynamic),
    }
    faults.extend(f"{file} is not {what}" for what, holds in wanted.items() if not holds)
    faults.extend(f"{file} names {folder}" for folder in FOLDERS if folder.encode() in content)
    landing = LANDING.get(re.search(r"Machine:.* (\S+)", headers).group(1), b"")
    unmarked = [name for name, place in ([] if is_program else exported_functions(file))
                if not content[place:place + 4].startswith(landing)]
    if unmarked:
        faults.append(f"{file}: {len(unmarked)} functions are not marked as targets of calls, such as {unmarked[0]}")
    return {name for name in symbols if re.fullmatch(r"__\w+_chk", name)}


def main():
    programs = sorted(map(str, pathlib.Path(PREFIX, "bin").iterdir()))
    libraries = [str(file) for file in sorted(pathlib.Path(PREFIX).glob("lib/**/lib*.so.*")) if not file.is_symlink()]
    with open(BILL, encoding="utf-8") as file:
        bill = json.load(file)
    known = {package["SPDXID"]: package for package in bill["packages"]}
    if len(known) != len(bill["packages"]):
        faults.append("the bill of materials has two packages with one identifier")
    listed = {}
    for relation in bill["relationships"]:
        for end in (relation["spdxElementId"], relation["relatedSpdxElement"]):
            if known.get(end, {}).get("versionInfo", "NOASSERTION") == "NOASSERTION":
                faults.append(f"the bill of materials has no version of {end}")
        if relation["relationshipType"] == "DYNAMIC_LINK":
            listed.setdefault(known[relation["spdxElementId"]]["name"], set()).add(relation["comment"])

    checked = set()
    for file in programs + libraries:
        checked |= check_hardening(file, file in programs)
        dynamic = read("readelf", "-dW", file)
        name = (re.findall(r"\(SONAME\).*\[(.*)\]", dynamic) or [pathlib.Path(file).name])[0]
        needed = {library for library in re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic) if not library.startswith("ld-linux")}
        if needed != listed.get(name):
            faults.append(f"{name} and the bill of materials disagree about {needed ^ listed.get(name, set())}")
    if not checked:
        faults.append("nothing calls the checking functions of the C library")
    print(f"{len(programs)} programs and {len(libraries)} libraries; they call {' '.join(sorted(checked))}")
    print(f"bill of materials: {len(known)} packages, {sum(map(len, listed.values()))} libraries linked")
    return "\n".join(faults) or None


sys.exit(main())
