#!/usr/bin/env bash
# Makes the Debian packages, unpacks them into a clean root, and builds and runs programs there.
#   debian_package_test.sh BUILD-FOLDER COMPILER     status 77 where there is no dpkg-deb
set -euo pipefail

build=$1
compiler=$2
here=$(cd "$(dirname "$0")" && pwd)
if ! command -v dpkg-deb > /dev/null || ! command -v dpkg-shlibdeps > /dev/null; then
  echo "Debian's packaging tools are not installed: skipped"
  exit 77
fi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cpack --config "$build/CPackConfig.cmake" -B "$work/packages" > "$work/log" || { cat "$work/log"; exit 1; }
for package in "$work"/packages/*.deb; do dpkg-deb -x "$package" "$work/clean"; done
dpkg-deb -f "$work"/packages/libquillaven-dev*.deb Depends | grep -q "libquillaven0 (= "
! dpkg-deb -c "$work"/packages/libquillaven0*.deb | grep -E '\.h$|\.cmake$|\.so$' ||
  { echo "the runtime package holds files of development" >&2; exit 1; }

libraries=$(dirname "$(find "$work/clean" -name 'libQuillavenLib.so')")
export LD_LIBRARY_PATH=$libraries
cmake -S "$here/package" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/clean/usr" \
  -DCMAKE_CXX_COMPILER="$compiler" > /dev/null
cmake --build "$work/build" > /dev/null
[ "$("$work/build/consumer")" = "1.5 2.5 1.5" ]
export PKG_CONFIG_PATH=$libraries/pkgconfig
read -ra options <<< "$(pkg-config --cflags --libs QuillavenLib)"
"$compiler" -std=c++20 "$here/package/consumer.cpp" "${options[@]}" -o "$work/consumer"
[ "$("$work/consumer")" = "1.5 2.5 1.5" ]
"$work/clean/usr/bin/quillaven" --version
"$work/clean/usr/bin/quillaven" info "$work/clean/usr/share/quillaven/liechtenstein/landuse.asc" | grep -q "rows      992"
echo "the packages install, and programs build against them"
