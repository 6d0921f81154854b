#!/usr/bin/env bash
# Which lines of dewarp/ the tests run: builds everything instrumented in a folder of its own, runs the test
# programs, prints the share of every file and all together, then the lines that never ran.
# Usage: tools/coverage.sh [BUILD_FOLDER]      Fails below 95 %.
set -eu
cd "$(dirname "$0")/.."
. tools/setup/packages.sh
install_missing $TEST_PACKAGES gcovr
sBuild=${1:-build/coverage}

# Lines as they are written: nothing is optimised away or joined in the library.
cmake -S . -B "$sBuild" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O0 -g1" \
    -DCMAKE_CXX_FLAGS="--coverage -fprofile-update=atomic" -DLUMOR_BUILD_TESTS=ON >/dev/null
cmake --build "$sBuild" -j "$(nproc)" >"$sBuild/build.log" 2>&1 || { tail -n 40 "$sBuild/build.log" >&2; exit 1; }

# The long runs prove other things. What a test program reports is not this script's business either, except
# that one which fails may have left lines out.
find "$sBuild" -name '*.gcda' -delete
ctest --test-dir "$sBuild" -LE long -E consumer_test -j "$(nproc)" --output-on-failure \
    >"$sBuild/tests.log" 2>&1 || echo "Tests failed, see $sBuild/tests.log; the figures are too low." >&2

gcovr --root . --filter 'dewarp/' --object-directory "$sBuild" --exclude-unreachable-branches \
    --json-summary "$sBuild/summary.json" --txt - --fail-under-line 95 "$sBuild" 2>"$sBuild/gcovr.log"
