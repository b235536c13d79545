#!/usr/bin/env python3
"""screen.py TEXT PICTURE.svg: draws the console output of a program, following its escape sequences."""
import html
import re
import sys
import unicodedata
from pathlib import Path

COLUMN, ROW, MARGIN = 8.4, 19, 14
PIECE = re.compile(r"\x1b\[(\d*)([A-Za-z])|(.)", re.S)


def width(character):
    return 2 if unicodedata.east_asian_width(character) in "WF" else 1


class Screen:
    """Follows the sequences that bridgectl writes; any other is an error."""

    def __init__(self):
        self.rows = {}
        self.row = self.column = 0
        self.style = "0"

    def cut(self, row, column):
        self.rows[row] = {at: cell for at, cell in self.rows.get(row, {}).items() if at < column}

    def follow(self, number, command):
        if command == "H":
            self.row = self.column = 0
        elif command == "K":
            self.cut(self.row, self.column)
        elif command == "J" and number == "2":
            self.rows = {}
        elif command == "J":
            self.cut(self.row, self.column)
            self.rows = {row: cells for row, cells in self.rows.items() if row <= self.row}
        elif command == "m":
            self.style = number
        else:
            sys.exit(f"unknown escape sequence: {number}{command}")

    def write(self, text):
        for number, command, character in PIECE.findall(text):
            if command:
                self.follow(number, command)
            elif character == "\n":
                self.row, self.column = self.row + 1, 0
            else:
                self.rows.setdefault(self.row, {})[self.column] = (character, self.style)
                self.column += width(character)


def runs(cells):
    """Adjacent characters of one style and width, each run with its first column."""
    found = []
    for column, (character, style) in sorted(cells.items()):
        look = (style, width(character))
        start, last, text = found[-1] if found else (0, None, "")
        if last == look and start + len(text) * look[1] == column:
            found[-1] = (start, look, text + character)
        else:
            found.append((column, look, character))
    return found


def text_of(row, run):
    column, (style, columns), characters = run
    look = {"0": "", "1": ' font-weight="bold" fill="#fff"', "31": ' fill="#f66"'}[style]
    return (f'<text xml:space="preserve" x="{MARGIN + column * COLUMN:.1f}" '
            f'y="{MARGIN + row * ROW + 14}" textLength="{len(characters) * columns * COLUMN:.1f}" '
            f'lengthAdjust="spacingAndGlyphs"{look}>{html.escape(characters)}</text>')


def picture(screen):
    filled = {row: cells for row, cells in screen.rows.items() if cells}
    columns = max(column + width(cell[0]) for cells in filled.values()
                  for column, cell in cells.items())
    wide, high = 2 * MARGIN + columns * COLUMN, 2 * MARGIN + (max(filled) + 1) * ROW
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" font-family="monospace" font-size="14" '
             f'fill="#ddd" width="{wide:.0f}" height="{high}">',
             '<rect width="100%" height="100%" rx="8" fill="#1c1c1c"/>']
    parts += [text_of(row, run) for row in sorted(filled) for run in runs(filled[row])]
    return "\n".join(parts + ["</svg>"]) + "\n"


def main():
    screen = Screen()
    screen.write(Path(sys.argv[1]).read_text(encoding="utf-8").rstrip("\n"))
    Path(sys.argv[2]).write_text(picture(screen), encoding="utf-8")


if __name__ == "__main__":
    main()
