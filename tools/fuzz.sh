#!/bin/sh
# fuzz.sh SECONDS [TARGET...]: builds the fuzz targets and runs each for so long on its stored corpus, which stays as
# it is. What fails is left in out/fuzz/.
set -eu
cd "$(dirname "$0")/.."
seconds=$1
shift
root=$PWD # absolute paths, since a target may change its folder

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
[ $# -gt 0 ] || set -- $(basename -a -s _fuzz.cpp fuzz/*_fuzz.cpp)
for target; do
    found=$root/out/fuzz/found/$target
    mkdir -p "$found"
    dictionary=
    [ ! -f "fuzz/$target.dict" ] || dictionary=-dict=$root/fuzz/$target.dict
    echo "-- $target"
    # shellcheck disable=SC2086  # no dictionary, no argument
    "out/fuzz/fuzz/${target}_fuzz" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=0 \
        -verbosity=0 -artifact_prefix="$root/out/fuzz/$target-" $dictionary "$found" "$root/fuzz/corpus/$target"
done
