#!/usr/bin/env bash
# Installs the packages into a fresh Debian and uses them there: what this machine happens to have does not help. Needs
# root, debootstrap and the network (several hundred MB to download); the root is removed in the end.
#   check-in-clean-root.sh PACKAGES-FOLDER [WORK-FOLDER]
# With a work folder the fresh Debian is kept there (as a tar file) for the next time.
set -euo pipefail
packages=$(readlink -f "$1")
work=${2:-}
tree=$(dirname "$(readlink -f "$0")")/../..
suite=bookworm
mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}

[ "$(id -u)" -eq 0 ] || { echo "A clean root is made by root only." >&2; exit 2; }
command -v debootstrap >/dev/null || { echo "Please install debootstrap." >&2; exit 2; }
compgen -G "$packages/*.deb" >/dev/null || { echo "There are no packages in $packages: ./run package" >&2; exit 2; }

scratch=$(mktemp -d)
root=$scratch/root
log=$scratch/log
trap 'rm -rf --one-file-system "$scratch"' EXIT

step() { # sentence, command…
    echo "== $1"
    shift
    "$@" >"$log" 2>&1 || { tail -n 40 "$log" >&2; echo "That failed: $*" >&2; exit 1; }
}

# In namespaces of its own: what is mounted there goes with the command, and nothing of it can be left running.
inside() {
    unshare --mount --pid --fork --kill-child sh -c 'mount -t proc proc "$0/proc" && exec chroot "$0" "$@"' "$root" \
        env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"
}

install() { # names, or files with patterns, which the root itself resolves
    # shellcheck disable=SC2016
    inside sh -c 'exec apt-get install -y --no-install-recommends -o APT::Keep-Downloaded-Packages=false $*' sh "$@"
}

fresh_debian() {
    if [ -n "$work" ] && [ -f "$work/$suite.tar" ]; then
        mkdir "$root" && tar -C "$root" -xf "$work/$suite.tar"
        return
    fi
    debootstrap --variant=minbase "$suite" "$root" "$mirror" || return
    if [ -n "$work" ]; then
        mkdir -p "$work" && tar -C "$root" -cf "$work/$suite.tar" .
    fi
}

reads_specimen() {
    inside kelvara-specimen --subject back --seed 7 --out /tmp/back \
        && inside kelvara mrz /tmp/back.png >"$scratch/mrz.json" \
        && grep -q '"allCheckDigitsValid":true' "$scratch/mrz.json"
}

finds_everything() {
    inside sh -c 'ldd /usr/lib/*/libKelvara.so.0' >"$scratch/linked" && grep -q libQt6Core "$scratch/linked" \
        && ! grep 'not found' "$scratch/linked"
}

step "a fresh Debian $suite" fresh_debian
step "its list of packages" inside apt-get update
mkdir "$root/packages"
cp "$packages"/*.deb "$root/packages"

step "the library alone" install '/packages/libkelvara[0-9]*.deb'
step "what it is linked with" finds_everything
step "the programs" install '/packages/kelvara-tools_*.deb'
step "kelvara reads a card that kelvara-specimen photographed" reads_specimen

step "the development files" install '/packages/*.deb'
step "a compiler" install g++ cmake make pkg-config
cp -r "$tree/Tests/Consumer" "$root/consumer"
step "a host outside of the tree" inside /consumer/run.sh /usr
cat "$log"

step "taking everything away again" inside sh -c \
    'dpkg --purge libkelvara-dev kelvara-tools $(dpkg-query -W -f "\${Package} " "libkelvara*") && ! ls -d /usr/lib/*/libKelvara* /usr/include/kelvara 2>/dev/null'
echo "The packages install, run and go away in a clean Debian $suite."
