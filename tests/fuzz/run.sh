#!/usr/bin/env bash
# Builds the fuzz targets with clang's libFuzzer and runs each for a while, starting from the seeds
# in corpus/<target>/ and from what earlier runs found (kept in the build folder).
# usage: tests/fuzz/run.sh [SECONDS_EACH [TARGET...]]   (default 60 s, every target)
# The build folder is $SABLE_FUZZ_BUILD, else build-fuzz/ at the top of the sources. Exit 77: clang
# or its libFuzzer is not installed (a failure instead when SABLE_REQUIRE_FIXTURES is set). A
# crash or a broken check leaves the input in <build>/crashes/ and fails the run.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
seconds=${1:-60}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(regfile ini csv chartjson connectionstring)
build=${SABLE_FUZZ_BUILD:-$here/../../build-fuzz}

cxx=$(command -v clang++-14 || command -v clang++ || true)
probe=$(mktemp -d)
trap 'rm -rf "$probe"' EXIT
echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }' >"$probe/probe.cpp"
if [ -z "$cxx" ] || ! "$cxx" -fsanitize=fuzzer "$probe/probe.cpp" -o "$probe/probe" 2>/dev/null; then
    echo "run.sh: clang with libFuzzer is not installed" >&2
    [ -n "${SABLE_REQUIRE_FIXTURES:-}" ] && exit 1
    exit 77
fi

mkdir -p "$build"
if ! { cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$cxx" \
    && cmake --build "$build" -j"${SABLE_FUZZ_JOBS:-2}" --target $(printf 'fuzz_%s ' "${targets[@]}"); } >"$build/build.log" 2>&1; then
    tail -n 40 "$build/build.log"
    echo "run.sh: the fuzz targets do not build" >&2
    exit 1
fi

failed=()
for target in "${targets[@]}"; do
    corpus=$build/corpus/$target
    mkdir -p "$corpus" "$build/crashes"
    log=$build/$target.log
    if "$build/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -artifact_prefix="$build/crashes/$target-" "$corpus" "$here/corpus/$target" >"$log" 2>&1; then
        runs=$(sed -n 's/^#\([0-9]*\).*DONE.*/\1/p' "$log" | tail -n1)
        echo "fuzz_$target: ${runs:-?} inputs in $seconds s, no fault ($(find "$corpus" -type f | wc -l) in its corpus)"
    else
        tail -n 40 "$log"
        echo "fuzz_$target: FAILED, the input is in $build/crashes/" >&2
        failed+=("$target")
    fi
done
if [ ${#failed[@]} -gt 0 ]; then
    echo "run.sh: faults found by: ${failed[*]}" >&2
    exit 1
fi
