"""Runs the ways of docs/installing.md as they stand there, each in an empty folder.

    ways.py WAY --source FOLDER --build FOLDER --work FOLDER

Behind `<!-- way: NAME -->` come files (`<!-- file: NAME -->`) and commands (`<!-- run -->`). The sources are found as
zrQryBld beside the way's folder, the installed tree at $HOME/zrqrybld. The library has been built by whoever runs the
tests: build/release stands for that folder, commands that would build it again are left out, and where it is part of
another project that project is configured as a whole, but of the library one small part is built.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

WAY = re.compile(r"<!-- way: (\w+) -->\n(.*?)(?=<!-- way: |^## |\Z)", re.S | re.M)
BLOCK = re.compile(r"<!-- (?:file: (\S+)|run) -->\n```\w*\n(.*?)```", re.S)
DONE_ALREADY = re.compile(r"^cmake --(preset|build build/release).*\n", re.M)

# What a way prints among other things.
PRINTS = {"headless": "SELECT", "c": "SELECT TOP 3", "python": "LIMIT 10"}


def read_way(page, name):
    """[(file name or "", text)] of one way."""
    ways = {match[1]: BLOCK.findall(match[2]) for match in WAY.finditer(page)}
    if not ways.get(name):
        sys.exit(f"docs/installing.md has no way {name}; it has {', '.join(ways)}")
    return ways[name]


def spare_time(name, commands):
    """The commands without those that would build the library again."""
    if name == "install":
        return DONE_ALREADY.sub("", commands)
    if name in ("subproject", "fetched"):
        return commands.replace("-B build", "-B build -DCMAKE_OPTIMIZE_DEPENDENCIES=ON").replace(
            "--build build", "--build build --target zrqrybld_files")
    return commands


def lay_out(source, build, work):
    """The folder that holds the sources under their name, a home, and the sample database."""
    (work / "home").mkdir(parents=True, exist_ok=True)
    seen = work / "zrQryBld"
    if not seen.exists():
        # Links, so that build/release can be another build than that of the sources.
        (seen / "build").mkdir(parents=True)
        for entry in source.iterdir():
            if entry.name not in ("build", ".git"):
                (seen / entry.name).symlink_to(entry)
        (seen / "build" / "release").symlink_to(build)
        shutil.copy(build / "samples" / "store.db", work / "store.db")


def run_way(name, source, build, work, environment):
    """Runs one way and returns what it printed."""
    lay_out(source, build, work)
    folder = work / name
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    (folder / "zrQryBld").symlink_to(work / "zrQryBld")  # for the way that begins beside the sources
    output = ""
    for file, text in read_way((source / "docs" / "installing.md").read_text(encoding="utf-8"), name):
        if file:
            (folder / file).write_text(text, encoding="utf-8")
            continue
        done = subprocess.run(["bash", "-euc", spare_time(name, text)], cwd=folder,
                              env=environment | {"HOME": str(work / "home")}, text=True, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        output += done.stdout
        if done.returncode:
            sys.exit(f"{output}\n{name}: ended with {done.returncode}")
    return output


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("way")
    for name in ("source", "build", "work"):
        parser.add_argument(f"--{name}", type=Path, required=True)
    options = parser.parse_args()
    output = run_way(options.way, options.source, options.build, options.work, dict(os.environ))
    wanted = PRINTS.get(options.way, "")
    if wanted not in output:
        sys.exit(f'{output}\n{options.way}: did not print "{wanted}"')


if __name__ == "__main__":
    main()
