# Sourced by ./run and ./test: makes sure that Debian packages are there.

# need_packages PACKAGE...: installs those that are missing, as root or through sudo. Where neither works it names them and
# ends the script with status 1.
need_packages() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing: ${missing[*]}" >&2
            echo "Install them as root: apt-get install ${missing[*]}" >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    if ! { "${as_root[@]}" apt-get update -q &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"; } \
        >/tmp/plumtide-packages.$$ 2>&1; then
        cat /tmp/plumtide-packages.$$ >&2
        rm -f /tmp/plumtide-packages.$$
        echo "These packages could not be installed: ${missing[*]}" >&2
        exit 1
    fi
    rm -f /tmp/plumtide-packages.$$
}

# What the program and localradio are built from, and what they need when they run.
build_packages=(g++ cmake ninja-build pkg-config qt6-base-dev qt6-svg-dev libexpat1-dev libmpv-dev ffmpeg
    fonts-dejavu-core)
# What shows a window where there is no display.
display_packages=(xvfb xauth xdotool imagemagick)
# What the tests use besides.
test_packages=(clang-format clang-tidy clang)
