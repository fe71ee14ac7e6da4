#!/usr/bin/env bash
# Runs a Windows program under Wine with the project's test prefix, quietly. Used as CMake's emulator.
# Starts its own Xvfb when no display is set. WINEPREFIX may be set by the caller to use another prefix.
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$here/env.sh"
export WINEPREFIX="${WINEPREFIX:-$ZCMOD_WINE_TEST}"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
if [ -z "${DISPLAY:-}" ]; then
  exec xvfb-run -a -s "-screen 0 1280x1024x24" wine "$@"
fi
exec wine "$@"
