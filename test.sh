#!/bin/sh
# Builds Vantorel with both compilers and runs every test, in release and under the sanitizers, and each fuzz target
# for a moment. Installs what is missing first. Ends with a count of the tests passed and failed.
set -eu
cd "$(dirname "$0")"

tools/need.sh cmake ninja-build g++ clang libclang-rt-14-dev clang-format clang-tidy libgtest-dev python3 unadf

echo "== includes point downwards only"
tools/check-includes.sh
echo "== format and lint"
tools/lint.sh

passed=0
failed=0
# Adds the tests of a ctest log to the counts.
count() {
    passed=$((passed + $(grep -c '   Passed ' "$1" || true)))
    failed=$((failed + $(grep -cE '\*\*\*(Failed|Timeout|Exception|Not Run)' "$1" || true)))
}

for preset in release asan; do
    echo "== $preset"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset"
    ctest --preset "$preset" --parallel "$(nproc)" >"out/$preset/test.log" 2>&1 || true
    grep -vE '^ *(Start|[0-9]+/[0-9]+ Test).*(Start|Passed|Start [0-9]+:)|^ +Start ' "out/$preset/test.log" || true
    count "out/$preset/test.log"
done

echo "== clang"
cmake --preset clang >/dev/null
cmake --build --preset clang

echo "== fuzz targets, a moment each"
if tools/fuzz.sh 10; then passed=$((passed + 1)); else failed=$((failed + 1)); fi

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
