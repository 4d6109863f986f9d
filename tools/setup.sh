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
"
packages_core="
  g++              g++
  cmake            cmake
  ninja-build      ninja
  libgtest-dev     -
"
packages_fuzz="
  clang            clang++
  libclang-rt-dev  -
  cmake            cmake
  ninja-build      ninja
  python3          python3
"
packages_format="
  clang-format     clang-format
"
packages_tidy="$packages_core
  clang-tidy       clang-tidy
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
    [ -z "$commands" ] || die "this system has no apt-get; please install (Debian names):$missing"
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

# A private folder for toolkits that want one, removed when the script ends.
need_runtime_dir() {
  [ -z "${XDG_RUNTIME_DIR:-}" ] || [ ! -d "$XDG_RUNTIME_DIR" ] || return 0
  XDG_RUNTIME_DIR=$(mktemp -d)  # mktemp makes it 0700
  export XDG_RUNTIME_DIR
  trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
}
