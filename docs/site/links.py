"""Finds broken links: in the Markdown files as they are, and in the site as it was built."""
import html.parser
import os
import re
import sys
import urllib.parse

from text import ROOT, Page, markdown_files, tracked_files

SITE = ROOT / "build/docs/site"
ELSEWHERE = re.compile(r"[a-z]+:|//")


def in_markdown():
    files = set(tracked_files())
    pages = {name: Page(name) for name in markdown_files()}
    for page in pages.values():
        for line, target in page.links:
            if ELSEWHERE.match(target):
                continue
            path, _, anchor = target.partition("#")
            folder = os.path.dirname(page.name)
            name = os.path.normpath(os.path.join(folder, path)) if path else page.name
            if name not in files:
                yield f"{page.name}:{line}: {target}: there is no such file"
            elif anchor and name in pages and anchor not in pages[name].anchors:
                yield f"{page.name}:{line}: {target}: there is no such heading"


class Document(html.parser.HTMLParser):
    """Anchors and links of an HTML file."""

    def __init__(self, path):
        super().__init__()
        self.anchors, self.links = set(), []
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("id", "name"):
                self.anchors.add(value)
            elif name in ("href", "src") and value:
                self.links.append(value)


def in_site():
    documents = {path: Document(path) for path in sorted(SITE.rglob("*.html"))
                 if path.name != "404.html"} # whose links are from the root of a web site
    for path, document in documents.items():
        for link in document.links:
            if ELSEWHERE.match(link):
                continue
            target, _, anchor = urllib.parse.unquote(link).partition("#")
            goal = (path.parent / target).resolve() if target else path
            if not goal.exists():
                yield f"{path.relative_to(SITE)}: {link}: there is no such file"
            elif anchor and goal in documents and anchor not in documents[goal].anchors \
                    and anchor != "__skip":
                yield f"{path.relative_to(SITE)}: {link}: there is no such anchor"


if __name__ == "__main__":
    broken = [*in_markdown(), *in_site()]
    print("\n".join(broken) or "no link is broken")
    sys.exit(1 if broken else 0)
