#!/usr/bin/env python3
"""Holds the table of operations in docs/integration.md to the headers: it names every operation of ConsentSDK, and every
function of the C interface once, and none that is not there.

usage: interfaces.py SOURCE_FOLDER
"""
import pathlib
import re
import sys

source = pathlib.Path(sys.argv[1])
page = (source / "docs/integration.md").read_text()
rows = [row.split("|")[1:4] for row in page.splitlines() if row.startswith("| `")]
rows = rows[next(i for i, row in enumerate(rows) if row[0].strip() == "`configure`"):]
named = re.findall(r"`(\w+)`", " ".join(row[0] for row in rows))
in_c = re.findall(r"`(\w+)`", re.sub(r"\([^)]*\)", "", " ".join(row[1] for row in rows)))

header = re.sub(r"//[^\n]*", "", (source / "include/quillon/ConsentSDK.h").read_text())
body = header[header.index("class ConsentSDK {"):header.index(" private:")]
operations = set(re.findall(r"^ +(?:\[\[nodiscard\]\] )?[\w:<>, ]+[&>\w] (\w+)\(", body, re.M)) - {"ConsentSDK", "shared", "operator"}
functions = set(re.findall(r"\bquillon_(\w+)\(", re.sub(r"/\*.*?\*/", "", (source / "include/quillon/consent.h").read_text(),
                                                         flags=re.S)))
faults = [f"docs/integration.md lacks ConsentSDK::{name}" for name in sorted(operations - set(named))]
faults += [f"docs/integration.md lacks quillon_{name}" for name in sorted(functions - set(in_c))]
faults += [f"there is no quillon_{name}" for name in sorted(set(in_c) - functions)]
faults += [f"quillon_{name} stands twice" for name in sorted({name for name in in_c if in_c.count(name) > 1})]
print("\n".join(faults) or f"{len(operations)} operations, {len(functions)} C functions")
sys.exit(1 if faults or len(operations) < 30 or len(functions) < 30 else 0)
