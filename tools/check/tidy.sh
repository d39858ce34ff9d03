#!/usr/bin/env bash
# Static checks by .clang-tidy over the sources of a configured preset (default asan).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
preset=${1:-asan}
[ -f "build/$preset/compile_commands.json" ] || cmake --preset "$preset" >/dev/null
# clang cannot read GCC's precompiled headers and does not know all of its flags.
database=$(mktemp -d)
trap 'rm -rf "$database"' EXIT
sed -E 's# -(Winvalid-pch|fpch-preprocess|Wduplicated-cond|Wlogical-op|Wno-maybe-uninitialized)##g' \
  "build/$preset/compile_commands.json" |
  python3 -c '
import json, re, sys
def plain(entry):
    folder = re.compile(r" -include (\S+)/cmake_pch\.hxx")
    found = folder.search(entry["command"])
    if found:
        text = open(found.group(1) + "/cmake_pch.hxx").read()
        header = re.search(r"#include \"(\S+)\"", text).group(1)
        entry["command"] = folder.sub(" -include " + header, entry["command"])
    return entry
json.dump([plain(entry) for entry in json.load(sys.stdin)], sys.stdout)
' >"$database/compile_commands.json"
# Without the option or the annotations clang would pass everything, so an access without the lock is tried.
cat >"$database/unlocked.cpp" <<'END'
#include "ThreadSafety.h"
struct Counter {
  korvia::Mutex mutex;
  int count GUARDED_BY(mutex) = 0;
};
int countOf(Counter& counter) { return counter.count; }
END
found=$(clang-tidy --quiet --config-file=.clang-tidy "$database/unlocked.cpp" -- -std=c++20 -Imodules/base 2>/dev/null || true)
if [[ $found != *clang-diagnostic-thread-safety-analysis* ]]; then
  echo "tidy.sh: an access without its lock is not found" >&2
  exit 1
fi
git ls-files -z 'modules/*.cpp' 'sarnhawk/*.cpp' 'host/*.cpp' 'bench/*.cpp' 'tools/*.cpp' |
  xargs -0 -n 4 -P 2 clang-tidy --quiet -p "$database" 2>/dev/null
