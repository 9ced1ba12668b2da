#!/usr/bin/env python3
"""Holds core/ to its floors: a folder includes folders of its own floor and of lower ones, and none in a circle.

usage: includes.py REPOSITORY          fails where an include runs up or in a circle, or the drawing is out of date
       includes.py REPOSITORY --draw   makes the drawing, docs/pictures/core-includes.svg
"""

import collections
import pathlib
import re
import sys

FLOORS = [
    ["ConsentSDK"],
    ["Banner", "Purposes", "Permissions", "Integrations"],
    ["Configuration"],
    ["Network"],
    ["Persistance"],
    ["History"],
    ["Logger"],
    ["Json", "Text", "Tasks", "Boost"],
]
FLOOR_OF = {folder: number for number, floor in enumerate(FLOORS) for folder in floor}
DOWN, LEVEL, UP = "#4a6a94", "#8a5a00", "#c62828"  # colours of the arrows
DRAWING = "docs/pictures/core-includes.svg"


def included_folders(core):
    """How many files of one folder include one of another, by (folder, included folder)."""
    counts = collections.Counter()
    for file in sorted(core.rglob("*")):
        if file.suffix not in (".h", ".cpp"):
            continue
        folder = file.relative_to(core).parts[0]
        included = set(re.findall(r'^#include "core/([^/"]+)/', file.read_text(), re.MULTILINE))
        counts.update((folder, other) for other in included - {folder})
    return counts


def circles(arrows):
    """The arrows that lie on a circle: those whose end leads back to where they begin."""
    ends = collections.defaultdict(set)
    for begin, end in arrows:
        ends[begin].add(end)

    def reachable(begin):
        seen, ahead = set(), [begin]
        while ahead:
            for end in ends[ahead.pop()] - seen:
                seen.add(end)
                ahead.append(end)
        return seen

    return {(begin, end) for begin, end in arrows if begin in reachable(end)}


def faults(core, counts):
    folders = {path.name for path in core.iterdir() if path.is_dir()}
    found = [f"core/{folder} has no floor in {__file__}" for folder in sorted(folders - FLOOR_OF.keys())]
    arrows = {arrow for arrow in counts if FLOOR_OF.keys() >= set(arrow)}
    upward = {(begin, end) for begin, end in arrows if FLOOR_OF[begin] > FLOOR_OF[end]}
    wrong = upward | circles(arrows - upward)
    for begin, end in sorted(wrong):
        kind = "to a higher floor" if (begin, end) in upward else "in a circle"
        found.append(f"core/{begin} includes core/{end}, which runs {kind}")
    return found


def drawing(core, counts):
    """The folders from the highest floor to the lowest; includes that run down on the right, the others on the left."""
    row, box, left, top = 44, 150, 150, 16
    folders = [[f for f in floor if (core / f).is_dir()] for floor in FLOORS]
    place = {}
    for floor in folders:
        for folder in floor:
            place[folder] = top + row * len(place) + row / 2
    height = top * 2 + row * len(place)
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 620 {height}" width="620" font-family="sans-serif"'
        ' font-size="14">',
        "<title>Who includes whom in core: from upper floors to lower ones</title>",
        '<rect width="100%" height="100%" fill="#ffffff"/>',
        *(
            f'<defs><marker id="{colour[1:]}" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="10" markerHeight="10"'
            f' markerUnits="userSpaceOnUse" orient="auto"><path d="M0 0L8 4L0 8z" fill="{colour}"/></marker></defs>'
            for colour in (DOWN, LEVEL, UP)
        ),
    ]
    for number, floor in enumerate(folders):
        if floor and number % 2 == 0:
            begin, end = place[floor[0]] - row / 2, place[floor[-1]] + row / 2
            lines.append(f'<rect y="{begin:g}" width="620" height="{end - begin:g}" fill="#f1f4f8"/>')
    for (begin, end), count in sorted(counts.items()):
        if begin not in place or end not in place:
            continue
        is_down = place[begin] < place[end]
        x = left + box if is_down else left
        reach = (24 + abs(place[end] - place[begin]) * 360 / height) * (1 if is_down else -0.5)
        y, to = place[begin] + 6, place[end] - 6
        colour = DOWN if is_down else LEVEL if FLOOR_OF[begin] == FLOOR_OF[end] else UP
        width = 1 + min(count, 12) / 6
        lines.append(
            f'<path d="M{x} {y:g}C{x + reach:g} {y:g} {x + reach:g} {to:g} {x} {to:g}" fill="none" stroke="{colour}"'
            f' stroke-width="{width:.1f}" stroke-opacity="0.75" marker-end="url({colour})">'
            f"<title>{begin} includes {end}: {count} files</title></path>"
        )
    for folder, y in place.items():
        lines.append(
            f'<rect x="{left}" y="{y - 15:g}" width="{box}" height="30" rx="6" fill="#ffffff" stroke="#31445e"/>'
            f'<text x="{left + box / 2:g}" y="{y + 5:g}" text-anchor="middle">{folder}</text>'
        )
    return "\n".join(lines + ["</svg>", ""])


def main():
    repository = pathlib.Path(sys.argv[1])
    core, picture = repository / "core", repository / DRAWING
    counts = included_folders(core)
    if not counts:
        sys.exit(f"{core} includes nothing of its own")
    if sys.argv[2:] == ["--draw"]:
        picture.write_text(drawing(core, counts))
        return
    found = faults(core, counts)
    if not picture.is_file() or picture.read_text() != drawing(core, counts):
        found.append(f"{DRAWING} is out of date: {__file__} {repository} --draw makes it")
    print(f"{len(counts)} arrows between folders of core, {len(found)} faults")
    sys.exit("\n".join(found) if found else 0)


main()
