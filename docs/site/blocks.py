"""Compiles or runs every block of code of the documentation.

    c, cpp    is compiled; without an #include as a function's body. One with main() whose
              first line names its file ("/* hello.c */") is there for the page's commands.
    console   is carried out as printed, see scripts/check-tour
    xml       is a settings file without a fault, with which velmod starts
    json      is JSON
    text      is no code

Above any other block a line says why it is not checked: "*Not checked: REASON*".
"""
import json
import os
import pathlib
import re
import socket
import subprocess
import sys
import tempfile

from text import ROOT, Page, markdown_files

BUILD = ROOT / os.environ.get("VELMO_DOCS_BUILD", "build/release")
COMPILERS = {"c": ["gcc", "-std=c11"], "cpp": ["g++", "-std=c++17"]}
WARNINGS = ["-Wall", "-Wextra", "-Werror", "-Wno-unused-variable", "-Wno-unused-function",
            "-Wno-unused-but-set-variable"]
PROLOGUE = """#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <velmo/vl_api.h>
#include <velmo/vl_util.h>
#ifdef __cplusplus
#include <cstdint>
#include <vector>
#include <velmo/velmo.hpp>
#endif
void fragment(void);
void fragment(void) {
"""


def run(command, **options):
    """What is wrong, or nothing."""
    done = subprocess.run(command, capture_output=True, text=True, **options)
    return "" if done.returncode == 0 else done.stdout + done.stderr


def compiled(block):
    whole = "#include" in block.text
    source = block.text if whole else PROLOGUE + block.text + "}\n"
    return run([*COMPILERS[block.language], *WARNINGS, f"-I{ROOT}/include", "-fsyntax-only",
                "-x", "c" if block.language == "c" else "c++", "-"], input=source)


def settings(block):
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "velmo.xml"
        file.write_text(block.text)
        return run([BUILD / "bin/velmo", "settings", "check", file]) or started(file)


def started(file):
    """Whether velmod starts with a configuration; where it listens does not matter."""
    command = [BUILD / "bin/velmod", "--config", file, "--listen", "127.0.0.1:0", "--no-unix",
               "--metrics", "127.0.0.1:0", "--data-dir", file.parent / "data"]
    shown = ""
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True) as velmod:
        for line in velmod.stdout:
            shown += line
            if " ready, naming " in line:
                shown = ""
                break
        velmod.terminate()
        velmod.stdout.read()
    return shown


def parsed(block):
    try:
        json.loads(block.text)
    except ValueError as error:
        return str(error)
    return ""


CHECKS = {"c": compiled, "cpp": compiled, "xml": settings, "json": parsed,
          "text": lambda block: "", "console": lambda block: ""}


def network_of_its_own(command):
    """The commands of pages use the ports that are printed: nobody else may be there. What
    they leave running ends with them."""
    unshare = ["unshare", "--net", "--pid", "--fork", "--kill-child"]
    unshare += ["--map-root-user"] if os.getuid() else []
    inside = [*unshare, "sh", "-c", 'PATH="$PATH:/sbin" ip link set lo up && exec "$@"', "sh"]
    if not run([*inside, "true"]):
        return [*inside, *command]
    with socket.socket() as probe:
        if probe.connect_ex(("127.0.0.1", 2809)) == 0:
            sys.exit("port 2809 is in use, and no network of one's own can be had")
    return command


def played(page):
    """Carries out a page's commands in a folder that looks like the repository."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for entry in ("include", "examples", "scripts", "docs"):
            (folder / entry).symlink_to(ROOT / entry)
        (folder / "build").mkdir()
        (folder / "build/release").symlink_to(BUILD)
        for entry in ("home", "run", "tmp"):
            (folder / entry).mkdir(mode=0o700)
        for block in page.blocks:
            program = re.match(r"/\* (\S+\.c(pp)?)\b", block.text)
            if block.language in COMPILERS and program:
                (folder / program.group(1)).write_text(block.text)
        environment = {
            "PATH": f"{BUILD}/bin:{ROOT}/build/tools/usr/bin:/usr/local/bin:/usr/bin:/bin",
            "CPATH": f"{ROOT}/include", "LIBRARY_PATH": f"{BUILD}/lib",
            "LD_LIBRARY_PATH": f"{BUILD}/lib", "LC_ALL": "C.UTF-8", "TERM": "dumb",
            "HOME": f"{folder}/home", "XDG_RUNTIME_DIR": f"{folder}/run",
            "TMPDIR": f"{folder}/tmp"}
        command = [ROOT / "scripts/check-tour", ROOT / page.name]
        return run(network_of_its_own(command), cwd=folder, env=environment, timeout=300)


def check(page):
    for block in page.blocks:
        where = f"{page.name}:{block.line}"
        if block.reason:
            continue
        if block.language not in CHECKS:
            yield f"{where}: a block of {block.language or 'what?'}: cannot be checked"
        else:
            complaint = CHECKS[block.language](block)
            if complaint:
                yield f"{where}: {complaint}"
    if any(block.language == "console" and not block.reason for block in page.blocks):
        complaint = played(page)
        if complaint:
            yield complaint


if __name__ == "__main__":
    wanted = sys.argv[1:] or markdown_files()
    wrong = False
    for page in map(Page, wanted):
        for complaint in check(page):
            wrong = True
            print(complaint)
    if not wrong:
        print(f"all blocks of {len(wanted)} pages are good")
    sys.exit(1 if wrong else 0)
