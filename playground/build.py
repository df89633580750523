#!/usr/bin/env python3
"""Puts the page together: style, scripts and the plug-in's WebAssembly go into one HTML file.

    build.py FOLDER WASM OUTPUT

The scripts are modules of the language, which a page opened from a file can't load. So they become one script each for the
page and for the worker: modules in the order of their imports, without the words import and export. They share one scope,
in which every name is there once.
"""
import base64
import pathlib
import re
import sys

IMPORT = re.compile(r"^import\s+(?:\{[^}]*\}|\w+)\s+from\s+'\./([\w.]+)';\n", re.MULTILINE)


def modules_of(folder, name, known):
    """The module and what it imports, each after what it needs."""
    if name in known:
        return
    text = (folder / name).read_text(encoding="utf-8")
    known[name] = None
    for imported in IMPORT.findall(text):
        modules_of(folder, imported, known)
    del known[name]
    known[name] = re.sub(r"^export (?=(async )?(function|class|const|let)\b)", "", IMPORT.sub("", text), flags=re.MULTILINE)


def script(folder, name, end=""):
    known = {}
    modules_of(folder, name, known)
    names = re.findall(r"^(?:async )?(?:function\*?|class|const|let) (\w+)", "\n".join(known.values()), re.MULTILINE)
    twice = {n for n in names if names.count(n) > 1}
    if twice:
        sys.exit(f"build.py: names of several modules: {', '.join(sorted(twice))}")
    text = "'use strict';\n" + "\n".join(known.values()) + end
    for bad in ("</script", "<!--"):
        if bad in text:
            sys.exit(f"build.py: a script must not contain {bad}")
    return text


def main():
    folder, wasm, output = (pathlib.Path(argument) for argument in sys.argv[1:])
    parts = {
        "style.css": (folder / "style.css").read_text(encoding="utf-8"),
        "wasm": base64.b64encode(wasm.read_bytes()).decode("ascii"),
        "worker": script(folder, "worker.js", "\nserve(self);\n"),
        "page": script(folder, "app.js"),
    }
    page = (folder / "index.html").read_text(encoding="utf-8")
    for name, text in parts.items():
        mark = f"/* insert {name} */"
        if page.count(mark) != 1:
            sys.exit(f"build.py: index.html has no place for {name}")
        page = page.replace(mark, text)
    output.write_text(page, encoding="utf-8")


main()
