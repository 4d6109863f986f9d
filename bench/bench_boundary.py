#!/usr/bin/env python3
"""What the boundary costs from Python: property reads, writes and calls a second.

    ZRQRYBLD_LIBRARY=build/release/libzrQryBld.so PYTHONPATH=bindings/python python3 bench/bench_boundary.py
"""

import time

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


def main():
    qb = create("qbQueryBuilder")
    functions = qb.DBFunctions
    for name, work in (("read a text", lambda: qb.SelectTopRecords), ("read a number", lambda: qb.AliasMaxLen),
                       ("read an object", lambda: qb.Properties), ("read an item", lambda: functions[1]),
                       ("write a number", lambda: setattr(qb, "AliasMaxLen", 5)),
                       ("call a method", lambda: functions.Find("Sum"))):
        print(f"{name:20} {rate(work):>12,.0f} a second")


if __name__ == "__main__":
    main()
