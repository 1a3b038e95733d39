#!/usr/bin/env bash
# Runs a Windows program under Wine in a prefix of its own, which it makes when there is none.
# The windows preset runs its tests through this.
#
# usage: scripts/wine.sh PREFIX PROGRAM [ARGUMENT...]
set -euo pipefail

export WINEPREFIX=$1
shift
export WINEDEBUG=${WINEDEBUG:--all} WINEARCH=win64
# No offers to install what nothing here uses, no desktop entries, no debugger in front of a crash.
export WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe,winedbg.exe="
export LC_ALL=C.UTF-8 # arguments beyond ASCII

if [ ! -e "$WINEPREFIX/ready" ]; then
    mkdir -p "$WINEPREFIX"
    exec 9>"$WINEPREFIX.lock"
    flock 9
    if [ ! -e "$WINEPREFIX/ready" ]; then
        wineboot --init >"$WINEPREFIX.log" 2>&1 </dev/null 9>&-
        wineserver --wait 9>&-
        touch "$WINEPREFIX/ready"
    fi
    flock -u 9
    exec 9>&-
fi
# A server that stays makes a start cost milliseconds; it leaves a minute after the last program.
# What starts first starts Wine's services too, which would keep a caller's pipe open for as long.
servers=/tmp/.wine-$(id -u)
[ ! -f "$WINEPREFIX/wineserver" ] || servers=/tmp/$(cat "$WINEPREFIX/wineserver") # Debian's place
server=server-$(stat -c %D "$WINEPREFIX")-$(printf %x "$(stat -c %i "$WINEPREFIX")")
if [ ! -S "$servers/$server/socket" ]; then
    wineserver --persistent=60 >/dev/null 2>&1 </dev/null || true
    wine cmd /c exit >/dev/null 2>&1 </dev/null || true
fi
exec wine "$@"
