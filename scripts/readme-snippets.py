#!/usr/bin/env python3
"""Checks that every C++ snippet of README.md is an excerpt of examples/api_tour.cpp: each of its
lines stands in the tour (leading spaces aside), in the same order; "// ..." marks a gap. The tour is built and run by
ctest, so the snippets compile and run as shown."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
readme = (ROOT / "README.md").read_text(encoding="utf-8")
tour = [line.strip() for line in (ROOT / "examples/api_tour.cpp").read_text(encoding="utf-8").splitlines()]

failures = 0
for number, block in enumerate(re.findall(r"^```cpp\n(.*?)^```", readme, re.M | re.S), 1):
    position = 0
    for line in (line.strip() for line in block.splitlines()):
        if not line or line == "// ...":
            continue
        try:
            position = tour.index(line, position) + 1
        except ValueError:
            print(f"README.md C++ snippet {number}: not in examples/api_tour.cpp (in this order): {line}")
            failures += 1
sys.exit(1 if failures else 0)
