#!/usr/bin/env python3
"""Runs what the documents show: every block of C++ and every block of commands of a page, in the order of the page and in
one scratch folder.

A comment in the line before a block says what it is:

    <!-- program: NAME -->         C++ that is part of the program NAME. Its parts on the page are put one behind the other,
                                   as bodies of main where they have none of their own, compiled as C++17 and run once.
    <!-- program: NAME ARGS -->    the same, run with arguments; said at the first part
    <!-- prints -->                text: what the program part, or the commands, before it print on standard output
    <!-- prints: some lines -->    the same for lines that stand among others, in this order
    <!-- exit: 1 -->               commands that end with that status; otherwise 0
    <!-- sketch -->                not run: it shows a form, or a machine is set up by it

and a comment of its own makes a file that the page speaks of:

    <!-- example: NAME ARGS -->    compiles examples/NAME.cpp and runs it

A block of C++ or of commands without such a comment is a fault, so that none escapes.
"""
import argparse
import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

FENCE = re.compile(r"^\s*```(\w*)\s*$")
NOTE = re.compile(r"^\s*<!-- (\w+)(?:: (.*?))? -->$")
MARK = "\x1e"
RUN = {"cpp", "sh"}


class Block:
    def __init__(self, number, language, note, text):
        self.number, self.language, self.note, self.text = number, language, note, text
        self.printed = None  # by this part alone


def blocks_of(page):
    note, start, language, text = None, 0, None, []
    for number, line in enumerate(page.read_text().splitlines(), 1):
        fence = FENCE.match(line)
        if language is None and fence:
            start, language, text = number, fence[1], []
        elif language is not None and line.lstrip().startswith("```"):
            yield Block(start, language, note, "".join(line + "\n" for line in text))
            note, language = None, None
        elif language is not None:
            text.append(line)
        elif NOTE.match(line):
            note = NOTE.match(line).groups()
            if note[0] == "example":
                yield Block(number, "", note, "")
                note = None
        elif line.strip():
            note = None


def program_text(parts):
    """The parts as one program. What stands above main of a part goes to the top; a mark is printed between parts."""
    if len(parts) == 1 and "int main(" in parts[0].text:
        return parts[0].text
    top, bodies = ["#include <cstdio>", "#include <iostream>"], []
    for part in parts:
        lines = part.text.splitlines()
        top += [line for line in lines if line.startswith("#include")]
        bodies.append("\n".join(line for line in lines if not line.startswith("#include")))
    separator = '\nstd::cout << "\\x1e" << std::flush; std::fputs("", stdout);\n'
    return "\n".join(top) + "\nint main() {\n" + separator.join(bodies) + "\n}\n"


class Page:
    def __init__(self, path, options):
        self.path, self.options, self.faults, self.changes = path, options, [], []
        self.blocks = list(blocks_of(path))

    def fault(self, block, text):
        self.faults.append(f"{self.path.name}:{block.number}: {text}")

    def run(self, folder):
        for link in ("examples", "tests"):
            (folder / link).symlink_to(self.options.source / link)
        before, done = None, set()
        for block in self.blocks:
            kind = block.note[0] if block.note else None
            if kind == "prints":
                self.compare(block, before)
            elif kind == "sketch":
                continue
            elif kind == "example":
                name, *arguments = block.note[1].split()
                self.build_and_run(block, name, self.options.source / "examples" / f"{name}.cpp", arguments, folder)
            elif block.language == "cpp" and kind == "program":
                name = block.note[1].split()[0]
                if name not in done:
                    done.add(name)
                    self.run_program(name, folder)
                before = block
            elif block.language == "sh":
                self.run_commands(block, folder)
                before = block
            elif block.language in RUN:
                self.fault(block, "says nothing of how it is run; see tests/documents/check_documents.py")

    def run_program(self, name, folder):
        parts = [b for b in self.blocks if b.note and b.note[0] == "program" and b.note[1].split()[0] == name]
        source = folder / f"{name}.cpp"
        source.write_text(program_text(parts))
        text = self.build_and_run(parts[0], name, source, parts[0].note[1].split()[1:], folder)
        printed = text.split(MARK)
        for part, text in zip(parts, printed + [""] * len(parts)):
            part.printed = text

    def build_and_run(self, block, name, source, arguments, folder):
        command = [self.options.compiler, "-std=c++17", "-O0", "-Wall", "-Wextra", str(source), "-o", str(folder / name),
                   *[f"-I{i}" for i in self.options.include], str(self.options.library),
                   *[f"-Wl,-rpath,{r}" for r in (self.options.library.parent, *self.options.rpath)]]
        built = subprocess.run(command, capture_output=True, text=True)
        if built.returncode or "warning" in built.stderr:
            self.fault(block, f"{name} does not compile without a word:\n{built.stderr[:3000]}")
            return ""
        ran = subprocess.run([str(folder / name), *arguments], capture_output=True, text=True, cwd=folder, timeout=120)
        if ran.returncode:
            self.fault(block, f"{name} ends with {ran.returncode}: {ran.stderr[:1000]}")
        return ran.stdout

    def run_commands(self, block, folder):
        path = f"{self.options.program.parent}:{os.environ['PATH']}" if self.options.program else os.environ["PATH"]
        ran = subprocess.run(["bash", "-euo", "pipefail", "-c", block.text], capture_output=True, text=True, cwd=folder,
                             env={**os.environ, "PATH": path}, timeout=300)
        expected = int(block.note[1]) if block.note and block.note[0] == "exit" else 0
        if ran.returncode != expected:
            self.fault(block, f"the commands end with {ran.returncode}: {ran.stderr[-1000:]}")
        block.printed = ran.stdout

    def compare(self, block, before):
        if before is None or before.printed is None:
            return self.fault(block, "nothing before it prints anything")
        want, got = block.text.splitlines(), before.printed.splitlines()
        if block.note[1] == "some lines":
            lines = iter(got)
            missing = [line for line in want if not any(line == other for other in lines)]
            if missing:
                self.fault(block, "is not printed: " + "\n".join(missing) + "\nbut:\n" + before.printed[:2000])
        elif want != got and self.options.update:
            self.changes.append((block, before.printed))
        elif want != got:
            self.fault(block, "\n".join(difflib.unified_diff(want, got, "the page", "what is printed", lineterm="")))

    def update(self):
        lines = self.path.read_text().splitlines(keepends=True)
        for block, printed in reversed(self.changes):
            length = len(block.text.splitlines())
            lines[block.number : block.number + length] = printed.rstrip("\n") + "\n"
        self.path.write_text("".join(lines))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--source", type=pathlib.Path, required=True)
    parser.add_argument("--compiler", default="c++")
    parser.add_argument("--include", action="append", default=[])
    parser.add_argument("--library", type=pathlib.Path, required=True)
    parser.add_argument("--rpath", action="append", default=[])
    parser.add_argument("--program", type=pathlib.Path)
    parser.add_argument("page", type=pathlib.Path, nargs="+")
    parser.add_argument("--update", action="store_true", help="put what is printed into the pages, to be looked at")
    options = parser.parse_args()
    for name in ("source", "library", "program"):
        path = getattr(options, name)
        setattr(options, name, path.resolve() if path else None)
    options.include = [pathlib.Path(i).resolve() for i in options.include]
    faults = []
    for path in options.page:
        page = Page(path, options)
        with tempfile.TemporaryDirectory() as folder:
            page.run(pathlib.Path(folder))
        faults += page.faults
        if options.update:
            page.update()
    print("\n".join(faults) if faults else "all blocks do what the pages say")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
