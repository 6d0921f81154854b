#!/usr/bin/env bash
# Counts the library's own instructions in one steady frame, outside driver and C library.
# Usage: bench/count_instructions.sh BUILD_FOLDER
set -eu
sProgram=$1/lumor-steady-frame
sWork=$(mktemp -d)
trap 'rm -rf "$sWork"' EXIT

# Sum of what the library's own functions execute in a run of $1 frames.
own() {
    valgrind --tool=callgrind --callgrind-out-file="$sWork/out.$1" "$sProgram" "$1" >/dev/null 2>&1
    callgrind_annotate --threshold=100 "$sWork/out.$1" |
        awk '/liblumor_dewarp/ { gsub(",", "", $1); n += $1 } END { printf "%d\n", n }'
}

nShort=$(own 20)
nLong=$(own 120)
echo "own instructions in a steady frame: $(((nLong - nShort) / 100))"
