#!/bin/sh
# Sets up what is missing, builds everything with the address and undefined-behaviour sanitizers
# and warnings as errors, and runs every test.
set -eu
cd "$(dirname "$0")"
./tools/setup.sh g++ cmake ninja-build libgtest-dev unicode-data bzip2 python3
cmake --preset debug >/dev/null
cmake --build --preset debug
ctest --preset debug -j "$(nproc)"
