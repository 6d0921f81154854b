#!/usr/bin/env bash
# Builds the thread tests with ThreadSanitizer and runs them: a control thread and a rendering thread on one
# dewarper, 10,000 control calls, with either engine; many dewarpers of the processor engine at once, which share
# its pool. Usage: tests/soak/run_tsan.sh [BUILD_FOLDER]
set -eu
cd "$(dirname "$0")/../.."
sBuild=${1:-build/thread}
cmake -S . -B "$sBuild" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLUMOR_BUILD_TESTS=ON -DLUMOR_BUILD_TOOLS=OFF \
    -DLUMOR_SANITIZE=thread >/dev/null
cmake --build "$sBuild" --target CPUThreadsTest CPUPathsTest ThreadsGLTest
export TSAN_OPTIONS="suppressions=$PWD/tests/soak/tsan.supp halt_on_error=0 exitcode=1"
"$sBuild/tests/CPUThreadsTest"
"$sBuild/tests/CPUPathsTest" --gtest_filter='Threads.*'
EGL_PLATFORM=surfaceless "$sBuild/tests/ThreadsGLTest"
