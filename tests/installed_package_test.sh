#!/usr/bin/env bash
# Installs the library into an empty prefix and builds a program outside the tree against it, once
# through find_package and once through pkg-config.
#   installed_package_test.sh BUILD-FOLDER COMPILER FLAGS [TOOLCHAIN-FILE EMULATOR]
set -euo pipefail

build=$1
compiler=$2
flags=${3:-}
toolchain=${4:-}
emulator=${5:-}
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
expected="1.5 2.5 1.5"

check() {
  local answer
  answer=$($emulator "$1" | tr -d '\r')
  if [ "$answer" != "$expected" ]; then
    echo "$2: got '$answer', expected '$expected'" >&2
    exit 1
  fi
  echo "$2: $answer"
}

cmake --install "$build" --prefix "$work/prefix" > /dev/null
! find "$work/prefix" -name '*_internal.h' | grep . || { echo "internal headers are installed" >&2; exit 1; }

cp -r "$here/package" "$work/source"
options=(-DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags")
if [ -n "$toolchain" ]; then
  # A cross build looks for packages in its own root alone; Wine looks for libraries along WINEPATH.
  options=(-DCMAKE_TOOLCHAIN_FILE="$toolchain"
    -DQuillavenLib_DIR="$(dirname "$(find "$work/prefix" -name QuillavenLibConfig.cmake)")")
  export WINEPATH="Z:${work//\//\\}\\prefix\\bin"
fi
cmake -S "$work/source" -B "$work/build" "${options[@]}" > /dev/null
cmake --build "$work/build" > /dev/null
check "$work/build/consumer${toolchain:+.exe}" "find_package"

# Where windows were built, they are found too, and a program without a display goes on.
if [ -x "$work/build/desktop_consumer" ]; then
  answer=$(env -u DISPLAY -u WAYLAND_DISPLAY "$work/build/desktop_consumer")
  [ "$answer" = "no display" ] || { echo "QuillavenDesktop: got '$answer'" >&2; exit 1; }
  echo "QuillavenDesktop: $answer"
fi

PKG_CONFIG_PATH=$(dirname "$(find "$work/prefix" -name QuillavenLib.pc)")
export PKG_CONFIG_PATH
read -ra options <<< "$(pkg-config --cflags --libs QuillavenLib)"
# shellcheck disable=SC2086
"$compiler" $flags -std=c++20 "$here/package/consumer.cpp" "${options[@]}" -o "$work/consumer${toolchain:+.exe}"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir QuillavenLib)
export LD_LIBRARY_PATH
check "$work/consumer${toolchain:+.exe}" "pkg-config"
