#!/bin/sh
# package_test.sh BUILD SOURCE: installs the build to a prefix of its own, builds examples/lookup
# against it and looks up every value of a file of 100,000 records, and as many that are not in it.
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

echo 'The example builds with the package'
cmake -S "$source/examples/lookup" -B example -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build example >/dev/null

echo 'Every value is found'
awk 'BEGIN { for (i = 0; i < 100000; ++i) print "A b" i "\tc" }' >input
"$prefix/bin/dsmake" -k Name -s 'Name,SimpleNC;Place,Simple' -i input -o data
# Header and field list take 64 bytes; each record 29: two counts, three values, the closing byte.
awk 'BEGIN { for (i = 0; i < 100000; ++i) print 1, 64 + 29 * i }' >expected
awk 'BEGIN { for (i = 0; i < 100000; ++i) print "a B" i }' | example/lookup data Name >found
cmp expected found
test "$(example/lookup data Name 'A b99999')" = '1 2900035'

echo 'No other value is found'
awk 'BEGIN { for (i = 0; i < 100000; ++i) print 0 }' >expected
status=0
awk 'BEGIN { for (i = 0; i < 100000; ++i) print "a b" 100000 + i }' |
    example/lookup data Name >found || status=$?
cmp expected found
test $status = 1

echo 'Faults are told'
status=0
example/lookup data Place c 2>message || status=$?
test $status = 2
test "$(cat message)" = 'no such key: Place'
status=0
example/lookup input Name x 2>message || status=$?
test $status = 2
grep -q "0xC2012521: 'input' is no data set file" message
