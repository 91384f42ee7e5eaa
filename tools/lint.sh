#!/bin/sh
# clang-tidy over every hand-written source file; any finding fails. Needs the builds of the presets
# debug and bench.
set -eu
cd "$(dirname "$0")/.."
lint() { # BUILD FILES...
    build=$1
    shift
    git ls-files "$@" | grep -v -e _tables.cpp |
        xargs -P "$(nproc)" -n 4 clang-tidy --quiet --extra-arg=-Wno-unknown-warning-option \
            -p "$build" 2>&1 |
        { ! grep -E -A 6 '(warning|error):'; }
}
lint build/debug 'src/*.cpp' 'tests/*.cpp' 'examples/*.cpp' 'fuzz/*.cpp' 'tools/*.cpp'
lint build/bench 'bench/*.cpp'
