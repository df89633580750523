"""Makes tables of the output of the measuring programs: in the terminal, as results.json, and as the measured
parts of docs/benchmarks.md. scripts/bench calls it."""

import argparse
import json
import pathlib
import re
import statistics
import subprocess

SMALL, LARGE = 1920, 4000  # the widths of the two pictures
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
    """The machine and the versions, without which no figure means anything."""
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


# ---- Tables
# --------------------------------------------------------------------------------------------------


def is_number(cell):
    return re.fullmatch(r"[\d.]+|–", str(cell))


def markdown(head, rows):
    align = ["---:" if is_number(cell) else "---" for cell in rows[0]]
    return "\n".join("| " + " | ".join(map(str, row)) + " |" for row in [head, align, *rows])


def plain(head, rows, gap="  "):
    """The same for terminals."""
    widths = [max(len(str(row[i])) for row in [head, *rows]) for i in range(len(head))]
    numbers = [is_number(cell) for cell in rows[0]]

    def line(row):
        cells = zip(row, widths, numbers)
        return gap.join(str(cell).rjust(width) if number else str(cell).ljust(width) for cell, width, number in cells)

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


def use_one_memcpy(rows, *keys):
    """Replaces the figures of memcpy by one for each picture: the median of all its measurements."""
    for of_picture in group(rows, *keys).values():
        memcpy = statistics.median(row["memcpy"] for row in of_picture)
        for row in of_picture:
            row["memcpy"] = memcpy


def find(rows, operation, **wanted):
    return next((r for r in rows if r["operation"] == operation and wanted.items() <= r.items()), None)


def nanoseconds(row):
    return f"{row['ns']:.3f}" if row else "–"


def multiple(row):
    return times(row) if row else "–"


def yielding(row):
    """How many times as long a call takes with yields."""
    return f"{row['yielding'] / row['ns']:.1f}" if row else "–"


def per_small(row, rows):
    """How many times as long a pixel of this picture takes as one of the small picture."""
    same = {key: row[key] for key in ("bits", "form", "content", "level")} if row else {}
    small = find(rows, row["operation"], width=SMALL, **same) if row else None
    return f"{row['ns'] / small['ns']:.2f}" if small else "–"


def method_table(rows, all_rows):
    """One picture and ABI: operations by levels."""
    levels = in_order(row["level"] for row in rows)
    is_small = rows[0]["width"] == SMALL
    head = ["operation"] + [name for level in levels for name in (level, "×" if is_small else "size", "yield")]
    table = []
    for (operation,), of_operation in group(rows, "operation").items():
        by_level = [find(of_operation, operation, level=level) for level in levels]
        cells = [cell for row in by_level
                 for cell in (nanoseconds(row), multiple(row) if is_small else per_small(row, all_rows), yielding(row))]
        table.append([operation, *cells])
    return head, table


def columns(rows, cell, **wanted):
    """All operations, a column for each level of the 64-bit build on an opaque picture, and for the best level on other
    kinds of pictures and in the 32-bit product."""
    levels = in_order(row["level"] for row in rows)
    best = levels[-1]
    opaque = dict(bits=64, form="context", content="opaque", level=best)
    kinds = [(level, {**opaque, "level": level}) for level in levels]
    kinds += [
        ("alpha 0–255", {**opaque, "content": "fading"}),
        ("soft edges", {**opaque, "content": "soft"}),
        ("buffer", {**opaque, "form": "buffer"}),
        ("32-bit", {**opaque, "bits": 32}),
        ("32-bit, alpha", {**opaque, "bits": 32, "content": "fading"}),
    ]
    table = [[operation] + [cell(find(rows, operation, **kind, **wanted)) for _, kind in kinds]
             for operation in in_order(row["operation"] for row in rows)]
    used = [0] + [i for i in range(1, len(kinds) + 1) if any(row[i] != "–" for row in table)]
    head = ["operation"] + [name for name, _ in kinds]
    return [head[i] for i in used], [[row[i] for i in used] for row in table]


def large_table(rows):
    """The large picture compared with the small one, opaque: all levels of the 64-bit build, the best of the 32-bit."""
    levels = in_order(row["level"] for row in rows if row["width"] == LARGE)
    kinds = [(level, 64, level) for level in levels] + [("32-bit", 32, levels[-1])]
    cells = (nanoseconds, lambda row: per_small(row, rows), yielding)
    head = ["operation"] + [f"{name}{of}" for name, *_ in kinds for of in (", ns", " ÷ small", ", yields")]
    table = []
    for operation in in_order(row["operation"] for row in rows):
        found = [find(rows, operation, bits=bits, form="context", content="opaque", width=LARGE, level=level)
                 for _, bits, level in kinds]
        table.append([operation] + [cell(row) for row in found for cell in cells])
    return head, table


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
    """For each operation: the fastest of the other libraries, compared with the plug-in in the same turns."""
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


# ---- Output
# --------------------------------------------------------------------------------------------------


def print_tables(results):
    for (bits, form, content, width, height), rows in group(results.get("methods", []), "bits", "form", "content",
                                                            "width", "height").items():
        print(f"\nMethods, {bits}-bit, {form}, {CONTENTS[content]}, {width} x {height}: ns per pixel and "
              f"{'multiples of memcpy' if width == SMALL else 'those over 1920 x 1080'}, with yields over without; memcpy: "
              f"{rows[0]['memcpy']:.3f} ns")
        print(plain(*method_table(rows, results["methods"]), gap=" "))
    for (bits,), rows in group(results.get("kernels", []), "bits").items():
        print(f"\nKernels, {bits}-bit: ns per pixel, in runs of 512 where no other length is told")
        print(plain(*kernel_table(rows)))
    for (content, width, height), rows in group(results.get("peers", []), "content", "width", "height").items():
        print(f"\nThe plug-in and the fastest of the others, {CONTENTS[content]}, {width} x {height}: "
              f"multiples of memcpy, {rows[0]['memcpy']:.3f} ns per pixel")
        print(plain(*ahead(rows)))


def sections(results):
    """The measured parts of the page, by name."""
    host = results["machine"]
    parts = {"machine": "\n".join([
        f"- Processor: {host['cpu']} ({host['caches']}), one core, one thread",
        f"- System: {host['kernel']}; compiler: {host['compiler']}, Release (`-O2`, wide kernels `-O3`)",
        f"- Command: `{host['command']}`, {host['date']}",
        f"- Packages: {', '.join(host['packages'])}",
    ])}
    if results.get("methods"):
        rows = results["methods"]
        memcpy = {width: statistics.median(r["memcpy"] for r in rows if r["bits"] == 64 and r["width"] == width)
                  for width in (SMALL, LARGE)}
        parts["methods"] = (f"`memcpy` took {memcpy[SMALL]:.3f} ns per pixel of the 1920 × 1080 picture, and "
                            f"{memcpy[LARGE]:.3f} ns of the 4000 × 3000 one. Half of the repetitions were within "
                            f"{100 * spread(rows):.0f} % of their median.\n\n"
                            + markdown(*columns(rows, multiple, width=SMALL)))
        parts["yields"] = markdown(*columns(rows, yielding, width=SMALL))
        parts["large"] = markdown(*large_table(rows))
    if results.get("kernels"):
        parts["kernels"] = markdown(*kernel_table([r for r in results["kernels"] if r["bits"] == 64]))
    for (content, width), rows in group(results.get("peers", []), "content", "width").items():
        size = "" if width == SMALL else " large"
        parts[f"ahead {content}{size}"] = markdown(*ahead(rows))
        if width == SMALL:
            parts[f"peers {content}"] = markdown(*peer_table(rows))
    return parts


def rewrite(page, parts):
    """Replaces the text between `<!-- measured: NAME -->` and the next `<!-- end -->`."""
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
    use_one_memcpy(results.get("methods", []), "bits", "form", "content", "width")
    use_one_memcpy(results.get("peers", []), "content", "width")
    results.get("peers", []).sort(key=lambda row: row["index"])
    print_tables(results)
    file = arguments.folder / "results.json"
    file.write_text(json.dumps(results, indent=1) + "\n")
    print(f"\nWrote {file}")
    if arguments.docs:
        rewrite(arguments.docs, sections(results))


if __name__ == "__main__":
    main()
