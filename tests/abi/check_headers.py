#!/usr/bin/env python3
"""Checks the public headers as texts.

orvio.h includes every other one; none includes anything but its own kind, HDF5's and the standard's headers; and none
defines a macro.
"""
import pathlib
import re
import sys


def main(folder: pathlib.Path) -> int:
    faults = []
    headers = {path.name: path.read_text() for path in folder.glob("*.h")}
    included = set(re.findall(r'#include [<"]orvio/([^">]+)[">]', headers.get("orvio.h", "")))
    faults += [f"orvio.h does not include {name}" for name in sorted(set(headers) - included - {"orvio.h"})]
    for name, text in sorted(headers.items()):
        for target in re.findall(r'#include (\S+)', text):
            if not re.fullmatch(r'[<"]orvio/\w+\.h[">]|<H5\w*\.h>|<hdf5\.h>|<\w+>', target):
                faults.append(f"{name} includes {target}")
        faults += [f"{name} defines the macro {macro}" for macro in re.findall(r"^\s*#\s*define\s+(\w+)", text, re.M)]
    print("\n".join(faults) if faults else f"{len(headers)} public headers, no fault")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
