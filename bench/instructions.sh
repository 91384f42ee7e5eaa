#!/bin/sh
# instructions.sh [RECORDS]: counts the instructions of building RECORDS (by default 20,000) and
# eight times as many records, without those of sorting. The count may not grow by more than 8.16:
# what a record costs does not depend on how many there are.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$here/..
few=${1:-20000}
many=$((few * 8))
"$root/tools/setup.sh" g++ cmake ninja-build python3 valgrind
cmake -S "$root" -B "$root/build/run" -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build "$root/build/run" --target dsmake >/dev/null

work=$root/build/bench/instructions
mkdir -p "$work"
cd "$work"

count() { # RECORDS
    [ -e "$1.tsv" ] || python3 "$here/make_records.py" ascii "$1" "$1.tsv"
    rm -f out
    valgrind --tool=callgrind --callgrind-out-file="$1.callgrind" "$root/build/run/src/driver/dsmake" \
        -s 'FirstName,Simple;Surname,SimpleNC;CardNum,CCNUMBER' -k Surname -i "$1.tsv" -o out \
        >"$1.log" 2>&1
    callgrind_annotate --threshold=100 --show=Ir "$1.callgrind" >"$1.functions"
    # Lines are a count, its share, FILE:FUNCTION and [PROGRAM].
    awk '{ count = $1; gsub(",", "", count); sub(/ \[.*/, "") }
        /PROGRAM TOTALS/ { total = count }
        /%\)/ && tolower($0) ~ /sort/ { sorting += count }
        END { printf "%.0f %.0f\n", total - sorting, sorting }' "$1.functions"
}

# shellcheck disable=SC2046  # two numbers each
set -- $(count "$few") $(count "$many")
echo "$few records: $1 instructions, and $2 in sorting"
echo "$many records: $3 instructions, and $4 in sorting"
awk -v few="$1" -v many="$3" 'BEGIN {
    printf "growth: %.2f, at most 8.16\n", many / few
    exit many / few > 8.16 }'
