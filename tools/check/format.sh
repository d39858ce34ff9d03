#!/usr/bin/env bash
# Fails when a source file does not follow .clang-format. "format.sh --fix" formats all files.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
mode=(--dry-run --Werror)
[ "${1:-}" = --fix ] && mode=(-i)
git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format "${mode[@]}"
