#!/usr/bin/env bash
# ./run and ./test name what is missing by the names of the system they run on, and an old CMake by its version.
# Usage: names.sh SOURCE
set -euo pipefail
source=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# shellcheck source=../../tools/setup.sh
. "$source/tools/setup.sh"

# Every package has its row.
for package in $(awk 'NF == 2 { print $1 }' <<<"$packages_test$packages_core$packages_fuzz$packages_format$packages_tidy$packages_windows"); do
  awk -v name="$package" '$1 == name && NF == 4 { found = 1 } END { exit !found }' <<<"$packages_elsewhere" ||
    { echo "tools/setup.sh: packages_elsewhere lacks $package"; exit 1; }
done

# Usage: said_on COMMAND CODE. What the code says on a system that has nothing but this command, and those of every shell.
said_on() {
  rm -rf "$work/bin" && mkdir "$work/bin"
  local tool
  for tool in awk bash cat dirname getconf head mkdir sort printf; do ln -s "$(command -v $tool)" "$work/bin/$tool"; done
  printf '#!/bin/sh\necho cmake version 3.22.1\n' >"$work/bin/$1"
  chmod +x "$work/bin/$1"
  (cd "$work" && PATH=$work/bin bash -c ". '$source/tools/setup.sh'; $2" 2>&1) || true
}
# Usage: expect TEXT SAID
expect() { [[ $2 == *"$1"* ]] || { echo "expected: $1"; echo "said: $2"; exit 1; }; }

expect "sudo dnf install gcc-c++ cmake ninja-build gtest-devel" "$(said_on dnf 'need_packages "$packages_core"')"
expect "sudo pacman -S --needed gcc cmake ninja gtest" "$(said_on pacman 'need_packages "$packages_core"')"
expect "brew install cmake ninja googletest" "$(said_on brew 'need_packages "$packages_core"')"
expect "Debian's names): g++ cmake" "$(said_on other 'need_packages "$packages_core"')"
expect "CMake 3.25 or later is needed, this is 3.22.1" "$(said_on cmake 'configure none')"
