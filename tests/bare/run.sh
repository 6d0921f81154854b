#!/usr/bin/env bash
# run.sh BUILD_FOLDER: runs a host of the core in a root of its own in which nothing is but that program, the core,
# and what the linker says they need: the loader and the libraries of C and C++. No EGL, no OpenGL ES, no driver,
# no /proc and no /dev. Then once more with the other part of the library beside the core, which cannot be loaded
# there. Exits 77 where roots cannot be changed.
set -eu
sBuild=$1
sHere=$(cd "$(dirname "$0")" && pwd)
sWork=$(mktemp -d)
trap 'rm -rf "$sWork"' EXIT

[ "$(id -u)" -eq 0 ] && command -v chroot >/dev/null || { echo "bare: skipped, only root may change its root"; exit 77; }

cmake --install "$sBuild" --prefix "$sWork/tree" >/dev/null
sPackageFile=$(find "$sWork/tree" -name lumor_dewarp_core.pc)
export PKG_CONFIG_PATH=${sPackageFile%/*}
sLibraries=$(pkg-config --variable=libdir lumor_dewarp_core)
c++ -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror $(pkg-config --cflags lumor_dewarp_core) \
    "$sHere/Main.cpp" -o "$sWork/host" $(pkg-config --libs lumor_dewarp_core)

sRoot=$sWork/root
mkdir -p "$sRoot/opt"
cp "$sWork/host" "$sRoot/opt/host"
cp -L "$sLibraries/liblumor_dewarp_core.so.0" "$sRoot/opt/"
LD_LIBRARY_PATH=$sLibraries ldd "$sWork/host" | grep -oE '/[^ ]+' | grep -v "^$sWork" | sort -u |
    while read -r sFile; do
        mkdir -p "$sRoot${sFile%/*}"
        cp -L "$sFile" "$sRoot$sFile"
    done
find "$sRoot" -type f -printf '%f\n' | sort >"$sWork/files"
sOther=$(grep -vE '^(host|liblumor_dewarp_core\.so\.0|ld-linux.*|lib(c|m|dl|pthread|gcc_s|stdc\+\+)\.so\.[0-9]+)$' "$sWork/files") &&
    { echo "bare: the core needs more than the libraries of C and C++:" $sOther; exit 1; }

host() { env -i LD_LIBRARY_PATH=/opt "$(command -v chroot)" "$sRoot" /opt/host; }
host >"$sWork/alone" || { echo "bare: the host ended with $?"; cat "$sWork/alone"; exit 1; }
grep -q '^processor' "$sWork/alone" || { echo "bare: another engine:"; cat "$sWork/alone"; exit 1; }
cp -L "$sLibraries/liblumor_dewarp.so.0" "$sRoot/opt/"
host >"$sWork/beside" || { echo "bare: with a library that cannot be loaded the host ended with $?"; exit 1; }
cmp "$sWork/alone" "$sWork/beside"
echo "bare: $(head -n 1 "$sWork/alone"), with" $(grep -v '^host$' "$sWork/files")
