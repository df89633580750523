"""Turns the lines that the measuring programs wrote into tables: in the terminal, as results.json, and as the measured
parts of docs/benchmarks.md. scripts/bench calls it."""

import argparse
import json
import pathlib
import re
import statistics
import subprocess

CONTENTS = {"opaque": "opaque", "fading": "alpha from 0 to 255", "soft": "soft edges"}
PACKAGES = ("g++ libc6-dev libyuv-dev libopencv-core-dev libpixman-1-dev libleptonica-dev libvips-dev libstb-dev "
            "libimlib2-dev libgraphicsmagick1-dev").split()


def lines_of(file):
    return [json.loads(line) for line in file.read_text().splitlines()] if file.exists() else []


def output_of(*command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=False).stdout
    except FileNotFoundError:
        return ""


def machine(command):
    """What a number means nothing without."""
    cpu = re.search(r"^Model name:\s*(.*)$", output_of("lscpu"), re.M)
    caches = re.findall(r"^(L\d\w?) cache:\s*(.*)$", output_of("lscpu"), re.M)
    versions = output_of("dpkg-query", "-W", "-f=${Package} ${Version}\n", *PACKAGES).splitlines()
    return {
        "command": command,
        "date": output_of("date", "+%Y-%m-%d").strip(),
        "commit": output_of("git", "describe", "--always", "--dirty").strip(),
        "cpu": cpu.group(1) if cpu else "unknown",
        "caches": ", ".join(f"{name} {size}" for name, size in caches),
        "kernel": output_of("uname", "-sr").strip(),
        "compiler": output_of("c++", "--version").splitlines()[0],
        "packages": sorted(set(filter(None, versions))),
    }


# ---- Tables ----------------------------------------------------------------------------------------------------------


def is_number(cell):
    return re.fullmatch(r"[\d.]+|–", str(cell))


def markdown(head, rows):
    align = ["---:" if is_number(cell) else "---" for cell in rows[0]]
    return "\n".join("| " + " | ".join(map(str, row)) + " |" for row in [head, align, *rows])


def plain(head, rows):
    """The same for terminals."""
    widths = [max(len(str(row[i])) for row in [head, *rows]) for i in range(len(head))]
    numbers = [is_number(cell) for cell in rows[0]]

    def line(row):
        cells = zip(row, widths, numbers)
        return "  ".join(str(cell).rjust(width) if number else str(cell).ljust(width) for cell, width, number in cells)

    return "\n".join(line(row).rstrip() for row in [head, *rows])


def in_order(values):
    return list(dict.fromkeys(values))


def times(row, base="memcpy", of="ns"):
    return f"{row[of] / row[base]:.2f}"


def group(rows, *keys):
    groups = {}
    for row in rows:
        groups.setdefault(tuple(row[key] for key in keys), []).append(row)
    return groups


def method_table(rows):
    """One picture and ABI: operations by levels."""
    levels = in_order(row["level"] for row in rows)
    head = ["operation", "memcpy"] + [f"{level}{unit}" for level in levels for unit in (" ns", " ×")]
    table = []
    for (operation,), of_operation in group(rows, "operation").items():
        by_level = {row["level"]: row for row in of_operation}
        cells = [cell for level in levels for cell in (f"{by_level[level]['ns']:.3f}", times(by_level[level]))]
        table.append([operation, f"{of_operation[0]['memcpy']:.3f}", *cells])
    return head, table


def summary_of_methods(rows):
    """All operations, a column for each kind of picture, at 1920 x 1080 in multiples of memcpy."""
    levels = in_order(row["level"] for row in rows if row["bits"] == 64)
    best = levels[-1]
    columns = [(level, dict(bits=64, form="context", content="opaque", width=1920, level=level)) for level in levels]
    columns += [
        ("alpha 0–255", dict(bits=64, form="context", content="fading", width=1920, level=best)),
        ("soft edges", dict(bits=64, form="context", content="soft", width=1920, level=best)),
        ("buffer", dict(bits=64, form="buffer", content="opaque", width=1920, level=best)),
        ("32-bit", dict(bits=32, form="context", content="opaque", width=1920, level=best)),
        ("32-bit, alpha", dict(bits=32, form="context", content="fading", width=1920, level=best)),
    ]
    large = dict(bits=64, form="context", content="opaque", width=4000, level=best)
    def find(operation, wanted):
        found = [r for r in rows if r["operation"] == operation and wanted.items() <= r.items()]
        return found[0] if found else None
    table = []
    for operation in in_order(row["operation"] for row in rows):
        found = [find(operation, wanted) for _, wanted in columns]
        row = find(operation, large)
        table.append([operation, *(times(f) if f else "–" for f in found), f"{row['ns']:.2f}" if row else "–"])
    return ["operation"] + [name for name, _ in columns] + ["4000 × 3000, ns"], table


def spread(rows):
    """Half of the repetitions lie within this part of the median, on either side."""
    return statistics.median(max(row["high"] / row["ns"] - 1, 1 - row["low"] / row["ns"]) for row in rows)


def kernel_table(rows):
    levels = in_order(row["level"] for row in rows)
    lengths = sorted({row["n"] for row in rows})
    middle = 512 if 512 in lengths else lengths[-1]
    head = ["kernel", "content"] + levels + [f"{levels[-1]}, n = {n}" for n in lengths if n != middle]
    table = []
    for (kernel, content), of_kernel in group(rows, "kernel", "content").items():
        ns = {(row["level"], row["n"]): f"{row['ns']:.3f}" for row in of_kernel}
        cells = [ns[level, middle] for level in levels] + [ns[levels[-1], n] for n in lengths if n != middle]
        table.append([kernel, content, *cells])
    return head, table


def ahead(rows):
    """For each operation: the fastest of the others, against the plug-in in the same turns."""
    table = []
    for (operation,), of_operation in group(rows, "operation").items():
        best = min(of_operation, key=lambda row: row["theirs"] / row["ours"])
        factor = best["theirs"] / best["ours"]
        who = "LMX" if factor > 1 else best["library"]
        table.append([operation, times(best, of="ours"), times(best, of="theirs"), best["library"], who,
                      f"{max(factor, 1 / factor):.2f}", best["difference"]])
    return ["operation", "LMX", "best other", "which", "ahead", "by", "what the other does otherwise"], table


def peer_table(rows):
    table = []
    for (operation,), of_operation in group(rows, "operation").items():
        for row in sorted(of_operation, key=lambda row: row["theirs"] / row["ours"]):
            table.append([operation, row["library"], f"{row['theirs']:.3f}", times(row, of="theirs"),
                          f"{row['theirs'] / row['ours']:.2f}", row["difference"]])
    return ["operation", "library", "ns", "× memcpy", "÷ LMX", "what it does otherwise"], table


# ---- Output ----------------------------------------------------------------------------------------------------------


def print_tables(results):
    for (bits, form, content, width, height), rows in group(results.get("methods", []), "bits", "form", "content",
                                                            "width", "height").items():
        print(f"\nMethods, {bits}-bit, {form}, {CONTENTS[content]}, {width} x {height}: "
              "ns per pixel and multiples of memcpy")
        print(plain(*method_table(rows)))
    for (bits,), rows in group(results.get("kernels", []), "bits").items():
        print(f"\nKernels, {bits}-bit: ns per pixel, in runs of 512 where no other length is told")
        print(plain(*kernel_table(rows)))
    for (content,), rows in group(results.get("peers", []), "content").items():
        print(f"\nThe plug-in and the fastest of the others, {CONTENTS[content]}, 1920 x 1080: multiples of memcpy")
        print(plain(*ahead(rows)))


def sections(results):
    """The measured parts of the page, by name."""
    host = results["machine"]
    parts = {"machine": "\n".join([
        f"- Processor: {host['cpu']} ({host['caches']}), one core, one thread",
        f"- System: {host['kernel']}; compiler: {host['compiler']}, Release (`-O2`)",
        f"- Command: `{host['command']}`, {host['date']}",
        f"- Packages: {', '.join(host['packages'])}",
    ])}
    if results.get("methods"):
        rows = results["methods"]
        memcpy = statistics.median(r["memcpy"] for r in rows if r["bits"] == 64 and r["width"] == 1920)
        parts["methods"] = (f"`memcpy` of the 1920 × 1080 picture took {memcpy:.3f} ns per pixel. Half of the "
                            f"repetitions were within {100 * spread(rows):.0f} % of their median.\n\n"
                            + markdown(*summary_of_methods(rows)))
    if results.get("kernels"):
        parts["kernels"] = markdown(*kernel_table([r for r in results["kernels"] if r["bits"] == 64]))
    for (content,), rows in group(results.get("peers", []), "content").items():
        parts[f"ahead {content}"] = markdown(*ahead(rows))
        parts[f"peers {content}"] = markdown(*peer_table(rows))
    return parts


def rewrite(page, parts):
    """Replaces what stands between `<!-- measured: NAME -->` and the next `<!-- end -->`."""
    text = page.read_text()
    for name, part in parts.items():
        mark = f"<!-- measured: {name} -->"
        if mark not in text:
            raise SystemExit(f"{page} has no place for {mark}")
        before, rest = text.split(mark, 1)
        text = f"{before}{mark}\n{part}\n<!-- end -->{rest.split('<!-- end -->', 1)[1]}"
    page.write_text(text)
    print(f"\nWrote {page}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--command", default="scripts/bench")
    parser.add_argument("--docs", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("parts", nargs="+")
    arguments = parser.parse_args()
    results = {"machine": machine(arguments.command)}
    for part in arguments.parts:
        results[part] = [row for file in sorted(arguments.folder.glob(f"{part}*.jsonl")) for row in lines_of(file)]
    results.get("peers", []).sort(key=lambda row: row["index"])
    print_tables(results)
    file = arguments.folder / "results.json"
    file.write_text(json.dumps(results, indent=1) + "\n")
    print(f"\nWrote {file}")
    if arguments.docs:
        rewrite(arguments.docs, sections(results))


if __name__ == "__main__":
    main()
