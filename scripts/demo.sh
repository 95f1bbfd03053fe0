#!/bin/bash
# demo.sh runs the whole system on the stand-ins: a throw-away profile, what a dashboard shows, a backup, a restore
# into a second, empty profile with another folder layout, and a comparison. Exit status 0 only if everything came
# back. What it leaves lies in build/demo.
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
dist="$root/build/dist"
out="$root/build/demo"
first="$out/first"
second="$out/second"
agent_pid=
language= # the locale of the profile's programs; empty leaves this machine's

say() { printf '\n\033[1m== %s\033[0m\n' "$*"; }
fail() {
    printf 'demo: %s\n' "$*" >&2
    exit 1
}
cleanup() {
    for prefix in "$first" "$second"; do
        [ -d "$prefix" ] && "$root/scripts/stop-prefix.sh" "$prefix"
    done
    [ -n "$agent_pid" ] && wait "$agent_pid" 2>/dev/null
}
trap cleanup EXIT

# in_profile PREFIX PROGRAM [ARGUMENT...] runs a Windows program there.
in_profile() {
    local prefix=$1
    shift
    env HOME="$root/build/wine/home" WINEPREFIX="$prefix" ${language:+LC_ALL="$language"} \
        timeout 120 "$root/scripts/wine-run.sh" "$@"
}
host() {
    local prefix=$1
    shift
    in_profile "$prefix" "$bin\\vlhost.exe" "$@"
}
bin='C:\Program Files\Veltrano\bin'

# new_profile PREFIX: a fresh user on a fresh machine with the product installed.
new_profile() {
    local prefix=$1
    "$root/scripts/clone-prefix.sh" "$prefix"
    ln -sfn "$dist" "$prefix/dosdevices/i:" # the installation medium
    # Wine does not redirect resource look-ups to language files: as on an older system, the plug-in opens its
    # language file itself.
    in_profile "$prefix" reg add 'HKCU\Software\Wine\AppDefaults\vlhost.exe' /v Version /d winxp64 /f >/dev/null
    in_profile "$prefix" cmd /c 'I:\install.cmd' || fail "the installation failed"
}
unix_path() { in_profile "$1" winepath -u "$2" | tr -d '\r'; }

rm -rf "$out"
mkdir -p "$out"

say "A first profile"
new_profile "$first"
appdata=$(unix_path "$first" "$(in_profile "$first" cmd /c 'echo %APPDATA%' | tr -d '\r')")
krs="$appdata/Veltrano/KRS"
mkdir -p "$krs/Templates" "$krs/Cache" "$first/drive_c/Shared Logons"
printf 'template: bank\n' >"$krs/Templates/bank.vlm"
printf 'template: post\n' >"$krs/Templates/Poststelle Köln.vlm"
printf 'template: mail\n' >"$krs/Templates/日本語メール.vlm"
printf 'cached\n' >"$krs/Cache/cached.vlm"
printf 'shared\n' >"$first/drive_c/Shared Logons/équipe.vlm"
printf 'state' >"$krs/Templates/updata.vls"
cache="$(in_profile "$first" cmd /c 'echo %APPDATA%' | tr -d '\r')\\Veltrano\\KRS\\Cache\\"
host "$first" setting set path_cachestorage_dir "$cache" >/dev/null || fail "setting"
host "$first" setting set path_alienstorage_dirs 'C:\Shared Logons' >/dev/null || fail "setting"
host "$first" setting set show_training_prompt -1 >/dev/null || fail "setting"
host "$first" setting set open_guard_desk_qa 'Ctrl+Alt+71' >/dev/null || fail "setting"
host "$first" setting set useGrabbingCreds 1 >/dev/null || fail "setting"
quicklinks=$(unix_path "$first" "$(host "$first" --json setting get path_quicklink_filename | sed -n 's/.*"value": "\(.*\)"/\1/p' | sed 's/\\\\/\\/g')")
mkdir -p "$(dirname "$quicklinks")"
{
    printf '[ShortCutRecord]\r\nManifest=%%appdata%%\\Veltrano\\KRS\\Templates\\bank.vlm\r\n'
    printf 'Url=https://bank.example/login?x=1\r\nName=Meine Bank\r\nProfile=1\r\nManifestID=m-1\r\nQLwoCred=0\r\n'
    printf '[ShortCutRecord]\r\nManifest=%%appdata%%\\Veltrano\\KRS\\Templates\\Poststelle Köln.vlm\r\n'
    printf 'Dlgpath=C:\\windows\\notepad.exe\r\nName=ノート\r\nProfile=2\r\nManifestID=m-2\r\nQLwoCred=1\r\n'
} >"$quicklinks"
in_profile "$first" reg add 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard\QLCategories' /v Work /d 'bank;post' /f >/dev/null
in_profile "$first" reg add 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard\QLCategories' /v Home /d 'mail' /f >/dev/null
list=$(unix_path "$first" "$(host "$first" --json setting get path_dontpromptlist_filename | sed -n 's/.*"value": "\(.*\)"/\1/p' | sed 's/\\\\/\\/g')")
mkdir -p "$(dirname "$list")"
printf 'https://never.example/\r\n' >"$list"
printf 'correct horse battery staple' | host "$first" secret store >/dev/null || fail "the secret could not be stored"
echo "templates, quick links, categories, settings and a secret are there"

say "What a dashboard shows"
host "$first" info || fail "info"
in_profile "$first" reg add 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard\IDCard' /v IDCard_SS /t REG_DWORD /d 1 /f >/dev/null
say "... after the card's status changed"
host "$first" status || fail "status"
in_profile "$first" reg delete 'HKCU\SOFTWARE\Veltrano\Applications\DashBoard\IDCard' /v IDCard_SS /f >/dev/null
say "... after the notification was dismissed"
host "$first" dismiss || fail "dismiss"
say "... with the application switched off, and on again"
host "$first" disable || fail "disable"
host "$first" enable >/dev/null || fail "enable"
say "... to a user who reads German"
# The language is that of the environment in which the prefix's server starts.
"$root/scripts/stop-prefix.sh" "$first"
language=de_DE.UTF-8 host "$first" status || fail "the German status"
"$root/scripts/stop-prefix.sh" "$first"

say "A backup"
host "$first" backup 'C:\backup.vlb' || fail "the backup failed"
cp "$first/drive_c/backup.vlb" "$out/first.vlb"
"$dist/vlbackup" verify "$out/first.vlb" || fail "the backup is not sound"
"$dist/vlbackup" ls "$out/first.vlb" || fail "ls"
openssl asn1parse -inform DER -in "$out/first.vlb" >"$out/asn1.txt" || fail "openssl could not read the backup"
echo "openssl reads it too: $(wc -l <"$out/asn1.txt") elements"

say "A second, empty profile with another folder layout, and its agent"
new_profile "$second"
mkdir -p "$second/drive_c/Logons" "$second/drive_c/Shared Logons"
host "$second" setting set path_localstorage_dir 'C:\Logons\' >/dev/null || fail "setting"
host "$second" setting set path_alienstorage_dirs 'C:\Shared Logons' >/dev/null || fail "setting"
host "$second" setting set path_quicklink_filename 'C:\Logons\quicklinks.txt' >/dev/null || fail "setting"
host "$second" setting set path_cachestorage_dir "$cache" >/dev/null || fail "setting"
mkdir -p "$(unix_path "$second" "$cache")"
in_profile "$second" "$bin\\vlagent.exe" --journal 'C:\journal.jsonl' &
agent_pid=$!
for _ in $(seq 100); do
    [ -s "$second/drive_c/journal.jsonl" ] && break
    sleep 0.1
done
echo "the agent runs; the personal folder is C:\\Logons\\ there"

say "What the restore would do"
cp "$out/first.vlb" "$second/drive_c/backup.vlb"
host "$second" restore 'C:\backup.vlb' --dry-run || fail "the dry run failed"

say "The restore, traced, with the secret handed from the first profile's store to the second's agent"
host "$second" trace on --dir 'C:\Traces' || fail "tracing could not be switched on"
host "$first" secret read | host "$second" restore 'C:\backup.vlb' --entry plugin-data --secret-from 0 ||
    fail "the restore failed"
host "$second" trace off >/dev/null || fail "tracing could not be switched off"
host "$second" secret exists || fail "secret"
in_profile "$second" "$bin\\vlagent.exe" --quit
wait "$agent_pid" || fail "the agent ended badly"
agent_pid=
echo "the agent's journal:"
cat "$second/drive_c/journal.jsonl"

say "A second backup there, compared with the first"
host "$second" backup 'C:\again.vlb' >/dev/null || fail "the second backup failed"
cp "$second/drive_c/again.vlb" "$out/second.vlb"
"$dist/vlbackup" diff --restored "$out/first.vlb" "$out/second.vlb" || fail "not everything came back"
in_profile "$second" "$bin\\vlbackup.exe" diff --restored --live 'C:\backup.vlb' || fail "the profile differs"
[ "$(host "$first" secret read | sha256sum)" = "$(host "$second" secret read | sha256sum)" ] ||
    fail "the secret did not come back"
echo "the secret is the same too"

say "The trace of the restore"
trace=$(ls -t "$second"/drive_c/Traces/*vlonlineids.dll*.trc3 | tail -n 1)
cp "$trace" "$out/restore.trc3"
"$dist/vltrace" cat "$out/restore.trc3" || fail "the trace could not be read"
"$dist/vltrace" export --format chrome --output "$out/restore.trace.json" "$out/restore.trc3" ||
    fail "the trace could not be exported"
echo
echo "the same for Perfetto, chrome://tracing or speedscope: build/demo/restore.trace.json"

say "Everything came back"
