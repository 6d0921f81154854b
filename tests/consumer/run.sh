#!/usr/bin/env bash
# run.sh BUILD_FOLDER: installs that build into a folder of its own, then builds and runs a host against the
# installed tree, once through the CMake package and once through pkg-config.
set -eu
sBuild=$1
sHere=$(cd "$(dirname "$0")" && pwd)
sWork=$(mktemp -d)
trap 'rm -rf "$sWork"' EXIT

cmake --install "$sBuild" --prefix "$sWork/first" >/dev/null
# Moved after the installation: nothing may point back.
mv "$sWork/first" "$sWork/tree"
cmake -S "$sHere" -B "$sWork/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$sWork/tree" >/dev/null
cmake --build "$sWork/cmake" >/dev/null
"$sWork/cmake/consumer"

sPackageFile=$(find "$sWork/tree" -name lumor_dewarp.pc)
export PKG_CONFIG_PATH=${sPackageFile%/*}
c++ -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror $(pkg-config --cflags lumor_dewarp) \
    "$sHere/Main.cpp" -o "$sWork/plain" $(pkg-config --libs lumor_dewarp)
sLibraries=$(pkg-config --variable=libdir lumor_dewarp)
LD_LIBRARY_PATH=$sLibraries "$sWork/plain"

# With the library's name alone, which brings the core, through every linker that is there.
for sLinker in bfd gold lld mold; do
    command -v "ld.$sLinker" >/dev/null || continue
    c++ -std=c++20 -fuse-ld="$sLinker" $(pkg-config --cflags lumor_dewarp) "$sHere/Main.cpp" -o "$sWork/named" \
        -L"$sLibraries" -llumor_dewarp
    LD_LIBRARY_PATH=$sLibraries "$sWork/named"
done

# The core alone, for a host that asks for nothing else: no word of OpenGL ES in what it compiles, links or loads.
cmake -S "$sHere/core" -B "$sWork/core" -G Ninja -DCMAKE_PREFIX_PATH="$sWork/tree" >/dev/null
cmake --build "$sWork/core" >/dev/null
LIBGL_ALWAYS_SOFTWARE=1 "$sWork/core/consumer"
case "$(pkg-config --cflags --libs lumor_dewarp_core) $(readelf -d "$sWork/core/consumer")" in *EGL* | *GLES*) exit 1 ;; esac

# The static library of the same build, with nothing but what the package names.
c++ -std=c++20 $(pkg-config --cflags lumor_dewarp) "$sHere/Main.cpp" -o "$sWork/static" \
    "$sBuild/tests/liblumor_dewarp_static.a" $(pkg-config --libs egl glesv2)
"$sWork/static"

# The library's own business was left behind, and no installed header includes it.
for sHeader in dewarp/Rooms.h dewarp/control/Control.h dewarp/gl/Programs.h platform/Report.h android/log.h; do
    [ ! -e "$sWork/tree/include/lumor_dewarp/$sHeader" ]
done
(cd "$sWork/tree/include/lumor_dewarp" && find . -name '*.h' -printf '#include "%P"\n') |
    c++ -std=c++20 -Wall -Wextra -Wpedantic -Werror -fsyntax-only $(pkg-config --cflags lumor_dewarp) -x c++ -
if [ -x "$sWork/tree/bin/lumor-dewarp" ]; then
    "$sWork/tree/bin/lumor-dewarp" --version
    # Both engines and the part that is loaded for buffers are found where they were installed.
    for sWay in --engine=cpu --engine=gl --buffers; do
        "$sWork/tree/bin/lumor-dewarp" "$sWay" --size 64x64 "$sHere/../../samples/overlay-1280x720.png" "$sWork/view.png"
    done
fi
