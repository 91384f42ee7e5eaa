#!/bin/sh
# Sets up what is missing, builds the programs (Release), says how to put them on the PATH, and shows
# their use: the way from a table of customers to those that a letter names.
# With arguments, passes them to dsmake instead, in the current directory.
set -eu
here=$(cd "$(dirname "$(readlink -f "$0")")" && pwd)
build=$here/build/run
programs=$build/bin

# A path as a shell takes it, in quotation marks only where it needs them.
quoted() {
    case $1 in
    *[!A-Za-z0-9_./+-]*) printf "'%s'" "$(printf %s "$1" | sed "s/'/'\\\\''/g")" ;;
    *) printf %s "$1" ;;
    esac
}

is_built() {
    for program in dsmake dslookup dsscan dsprepare dsextract; do
        [ -x "$programs/$program" ] || return 1
    done
    [ -e "$build/libdsmake.so.22" ]
}

# Shows how far it is on standard error, as standard output may be that of dsmake.
compile() {
    log=$(mktemp)
    cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release >"$log" 2>&1 ||
        { cat "$log" >&2; rm -f "$log"; exit 1; }
    rm -f "$log"
    if ! cmake --build "$build" -- -n | grep -q 'no work to do'; then
        echo 'Compiling dsmake, which takes a minute or two the first time.' >&2
        cmake --build "$build" >&2
    fi
    mkdir -p "$programs" # one folder for the PATH
    ln -sf ../src/driver/dsmake ../src/dslookup/dslookup ../src/dsscan/dsscan \
        ../../../python/dsprepare ../../../python/dsextract "$programs"
}

# A checkout that is built and cannot be written is used as it is.
if [ -w "$here" ] || ! is_built; then
    # make: the linker optimises with all processors by its help.
    "$here/tools/setup.sh" g++:g++ cmake:cmake make:make ninja-build:ninja python3:python3
    compile
fi
if [ $# -gt 0 ]; then
    exec "$programs/dsmake" "$@"
fi

out=$here/out
mkdir -p "$out" 2>/dev/null && [ -w "$out" ] || out=$(mktemp -d)
cd "$out"
rm -f customers.tsv customers.ds
cp "$here/examples/customers.csv" "$here/examples/letter.txt" .
PATH=$programs:$PATH
indented() { sed 's/^/    /'; }

echo "1. A table of customers, who are all invented, becomes what dsmake takes, in $out."
echo '   Only the last line of this is on standard output: the command for the next step.'
echo
echo '  dsprepare customers.csv'
command=$(dsprepare customers.csv 2>told)
{ cat told; echo "$command"; } | indented
rm -f told

echo
echo '2. That command makes an index of the customers:'
echo
echo "  $command"
eval "$command"
echo
echo "   It takes $(wc -c <customers.ds) bytes and holds none of their names, only what these come to as" \
    'numbers.'

echo
echo '3. Does this letter name any of them?'
echo
echo '  dsscan customers.ds letter.txt'
dsscan customers.ds letter.txt | indented
cat <<END

   It names three, each by a surname and two fields more. The one in line 8 stands there in
   capitals, the name in line 11 goes over a line's end and its card number is written in groups,
   and line 16 is Chinese, without blanks between the words. What only comes near, such as a Mr
   Wrighton, a Smith without a first name, and a card number with two digits exchanged, is left out.

Put the programs on the PATH:
  export PATH=$(quoted "$programs"):"\$PATH"

Try next:
  cd $(quoted "$out")
  less letter.txt
  dsscan -m 1 customers.ds letter.txt    # also says who shares no more than the surname
  dslookup customers.ds Surname "o'brien"
  echo 'Karl-Heinz Groß was here.' | dsscan customers.ds -
  dsprepare YOURS.csv                    # README.md says what stands in such a table best
END
