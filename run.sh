#!/bin/sh
# Sets up what is missing, builds dsmake (Release) and shows its use: makes a data set from the example
# customers, looks a value up in it and scans a letter for the customers.
# With arguments, passes them to dsmake instead, in the current directory.
set -eu
here=$(cd "$(dirname "$(readlink -f "$0")")" && pwd)
build=$here/build/run
program=$build/src/driver/dsmake
dslookup=$build/src/dslookup/dslookup
dsscan=$build/src/dsscan/dsscan

# A path as a shell takes it, in quotation marks only where it needs them.
quoted() {
    case $1 in
    *[!A-Za-z0-9_./+-]*) printf "'%s'" "$(printf %s "$1" | sed "s/'/'\\\\''/g")" ;;
    *) printf %s "$1" ;;
    esac
}

is_built() { [ -x "$program" ] && [ -x "$dslookup" ] && [ -x "$dsscan" ]; }

# A checkout that is built and cannot be written is used as it is.
if [ -w "$here" ] || ! is_built; then
    "$here/tools/setup.sh" g++:g++ cmake:cmake ninja-build:ninja
    [ $# -gt 0 ] || is_built ||
        echo 'Compiling dsmake, which takes about a minute the first time.'
    log=$(mktemp)
    {
        cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release
        cmake --build "$build"
    } >"$log" 2>&1 || { cat "$log" >&2; rm -f "$log"; exit 1; }
    rm -f "$log"
fi
if [ $# -gt 0 ]; then
    exec "$program" "$@"
fi

out=$here/out
mkdir -p "$out" 2>/dev/null && [ -w "$out" ] || out=$(mktemp -d)
rm -f "$out/customers.ds"
cd "$out"
schema='FirstName,Simple;Surname,SimpleNC;City,SimpleNC;CardNum,CCNUMBER'
echo "1. An index of the customers in examples/customers.tsv, who are all invented, made in $out:"
echo
echo "  dsmake -k Surname -k CardNum -s \"$schema\" -i customers.tsv -o customers.ds"
"$program" -k Surname -k CardNum -s "$schema" -i "$here/examples/customers.tsv" -o customers.ds
echo '  dslookup customers.ds'
"$dslookup" customers.ds | sed 's/^/    /'
echo
echo "   It takes $(wc -c <customers.ds) bytes and holds none of their names, only what these come to as" \
    'numbers.'

echo
echo "2. Is there a customer of this name? Capitals make no difference in a surname:"
echo
echo "  dslookup customers.ds Surname \"o'brien\""
"$dslookup" customers.ds Surname "o'brien" | sed 's/^/    /'

echo
echo '3. Does this letter hold any of them?'
echo
echo '  dsscan customers.ds letter.txt'
cd "$here/examples"
found=$("$dsscan" "$out/customers.ds" letter.txt)
echo "$found" | sed 's/^/    /'
cat <<END

   It holds three, each with a surname and two fields more. The one in line 8 stands there in
   capitals, the name in line 11 goes over a line's end and its card number is written in groups,
   and line 16 is Chinese, without blanks between the words. What only comes near, such as a Mr
   Wrighton, a Smith without a first name, and a card number with two digits exchanged, is left out.

Try next:
  less $(quoted "$here/examples/letter.txt")
  $(quoted "$dsscan") -m 1 $(quoted "$out/customers.ds") $(quoted "$here/examples/letter.txt")
      # also says who shares no more than the surname
  echo 'Karl-Heinz Groß was here.' | $(quoted "$dsscan") $(quoted "$out/customers.ds") -
  $(quoted "$here/run.sh") -k Name -s 'Name,SimpleNC' -i YOURS.txt -o yours.ds
      # README.md says what may stand in such a file, docs/scanning.md what a scan finds
END
