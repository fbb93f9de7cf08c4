#!/bin/sh
# Builds Vantorel and runs every test, with g++ in release and with clang under the sanitizers, each fuzz target for a
# moment, and what the documents tell to type into a shell. Installs what is missing first. Ends with a count of the
# tests passed, failed and skipped.
set -eu
cd "$(dirname "$0")"

step=packages
begin() {
    step=$1
    echo "== $step"
}
trap '[ $? -eq 0 ] || [ "$step" = packages ] || echo "test.sh: failed at: $step" >&2' EXIT

tools/need.sh cmake ninja-build g++ clang libclang-rt-14-dev clang-format clang-tidy libgtest-dev python3 unadf \
    binutils-m68k-linux-gnu unzip dpkg-dev file rlwrap libbenchmark-dev zlib1g-dev libcapstone-dev

begin "includes point downwards only"
tools/check-includes.sh
begin "format and lint"
tools/lint.sh

passed=0
failed=0
skipped=0

# Adds up a log of ctest: its entries, and for those that are shares of the unit tests what GoogleTest counts.
tally() {
    awk '
        /^[0-9]+: \[  PASSED  \] [0-9]+ test/ { passed += $5 }
        /^[0-9]+: \[  SKIPPED \] [0-9]+ test/ { skipped += $5 }
        !/^ *[0-9]+\/[0-9]+ Test / { next }
        /\*\*\*Skipped/ { skipped++ }
        /\*\*\*/ && !/\*\*\*Skipped/ { failed++ }
        /   Passed / && !/ unit-tests\./ { passed++ }
        END { print passed + 0, failed + 0, skipped + 0 }' "$1"
}

# Builds a preset and runs its tests, those of all ROMs where VANTOREL_REAL_DIR names them.
run() {
    begin "$1: build"
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1"
    begin "$1: test"
    log=out/$1/test.log
    good=true
    ctest --preset "$1" --verbose --parallel "$(nproc)" >"$log" 2>&1 || good=false
    sed -n '/tests passed/,$p' "$log"
    # shellcheck disable=SC2046  # three numbers
    set -- $(tally "$log")
    passed=$((passed + $1))
    failed=$((failed + $2))
    skipped=$((skipped + $3))
    $good || [ "$failed" -gt 0 ] || failed=1 # ctest itself
    [ "$failed" -eq 0 ] || cat "$log"
}
run release
run asan

begin "fuzz targets, a moment each"
if tools/fuzz.sh 3; then passed=$((passed + 1)); else failed=$((failed + 1)); fi

begin "commands in documents"
if tests/docs/check_shell.py --running ./test.sh; then passed=$((passed + 1)); else failed=$((failed + 1)); fi

step=tests
echo "$passed passed, $failed failed, $skipped skipped"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
