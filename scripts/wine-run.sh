#!/bin/sh
# wine-run.sh PROGRAM [ARGUMENT...] runs a Windows program in the prefix that WINEPREFIX names.
wine=${WINE:-$(dpkg -L wine64 | grep '/wine64$' | head -n 1)}
: "${WINEPREFIX:?names the prefix to run in}"
# In the C locale Wine can't name files beyond ASCII.
case "${LC_ALL:-}" in '' | C | POSIX) export LC_ALL=C.UTF-8 ;; esac
# Debian's Wine keeps its server's folder below TMPDIR: with another one it starts a second server for the same prefix, and
# release 10 crashes wherever the variable is set.
unset DISPLAY WAYLAND_DISPLAY TMPDIR
export WINEPREFIX WINEDEBUG="${WINEDEBUG:--all}" WINEARCH=win64
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
# Wine maps the shared user data at a fixed address. With randomised addresses about one new process in ten thousand
# finds that place taken and dies, and CreateProcess fails with ERROR_INTERNAL_ERROR. A container may forbid the switch.
setarch -R true 2>/dev/null && fixed='setarch -R' || fixed=
# shellcheck disable=SC2086 # two words or none
exec $fixed "$wine" "$@"
