#!/usr/bin/env bash
# Makes the Debian packages, installs them into roots of their own, runs the program there while the
# sources and the build folder cannot be seen, and builds programs as the guide tells.
#   debian_package_test.sh BUILD-FOLDER COMPILER     status 77 where Debian's tools are missing
set -euo pipefail

build=$(realpath "$1")
compiler=$2
here=$(cd "$(dirname "$0")" && pwd)
source=$(dirname "$here")
for tool in dpkg-deb dpkg-shlibdeps apt-get; do
  command -v "$tool" > /dev/null || { echo "there is no $tool: skipped"; exit 77; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset LD_LIBRARY_PATH

fail() {
  echo "FAILED: $1" >&2
  exit 1
}

# install ROOT PACKAGE...: with all that dpkg checks, over the packages that this machine has. What the
# packages run after they are unpacked, ldconfig, must keep to the root.
install() {
  local root=$1
  shift
  mkdir -p "$root/var/lib/dpkg/"{info,updates,triggers} "$work/bin"
  cp /var/lib/dpkg/status "$root/var/lib/dpkg/status"
  # shellcheck disable=SC2016
  printf '#!/bin/sh\nexec /sbin/ldconfig -n "$DPKG_ROOT/usr/lib"\n' > "$work/bin/ldconfig"
  chmod +x "$work/bin/ldconfig"
  PATH=$work/bin:$PATH:/usr/sbin:/sbin dpkg --root="$root" --force-not-root --force-script-chrootless \
    --log=/dev/null --install "$@" > "$work/log" 2>&1 ||
    fail "dpkg does not install $*: $(grep -v 'files list file' "$work/log")"
}

# out_of_sight COMMAND...: where the system lets us, behind empty folders in place of the sources and the
# build folder.
out_of_sight() {
  local namespace=(unshare --mount --map-root-user)
  if "${namespace[@]}" true 2> /dev/null; then
    # shellcheck disable=SC2016
    "${namespace[@]}" sh -c 'mount -t tmpfs none "$1" && mount -t tmpfs none "$2" 2> /dev/null
      if [ -e "$1/tests" ] || [ -e "$2/CPackConfig.cmake" ]; then exit 99; fi
      shift 2 && exec "$@"' sh "$source" "$build" "$@"
  else
    "$@"
  fi
}

cpack --config "$build/CPackConfig.cmake" -B "$work/packages" > "$work/log" || { cat "$work/log"; exit 1; }
packages=("$work"/packages/*.deb)
for package in "${packages[@]}"; do
  name=$(dpkg-deb -f "$package" Package)
  dpkg-deb -c "$package" > "$work/contents"
  grep -q "/usr/share/doc/$name/copyright$" "$work/contents" || fail "$name has no copyright file"
  case $name in
    *-dev) ;;
    *) ! grep -E '\.h$|\.cmake$|\.pc$|\.so( ->|$)' "$work/contents" || fail "$name holds files of development" ;;
  esac
done
[ "$(for package in "${packages[@]}"; do dpkg-deb -f "$package" Description | head -1; done | sort -u | wc -l)" \
  -eq "${#packages[@]}" ] || fail "two packages have one summary"

# The program and its data, from a folder of its own.
install "$work/all" "${packages[@]}"
program=$work/all/usr/bin/quillaven
data=$work/all/usr/share/quillaven/liechtenstein
! grep -rlF "$source" "$work/all/usr" || fail "packages hold paths of the building machine"
grep -q "OpenStreetMap contributors" "$work/all/usr/share/doc/quillaven/copyright" ||
  fail "the data's licence is missing"
mkdir "$work/user"
cd "$work/user"
out_of_sight "$program" --version
out_of_sight "$program" info "$data/landuse.asc" | grep "rows      992" > /dev/null || fail "info"
out_of_sight "$program" draw "$data/landuse.asc" --legend Landuse --out landuse.bmp > log 2>&1 || fail "draw: $(cat log)"
[ "$(head -c 2 landuse.bmp)" = BM ] || fail "draw wrote no bitmap"
out_of_sight "$program" demo --out pictures > log 2>&1 || fail "demo: $(tail -3 log)"
[ -s pictures/index.html ] || fail "the demo wrote no page"

# Programs as the guide has them, over what the library alone needs.
install "$work/library" "$work"/packages/libquillaven0_*.deb "$work"/packages/libquillaven-dev_*.deb
[ ! -e "$work/library/usr/bin/quillaven" ] || fail "the library's packages hold the program"
guide=$source/docs/guide.md
mkdir "$work/consumer"
cd "$work/consumer"
cp "$here/package/consumer.cpp" program.cpp
awk '/^```/ { inside = 0 } inside || /^cmake_minimum_required/ { inside = 1; print }' "$guide" > CMakeLists.txt
[ "$(wc -l < CMakeLists.txt)" -ge 5 ] || fail "the guide has no CMakeLists.txt"
cmake -S . -B build -DCMAKE_PREFIX_PATH="$work/library/usr" -DCMAKE_CXX_COMPILER="$compiler" > /dev/null
cmake --build build > /dev/null
[ "$(./build/program)" = "1.5 2.5 1.5" ] || fail "the guide's CMakeLists.txt makes another program"
line=$(grep -m 1 '^g++ .*pkg-config' "$guide") || fail "the guide has no line for pkg-config"
PKG_CONFIG_PATH=$(dirname "$(find "$work/library" -name QuillavenLib.pc)")
export PKG_CONFIG_PATH
bash -c "${line/#g++/$compiler}"
[ "$(LD_LIBRARY_PATH=$(pkg-config --variable=libdir QuillavenLib) ./program)" = "1.5 2.5 1.5" ] ||
  fail "the guide's line for pkg-config makes another program"

# All packages together, as the guide installs them: windows too.
line=$(grep -m 1 '^sudo apt install ./build/package/' "$guide") || fail "the guide does not install packages"
[ "$line" = "sudo apt install ./build/package/*.deb" ] || fail "the guide installs '$line'"
apt-get --simulate install "${packages[@]}" > "$work/log" 2>&1 || fail "apt would not install: $(cat "$work/log")"
if [ -e "$work"/all/usr/include/quillaven/desktop/desktop_application.h ]; then
  cmake -S "$here/package" -B "$work/windows" -DCMAKE_PREFIX_PATH="$work/all/usr" \
    -DCMAKE_CXX_COMPILER="$compiler" > /dev/null
  cmake --build "$work/windows" > /dev/null
  [ "$(env -u DISPLAY -u WAYLAND_DISPLAY "$work/windows/desktop_consumer")" = "no display" ] ||
    fail "a program with windows does not run without a display"
fi
echo "${#packages[@]} packages install, the program finds its data, and programs build as the guide tells"
