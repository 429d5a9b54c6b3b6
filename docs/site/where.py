"""Where each C function is documented, implemented and tested, found by its name."""
import re

HEADER = "include/velmo/vl_api.h"
EXPORTS = "api/exports.cpp"
OPERATIONS = ("api", "ports", "points", "contention")
LAYER = "include/velmo/cpp/"
# Where tests of single functions are.
TESTS = ("tests/api/", "tests/ports/", "tests/points/", "tests/contention/", "tests/e2e/")
EXPORT = re.compile(r"^VL_EXPORT\s[^;(]*?\b(\w+)\(", re.M)


def line_of(text, position):
    return text.count("\n", 0, position) + 1


class Index:
    def __init__(self, root, files, source):
        self.source = source
        self.texts = {name: (root / name).read_text() for name in files
                      if name.endswith((".c", ".cpp", ".h", ".hpp"))}

    def page(self, name, line=None):
        return f"../{self.source(name)}" + (f"#__codelineno-0-{line}" if line else "")

    def at(self, name, pattern):
        """A link to where a pattern first stands in a file, if it does."""
        found = re.search(pattern, self.texts[name], re.M)
        if not found:
            return None
        line = line_of(self.texts[name], found.start())
        return f"[{name}:{line}]({self.page(name, line)})"

    def implementations(self, function):
        operation = re.sub(r"^vl_", "", function)
        places = [self.at(EXPORTS, rf"^[^\s/].*\b{function}\(")]
        for name in sorted(self.texts):
            if name.startswith(tuple(folder + "/" for folder in OPERATIONS)):
                places.append(self.at(name, rf"^\S.*\bVelmo_API_Manager::{operation}\("))
        return [place for place in places if place]

    def layer(self, function):
        places = [self.at(name, rf"::{function}\(") for name in sorted(self.texts)
                  if name.startswith(LAYER)]
        return [place for place in places if place]

    def tests(self, function):
        names = [name for name, text in self.texts.items()
                 if name.startswith(TESTS) and re.search(rf"\b{function}\b", text)
                 and re.search(r"^TEST|\bTEST(_P|_F)?\(", text, re.M)]
        count = lambda name: len(re.findall(rf"\b{function}\b", self.texts[name]))
        names.sort(key=lambda name: (name.startswith("tests/e2e/"), -count(name), name))
        return [self.at(name, rf"\b{function}\b") for name in names]

    def render(self):
        text = self.texts[HEADER]
        out = ["# Where a function is\n\n",
               "What every function has in common is tested over one table, "
               f"[tests/api/operations.cpp]({self.page('tests/api/operations.cpp')}); "
               "the tests below name the function themselves.\n\n"]
        for found in EXPORT.finditer(text):
            name = found.group(1)
            line = line_of(text, found.start())
            rows = [("Documentation", [f"[{name}](functions.md#{name.lower()})",
                                       f"[{HEADER}:{line}]({self.page(HEADER, line)})"]),
                    ("Implementation", self.implementations(name)),
                    ("C++ layer", self.layer(name)),
                    ("Tests", self.tests(name))]
            out.append(f"## {name}\n\n| what | where |\n|---|---|\n")
            for head, places in rows:
                if not places:
                    raise SystemExit(f"{name}: {head.lower()} not found")
                out.append(f"| {head} | {'<br>'.join(places)} |\n")
            out.append("\n")
        return "".join(out)
