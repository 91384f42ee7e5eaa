#!/bin/sh
# check_static_init.sh [BUILD]: fails when an object of src/ that lives as long as the program has
# to be made before main or destroyed after it. Whoever links the library would pay for that at each
# start, and such code runs in an order that nobody wrote down. Constants are constinit or
# constexpr.
#
# clang tells, whatever compiler the build uses. BUILD is a configured build folder, which holds the
# generated message header; build/debug unless given.
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/debug}
git ls-files 'src/*.cpp' | xargs -P "$(nproc)" -n 4 \
    clang++ -std=c++20 -fsyntax-only -Isrc "-I$build/src/scl/status" '-DDSMAKE_VERSION="0"' \
    -Werror -Wglobal-constructors -Wexit-time-destructors
echo 'Nothing in src/ needs code before or after main.'
