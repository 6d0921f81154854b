#!/usr/bin/env bash
# Every figure of docs/performance.md: bench/performance.sh [FOLDER]
# Builds, runs all benchmarks (some eight minutes; as root where packages are missing), leaves what they
# printed in FOLDER (build/performance) and prints the page's tables. A benchmark that other processes disturb
# is run again, up to five times.
set -eu
cd "$(dirname "$0")/.."
sFolder=${1:-build/performance}
mkdir -p "$sFolder"
bench/peers/run.sh --json "$sFolder/peers.json" >"$sFolder/peers.txt" 2>"$sFolder/peers.log"
cmake build/peers -DLUMOR_BUILD_BENCH=ON >/dev/null
cmake --build build/peers -j "$(nproc)" >>build/peers.log

quietly() { # NAME ARGUMENTS...
    local sName=$1
    shift
    bench/quietly.py --tries 5 "build/peers/lumor-bench-$sName" "$@" >"$sFolder/$sName.txt"
}
quietly frames --benchmark_out="$sFolder/frames.json"
quietly passes --benchmark_out="$sFolder/passes.json"
quietly geometry
quietly buffers --benchmark_min_time=3
quietly replay
quietly cameras
quietly start
bench/count_instructions.sh build/peers >"$sFolder/instructions.txt"

bench/tables.py engines "$sFolder/peers.json"
for sKind in peers frames passes; do
    echo
    bench/tables.py "$sKind" "$sFolder/$sKind.json"
done
for sKind in geometry buffers replay cameras start instructions; do
    printf '\n%s:\n' "$sKind"
    cat "$sFolder/$sKind.txt"
done
