#!/bin/sh
# wine-run.sh PROGRAM [ARGUMENT...] runs a Windows program in the prefix that WINEPREFIX names.
wine=${WINE:-$(dpkg -L wine64 | grep '/wine64$' | head -n 1)}
: "${WINEPREFIX:?names the prefix to run in}"
# In the C locale Wine can't name files beyond ASCII.
case "${LC_ALL:-}" in '' | C | POSIX) export LC_ALL=C.UTF-8 ;; esac
unset DISPLAY WAYLAND_DISPLAY
export WINEPREFIX WINEDEBUG="${WINEDEBUG:--all}" WINEARCH=win64
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
exec "$wine" "$@"
