#!/usr/bin/env python3
"""Checks the public headers as texts.

orvio.h includes every other one of the classes; none includes anything but its own kind, HDF5's and the standard's
headers; none of the modern face includes HDF5's; and none defines a macro.
"""
import pathlib
import re
import sys


def main(folder: pathlib.Path) -> int:
    faults = []
    paths = [*folder.rglob("*.h"), *folder.rglob("*.hpp")]
    headers = {str(path.relative_to(folder)): path.read_text() for path in paths}
    included = set(re.findall(r'#include [<"]orvio/([^">]+)[">]', headers.get("orvio.h", "")))
    expected = {name for name in headers if name.endswith(".h")} - {"orvio.h"}
    faults += [f"orvio.h does not include {name}" for name in sorted(expected - included)]
    for name, text in sorted(headers.items()):
        is_class = name.endswith(".h")
        allowed = r'[<"]orvio/\w+\.h[">]|<H5\w*\.h>|<hdf5\.h>|<\w+>' if is_class else r'"orvio/[\w/]+\.h(pp)?"|<\w+>'
        for target in re.findall(r'#include (\S+)', text):
            if not re.fullmatch(allowed, target):
                faults.append(f"{name} includes {target}")
        faults += [f"{name} defines the macro {macro}" for macro in re.findall(r"^\s*#\s*define\s+(\w+)", text, re.M)]
    print("\n".join(faults) if faults else f"{len(headers)} public headers, no fault")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
