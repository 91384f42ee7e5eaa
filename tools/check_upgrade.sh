#!/bin/sh
# check_upgrade.sh [RECORDS]: makes a file of version 1, by default of 1,000,000 records, upgrades it
# and compares the result, byte for byte, with the file built from the same texts. Works under
# build/bench.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
records=${1:-1000000}
"$root/tools/setup.sh" g++ cmake ninja-build libgtest-dev unicode-data bzip2 python3
cd "$root"
cmake --preset release >/dev/null
cmake --build --preset release --target dsmake make_version1 >/dev/null

data=$root/build/bench/$records
mkdir -p "$data"
cd "$data"
[ -e mixed.tsv ] || python3 "$root/bench/make_records.py" mixed "$records" mixed.tsv
rm -f old.ds upgraded.ds built.ds
set -- -k Surname -k CardNum -s 'FirstName,Simple;Surname,SimpleNC;CardNum,CCNUMBER' -i mixed.tsv
"$root/build/release/tools/make_version1" "$@" -o old.ds
"$root/build/release/src/driver/dsmake" "$@" -o built.ds
"$root/build/release/src/driver/dsmake" -u -i old.ds -o upgraded.ds
cmp built.ds upgraded.ds
echo "$records records: equal, $(wc -c <built.ds) bytes"
rm old.ds upgraded.ds built.ds
