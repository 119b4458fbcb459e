# shellcheck shell=bash
# shellcheck disable=SC2154
# One file that unpacks itself and brings its libraries; sourced by tools/package, which sets out, name and version.

# The C library cannot be brought along: the system's drivers need the system's.
is_c_library() {
    case $1 in
        ld-linux* | libc.so.* | libm.so.* | libdl.so.* | libpthread.so.* | librt.so.* | libresolv.so.*) return 0 ;;
    esac
    return 1
}

# What the drivers of graphics and sound and the display's own libraries use as well. An older one of ours would
# break them, so the system's come first.
is_shared_with_drivers() {
    case $1 in
        libGL*.so.* | libOpenGL.so.* | libEGL.so.* | libdrm*.so.* | libgbm.so.* | libwayland-*.so.* | libX*.so.* | \
            libxcb*.so.* | libasound.so.* | libstdc++.so.* | libgcc_s.so.* | libz.so.* | libzstd.so.* | libexpat.so.* | liblzma.so.* | \
            libffi.so.* | libbsd.so.* | libmd.so.* | libdbus-1.so.* | libsystemd.so.* | libcap.so.* | libudev.so.*) return 0 ;;
    esac
    return 1
}

# copy_libraries PROGRAM FOLDER: those it loads, and the licences of their packages.
copy_libraries() {
    local library path package
    ldd "$1" | sed -n 's/^[[:space:]]*\([^ ]*\) => \(\/[^ ]*\) .*/\1 \2/p' | while read -r library path; do
        is_c_library "$library" && continue
        if is_shared_with_drivers "$library"; then
            install -D -m 644 "$path" "$2/spare/$library/$library"
        else
            install -D -m 644 "$path" "$2/lib/$library"
        fi
        path=$(readlink -f "$path")
        package=$(dpkg -S "$path" 2>/dev/null || dpkg -S "${path#/usr}")
        package=${package%%:*}
        install -D -m 644 "/usr/share/doc/$package/copyright" "$2/share/doc/$package/copyright"
    done
    find "$2/lib" -name "*.so*" -exec strip --strip-unneeded {} +
}

# The newest version of the C library that anything in this folder asks for.
needed_glibc() {
    find "$1" -type f \( -name '*.so*' -o -path '*/bin/*' \) -exec objdump -T {} + 2>/dev/null |
        grep -o 'GLIBC_2\.[0-9]*' | sort -u -V | tail -n 1 | tr _ ' '
}

make_bundle() {
    local machine root file loader module
    need_packages "${build_packages[@]}"
    machine=$(uname -m)
    root=$out/bundle/root
    unpack_source "$out/bundle"
    cmake -S "$out/bundle/$name" --preset release >&2
    cmake --build "$out/bundle/$name/build/release" >&2
    cmake --install "$out/bundle/$name/build/release" --strip --prefix "$root" >/dev/null
    copy_libraries "$root/bin/ombrelune" "$root"
    # What the video module loads.
    find "$root/lib" -mindepth 2 -name "ombrelune-*.so" | while read -r module; do
        copy_libraries "$module" "$root"
    done
    loader=$(readelf --program-headers "$root/bin/ombrelune" | sed -n 's/.*interpreter: \(.*\)\]/\1/p')
    sed -e "s,@LOADER@,$loader," -e "s,@GLIBC@,$(needed_glibc "$root")," "$out/bundle/$name/packaging/bundle/start.sh" \
        >"$root/start"
    chmod 755 "$root/start"
    tar -c --sort=name --owner=0 --group=0 --numeric-owner --mtime="@$SOURCE_DATE_EPOCH" -C "$root" . |
        gzip -n >"$out/bundle/payload"
    file=$out/$name-$machine.run
    sed -e "s,@VERSION@,$version," -e "s,@MACHINE@,$machine," \
        -e "s,@ID@,$version-$(sha256sum "$out/bundle/payload" | cut -c1-16)," \
        -e "s,@LINES@,$(($(wc -l <"$out/bundle/$name/packaging/bundle/unpack.sh") + 1))," \
        "$out/bundle/$name/packaging/bundle/unpack.sh" >"$file"
    cat "$out/bundle/payload" >>"$file"
    chmod 755 "$file"
    echo "made $file ($(du -h "$file" | cut -f1)), for $(needed_glibc "$root") and newer"
}
