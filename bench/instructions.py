"""Compares Callgrind's counts with bench/instructions.txt, or updates that file. scripts/instructions calls it."""

import argparse
import pathlib
import re
import sys

TOLERANCE = 0.05

HEAD = """\
# Instructions for each pixel of a picture of 320 x 1000, from the method's entry to its return, as
# Callgrind counts them in the native build: without yields, and with a yield every 10000 pixels.
# scripts/instructions compares, scripts/instructions --update writes anew. Counts hold for one
# version of the compiler and of the C library:
# made with: {made_with}
#
# picture; without yields and with yields at each level; operation
# levels: {levels}
"""
PIXELS = 320 * 1000
YIELDS = ("0", "10000")


def counted(folder):
    """The instructions per pixel without and with yields, by (level, picture, operation). Callgrind writes one file per
    call."""
    counts = {}
    for file in folder.glob("*.out.*"):
        text = file.read_text()
        name = re.search(r"^desc: Trigger: Client Request: (\S+) (\S+) (\d+) (.*)$", text, re.M)
        if name:
            level, picture, pace, operation = name.groups()
            total = int(re.search(r"^(?:summary|totals): (\d+)", text, re.M).group(1))
            counts.setdefault((level, picture, operation), [0, 0])[YIELDS.index(pace)] = round(total / PIXELS, 3)
    return counts


def read(file):
    """The counts in the file, and the versions that gave them. Ignores other lines, which a merge may leave."""
    counts, made_with, levels = {}, "", []
    for line in file.read_text().splitlines() if file.exists() else []:
        if line.startswith("# made with: "):
            made_with = line.removeprefix("# made with: ")
        elif line.startswith("# levels: "):
            levels = line.removeprefix("# levels: ").split()
        elif match := re.fullmatch(r"(\S+)((?: +[\d.]+ +[\d.]+| +- +-)+)  (.*)", line):
            picture, cells, operation = match[1], match[2].split(), match[3]
            for level, *both in zip(levels, cells[::2], cells[1::2]):
                if both[0] != "-":
                    counts[level, picture, operation] = [float(count) for count in both]
    return counts, made_with


def write(file, counts, made_with):
    levels = sorted({level for level, *_ in counts})
    lines = []
    for picture, operation in sorted({(picture, operation) for _, picture, operation in counts}):
        cells = [count if count == "-" else f"{count:.3f}" for level in levels
                 for count in counts.get((level, picture, operation), "--")]
        lines.append(f"{picture:20}{''.join(map('{:>9}'.format, cells))}  {operation}")
    file.write_text(HEAD.format(made_with=made_with, levels=" ".join(levels)) + "\n".join(lines) + "\n")
    print(f"wrote {file}, {len(lines)} lines")


def compare(expected, counts, same_tools):
    """Prints the differences. Returns whether there are none that fail."""
    well = True
    for key in sorted(expected.keys() | counts.keys()):
        name = " ".join(key)
        if key not in counts or key not in expected:
            print(f"FAILED  {name}: {'missing' if key not in counts else 'new'}")
            well = False
            continue
        for yields, before, now in zip(("", " with yields"), expected[key], counts[key]):
            change = now / before - 1
            if abs(change) <= TOLERANCE:
                continue
            slower = change > 0
            word = "fewer " if not slower else "FAILED" if same_tools else "more  "
            print(f"{word}  {name}{yields}: {before:.3f} -> {now:.3f}, {100 * change:+.1f} %")
            well = well and not (slower and same_tools)
    return well


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--made-with", required=True)
    parser.add_argument("file", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    arguments = parser.parse_args()
    counts = counted(arguments.folder)
    if not counts:
        sys.exit("nothing was counted")
    levels = sorted({level for level, *_ in counts})
    expected, made_with = read(arguments.file)
    if arguments.update:
        others = {key: count for key, count in expected.items() if key[0] not in levels}
        write(arguments.file, {**others, **counts}, arguments.made_with)
        return
    print(f"{2 * len(counts)} counts on {' and '.join(levels)}")
    same_tools = made_with == arguments.made_with
    if not same_tools:
        print(f"notice: the counts were made with {made_with or 'nothing'};\n"
              f"        this is {arguments.made_with}, so more instructions are no failure")
    here = {key: count for key, count in expected.items() if key[0] in levels}
    well = compare(here, counts, same_tools)
    print("all is well" if well else f"not as in {arguments.file}; if that is meant: scripts/instructions --update")
    sys.exit(not well)


if __name__ == "__main__":
    main()
