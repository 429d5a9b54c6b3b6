"""Compares what pages say in tables with the code, so that nothing is missing or outdated."""
import html
import re
import subprocess
import sys
import xml.etree.ElementTree as xml

from blocks import BUILD
from text import ROOT, markdown_files, tracked_files

HEADER = "include/velmo/vl_api.h"
FIRST_FAILURE, LAST_FAILURE = 100, 169


def read(name):
    return (ROOT / name).read_text()


def rows(page, columns):
    """The rows of a page's tables that have so many columns, as tuples of their cells."""
    for line in read(page).splitlines():
        cells = [cell.strip() for cell in re.split(r"(?<!\\)\|", line)[1:-1]]
        if len(cells) == columns:
            yield tuple(cells)


def failure_codes(header):
    """Which functions give a code of a failed call, as their documentation says."""
    found = {}
    for comment, name in re.findall(r"/\*\*((?:(?!\*/).)*)\*/\nVL_EXPORT\s[^;(]*?\b(\w+)\(",
                                    header, re.S):
        for code in map(int, re.findall(r"@retval (\d+) ", comment)):
            if FIRST_FAILURE <= code <= LAST_FAILURE:
                found.setdefault(code, []).append(name)
    return found


def result_codes():
    page = "docs/result-codes.md"
    names = re.findall(r"X\((\w+), (\d+)\)", read("include/velmo/vl_result.h"))
    texts = {text.get("key"): text.text for text in xml.fromstring(read("util/lang/en.xml"))}
    told = {row[0]: row for row in rows(page, 5)}
    for name, code in names:
        row = told.get(code)
        if not row:
            yield f"{page}: {name} ({code}) is missing"
        elif row[1] != f"`{name}`" or row[2] != texts[name]:
            yield f"{page}: {code} is {name}: {texts[name]}"
        elif not row[3] or not row[4]:
            yield f"{page}: {code} lacks a cause, or what to do"
    failures = {row[0]: row[1] for row in rows(page, 2)}
    for code, functions in failure_codes(read(HEADER)).items():
        expected = ", ".join(f"`{name}()`" for name in functions)
        if failures.get(str(code)) != expected:
            yield f"{page}: {code} comes from {expected}"


def variables():
    """Every variable of the environment that the code asks for is told of."""
    page = read("docs/settings.md")
    for name in tracked_files():
        if not name.startswith(("api/", "cli/", "quilp/", "registry/", "server/", "util/")) \
                or not name.endswith(".cpp"):
            continue
        for variable in re.findall(r'"(VELMO_[A-Z_]+)"', read(name)):
            if f"`{variable}`" not in page:
                yield f"docs/settings.md: {variable} ({name}) is missing"


def attributes():
    """Every attribute of a settings file is told of, and no other."""
    page = "docs/settings.md"
    code = read("util/settings_file.cpp")
    for element in ("root", "server"):
        words = re.search(rf"{element}_attributes\{{(.*?)\}};", code, re.S).group(1)
        known = set(re.findall(r'"(\w+)"', words))
        heading = {"root": "velmo", "server": "server"}[element]
        section = read(page).split(f"\n### `{heading}`\n")[1].split("\n#")[0]
        told = set(re.findall(r"^\| `(\w+)` ", section, re.M))
        for name in known ^ told:
            yield f"{page}: attribute {name} of {heading}: in one of page and code only"


def options():
    """Every option of velmod is told of, and no other."""
    page = "docs/operating.md"
    shown = subprocess.run([BUILD / "bin/velmod", "--help"], check=True, capture_output=True,
                           text=True).stdout
    known = set(re.findall(r"^  (?:-h,)?(--[a-z-]+)", shown, re.M))
    told = {option for row in rows(page, 4) for option in re.findall(r"`(--[a-z-]+)", row[0])}
    for name in known ^ told:
        yield f"{page}: option {name}: in one of page and velmod --help only"


def scripts():
    """Every script tells what it does, and stands in CONTRIBUTING.md."""
    page = read("CONTRIBUTING.md")
    for name in tracked_files():
        if not name.startswith("scripts/") or name.endswith(".sh"):
            continue
        helped = subprocess.run([ROOT / name, "--help"], capture_output=True, text=True)
        if helped.returncode or not helped.stdout.strip():
            yield f"{name}: has no --help"
        if f"`{name}`" not in page:
            yield f"CONTRIBUTING.md: {name} is missing"


def test_folders():
    """The map of the tests has every folder."""
    page = read("CONTRIBUTING.md")
    folders = {name.split("/")[1] for name in tracked_files() if name.count("/") > 1
               and name.startswith("tests/")}
    for folder in sorted(folders):
        if f"`tests/{folder}`" not in page:
            yield f"CONTRIBUTING.md: tests/{folder} is missing"


def roads():
    """Every step of a road names a function and the file that it is in, as do pictures."""
    page = "docs/architecture.md"
    steps = [(page, function.strip("`"), file.strip("`")) for _, function, file in rows(page, 3)
             if function.startswith("`") and "/" in file]
    for picture in (ROOT / "docs/pictures").glob("*.svg"):
        told = re.findall(r'class="code"[^>]*>(\S+)</text>\n\s*<text[^>]*>(\w+/[\w/.]+)<',
                          picture.read_text())
        steps += [(picture.name, function, file) for function, file in told]
    for where, function, path in steps:
        name = re.findall(r"\w+", html.unescape(function).split("<")[0])[-1] # without its class
        if not (ROOT / path).exists() or not re.search(rf"\b{name}\b", read(path)):
            yield f"{where}: {path}: has no {function}"


def paths():
    """Files that pages name in passing exist."""
    tracked = set(tracked_files())
    tops = {name.split("/")[0] for name in tracked if "/" in name}
    for page in markdown_files():
        for path in re.findall(r"`([a-z]\w*/[\w./-]+\.(?:cpp|c|h|hpp|idl|md|xml|txt|json|map))`",
                               read(page)):
            if path.split("/")[0] in tops and path not in tracked:
                yield f"{page}: {path}: there is no such file"


def examples():
    """Every example is in the list of them."""
    page = "examples/README.md"
    for name in tracked_files():
        if name.startswith("examples/") and name.endswith((".c", ".cpp", ".h")) \
                and f"({name.rsplit('/', 1)[1]})" not in read(page):
            yield f"{page}: {name} is missing"


def decisions():
    """Every decision is in the list of them."""
    page = read("docs/decisions/README.md")
    for name in tracked_files():
        if name.startswith("docs/decisions/") and not name.endswith("README.md"):
            if f"({name.rsplit('/', 1)[1]})" not in page:
                yield f"docs/decisions/README.md: {name} is missing"


if __name__ == "__main__":
    wrong = [complaint for check in (result_codes, variables, attributes, options, scripts,
                                     test_folders, roads, paths, decisions, examples)
             for complaint in check()]
    print("\n".join(wrong) or "pages and code agree")
    sys.exit(1 if wrong else 0)
