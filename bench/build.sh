#!/bin/sh
# build.sh [RECORDS [RUNS]]: measures building data set files, by default of 1,000,000 records and
# five times, against sort, sqlite3 and cdb on the same data. Works under build/bench.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$here/..
records=${1:-1000000}
runs=${2:-5}
"$root/tools/setup.sh" g++ cmake ninja-build python3 sqlite3 tinycdb time
cmake -S "$root" -B "$root/build/run" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$root/build/run" --target dsmake >/dev/null

data=$root/build/bench/$records
mkdir -p "$data"
for profile in ascii mixed unique dupkey same; do
    [ -e "$data/$profile.tsv" ] && continue
    python3 "$here/make_records.py" "$profile" "$records" "$data/new.tsv"
    mv "$data/new.tsv" "$data/$profile.tsv"
done
# cdb wants the key first.
awk -F '\t' '{ print $2 "\t" $1 "\t" $3 }' "$data/ascii.tsv" >"$data/ascii-by-key.tsv"

cd "$data"
exec python3 "$here/compare.py" "$root/build/run/src/driver/dsmake" "$records" "$runs"
