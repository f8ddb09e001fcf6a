#!/usr/bin/env bash
# Runs a Windows program under Wine, without a display, in a prefix of its own. ctest's emulator.
#   wine-run.sh PROGRAM [ARGUMENT...]
#   wine-run.sh --end              ends what it keeps running
#
# Each source folder has a prefix: the end of one run leaves the others alone.
#
# One wineserver and one desktop stay alive, detached from the caller's pipes: without them each program
# takes two seconds to start, with them 15 ms. The desktop is the null driver's, which has windows,
# messages, DDE and drawing but no screen.
set -u
folder=$(cd "$(dirname "$0")" && pwd | cksum | cut -d ' ' -f 1)
export WINEPREFIX=${QUILLAVEN_WINEPREFIX:-${TMPDIR:-/tmp}/quillaven-wineprefix-$UID-$folder}
export WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
unset DISPLAY WAYLAND_DISPLAY

if [ "${1:-}" = "--end" ]; then
  [ ! -e "$WINEPREFIX/.ready" ] || timeout 30 wineserver -k -w
  exit 0
fi

wine=$(command -v wine64 || command -v /usr/lib/wine/wine64 || command -v wine) || {
  echo "Wine is not installed" >&2
  exit 127
}
is_up() { [ -e "$WINEPREFIX/.desktop" ] && wineserver -k0 2> /dev/null; }
# Each within its time: who waits for the lock waits for all of them.
quietly() { timeout -k 5 90 "$@" < /dev/null > /dev/null 2>&1 9>&-; }
make_prefix() {
  quietly "$wine" wineboot -i &&
    quietly "$wine" reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f &&
    quietly wineserver -k -w &&
    touch "$WINEPREFIX/.ready"
}

if ! is_up; then
  exec 9> "$WINEPREFIX.lock"
  flock -w 300 9 || { echo "Wine does not start in $WINEPREFIX" >&2; exit 127; }
  if ! is_up; then
    rm -f "$WINEPREFIX/.desktop"
    [ -e "$WINEPREFIX/.ready" ] || make_prefix || {
      echo "Wine cannot make its prefix $WINEPREFIX" >&2
      exit 127
    }
    quietly wineserver -p
    setsid "$wine" explorer.exe /desktop < /dev/null > /dev/null 2>&1 9>&- &
    sleep 1 # until the desktop is there
    touch "$WINEPREFIX/.desktop"
  fi
  exec 9>&-
fi
exec "$wine" "$@"
