#!/usr/bin/env bash
# Compiles every source file named in the lists syntax-only and fails on any error or warning: by
# default with MinGW-w64, as a Windows build would see it, or with another compiler given on the
# command line (the clang check). The lists come from CMake (cmake/WindowsSyntax.cmake,
# cmake/ClangSyntax.cmake): <target>.sources, and <target>.args for the compiler.
# usage: syntax-check.sh LIST_DIR [COMPILER [WHAT]]   (WHAT ends the report: "for Windows"; exit 77:
# the compiler is not installed, a failure instead when SABLE_REQUIRE_FIXTURES is set)
set -euo pipefail
# One file (run by xargs): ARGS_FILE SOURCE. A file that compiled cleanly before with the same
# preprocessed text, arguments and compiler is not compiled again: the preprocessor takes a tenth of
# the time of the compiler, and the text holds every header the file sees.
if [ "${1:-}" = --file ]; then
    cxx=$SYNTAX_CXX
    args=$2
    source=$3
    key=$({
        echo "$SYNTAX_COMPILER"
        cat "$args"
        # -Wno-error: clang warns that -E leaves -fsyntax-only unused.
        "$cxx" @"$args" -Wno-error -E "$source" 2>/dev/null || echo "preprocessing failed: $RANDOM$RANDOM"
    } | sha1sum | cut -d' ' -f1)
    if [ -e "$SYNTAX_PASSED/$key" ]; then
        : >"$SYNTAX_PASSED_NOW/$key"
        exit 0
    fi
    if out=$("$cxx" @"$args" "$source" 2>&1) && [ -z "$out" ]; then
        : >"$SYNTAX_PASSED_NOW/$key"
        exit 0
    fi
    # In one piece, so that parallel jobs do not interleave their messages.
    printf '%s\nFAILED: %s\n' "$out" "$source"
    exit 1
fi

lists=$1
# The POSIX thread model, as Qt for MinGW is built: std::mutex and std::future (QThread::create)
# are missing from the win32 model, which Debian's plain x86_64-w64-mingw32-g++ may point to.
cxx=${2:-x86_64-w64-mingw32-g++-posix}
what=${3:-for Windows}
jobs=${SABLE_SYNTAX_JOBS:-2}
if ! command -v "$cxx" >/dev/null; then
    echo "syntax-check.sh: the compiler $cxx is not installed" >&2
    [ -n "${SABLE_REQUIRE_FIXTURES:-}" ] && exit 1
    exit 77
fi
shopt -s nullglob
sources=("$lists"/*.sources)
if [ ${#sources[@]} -eq 0 ]; then
    echo "syntax-check.sh: no source lists in $lists (run cmake first)" >&2
    exit 1
fi

# Files that passed, by key: those of the last run are read, those of this run written; this run's
# replace the last run's at the end, so that the folder does not grow.
SYNTAX_PASSED=$lists/passed
SYNTAX_PASSED_NOW=$(mktemp -d "$lists/passed.XXXXXX")
SYNTAX_COMPILER=$("$cxx" --version | head -n1)
SYNTAX_CXX=$cxx
export SYNTAX_PASSED SYNTAX_PASSED_NOW SYNTAX_COMPILER SYNTAX_CXX
mkdir -p "$SYNTAX_PASSED"
jobfile=$(mktemp)
finish() {
    rm -f "$jobfile"
    rm -rf "$SYNTAX_PASSED"
    mv "$SYNTAX_PASSED_NOW" "$SYNTAX_PASSED"
}
trap finish EXIT

# One job a file: the argument file and the source, NUL-separated for xargs.
count=0
for list in "${sources[@]}"; do
    while IFS= read -r source; do
        [ -n "$source" ] || continue
        printf '%s\0%s\0' "${list%.sources}.args" "$source" >>"$jobfile"
        count=$((count + 1))
    done <"$list"
done

start=$SECONDS
if xargs -0 -n2 -P"$jobs" "$BASH" "$0" --file <"$jobfile"; then
    unchanged=0
    for passed in "$SYNTAX_PASSED_NOW"/*; do
        [ -e "$SYNTAX_PASSED/${passed##*/}" ] && unchanged=$((unchanged + 1))
    done
    echo "syntax-check.sh: $count files compile $what, $unchanged of them unchanged since the last run" \
        "($((SECONDS - start)) s)"
else
    echo "syntax-check.sh: some of the $count files do not compile $what (see FAILED above)" >&2
    exit 1
fi
