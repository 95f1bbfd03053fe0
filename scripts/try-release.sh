#!/bin/sh
# try-release.sh RELEASE [COMMAND] runs "make demo && make test", or the command, on a bare system of another Debian release,
# as trixie: a debootstrap root in build/RELEASE with a clone of the last commit. A root that is there is used again. Needs
# root, and debootstrap. Exit status: the command's.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
release=${1:?which release?}
command=${2:-make demo && make test}
system="$root/build/$release"
clone=/home/VLOnlineIDs
mirror=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources 2>/dev/null |
    sed -nE 's/^(URIs:|deb (\[[^]]*\] )?) *([a-z]+:[^ ]*).*/\3/p' | grep -i debian | grep -v security | head -n 1)
if [ ! -f "$system/.ready" ]; then
    debootstrap --variant=minbase "$release" "$system" "$mirror" >/dev/null
    touch "$system/.ready"
fi
cleanup() {
    for mounted in proc dev/pts dev; do
        umount "$system/$mounted" 2>/dev/null || true
    done
}
trap cleanup EXIT
mount -t proc proc "$system/proc"
mount --bind /dev "$system/dev"
mount -t devpts devpts "$system/dev/pts"
cp /etc/resolv.conf "$system/etc/resolv.conf"
# Nothing but what a newcomer has: git and make.
inside() { chroot "$system" env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"; }
inside sh -c 'apt-get update -q && apt-get install -y -q --no-install-recommends ca-certificates git make' >/dev/null
rm -rf "${system:?}$clone.new"
git clone -q "$root" "$system$clone.new"
[ ! -d "$system$clone/build" ] || mv "$system$clone/build" "$system$clone.new/build" # compiled before
rm -rf "${system:?}$clone"
mv "$system$clone.new" "$system$clone"
inside sh -c "cd $clone && $command"
