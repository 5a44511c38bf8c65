#!/usr/bin/env bash
# Makes the project's Wine prefix when there is none yet and warms its server up. Safe to run again: then it takes a
# fraction of a second.
#
# The server must be started with no pipe of the caller attached: the services that the first process starts inherit
# its output, and a test driver that waits for that pipe to close would wait for ever.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$top/build/wine}
export LC_ALL=C.UTF-8  # file names of any script, whatever the caller's locale
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree=;mshtml="
die() { printf 'wine-prefix: %s\n' "$*" >&2; exit 1; }
# Runs a command that must succeed, with no output and no lock of ours.
quiet() { "$@" >/dev/null 2>&1 </dev/null 9>&- || die "\"$*\" failed in $WINEPREFIX"; }

command -v wine >/dev/null || die "Wine is not installed: run scripts/setup.sh"
[ ! -e "$WINEPREFIX" ] || [ -O "$WINEPREFIX" ] || die "$WINEPREFIX belongs to another user: remove it, or run as that one"

ready=$WINEPREFIX/.quon-ready
server=$(command -v wineserver || echo /usr/lib/wine/wineserver)
mkdir -p "$(dirname "$WINEPREFIX")"
exec 9>"$WINEPREFIX.lock"
flock 9
if [ ! -e "$ready" ]; then
  echo "wine-prefix: making $WINEPREFIX (about ten seconds)"
  quiet wineboot -i
  # Hidden windows and message boxes work without a display; a crash ends at once and opens no debugger.
  quiet wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
  quiet wine reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' /v Debugger /d false /f
  "$server" -k -w 9>&- || true
  touch "$ready"
fi
# The server stays for some minutes after its last program, so that the next run finds it warm.
"$server" -p600 >/dev/null 2>&1 </dev/null 9>&- || true
quiet wine cmd /c exit
