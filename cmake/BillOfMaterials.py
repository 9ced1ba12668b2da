#!/usr/bin/env python3
"""Writes the bill of materials of a build, in SPDX 2.3: the libraries that installed programs and libraries link,
according to the build's commands, and the packages whose headers are compiled in. A test compares it with the dynamic
dependencies of the binaries.

usage: BillOfMaterials.py BUILD_FOLDER SOURCE_FOLDER VERSION NINJA COMPILER ARCHITECTURE OUTPUT BINARY...
ARCHITECTURE is Debian's name of another processor that the build is for, or empty.
"""
import json
import os
import re
import shlex
import subprocess
import sys
from datetime import datetime, timezone

BUILD, SOURCE, VERSION, NINJA, COMPILER, ARCHITECTURE, OUTPUT = sys.argv[1:8]
BINARIES = [os.path.relpath(binary, BUILD) for binary in sys.argv[8:]]
UNKNOWN = "NOASSERTION"


def run(*command):
    return subprocess.run(command, cwd=BUILD, capture_output=True, text=True, check=True).stdout


def words(target):
    """The arguments of the command that builds a target."""
    return shlex.split(run(NINJA, "-t", "commands", "-s", target))


def linked(target):
    """The objects and libraries that a target is linked from, with our own static libraries expanded."""
    objects, libraries = [], []
    for word in words(target):
        path = os.path.join(BUILD, word)
        if word == target or word.startswith("-"):
            continue
        if word.endswith(".o"):
            objects.append(word)
        elif word.endswith(".a") and os.path.realpath(path).startswith(BUILD):
            objects += linked(word)[0]
        elif re.search(r"\.(a|so[.0-9]*)$", word):
            libraries.append(os.path.realpath(path))
    return objects, libraries


def runtime_library(name):
    """A library of the compiler's, where a device has it: Debian's cross compilers link copies in a folder of their own."""
    machine, file = (run(COMPILER, option).strip() for option in ("-dumpmachine", f"-print-file-name={name}"))
    return os.path.realpath(os.path.realpath(file).replace(f"/usr/{machine}/lib/", f"/usr/lib/{machine}/"))


def shared_name(library):
    found = re.search(r"\(SONAME\).*\[(.*)\]", run("readelf", "-dW", library))
    return found.group(1) if found else os.path.basename(library)


def needed(binary):
    """The dynamic dependencies; the linker omits unused libraries."""
    return set(re.findall(r"\(NEEDED\).*\[(.*)\]", run("readelf", "-dW", binary)))


def headers(objects):
    """All external files that the compiler read for the objects."""
    wanted, read, ours = set(objects), set(), False
    for line in run(NINJA, "-t", "deps").splitlines():
        if not line.startswith(" "):
            ours = line.split(":")[0] in wanted
        elif ours:
            read.add(os.path.realpath(os.path.join(BUILD, line.strip())))
    return {file for file in read if not file.startswith((SOURCE + "/", BUILD + "/"))}


def owners(files):
    """The Debian package of each file that belongs to one."""
    found, files = {}, sorted(files)
    for file in range(0, len(files), 1000):
        # With a merged /usr, packages may list their files below /lib.
        names = {name: f for f in files[file:file + 1000] for name in (f, f.removeprefix("/usr"))}
        answer = subprocess.run(["dpkg-query", "-S", *names], capture_output=True, text=True, check=False).stdout
        for line in answer.splitlines():
            package, _, name = line.partition(": ")
            if name in names:
                found[names[name]] = package.split(",")[0].split(":")[0]
    return found


def identifier(name):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", name)


def entry(name, version, **more):
    return {"SPDXID": identifier(name), "name": name, "versionInfo": version, "downloadLocation": UNKNOWN,
            "filesAnalyzed": False, "licenseConcluded": UNKNOWN, "licenseDeclared": UNKNOWN, "copyrightText": UNKNOWN,
            **more}


def distribution():
    with open("/etc/os-release", encoding="utf-8") as file:
        return re.search(r'^ID="?([^"\n]*)', file.read(), re.M).group(1)


def debian_entry(package, vendor):
    fields = ("Package", "Version", "Architecture", "source:Package", "source:Version")
    formatted = "\\t".join("${" + field + "}" for field in fields) + "\\n"
    # With several architectures installed, dpkg-query prints the machine's own first.
    installed = [line.split("\t") for line in run("dpkg-query", "-W", "-f", formatted, package).splitlines()]
    name, version, machine, source, source_version = next(
        (fields for fields in installed if fields[2] == ARCHITECTURE), installed[0])
    return entry(name, version, sourceInfo=f"source package {source} {source_version}",
                 supplier=f"Organization: {vendor}",
                 externalRefs=[{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                                "referenceLocator": f"pkg:deb/{vendor}/{name}@{version}?arch={machine}"}])


def main():
    product = entry("quillon-consent-sdk", VERSION, primaryPackagePurpose="LIBRARY")
    packages, relations, objects, dynamic = {product["name"]: product}, [], set(), []
    toolchain = [runtime_library(name) for name in ("libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6")]
    names = {binary: shared_name(os.path.join(BUILD, binary)) for binary in BINARIES}
    ours = {os.path.realpath(os.path.join(BUILD, binary)): name for binary, name in names.items()}
    for binary in BINARIES:
        packages[names[binary]] = entry(names[binary], VERSION)
        relations.append((product["name"], "CONTAINS", names[binary], None))
        own, libraries = linked(binary)
        objects.update(own)
        kept = needed(binary)
        dynamic += [(names[binary], library) for library in dict.fromkeys(libraries + toolchain)
                    if library.endswith(".a") or shared_name(library) in kept]

    read = headers(objects)
    owner = owners(read | {library for _, library in dynamic})
    for binary, library in dynamic:
        name = ours.get(library) or owner.get(library) or os.path.basename(library)
        how = "STATIC_LINK" if library.endswith(".a") else "DYNAMIC_LINK"
        relations.append((binary, how, name, os.path.basename(library) if how == "STATIC_LINK" else shared_name(library)))
    for package in sorted({owner[file] for file in read if file in owner}):
        relations.append((product["name"], "DEPENDS_ON", package, "headers, whose inline code is compiled in"))

    vendor, from_debian = distribution(), set(owner.values())
    for _, _, name, _ in relations:
        if name not in packages:
            packages[name] = debian_entry(name, vendor) if name in from_debian else entry(name, UNKNOWN)
    built = datetime.fromtimestamp(int(os.environ.get("SOURCE_DATE_EPOCH") or datetime.now().timestamp()), timezone.utc)
    document = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"quillon-consent-sdk-{VERSION}",
        "documentNamespace": f"https://quillon.example/spdx/quillon-consent-sdk-{VERSION}-{int(built.timestamp())}",
        "creationInfo": {"created": built.strftime("%Y-%m-%dT%H:%M:%SZ"), "creators": ["Tool: BillOfMaterials.py"]},
        "documentDescribes": [product["SPDXID"]],
        "packages": sorted(packages.values(), key=lambda package: package["SPDXID"]),
        "relationships": [
            {"spdxElementId": identifier(element), "relationshipType": kind, "relatedSpdxElement": identifier(related),
             **({"comment": comment} if comment else {})}
            for element, kind, related, comment in
            sorted(set(relations), key=lambda relation: [text or "" for text in relation])]}
    with open(OUTPUT, "w", encoding="utf-8") as file:
        json.dump(document, file, indent=1)
        file.write("\n")


main()
