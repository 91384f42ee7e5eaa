#!/bin/sh
# package_test.sh BUILD SOURCE: installs the build to a prefix of its own, builds the examples that
# use it, looks up every value of a file of 100,000 records, and as many that are not in it, and
# scans texts with them.
set -eu
build=$1
source=$2
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$place"
prefix=$place/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

echo 'Every installed header stands by itself'
find "$prefix/include/dsmake" -name '*.hpp' | grep -q .
for header in $(cd "$prefix/include/dsmake" && find . -name '*.hpp'); do
    echo "#include \"$header\"" | c++ -std=c++20 -Wall -Werror -fsyntax-only \
        -I "$prefix/include/dsmake" -x c++ -
done

echo 'The examples build with the package'
for example in lookup scan; do
    cmake -S "$source/examples/$example" -B $example -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
    cmake --build $example >/dev/null
done
PATH=$place/lookup:$place/scan:$PATH

exits() { # STATUS COMMAND...
    wanted=$1
    shift
    status=0
    "$@" || status=$?
    test $status = "$wanted"
}

echo 'Every value is found'
awk 'BEGIN { for (i = 0; i < 100000; ++i) print "A b" i "\tc" }' >input
"$prefix/bin/dsmake" -k Name -s 'Name,SimpleNC;Place,Simple' -i input -o data
# Header and field list take 64 bytes; each record 29: two counts, three values, the closing byte.
awk 'BEGIN { for (i = 0; i < 100000; ++i) print "Name \"a B" i "\": 1 record (" 64 + 29 * i ")" }' >expected
awk 'BEGIN { for (i = 0; i < 100000; ++i) print "\ta B" i "\r" }' | lookup data Name >found
cmp expected found

echo 'No other value is found, and nothing is no fault'
awk 'BEGIN { for (i = 1; i < 100000; ++i) print "Name \"a b" i "x\": 0 records"
    print "Name \"\": 0 records" }' >expected
awk 'BEGIN { for (i = 1; i < 100000; ++i) print "a b" i "x"; print " \r" }' >values
exits 1 lookup data Name <values >found
cmp expected found

echo 'Both tell what they have found'
test "$(lookup data)" = 'data: 100000 records of 2 fields; the file checks out
  Name, SimpleNC, key
  Place, Simple'
printf '\357\273\277A\r\n B7 is at c' >'a text'
test "$(scan data 'a text')" = 'a text:1: Name "A B7", 2 of 2 fields: Name Place (record 267)'
test "$(scan data - <'a text')" = '-:1: Name "A B7", 2 of 2 fields: Name Place (record 267)'
exits 1 scan -m 3 data 'a text'

echo 'Faults are told, each with its file, and other texts are scanned all the same'
printf 'A B7 c, cut: \303' >half
awk 'BEGIN { for (i = 0; i <= 15000000; ++i) printf "a " }' >long
for command in 'lookup data Place c' 'lookup input' 'lookup none Name x' 'lookup' 'scan data' \
    'scan -m 0 data long' 'scan -x data long' 'scan input long' 'scan none long' \
    'scan data long half none .'; do
    # shellcheck disable=SC2086  # words
    exits 2 $command >out 2>>message
    test ! -s out
done
exits 2 scan data none 'a text' >found 2>>message
grep -q 'B7' found
cat >expected <<'END'
data: no such key: Place
input: 0xC2012521: 'input' is no data set file, or it is cut short. Check the name, or build the file again.
none: 0xC2012515: The data set file is not open or cannot be opened. Check its name and that you may read it.
usage: lookup FILE [KEY [VALUE]]
usage: scan [-m N] DATASET TEXT...
usage: scan [-m N] DATASET TEXT...
usage: scan [-m N] DATASET TEXT...
input: 0xC2012521: 'input' is no data set file, or it is cut short. Check the name, or build the file again.
none: 0xC2012515: The data set file is not open or cannot be opened. Check its name and that you may read it.
long: more than 15,000,000 words and marks; split it
half: no UTF-8 in line 1
none: No such file or directory
.: Is a directory
none: No such file or directory
END
cmp expected message
exits 2 scan data 'a text' >/dev/full 2>message
grep -q '^standard output: ' message
