#!/bin/sh
# Shows that the release is reproducible: the commit checked out (HEAD, or the one given) is
# built twice from scratch, in two folders of different names, with the GCC preset, and
# packaged; the two LumavenService.dll and the two zips must be byte-identical. A vendor
# checks a zip against the tagged source the same way: run this on the tag and compare the
# zip's SHA-256 with the one received. Takes two full builds (some 10 minutes each on two
# cores), so it is run by hand, not by the test command.
#
#   scripts/reproduce.sh [COMMIT]    work folder: build/reproduce (or $LUMAVEN_REPRODUCE_DIR)
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh
commit=$(git rev-parse --verify "${1:-HEAD}^{commit}")
work=${LUMAVEN_REPRODUCE_DIR:-$PWD/build/reproduce}
# The zip's entries are dated by the commit (a checkout made by git archive has no history to
# ask). Only the package step is told: the builds themselves must not depend on any date.
epoch=$(git log -1 --format=%ct "$commit")
rm -rf "$work"
mkdir -p "$work"
for tree in first-checkout second-place; do
  echo "reproduce: building $commit in $work/$tree"
  git archive --format=tar --prefix="$tree/" "$commit" | tar -x -C "$work"
  # Tests are not part of the release; the product, the host and the simulated laptop are.
  (cd "$work/$tree" && cmake --preset mingw -DLUMAVEN_BUILD_TESTS=OFF >/dev/null &&
    nice -n 10 cmake --build --preset mingw >"$work/$tree.build.log" &&
    SOURCE_DATE_EPOCH=$epoch /usr/bin/python3 scripts/package.py build >"$work/$tree.package.log")
done
status=0
for file in bin/LumavenService.dll bin/XeltoLog.dll bin/xelto-host.exe package/Lumaven-*-win64.zip; do
  first=$(cd "$work/first-checkout/build" && sha256sum $file)
  second=$(cd "$work/second-place/build" && sha256sum $file)
  if [ "$first" = "$second" ]; then
    echo "reproduce: identical  $first"
  else
    echo "reproduce: DIFFERENT  $first / $second"
    status=1
  fi
done
[ $status -eq 0 ] && echo "reproduce: PASS: two builds of $commit in two folders give the same bytes" ||
  echo "reproduce: FAIL: the builds differ (diffoscope or cmp -l on the files above shows where)"
exit $status
