#!/bin/sh
# lookup.sh [RECORDS]: measures loading a data set file, by default of 1,000,000 records, and looking
# surnames up in it, beside sqlite3 and cdb on the same data. Works under build/bench.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
records=${1:-1000000}
"$root/tools/setup.sh" g++ cmake ninja-build python3 libbenchmark-dev libsqlite3-dev sqlite3 \
    libcdb-dev tinycdb
cd "$root"
cmake --preset bench >/dev/null
cmake --build --preset bench --target dsmake lookup_bench >/dev/null

mkdir -p "build/bench/$records/lookup"
cd "build/bench/$records/lookup"
if [ ! -e others ]; then
    python3 "$root/bench/make_records.py" unique "$records" input.tsv
    rm -f data.*
    "$root/build/bench/src/driver/dsmake" -k Surname -i input.tsv -o data.ds \
        -s 'FirstName,Simple;Surname,Simple;CardNum,CCNUMBER'
    awk -F '\t' '{ print $2 "\t" $1 "\t" $3 }' input.tsv >by-key.tsv
    cdb -c -m -t data.cdb.tmp data.cdb by-key.tsv
    sqlite3 data.sqlite 'CREATE TABLE record (first TEXT, surname TEXT, card TEXT);' \
        '.mode tabs' '.import input.tsv record' 'CREATE INDEX by_surname ON record (surname);'
    cut -f 2 input.tsv | sort -R --random-source=input.tsv | head -n 50000 >values
    sed 's/$/xx/' values >others # no surname ends so
fi
"$root/build/bench/bench/lookup_bench" --benchmark_repetitions=5 \
    --benchmark_report_aggregates_only=true
