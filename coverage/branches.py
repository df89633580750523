"""Tells by file how many branches of the product the tests take, and fails where one is neither
taken nor named in coverage/untaken.txt. scripts/coverage calls it with gcovr's report in JSON."""

import collections
import fnmatch
import functools
import json
import pathlib
import re
import sys

NAMED = pathlib.Path("coverage/untaken.txt")
ENTRY = re.compile(r"(?P<file>.+?\.(?:cpp|h)): (?P<code>.*)")


def named():
    """The entries `FILE: CODE`, each with whether a reason is below it, indented."""
    entries, group = {}, []
    for line in NAMED.read_text().splitlines():
        if line.startswith("#") or not line.strip():
            continue
        if line.startswith(" "):
            entries.update(dict.fromkeys(group, True))
            continue
        if group and entries[group[-1]]:
            group = []
        match = ENTRY.fullmatch(line) or sys.exit(f"{NAMED}: not understood: {line}")
        group.append((match["file"], match["code"]))
        entries[group[-1]] = False
    return entries


def names(file, code, entry):
    return fnmatch.fnmatchcase(file, entry[0]) and (code == entry[1] or fnmatch.fnmatchcase(code, entry[1]))


def main():
    entries = named()
    met, troubles = set(), [f"no reason for {file}: {code}" for (file, code), reason in entries.items() if not reason]
    rows = collections.defaultdict(collections.Counter)
    for report in json.loads(pathlib.Path(sys.argv[1]).read_text())["files"]:
        file = report["file"]
        text = pathlib.Path(file).read_text().splitlines()
        for line in report["lines"]:
            branches = [branch["count"] > 0 for branch in line["branches"]]
            untaken = len(branches) - sum(branches)
            code = text[line["line_number"] - 1].strip()
            entry = next(filter(functools.partial(names, file, code), entries), None)
            state = "named" if entry else "untold"
            if untaken:
                met.add(entry)
                if not entry:
                    troubles.append(f"{file}:{line['line_number']}: {untaken} of {len(branches)} not taken: {code}")
            for row in (file, "all"):
                rows[row].update({"branches": len(branches), "taken": sum(branches), state: untaken})
    troubles += [f"{NAMED}: every branch is taken: {file}: {code}" for file, code in entries.keys() - met]

    width = max(map(len, rows))
    print(f"{'file':{width}} {'branches':>9} {'taken':>9} {'named':>9} {'untold':>9}")
    for row in sorted((row for row in rows if rows[row]["branches"]), key=lambda name: (name == "all", name)):
        print(f"{row:{width}}" + "".join(f" {rows[row][column]:9}" for column in ("branches", "taken", "named", "untold")))
    print(*troubles, sep="\n")
    sys.exit(bool(troubles))


main()
