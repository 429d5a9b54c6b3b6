"""Lays the pages of the site out in a folder for mkdocs.

Pages are the Markdown files of docs/ and of the root, as they are in the repository but for
their links: one that leads to a source file leads to a page with that file's text.
"""
import os
import pathlib
import re
import shutil

import reference
from text import ROOT, tracked_files

LINK = re.compile(r"(!?\[[^\]]*\]\()([^)\s]+)(\))")
LANGUAGES = {".c": "c", ".h": "cpp", ".cpp": "cpp", ".hpp": "cpp", ".idl": "omg-idl",
             ".xml": "xml", ".cmake": "cmake", ".py": "python", ".sh": "bash", ".json": "json"}
# What has a page of its own is not shown as source.
MADE = {"include/velmo/vl_api.h": "reference/functions.md",
        "include/velmo/vl_util.h": "reference/utilities.md",
        "include/velmo/velmo.hpp": "reference/cpp.md"}
FENCE = re.compile(r"^ {0,3}(```+)")


def pages(files):
    """Where each Markdown file goes in the site."""
    place = {}
    for name in files:
        path = pathlib.PurePosixPath(name)
        if path.suffix != ".md":
            continue
        if name == "README.md":
            place[name] = "index.md"
        elif name == "examples/README.md":
            place[name] = "examples.md"
        elif path.parts[0] == "docs":
            inner = str(path.relative_to("docs"))
            place[name] = inner.replace("README.md", "index.md")
        elif len(path.parts) == 1:
            place[name] = name.lower()
    return place


def outside_code(text, change):
    """Changes a text but for its fenced blocks."""
    lines, fence = [], None
    for line in text.split("\n"):
        mark = FENCE.match(line)
        if mark and fence is None:
            fence = mark.group(1)
        elif mark and mark.group(1).startswith(fence):
            fence = None
        elif fence is None:
            line = change(line)
        lines.append(line)
    return "\n".join(lines)


class Stage:
    def __init__(self, folder):
        self.folder = folder
        self.files = set(tracked_files())
        self.place = pages(self.files)
        self.sources = set()

    def write(self, place, text):
        target = self.folder / place
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(text)

    def source_page(self, name):
        """The page that shows a source file."""
        self.sources.add(name)
        return f"source/{name}.md"

    def link(self, target, file, place):
        """What a link of a file means in the site."""
        if re.match(r"[a-z]+:|#", target):
            return target
        path, _, anchor = target.partition("#")
        name = os.path.normpath(os.path.join(os.path.dirname(file), path))
        if name in self.place:
            goal = self.place[name]
        elif name in MADE:
            goal = MADE[name]
        elif name.startswith("docs/"):
            goal = name[len("docs/"):]
        elif name in self.files:
            goal = self.source_page(name)
        else:
            return target # for the check of links to complain about
        relative = os.path.relpath(goal, os.path.dirname(place) or ".")
        return relative + ("#" + anchor if anchor else "")

    def page(self, file, place):
        text = (ROOT / file).read_text()

        def change(line):
            if line.startswith("|"): # within code mkdocs needs no escape in a table
                line = re.sub(r"`[^`]*`", lambda code: code[0].replace(r"\|", "|"), line)
            return LINK.sub(lambda m: m[1] + self.link(m[2], file, place) + m[3], line)

        self.write(place, outside_code(text, change))

    def run(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        for file, place in self.place.items():
            self.page(file, place)
        for name in self.files:
            if name.startswith("docs/") and name.endswith((".svg", ".css", ".png")):
                place = name[len("docs/"):].removeprefix("site/")
                self.write(place, (ROOT / name).read_text())
        for place, text in reference.pages(ROOT, sorted(self.files), self.source_page):
            self.write(place, text)
        for name in sorted(self.sources):
            language = LANGUAGES.get(pathlib.PurePosixPath(name).suffix, "text")
            text = (ROOT / name).read_text()
            self.write(f"source/{name}.md",
                       f'# {name}\n\n``````{language} linenums="1"\n{text}\n``````\n')


if __name__ == "__main__":
    Stage(ROOT / "build/docs/pages").run()
