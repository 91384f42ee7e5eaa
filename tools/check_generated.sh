#!/bin/sh
# Makes the generated tables again and fails when they differ from those checked in.
set -eu
cd "$(dirname "$0")/.."
python3 tools/make_unicode_tables.py
git diff --exit-code -- src/scl/text/unicode_tables.cpp
