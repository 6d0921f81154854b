#!/usr/bin/env bash
# tests/arm64/run.sh X86_BUILD [ARM64_BUILD]
#
# Builds the library for arm64 with Debian's cross compiler and runs it under qemu-user: the tests that need no
# GL; meshes, texts and a few small pictures beside those of this machine's build (X86_BUILD, where dewarp_probe
# is built as well). Mesa for arm64 comes from a private package root in the user's cache. Exits 77 where the
# compiler, the emulator or the packages are not to be had.
set -eu
cd "$(dirname "$0")/../.."
. tests/arm64/root.sh
sNative=${1:?the folder of this machine\'s build}
sBuild=${2:-build/arm64}
sJobs=$(nproc)

skip() {
    echo "arm64: skipped, $1"
    exit 77
}

[ "$(uname -m)" = x86_64 ] || skip "this is no x86-64 machine"
command -v aarch64-linux-gnu-g++ >/dev/null && command -v qemu-aarch64 >/dev/null ||
    skip "no aarch64-linux-gnu-g++ or qemu-aarch64"
LUMOR_ARM64_ROOT=$(arm64_root "${XDG_CACHE_HOME:-$HOME/.cache}/lumor-dewarp-arm64") ||
    skip "Debian's packages for arm64 cannot be fetched"
export LUMOR_ARM64_ROOT

mkdir -p "$sBuild"
build() {
    [ -f "$sBuild/build.ninja" ] ||
        cmake -S . -B "$sBuild" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$PWD/tests/arm64/Toolchain.cmake" \
            -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-O1 \
            -DLUMOR_BUILD_TOOLS=OFF -DLUMOR_BUILD_TESTS=ON || return 1
    # The tests that need no GL, save those of the source tree.
    sTests=$(ctest --test-dir "$sBuild" -N -L unit | grep -oE '[A-Za-z]+Test$' | grep -v IncludeRules | sort -u)
    [ -n "$sTests" ] || return 1
    cmake --build "$sBuild" -j "$sJobs" -t dewarp_probe $(printf ' -t %s' $sTests) &&
        cmake --build "$sNative" -j "$sJobs" -t dewarp_probe
}
build >"$sBuild/build.log" 2>&1 || { grep -E 'error|FAILED|CMake Error' -A 5 "$sBuild/build.log" | head -n 40; exit 1; }

# Every program twice, half of its cases each, so that a long one uses several processors. Death tests that start
# their own program again are left out: the emulator is not asked for it. So are those about memory (how it grows,
# and what happens without it), for it is the same on every processor, and the sweeps of the search for circles.
echo "$sTests" | tr ' ' '\n' | while read -r sTest; do echo "$sTest 0"; echo "$sTest 1"; done |
    xargs -P "$sJobs" -L 1 bash -c '
        sLog=$2/$3-$4.log
        GTEST_TOTAL_SHARDS=2 GTEST_SHARD_INDEX=$4 qemu-aarch64 -L "$1" "$2/tests/$3" \
            "--gtest_filter=-*DeathTest*:ProcessorSoak.*:*AllocationFaults*:CircleFinder/*" >"$sLog" 2>&1 && exit 0
        grep -E "Failure|FAILED|rror" -A 8 "$sLog" | head -n 60
        echo "arm64: $3 failed; $sLog"
        exit 255' test "$LUMOR_ARM64_ROOT" "$sBuild"
echo "arm64: $(cat "$sBuild"/*-[01].log | grep -c '^\[       OK') cases passed in $(echo "$sTests" | wc -w) programs"

export EGL_PLATFORM=surfaceless LIBGL_ALWAYS_SOFTWARE=1
probe() { # WHAT
    "$sNative/tests/dewarp_probe" "$1" "$sBuild/$1.native" 2>"$sBuild/$1.native.log" ||
        { echo "arm64: no $1 here; $sBuild/$1.native.log"; return 1; }
    qemu-aarch64 -L "$LUMOR_ARM64_ROOT" "$sBuild/tests/dewarp_probe" "$1" "$sBuild/$1.arm64" 2>"$sBuild/$1.arm64.log" ||
        { echo "arm64: no $1 there; $sBuild/$1.arm64.log"; return 1; }
    "$sNative/tests/dewarp_probe" compare "$sBuild/$1.native" "$sBuild/$1.arm64"
    rm -f "$sBuild/$1.native" "$sBuild/$1.arm64"
}
probe meshes
probe pictures
