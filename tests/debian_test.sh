#!/bin/sh
# debian_test.sh BUILD SOURCE: makes the Debian packages, twice, looks at what they hold, and does what
# README.md shows with the programs in them. Left out (77) where Debian's tools are not there, and in
# builds that are not meant for packages.
set -eu
build=$1
source=$2
for tool in dpkg-deb dpkg-shlibdeps ar file bash; do
    command -v $tool >/dev/null || exit 77
done
grep -q '^CMAKE_INSTALL_PREFIX:PATH=/usr$' "$build/CMakeCache.txt" || exit 77
if grep -q '^BUILD_SHARED_LIBS:.*=ON$' "$build/CMakeCache.txt"; then exit 77; fi
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
cd "$build"

echo 'The same packages whatever the time, the folder and the umask'
export SOURCE_DATE_EPOCH=1700000000
(umask 077 && cpack -B "$place/first" >/dev/null)
(umask 002 && cpack -B "$place/second" >/dev/null)
cd "$place"
for package in first/*.deb; do
    dpkg-deb -f "$package" Package
    for part in control.tar.gz data.tar.gz; do # the archive around these has the umask itself
        ar p "$package" $part >one
        ar p "second/${package#first/}" $part | cmp - one
    done
done | xargs >names
test "$(cat names)" = 'dsmake libdsmake-dev libdsmake22 python3-dsmake'

echo 'Each file is in its package'
holds() { # PACKAGE FILE...
    dpkg-deb -c first/"$1"_*.deb | sed 's/.* \.//' >list
    shift
    for file in "$@"; do
        grep -q "$file\$" list || { echo "not there: $file"; exit 1; }
    done
}
folder=/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)
completions=/usr/share/bash-completion/completions
holds dsmake /usr/bin/dsmake /usr/bin/dsscan /usr/bin/dslookup man1/dsscan.1.gz man5/dsmake.5.gz \
    $completions/dslookup doc/dsmake/changelog.gz doc/dsmake/docs/from-table-to-find.svg
holds libdsmake22 "$folder/libdsmake.so.22.8.0" doc/libdsmake22/copyright
holds libdsmake-dev "$folder/libdsmake.a" "$folder/libdsmake.so -> libdsmake.so.22" \
    "$folder/pkgconfig/dsmake.pc" cmake/dsmake/dsmakeConfig.cmake include/dsmake/dsmake.h lookup.cpp
holds python3-dsmake /usr/bin/dsprepare /usr/bin/dsextract dist-packages/dsmake/__init__.py \
    man1/dsprepare.1.gz $completions/dsprepare
version=$(dpkg-deb -f first/libdsmake22_*.deb Version)
dpkg-deb -f first/libdsmake-dev_*.deb Depends | grep -qF "libdsmake22 (= $version)"
dpkg-deb -f first/python3-dsmake_*.deb Depends | grep -q 'python3, libdsmake22'
dpkg-deb -I first/libdsmake22_*.deb shlibs | grep -q '^libdsmake 22 libdsmake22 '

if command -v lintian >/dev/null; then
    echo 'No faults by the rules of Debian'
    lintian --tag-display-limit 0 first/*.deb >faults 2>/dev/null || true
    if grep '^E:' faults; then exit 1; fi
fi

echo 'What README.md shows works with them'
for package in first/*.deb; do
    dpkg-deb -x "$package" root
done
find root/usr/share/man -type f -exec gzip -t {} +
PATH=$place/root/usr/bin:$PATH
unset DSMAKE_LIBRARY DSMAKE DSSCAN DSLOOKUP
python3 -B "$source/python/tests/test_readme.py" 2>message || { cat message; exit 1; }
PYTHONPATH=root/usr/lib/python3/dist-packages python3 -B -c 'import dsmake; print(dsmake.version())' \
    >printed
test "$(dsextract --version)" = "dsextract $(cat printed)"
test "$(dsprepare --version)" = "dsprepare $(cat printed)"
case $version in "$(cat printed)"-*) ;; *) exit 1 ;; esac

echo 'Completions complete'
printf 'a\tb\n' >in
dsmake -k Name -s 'Name,Simple;Place,Simple' -i in -o data
completed() { # WORDS...
    bash -c '. "root'$completions'/$1"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMPREPLY=()
        "_$1"; echo "${COMPREPLY[@]}"' bash "$@"
}
test "$(completed dsmake -s "'Name,Simple;Place,Simple'" -k P)" = Place
test "$(completed dslookup data '')" = Name
test "$(completed dsscan --cou)" = --count
test "$(completed dsscan --encoding ISO-8859-15)" = ISO-8859-15
test "$(completed dsprepare --header '')" = 'yes no'
test "$(completed dsextract --l)" = --limit
