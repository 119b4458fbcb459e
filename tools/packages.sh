# Debian packages, sourced by run, test and .ci/run.

# To build and start the program.
build_packages=(
    g++ cmake ninja-build pkg-config ccache sdcc cc65 binutils-m68k-linux-gnu
    libcli11-dev libgl-dev libgl1-mesa-dri libglu1-mesa-dev libopenal-dev libpng-dev
    libboost-dev libfreetype-dev liblz4-dev liblzma-dev libpugixml-dev libsdl2-dev libsqlite3-dev libssl-dev libstb-dev
    libturbojpeg0-dev libutfcpp-dev libzip-dev nlohmann-json3-dev zlib1g-dev fonts-inter fonts-jetbrains-mono librsvg2-bin
)

# Also to build and run the tests, benchmarks and fuzz entry points.
test_packages=(
    clang libclang-rt-14-dev libgtest-dev libgmock-dev libbenchmark-dev libsamplerate0-dev python3 valgrind xauth xvfb
    appstream desktop-file-utils fish mandoc shared-mime-info zsh
)

# Also to check format and lint.
lint_packages=(clang-format clang-tidy)

# need_packages NAME...: installs the missing ones without asking, and prints them.
need_packages() {
    local missing=() name
    for name in "$@"; do
        [ -e "/var/lib/dpkg/info/$name.list" ] || ls "/var/lib/dpkg/info/$name":*.list >/dev/null 2>&1 ||
            missing+=("$name")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if ! command -v apt-get >/dev/null; then
        echo "These Debian packages are needed and this system has no apt-get: ${missing[*]}" >&2
        return 1
    fi
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "Please install as root: apt-get install ${missing[*]}" >&2
            return 1
        }
        as_root=(sudo)
    fi
    echo "Installing Debian packages: ${missing[*]}" >&2
    "${as_root[@]}" apt-get update -qq >&2 || echo "apt-get update failed; going on" >&2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}
