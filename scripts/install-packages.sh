#!/usr/bin/env bash
# Installs the Debian packages that are missing from the given list (nothing when all are there).
# usage: install-packages.sh PACKAGE...
set -euo pipefail

missing=()
for package in "$@"; do
    status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || { echo "Root rights are needed to install: ${missing[*]}" >&2; exit 1; }
    sudo=sudo
fi
export DEBIAN_FRONTEND=noninteractive
# slapd is for the test fixture's own servers: without this answer its package would set up a
# database of its own and start a system daemon.
if [[ " ${missing[*]} " == *" slapd "* ]]; then
    echo "slapd slapd/no_configuration boolean true" | $sudo debconf-set-selections
fi
if ! $sudo apt-get install -y --no-install-recommends "${missing[@]}"; then
    $sudo apt-get update
    $sudo apt-get install -y --no-install-recommends "${missing[@]}"
fi
