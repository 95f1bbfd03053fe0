#!/bin/sh
# stop-prefix.sh PREFIX ends the Wine server of that prefix, and with it every program that runs there.
wineserver=$(dpkg -L wine64 | grep '/wine64$' | head -n 1 | sed 's/wine64$/wineserver/')
[ -x "$wineserver" ] || wineserver=$(dpkg -L wine64 | grep '/wineserver64$' | head -n 1)
unset TMPDIR # as for the programs
WINEPREFIX="$1" "$wineserver" -k >/dev/null 2>&1
WINEPREFIX="$1" "$wineserver" -w >/dev/null 2>&1
exit 0
