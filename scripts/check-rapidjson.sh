#!/bin/sh
# Fails when a source of the tree includes a RapidJSON header directly instead of through
# third_party/LumavenRapidJson.h, which sets the project's policy for the library's assertions
# (they throw instead of aborting the process) and allocation failures (std::bad_alloc). A
# header that skipped it would bring back assert() and take a host down in a Debug build.
set -u
cd "$(dirname "$0")/.."
policy=third_party/LumavenRapidJson.h
offenders=$(git ls-files -- '*.c' '*.cc' '*.cpp' '*.cxx' '*.h' '*.hpp' '*.inl' |
  grep -v -x "$policy" |
  xargs grep -n -E '^[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]rapidjson/' 2>/dev/null)
if [ -n "$offenders" ]; then
  echo "check-rapidjson: these lines include RapidJSON without $policy:" >&2
  echo "$offenders" >&2
  exit 1
fi
if ! grep -q '^#define RAPIDJSON_ASSERT' "$policy"; then
  echo "check-rapidjson: $policy no longer defines RAPIDJSON_ASSERT" >&2
  exit 1
fi
count=$(git ls-files -- '*.cpp' '*.h' | xargs grep -l -E '#[[:space:]]*include[[:space:]]*"LumavenRapidJson.h"' | wc -l)
echo "check-rapidjson: every RapidJSON inclusion goes through $policy ($count sources)"
