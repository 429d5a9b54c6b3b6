"""Pages made from the public headers: what each C function does."""
import pathlib
import re
import subprocess
import tempfile
import xml.etree.ElementTree as xml

from where import EXPORT, HEADER, Index

UTILITIES = "vl_util.h"
CLASSES = ("vlReferenceContainer.h", "vlNaming_Client.h", "vlServerInfoXmlImpl.h",
           "VelmoLang.h", "CQuilp.h")
LAYER = "velmo.hpp"
SECTION = re.compile(r"^/\* -+ (.+) \*/$", re.M)


def doxygen(header):
    """What Doxygen reads in a header."""
    with tempfile.TemporaryDirectory() as folder:
        options = f"""
            INPUT = {header}
            OUTPUT_DIRECTORY = {folder}
            GENERATE_HTML = NO
            GENERATE_LATEX = NO
            GENERATE_XML = YES
            XML_PROGRAMLISTING = NO
            MACRO_EXPANSION = YES
            EXPAND_ONLY_PREDEF = YES
            PREDEFINED = VL_EXPORT=
            EXTRACT_ALL = YES
            QUIET = YES
            WARN_AS_ERROR = FAIL_ON_WARNINGS
            WARN_IF_INCOMPLETE_DOC = NO
            """
        subprocess.run(["doxygen", "-"], input=options, text=True, check=True)
        return [xml.parse(file).getroot() for file in pathlib.Path(folder).glob("xml/*.xml")]


def text_of(element):
    """Markdown of a description's element."""
    out = [element.text or ""]
    for child in element:
        out.append(markdown(child))
        out.append(child.tail or "")
    return "".join(out)


def markdown(element):
    tag = element.tag
    if tag in ("verbatim", "preformatted"):
        code = "".join(element.itertext()).strip("\n")
        return f"\n\n```c\n{code}\n```\n\n"
    if tag == "computeroutput":
        return f"`{''.join(element.itertext())}`"
    if tag in ("parameterlist", "simplesect"):
        return "" # shown as tables
    if tag == "para":
        return text_of(element).strip() + "\n\n"
    return text_of(element)


def one_line(element):
    return re.sub(r"\s+", " ", text_of(element)).strip().replace("|", "\\|")


def table(function, kind, heads):
    rows = []
    for item in function.iterfind(f".//parameterlist[@kind='{kind}']/parameteritem"):
        names = ", ".join(name.text for name in item.iter("parametername"))
        rows.append(f"| `{names}` | {one_line(item.find('parameterdescription'))} |")
    if not rows:
        return ""
    return f"| {heads[0]} | {heads[1]} |\n|---|---|\n" + "\n".join(rows) + "\n\n"


def description(element):
    parts = [markdown(para).strip() for part in ("briefdescription", "detaileddescription")
             for para in element.find(part).iterfind("para")]
    for returned in element.iterfind(".//simplesect[@kind='return']"):
        parts.append("**Returns** " + text_of(returned).strip())
    return "\n\n".join(part for part in parts if part) + "\n\n"


def declaration(text, name):
    """As the header has it."""
    found = re.search(rf"^VL_EXPORT\s[^;]*?\b{name}\([^;]*;", text, re.M)
    return found.group(0).removeprefix("VL_EXPORT ")


def conventions(text):
    """What the header's head says of every function: terms in one column, texts in another."""
    rows, term, words = [], "", ""
    head = text[:text.index("*/")]
    for line in head.splitlines():
        column = re.match(r" \*   (.{10}) (.*)$", line)
        if not column:
            continue
        name, said = column.group(1).strip(), column.group(2)
        if name and term in ("Common", "Failed"):
            term = f"{term} {name}" # the two terms that take two lines
        elif name:
            if term:
                rows.append((term, words))
            term, words = name, ""
        words += " " + said.strip()
    rows.append((term, words))
    return "| about | |\n|---|---|\n" + "\n".join(f"| **{t}** | {w.strip()} |" for t, w in rows)


def functions_page(root, index):
    text = (root / HEADER).read_text()
    members = {}
    records = []
    for document in doxygen(root / HEADER):
        for member in document.iter("memberdef"):
            if member.get("kind") == "function":
                members[member.find("name").text] = member
        for record in document.iterfind("compounddef[@kind='struct']"):
            records.append(record)
    out = ["# C functions\n\n", "What [vl_api.h](%s) says.\n\n" % index.page(HEADER),
           "## What holds for every function\n\n", conventions(text), "\n\n## Records\n\n"]
    for record in sorted(records, key=lambda one: int(one.find("location").get("line"))):
        name = record.find("compoundname").text
        found = re.search(rf"typedef struct {name} \{{.*?\}} {name};", text, re.S)
        out += [f"### {name}\n\n", description(record), f"```c\n{found.group(0)}\n```\n\n"]
    sections = {found.start(): found.group(1).capitalize() for found in SECTION.finditer(text)}
    for found in EXPORT.finditer(text):
        for start in [start for start in sections if start < found.start()]:
            section = sections.pop(start)
            if section != "Records":
                out.append(f"## {section}\n\n")
        name = found.group(1)
        out += [f"### {name}\n\n", f"```c\n{declaration(text, name)}\n```\n\n",
                description(members[name]),
                table(members[name], "param", ("parameter", "")),
                table(members[name], "retval", ("result", "when")),
                f"[Where it is](where.md#{name.lower()})\n\n"]
    return "".join(out)


def headers_page(root, title, said, names):
    """Headers whose text is their own manual, whole."""
    out = [f"# {title}\n\n{said}\n\n"]
    for name in names:
        language = "c" if name == UTILITIES else "cpp"
        text = (root / "include/velmo" / name).read_text()
        out.append(f"## {name}\n\n```{language}\n{text}```\n\n")
    return "".join(out)


def pages(root, files, source):
    index = Index(root, files, source)
    yield "reference/functions.md", functions_page(root, index)
    yield "reference/utilities.md", headers_page(
        root, "C utilities", "Freeing strings and reading settings.", [UTILITIES])
    layer = [LAYER, *(name.removeprefix("include/velmo/") for name in files
                      if name.startswith("include/velmo/cpp/"))]
    yield "reference/cpp.md", headers_page(
        root, "C++ layer", "The library for C++17. The first header includes the others.", layer)
    yield "reference/classes.md", headers_page(
        root, "C++ classes", "What the shared libraries give to C++ programs beside the C "
        "functions. The first two need the headers of the broker.", CLASSES)
    yield "reference/where.md", index.render()
