# shellcheck shell=bash
# shellcheck disable=SC2154
# Tries packages in a bare Debian; sourced by tools/package, which sets out, name and version. Needs root.

# in_debian RELEASE COMMAND...: runs it in the bare system.
in_debian() {
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 HOME=/root DEBIAN_FRONTEND=noninteractive \
        chroot "$out/try/$1" "${@:2}"
}

# bare_debian RELEASE: makes it, the first time.
bare_debian() {
    local root=$out/try/$1
    if [ "$(id -u)" -ne 0 ]; then
        echo "this needs root: it makes a bare Debian and runs the program in it" >&2
        exit 1
    fi
    need_packages mmdebstrap
    if [ ! -d "$root" ]; then
        mkdir -p "$out/try"
        mmdebstrap --variant=apt "$1" "$root" || { rm -rf "$root" && exit 1; }
    fi
    cp -L /etc/resolv.conf "$root/etc/resolv.conf"
    in_debian "$1" apt-get update -qq
}

# The program by itself, and a game that is played without a window.
try_without_window() {
    echo "== $1: $2 without a window"
    in_debian "$1" "$2" --version
    in_debian "$1" "$2" play demo:md-mistral --headless --frames 300 --frame-hashes /tmp/hashes.txt
    [ "$(wc -l <"$out/try/$1/tmp/hashes.txt")" -eq 300 ]
    cp "$out/try/$1/tmp/hashes.txt" "$out/try/$1-$(basename "$2").hashes.txt"
}

# A game of our own in a window; the picture of the screen is to be looked at.
try_with_window() {
    local picture
    picture=$out/try/$1-$(basename "$2").png
    echo "== $1: $2 with a window"
    in_debian "$1" apt-get install -y -qq --no-install-recommends xvfb xauth x11-apps netpbm >/dev/null 2>&1
    # The game begins with a second of television static.
    in_debian "$1" env SDL_AUDIODRIVER=dummy xvfb-run -a -s '-screen 0 1280x720x24' sh -c \
        "$2 play demo:md-mistral & sleep 20; xwd -root -silent -out /tmp/screen.xwd; kill \$! && wait \$!" || true
    in_debian "$1" sh -c 'xwdtopnm -quiet /tmp/screen.xwd | pnmtopng -quiet' >"$picture"
    echo "look at $picture"
}

try_deb() {
    local release=${1:-bookworm} file
    file=$(ls "$out/ombrelune_$version"-*_"$(dpkg --print-architecture)".deb)
    bare_debian "$release"
    cp "$file" "$out/try/$release/tmp/ombrelune.deb"
    in_debian "$release" apt-get install -y -qq --no-install-recommends /tmp/ombrelune.deb
    try_without_window "$release" /usr/bin/ombrelune
    try_with_window "$release" /usr/bin/ombrelune
    in_debian "$release" apt-get purge -y -qq ombrelune
}

# First with nothing but the C library, and then with a display and its drivers.
try_bundle() {
    local release=${1:-trixie}
    bare_debian "$release"
    cp "$out/$name-$(uname -m).run" "$out/try/$release/tmp/ombrelune.run"
    try_without_window "$release" /tmp/ombrelune.run
    in_debian "$release" apt-get install -y -qq --no-install-recommends libgl1 >/dev/null 2>&1
    try_with_window "$release" /tmp/ombrelune.run
}
