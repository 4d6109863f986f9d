#!/usr/bin/env bash
# The libraries as shared ones: built, installed, moved, and used by the same foreign project as the static ones.
# Usage: shared.sh SOURCE BUILD WORK WERROR. The build stands beside that of the tests, so that the compiler cache helps.
set -euo pipefail
source=$1 build=$2 work=$3 werror=$4
export CMAKE_GENERATOR=Ninja CMAKE_BUILD_TYPE=Debug

cmake -S "$source" -B "$build" -DBUILD_SHARED_LIBS=ON -DZRQRYBLD_WERROR="$werror"
cmake --build "$build" --parallel 2 -- --quiet
rm -rf "$work" && mkdir -p "$work/app"
cmake --install "$build" --prefix "$work/there" >/dev/null
mv "$work/there" "$work/here"  # nothing may know the folder it was installed to

cp "$source/samples/embedding/headless.cpp" "$work/app"
cat >"$work/app/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(app LANGUAGES CXX)
find_package(zrQryBld 2.1 REQUIRED COMPONENTS sqlite odbc qt c)
add_executable(app headless.cpp)
target_link_libraries(app PRIVATE zrQryBld::sqlite)
CMAKE
cmake -S "$work/app" -B "$work/app/build" -DCMAKE_PREFIX_PATH="$work/here"
cmake --build "$work/app/build"
cmake -DCOMMAND="$work/app/build/app;$build/samples/store.db" \
  -DEXPECTED="$source/samples/embedding/headless.txt" -P "$source/samples/embedding/compare_output.cmake"

# An error that the core throws is caught by another library as what it is.
"$work/here/bin/zrqb" check - <<<'SELECT a FROM t WHERE (a' && exit 1
QT_QPA_PLATFORM=offscreen "$work/here/bin/zrqrybld-designer" --db "$build/samples/store.db" --add-table Customers \
  --tick Customers.City --print-sql
# What nobody outside may use is there, and hidden.
core=$work/here/lib/libzrqrybld_core.so
nm -C --defined-only "$core" | grep ' zrqrybld::DiagramScene::' >/dev/null || { echo "nothing to hide"; exit 1; }
! nm -DC --defined-only "$core" | grep ' zrqrybld::DiagramScene::'
