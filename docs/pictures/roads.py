#!/usr/bin/env python3
"""Draws the sequences of docs/architecture.md beside this file: component, action, thread and order.

usage: docs/pictures/roads.py
"""

import html
import pathlib
import textwrap

LANES = ["calling thread", "pool", "server"]
# The steps of each sequence: lane, component, action.
ROADS = {
    "road-of-a-decision": (
        "The path of a decision",
        [
            (0, "ConsentSDK", "acceptOrReject, set, save: one line each"),
            (0, "DecisionRecorder", "takes a place in the permission queue, then writes the purposes"),
            (0, "UserDefaultManager", "one transaction: statuses, given type, pending lists, history"),
            (0, "ConsentSDK", "returns whether it was stored; calls of one thread take effect in order"),
            (1, "Events", "listeners and gates are called on the main queue, in the order of storing"),
            (1, "DecisionRecorder", "queries the device's permissions, in queue order, and stores them"),
            (1, "ConsentUploader", "uploads the pending decisions"),
        ],
    ),
    "road-of-a-configuration": (
        "The path of a configuration",
        [
            (0, "SetUp", "validates the options and begins a session"),
            (1, "ConfigurationLoader", "joins the session's load in flight, or begins one"),
            (1, "ConfigurationCache", "a fresh document of the same URL is used without a request"),
            (2, "ServerApi", "the language's file, with the entity tag; else the default file"),
            (1, "ConfigurationLoader", "drops the result if the session has ended; else saves it with its URL"),
            (1, "LocationLookup", "the location, once an hour, if the document depends on it"),
            (1, "ConfigurationLoader", "one transaction: compliance type, new purposes, re-consent; in force from now on"),
            (1, "Events", "ready or unavailable, reported in order"),
        ],
    ),
    "road-of-an-upload": (
        "The path of an upload",
        [
            (1, "ConsentUploader", "a second after a decision, at a check, or when the network is back"),
            (1, "StoreLock", "a lock on a file: one process of the application at a time"),
            (1, "ConsentUploader", "reads the store once: pending, listed decisions and their newest numbers"),
            (2, "ServerApi", "one request, at most 60 s; the answer is 0, 1 or final"),
            (1, "ConsentUploader", "marks by number: later decisions stay pending, whatever their value"),
            (1, "UserDefaultManager", "one transaction: marks in the history, lists, flag"),
            (1, "Events", "reports the outcome; decisions still pending are sent later"),
        ],
    ),
}

BOX, GAP, TOP, LANE = 76, 22, 48, 252
WIDTH = LANE * len(LANES)


def box(lane, row, owner, action):
    x, y = lane * LANE + 10, TOP + row * (BOX + GAP)
    lines = textwrap.wrap(action, 35)
    words = "".join(
        f'<text x="{x + 10}" y="{y + 35 + 15 * number}">{html.escape(line)}</text>' for number, line in enumerate(lines)
    )
    return (
        f'<rect x="{x}" y="{y}" width="{LANE - 20}" height="{BOX}" rx="6" fill="#ffffff" stroke="#4a6a94"/>'
        f'<text x="{x + 10}" y="{y + 18}" font-weight="bold">{html.escape(owner)}</text>{words}'
    )


def arrow(begin, end, row):
    x, to = begin * LANE + LANE / 2, end * LANE + LANE / 2
    y = TOP + row * (BOX + GAP) + BOX
    return f'<path d="M{x:g} {y}L{to:g} {y + GAP}" stroke="#4a6a94" fill="none" marker-end="url(#end)"/>'


def drawing(title, steps):
    height = TOP + len(steps) * (BOX + GAP)
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}"'
        ' font-family="sans-serif" font-size="12">',
        f"<title>{html.escape(title)}</title>",
        '<rect width="100%" height="100%" fill="#ffffff"/>',
        '<defs><marker id="end" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="9" markerHeight="9"'
        ' markerUnits="userSpaceOnUse" orient="auto"><path d="M0 0L8 4L0 8z" fill="#4a6a94"/></marker></defs>',
    ]
    for number, lane in enumerate(LANES):
        if number % 2 == 0:
            lines.append(f'<rect x="{number * LANE}" width="{LANE}" height="{height}" fill="#f1f4f8"/>')
        lines.append(f'<text x="{number * LANE + LANE / 2:g}" y="28" text-anchor="middle" font-size="14">{lane}</text>')
    for row, (lane, owner, action) in enumerate(steps):
        lines.append(box(lane, row, owner, action))
        if row + 1 < len(steps):
            lines.append(arrow(lane, steps[row + 1][0], row))
    return "\n".join([*lines, "</svg>", ""])


def main():
    for name, (title, steps) in ROADS.items():
        (pathlib.Path(__file__).parent / f"{name}.svg").write_text(drawing(title, steps))


main()
