# Sourced by ./run, ./test, .ci/run and ./bench/run: makes sure that Debian packages are there.

# need_packages PACKAGE...: installs those that are missing, as root or through sudo. Where neither works it names them and
# ends the script with status 1.
need_packages() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    local as_root=() log status=0
    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
    fi
    log=$(mktemp)
    if [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null; then
        echo "Installing ${missing[*]}"
        { "${as_root[@]}" apt-get update -q && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -q --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 || status=1
    else
        status=1
    fi
    if [ $status -ne 0 ]; then
        cat "$log" >&2
        echo "These packages are missing: ${missing[*]}" >&2
        echo "Install them as root: apt-get install ${missing[*]}" >&2
    fi
    rm -f "$log"
    [ $status -eq 0 ] || exit 1
}

# What the program and localradio are built from, and what they need when they run.
build_packages=(g++ cmake ninja-build pkg-config qt6-base-dev qt6-svg-dev qt6-l10n-tools libcurl4-openssl-dev libexpat1-dev libplist-dev libmpv-dev
    libssl-dev libxcb1-dev ffmpeg fonts-dejavu-core ca-certificates)
# What shows a window where there is no display.
display_packages=(xvfb xauth xdotool imagemagick)
# What the tests of the program use besides.
acceptance_packages=(openssl icecast2 pulseaudio pulseaudio-utils python3 dbus dbus-daemon python3-gi gir1.2-atspi-2.0
    at-spi2-core)
# What all tests use.
test_packages=("${acceptance_packages[@]}" clang-format clang-tidy desktop-file-utils)
# What CI compiles with besides, and what makes it a root for another release.
ci_packages=(clang)
root_packages=(debootstrap)
# What ./fuzz is built with.
fuzz_packages=(clang)
# What ./bench/run compares with, and what it listens with.
bench_packages=(mpv audacious audacious-plugins vlc-bin vlc-plugin-base dbus dbus-daemon curl pulseaudio pulseaudio-utils libpulse-dev libxtst-dev)
