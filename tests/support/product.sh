# shellcheck shell=sh
# product.sh, read by a transcript's shell, lays the product into C:\Program Files\Veltrano\bin with the keys that lead to
# it, as an installation does, and a user's folder C:\Logons; the current folder is C:\work. The system is one on which the
# plug-in chooses the language of its texts itself: Wine doesn't.
drive="$WINEPREFIX/drive_c"
profile="$drive/users/$(id -un)" place="$drive/Program Files/Veltrano/bin"
mkdir -p "$place" "$drive/Logons" "$drive/work"
cp -lR "$BIN"/vlhost.exe "$BIN"/vlagent.exe "$BIN"/VLUserConsole.exe "$BIN"/*.dll "$BIN"/??-* "$place"
cp "$BIN/VLFPApi.dll" "$drive/windows/system32"
cat >"$drive/product.reg" <<'END'
REGEDIT4

[HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Applications]
"BinDir"="C:\\Program Files\\Veltrano\\bin"

[HKEY_LOCAL_MACHINE\SOFTWARE\Veltrano\Branding\Common]
"DLLPath"="C:\\Program Files\\Veltrano\\bin\\Branding.dll"

[HKEY_CURRENT_USER\Software\Wine]
"Version"="winxp64"

[HKEY_CURRENT_USER\SOFTWARE\Veltrano\Settings]
"path_localstorage_dir"="C:\\Logons\\"
"path_quicklink_filename"="C:\\Logons\\quicklinks.txt"
"path_dontpromptlist_filename"="C:\\Logons\\never.txt"
END
windows regedit /S 'C:\product.reg' && rm "$drive/product.reg"
for program in vlhost vlagent VLUserConsole; do
    eval "$program() { windows 'C:\\Program Files\\Veltrano\\bin\\$program.exe' \"\$@\"; }"
done
# values KEY prints the values of a registry key and of those below it.
values() { windows reg query "$1" /s | tr -d '\r' | sed '/^$/d'; }
cd "$drive/work" || exit
cp "$SAMPLES"/*.vlb .
export VLUSERCONSOLE_NO_WINDOW=1
vlhost --quiet register
