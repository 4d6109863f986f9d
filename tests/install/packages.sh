#!/usr/bin/env bash
# The packages of a build, each looked at by the system's own checkers, and what they hold.
# Usage: packages.sh SOURCE BUILD WORK [all]. With "all" lintian looks at the development package, too: minutes where the
# libraries were built for debugging. Fails as they do; ends with 77 where they are not installed.
set -euo pipefail
source=$1 build=$2 work=$3
for tool in cpack lintian dpkg-deb dpkg-shlibdeps desktop-file-validate appstreamcli update-mime-database; do
  command -v "$tool" >/dev/null || { echo "$tool is not installed"; exit 77; }
done
rm -rf "$work" && mkdir -p "$work" && cd "$work"

# Every option that a program tells stands on its page.
for page in "$build/command/zrqb" "$build/designer/zrqrybld-designer"; do
  QT_QPA_PLATFORM=offscreen "$page" --help | { grep -oE -- '--[a-z][a-z-]+' || true; } | sort -u | grep -v -e --help-all |
    while read -r option; do
      sed 's/\\-/-/g' "$source/packaging/$(basename "$page").1" | grep -qF -- "$option" ||
        { echo "$(basename "$page").1 lacks $option"; exit 1; }
    done
done

cpack --config "$build/CPackConfig.cmake" -B "$work" >cpack.log || { cat cpack.log; exit 1; }
for package in libzrqrybld1 libzrqrybldqt1 libzrqrybld-dev zrqb zrqrybld-designer; do
  dpkg-deb --extract "$package"_*.deb root
done
linted=(libzrqrybld1_*.deb libzrqrybldqt1_*.deb zrqb_*.deb zrqrybld-designer_*.deb)
[ "${4:-}" != all ] || linted+=(libzrqrybld-dev_*.deb)
lintian --fail-on error --suppress-tags initial-upload-closes-no-bugs "${linted[@]}"
desktop-file-validate root/usr/share/applications/*.desktop
# No host is known that the id could be turned round from.
appstreamcli validate --no-net --override=cid-desktopapp-is-not-rdns=info root/usr/share/metainfo/*.xml
mkdir mime && cp -r root/usr/share/mime/packages mime && update-mime-database mime 2>/dev/null
grep -q '^[0-9]*:application/x-zrqrybld-query:\*.zrq$' mime/globs2
for page in root/usr/share/man/man1/*; do
  [ -z "$(man --warnings -l "$page" 2>&1 >/dev/null)" ] || { echo "$page is not well formed"; exit 1; }
done

# The programs find what they need in what was unpacked.
LD_LIBRARY_PATH=root/usr/lib root/usr/bin/zrqb --version
# Python finds the library where nothing for linking is installed; what has the window needs no other of ours.
mkdir alone && cp -P root/usr/lib/libzrQryBld.so.* root/usr/lib/libzrQryBldQt.so.* alone
for stem in zrQryBld zrQryBldQt; do
  LD_LIBRARY_PATH=alone PYTHONDONTWRITEBYTECODE=1 PYTHONPATH=$source/bindings/python python3 -c "
import zrqrybld._library as library
library._candidates = lambda: library._names('$stem')
print(library.load().zrq_version().decode())"
done
QT_QPA_PLATFORM=offscreen root/usr/bin/zrqrybld-designer --db root/usr/share/zrqrybld/store.db --add-table Customers --print-sql
mkdir anywhere && tar -xf zrqrybld-*.tar.gz -C anywhere --strip-components 1
anywhere/bin/zrqb --version
test -e anywhere/lib/cmake/zrQryBld/zrQryBldConfig.cmake
