#!/usr/bin/env python3
"""Compares the names that the shared library exports with the list beside this script.

  check_exported_names.py LIBRARY             exit 1 and a diff if they differ
  check_exported_names.py --update LIBRARY    writes the list anew; look at the diff before committing it

A name that went missing breaks hosts at load time; a name that came in becomes a promise. Counted are definitions of
our own sources and explicitly instantiated class templates. Weak symbols besides those (inline members, type
information, instances of the standard library) come and go with compiler and optimisation, hosts have their own copy,
and nobody can rely on them.
"""
import difflib
import pathlib
import re
import subprocess
import sys

LIST = pathlib.Path(__file__).with_name("exported_names.txt")
NOT_OURS = re.compile(r"^(?:[\w ]+ )?(?:std|__gnu_cxx|__cxxabiv1)::|^operator (?:new|delete)|^DW\.ref")
SPECIAL = re.compile(r"^(vtable|typeinfo|typeinfo name|VTT|guard variable|(non-)?virtual thunk) (for|to) ")


def counts(kind: str, name: str) -> bool:
    if SPECIAL.match(name) or NOT_OURS.match(name):
        return False
    if kind in "WVuvw":
        return re.match(r"^\w+<.*>::", name) is not None
    return True


def exported(library: str) -> list:
    table = subprocess.run(["nm", "-D", "-C", "--defined-only", library], check=True, capture_output=True, text=True)
    names = set()
    for line in table.stdout.splitlines():
        _, kind, name = line.split(" ", 2)
        name = re.sub(r"\[abi:\w+\]", "", name.split("@@")[0])
        if counts(kind, name):
            names.add(name)
    return sorted(names)


def main(arguments: list) -> int:
    update = "--update" in arguments
    library = next(argument for argument in arguments if argument != "--update")
    found = exported(library)
    if update:
        LIST.write_text("".join(name + "\n" for name in found))
        print(f"{LIST}: {len(found)} names")
        return 0
    expected = LIST.read_text().splitlines() if LIST.exists() else []
    diff = list(difflib.unified_diff(expected, found, str(LIST), library, lineterm="", n=0))
    print("\n".join(diff) if diff else f"{len(found)} exported names, as listed")
    if diff:
        print("If the change is meant, run this script with --update.")
    return 1 if diff else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
