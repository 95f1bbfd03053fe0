#!/bin/sh
# wine-run.sh PROGRAM [ARGUMENT...] runs a Windows program in the prefix that WINEPREFIX names.
wine=${WINE:-$(dpkg -L wine64 | grep '/wine64$' | head -n 1)}
: "${WINEPREFIX:?names the prefix to run in}"
unset DISPLAY WAYLAND_DISPLAY
export WINEPREFIX WINEDEBUG="${WINEDEBUG:--all}" WINEARCH=win64
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
exec "$wine" "$@"
