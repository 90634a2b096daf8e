#!/usr/bin/env python3
"""Looks at the sources as texts, for scripts/lint.

- A word that is stored in files is spelled once, in src/h5/disk_names.h; nowhere else in src/ does it stand in quotes.
- A comment that begins with QUIRK: names the test that pins it, 'Pinned by Suite.Test', and that test exists.
- No source of the library, the public headers or the program is longer than 400 lines.
- A folder of src/ includes its own headers and those of the folders below it, see LAYERS. Public headers include public
  ones alone.
- No two headers define types of one name.
- HDF5's calls for datasets and attributes stand in src/h5, and an id is closed by its handle.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
DISK_NAMES = ROOT / "src/h5/disk_names.h"
LONGEST = 400
SUFFIXES = {".h", ".hpp", ".cpp"}
# From the lowest on. Those of a row may include each other.
LAYERS = [{"structure"}, {"h5"}, {"block"}, {"variable", "unit", "result", "entity"}, {"filer"}]
# What outlives a call, versions and messages are below all others, wherever they stand.
BELOW_ALL = {"filer/process_state.h", "filer/versions.h", "filer/messages.h"}
# What a filer has read: the families fill it and look into it.
SHARED = {"filer/container.h": LAYERS[3]}
INCLUDE = re.compile(r'^#include "([^"]+)"')
DATA_CALL = re.compile(r"\bH5[DA](?!I)[a-z]\w*\s*\(")
CLOSE_CALL = re.compile(r"\bH5[A-Z]close\s*\(")
TEST = re.compile(r"\b(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\)")
LITERAL = re.compile(r'"((?:[^"\\\n]|\\.)*)"')


def sources(*folders):
    for folder in folders:
        yield from sorted(path for path in (ROOT / folder).rglob("*") if path.suffix in SUFFIXES)


def code_lines(path):
    """Numbered lines without their // comments and without #include lines."""
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if not line.lstrip().startswith(("#include", "//")):
            yield number, re.sub(r'^((?:[^"/]|"(?:[^"\\]|\\.)*"|/(?!/))*)//.*', r"\1", line)


def disk_words():
    if not DISK_NAMES.exists():
        return set()
    return {word for _, line in code_lines(DISK_NAMES) for word in LITERAL.findall(line) if word}


def repeated_disk_words():
    words = disk_words()
    for path in sources("src"):
        if path == DISK_NAMES:
            continue
        for number, line in code_lines(path):
            for word in words.intersection(LITERAL.findall(line)):
                yield path, number, f'"{word}" is a word of the file format: use orvio::disk'


def comment_blocks(path):
    """Runs of comment lines as (number of the first line, text)."""
    first, texts = 0, []
    for number, line in enumerate(path.read_text().splitlines() + [""], 1):
        match = re.match(r"\s*///?<? ?(.*)", line) or re.match(r".*?\s//[/<]* ?(QUIRK:.*)", line)
        if match:
            first = first if texts else number
            texts.append(match[1].strip())
        elif texts:
            yield first, " ".join(texts)
            texts = []


def unpinned_quirks():
    tests = {f"{suite}.{name}" for path in sources("tests") for suite, name in TEST.findall(path.read_text())}
    for path in sources("include", "src", "programs"):
        for number, text in comment_blocks(path):
            for quirk in re.split(r"(?=QUIRK:)", text):
                if quirk.startswith("QUIRK:") and "Pinned by" not in quirk:
                    yield path, number, "a quirk that names no test: 'Pinned by Suite.Test'"
            for pins in re.findall(r"Pinned by ((?:\w+\.\w+(?:, and |, | and )?)+)", text):
                for pin in re.findall(r"\w+\.\w+", pins):
                    if pin not in tests:
                        yield path, number, f"pinned by {pin}, a test that does not exist"
            if re.search(r"Pinned by (?!\w+\.\w+)", text):
                yield path, number, "'Pinned by' without a Suite.Test behind it"


def rank(folder):
    return next((i for i, row in enumerate(LAYERS) if folder in row), None)


def upward_includes():
    for path in sources("src"):
        folder = path.relative_to(ROOT / "src").parts[0]
        for number, line in enumerate(path.read_text().splitlines(), 1):
            match = INCLUDE.match(line)
            target = rank(match[1].split("/")[0]) if match else None
            if target is None or target <= rank(folder) or match[1] in BELOW_ALL or folder in SHARED.get(match[1], ()):
                continue
            yield path, number, f"src/{folder} is below {match[1]}"
    for path in sources("include"):
        for number, line in enumerate(path.read_text().splitlines(), 1):
            match = INCLUDE.match(line)
            if match and not match[1].startswith("orvio/"):
                yield path, number, f"{match[1]} is no public header"


def misplaced_hdf5_calls():
    for path in sources("src"):
        if path.parts[len(ROOT.parts) + 1] == "h5":
            continue
        for number, line in code_lines(path):
            if DATA_CALL.search(line) or CLOSE_CALL.search(line):
                yield path, number, "datasets, attributes and ids are the business of src/h5"


def types_of(path):
    """Types that a header defines, with their namespaces."""
    text = path.read_text()
    namespace = re.search(r"^namespace ([\w:]+) {", text, re.M)
    for match in re.finditer(r"^(?:struct|class|enum(?: class)?) (?:ORVIO_EXPORT )?(\w+)\b[^;{]*{", text, re.M):
        yield (namespace[1] if namespace else "") + "::" + match[1], text.count("\n", 0, match.start()) + 1


def repeated_types():
    """Two types of one name: the linker takes the functions of one for those of the other, without a word."""
    for folders in (("include", "src"), ("programs",)):
        seen = {}
        for path in sources(*folders):
            if path.suffix == ".cpp":
                continue
            for name, number in types_of(path):
                other = seen.setdefault(name, path)
                if other != path:
                    yield path, number, f"{name} is a type of {other.relative_to(ROOT)}, too"


def long_sources():
    for path in sources("src", "include", "programs"):
        if path.name == "orv_filer.h":  # one class, one header
            continue
        length = len(path.read_text().splitlines())
        if length > LONGEST:
            yield path, LONGEST + 1, f"{length} lines: split it by what its parts do"


def main():
    faults = [*repeated_disk_words(), *unpinned_quirks(), *long_sources(), *upward_includes(), *misplaced_hdf5_calls(),
              *repeated_types()]
    for path, number, text in faults:
        print(f"{path.relative_to(ROOT)}:{number}: {text}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
