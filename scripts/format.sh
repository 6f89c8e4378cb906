#!/bin/sh
# Formats the tree's C++ sources with the layout .clang-format describes.
#   scripts/format.sh            format every tracked source in place
#   scripts/format.sh FILE...    format only these files
#   scripts/format.sh --check    change nothing; list each file that is not formatted, exit 1 if any
# One clang-format release is pinned: two releases lay out the same code differently, and a
# check that depends on whichever happens to be installed would fail on another machine.
set -e
cd "$(dirname "$0")/.."
format=clang-format-14
command -v "$format" >/dev/null 2>&1 || scripts/setup.sh
command -v "$format" >/dev/null 2>&1 || { echo "format: $format is missing" >&2; exit 2; }

check=0
if [ "$1" = "--check" ]; then
  check=1
  shift
fi
if [ $# -eq 0 ]; then
  set -- $(git ls-files '*.cpp' '*.h')
fi

if [ $check -eq 0 ]; then
  "$format" -i --style=file "$@"
  exit 0
fi

unformatted=0
for file in "$@"; do
  if ! "$format" --style=file --dry-run --Werror "$file" >/dev/null 2>&1; then
    echo "format: not formatted: $file (run scripts/format.sh $file)"
    unformatted=$((unformatted + 1))
  fi
done
echo "format: $# files checked, $unformatted not formatted"
[ $unformatted -eq 0 ]
