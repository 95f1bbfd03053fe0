#!/bin/sh
# base-prefix.sh makes build/wine/base, the Wine prefix that every run clones; a finished one is kept.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
base="$root/build/wine/base"
[ -f "$base/.ready" ] && exit 0
mkdir -p "$root/build/wine"
exec 9>"$root/build/wine/base.lock" # two test programs may come here at once
flock 9
[ -f "$base/.ready" ] && exit 0
echo "wine: making the base prefix"
rm -rf "$base"
mkdir -p "$base" "$root/build/wine/home"
HOME="$root/build/wine/home"
WINEPREFIX="$base"
export HOME WINEPREFIX
"$root/scripts/wine-run.sh" wineboot -i >/dev/null 2>&1 9>&-
# No windows on a screen, no sound, and a crash ends its process instead of starting the debugger.
cat >"$base/drive_c/setup.reg" <<'REG'
REGEDIT4

[HKEY_CURRENT_USER\Software\Wine]
"Version"="win10"

[HKEY_CURRENT_USER\Software\Wine\Drivers]
"Graphics"="null"
"Audio"=""

[HKEY_LOCAL_MACHINE\Software\Microsoft\Windows NT\CurrentVersion\AeDebug]
"Auto"="1"
"Debugger"="false"
REG
"$root/scripts/wine-run.sh" regedit /S 'C:\setup.reg' 9>&-
"$root/scripts/stop-prefix.sh" "$base"
rm -f "$base/drive_c/setup.reg"
touch "$base/.ready"
