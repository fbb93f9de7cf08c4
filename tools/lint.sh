#!/bin/sh
# Checks the format of every source, and runs the short list of fatal lint checks over the program's own.
set -eu
cd "$(dirname "$0")/.."

find src tests bench fuzz \( -name '*.h' -o -name '*.cpp' \) -print0 | xargs -0 clang-format --dry-run --Werror
cmake --preset clang >/dev/null
find src -name '*.cpp' -print0 | sort -z | xargs -0 -n 4 -P "$(nproc)" clang-tidy -p out/clang --quiet 2>/dev/null
