#!/usr/bin/env bash
# Installs the missing packages of packages.txt with apt, without questions.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

mapfile -t wanted < <(sed 's/#.*//' "$here/packages.txt" | awk 'NF')
missing=()
for package in "${wanted[@]}"; do
  status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "missing packages, and no sudo: ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
# The console starts a web server of its own, so the packaged one must not start with the machine.
nginx_was_there=$(dpkg-query -W -f '${db:Status-Status}' nginx-core 2>/dev/null || true)
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
  "${missing[@]}" >/dev/null
if [ "$nginx_was_there" != installed ] && [ -d /run/systemd/system ]; then
  "${as_root[@]}" systemctl disable --now nginx >/dev/null 2>&1 || true
fi
