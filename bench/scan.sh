#!/bin/sh
# scan.sh [RECORDS [MEGABYTES]]: measures scanning a text of 50 MB, by default, for 1,000,000 records,
# 2,000 of which were put in, as one text and as mails of 50 KB; beside grep and rg with the surnames as
# patterns, and a set of Python's. CPU time and peak memory. Works under build/bench.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
records=${1:-1000000}
megabytes=${2:-50}
"$root/tools/setup.sh" g++ cmake ninja-build python3 ripgrep:rg libbenchmark-dev libsqlite3-dev libcdb-dev
cd "$root"
cmake --preset bench >/dev/null
cmake --build --preset bench --target dsmake dsscan >/dev/null
dsscan=$root/build/bench/src/dsscan/dsscan

mkdir -p "build/bench/$records/scan"
cd "build/bench/$records/scan"
if [ ! -e mails ]; then
    python3 "$root/bench/make_records.py" ascii "$records" input.tsv
    for key in Surname CardNum; do
        rm -f $key.ds
        "$root/build/bench/src/driver/dsmake" -k $key -i input.tsv -o $key.ds \
            -s 'FirstName,Simple;Surname,SimpleNC;CardNum,CCNUMBER'
    done
    cut -f 2 input.tsv | sort -u >surnames
    python3 "$root/bench/make_text.py" input.tsv "$megabytes" 2000 text
    echo hello >letter
    mkdir -p mails.new
    split -a 5 -C 50k text mails.new/mail
    mv mails.new mails
fi
measure() { "$root/bench/measure.py" "$@"; }
echo "$records records, $(wc -l <surnames) surnames; $(wc -w <text) words in $(wc -c <text) bytes"
echo "found of 2000: $("$dsscan" -m 3 -c Surname.ds text)"
measure 'dsscan, key Surname' "$dsscan" -m 3 Surname.ds text
measure 'the same as mails' "$dsscan" -m 3 Surname.ds mails
measure 'dsscan, key CardNum' "$dsscan" -m 3 CardNum.ds text
measure 'a letter of one word' "$dsscan" Surname.ds letter
measure 'grep -owF with the surnames' env LC_ALL=C grep -owF -f surnames text
measure 'grep -oF' env LC_ALL=C grep -oF -f surnames text
measure 'rg -owF' rg --no-config -a -owF -f surnames text
measure "Python's split and set" python3 -c '
names = set(open("surnames").read().split())
print(sum(word in names for line in open("text") for word in line.split()))'
