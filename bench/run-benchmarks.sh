#!/usr/bin/env bash
# Builds the benchmarks in release mode and runs them, with a PostgreSQL server and an OpenLDAP
# server of their own.
# usage: bench/run-benchmarks.sh   (exit 1 when any benchmark went over its bound or failed)
set -euo pipefail
cd "$(dirname "$0")/.."
build=build-bench
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSABLE_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target bench_chart bench_chart_file bench_cascade bench_merge bench_edits bench_console bench_import bench_directory
# Every benchmark runs and prints its figures, also after one went over its bound (on a loaded
# machine an early one may, and the later figures are wanted all the same); the run fails at the end.
failed=()
run() {
    local name=$1
    shift
    echo "== $name"
    if ! "$build/bench/$name" "$@"; then
        echo "== $name: FAILED (over its bound, or it could not measure)"
        failed+=("$name")
    fi
}
run bench_merge
run bench_cascade
run bench_edits
run bench_console
run bench_import
run bench_directory
run bench_chart_file

env_file=$(mktemp)
trap 'tests/fixtures/postgres.sh stop "$env_file"' EXIT
if tests/fixtures/postgres.sh start "$env_file" >/dev/null; then
    host=$(sed -n 's/^host=//p' "$env_file")
    port=$(sed -n 's/^port=//p' "$env_file")
    bindir=$(sed -n 's/^bindir=//p' "$env_file")
    runuser -u postgres -- "$bindir/createdb" -h "$host" -p "$port" -O sable bench 2>/dev/null \
        || "$bindir/createdb" -h "$host" -p "$port" -U postgres -O sable bench || true
    run bench_chart --pg "Provider=PostgreSQL;Host=$host;Port=$port;Database=bench;User ID=sable;Password=sable-secret"
else
    echo "== PostgreSQL did not start: bench_chart runs without it"
    run bench_chart
    failed+=(postgresql)
fi

if [ ${#failed[@]} -gt 0 ]; then
    echo "run-benchmarks.sh: failed: ${failed[*]}" >&2
    exit 1
fi
echo "run-benchmarks.sh: every benchmark within its bound"
