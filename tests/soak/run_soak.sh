#!/usr/bin/env bash
# The soak at full length, for a scheduled job: 100,000 frames or ten minutes, whichever ends later, with
# frame times asserted; then every fault of the sweeps instead of a selection.
# Usage: tests/soak/run_soak.sh [BUILD_FOLDER]      or: cmake --build BUILD_FOLDER --target soak
set -eu
cd "$(dirname "$0")/../.."
sBuild=${1:-build/soak}
if [ ! -x "$sBuild/tests/SoakGLTest" ] || [ ! -x "$sBuild/tests/CPUSoakTest" ]; then
    cmake -S . -B "$sBuild" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLUMOR_BUILD_TESTS=ON -DLUMOR_BUILD_TOOLS=OFF >/dev/null
    cmake --build "$sBuild" --target SoakGLTest ReliabilityGLTest CPUSoakTest CPUFramesTest
fi
export EGL_PLATFORM=surfaceless LIBGL_ALWAYS_SOFTWARE=1
export LUMOR_SOAK_SECONDS=${LUMOR_SOAK_SECONDS:-600} LUMOR_SOAK_FRAMES=${LUMOR_SOAK_FRAMES:-100000} LUMOR_SOAK_TIMES=1
"$sBuild/tests/SoakGLTest"
"$sBuild/tests/ReliabilityGLTest" --gtest_filter='*Fault*:*ContextLoss*:Restart*'
"$sBuild/tests/CPUSoakTest"
"$sBuild/tests/CPUFramesTest" --gtest_filter='*Fault*'
