#!/usr/bin/env bash
# Builds the thread tests with ThreadSanitizer and runs them: a control thread and a rendering thread on one
# dewarper, 10,000 control calls. Usage: tests/soak/run_tsan.sh [BUILD_FOLDER]
set -eu
cd "$(dirname "$0")/../.."
sBuild=${1:-build/thread}
cmake -S . -B "$sBuild" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLUMOR_BUILD_TESTS=ON -DLUMOR_BUILD_TOOLS=OFF \
    -DLUMOR_SANITIZE=thread >/dev/null
cmake --build "$sBuild" --target ThreadsGLTest
EGL_PLATFORM=surfaceless TSAN_OPTIONS="suppressions=$PWD/tests/soak/tsan.supp halt_on_error=0 exitcode=1" \
    "$sBuild/tests/ThreadsGLTest"
