#!/bin/sh
# Sets up what is missing, builds dsmake (Release) and makes a data set from the example customers.
# With arguments, passes them to dsmake instead, in the current directory.
set -eu
here=$(cd "$(dirname "$(readlink -f "$0")")" && pwd)
build=$here/build/run
program=$build/src/driver/dsmake

# A checkout that is built and cannot be written is used as it is.
if [ -w "$here" ] || [ ! -x "$program" ]; then
    "$here/tools/setup.sh" g++:g++ cmake:cmake ninja-build:ninja
    [ $# -gt 0 ] || [ -x "$program" ] ||
        echo 'Compiling dsmake, which takes about a minute the first time.'
    log=$(mktemp)
    {
        cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release
        cmake --build "$build"
    } >"$log" 2>&1 || { cat "$log" >&2; rm -f "$log"; exit 1; }
    rm -f "$log"
fi
if [ $# -gt 0 ]; then
    exec "$program" "$@"
fi

out=$here/out
mkdir -p "$out" 2>/dev/null && [ -w "$out" ] || out=$(mktemp -d)
rm -f "$out/customers.ds"
cd "$out"
schema='FirstName,Simple;Surname,SimpleNC;City,SimpleNC;CardNum,CCNUMBER'
echo "Building customers.ds in $out from examples/customers.tsv:"
echo "  dsmake -k Surname -k CardNum -s \"$schema\" -i examples/customers.tsv -o customers.ds"
"$program" -k Surname -k CardNum -s "$schema" -i "$here/examples/customers.tsv" -o customers.ds

number() { # OFFSET SIZE: a little-endian number of the file, in hex
    printf '0x'
    od -An -v -tx1 -j "$1" -N "$2" customers.ds | tr -s ' ' '\n' | sed '/^$/d' | tac | tr -d '\n'
}
echo "Input:            $(wc -l <"$here/examples/customers.tsv") lines," \
    "$(wc -c <"$here/examples/customers.tsv") bytes"
echo "Data set file:    $(wc -c <customers.ds) bytes"
echo "magic:            $(head -c 8 customers.ds)"
echo "checksum:         $(number 8 8)"
echo "key_table_offset: $(number 16 8)"
echo "version:          $(number 24 2)"
echo "key_count:        $(number 26 2)"
echo "record_count:     $(number 28 4)"
