#!/bin/sh
# Checks the format of every source, that each of the program's own compiles by itself, and the short list of fatal
# lint checks over these, a room at a time, since reading headers takes most of the time.
set -eu
cd "$(dirname "$0")/.."

find src tests bench fuzz \( -name '*.h' -o -name '*.cpp' \) -print0 | xargs -0 clang-format --dry-run --Werror
cmake --preset clang >/dev/null
find src -name '*.cpp' -print0 | xargs -0 -n 4 -P "$(nproc)" clang++ -std=c++20 -Isrc -Wall -Wextra -Werror -fsyntax-only
find out/clang/CMakeFiles/vantorel_core.dir/Unity src/shell/main.cpp -name '*.c*' -print0 |
    xargs -0 -n 1 -P "$(nproc)" clang-tidy -p out/clang --quiet 2>/dev/null
