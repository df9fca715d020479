#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Proves the way from a build tree to a host program outside it:
#   check-install.sh BUILD_DIR
# installs into a temporary prefix, runs the installed qel through the
# installed prelude, builds and runs the example host once with find_package
# and once with pkg-config, then builds the Debian packages and lists them.
# With QELKERN_INSTALL_DEBS=1 (CI, as root) it also installs the packages and
# runs qel and qel-edit from PATH.
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

step() { echo "-- $*"; }

step "install into $prefix"
cmake --install "$build" --prefix "$prefix" > /dev/null
for file in bin/qel share/qelkern/extern.qel include/qelkern/qelkern.h include/qelkern/engine.h \
            include/qelkern/version.h lib/cmake/QELKern/QELKernConfig.cmake lib/pkgconfig/qelkern.pc; do
  [ -e "$prefix/$file" ] || { echo "missing after install: $file"; exit 1; }
done

step "installed qel runs a script through the installed prelude"
mkdir "$work/empty"
out=$(cd "$work/empty" && echo 'BEGIN MeldungInt("Summe", "1+2 =", 1 + 2) END.' | "$prefix/bin/qel" -)
grep -q "1+2 = 3" <<<"$out" || { echo "unexpected output: $out"; exit 1; }
"$prefix/bin/qel" --version

step "host built with find_package"
cmake -S examples/host -B "$work/host-cmake" -DCMAKE_PREFIX_PATH="$prefix" > /dev/null
cmake --build "$work/host-cmake" > /dev/null
"$work/host-cmake/qel-host-example" examples/host/demo.qel > "$work/host-cmake.out"

step "host built with pkg-config"
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
libdir=$(pkg-config --variable=libdir qelkern)
# shellcheck disable=SC2046
g++ -std=c++20 examples/host/host_example.cpp -o "$work/host-pc" \
  $(pkg-config --cflags --libs qelkern) -Wl,-rpath,"$libdir"
"$work/host-pc" examples/host/demo.qel > "$work/host-pc.out"
cmp "$work/host-cmake.out" "$work/host-pc.out"

step "Debian packages"
(cd "$build" && cpack -G DEB > /dev/null)
for deb in "$build"/*.deb; do
  echo "== $(basename "$deb")"
  dpkg-deb -f "$deb" Package Version Depends
  dpkg-deb -c "$deb" | awk '{print "   " $6}'
done

if [ "${QELKERN_INSTALL_DEBS:-0}" = 1 ]; then
  step "installing the packages"
  apt-get install -y -qq "$build"/*.deb > /dev/null
  (cd "$work/empty" && qel --version && qel -e 'BEGIN MeldungInt("Paket", "ok", 1) END.')
  if compgen -G "$build/qel-edit_*.deb" > /dev/null; then
    qel-edit --help > /dev/null && echo "qel-edit runs from PATH"
  fi
fi
echo "install check passed"
