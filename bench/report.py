#!/usr/bin/env python3
"""Turns the measurements in a folder, lines of JSON, into tables and a chart.

report.py table FOLDER     raw.jsonl: table on the terminal; results.json and chart.svg in FOLDER
report.py check FOLDER     the same, and compares the ratios with the recorded ones
report.py native FOLDER    native.jsonl: table
report.py count FOLDER     counts.jsonl: table
report.py record FOLDER    the table; updates bench/recorded.json and the figures of docs from all three
report.py draw             draws the charts of docs from the recorded figures
"""
import collections
import html
import json
import math
import re
import statistics
import sys
from pathlib import Path

TREE = Path(__file__).resolve().parent.parent
RECORDED = TREE / "bench" / "recorded.json"
PAGE = TREE / "docs" / "explanation" / "performance.md"
CHART = TREE / "docs" / "explanation" / "performance.svg"
SUMMARY_CHART = TREE / "docs" / "explanation" / "performance-summary.svg"

# The rows of the summary, and the alternative of each.
SUMMARY = {
    ("load/10", "QSettings"): "Read the file of 10 instances",
    ("get/string", "QSettings value()"): "Read a setting",
    ("set/string", "QSettings setValue()"): "Change a setting",
    ("commit/1/10", "QSettings"): "Save one change, 10 instances",
    ("instances/10", "QJsonDocument"): "List 10 instances as JSON",
    ("apps/10", "QJsonDocument"): "List 10 apps as JSON",
    ("log/written", "spdlog"): "Write a line of the log",
    ("events/latency", "QLocalServer"): "Get an event, from its sending on",
}

MET, MISSED, NO_AIM = "#2a78b4", "#e08214", "#aab"
MIDDLE, END, BOLD = 'text-anchor="middle"', 'text-anchor="end"', 'font-weight="bold"'

# Maximum factor between a ratio and the recorded one. Noise of a shared machine is lower.
CHECK_FACTOR = 1.6
DLL_LIMIT = 600 * 1024
MEMORY_LIMIT = 3.0  # of the file

Bar = collections.namedtuple("Bar", "row library against takes ratio text aim")


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
    """False for rows that only show quantiles."""
    return row.get("quantile") != 0


def with_ratios(rows):
    return [row for row in rows if has_ratio(row)]


def summary(row):
    """Ratios of neighbouring samples, so that load on the machine cancels out."""
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


def verdict(ratio, aim):
    if not aim:
        return ""
    return "met" if ratio <= aim else "missed"


def cells(rows):
    """A line for each competitor of each row."""
    for row in with_ratios(rows):
        library = row["sides"][0]
        for side in row["sides"][1:]:
            aim = f"≤ {side['aim']:.2g}" if side["aim"] else "–"
            yield (row["row"], time(library["median"]), side["name"], time(side["median"]),
                   f"{side['ratio']:.2f}", aim, verdict(side["ratio"], side["aim"]),
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
    """The table without aims, because the aims are for Windows."""
    return [HEAD[:5] + HEAD[7:], *(line[:5] + line[7:] for line in cells(rows))]


def quantiles_table(rows):
    """The quantiles of each side's times of single operations."""
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
    """Instructions per operation of each side."""
    lines = [("row", "library", "against", "instructions", "ratio")]
    for row in counts:
        own, *others = row["instructions"].items()
        for name, value in others:
            lines.append((row["row"], f"{own[1]:,.0f}", name, f"{value:,.0f}",
                          f"{own[1] / value:.2f}"))
    return lines


def bars_of(rows):
    """The data of the charts, from the measurements."""
    return [Bar(row["row"], time(row["sides"][0]["median"]), side["name"], time(side["median"]),
                side["ratio"], f"{side['ratio']:.2f}", side["aim"] or None)
            for row in with_ratios(rows) for side in row["sides"][1:]]


def recorded_bars():
    """The same data from the recorded ratios and the page's table."""
    recorded = json.loads(RECORDED.read_text())
    table = re.search("<!-- figures -->\n(.*?)\n\n", PAGE.read_text(), re.S).group(1)
    bars = []
    for line in table.splitlines()[2:]:
        row, library, against, takes, text, aim, *_ = [cell.strip() for cell in line[1:-1].split("|")]
        bars.append(Bar(row, library, against, takes, recorded[row][against],
                        text, None if aim == "–" else float(aim[1:])))
    return bars


def label(x, y, text, more=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" {more}>{html.escape(text)}</text>'


def box(x, y, width, height, colour):
    return (f'<rect x="{x:.1f}" y="{y:.1f}" width="{width:.1f}" height="{height:.1f}" '
            f'fill="{colour}"/>')


def upright(x, top, bottom, colour, width=1):
    return (f'<line x1="{x:.1f}" x2="{x:.1f}" y1="{top:.1f}" y2="{bottom:.1f}" stroke="{colour}" '
            f'stroke-width="{width}"/>')


def picture(width, height, parts):
    start = (f'<svg xmlns="http://www.w3.org/2000/svg" font-family="sans-serif" font-size="12" '
             f'width="{width}" height="{height}" viewBox="0 0 {width} {height}">')
    return "\n".join([start, box(0, 0, width, height, "white"), *parts, "</svg>"]) + "\n"


def legend(x, y, entries):
    """Entries are a colour, a text and the text's width; an empty colour is the aim's tick."""
    parts = []
    for colour, text, width in entries:
        parts.append(box(x, y - 9, 14, 10, colour) if colour
                     else upright(x + 7, y - 10, y + 2, "black", 2))
        parts.append(label(x + 20, y, text))
        x += width + 40
    return parts


def chart(bars):
    """Ratios as bars on a logarithmic scale, with a tick at the aim and the figures in a column."""
    height, left, width, top = 17, 370, 450, 62
    low, high = math.log10(0.01), math.log10(10)
    bottom = top + height * len(bars)

    def x(ratio):
        part = (math.log10(min(max(ratio, 0.01), 10)) - low) / (high - low)
        return left + part * width

    parts = [label(8, 18, "Time of the library as a multiple of the other's: shorter is better")]
    parts += legend(8, 38, [(MET, "aim met", 55), (MISSED, "aim missed", 70), (NO_AIM, "no aim", 45),
                            ("", "the aim", 50)])
    for mark in (0.01, 0.1, 1, 10):
        parts.append(upright(x(mark), top - 4, bottom, "#444" if mark == 1 else "#ddd"))
        parts.append(label(x(mark), top - 8, f"{mark:g}", MIDDLE))
    for i, bar in enumerate(bars):
        y = top + i * height
        colour = {"met": MET, "missed": MISSED, "": NO_AIM}[verdict(bar.ratio, bar.aim)]
        parts.append(label(left - 8, y + 13, f"{bar.row} / {bar.against}", END))
        parts.append(box(left, y + 3, x(bar.ratio) - left, height - 6, colour))
        parts.append(label(left + width + 50, y + 13, bar.text, END))
        if bar.aim:
            parts.append(upright(x(bar.aim), y + 1, y + height - 1, "black", 2))
    return picture(left + width + 60, bottom + 10, parts)


def summary_chart(bars):
    """The most frequent operations and their alternatives, on a linear scale from zero."""
    known = {(bar.row, bar.against): bar for bar in bars}
    shown = [(words, known[key]) for key, words in SUMMARY.items() if key in known]
    height, left, width, top = 30, 270, 300, 76
    bottom = top + height * len(shown)

    def x(ratio):
        return left + min(ratio, 2) / 2 * width

    parts = [label(8, 18, "Time of the library, where the other takes 1: shorter is better", BOLD)]
    parts += legend(8, 40, [(MET, "faster than the other", 135), (MISSED, "slower", 45)])
    for mark in (0, 0.5, 1, 1.5, 2):
        parts.append(upright(x(mark), top - 4, bottom, "#444" if mark == 1 else "#ddd"))
        parts.append(label(x(mark), top - 8, f"{mark:g}", MIDDLE))
    parts.append(label(left + width + 16, top - 8, "ratio"))
    parts.append(label(left + width + 56, top - 8, "library, other"))
    for i, (words, bar) in enumerate(shown):
        y = top + i * height
        parts.append(label(left - 10, y + 19, words, END))
        parts.append(box(left, y + 6, x(bar.ratio) - left, height - 12,
                         MET if bar.ratio <= 1 else MISSED))
        parts.append(label(left + width + 16, y + 19, bar.text, BOLD))
        other = bar.against.split(" ")[0]
        parts.append(label(left + width + 56, y + 19, f"{bar.library}, {other} {bar.takes}"))
    return picture(left + width + 270, bottom + 10, parts)


def draw():
    """Both charts of the page, from the recorded data."""
    bars = recorded_bars()
    CHART.write_text(chart(bars))
    SUMMARY_CHART.write_text(summary_chart(bars))


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
    """Replaces the text between the page's two marks of this name."""
    begin, end = f"<!-- {name} -->", f"<!-- end of {name} -->"
    return re.sub(f"{begin}.*{end}", lambda _: f"{begin}\n{text}\n{end}", page, flags=re.S)


def record(rows, footprint, folder):
    RECORDED.write_text(json.dumps(ratios(rows), indent=1, ensure_ascii=False) + "\n")
    lines = "\n".join("- " + line for line in footprint_lines(footprint))
    page = replace(PAGE.read_text(), "figures", markdown(rows_table(rows)) + "\n\n" + lines)
    page = replace(page, "single times", markdown(quantiles_table(rows)))
    native, _ = read(folder / "native.jsonl")
    page = replace(page, "native figures", markdown(native_table(native)))
    counts = markdown(counts_table(read_counts(folder / "counts.jsonl")))
    PAGE.write_text(replace(page, "counts", counts))
    draw()


def main():
    if sys.argv[1:] == ["draw"]:
        draw()
        return 0
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
    (folder / "chart.svg").write_text(chart(bars_of(rows)))
    if mode == "record":
        record(rows, footprint, folder)
    return check(rows) if mode == "check" else 0


if __name__ == "__main__":
    sys.exit(main())
