#!/usr/bin/env bash
# Cross-compiles the Windows backends with MinGW-w64 together with their test program and a tiny
# test service, and runs them under Wine in a throwaway prefix: the registry backend against Wine's
# registry, the service backend against Wine's service manager.
# usage: run.sh SOURCE_DIR WORK_DIR   (exit 77: the tools are not installed, a failure instead when
# SABLE_REQUIRE_FIXTURES is set)
set -euo pipefail
src=$1
work=$2
wine=/usr/lib/wine/wine64
wineserver=/usr/lib/wine/wineserver
cxx=x86_64-w64-mingw32-g++
if ! command -v "$cxx" >/dev/null || [ ! -x "$wine" ]; then
    echo "run.sh: MinGW-w64 or Wine is not installed" >&2
    [ -n "${SABLE_REQUIRE_FIXTURES:-}" ] && exit 1
    exit 77
fi
launcher=()
command -v ccache >/dev/null && launcher=(ccache)

mkdir -p "$work"
flags=(-std=c++20 -O1 -Wall -Wextra -Wpedantic -Werror -I"$src/src/core")
compile() { # SOURCE: compiled apart from linking, so that the compiler cache can keep it
    local object
    object="$work/$(basename "$1" .cpp).o"
    "${launcher[@]}" "$cxx" "${flags[@]}" -c -o "$object" "$1"
    echo "$object"
}
# Linked -static: without the MinGW runtime DLLs beside it, a program would not even start.
"$cxx" -static -o "$work/WinBackendsTest.exe" "$(compile "$src/tests/wine/WinBackendsTest.cpp")" \
    "$(compile "$src/src/core/platform/WinRegistryBackend.cpp")" "$(compile "$src/src/core/platform/WinServiceBackend.cpp")" \
    "$(compile "$src/src/core/platform/ServiceController.cpp")"
"$cxx" -static -o "$work/TestService.exe" "$(compile "$src/tests/wine/TestService.cpp")"

WINEPREFIX=$(mktemp -d /tmp/sable-wine.XXXXXX)
export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"
cleanup() {
    "$wineserver" -k 2>/dev/null || true
    rm -rf "$WINEPREFIX"
}
trap cleanup EXIT
# A new prefix, and its server left to end, so that the next command finds every service ready.
"$wine" wineboot --init >/dev/null 2>&1
"$wineserver" -w
service=SableTestSvc
"$wine" sc create "$service" binPath= "Z:${work//\//\\}\\TestService.exe" >/dev/null
"$wine" "$work/WinBackendsTest.exe" "$service"
