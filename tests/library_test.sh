#!/bin/sh
# library_test.sh BUILD SOURCE SHARED: installs the build to a prefix of its own, moves that, and
# uses the library from there in C++ and C; looks at what the shared library SHARED shows.
set -eu
build=$1
source=$2
shared=$3
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$place"
cmake --install "$build" --prefix "$place/first" >/dev/null
mv first moved
headers=$place/moved/include/dsmake
PKG_CONFIG_PATH=$(dirname "$(find "$place/moved" -name dsmake.pc)")
export PKG_CONFIG_PATH

echo 'Every installed header stands by itself, and says that it is one'
strict='-Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wold-style-cast -Werror'
find "$headers" -name '*.h*' >header_list
grep -q . header_list
xargs grep -L 'visibility push(default)' <header_list >unmarked
cmp /dev/null unmarked
for compiler in g++ clang++; do
    command -v $compiler >/dev/null || continue
    # shellcheck disable=SC2086  # words
    xargs -P "$(nproc)" -I '{}' $compiler -std=c++20 $strict -fsyntax-only -I "$headers" -x c++ \
        -include '{}' /dev/null <header_list
done

echo 'Nothing but what they declare is visible outside'
nm -D --defined-only -C "$shared" | cut -d ' ' -f 3- | grep -v '^DSMAKE_22$' >versioned
if grep -v '@@DSMAKE_22$' versioned; then exit 1; fi
sed -E 's/@@.*//; s/^(vtable|typeinfo|typeinfo name) for //' versioned >symbols
grep -q '^dsmake_find$' symbols
while read -r symbol; do
    name=$(echo "$symbol" | grep -oE '(^|[ *&])([a-z]+::)+[A-Za-z_0-9]+|^dsmake_[a-z_]+' | head -n 1)
    echo "${name##*[: ]}"
done <symbols | sort -u >names
while read -r name; do
    test -n "$name" && grep -rqw "$name" "$headers" || { echo "visible: '$name'"; exit 1; }
done <names
readelf -d "$shared" | grep -q 'SONAME.*libdsmake\.so\.[0-9]*\]'

awk 'BEGIN { for (i = 0; i < 1000; ++i) print "A b" i "\tc" }' >data.tsv
moved/bin/dsmake -k Name -s 'Name,SimpleNC;Place,Simple' -i data.tsv -o data

echo 'C programs use it'
# shellcheck disable=SC2046  # words
cc -std=c99 -pedantic -Wall -Wextra -Werror "$source/tests/c_interface_test.c" -o c_test \
    $(pkg-config --cflags --libs --static dsmake)
LD_LIBRARY_PATH=$(pkg-config --variable=libdir dsmake) ./c_test data
