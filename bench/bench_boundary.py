#!/usr/bin/env python3
"""What the boundary costs from Python: property reads, writes and calls a second, and objects that come and go.

    ZRQRYBLD_LIBRARY=build/release/libzrQryBld.so PYTHONPATH=bindings/python python3 bench/bench_boundary.py
"""

import ctypes
import resource
import time

import zrqrybld
from zrqrybld import create

ROUNDS = 200_000


def rate(work, count=ROUNDS):
    """The best of three, in the process's own time."""
    best = float("inf")
    for _ in range(3):
        start = time.process_time()
        for _ in range(count):
            work()
        best = min(best, time.process_time() - start)
    return count / best


def pairs(count):
    """Objects made and released through the C interface; how much the process has grown by them, in kB."""
    lib, handle = zrqrybld._lib, ctypes.c_uint64()

    def some(number):
        for _ in range(number):
            lib.zrq_create(b"qbProperties", ctypes.byref(handle))
            lib.zrq_release(handle)
        return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss

    before = some(50_000)
    return some(count) - before


def main():
    qb = create("qbQueryBuilder")
    functions = qb.DBFunctions
    for name, work in (("read a text", lambda: qb.SelectTopRecords), ("read a number", lambda: qb.AliasMaxLen),
                       ("read an object", lambda: qb.Properties), ("read an item", lambda: functions[1]),
                       ("write a number", lambda: setattr(qb, "AliasMaxLen", 5)),
                       ("call a method", lambda: functions.Find("Sum"))):
        print(f"{name:20} {rate(work):>12,.0f} a second")
    print(f"{'a million pairs':20} {pairs(1_000_000):>12,} kB grown")


if __name__ == "__main__":
    main()
