#!/bin/sh
# transcript.sh BIN FILE runs the commands of a transcript in a new folder and compares what they print with what stands
# in FILE, in the form of cram. BIN holds the tools; Windows programs run in a clone of the base prefix, as their own
# user with their own registry. With --update in front, FILE takes what is printed now: read the difference before you
# commit it. Exit status: 0 only if all is equal.
set -u
root=$(cd "$(dirname "$0")/../.." && pwd)
cram=$(command -v cram3 || command -v cram) || { echo "cram is not installed (scripts/setup.sh test)" >&2; exit 1; }
update=
[ "$1" = --update ] && { update='--interactive --yes'; shift; }
bin=$(cd "$1" && pwd)
work=$(mktemp -d) || exit 1
cleanup() {
    [ -z "${WINEPREFIX:-}" ] || "$root/scripts/stop-prefix.sh" "$WINEPREFIX"
    rm -rf "$work" ${WINEPREFIX:+"$WINEPREFIX"}
}
trap cleanup EXIT
trap 'exit 143' TERM INT HUP
mkdir "$work/bin"
if [ -e "$bin/vlhost.exe" ]; then
    "$root/scripts/base-prefix.sh" || exit 1
    WINEPREFIX=$(mktemp -d "$root/build/wine/run-XXXXXX") || exit 1
    export WINEPREFIX HOME="$root/build/wine/home"
    "$root/scripts/clone-prefix.sh" "$WINEPREFIX" || exit 1
    # A program that stays keeps the server. Services and the desktop would hold the output open of the command that
    # started them.
    for program in "start notepad" "$bin/vlagent.exe --quit"; do
        # shellcheck disable=SC2086 # words
        "$root/scripts/wine-run.sh" $program </dev/null >/dev/null 2>&1
    done
    printf '#!/bin/sh\nexec "%s" "$@"\n' "$root/scripts/wine-run.sh" >"$work/bin/windows"
    for program in "$bin"/*.exe; do
        printf '#!/bin/sh\nexec windows "%s" "$@"\n' "$program" >"$work/bin/$(basename "$program" .exe)"
    done
    chmod +x "$work"/bin/*
else
    ln -s "$bin/vlbackup" "$bin/vltrace" "$work/bin/"
fi
export PATH="$work/bin:$PATH" ROOT="$root" BIN="$bin" TESTS="$root/tests" SAMPLES="$root/examples/samples"
name=$(basename "$2")
cp "$2" "$work/$name" || exit 1 # cram leaves its findings beside it
# shellcheck disable=SC2086 # two words or none
(cd "$work" && "$cram" --shell=/bin/sh $update "$name")
status=$?
[ -z "$update" ] || cp "$work/$name" "$2"
exit $status
