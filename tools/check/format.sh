#!/usr/bin/env bash
# Fails when a source file is not laid out as .clang-format says; "format.sh --fix" lays them out.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
mode=(--dry-run --Werror)
[ "${1:-}" = --fix ] && mode=(-i)
git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format "${mode[@]}"
