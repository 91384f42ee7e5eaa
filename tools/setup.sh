#!/bin/sh
# setup.sh PACKAGE[:COMMAND] ...: installs the Debian packages that are not there yet. Needs root
# only then. A package whose COMMAND is found counts as there, so that other systems will do as well.
set -eu
missing=''
for each in "$@"; do
    package=${each%%:*}
    command=${each#"$package"}
    if [ -n "$command" ] && command -v "${command#:}" >/dev/null; then continue; fi
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
        missing="$missing $package"
done
[ -n "$missing" ] || exit 0
if ! command -v apt-get >/dev/null; then
    echo "Missing, by the names of Debian's packages; install them first:$missing" >&2
    exit 1
fi
if [ "$(id -u)" -ne 0 ]; then
    echo "Missing packages; install them first: apt-get install$missing" >&2
    exit 1
fi
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
apt-get update -q >/dev/null
# shellcheck disable=SC2086  # a list of words
apt-get install -q -y --no-install-recommends $missing >/dev/null
