# Debian packages, and how to get those that are missing. Sourced by ./run and ./test.

# To build and run the library and its tools.
BUILD_PACKAGES="g++ cmake ninja-build pkg-config libegl-dev libgles-dev libegl1 libgles2 libgl1-mesa-dri
    libcli11-dev libavformat-dev libavcodec-dev libswscale-dev libavutil-dev
    nlohmann-json3-dev libyaml-cpp-dev libeigen3-dev"

# To test them as well. The benchmarks' library is small, and with it one build folder does for all stages.
TEST_PACKAGES="$BUILD_PACKAGES libgtest-dev libgmock-dev libbenchmark-dev"

# To look at the sources: their form, and what clang finds in them.
FORMAT_PACKAGES="git clang-format-14"
TIDY_PACKAGES="git clang-tidy-14"

# To build for arm64 and to run that.
ARM64_PACKAGES="g++-aarch64-linux-gnu qemu-user"

# To compare the library's binary interface with the last commit's.
ABI_PACKAGES="git abigail-tools"

# install_missing PACKAGE...: installs what is not there; says nothing when everything is.
install_missing() {
    local sMissing="" sPackage
    command -v dpkg-query >/dev/null || return 0 # another distribution: the build will say what it lacks
    for sPackage in "$@"; do
        dpkg-query -W -f '${db:Status-Status}' "$sPackage" 2>/dev/null | grep -q '^installed' ||
            sMissing="$sMissing $sPackage"
    done
    [ -n "$sMissing" ] || return 0
    if [ "$(id -u)" -ne 0 ]; then
        echo "These packages are missing; install them as root and start again:$sMissing" >&2
        return 1
    fi
    echo "Installing:$sMissing" >&2
    local sLog
    sLog=$(mktemp)
    # The lists may be missing or old: fetch them when the first try fails.
    if ! apt_install $sMissing >"$sLog" 2>&1 &&
        ! { apt-get -qq update >>"$sLog" 2>&1 && apt_install $sMissing >>"$sLog" 2>&1; }; then
        tail -n 20 "$sLog" >&2
        echo "The packages could not be installed; the lines above say why." >&2
        rm -f "$sLog"
        return 1
    fi
    rm -f "$sLog"
}

apt_install() {
    DEBIAN_FRONTEND=noninteractive apt-get -qq -y --no-install-recommends install "$@"
}
