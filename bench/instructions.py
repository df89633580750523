"""Compares what Callgrind counted with bench/instructions.txt, or writes that file anew. scripts/instructions calls
it."""

import argparse
import pathlib
import re
import sys

TOLERANCE = 0.05

HEAD = """\
# Instructions that each operation takes on a picture of 256 x 192 pixels, from the method's entry to its return, as
# Callgrind counts them in the native build. scripts/instructions compares, scripts/instructions --update writes anew.
# Counts hold for one version of the compiler and of the C library:
# made with: {made_with}
#
# level, picture, instructions, operation
"""


def counted(folder, levels):
    """(level, picture, operation): count, from the files of Callgrind, one for each call."""
    counts = {}
    for level in levels:
        for file in (folder / level).glob("callgrind.out.*"):
            text = file.read_text()
            name = re.search(r"^desc: Trigger: Client Request: (\S+) (.*)$", text, re.M)
            if name:
                total = re.search(r"^(?:summary|totals): (\d+)", text, re.M)
                counts[level, *name.groups()] = int(total.group(1))
    return counts


def read(file):
    """The counts of the file, and what they were made with."""
    counts, made_with = {}, ""
    for line in file.read_text().splitlines() if file.exists() else []:
        if line.startswith("# made with: "):
            made_with = line.removeprefix("# made with: ")
        elif line and not line.startswith("#"):
            level, picture, count, operation = line.split(maxsplit=3)
            counts[level, picture, operation] = int(count)
    return counts, made_with


def write(file, counts, made_with):
    lines = [f"{level:5} {picture:20} {count:>10}  {operation}"
             for (level, picture, operation), count in sorted(counts.items())]
    file.write_text(HEAD.format(made_with=made_with) + "\n".join(lines) + "\n")
    print(f"wrote {file}, {len(counts)} counts")


def compare(expected, counts, same_tools):
    """Tells what differs; whether all is well."""
    well = True
    for key in sorted(expected.keys() | counts.keys()):
        name = " ".join(key)
        if key not in counts or key not in expected:
            print(f"FAILED  {name}: {'missing' if key not in counts else 'new'}")
            well = False
            continue
        change = counts[key] / expected[key] - 1
        if abs(change) <= TOLERANCE:
            continue
        slower = change > 0
        word = "fewer " if not slower else "FAILED" if same_tools else "more  "
        print(f"{word}  {name}: {expected[key]} -> {counts[key]}, {100 * change:+.1f} %")
        well = well and not (slower and same_tools)
    return well


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--made-with", required=True)
    parser.add_argument("file", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("levels", nargs="+")
    arguments = parser.parse_args()
    counts = counted(arguments.folder, arguments.levels)
    if not counts:
        sys.exit("nothing was counted")
    expected, made_with = read(arguments.file)
    if arguments.update:
        others = {key: count for key, count in expected.items() if key[0] not in arguments.levels}
        write(arguments.file, {**others, **counts}, arguments.made_with)
        return
    print(f"{len(counts)} counts on {' and '.join(arguments.levels)}")
    same_tools = made_with == arguments.made_with
    if not same_tools:
        print(f"notice: the counts were made with {made_with or 'nothing'};\n"
              f"        this is {arguments.made_with}, so more instructions are no failure")
    here = {key: count for key, count in expected.items() if key[0] in arguments.levels}
    well = compare(here, counts, same_tools)
    print("all is well" if well else f"not as in {arguments.file}; if that is meant: scripts/instructions --update")
    sys.exit(not well)


if __name__ == "__main__":
    main()
