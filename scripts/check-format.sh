#!/usr/bin/env bash
# Checks that every C++ file of the project is as clang-format (with the project's .clang-format)
# would write it; with --fix, rewrites the files that are not.
# usage: check-format.sh SOURCE_DIR [--fix]
set -euo pipefail
cd "$1"
formatter=$(command -v clang-format || command -v clang-format-14 || true)
if [ -z "$formatter" ]; then
    echo "check-format.sh: clang-format is not installed" >&2
    exit 1
fi
mapfile -d '' files < <(find src tools tests bench -type f \( -name '*.cpp' -o -name '*.h' \) -print0 | sort -z)
if [ "${2:-}" = --fix ]; then
    "$formatter" -i "${files[@]}"
    exit 0
fi
# Every file is checked, so one run names them all.
if ! report=$("$formatter" --dry-run -Werror "${files[@]}" 2>&1); then
    grep -oE '^[^:]+\.(cpp|h):[0-9]+:[0-9]+: (error|warning)' <<<"$report" | cut -d: -f1 | sort -u |
        sed 's/^/not formatted: /'
    echo "To format them: cmake --build BUILD_FOLDER --target format"
    exit 1
fi
echo "${#files[@]} files formatted as .clang-format says"
