#!/bin/sh
# Ombrelune @VERSION@ with its libraries, for Linux on @MACHINE@. This file unpacks itself once and starts the program
# from there; all arguments go to the program, but for one:
#   --unpack-to FOLDER   unpacks into this folder, which must not exist, and ends
set -eu
here=$(cd "$(dirname "$0")" && pwd)
self=$here/$(basename "$0")

unpack() {
    mkdir -p "$1"
    tail -n +@LINES@ "$self" | tar -xzf - -C "$1"
}

if [ "${1:-}" = --unpack-to ] && [ $# -eq 2 ]; then
    if [ -e "$2" ]; then
        echo "$2 is there already" >&2
        exit 1
    fi
    unpack "$2"
    exit
fi

# A file named "portable" beside this one keeps settings, saves and games here, as it does beside the program.
if [ -z "${OMBRELUNE_HOME:-}" ] && [ -e "$here/portable" ] && [ -w "$here" ]; then
    OMBRELUNE_HOME=$here
    export OMBRELUNE_HOME
fi

cache=${XDG_CACHE_HOME:-${HOME:-/tmp}/.cache}/ombrelune-bundle
program=$cache/@ID@
if [ ! -x "$program/start" ]; then
    # Whole or not at all, whoever else starts it at this moment; other versions are no longer needed.
    new=$cache/new.$$
    trap 'rm -rf "$new"' EXIT
    unpack "$new"
    mv -T "$new" "$program" 2>/dev/null || [ -x "$program/start" ]
    for old in "$cache"/*; do
        case $old in
            "$program" | "$cache"/new.*) ;;
            *) rm -rf "$old" ;;
        esac
    done
    rm -rf "$new"
    trap - EXIT
fi
exec "$program/start" "$@"
