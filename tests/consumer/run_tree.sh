#!/usr/bin/env bash
# run_tree.sh BUILD_FOLDER: builds and runs a host that takes the library's tree into its own, statically; then
# installs the static library from there, and builds and runs a host against it, once through the CMake package
# and once through pkg-config. The tree is kept in the build folder: only changes are compiled again.
set -eu
sBuild=$1
sHere=$(cd "$(dirname "$0")" && pwd)
sTree=$sBuild/consumer_tree
sWork=$(mktemp -d)
trap 'rm -rf "$sWork"' EXIT

cmake -S "$sHere/tree" -B "$sTree" -G Ninja -DBUILD_SHARED_LIBS=OFF -DLUMOR_INSTALL=ON \
    -DCMAKE_CXX_FLAGS="-march=native -O0" -DCMAKE_INSTALL_LIBDIR=lib >"$sWork/configure.log"
# Whatever the host's flags are: nothing is contracted in any source of the library, and nothing is visible
# that is not marked.
ninja -C "$sTree" -t commands lumor_dewarp/dewarp/liblumor_dewarp.a | grep -E ' -c .*\.cpp$' >"$sWork/commands"
[ "$(wc -l <"$sWork/commands")" -gt 80 ]
for sFlag in -ffp-contract=off -fvisibility=hidden -fvisibility-inlines-hidden; do
    if grep -v -e " $sFlag " "$sWork/commands"; then
        echo "without $sFlag" >&2
        exit 1
    fi
done
cmake --build "$sTree" -j "$(nproc)" >"$sWork/build.log" || { tail -n 30 "$sWork/build.log"; exit 1; }
"$sTree/consumer"

cmake --install "$sTree" --prefix "$sWork/tree" >/dev/null
[ ! -e "$sWork/tree/lib/liblumor_dewarp.so" ]
cmake -S "$sHere" -B "$sWork/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$sWork/tree" >/dev/null
cmake --build "$sWork/cmake" >/dev/null
"$sWork/cmake/consumer"

export PKG_CONFIG_PATH=$sWork/tree/lib/pkgconfig
c++ -std=c++20 -c $(pkg-config --cflags lumor_dewarp) "$sHere/Main.cpp" -o "$sWork/Main.o"
# Linked as a program in C would be: the file names all that the library needs.
cc "$sWork/Main.o" -o "$sWork/plain" $(pkg-config --libs lumor_dewarp)
"$sWork/plain"
