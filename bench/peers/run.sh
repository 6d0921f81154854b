#!/usr/bin/env bash
# Installs FFmpeg's, OpenCV's and GStreamer's packages where they are missing (as root), builds the comparison
# and runs it: bench/peers/run.sh [--rounds N] [--patience SECONDS] [--threads N] [--only TEXT] [--json FILE]
# LUMOR_CPU_TARGET=plain|baseline|AVX2|AVX-512 in the environment chooses the processor engine's instructions; without it the
# best there are. The first line of the report tells which were taken.
set -eu
sHere=$PWD
cd "$(dirname "$0")/../.."
. tools/setup/packages.sh
install_missing $BUILD_PACKAGES nlohmann-json3-dev libavfilter-dev \
    libopencv-core-dev libopencv-imgproc-dev libopencv-calib3d-dev \
    libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev gstreamer1.0-plugins-base gstreamer1.0-gl

mkdir -p build
if ! { cmake -S . -B build/peers -G Ninja -DCMAKE_BUILD_TYPE=Release -DLUMOR_BUILD_TOOLS=OFF \
    -DLUMOR_BUILD_PEERS=ON && cmake --build build/peers -j "$(nproc)" --target lumor-bench-peers; } \
    >build/peers.log 2>&1; then
    tail -n 40 build/peers.log >&2
    echo "The build failed; the lines above (from build/peers.log) say why." >&2
    exit 1
fi
sProgram=$PWD/build/peers/lumor-bench-peers
cd "$sHere"
exec "$sProgram" "$@"
