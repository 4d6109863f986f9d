"""Compiles and runs the pieces of code that the documentation shows.

    examples.py --source FOLDER --compiler COMMAND --c-compiler COMMAND --library FILE --zrqb FILE --store FILE
                [--python-with-qt COMMAND]

Before each block of C++, C, Python or zrqb stands what holds it: `<!-- in: NAME -->` puts it where EXAMPLE stands in
tests/install/around/NAME, `<!-- code: FILE -->` (tools/check_links), `<!-- file: -->` and `<!-- run -->` (ways.py). C++ is
compiled; C, Python and the shell are run.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

BLOCK = re.compile(r"(?:^<!-- ([^\n]*) -->\n)?^```(\w*)\n(.*?)^```", re.S | re.M)
HELD_ELSEWHERE = re.compile(r"(code|file): |run$")
MUST_BE_HELD = ("cpp", "c", "python")
OWN = re.compile(r'^#include [<"].*\n', re.M)
AROUND = Path(__file__).parent / "around"


def put_in(around, example, language):
    """The program: headers that the example names go to the top."""
    headers = "".join(OWN.findall(example)) if language in ("c", "cpp") else ""
    example = OWN.sub("", example) if headers else example
    line = re.search(r"^( *)(?://|#|/\*)? ?EXAMPLE.*\n", around, re.M)
    indented = re.sub(r"^(?=.)", line[1], example, flags=re.M)
    return headers + around[:line.start()] + indented + around[line.end():]


def commands_of(program, options):
    """What compiles and runs it."""
    if program.suffix == ".cpp":
        return [[*options.compiler.split(), "-std=c++20", "-fsyntax-only", f"-I{options.source}", program]]
    if program.suffix == ".c":
        library = Path(options.library)
        return [[*options.c_compiler.split(), "-Wall", "-Werror", f"-I{options.source}", program, "-o", "program",
                 f"-L{library.parent}", f"-Wl,-rpath,{library.parent}", "-l" + library.stem.removeprefix("lib")],
                ["./program"]]
    if program.suffix == ".sh":
        return [["bash", "-eu", program]]
    if program.name == "window.py":
        return [[options.python_with_qt, program]] if options.python_with_qt else []
    return [[sys.executable, program]]


def environment_of(options):
    return dict(os.environ) | {
        "ZRQRYBLD_LIBRARY": str(options.library), "PYTHONPATH": str(options.source / "bindings" / "python"),
        "PYTHONDONTWRITEBYTECODE": "1", "PATH": f"{options.zrqb.parent}:{os.environ['PATH']}", "STORE": str(options.store),
        "SOURCE": str(options.source)}


def run(name, example, language, options):
    """What went wrong with an example; "" for nothing."""
    with tempfile.TemporaryDirectory() as folder:
        program = Path(folder, name)
        program.write_text(put_in((AROUND / name).read_text(encoding="utf-8"), example, language), encoding="utf-8")
        for command in commands_of(program, options):
            done = subprocess.run(command, cwd=folder, env=environment_of(options), text=True, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
            if done.returncode:
                return f"in {name}:\n{done.stdout}"
    return ""


def main():
    parser = argparse.ArgumentParser()
    for name in ("source", "library", "zrqb", "store"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    for name in ("compiler", "c-compiler"):
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--python-with-qt")
    options = parser.parse_args()
    problems, seen = [], set()
    for page in [options.source / "README.md", *sorted((options.source / "docs").glob("*.md"))]:
        for mark, language, example in BLOCK.findall(page.read_text(encoding="utf-8")):
            if mark.startswith("in: "):
                seen.add(mark[4:])
                failed = run(mark[4:], example, language, options)
                if failed:
                    problems.append(f"{page.name}, {failed}")
            elif language in MUST_BE_HELD and not HELD_ELSEWHERE.match(mark):
                problems.append(f"{page.name}: nothing holds this example:\n{example}")
    problems += [f"around/{path.name}: no page has an example for it" for path in AROUND.iterdir() if path.name not in seen]
    sys.exit("\n".join(problems) or 0)


main()
