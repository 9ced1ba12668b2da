#!/usr/bin/env python3
"""Draws how costs grow, as docs/pictures/growth.svg, from the growth benchmarks:
  build/release/bin/quillon-bench --benchmark_filter=^growth --benchmark_out=growth.json
  bench/growth.py growth.json docs/pictures/growth.svg"""
import json
import math
import sys

PANELS = [("by purposes", "purposes of the configuration"), ("by decisions", "stored decisions")]
COLOURS = {"check": "#1b6ca8", "save": "#b5482a", "list": "#3c7a3c"}
WIDTH, HEIGHT, MARGIN = 400, 300, 60


def medians(report):
    """{(operation, panel): [(size, microseconds)]}"""
    lines = {}
    for run in report["benchmarks"]:
        if run.get("aggregate_name") != "median":
            continue
        _, what, size = run["run_name"].split("/")[:3]
        operation, panel = what.split(" ", 1)
        lines.setdefault((operation, panel), []).append((int(size), run["real_time"]))
    return {key: sorted(points) for key, points in lines.items()}


def ticks(low, high):
    return [10.0**power for power in range(math.floor(math.log10(low)), math.ceil(math.log10(high)) + 1)]


def number(value):
    return f"{value:,.0f}" if value >= 1 else f"{value:g}"


def panel(lines, name, label, left):
    mine = {operation: points for (operation, of), points in lines.items() if of == name}
    sizes = ticks(min(p[0] for points in mine.values() for p in points), max(p[0] for points in mine.values() for p in points))
    costs = ticks(min(p[1] for points in lines.values() for p in points), max(p[1] for points in lines.values() for p in points))

    def x(size):
        return left + MARGIN + WIDTH * math.log(size / sizes[0]) / math.log(sizes[-1] / sizes[0])

    def y(cost):
        return 30 + HEIGHT - HEIGHT * math.log(cost / costs[0]) / math.log(costs[-1] / costs[0])

    out = []
    for size in sizes:
        out.append(f'<path d="M{x(size):.1f} 30v{HEIGHT}" stroke="#ddd"/>')
        out.append(f'<text x="{x(size):.1f}" y="{HEIGHT + 48}" text-anchor="middle">{number(size)}</text>')
    for cost in costs:
        out.append(f'<path d="M{left + MARGIN} {y(cost):.1f}h{WIDTH}" stroke="#ddd"/>')
        out.append(f'<text x="{left + MARGIN - 6}" y="{y(cost) + 4:.1f}" text-anchor="end">{number(cost)}</text>')
    # Linear growth from the end of the first decade, for comparison.
    start = sizes[1]
    out.append(
        f'<path d="M{x(start):.1f} {y(costs[1]):.1f}L{x(sizes[-1]):.1f} {y(min(costs[-1], costs[1] * sizes[-1] / start)):.1f}" '
        'stroke="#999" stroke-dasharray="4 4" fill="none"/>')
    labels = []
    for operation, points in sorted(mine.items(), key=lambda line: line[1][-1][1]):
        path = "L".join(f"{x(size):.1f} {y(cost):.1f}" for size, cost in points)
        out.append(f'<path d="M{path}" stroke="{COLOURS[operation]}" stroke-width="2" fill="none"/>')
        size, cost = points[-1]
        labels.append(min([y(cost) - 8] + [other - 13 for other in labels]))  # keep the label clear of the others
        out.append(f'<text x="{x(size) - 4:.1f}" y="{labels[-1]:.1f}" text-anchor="end" '
                   f'fill="{COLOURS[operation]}">{operation}</text>')
    out.append(f'<text x="{left + MARGIN + WIDTH / 2}" y="{HEIGHT + 70}" text-anchor="middle">{label}</text>')
    return out


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        lines = medians(json.load(file))
    step = WIDTH + MARGIN + 30
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{2 * step}" height="{HEIGHT + 85}" '
           'font-family="sans-serif" font-size="12">', '<rect width="100%" height="100%" fill="#fff"/>',
           '<text x="8" y="16">microseconds; dashed: in proportion</text>']
    for index, (name, label) in enumerate(PANELS):
        out += panel(lines, name, label, index * step)
    with open(sys.argv[2], "w", encoding="utf-8") as file:
        file.write("\n".join(out + ["</svg>"]) + "\n")


main()
