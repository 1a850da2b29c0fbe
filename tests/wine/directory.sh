#!/usr/bin/env bash
# Cross-compiles the Wldap32 backend of the directory client with MinGW-w64 with its test program
# and runs it under Wine, in a throwaway prefix, against the OpenLDAP server of the test fixture.
# usage: directory.sh SOURCE_DIR WORK_DIR SLAPD_ENV   (exit 77: the tools are not installed, a failure
# instead when SABLE_REQUIRE_FIXTURES is set)
set -euo pipefail
src=$1
work=$2
slapd_env=$3
wine=/usr/lib/wine/wine64
wineserver=/usr/lib/wine/wineserver
cxx=x86_64-w64-mingw32-g++
if ! command -v "$cxx" >/dev/null || [ ! -x "$wine" ]; then
    echo "directory.sh: MinGW-w64 or Wine is not installed" >&2
    [ -n "${SABLE_REQUIRE_FIXTURES:-}" ] && exit 1
    exit 77
fi
url=$(sed -n 's/^url=//p' "$slapd_env")
[ -n "$url" ] || { echo "directory.sh: the OpenLDAP server of the fixture is not running" >&2; exit 1; }
closed=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')

mkdir -p "$work"
launcher=()
command -v ccache >/dev/null && launcher=(ccache)
flags=(-std=c++20 -O1 -Wall -Wextra -Wpedantic -Wshadow -Werror -I"$src/src/core")
objects=()
for source in tests/wine/WinDirectoryTest.cpp src/core/directory/WinLdapBackend.cpp src/core/directory/DirectoryBackend.cpp; do
    object="$work/$(basename "$source" .cpp).o"
    "${launcher[@]}" "$cxx" "${flags[@]}" -c -o "$object" "$src/$source"
    objects+=("$object")
done
"$cxx" -static -o "$work/WinDirectoryTest.exe" "${objects[@]}" -lwldap32

WINEPREFIX=$(mktemp -d /tmp/sable-wine-ldap.XXXXXX)
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
cleanup() {
    "$wineserver" -k 2>/dev/null || true
    rm -rf "$WINEPREFIX"
}
trap cleanup EXIT
"$wine" wineboot --init >/dev/null 2>&1
"$wineserver" -w
"$wine" "$work/WinDirectoryTest.exe" "${url##*:}" "$closed"
