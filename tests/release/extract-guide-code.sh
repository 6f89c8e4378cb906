#!/bin/sh
# Writes the C++ blocks of the integration guide (fenced as ```cpp) into one source file, so
# that the guide's host code is compiled and run by the release tests.
set -e
awk '/^```cpp$/ { code = 1; next } /^```$/ { code = 0; next } code' "$1" > "$2.new"
mv "$2.new" "$2"
