#!/usr/bin/env python3
"""Turns the lines of JSON that the measurements left in a folder into tables and a chart.

report.py table FOLDER     raw.jsonl: table on the terminal; results.json and chart.svg in FOLDER
report.py check FOLDER     the same, and compares the ratios with the recorded ones
report.py native FOLDER    native.jsonl: table
report.py count FOLDER     counts.jsonl: table
report.py record FOLDER    the table, and the figures of bench/recorded.json and docs of all three
"""
import json
import math
import re
import statistics
import sys
from pathlib import Path

TREE = Path(__file__).resolve().parent.parent
RECORDED = TREE / "bench" / "recorded.json"
PAGE = TREE / "docs" / "performance.md"
CHART = TREE / "docs" / "performance.svg"

# A ratio may be this many times the recorded one; noise of a shared machine stays below.
CHECK_FACTOR = 1.6
DLL_LIMIT = 600 * 1024
MEMORY_LIMIT = 3.0  # of the file


def core(samples):
    quarter = len(samples) // 4
    return sorted(samples)[quarter:len(samples) - quarter]


def spread(samples):
    middle = core(samples)
    return middle[-1] / middle[0]


def read(path):
    rows, footprint = [], None
    for line in Path(path).read_text().splitlines():
        row = json.loads(line)
        if row["row"] == "footprint":
            footprint = row["numbers"]
        else:
            rows.append(summary(row) if has_ratio(row) else row)
    return rows, footprint


def has_ratio(row):
    """Not those of which only the quantiles of single times are shown."""
    return row.get("quantile") != 0


def with_ratios(rows):
    return [row for row in rows if has_ratio(row)]


def summary(row):
    """Ratios are those of neighbouring samples, so that what slows both down does not count."""
    library = row["sides"][0]["samples"]
    for side in row["sides"]:
        samples = side["samples"]
        side["median"] = statistics.median(samples)
        side["spread"] = spread(samples)
        side["ratio"] = statistics.median(a / b for a, b in zip(library, samples))
    row["spread"] = max(side["spread"] for side in row["sides"])
    return row


def time(nanoseconds):
    for limit, divisor, unit in ((1e3, 1, "ns"), (1e6, 1e3, "µs"), (1e9, 1e6, "ms")):
        if nanoseconds < limit:
            break
    return f"{nanoseconds / divisor:.3g} {unit}"


def verdict(side):
    if not side["aim"]:
        return ""
    return "met" if side["ratio"] <= side["aim"] else "missed"


def cells(rows):
    """One line for each competitor of each row."""
    for row in with_ratios(rows):
        library = row["sides"][0]
        for side in row["sides"][1:]:
            aim = f"≤ {side['aim']:.2g}" if side["aim"] else "–"
            yield (row["row"], time(library["median"]), side["name"], time(side["median"]),
                   f"{side['ratio']:.2f}", aim, verdict(side),
                   f"{max(library['spread'], side['spread']):.2f}")


def footprint_lines(numbers):
    ratio = numbers["private"] / numbers["file"]
    return [
        f"DLL without debug data: {numbers['dll'] / 1024:.0f} KiB (aim: under 600: "
        f"{'met' if numbers['dll'] < DLL_LIMIT else 'missed'})",
        f"Private bytes that the initialisation takes at 1,000 instances: "
        f"{numbers['private'] / 1024:.0f} KiB, {ratio:.2f} times the file of "
        f"{numbers['file'] / 1024:.0f} KiB (aim: ≤ 3: {'met' if ratio <= MEMORY_LIMIT else 'missed'})",
    ]


HEAD = ("row", "library", "against", "takes", "ratio", "aim", "", "spread")


def print_table(lines):
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    for line in lines:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())


def markdown(lines):
    head, *rest = ["| " + " | ".join(line) + " |" for line in lines]
    return "\n".join([head, "|" + "---|" * len(lines[0]), *rest])


def rows_table(rows):
    return [HEAD, *cells(rows)]


def native_table(rows):
    """Without the aims, which are for Windows' calls."""
    return [HEAD[:5] + HEAD[7:], *(line[:5] + line[7:] for line in cells(rows))]


def quantiles_table(rows):
    """Of single times, of each side."""
    quantiles = ("0.5", "0.99", "0.999", "1")
    lines = [("row", "side", "median", "99 %", "99.9 %", "longest")]
    for row in rows:
        for side in row["sides"]:
            if "quantiles" in side:
                lines.append((row["row"], side["name"],
                              *(time(side["quantiles"][quantile]) for quantile in quantiles)))
    return lines


def print_tables(table, rows):
    quantiles = quantiles_table(rows)
    for lines in (table, quantiles):
        if len(lines) > 1:
            print_table(lines)
            print()


def read_counts(path):
    return [json.loads(line) for line in Path(path).read_text().splitlines()]


def counts_table(counts):
    """Instructions of one piece of work, of each side."""
    lines = [("row", "library", "against", "instructions", "ratio")]
    for row in counts:
        own, *others = row["instructions"].items()
        for name, value in others:
            lines.append((row["row"], f"{own[1]:,.0f}", name, f"{value:,.0f}",
                          f"{own[1] / value:.2f}"))
    return lines


def chart(rows):
    """Bars of the ratios on a logarithmic scale; a tick where the aim is."""
    bars = [(row["row"], side) for row in with_ratios(rows) for side in row["sides"][1:]]
    height, left, width, top = 16, 330, 520, 40
    low, high = math.log10(0.01), math.log10(10)

    def x(ratio):
        part = (math.log10(min(max(ratio, 0.01), 10)) - low) / (high - low)
        return left + part * width

    out = [f'<svg xmlns="http://www.w3.org/2000/svg" font-family="sans-serif" font-size="11" '
           f'width="{left + width + 60}" height="{top + height * len(bars) + 20}">',
           '<rect width="100%" height="100%" fill="white"/>',
           f'<text x="{left}" y="14">time of the library / time of the other; shorter is better; '
           'the tick is the aim</text>']
    for mark in (0.01, 0.1, 1, 10):
        out.append(f'<line x1="{x(mark):.0f}" x2="{x(mark):.0f}" y1="{top - 6}" '
                   f'y2="{top + height * len(bars)}" stroke="{"#444" if mark == 1 else "#ddd"}"/>'
                   f'<text x="{x(mark) - 8:.0f}" y="{top - 10}">{mark:g}</text>')
    for i, (name, side) in enumerate(bars):
        y = top + i * height
        colour = {"met": "#2a7", "missed": "#d62", "": "#99b"}[verdict(side)]
        out.append(f'<text x="{left - 6}" y="{y + 11}" text-anchor="end">{name} / '
                   f'{side["name"]}</text>')
        out.append(f'<rect x="{left}" y="{y + 2}" width="{x(side["ratio"]) - left:.1f}" '
                   f'height="{height - 5}" fill="{colour}"/>')
        out.append(f'<text x="{x(side["ratio"]) + 4:.0f}" y="{y + 11}">{side["ratio"]:.2f}</text>')
        if side["aim"]:
            out.append(f'<line x1="{x(side["aim"]):.1f}" x2="{x(side["aim"]):.1f}" y1="{y}" '
                       f'y2="{y + height - 1}" stroke="black" stroke-width="2"/>')
    return "\n".join(out + ["</svg>"]) + "\n"


def ratios(rows):
    return {row["row"]: {side["name"]: round(side["ratio"], 3) for side in row["sides"][1:]}
            for row in with_ratios(rows)}


def check(rows):
    recorded = json.loads(RECORDED.read_text())
    failed = 0
    for name, sides in ratios(rows).items():
        for side, ratio in sides.items():
            before = recorded.get(name, {}).get(side)
            if before is None or ratio <= before * CHECK_FACTOR:
                continue
            failed += 1
            print(f"slower: {name} against {side}: ratio {ratio:.2f}, recorded {before:.2f}")
    print(f"{failed} ratios are too far above the recorded ones")
    return 1 if failed else 0


def replace(page, name, text):
    """Puts a text between the page's two marks of that name."""
    begin, end = f"<!-- {name} -->", f"<!-- end of {name} -->"
    return re.sub(f"{begin}.*{end}", lambda _: f"{begin}\n{text}\n{end}", page, flags=re.S)


def record(rows, footprint, folder):
    RECORDED.write_text(json.dumps(ratios(rows), indent=1, ensure_ascii=False) + "\n")
    CHART.write_text(chart(rows))
    lines = "\n".join("- " + line for line in footprint_lines(footprint))
    page = replace(PAGE.read_text(), "figures", markdown(rows_table(rows)) + "\n\n" + lines)
    page = replace(page, "single times", markdown(quantiles_table(rows)))
    native, _ = read(folder / "native.jsonl")
    page = replace(page, "native figures", markdown(native_table(native)))
    counts = markdown(counts_table(read_counts(folder / "counts.jsonl")))
    PAGE.write_text(replace(page, "counts", counts))


def main():
    mode, folder = sys.argv[1], Path(sys.argv[2])
    if mode == "count":
        print_table(counts_table(read_counts(folder / "counts.jsonl")))
        return 0
    rows, footprint = read(folder / ("native.jsonl" if mode == "native" else "raw.jsonl"))
    if not rows and not footprint:
        sys.exit("nothing was measured")
    if mode == "native":
        print_tables(native_table(rows), rows)
        return 0
    print_tables(rows_table(rows), rows)
    for line in footprint_lines(footprint) if footprint else []:
        print(line)
    results = {"rows": rows, "footprint": footprint}
    (folder / "results.json").write_text(json.dumps(results, indent=1, ensure_ascii=False) + "\n")
    (folder / "chart.svg").write_text(chart(rows))
    if mode == "record":
        record(rows, footprint, folder)
    return check(rows) if mode == "check" else 0


if __name__ == "__main__":
    sys.exit(main())
