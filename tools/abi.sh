#!/usr/bin/env bash
# What the library's binary interface gained and lost since the commit before this one: builds both with the
# same flags and prints what abidiff says of the installed headers' types and the exported functions.
# It informs; it fails only when a build or abidiff itself does.
# Usage: tools/abi.sh [FOLDER]      (a build folder of its own, build/abi)
set -eu
cd "$(dirname "$0")/.."
sFolder=${1:-build/abi}
gitsafe() { git -c safe.directory='*' "$@"; }

if ! sBefore=$(gitsafe rev-parse --verify --quiet HEAD~1^{commit} 2>/dev/null); then
    echo "no earlier commit in this clone: nothing to compare with"
    exit 0
fi
# Types and exported functions are what headers say.
if gitsafe diff --quiet "$sBefore" -- 'dewarp/*.h' 'platform/*.h' cmake/PublicHeaders.cmake &&
    [ -z "$(gitsafe ls-files --others --exclude-standard -- 'dewarp/*.h' 'platform/*.h')" ]; then
    echo "unchanged since $(gitsafe log -1 --format='%h %s' "$sBefore")"
    exit 0
fi
if ! command -v abidiff >/dev/null; then
    echo "no abidiff here (Debian: abigail-tools): not compared"
    exit 0
fi

# build_library NAME SOURCE: the library alone, with symbols, and its public headers under NAME/install.
build_library() {
    cmake -S "$2" -B "$sFolder/$1/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O0 -g" \
        -DLUMOR_BUILD_TOOLS=OFF -DCMAKE_INSTALL_LIBDIR=lib >"$sFolder/$1.log" 2>&1 &&
        cmake --build "$sFolder/$1/build" --target lumor_dewarp -j "$(nproc)" >>"$sFolder/$1.log" 2>&1 &&
        rm -rf "$sFolder/$1/install" &&
        cmake --install "$sFolder/$1/build" --prefix "$sFolder/$1/install" >>"$sFolder/$1.log" 2>&1 ||
        { tail -n 30 "$sFolder/$1.log"; return 1; }
}

mkdir -p "$sFolder"
# The earlier commit is built once.
if [ "$(cat "$sFolder/before/commit" 2>/dev/null)" != "$sBefore" ]; then
    rm -rf "$sFolder/before"
    mkdir -p "$sFolder/before/source"
    if ! gitsafe archive --output "$sFolder/before.tar" "$sBefore" CMakeLists.txt cmake dewarp platform 2>/dev/null; then
        echo "the earlier commit has no library: not compared"
        exit 0
    fi
    tar -x -f "$sFolder/before.tar" -C "$sFolder/before/source"
    if ! build_library before "$sFolder/before/source"; then
        echo "the earlier commit does not build here: not compared"
        exit 0
    fi
    echo "$sBefore" >"$sFolder/before/commit"
fi
build_library now .

# compare LIBRARY: what it gained and lost. 4 and 8 are changes, compatible and not; everything else is abidiff's
# own failure.
compare() {
    local sReport=$sFolder/$1.txt nStatus=0
    if [ ! -e "$sFolder/before/install/lib/$1.so.0" ]; then
        echo "$1: there was none"
        return 0
    fi
    abidiff --headers-dir1 "$sFolder/before/install/include" --headers-dir2 "$sFolder/now/install/include" \
        "$sFolder/before/install/lib/$1.so.0" "$sFolder/now/install/lib/$1.so.0" >"$sReport" 2>&1 || nStatus=$?
    [ $((nStatus & ~12)) -eq 0 ] || { tail -n 5 "$sReport"; echo "$1: abidiff failed ($nStatus)"; return 1; }
    [ $nStatus -ne 0 ] || { echo "$1: no difference"; return 0; }
    echo "$1:"
    head -n 60 "$sReport"
    [ "$(wc -l <"$sReport")" -le 60 ] || echo "... ($sReport has all of it)"
}

echo "against $(gitsafe log -1 --format='%h %s' "$sBefore"):"
compare liblumor_dewarp_core
compare liblumor_dewarp
