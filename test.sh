#!/bin/sh
# Sets up what is missing, builds everything with the address and undefined-behaviour sanitizers
# and warnings as errors, and runs every test.
set -eu
cd "$(dirname "$0")"
./tools/setup.sh g++ cmake ninja-build libgtest-dev unicode-data bzip2 python3
echo 'Compiling everything with sanitizers, which takes a few minutes the first time.'
cmake --preset debug >/dev/null
cmake --build --preset debug
echo 'Running all tests.'
ctest --preset debug -j "$(nproc)"
