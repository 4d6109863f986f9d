"""Looks at the installed tree: which headers there are, that each finds what it includes and all compile, and that nothing
tells where it was built. (That each compiles alone is what `./test headers` holds of the very same files.)

    tree.py --source FOLDER --prefix FOLDER --compiler COMMAND [--flag FLAG]...
"""

import argparse
import concurrent.futures
import os
import re
import subprocess
import sys
from pathlib import Path


def listed(source):
    rows = (source / "cmake" / "public_api.txt").read_text(encoding="utf-8")
    return set(re.findall(r"^header (\S+)", rows, re.M))


def wrong_headers(source, prefix):
    include, public = prefix / "include", listed(source)
    found = {path.relative_to(include).as_posix() for path in include.rglob("*") if path.is_file()}
    return ([f"installed, not public: {name}" for name in sorted(found - public)] +
            [f"public, not installed: {name}" for name in sorted(public - found)] +
            [f"not as in the sources: {name}" for name in sorted(public & found)
             if (include / name).read_bytes() != (source / name).read_bytes()])


def telling_files(prefix, folders):
    """The files that hold the name of a folder of the build."""
    files = [path for path in prefix.rglob("*") if path.is_file() and not path.is_symlink()]
    return [f"{path.relative_to(prefix)} tells {folder}" for path in files for folder in folders
            if str(folder).encode() in path.read_bytes()]


def failure(compiler, flags, prefix, mode, headers):
    """What the compiler says of a program that is nothing but these headers; "" when it is content."""
    program = "".join(f"#include <{header}>\n" for header in headers)
    return subprocess.run([*compiler.split(), mode, "-std=c++20", "-x", "c++", "-I", prefix / "include", *flags, "-"],
                          input=program, text=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE).stderr


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--source", type=Path, required=True)
    parser.add_argument("--prefix", type=Path, required=True)
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--flag", action="append", default=[])
    options = parser.parse_args()
    problems = wrong_headers(options.source, options.prefix) + telling_files(options.prefix, [options.source])
    headers = sorted(name for name in listed(options.source) if name.endswith(".h"))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        alone = lambda name: failure(options.compiler, options.flag, options.prefix, "-M", [name])
        problems += [f"{name} alone:\n{said}" for name, said in zip(headers, pool.map(alone, headers)) if said]
    problems += filter(None, [failure(options.compiler, options.flag, options.prefix, "-fsyntax-only", headers)])
    sys.exit("\n".join(problems) or 0)


main()
