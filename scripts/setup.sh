#!/bin/sh
# setup.sh GROUP... installs what is missing of the named groups of packages.txt, and fetches the sources of the libraries
# that the target has no package of. Everything except the packages goes below build/. A second run finds its work done
# and needs no network.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
third_party="$root/build/third-party"
# Source package, its archive, and that one's SHA-256.
sources="libjsoncpp=1.9.5-4 libjsoncpp_1.9.5.orig.tar.gz f409856e5920c18d0c2fb85276e24ee607d2a09b5e7d5f0a371368903c275da2
pcre2=10.42-1 pcre2_10.42.orig.tar.gz c33b418e3b936ee3153de2c61cc638e7e4fe3156022a5c77d0711bcbb9d64f1f
minizip minizip_1.1.orig.tar.xz 7d8da446d3b6799e7851f077a66551a46b80fc3de708549e79dbd3e49e842ba1"

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null 2>&1; then
        sudo "$@"
    else
        echo "setup: $* needs root: run it as root once, or install sudo" >&2
        exit 1
    fi
}

installed() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

missing=""
for group in "$@"; do
    for package in $(sed -n "s/^$group //p" "$root/scripts/packages.txt"); do
        installed "$package" || missing="$missing $package"
    done
done
if [ -n "$missing" ]; then
    echo "setup: installing$missing"
    as_root apt-get update -q >/dev/null || echo "setup: package lists could not be refreshed, going on with those here" >&2
    # shellcheck disable=SC2086 # a list of words is wanted
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $missing >/dev/null
fi

# verified ARCHIVE SHA256
verified() {
    [ -f "$third_party/$1" ] && echo "$2  $third_party/$1" | sha256sum -c --quiet - >/dev/null 2>&1
}

# A private list of package sources: the release that has these versions, from the machine's own mirror.
apt="$root/build/apt"
private_apt() {
    apt-get -q -o Dir::Etc::sourcelist=/dev/null -o Dir::Etc::sourceparts="$apt/parts" \
        -o Dir::State::lists="$apt/lists" -o Dir::Cache="$apt/cache" -o APT::Sandbox::User="$(id -un)" "$@" >/dev/null
}
list_sources() {
    rm -rf "$apt"
    mkdir -p "$apt/parts" "$apt/lists/partial" "$apt/cache/archives/partial" "$third_party"
    mirrors=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources 2>/dev/null |
        sed -nE 's/^(URIs:|deb (\[[^]]*\] )?) *([a-z]+:[^ ]*).*/\3/p' | grep -i debian | grep -v security | sort -u)
    for mirror in $mirrors; do
        echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $mirror bookworm main"
    done >"$apt/parts/derived.list"
    private_apt update
}

echo "$sources" | while read -r package archive sha256; do
    verified "$archive" "$sha256" && continue
    echo "setup: fetching $archive"
    [ -d "$apt" ] || list_sources
    (cd "$apt" && private_apt source --download-only "$package" && mv "$archive" "$third_party/")
    verified "$archive" "$sha256" || {
        echo "setup: $archive does not have the expected SHA-256" >&2
        exit 1
    }
done
rm -rf "$apt"

# Header-only packages get a folder of links of their own: the host's include folder on the search path of a
# cross build would shadow the target's C library.
mkdir -p "$third_party/include"
for library in CLI fmt spdlog; do
    ln -sfn "/usr/include/$library" "$third_party/include/$library"
done
