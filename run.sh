#!/bin/sh
# Sets up what is missing, builds dsmake (Release) and makes a data set from the example customers.
# With arguments, passes them to dsmake instead, in the current directory.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
"$here/tools/setup.sh" g++ cmake ninja-build
program=$here/build/run/src/driver/dsmake
[ $# -gt 0 ] || echo 'Compiling dsmake, which takes about a minute the first time.'
{
    cmake -S "$here" -B "$here/build/run" -G Ninja -DCMAKE_BUILD_TYPE=Release
    cmake --build "$here/build/run"
} >"$here/build-log.txt" 2>&1 || { cat "$here/build-log.txt" >&2; exit 1; }
rm -f "$here/build-log.txt"
if [ $# -gt 0 ]; then
    exec "$program" "$@"
fi

out=$here/out
mkdir -p "$out"
rm -f "$out/customers.ds"
cd "$out"
schema='FirstName,Simple;Surname,SimpleNC;City,SimpleNC;CardNum,CCNUMBER'
echo "Building out/customers.ds from examples/customers.tsv:"
echo "  dsmake -k Surname -k CardNum -s \"$schema\" -i examples/customers.tsv -o out/customers.ds"
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
