#!/usr/bin/env python3
"""Writes zrqrybld/base/case_folding.inc: Unicode simple case folding as ranges.

Usage: tools/make_case_folding.py /usr/share/unicode/CaseFolding.txt > zrqrybld/base/case_folding.inc
(Debian package unicode-data). A row {first, last, step, delta} folds first, first+step, ... last
by adding delta.
"""
import sys

pairs = []
version = ""
for line in open(sys.argv[1], encoding="utf-8"):
    if line.startswith("# CaseFolding-"):
        version = line[2:].strip()
    fields = [f.strip() for f in line.split("#")[0].split(";")]
    if len(fields) >= 3 and fields[1] in ("C", "S"):
        pairs.append((int(fields[0], 16), int(fields[2], 16)))
pairs.sort()

ranges = []  # [first, last, step, delta]
for code, folded in pairs:
    delta = folded - code
    if ranges and ranges[-1][3] == delta:
        first, last, step, _ = ranges[-1]
        gap = code - last
        if gap in (1, 2) and (first == last or gap == step):
            ranges[-1][1], ranges[-1][2] = code, gap
            continue
    ranges.append([code, code, 1, delta])

print(f"// Unicode simple case folding, from {version} (tools/make_case_folding.py).")
print("// Rows are {first, last, step, delta}, in ascending order.")
for first, last, step, delta in ranges:
    print(f"{{0x{first:04X}, 0x{last:04X}, {step}, {delta}}},")
