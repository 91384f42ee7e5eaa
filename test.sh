#!/bin/sh
# Sets up what is missing, builds everything with the address and undefined-behaviour sanitizers
# and warnings as errors, and runs every test.
set -eu
cd "$(dirname "$(readlink -f "$0")")"
if [ ! -w . ]; then
    echo "test.sh: this folder must be writable, as the tests are built in it: $PWD" >&2
    exit 1
fi
./tools/setup.sh g++:g++ cmake:cmake ninja-build:ninja libgtest-dev unicode-data bzip2:bzcat python3:python3
[ -d build/debug ] ||
    echo 'Compiling everything with sanitizers, which takes a few minutes the first time.'
# Lines, which a sanitizer tells, without variables: that compiles a tenth faster. For a debugger,
# configure with -DCMAKE_CXX_FLAGS_DEBUG=-g.
cmake --preset debug -DCMAKE_CXX_FLAGS_DEBUG=-g1 >/dev/null
cmake --build --preset debug
echo 'Running all tests.'
ctest --preset debug -j "$(nproc)"
