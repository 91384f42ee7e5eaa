#!/bin/sh
# Installs the Debian packages named as arguments that are not there yet. Needs root only then.
set -eu
missing=''
for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
        missing="$missing $package"
done
[ -n "$missing" ] || exit 0
if [ "$(id -u)" -ne 0 ]; then
    echo "Missing packages; install them first: apt-get install$missing" >&2
    exit 1
fi
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
apt-get update -q >/dev/null
# shellcheck disable=SC2086  # a list of words
apt-get install -q -y --no-install-recommends $missing >/dev/null
