"""Plants bugs in the product, one at a time, and reports those that no test notices. scripts/mutate calls it."""

import argparse
import collections
import fnmatch
import pathlib
import queue
import re
import signal
import subprocess
import sys
import threading

from operators import enumerate_mutants
from workbench import PROGRAMS, Workbench

JUSTIFIED = pathlib.Path("mutants/justified.txt")
FOLDER = pathlib.Path("build/mutants")
SPEED = "Speed:"  # the reason of a mutant that changes only the speed begins with this
TITLES = {"speed": "change the speed only", "same": "have another reason to live", "gap": "have no reason to live"}
ENTRY = re.compile(r"(?P<file>.+?\.(?:cpp|h)) (?P<operator>[^ :]+): (?P<code>.*)")


def all_mutants():
    listing = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--",
                              "source", "Glue Code"], check=True, text=True, stdout=subprocess.PIPE).stdout
    files = sorted({name for name in listing.split("\0") if re.search(r"\.(cpp|h)$", name)})
    return [mutant for file in files if pathlib.Path(file).is_file()
            for mutant in enumerate_mutants(file, pathlib.Path(file).read_text())]


def chosen(mutants, filters, sample):
    """The mutants that a filter names or matches; if a number is given, so many of these at equal distances."""
    if filters:
        names = set(filters) & {mutant.name for mutant in mutants}
        patterns = [re.compile(text) for text in filters if text not in names]
        mutants = [mutant for mutant in mutants
                   if mutant.name in names or any(pattern.search(mutant.name) for pattern in patterns)]
    if sample is None or sample >= len(mutants):
        return mutants
    return [mutants[(2 * i + 1) * len(mutants) // (2 * sample)] for i in range(sample)]


class Justification:
    """Mutants that may survive: groups of entries `FILE OPERATOR: CODE`, each followed by its indented reason. The
    operator is the end of the mutant's name, with #n for the nth on the line, and may have wildcards. The code is the
    whole line."""

    def __init__(self, text):
        self.entries, group = [], []
        is_reason = False
        for line in text.splitlines():
            if line.startswith("#") or not line.strip():
                continue
            if line.startswith(" "):
                is_reason = True
                for entry in group:
                    entry["reason"] = (entry["reason"] + " " + line.strip()).strip()
                continue
            if is_reason:
                group, is_reason = [], False
            match = ENTRY.fullmatch(line)
            if not match:
                sys.exit(f"{JUSTIFIED}: not understood: {line}")
            group.append({**match.groupdict(), "reason": ""})
            self.entries.append(group[-1])

    def reason(self, mutant):
        return next((entry["reason"] for entry in self.entries if self._is(entry, mutant)), "")

    def check(self, mutants):
        """Ends the program if an entry has no reason or matches no mutant."""
        for entry in self.entries:
            name = f"{entry['file']} {entry['operator']}: {entry['code']}"
            if not entry["reason"]:
                sys.exit(f"{JUSTIFIED}: no reason for: {name}")
            if not any(self._is(entry, mutant) for mutant in mutants):
                sys.exit(f"{JUSTIFIED}: there is no such mutant: {name}")

    @staticmethod
    def _is(entry, mutant):
        return (entry["file"] == mutant.file and entry["code"] == mutant.code
                and fnmatch.fnmatchcase(mutant.name.rpartition(":")[2], entry["operator"]))


def run(mutants, workers, without):
    """Judges all mutants; returns a list of (mutant, result) in their order. Each worker takes the next mutant, so
    successive ones are mostly in the same file and share compilations."""
    seconds = {}
    benches = [Workbench(pathlib.Path.cwd(), FOLDER.absolute() / f"tree-{i + 1}", seconds, without)
               for i in range(workers)]
    todo, results, troubles = queue.Queue(), {}, []
    files = sorted({mutant.file for mutant in mutants})
    for mutant in mutants:
        todo.put(mutant)

    def work(bench):
        try:
            bench.prepare(files, checks=bench is benches[0])
            while not troubles:
                mutant = todo.get_nowait()
                results[mutant.name] = result = bench.judge(mutant)
                how = f" by {result.kind}: {result.how}" if result.kind else ""
                print(f"[{len(results)}/{len(mutants)}] {mutant.name}: {result.outcome}{how}", flush=True)
        except queue.Empty:
            pass
        except BaseException as trouble:
            troubles.append(trouble)

    threads = [threading.Thread(target=work, args=(bench,), daemon=True) for bench in benches]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    if troubles:
        raise troubles[0]
    return [(mutant, results[mutant.name]) for mutant in mutants]


def table(results):
    """A table by file: the number of mutants, those that each kind of test killed, and the others."""
    kinds = [kind for kind in PROGRAMS if any(result.kind == kind for _, result in results)]
    columns = ["mutants", *kinds, "stillborn", "equal", "survived"]
    rows = collections.defaultdict(collections.Counter)
    for mutant, result in results:
        for row in (mutant.file, "all"):
            rows[row].update({"mutants": 1, result.kind or result.outcome: 1})
    width = max(map(len, rows), default=0)
    lines = [f"{'file':{width}}" + "".join(f" {column:>9}" for column in columns)]
    for row in sorted(rows, key=lambda name: (name == "all", name)):
        lines.append(f"{row:{width}}" + "".join(f" {rows[row][column] or '-':>9}" for column in columns))
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--workers", type=int, default=2)
    parser.add_argument("--without", action="append", choices=PROGRAMS, default=[])
    parser.add_argument("filters", nargs="*")
    arguments = parser.parse_args()
    everything = all_mutants()
    justification = Justification(JUSTIFIED.read_text() if JUSTIFIED.exists() else "")
    justification.check(everything)
    sample = arguments.sample or (None if arguments.filters or arguments.list else 400)
    mutants = chosen(everything, arguments.filters, sample)
    if not mutants:
        sys.exit("no such mutant")
    if arguments.list:
        signal.signal(signal.SIGPIPE, signal.SIG_DFL)  # the reader of the names may stop early
        print("\n".join(mutant.name for mutant in mutants))
        return

    results = run(mutants, arguments.workers, arguments.without)
    print(f"\n{len(mutants)} of {len(everything)} mutants\n\n{table(results)}")
    survivors = collections.defaultdict(list)
    for mutant, result in results:
        if result.outcome == "survived":
            reason = justification.reason(mutant)
            survivors["speed" if reason.startswith(SPEED) else "same" if reason else "gap"].append((mutant, reason))
    for kind, title in TITLES.items():
        print(f"\n{len(survivors[kind])} survivors {title}")
        for mutant, reason in survivors[kind]:
            print(f"\n{mutant.name}{': ' + reason if reason else ''}\n- {mutant.before}\n+ {mutant.after}")
    sys.exit(bool(survivors["gap"]))


if __name__ == "__main__":
    main()
