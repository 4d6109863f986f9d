# Shared by ./run and ./test: finds missing packages, configures and builds. Sourced, never run.
#
# A step that has nothing to do costs milliseconds, so both scripts call everything every time.

# Debian package, and the command that stands for it where it came another way ("-": a library).
packages_build="
  g++              g++
  cmake            cmake
  ninja-build      ninja
  ccache           ccache
  pkg-config       pkg-config
  libsqlite3-dev   -
  unixodbc-dev     -
  qt6-base-dev     -
  libgl-dev        -
  fonts-dejavu-core -
"
packages_test="$packages_build
  python3          python3
  python3-pyqt6    -
  libgtest-dev     -
  libbenchmark-dev -
  unixodbc         isql
  odbcinst         odbcinst
  libsqliteodbc    -
  odbc-postgresql  -
  odbc-mariadb     -
  postgresql       -
  mariadb-server   mariadbd
  xvfb             Xvfb
  xdotool          xdotool
  matchbox-window-manager matchbox-window-manager
  at-spi2-core     -
  dbus-daemon      dbus-run-session
  libglib2.0-bin   gdbus
  python3-venv     -
  mypy             mypy
  lintian          lintian
  dpkg-dev         dpkg-shlibdeps
  desktop-file-utils desktop-file-validate
  appstream        appstreamcli
  shared-mime-info update-mime-database
  man-db           man
"
packages_windows="
  g++-mingw-w64-x86-64-posix x86_64-w64-mingw32-g++-posix
  cmake            cmake
  ninja-build      ninja
  googletest       -
  wine64           -
  wine             wine
"
packages_wasm="
  emscripten       em++
  esbuild          esbuild
  cmake            cmake
  ninja-build      ninja
  ccache           ccache
  nodejs           node
  npm              npm
"
packages_web="$packages_wasm
  chromium         chromium
  postgresql       -
  fonts-dejavu-core -
"
packages_core="
  g++              g++
  cmake            cmake
  ninja-build      ninja
  libgtest-dev     -
"
packages_threads="$packages_core
  libsqlite3-dev   -
"
packages_fuzz="
  clang            clang++
  libclang-rt-dev  -
  cmake            cmake
  ninja-build      ninja
  python3          python3
"
packages_coverage="$packages_test
  clang            clang++
  libclang-rt-dev  -
  llvm             llvm-cov
"
packages_format="
  clang-format     clang-format
"
packages_tidy="$packages_core
  clang-tidy       clang-tidy
"
packages_docs="
  python3          python3
  python3-markdown -
  doxygen          doxygen
"

# The same by the names of Fedora, Arch and macOS (Homebrew); "-": it comes with another, or there is none.
packages_elsewhere="
  g++                gcc-c++                 gcc                     -
  cmake              cmake                   cmake                   cmake
  ninja-build        ninja-build             ninja                   ninja
  ccache             ccache                  ccache                  ccache
  pkg-config         pkgconf-pkg-config      pkgconf                 pkgconf
  libsqlite3-dev     sqlite-devel            sqlite                  sqlite
  unixodbc-dev       unixODBC-devel          unixodbc                unixodbc
  qt6-base-dev       qt6-qtbase-devel        qt6-base                qt
  libgl-dev          mesa-libGL-devel        libglvnd                -
  fonts-dejavu-core  dejavu-sans-fonts       ttf-dejavu              -
  python3            python3                 python                  python
  python3-venv       python3                 python                  python
  python3-pyqt6      python3-pyqt6           python-pyqt6            pyqt
  libgtest-dev       gtest-devel             gtest                   googletest
  libbenchmark-dev   google-benchmark-devel  benchmark               google-benchmark
  unixodbc           unixODBC                unixodbc                unixodbc
  odbcinst           unixODBC                unixodbc                unixodbc
  libsqliteodbc      -                       -                       sqliteodbc
  odbc-postgresql    postgresql-odbc         psqlodbc                psqlodbc
  odbc-mariadb       mariadb-connector-odbc  -                       mariadb-connector-odbc
  postgresql         postgresql-server       postgresql              postgresql
  mariadb-server     mariadb-server          mariadb                 mariadb
  xvfb               xorg-x11-server-Xvfb    xorg-server-xvfb        -
  xdotool            xdotool                 xdotool                 -
  matchbox-window-manager  matchbox-window-manager  -                -
  at-spi2-core       at-spi2-core            at-spi2-core            -
  dbus-daemon        dbus-daemon             dbus                    -
  libglib2.0-bin     glib2                   glib2                   -
  clang              clang                   clang                   llvm
  libclang-rt-dev    compiler-rt             compiler-rt             -
  llvm               llvm                    llvm                    llvm
  clang-format       clang-tools-extra       clang                   clang-format
  clang-tidy         clang-tools-extra       clang                   llvm
  lintian            -                       -                       -
  dpkg-dev           -                       -                       -
  desktop-file-utils desktop-file-utils      desktop-file-utils      -
  appstream          appstream               appstream               -
  shared-mime-info   shared-mime-info        shared-mime-info        shared-mime-info
  man-db             man-db                  man-db                  -
  python3-markdown   python3-markdown        python-markdown         -
  doxygen            doxygen                 doxygen                 doxygen
  mypy               python3-mypy            mypy                    mypy
  emscripten         emscripten              emscripten              emscripten
  nodejs             nodejs                  nodejs                  node
  npm                nodejs-npm              npm                     node
  chromium           chromium                chromium                chromium
  g++-mingw-w64-x86-64-posix  mingw64-gcc-c++  mingw-w64-gcc         mingw-w64
  googletest         gtest-devel             gtest                   googletest
  wine64             wine                    wine                    -
  wine               wine                    wine                    -
"

jobs=${JOBS:-$(getconf _NPROCESSORS_ONLN)}

say() { printf '%s\n' "$*" >&2; }
die() { say "$0: $*"; exit 1; }

# Usage: need_packages LIST. Installs what is missing, or says what is missing and ends the script.
need_packages() {
  local package command installed="" missing="" commands=""
  if command -v dpkg-query >/dev/null; then
    # One call for all: an unknown package is only a missing line.
    # shellcheck disable=SC2046
    installed=$(dpkg-query -W -f='${db:Status-Abbrev}:${Package}:' $(awk '{print $1}' <<<"$1") 2>/dev/null || true)
  fi
  while read -r package command; do
    [ -n "$package" ] || continue
    case ":$installed" in *":ii :$package:"*) continue ;; esac
    if [ "$command" != - ] && command -v "$command" >/dev/null; then continue; fi
    missing="$missing $package"
    [ "$command" = - ] || commands="$commands $command"
  done <<<"$1"
  [ -n "$missing" ] || return 0

  if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
    # Libraries cannot be looked for by name here: the configure step finds them or says which is missing.
    advice=$(advise $missing)
    [ -z "$commands" ] || die "$advice"
    return 0
  fi
  local root=""
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || die "neither root nor sudo; please install:$missing"
    root=sudo
  fi
  say "Installing:$missing"
  local log
  log=$(mktemp)
  if ! install_quietly "$root" $missing >"$log" 2>&1 </dev/null; then
    tail -n 40 "$log" >&2
    rm -f "$log"
    die "the packages could not be installed:$missing"
  fi
  rm -f "$log"
}

# Usage: advise PACKAGE... Says how the packages, by their Debian names, are installed on this system.
advise() {
  local column command
  if command -v dnf >/dev/null; then column=2 command="sudo dnf install"
  elif command -v pacman >/dev/null; then column=3 command="sudo pacman -S --needed"
  elif command -v brew >/dev/null; then column=4 command="brew install"
  else
    echo "please install (by Debian's names): $*"
    return
  fi
  echo "please install what is missing of these: $command" \
    "$(awk -v wanted=" $* " -v column=$column \
       'index(wanted, " " $1 " ") && $column != "-" && !seen[$column]++ { printf "%s ", $column }' <<<"$packages_elsewhere")"
}

# Usage: install_quietly ROOT PACKAGE... A package may start the server it brings; that is prevented, because the
# tests start their own and nobody has asked for another one.
install_quietly() (
  root=$1 policy=/usr/sbin/policy-rc.d
  shift
  if [ ! -e $policy ]; then
    trap '$root rm -f $policy' EXIT
    printf '#!/bin/sh\nexit 101\n' | $root tee $policy >/dev/null
    $root chmod +x $policy
  fi
  $root env DEBIAN_FRONTEND=noninteractive apt-get -q update &&
    $root env DEBIAN_FRONTEND=noninteractive apt-get -q install -y --no-install-recommends "$@"
)

# Usage: quietly LOG COMMAND... Shows the log only when the command fails.
quietly() {
  local log=$1
  shift
  mkdir -p "$(dirname "$log")"
  if ! "$@" >"$log" 2>&1 </dev/null; then
    tail -n 300 "$log" >&2
    [ -z "${advice:-}" ] || say "$advice"
    die "failed: $*"
  fi
}

# Usage: configure PRESET [-D...]. Does nothing when it was configured with these very options.
configure() {
  local preset=$1 stamp=build/$1/configured
  shift
  if [ -f "build/$preset/build.ninja" ] && [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$*" ] &&
     [ ! CMakePresets.json -nt "$stamp" ]; then
    return 0
  fi
  local version
  version=$(cmake --version | awk 'NR == 1 { print $3 }')
  [ "$(printf '3.25\n%s\n' "$version" | sort -V | head -n 1)" = 3.25 ] ||
    die "CMake 3.25 or later is needed, this is $version; a newer one: https://cmake.org/download or pip install cmake"
  say "Configuring ($preset) ..."
  rm -f "$stamp"
  quietly "build/$preset/configure.log" cmake --preset "$preset" "$@"
  printf '%s' "$*" >"$stamp"
}

# Usage: build PRESET [TARGET...]
build() {
  local preset=$1 target
  shift
  local arguments=()
  for target in "$@"; do arguments+=(--target "$target"); done
  # Only a build from nothing takes long enough to be announced.
  [ -f "build/$preset/.ninja_log" ] || say "Building ($preset); the first time takes some minutes ..."
  quietly "build/$preset/build.log" cmake --build "build/$preset" --parallel "$jobs" \
    "${arguments[@]}" -- --quiet
}

# Usage: need_modules. What tests and the sample page use of the npm registry, in build/node; no browser is downloaded.
need_modules() {
  local folder=build/node
  if ! cmp -s tests/web/package.json $folder/package.json || [ ! -d $folder/node_modules ]; then
    mkdir -p $folder
    say "Installing: $(awk -F'"' '/^    "/ { print $2 }' tests/web/package.json | tr '\n' ' ')"
    rm -rf $folder/node_modules
    cp tests/web/package.json $folder/package.json
    quietly $folder/install.log npm install --prefix $folder --no-audit --no-fund --ignore-scripts
  fi
}

# Usage: make_page FOLDER. Lays out the sample page over what was built by the preset wasm.
make_page() {
  mkdir -p "$1/zrqrybld"
  cp build/wasm/npm/* "$1/zrqrybld/"
  cp bindings/web/example/* samples/store.sql build/node/node_modules/sql.js/dist/sql-wasm.{js,wasm} "$1/"
}

# A private folder for toolkits that want one, removed when the script ends.
need_runtime_dir() {
  [ -z "${XDG_RUNTIME_DIR:-}" ] || [ ! -d "$XDG_RUNTIME_DIR" ] || return 0
  XDG_RUNTIME_DIR=$(mktemp -d)  # mktemp makes it 0700
  export XDG_RUNTIME_DIR
  trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
}
