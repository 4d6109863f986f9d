"""The library as part of another project on a system that lacks a package: what is left out is said, and the rest builds.

    without.py PACKAGE --source FOLDER --work FOLDER
"""

import argparse
import shutil
import subprocess
import sys
from pathlib import Path

PROJECT = """cmake_minimum_required(VERSION 3.25)
project(application LANGUAGES CXX)
add_subdirectory({source} zrQryBld)
foreach(name core sqlite odbc qt c)
  if(TARGET zrQryBld::${{name}})
    message(STATUS "has ${{name}}")
  endif()
endforeach()
"""
ADAPTERS = {"SQLite3": "sqlite", "ODBC": "odbc", "Qt6": "qt", "GTest": None}


def configure(folder, *options):
    done = subprocess.run(["cmake", "-S", folder, "-B", folder / "build", "-DCMAKE_OPTIMIZE_DEPENDENCIES=ON", *options],
                          text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    return done.returncode, " ".join(done.stdout.split())


def require(condition, what, output):
    if not condition:
        sys.exit(f"{output}\n{what}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("package", choices=ADAPTERS)
    parser.add_argument("--source", type=Path, required=True)
    parser.add_argument("--work", type=Path, required=True)
    options = parser.parse_args()
    package, lost = options.package, ADAPTERS[options.package]
    folder = options.work / f"without_{package}"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    (folder / "CMakeLists.txt").write_text(PROJECT.format(source=options.source))
    hidden = f"-DCMAKE_DISABLE_FIND_PACKAGE_{package}=ON"

    status, output = configure(folder, hidden)
    require(status == 0, "it cannot be configured", output)
    for name in ("core", "c", *filter(None, ADAPTERS.values())):
        require((f"has {name} " in output) == (name != lost), f"{name} is wrong", output)
    require((f"{package}" in output and "was not found" in output) == bool(lost), "it does not say what is left out", output)
    subprocess.run(["cmake", "--build", folder / "build", "--target", "zrqrybld_files"], check=True)

    if lost:  # who asks for an adapter is told what it needs
        status, output = configure(folder, hidden, f"-DZRQRYBLD_{lost.upper()}=ON")
        require(status != 0 and f"not found: {package}" in output and f"-DZRQRYBLD_{lost.upper()}=OFF" in output,
                "it does not say what is missing", output)


main()
