"""The same jobs by lmx and by well-known tools: processor time, size of the file, memory. scripts/compare-tools
calls it."""

import argparse
import os
import pathlib
import statistics
import subprocess

import report

TOOLS = ("lmx", "gm", "convert", "vips")
# The result's name; its size, where all tools agree on it; the words after each tool's name, in the
# way that the tool's manual recommends. {p} is the photo, {w} and {h} are its size, {o} is the
# result. Empty: the tool cannot do it in one command.
JOBS = {
    "turn by 90°": (
        "turned.jpg", "{h}x{w}",
        "FlipRotate {p} rotation=90 -o {o} --quality 85",
        "convert {p} -rotate 90 -quality 85 {o}",
        "{p} -rotate 90 -quality 85 {o}",
        "rot {p} {o}[Q=85] d90"),
    "half the size": (
        "half.jpg", "{w2}x{h2}",
        "Stretch {p} width={w2} -o {o} --quality 85",
        "convert {p} -filter Box -resize 50% -quality 85 {o}",
        "{p} -filter Box -resize 50% -quality 85 {o}",
        "shrink {p} {o}[Q=85] 2 2"),
    "thumbnail": (
        "thumbnail.jpg", "",
        "Stretch {p} width=160 -o {o} --quality 85",
        "convert -size 320x320 {p} -thumbnail 160x -quality 85 {o}",
        "-define jpeg:size=320x320 {p} -thumbnail 160x -quality 85 {o}",
        "thumbnail {p} {o}[Q=85] 160"),
    "turn by 30°": (
        "tilted.png", "",
        "FreeRotateByShear {p} rotation=30 -o {o}",
        "convert {p} -background none -rotate 30 {o}",
        "{p} -background none -rotate 30 {o}",
        "rotate {p} {o} 30"),
    "cut out the middle": (
        "middle.jpg", "{w2}x{h2}",
        "Trim {p} left={w4} top={h4} width={w2} height={h2} -o {o} --quality 85",
        "convert {p} -crop {w2}x{h2}+{w4}+{h4} -quality 85 {o}",
        "{p} -crop {w2}x{h2}+{w4}+{h4} +repage -quality 85 {o}",
        "crop {p} {o}[Q=85] {w4} {h4} {w2} {h2}"),
    "brighter": (
        "brighter.jpg", "{w}x{h}",
        "AdjustRGB {p} red_delta=25 green_delta=25 blue_delta=25 -o {o} --quality 85",
        "convert {p} -operator All Add 9.8% -quality 85 {o}",
        "{p} -evaluate Add 9.8% -quality 85 {o}",
        "linear {p} {o}[Q=85] 1 25 --uchar"),
    "JPEG to PNG": (
        "photo.png", "{w}x{h}",
        "FlipRotate {p} -o {o}",
        "convert {p} {o}",
        "{p} {o}",
        "copy {p} {o}"),
    "a gradient": (
        "gradient.png", "{w}x{h}",
        "MakeGradient width={w} height={h} color1=#3070d0 color2=#f0f8ff -o {o}",
        "convert -size {w}x{h} gradient:#3070d0-#f0f8ff -depth 8 {o}",
        "-size {w}x{h} gradient:#3070d0-#f0f8ff -depth 8 {o}",
        ""),
}
PACKAGES = ("graphicsmagick", "imagemagick-6.q16", "libvips-tools")


def run(command):
    """Runs a command on one core. Returns its processor time in seconds and its peak memory in bytes."""
    process = subprocess.Popen(command, preexec_fn=lambda: os.sched_setaffinity(0, {min(os.sched_getaffinity(0))}))
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode:
        raise SystemExit(f"{' '.join(command)}: status {process.returncode}")
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024


def size_of(picture):
    return report.output_of("/usr/bin/identify", "-format", "%wx%h", str(picture))


def make_photo(lmx, folder):
    """The chart, with the noise of a camera, as large as a photo."""
    chart, photo = folder / "chart.png", folder / "photo.jpg"
    subprocess.run([lmx, "chart", "-o", chart], check=True)
    subprocess.run([lmx, "Stretch", chart, "width=4000", "height=3000", "-o", chart, "--opaque"], check=True)
    subprocess.run(["/usr/bin/convert", chart, "-seed", "1", "-attenuate", "0.2", "+noise", "Gaussian", "-sampling-factor",
                    "4:2:0", "-quality", "90", photo], check=True)
    return photo


def measure(commands):
    """Runs all tools in turn, several times, so that a disturbance of the machine affects all of them."""
    runs = {tool: [] for tool in commands}
    for _ in range(5):
        for tool, command in commands.items():
            runs[tool].append(run(command))
    return {tool: (statistics.median(time for time, _ in of_tool), max(memory for _, memory in of_tool))
            for tool, of_tool in runs.items()}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--docs", type=pathlib.Path)
    parser.add_argument("--photo", type=pathlib.Path)
    parser.add_argument("lmx", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    arguments = parser.parse_args()
    programs = {"lmx": [str(arguments.lmx)], **{tool: [f"/usr/bin/{tool}"] for tool in TOOLS[1:]}}
    photo = arguments.photo or make_photo(arguments.lmx, arguments.folder)
    w, h = map(int, size_of(photo).split("x"))

    tables = {"seconds": [], "kilobytes": [], "megabytes": []}
    for job, (name, size, *words) in JOBS.items():
        values = {"p": photo, "w": w, "h": h, "w2": w // 2, "h2": h // 2, "w4": w // 4, "h4": h // 4}
        results = {tool: arguments.folder / f"{tool}-{name}" for tool in TOOLS}
        commands = {tool: programs[tool] + [word.format(o=results[tool], **values) for word in line.split()]
                    for tool, line in zip(TOOLS, words) if line}
        measured = measure(commands)
        for tool in commands:
            if size and size_of(results[tool]) != size.format(**values):
                raise SystemExit(f"{job}: {results[tool]} is {size_of(results[tool])}, not {size.format(**values)}")
        cells = {"seconds": lambda tool: f"{measured[tool][0]:.2f}",
                 "kilobytes": lambda tool: f"{results[tool].stat().st_size / 1024:.0f}",
                 "megabytes": lambda tool: f"{measured[tool][1] / 1024 ** 2:.0f}"}
        for of, cell in cells.items():
            tables[of].append([job] + [cell(tool) if tool in commands else "–" for tool in TOOLS])
        print(f"{job}: {', '.join(f'{tool} {measured[tool][0]:.2f} s' for tool in commands)}", flush=True)

    head = {"seconds": "seconds of processor time", "kilobytes": "kilobytes of the file",
            "megabytes": "megabytes of memory"}
    for of, rows in tables.items():
        print(f"\n{report.plain([head[of], *TOOLS], rows)}")
    if arguments.docs:
        packages = report.output_of("dpkg-query", "-W", "-f=${Package} ${Version}, ", *PACKAGES).rstrip(", ")
        processor = report.machine("")["cpu"]
        what = "the photo that the script makes" if not arguments.photo else "a photo"
        text = [f"{w} × {h} pixels, {what}, {photo.stat().st_size / 1024:.0f} kilobytes; {processor}; {packages}."]
        text += [report.markdown([head[of], *TOOLS], rows) for of, rows in tables.items()]
        report.rewrite(arguments.docs, {"tools": "\n\n".join(text)})


if __name__ == "__main__":
    main()
