#!/usr/bin/env bash
# Builds the benchmarks in release mode and runs them, with a PostgreSQL server and an OpenLDAP
# server of their own.
# usage: bench/run-benchmarks.sh
set -euo pipefail
cd "$(dirname "$0")/.."
build=build-bench
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DSABLE_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target bench_chart bench_chart_file bench_edits bench_console bench_import bench_directory
"$build/bench/bench_edits"
"$build/bench/bench_console"
"$build/bench/bench_import"
"$build/bench/bench_directory"
"$build/bench/bench_chart_file"
env_file=$(mktemp)
trap 'tests/fixtures/postgres.sh stop "$env_file"' EXIT
tests/fixtures/postgres.sh start "$env_file" >/dev/null
host=$(sed -n 's/^host=//p' "$env_file")
port=$(sed -n 's/^port=//p' "$env_file")
runuser -u postgres -- "$(sed -n 's/^bindir=//p' "$env_file")/createdb" -h "$host" -p "$port" -O sable bench 2>/dev/null \
    || "$(sed -n 's/^bindir=//p' "$env_file")/createdb" -h "$host" -p "$port" -U postgres -O sable bench
"$build/bench/bench_chart" --pg "Provider=PostgreSQL;Host=$host;Port=$port;Database=bench;User ID=sable;Password=sable-secret"
