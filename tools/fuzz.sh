#!/bin/sh
# fuzz.sh SECONDS [TARGET...]: builds the fuzz targets and runs each for so long on its stored corpus, which stays as
# it is; as many at once as there are processors. What fails is left in out/fuzz/.
set -eu
cd "$(dirname "$0")/.."
seconds=$1
shift
root=$PWD # absolute paths, since a target may change its folder

[ $# -gt 0 ] || set -- $(basename -a -s _fuzz.cpp fuzz/*_fuzz.cpp)
cmake --preset fuzz >/dev/null
# shellcheck disable=SC2046  # a word a target
cmake --build --preset fuzz --target $(printf '%s_fuzz ' "$@")

# Runs one target: its name is $1.
one='
    found=$root/out/fuzz/found/$1
    mkdir -p "$found"
    log=out/fuzz/$1.log
    dictionary=
    [ ! -f "fuzz/$1.dict" ] || dictionary=-dict=$root/fuzz/$1.dict
    if ! "out/fuzz/fuzz/${1}_fuzz" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -artifact_prefix="$root/out/fuzz/$1-" $dictionary "$found" "$root/fuzz/corpus/$1" >"$log" 2>&1; then
        tail -60 "$log" >&2
        echo "fuzz.sh: $1 failed on what lies in out/fuzz/$1-*" >&2
        exit 1
    fi
    echo "$1: $(grep "^Done" "$log")"'
export root seconds
printf '%s\n' "$@" | xargs -P "$(nproc)" -n 1 sh -euc "$one" one
