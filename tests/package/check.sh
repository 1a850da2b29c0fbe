#!/usr/bin/env bash
# Builds the Debian package from a release configuration in a folder of its own, unpacks it into a
# temporary root and checks what an installed system would see: the files where the desktop, icon,
# AppStream, manual and completion conventions look for them, the desktop entry and the metainfo
# valid, the manual rendered without a warning and naming every command, the completion offering
# every command, and the installed programs running from /usr/bin with /srv/sable as their home.
# usage: check.sh SOURCE_DIR WORK_DIR CXX_COMPILER   (exit 77: the tools are not installed, a
# failure instead when SABLE_REQUIRE_FIXTURES is set)
set -euo pipefail
src=$1
work=$2
cxx=$3
for tool in dpkg-deb dpkg-shlibdeps desktop-file-validate appstreamcli man ninja; do
    if ! command -v "$tool" >/dev/null; then
        echo "check.sh: $tool is not installed" >&2
        [ -n "${SABLE_REQUIRE_FIXTURES:-}" ] && exit 1
        exit 77
    fi
done

start=$SECONDS
build=$work/build
# Only the programs: the tests and benchmarks are not packaged. Unoptimised and without debugging
# data, since this package only shows what an installation holds and the build is the slow part of
# the check; the compiler cache keeps later runs short.
cmake -S "$src" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_FLAGS="-O0 -g0" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_INSTALL_PREFIX=/usr -DSABLE_DEFAULT_HOME=/srv/sable \
    -DSABLE_BUILD_TESTS=OFF -DSABLE_BUILD_BENCH=OFF -DSABLE_SANITIZE=OFF -DSABLE_WERROR=OFF >/dev/null
rm -f "$build"/*.deb
cmake --build "$build" --parallel "${CMAKE_BUILD_PARALLEL_LEVEL:-2}" --target package
echo "package built in $((SECONDS - start)) s"

failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}

debs=("$build"/sable-manager_*.deb)
if [ ${#debs[@]} -ne 1 ] || [ ! -f "${debs[0]}" ]; then
    echo "FAIL: not exactly one package: ${debs[*]}" >&2
    exit 1
fi
deb=${debs[0]}
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
field() { dpkg-deb -f "$deb" "$1"; }
[ "$(field Package)" = sable-manager ] || fail "package name $(field Package)"
[ "$(field Version)" = "$version" ] || fail "version $(field Version), the project's is $version"
[ "$(field Section)" = admin ] || fail "section $(field Section)"
[ -n "$(field Maintainer)" ] || fail "no maintainer"
# The libraries come from dpkg-shlibdeps, the plug-ins loaded at run time from the list.
for dependency in libqt6widgets6 libqt6sql6 libcurl4 libqt6sql6-sqlite libqt6svg6; do
    grep -qE "(^|, )$dependency( |,|$)" <<<"$(field Depends)" || fail "Depends lacks $dependency: $(field Depends)"
done
for recommended in fonts-nanum libqt6sql6-psql libqt6sql6-odbc; do
    grep -q "$recommended" <<<"$(field Recommends)" || fail "Recommends lacks $recommended"
done

root=$(mktemp -d /tmp/sable-package.XXXXXX)
trap 'rm -rf "$root"' EXIT
dpkg-deb -x "$deb" "$root"

# Everything below /usr: a package must not put the server folder (or anything else) elsewhere.
outside=$(cd "$root" && find . -mindepth 1 -maxdepth 1 ! -name usr)
[ -z "$outside" ] || fail "files outside /usr: $outside"

id=com.halvex.SableManager
usr=$root/usr
for file in bin/SableManager bin/setdb bin/sablectl bin/sable-stub-server; do
    [ -x "$usr/$file" ] || fail "missing program /usr/$file"
done
for file in share/applications/$id.desktop share/icons/hicolor/scalable/apps/$id.svg \
    share/metainfo/$id.metainfo.xml share/bash-completion/completions/sablectl \
    share/sable-manager/Template.html share/sable-manager/users-sample.csv share/doc/sable-manager/copyright; do
    [ -f "$usr/$file" ] || fail "missing /usr/$file"
done
manpage=
for candidate in "$usr"/share/man/man1/sablectl.1 "$usr"/share/man/man1/sablectl.1.gz; do
    [ -f "$candidate" ] && manpage=$candidate
done
[ -n "$manpage" ] || { echo "FAIL: missing /usr/share/man/man1/sablectl.1" >&2; exit 1; }

desktop=$usr/share/applications/$id.desktop
report=$(desktop-file-validate "$desktop" 2>&1) || fail "desktop-file-validate: $report"
[ -z "$report" ] || fail "desktop-file-validate: $report"
icon=$(sed -n 's/^Icon=//p' "$desktop")
[ -f "$usr/share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "the desktop entry's icon $icon is not installed"
exec=$(sed -n 's/^Exec=//p' "$desktop")
[ -x "$usr/bin/${exec%% *}" ] || fail "the desktop entry runs ${exec%% *}, which is not in /usr/bin"
grep -q '^Name\[ko\]=' "$desktop" || fail "no Korean name"
grep -q '^Comment\[ko\]=' "$desktop" || fail "no Korean comment"

metainfo=$usr/share/metainfo/$id.metainfo.xml
report=$(appstreamcli validate --no-net --pedantic "$metainfo" 2>&1) || fail "appstreamcli validate: $report"
# The whole tree: the launchable names the installed desktop entry, the icon is found.
report=$(appstreamcli validate-tree --no-net "$root" 2>&1) || fail "appstreamcli validate-tree: $report"
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" "$metainfo" || fail "launchable is not $id.desktop"
license=$(sed -n 's/^License: //p' "$usr/share/doc/sable-manager/copyright")
grep -q "<project_license>$license</project_license>" "$metainfo" || fail "metainfo licence differs from $license"

warnings=$(MANWIDTH=80 LC_ALL=C.UTF-8 man --warnings -l "$manpage" 2>&1 >/dev/null)
[ -z "$warnings" ] || fail "man warnings: $warnings"
manual=$(MANWIDTH=400 LC_ALL=C.UTF-8 man -l "$manpage" 2>/dev/null | col -b)

sablectl=$usr/bin/sablectl
help=$(env -u SABLE_HOME "$sablectl" --help) || fail "sablectl --help exited with $?"
grep -q 'else /srv/sable\.' <<<"$help" || fail "the installed sablectl does not fall back on /srv/sable: $help"
code=0
"$sablectl" no-such-command 2>/dev/null || code=$?
[ "$code" = 2 ] || fail "a usage error exited with $code, not 2"

# Every command sablectl lists is in the manual and offered by the completion.
# shellcheck source=/dev/null
source "$usr/share/bash-completion/completions/sablectl"
# (Captured before a grep -q reads them: with pipefail, a grep that stops early would fail the pipe.)
complete_words() { # WORD... : the completions offered after them
    COMP_WORDS=(sablectl "$@")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    _sablectl
    printf '%s\n' "${COMPREPLY[@]}"
}
commands=$(sed -n 's/^  \([a-z-]*\)\( [a-z-]*\)\?.*/\1\2/p' <<<"$help" | sed 's/ *$//')
[ "$(wc -l <<<"$commands")" -ge 10 ] || fail "too few commands in the help: $commands"
while read -r first second; do
    grep -q "^ *$first${second:+ $second}\b" <<<"$manual" || fail "the manual lacks '$first $second'"
    grep -qx -- "$first" <<<"$(complete_words "")" || fail "the completion does not offer $first"
    if [ -n "$second" ]; then
        grep -qx -- "$second" <<<"$(complete_words "$first" "")" || fail "the completion does not offer $first $second"
    fi
done <<<"$commands"
# Every option of a usage line in the manual's heading of its command (and no other there), and
# offered by the completion after the command.
while read -r first second rest; do
    # A command of one word (log) has its options right after it.
    if [[ $second == [-[]* ]]; then
        rest="$second $rest"
        second=
    fi
    heading=$(grep -m1 -E "^ {7}$first${second:+ $second}( |$)" <<<"$manual" || true)
    for option in $(grep -o -- '--[a-z-]*' <<<"$rest" | sort -u); do
        grep -q -- "$option\b" <<<"$heading" || fail "the manual's $first${second:+ $second} lacks $option"
        case $option in --url | --user | --password) words=(services configure supervisord --) ;;
        *) words=("$first" ${second:+"$second"} --) ;; esac
        grep -qx -- "$option" <<<"$(complete_words "${words[@]}")" || fail "the completion lacks $option after ${words[*]}"
    done
    for option in $(grep -o -- '--[a-z-]*' <<<"$heading" || true); do
        grep -q -- "$option\b" <<<"$rest" || fail "the manual's $first $second has $option, which sablectl does not know"
    done
done < <(sed -n 's/^  \(\S*\) \(\S*\) \(.*--.*\)/\1 \2 \3/p' <<<"$help")
for section in 'EXIT STATUS' ENVIRONMENT FILES SABLE_HOME SABLE_REGISTRY_DIR; do
    grep -q "$section" <<<"$manual" || fail "the manual lacks $section"
done
folders=$root/completion
mkdir -p "$folders/server-a" "$folders/server-b"
touch "$folders/server-file"
offered=$(cd "$folders" && complete_words --home "ser" | sort | tr '\n' ' ')
[ "$offered" = "server-a server-b " ] || fail "after --home the completion offers '$offered', not the two folders"
offered=$(cd "$folders" && complete_words --home = "ser" | sort | tr '\n' ' ')
[ "$offered" = "server-a server-b " ] || fail "after --home= the completion offers '$offered', not the two folders"
offered=$(complete_words --home /srv db "" | sort | tr '\n' ' ')
[ "$offered" = "check info init " ] || fail "after '--home DIR db' the completion offers '$offered'"

# The installed console on a server folder of its own, without a display: it loads the chart and
# saves a picture, which takes the installed SQL and SVG plug-ins to work.
home=$root/home
export SABLE_REGISTRY_DIR=$root/registry XDG_RUNTIME_DIR=$root/runtime
mkdir -m 700 "$XDG_RUNTIME_DIR"
"$sablectl" --home "$home" db init --demo >/dev/null || fail "the installed sablectl could not make a demo home"
QT_QPA_PLATFORM=offscreen timeout 120 "$usr/bin/SableManager" --home "$home" --screenshot "$root/console.png" \
    >/dev/null 2>&1 || fail "the installed console did not start and quit"
[ -s "$root/console.png" ] || fail "the installed console saved no picture"

echo "checked in $((SECONDS - start)) s, $failures failures"
[ "$failures" -eq 0 ]
