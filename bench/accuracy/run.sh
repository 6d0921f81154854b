#!/usr/bin/env bash
# Builds the comparison of every view with an exact rendering and runs it:
# bench/accuracy/run.sh [--quick] [--json FILE] [--markdown FILE] [--pictures DIR] [--only TEXT]
#     [--engine gl|cpu] [--exact]
# Packages that the library's own build needs are installed where they are missing (as root).
set -eu
sHere=$PWD
cd "$(dirname "$0")/../.."
. tools/setup/packages.sh
install_missing $BUILD_PACKAGES libbenchmark-dev

mkdir -p build
if ! { cmake -S . -B build/accuracy -G Ninja -DCMAKE_BUILD_TYPE=Release -DLUMOR_BUILD_BENCH=ON &&
    cmake --build build/accuracy -j "$(nproc)" --target lumor-bench-accuracy; } >build/accuracy.log 2>&1; then
    tail -n 40 build/accuracy.log >&2
    echo "The build failed; the lines above (from build/accuracy.log) say why." >&2
    exit 1
fi
sProgram=$PWD/build/accuracy/lumor-bench-accuracy
cd "$sHere"
exec nice -n 5 "$sProgram" "$@"
