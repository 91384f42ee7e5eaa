#!/bin/sh
# check_processors.sh [RECORDS]: builds dsmake for processors of another width or byte order, runs it
# in an emulator, and compares files, lookups, scans and an upgrade with those of this machine, by default
# of 20,000 records of several scripts. Works under build/processors.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
records=${1:-20000}
work=$root/build/processors
"$root/tools/setup.sh" g++ cmake ninja-build python3 libgtest-dev unicode-data bzip2 g++-aarch64-linux-gnu \
    g++-s390x-linux-gnu g++-i686-linux-gnu qemu-user:qemu-s390x

# build NAME [OPTION ...]: dsmake, dslookup and dsscan for it, optimised no more than the test needs.
build() {
    name=$1
    shift
    cmake -G Ninja -S "$root" -B "$work/$name" -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_FLAGS=-O1 \
        "$@" >"$work/$name.log" &&
        cmake --build "$work/$name" --target dsmake dslookup dsscan >>"$work/$name.log" || {
        cat "$work/$name.log"
        return 1
    }
}

# answers NAME [EMULATOR ...]: what its programs make of the inputs, all in one folder.
answers() {
    programs=$work/$1
    mkdir -p "$work/$1.out"
    cd "$work/$1.out"
    rm -f ./*.ds
    shift
    "$@" "$programs/src/driver/dsmake" -k Surname -k CardNum -i "$work/customers.tsv" \
        -s 'FirstName,Simple;Surname,SimpleNC;City,SimpleNC;CardNum,CCNUMBER' -o customers.ds
    "$@" "$programs/src/driver/dsmake" -k Surname -k CardNum -i "$work/mixed.tsv" \
        -s 'FirstName,Simple;Surname,SimpleNC;CardNum,CCNUMBER' -o mixed.ds
    "$@" "$programs/src/driver/dsmake" -u -i "$work/old.ds" -o upgraded.ds
    cut -f 2 "$work/mixed.tsv" | head -n 2000 >surnames
    for file in mixed.ds upgraded.ds; do
        "$@" "$programs/src/dslookup/dslookup" $file Surname <surnames >$file.found
    done
    "$@" "$programs/src/dsscan/dsscan" -m 3 mixed.ds "$work/mixed.tsv" >finds
    "$@" "$programs/src/dsscan/dsscan" customers.ds "$root/examples/letter.txt" >>finds
    cd "$root"
}

mkdir -p "$work"
[ -e "$work/mixed.tsv" ] || python3 "$root/bench/make_records.py" mixed "$records" "$work/mixed.tsv"
python3 -c 'import csv, sys
for row in list(csv.reader(sys.stdin))[1:]: print(*row, sep="\t")' \
    <"$root/examples/customers.csv" >"$work/customers.tsv"
build native -DDSMAKE_TESTS=ON
cmake --build "$work/native" --target make_version1 >>"$work/native.log"
"$work/native/tools/make_version1" -k Surname -i "$work/mixed.tsv" -o "$work/old.ds" \
    -s 'FirstName,Simple;Surname,SimpleNC;CardNum,CCNUMBER'
answers native
for target in aarch64:aarch64 s390x:s390x i686:i386; do
    name=${target%:*}
    triple=$name-linux-gnu
    build "$name" -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR="$name" \
        -DCMAKE_CXX_COMPILER="$triple-g++" -DCMAKE_EXE_LINKER_FLAGS=-static
    answers "$name" "qemu-${target#*:}"
    diff -r "$work/native.out" "$work/$name.out"
    echo "$name: the same"
done
