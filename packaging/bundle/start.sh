#!/bin/sh
# Starts the program with the libraries beside it. Those of `lib` are always taken. Those of `spare` belong to the
# system's drivers of graphics and sound: the system's own are taken, unless there are none or they are too old.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
program=$here/bin/ombrelune
loader=@LOADER@

if [ ! -x "$loader" ]; then
    echo "ombrelune: this system has no $loader, and the program needs the GNU C library" >&2
    exit 1
fi

path=$here/lib
# What a library that was missing needs may be missing too.
while :; do
    answer=$(LD_LIBRARY_PATH=$path "$loader" --list "$program" 2>&1 || true)
    missing=$(printf '%s\n' "$answer" | sed -n 's/^[[:space:]]*\([^ ]*\) => not found.*/\1/p;
        s/.*error while loading shared libraries: \([^:]*\):.*No such file.*/\1/p;
        s/.*\/\([^/]*\): version `[A-Z]*_[0-9.]*'\'' not found.*/\1/p' | sort -u)
    [ -n "$missing" ] || break
    added=
    for library in $missing; do
        case $path: in
            *:"$here/spare/$library":*) continue ;;
        esac
        if [ -e "$here/spare/$library/$library" ]; then
            path=$path:$here/spare/$library
            added=yes
        elif [ "$library" = libc.so.6 ] || [ "$library" = libm.so.6 ]; then
            echo "ombrelune: this system's C library is too old; @GLIBC@ or newer is needed" >&2
            exit 1
        fi
    done
    [ -n "$added" ] || break
done
LD_LIBRARY_PATH=$path exec "$program" "$@"
