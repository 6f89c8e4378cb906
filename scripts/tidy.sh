#!/bin/sh
# Runs clang-tidy with the checks of .clang-tidy over the service (src/), the logging library
# (host/logging) and the reference host (host/xelto-host), on the GCC build's compile database
# (build/compile_commands.json; configured here when it is missing). Prints every finding and
# exits non-zero when there is any (or when clang-tidy cannot parse a source).
#
# Usage: scripts/tidy.sh [SOURCE...]   (default: every source of the three parts in the database)
# Environment: CLANG_TIDY (default clang-tidy-14), TIDY_BUILD_DIR (default build),
#              TIDY_JOBS (default: the number of processors).
set -eu
cd "$(dirname "$0")/.."
root=$(pwd)
build=${TIDY_BUILD_DIR:-build}
gxx=x86_64-w64-mingw32-g++-posix
TIDY=${CLANG_TIDY:-clang-tidy-14}
export TIDY

command -v "$TIDY" >/dev/null || { echo "tidy: $TIDY not found (Debian package clang-tidy-14)" >&2; exit 2; }
command -v "$gxx" >/dev/null || { echo "tidy: $gxx not found" >&2; exit 2; }
[ -f "$build/compile_commands.json" ] || cmake --preset mingw >/dev/null
TIDY_DATABASE=$(realpath "$build")
export TIDY_DATABASE

# The database holds the MinGW GCC's command lines. Clang parses them once told the target
# and, Clang 14 being unable to find them itself, the MinGW libstdc++ include folders: the
# ones this GCC searches, asked from it so that its version is written down nowhere. Warning
# options that only GCC knows are not Clang's business.
TIDY_ARGS="--extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-Wno-unknown-warning-option"
for dir in $("$gxx" -E -x c++ -v /dev/null 2>&1 | sed -n 's|^ \(/.*/include/c++[^ ]*\)$|\1|p'); do
    TIDY_ARGS="$TIDY_ARGS --extra-arg=-isystem$(realpath "$dir")"
done
# Findings in the project's own headers count too, wherever they are included from.
TIDY_ARGS="$TIDY_ARGS --header-filter=^$root/(src|host|include)/"
export TIDY_ARGS

TIDY_OUT=$(mktemp -d)
export TIDY_OUT
trap 'rm -rf "$TIDY_OUT"' EXIT

if [ $# -gt 0 ]; then
    for source in "$@"; do realpath "$source"; done
else
    # Every source once (the bench compiles one service source a second time).
    sed -n 's|^ *"file": *"\(.*\)",\{0,1\}$|\1|p' "$build/compile_commands.json" |
        grep -E "^$root/(src|host/logging|host/xelto-host)/"
fi | sort -u >"$TIDY_OUT/sources"

start=$(date +%s)
# One clang-tidy per source, each into its own report; the reports are then read in source
# order, so the output does not depend on which job ends first.
xargs -P "${TIDY_JOBS:-$(nproc)}" -I{} sh -c '
    report="$TIDY_OUT/$(echo "$1" | tr / _)"
    "$TIDY" --quiet -p "$TIDY_DATABASE" $TIDY_ARGS "$1" >"$report.out" 2>"$report.err"
    echo $? >"$report.rc"
' tidy {} <"$TIDY_OUT/sources"

failed=0
while read -r source; do
    report="$TIDY_OUT/$(echo "$source" | tr / _)"
    if [ "$(cat "$report.rc")" != 0 ] && ! grep -q ': \(warning\|error\):' "$report.out"; then
        echo "tidy: clang-tidy failed on $source:" >&2
        cat "$report.err" >&2
        failed=1
    fi
    cat "$report.out"
done <"$TIDY_OUT/sources" >"$TIDY_OUT/all"

# A header's finding is reported by every source that includes it: each finding once, with
# the lines that explain it.
awk '
    /: (warning|error): / { keep = !seen[$0]++; if (keep) findings++ }
    keep { print }
    END { printf "%d\n", findings > "/dev/stderr" }
' "$TIDY_OUT/all" 2>"$TIDY_OUT/count"
count=$(cat "$TIDY_OUT/count")
echo "tidy: $(wc -l <"$TIDY_OUT/sources") sources, $count findings, $(( $(date +%s) - start )) s ($TIDY)"
[ "$count" -eq 0 ] && [ "$failed" -eq 0 ]
