"""What the checks need to know of a Markdown file: its blocks of code, headings and links."""
import dataclasses
import pathlib
import re
import subprocess
import unicodedata

ROOT = pathlib.Path(__file__).resolve().parents[2]
FENCE = re.compile(r"^( *)(```+)(.*)$")
LINK = re.compile(r"!?\[[^\]]*\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#+ (.*)$")
INDENTED = re.compile(r"^(    |\t)\S")


def tracked_files():
    """All files of the tree, also those that are not committed yet."""
    listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard"],
                            cwd=ROOT, check=True, capture_output=True, text=True)
    return sorted(name for name in listed.stdout.splitlines() if (ROOT / name).exists())


def markdown_files():
    return [name for name in tracked_files() if name.endswith(".md")]


@dataclasses.dataclass
class Block:
    line: int
    language: str # "" where none is told, None for one that is only indented
    text: str
    reason: str # why it is not checked, "" when it is


def anchor(heading):
    """The anchor that a heading gets."""
    plain = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", heading).strip().lower()
    kept = "".join(c for c in plain
                   if c in " -_" or unicodedata.category(c)[0] in "LN")
    return kept.replace(" ", "-")


class Page:
    """A Markdown file, read once."""

    def __init__(self, name):
        self.name = name
        self.blocks, self.links, self.anchors = [], [], set()
        before, fence, block, in_list = "", None, None, False
        for number, line in enumerate((ROOT / name).read_text().split("\n"), 1):
            mark = FENCE.match(line)
            if fence is not None:
                if mark and mark.group(2) == fence and not mark.group(3):
                    fence = None
                else:
                    block.text += line.removeprefix(indent) + "\n"
                continue
            if mark:
                indent, fence, language = mark.groups()
                reason = re.match(r"\s*\*Not checked: (.+)\*$", before)
                block = Block(number, language.strip(), "", reason.group(1) if reason else "")
                self.blocks.append(block)
                continue
            if INDENTED.match(line) and not before.strip() and not in_list:
                self.blocks.append(Block(number, None, line, ""))
            if line.strip():
                in_list = bool(re.match(r"\s*([-*]|\d+\.) ", line)) or \
                    (in_list and line.startswith(" "))
            heading = HEADING.match(line)
            if heading:
                self.anchors.add(anchor(heading.group(1)))
            outside = re.sub(r"`[^`]*`", "", line)
            self.links += [(number, target) for target in LINK.findall(outside)]
            before = line if line.strip() or not before.startswith("*Not") else before
