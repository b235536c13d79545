#!/usr/bin/env python3
"""documents.py TREE: the links of the pages lead to files and headings, pages of the package link to
nothing outside it, and each drawn picture has the labels of its .dot file."""

import fnmatch
import html
import os
import pathlib
import re
import sys

# What the package has of the tree besides the documents.
PACKAGED_FOLDERS = ("bindings", "examples")


def anchors(page):
    """The anchors of the headings, as GitHub makes them."""
    headings = re.findall(r"^#+ (.*)$", page, re.M)
    texts = [re.sub(r"\[([^]]*)\]\([^)]*\)", r"\1", heading) for heading in headings]
    return {re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", "-") for text in texts}


def links(page):
    return [link for link in re.findall(r"\]\(([^)\s]+)\)", page) if "://" not in link]


def patterns(cmake):
    """What the rule for docs/ installs, and what it leaves out."""
    rule = re.search(r"install\(DIRECTORY docs/(.*?)\)", cmake, re.S)[1]
    found = re.findall(r'PATTERN "?([^\s"]+)"?( EXCLUDE)?', rule)
    return ([name for name, excluded in found if not excluded],
            [name for name, excluded in found if excluded])


def is_packaged(path, wanted, excluded):
    """Whether the package has this file; `path` is relative to the tree."""
    if path.parts[0] in PACKAGED_FOLDERS:
        return True
    if path.parts[0] != "docs" or not any(fnmatch.fnmatch(path.name, one) for one in wanted):
        return False
    return not any(fnmatch.fnmatch(part, one) for part in path.parts[1:] for one in excluded)


def link_faults(tree, pages, rules):
    faults, count = [], 0
    for page in pages:
        for link in links((tree / page).read_text("utf-8")):
            count += 1
            name, _, anchor = link.partition("#")
            target = pathlib.Path(os.path.normpath(page.parent / name)) if name else page
            if not (tree / target).exists():
                faults.append(f"{page}: no {link}")
            elif anchor and anchor not in anchors((tree / target).read_text("utf-8")):
                faults.append(f"{page}: no heading for {link}")
            elif is_packaged(page, *rules) and not is_packaged(target, *rules):
                faults.append(f"{page} is in the package, and {link} is not")
    return faults, count


def unescaped(text):
    """A text of an SVG or of an HTML label, with one kind of space."""
    return html.unescape(text).replace("\u00a0", " ").strip()


def labels(dot):
    """The lines of all labels."""
    dot = re.sub(r"^\s*//.*$", "", dot, flags=re.M)
    plain = re.findall(r'label="((?:[^"\\]|\\.)*)"', dot)
    lines = [line.replace("\\\\", "\\") for text in plain for line in text.split("\\n")]
    for markup in re.findall(r"label=<(.*?)>\]", dot, re.S):
        lines += re.split(r"<[^>]*>", markup)
    return {unescaped(line) for line in lines} - {""}


def picture_faults(tree):
    faults, count = [], 0
    for dot in sorted((tree / "docs/pictures").glob("*.dot")):
        drawn = dot.with_suffix(".svg")
        texts = set()
        if drawn.exists():
            texts = {unescaped(text)
                     for text in re.findall(r"<text [^>]*>(.*?)</text>", drawn.read_text("utf-8"))}
        wanted = labels(dot.read_text("utf-8"))
        count += len(wanted)
        name = drawn.relative_to(tree)
        faults += [f"{name} lacks: {one} (toolchain/pictures.sh draws it)" for one in sorted(wanted - texts)]
        faults += [f"{name} has an old text: {one}" for one in sorted(texts - wanted)]
    return faults, count


def main(tree):
    tree = pathlib.Path(tree)
    pages = [path.relative_to(tree)
             for path in [tree / "README.md", *sorted(tree.glob("docs/**/*.md"))]]
    rules = patterns((tree / "cmake/Package.cmake").read_text("utf-8"))
    faults, link_count = link_faults(tree, pages, rules)
    more, label_count = picture_faults(tree)
    faults += more
    if link_count <= 20 or label_count <= 20:
        faults.append(f"only {link_count} links and {label_count} labels found")
    for line in faults or [f"{link_count} links, {label_count} labels"]:
        print(line)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
