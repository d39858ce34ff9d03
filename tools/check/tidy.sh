#!/usr/bin/env bash
# Static checks by .clang-tidy over the sources of a configured preset (default asan).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
preset=${1:-asan}
[ -f "build/$preset/compile_commands.json" ] || cmake --preset "$preset" >/dev/null
# clang cannot read GCC's precompiled headers and does not know all of its flags.
database=$(mktemp -d)
trap 'rm -rf "$database"' EXIT
sed -E 's# -include [^ ]*cmake_pch\.hxx##g; s# -(Winvalid-pch|fpch-preprocess|Wduplicated-cond|Wlogical-op|Wno-maybe-uninitialized)##g' \
  "build/$preset/compile_commands.json" >"$database/compile_commands.json"
git ls-files -z 'modules/*.cpp' 'sarnhawk/*.cpp' 'host/*.cpp' 'bench/*.cpp' 'tools/*.cpp' |
  xargs -0 -n 4 -P 2 clang-tidy --quiet -p "$database" --extra-arg=-include"$PWD/cmake/pch_core.h" 2>/dev/null
