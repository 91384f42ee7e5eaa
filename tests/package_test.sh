#!/bin/sh
# package_test.sh BUILD SOURCE: installs the build to a prefix of its own, builds the examples that
# use it, looks up every value of a file of 100,000 records, and as many that are not in it, and
# scans texts.
set -eu
build=$1
source=$2
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$place"
prefix=$place/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

echo 'The examples build with the package'
for example in lookup scan; do
    cmake -S "$source/examples/$example" -B $example -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
    cmake --build $example >/dev/null
done
PATH=$prefix/bin:$place/lookup:$place/scan:$PATH

exits() { # STATUS COMMAND...
    wanted=$1
    shift
    status=0
    "$@" || status=$?
    test $status = "$wanted"
}

echo 'Every value is found'
awk 'BEGIN { for (i = 0; i < 100000; ++i) print "A b" i "\tc" }' >input
dsmake -k Name -s 'Name,SimpleNC;Place,Simple' -i input -o data
# Header and field list take 64 bytes; each record 29: two counts, three values, the closing byte.
awk 'BEGIN { for (i = 0; i < 100000; ++i) print "Name \"a B" i "\": 1 record (" 64 + 29 * i ")" }' >expected
awk 'BEGIN { for (i = 0; i < 100000; ++i) print "\ta B" i "\r" }' | dslookup data Name >found
cmp expected found

echo 'No other value is found, and nothing is no fault'
awk 'BEGIN { for (i = 1; i < 100000; ++i) print "Name \"a b" i "x\": 0 records"
    print "Name \"\": 0 records" }' >expected
awk 'BEGIN { for (i = 1; i < 100000; ++i) print "a b" i "x"; print " \r" }' >values
exits 1 dslookup data Name <values >found
cmp expected found

echo 'Both tell what they have found'
test "$(dslookup data)" = 'data: 100000 records of 2 fields; the file checks out
  Name, SimpleNC, key
  Place, Simple'
printf '\357\273\277A\r\n B7 is at c' >'a text'
test "$(dsscan data 'a text')" = 'a text:1: Name "A B7", 2 of 2 fields: Name Place (record 267)'
test "$(dsscan data - <'a text')" = '-:1: Name "A B7", 2 of 2 fields: Name Place (record 267)'
exits 1 dsscan -w 0 data 'a text'

echo 'The examples show the same'
test "$(lookup data Name 'a b7 ')" = 'record 267: Name 2 Place 1'
exits 1 lookup data Name x
test "$(scan data 'a text' data)" = 'a text:
  line 1: Name "A\x0D\x0A B7" and 1 other fields of record 267
data:'
exits 2 lookup data "$(printf 'Place\033[1m')" c 2>message
exits 2 scan none 'a text' 2>>message

printf 'a\n' >one
dsmake -k "$(printf 'a\033[1m')" -s "$(printf 'a\033[1m,Simple')" -i one -o named
test "$(lookup named "$(printf 'a\033[1m')" a)" = 'record 48: a\x1B[1m 1'

echo 'Faults are told, each with its file, and other texts are scanned all the same'
for command in 'dslookup data Place c' 'dslookup data Name' 'dslookup input' 'dslookup none Name x' \
    'dslookup' 'dslookup -x data' 'dsscan input long'; do
    # shellcheck disable=SC2086  # words
    exits 2 $command >out 2>>message </
    test ! -s out
done
exits 2 dslookup data >/dev/full 2>>message
cat >expected <<'END'
no such key: Place\x1B[1m
none: 0xC2012515: The data set file is not open or cannot be opened. Check its name and that you may read it.
data: no such key: Place; its keys: Name
standard input: Is a directory
input: 0xC2012521: 'input' is no data set file, or it is cut short. Check the name, or build the file again.
none: 0xC2012515: The data set file is not open or cannot be opened. Check its name and that you may read it.
usage: dslookup FILE [KEY [VALUE]]
Try 'dslookup --help'.
dslookup: invalid option -- 'x'
Try 'dslookup --help'.
input: 0xC2012521: 'input' is no data set file, or it is cut short. Check the name, or build the file again.
standard output: No space left on device
END
cmp expected message
for program in dslookup dsscan; do
    test "$($program --version)" = "$program $(pkg-config --modversion "$(find "$prefix" -name dsmake.pc)")"
    $program --help | grep -q "^usage: $program"
done
