#!/usr/bin/env python3
"""Fails if an object file of the library holds a variable that can change, outside the source of the process state.

  check_mutable_state.py FILE    a text file that names one object file per line

Everything that outlives a call has its place in src/filer/process_state.cpp. A global or static anywhere else is state
that no test resets and no reader expects; one with a constructor runs code when a host loads the library.
"""
import pathlib
import re
import subprocess
import sys

HOME_OF_STATE = "process_state.cpp"
# Constants that hold addresses are made read-only after loading; DW.ref.* belongs to the exception tables.
MUTABLE_SECTION = re.compile(r"^(\.data(?!\.rel\.ro|\.rel\.local\.DW\.ref)|\.bss|\.tbss|\.tdata|\*COM\*)")
SYMBOL = re.compile(
    r"^[0-9a-f]+ (?P<flags>.{7}) (?P<section>\S+)\t[0-9a-f]+ +(?:\.(?:hidden|internal|protected) )?(?P<name>.+)$")


def variables(path: str) -> list:
    table = subprocess.run(["objdump", "-t", "-C", path], check=True, capture_output=True, text=True).stdout
    found = []
    for line in table.splitlines():
        match = SYMBOL.match(line)
        # objdump marks variables with O, thread-local ones with nothing; d and f are sections and files.
        if match and match["flags"][-2] != "d" and match["flags"][-1] in "O ":
            if MUTABLE_SECTION.match(match["section"]):
                found.append(match["name"])
    return found


def main(listing: pathlib.Path) -> int:
    objects = [line for line in listing.read_text().splitlines() if line]
    faults = []
    for path in objects:
        if not pathlib.Path(path).name.startswith(HOME_OF_STATE):
            faults += [f"{pathlib.Path(path).name}: {name}" for name in variables(path)]
    print("\n".join(faults) if faults else f"{len(objects)} object files, no mutable variable")
    if faults:
        print("State that outlives a call belongs to ProcessState in src/filer/process_state.cpp.")
    return 1 if faults or not objects else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
